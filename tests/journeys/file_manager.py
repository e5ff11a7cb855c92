#!/usr/bin/env python3
"""The desktop's file manager: notes the addresses that it is asked to show, a line each."""

from __future__ import annotations

import sys
from pathlib import Path

from gi.repository import Gio, GLib

NAME = "org.freedesktop.FileManager1"
PATH = "/org/freedesktop/FileManager1"
DESCRIPTION = f"""<node><interface name="{NAME}">
  <method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
</interface></node>"""


def main() -> None:
    noted = Path(sys.argv[1])

    def called(_bus, _sender, _path, _interface, _method, arguments, invocation) -> None:
        with noted.open("a", encoding="utf-8") as file:
            file.writelines(f"{uri}\n" for uri in arguments.unpack()[0])
        invocation.return_value(None)

    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0], called, None, None)
    Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
