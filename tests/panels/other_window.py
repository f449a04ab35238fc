#!/usr/bin/python3
"""A window of another program, in one colour, as large as the desktop lets it be."""

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402

style = Gtk.CssProvider()
style.load_from_data(b"window { background: #c020c0; }")
Gtk.StyleContext.add_provider_for_screen(Gdk.Screen.get_default(), style, Gtk.STYLE_PROVIDER_PRIORITY_USER)
window = Gtk.Window(title="Another window")
window.connect("destroy", Gtk.main_quit)
# Some desktops forget at times that it is to be maximized.
window.set_default_size(1200, 700)
window.maximize()
window.show_all()
Gtk.main()
