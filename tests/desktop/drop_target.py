# Another program to drop files on: a GTK 3 window. It writes its events to a file, one per line:
# "ready", "over", "left", "dropped", and "got" with the received addresses.
#   drop_target.py FILE X Y TYPE
import sys
import gi
gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, Gtk

record = open(sys.argv[1], "a", buffering=1)
left, top, kind = int(sys.argv[2]), int(sys.argv[3]), sys.argv[4]


def tell(line):
    record.write(line + "\n")


def over(widget, context, x, y, time):
    # The answer to the drag is on its way before anybody lets go because of this line.
    widget.get_display().sync()
    tell("over")
    return False


def dropped(*_):
    tell("dropped")
    return False


def got(widget, context, x, y, data, info, time):
    tell("got " + " ".join(data.get_uris()))


window = Gtk.Window(type=Gtk.WindowType.POPUP)
window.set_default_size(200, 150)
window.move(left, top)
window.drag_dest_set(Gtk.DestDefaults.ALL, [Gtk.TargetEntry.new(kind, 0, 0)],
                     Gdk.DragAction.COPY | Gdk.DragAction.MOVE | Gdk.DragAction.LINK)
window.connect("drag-motion", over)
window.connect("drag-leave", lambda *_: tell("left"))
window.connect("drag-drop", dropped)
window.connect("drag-data-received", got)
window.connect("map-event", lambda *_: tell("ready"))
window.show_all()
Gtk.main()
