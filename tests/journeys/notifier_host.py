#!/usr/bin/env python3
"""A desktop's StatusNotifier host: takes icons in, and prints the name of each that comes."""

from __future__ import annotations

from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"
DESCRIPTION = f"""<node><interface name="{NAME}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>"""


class Host:
    def __init__(self):
        self.items: list[str] = []
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        description = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0]
        self.bus.register_object(PATH, description, self.called, self.asked, None)
        Gio.bus_own_name_on_connection(self.bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)

    def called(self, _bus, sender, _path, _interface, method, arguments, invocation) -> None:
        invocation.return_value(None)
        if method != "RegisterStatusNotifierItem":
            return
        self.items.append(arguments.unpack()[0])
        print(sender, flush=True)
        self.bus.emit_signal(None, PATH, NAME, "StatusNotifierItemRegistered", GLib.Variant("(s)", (self.items[-1],)))

    def asked(self, _bus, _sender, _path, _interface, name) -> GLib.Variant:
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", self.items),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]


if __name__ == "__main__":
    host = Host()
    GLib.MainLoop().run()
