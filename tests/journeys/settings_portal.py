#!/usr/bin/env python3
"""The desktop's settings portal: tells the colour scheme and whether things may move.

A line such as "color-scheme 1" on standard input changes a setting and announces the change.
"""

from __future__ import annotations

import argparse
import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = "org.freedesktop.portal.Settings"
DESCRIPTION = f"""<node><interface name="{INTERFACE}">
  <method name="Read">
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
  </method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""
SPACES = {"color-scheme": "org.freedesktop.appearance", "reduced-motion": "org.freedesktop.appearance",
          "enable-animations": "org.gnome.desktop.interface", "text-scaling-factor": "org.gnome.desktop.interface"}
READERS = {"enable-animations": lambda text: GLib.Variant("b", text == "true"),
           "text-scaling-factor": lambda text: GLib.Variant("d", float(text))}


def value_of(key: str, text: str) -> GLib.Variant:
    return READERS.get(key, lambda number: GLib.Variant("u", int(number)))(text)


class Portal:
    def __init__(self, settings: dict[str, str]):
        self.settings = {key: value_of(key, text) for key, text in settings.items()}
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        description = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0]
        self.bus.register_object(PATH, description, self.called, None, None)
        Gio.bus_own_name_on_connection(self.bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)

    def called(self, _bus, _sender, _path, _interface, _method, arguments, invocation) -> None:
        space, key = arguments.unpack()
        if SPACES.get(key) != space or key not in self.settings:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "Requested setting not found")
            return
        # The method is old and its answer is wrapped twice, as everywhere.
        invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", self.settings[key]),)))

    def line_came(self, source, _condition) -> bool:
        line = source.readline()
        if not line:
            return False
        key, text = line.split()
        self.settings[key] = value_of(key, text)
        self.bus.emit_signal(None, PATH, INTERFACE, "SettingChanged",
                             GLib.Variant("(ssv)", (SPACES[key], key, self.settings[key])))
        return True


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("settings", nargs="*", metavar="KEY=VALUE")
    portal = Portal(dict(entry.split("=") for entry in parser.parse_args().settings))
    GLib.io_add_watch(sys.stdin, GLib.IO_IN | GLib.IO_HUP, portal.line_came)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
