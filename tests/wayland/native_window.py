# A program with a GTK 3 window that fills what the compositor gives it. It writes what happens to it
# to a file, one event a line: "ready", "focus", "blur", "full screen", "press", "key NAME", of drags
# "offers ACTION...", "over", "left" and "got ADDRESS...", and "pasted TEXT" for each
# text that the clipboard has had.
#   native_window.py FILE
import sys
import gi
gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib, Gtk

record = open(sys.argv[1], "a", buffering=1)
told = set()
agreed = 0


def tell(line):
    record.write(line + "\n")


def pasted(clipboard, text):
    if text is not None and text not in told:
        told.add(text)
        tell("pasted " + text)


def over(widget, context, x, y, time):
    global agreed
    widget.get_display().sync()
    # The compositor knows the answer to an earlier motion before anybody lets go because of this.
    agreed = agreed + 1 if context.get_selected_action() else 0
    if agreed < 3:
        return
    tell("offers " + " ".join(context.get_actions().value_nicks))
    tell("over")


def paste():
    Gtk.Clipboard.get(Gdk.SELECTION_CLIPBOARD).request_text(pasted)
    return True


window = Gtk.Window(title="native")
window.set_default_size(300, 200)
window.add_events(Gdk.EventMask.BUTTON_PRESS_MASK)
window.drag_dest_set(Gtk.DestDefaults.ALL, [Gtk.TargetEntry.new("text/uri-list", 0, 0)],
                     Gdk.DragAction.COPY | Gdk.DragAction.MOVE | Gdk.DragAction.LINK)
window.connect("drag-motion", over)
window.connect("drag-leave", lambda *_: tell("left"))
window.connect("drag-data-received",
               lambda w, c, x, y, data, i, t: tell("got " + " ".join(data.get_uris())))
window.connect("window-state-event", lambda w, event: tell("full screen") if
               event.new_window_state & Gdk.WindowState.FULLSCREEN else None)
window.connect("map-event", lambda *_: tell("ready"))
window.connect("focus-in-event", lambda *_: tell("focus"))
window.connect("focus-out-event", lambda *_: tell("blur"))
window.connect("button-press-event", lambda *_: tell("press"))
window.connect("key-press-event", lambda w, event: tell("key " + Gdk.keyval_name(event.keyval)))
GLib.timeout_add(200, paste)
window.show_all()
Gtk.main()
