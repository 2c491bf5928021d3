"""A GTK 4 application with a text field, for tests: Debian has no small one that saves.

gtk4_editor.py FILE: FILE always holds the text; FILE.keys gets a line for each key that comes with
a modifier, such as "Super-x".
"""

import sys

import gi

gi.require_version("Gdk", "4.0")
gi.require_version("Gtk", "4.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

NAMES = [
    (Gdk.ModifierType.CONTROL_MASK, "Control-"),
    (Gdk.ModifierType.ALT_MASK, "Alt-"),
    (Gdk.ModifierType.SHIFT_MASK, "Shift-"),
    (Gdk.ModifierType.SUPER_MASK, "Super-"),
]
path = sys.argv[1]


def changed(buffer):
    text = buffer.get_text(buffer.get_start_iter(), buffer.get_end_iter(), False)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def pressed(_controller, key, _code, state):
    held = "".join(name for mask, name in NAMES if state & mask)
    if held:
        with open(path + ".keys", "a", encoding="utf-8") as file:
            file.write(held + Gdk.keyval_name(key) + "\n")
    return False


def activated(app):
    view = Gtk.TextView()
    view.get_buffer().connect("changed", changed)
    keys = Gtk.EventControllerKey()
    keys.set_propagation_phase(Gtk.PropagationPhase.CAPTURE)
    keys.connect("key-pressed", pressed)
    window = Gtk.ApplicationWindow(application=app, title="GTK 4", child=view)
    window.add_controller(keys)
    window.present()


GLib.set_prgname("gtk4-editor")  # the class of its window
application = Gtk.Application(application_id="org.gromlit.Gtk4Editor", flags=1 << 5)
application.connect("activate", activated)
application.run([])
