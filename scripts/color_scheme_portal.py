#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Stands in for a desktop that prefers a color scheme: answers org.freedesktop.portal.Settings until it is killed.

   color_scheme_portal.py dark|light

Prints "ready" when it can be asked. It owns its name on the session bus, so that bus is one of its own."""
import sys

from gi.repository import Gio, GLib

SETTINGS = """<node><interface name="org.freedesktop.portal.Settings"><method name="Read">
  <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
</method></interface></node>"""


def main():
    scheme = GLib.Variant("u", {"dark": 1, "light": 2}[sys.argv[1]])
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    bus.register_object(
        "/org/freedesktop/portal/desktop", Gio.DBusNodeInfo.new_for_xml(SETTINGS).interfaces[0],
        lambda *call: call[-1].return_value(GLib.Variant("(v)", (GLib.Variant("v", scheme),))))
    Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop", Gio.BusNameOwnerFlags.NONE,
                                   lambda *_: print("ready", flush=True), None)
    GLib.MainLoop().run()


main()
