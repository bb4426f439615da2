# A screen reader for tests: it writes what it hears to a file, one thing per line, and obeys
# commands from its standard input.
#   screen_reader.py FILE active|idle|watch
# "active" says that assistive technology is in use, "idle" says that it is not, "watch" does not
# touch its bus at all. All of them write who comes to the session bus and leaves it.
# Commands: "rows" lists the rows of the deepest menu, "do ACTION|ROW" acts on one of them, "where
# ROW" tells its place on the screen, "edit METHOD|ROW|ARGUMENT..." edits a field, and "connections PROCESS" how many connections to both buses a
# process has. When a command is done, it is written, too.
import sys

from gi.repository import Gio, GLib

record = open(sys.argv[1], "a", buffering=1)
mode = sys.argv[2]
menus = {}  # names of open menus by path, the deepest last
nodes = {}


def tell(line):
    record.write(line + "\n")


def describe(row):
    attributes = dict(each.split(":", 1) for each in row.getAttributes())
    place = f"{attributes['posinset']} of {attributes['setsize']}" if "posinset" in attributes else "-"
    if row.getRole() == pyatspi.ROLE_LIST_ITEM:
        place = place_in_list(row, place)
    states = sorted(pyatspi.stateToString(each) for each in row.getState().getStates())
    left_out = {"visible", "showing", "sensitive", "selectable"}
    return f"{row.name}, {row.getRoleName()}, {place}, " + " ".join(
        each for each in states if each not in left_out) + written_in(row)


# Some screen readers count the items of the list themselves.
def place_in_list(row, place):
    counted = f"{row.getIndexInParent() + 1} of {row.parent.childCount}"
    is_found = row.parent.getChildAtIndex(row.getIndexInParent()).name == row.name
    if row.parent.getRole() == pyatspi.ROLE_LIST and counted == place and is_found:
        return place
    return f"{place}, but {counted} in a {row.parent.getRoleName()}"


def rows_of(menu):
    for each in menu:
        if each.getRole() == pyatspi.ROLE_LIST:
            yield from each
        else:
            yield each


def written_in(row):
    if "Text" not in row.get_interfaces():
        return ""
    text = row.queryText()
    return f", “{text.getText(0, -1)}” with the caret at {text.caretOffset}"


def hear(event):
    node, path = event.source, event.source.path
    try:
        if event.type == "object:state-changed:showing" and event.detail1:
            if node.getRole() in (pyatspi.ROLE_MENU, pyatspi.ROLE_PANEL):
                menus[path] = node.name
                nodes[path] = node
            if node.getRole() in (pyatspi.ROLE_MENU, pyatspi.ROLE_PANEL, pyatspi.ROLE_DIALOG,
                                  pyatspi.ROLE_ALERT):
                tell(f"opened {node.name}, {node.getRoleName()}, {node.childCount} rows")
        elif event.type == "object:state-changed:showing" and path in menus:
            tell(f"closed {menus.pop(path)}")
        elif event.type == "object:state-changed:focused" and event.detail1:
            tell("at " + describe(node))
        elif event.type == "object:state-changed:checked":
            tell(("checked " if event.detail1 else "unchecked ") + node.name)
        elif event.type.startswith("object:text-selection-changed"):
            text = node.queryText()
            parts = [text.getText(*text.getSelection(each)) for each in range(text.getNSelections())]
            tell(f"selected “{''.join(parts)}” in {node.name}")
        elif event.type.startswith("object:text-changed:"):
            change = event.type.split(":")[2]
            tell(f"{change} “{event.any_data}” at {event.detail1} in {node.name}")
    except (GLib.Error, RuntimeError) as problem:
        tell(f"lost {path}: {problem}")  # the menu has closed meanwhile


def ask_bus(connection, method, *arguments):
    packed = GLib.Variant("(" + "s" * len(arguments) + ")", arguments) if arguments else None
    return connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                "org.freedesktop.DBus", method, packed, None,
                                Gio.DBusCallFlags.NONE, -1, None).unpack()[0]


def buses():
    yield bus
    if mode == "watch":
        return
    address = bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                            Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
    yield Gio.DBusConnection.new_for_address_sync(
        address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
        | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)


def count_of(connection, process):
    count = 0
    for name in ask_bus(connection, "ListNames"):
        try:
            is_from = ask_bus(connection, "GetConnectionUnixProcessID", name) == process
            count += name.startswith(":") and is_from
        except GLib.Error:
            pass  # it has gone meanwhile
    return count


def obey(channel, condition):
    line = sys.stdin.readline()
    if not line:
        return False
    command, _, rest = line.rstrip("\n").partition(" ")
    deepest = nodes[list(menus)[-1]] if menus else None
    if command == "rows":
        for row in rows_of(deepest):
            tell("row " + describe(row))
    elif command == "do":
        wanted, name = rest.split("|")
        row = next(each for each in rows_of(deepest) if each.name == name)
        actions = row.queryAction()
        names = [actions.getName(each) for each in range(actions.nActions)]
        tell("did" if actions.doAction(names.index(wanted)) else "did nothing")
    elif command == "edit":
        method, name, *arguments = rest.split("|")
        field = next(each for each in rows_of(deepest) if each.name == name).queryEditableText()
        tell(f"did {getattr(field, method)(*map(int, arguments))}")
    elif command == "where":
        area = next(each for each in rows_of(deepest) if each.name == rest).queryComponent().getExtents(0)
        tell(f"where {area.x} {area.y} {area.width} {area.height}")
    elif command == "connections":
        tell(f"connections {sum(count_of(each, int(rest)) for each in buses())}")
    tell("done " + line.rstrip("\n"))
    return True


def owner_changed(connection, sender, path, interface, signal, parameters):
    name, before, now = parameters.unpack()
    if name.startswith(":"):
        tell(f"came {name}" if now else f"left {name}")


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.signal_subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", None, None,
                     Gio.DBusSignalFlags.NONE, owner_changed)
GLib.io_add_watch(sys.stdin, GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, obey)
if mode == "watch":
    tell("ready")
    GLib.MainLoop().run()
else:
    bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
                  GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled",
                                         GLib.Variant("b", mode == "active"))),
                  None, Gio.DBusCallFlags.NONE, -1, None)
    import pyatspi
    pyatspi.Registry.registerEventListener(hear, "object:state-changed", "object:text-changed",
                                            "object:text-selection-changed")
    tell("ready")
    pyatspi.Registry.start(gil=False)
