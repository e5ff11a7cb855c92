#!/usr/bin/env python3
"""A desktop's bar: takes icons and notifications in over D-Bus, and prints whose icon and which title comes."""

from __future__ import annotations

from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
NOTIFICATIONS = "org.freedesktop.Notifications"
PATH = "/StatusNotifierWatcher"
DESCRIPTION = f"""<node><interface name="{NAME}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface><interface name="{NOTIFICATIONS}">
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
  </method>
</interface></node>"""


class Bar:
    def __init__(self):
        self.items: list[str] = []
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        icons, notifications = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces
        self.bus.register_object(PATH, icons, self.called, self.asked, None)
        self.bus.register_object("/org/freedesktop/Notifications", notifications, self.notified, None, None)
        for name in (NOTIFICATIONS, NAME):
            Gio.bus_own_name_on_connection(self.bus, name, Gio.BusNameOwnerFlags.NONE, None, None)

    def called(self, _bus, sender, _path, _interface, method, arguments, invocation) -> None:
        invocation.return_value(None)
        if method != "RegisterStatusNotifierItem":
            return
        self.items.append(arguments.unpack()[0])
        print("icon", sender, flush=True)
        self.bus.emit_signal(None, PATH, NAME, "StatusNotifierItemRegistered", GLib.Variant("(s)", (self.items[-1],)))

    def notified(self, _bus, _sender, _path, _interface, _method, arguments, invocation) -> None:
        print("notification", arguments.unpack()[3], flush=True)
        invocation.return_value(GLib.Variant("(u)", (1,)))

    def asked(self, _bus, _sender, _path, _interface, name) -> GLib.Variant:
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", self.items),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]


if __name__ == "__main__":
    bar = Bar()
    GLib.MainLoop().run()
