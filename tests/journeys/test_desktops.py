"""Desktops whose bar takes the icon over D-Bus, on X11 and on Wayland."""

from __future__ import annotations

import re
import shutil
from pathlib import Path

from gi.repository import Gio, GLib

from session import PYTHON, REPOSITORY, JourneyTest
from waiting import wait_for

ITEM, ITEM_PATH = "org.kde.StatusNotifierItem", "/StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
NAME = "com.valdor.quillet.app"
IDLE = "murmeli-idle-symbolic"


class WithBar(JourneyTest):
    def setUp(self):
        self.session = self.open_session(tray=False, program=False, state={"status": "idle"})
        icons = self.session.home / ".local/share/icons/hicolor"
        shutil.copytree(REPOSITORY / "packaging/icons", icons / "scalable")
        (icons / "index.theme").write_text("[Icon Theme]\nName=Hicolor\nDirectories=scalable\n\n[scalable]\n"
                                           "Size=16\nType=Scalable\n", "utf-8")
        self.bus = Gio.DBusConnection.new_for_address_sync(
            self.session.environment["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self.addCleanup(self.bus.close_sync, None)

    def start_bar(self):
        self.log = self.session.folder / "bar.log"
        self.log.unlink(missing_ok=True)
        return self.session.start("bar", [PYTHON, str(Path(__file__).with_name("bar.py"))])

    def came(self, kind: str) -> list[str]:
        lines = self.log.read_text("utf-8").splitlines() if self.log.exists() else []
        return [line.partition(" ")[2] for line in lines if line.startswith(kind)]

    def owner(self) -> str:
        """Of the icon that has come last."""
        return wait_for(lambda: self.came("icon"), "the icon to come", 10)[-1]

    def call(self, path: str, interface: str, method: str, arguments: GLib.Variant | None = None):
        return self.bus.call_sync(self.owner(), path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 5000,
                                  None).unpack()

    def told(self, name: str):
        return self.call(ITEM_PATH, "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (ITEM, name)))[0]

    def menu(self) -> dict[str, int]:
        """Its entries, and by which number each is called."""
        layout = self.call(self.told("Menu"), MENU, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))[1]
        return {entry[1]["label"].replace("_", ""): entry[0] for entry in layout[2] if "label" in entry[1]}

    def choose(self, label: str) -> None:
        number = wait_for(lambda: self.menu().get(label), f"«{label}» in the menu")
        self.call(self.told("Menu"), MENU, "Event",
                  GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)))

    def activate(self) -> None:
        self.call(ITEM_PATH, ITEM, "Activate", GLib.Variant("(ii)", (1200, 10)))


class OverDBus(WithBar):
    def test_the_icon_its_menu_and_its_panel(self):
        self.session.environment["XDG_CURRENT_DESKTOP"] = "ubuntu:GNOME"
        bar = self.start_bar()
        self.session.start_program()
        wait_for(lambda: self.told("IconName") == IDLE, "the icon that the desktop recolours")
        self.assertEqual(self.told("ToolTip")[2], "Murmeli: Готов к записи")
        self.activate()
        self.session.wait_open()
        self.session.screen.key("Escape")
        self.session.wait_closed()
        self.choose("Открыть окно")
        self.session.tree.wait("frame", "Встречи")
        self.choose("Начать запись")
        wait_for(self.session.command_file.exists, "the request")
        self.session.write_state(status="recording", since=0)
        for name in ("murmeli-recording", "murmeli-recording-dim", "murmeli-recording"):
            wait_for(lambda name=name: self.told("IconName") == name, "the red icon to blink")
        wait_for(lambda: "Остановить запись" in self.menu(), "the menu to follow")

        with self.case("the desktop calls by the name"):
            self.session.close_window()
            self.session.tree.wait_gone("frame", "Встречи")
            self.bus.call_sync(NAME, "/" + NAME.replace(".", "/"), "org.freedesktop.Application", "ActivateAction",
                               GLib.Variant("(sava{sv})", ("window", [], {})), None, Gio.DBusCallFlags.NO_AUTO_START,
                               5000, None)
            self.session.tree.wait("frame", "Встречи")
        with self.case("the bar starts anew"):
            self.session.stop(bar)
            self.start_bar()
            self.assertEqual(self.told("ToolTip")[2], "Murmeli: Идёт запись")
        self.choose("Выйти из Murmeli")
        self.session.press("push button", "Выйти, запись продолжится")
        wait_for(lambda: self.session.program.poll() == 0, "the end")

    def test_a_bar_that_comes_late(self):
        self.session.start_program()
        self.session.tree.wait("frame", "Murmeli")  # the panel in a window of its own
        self.start_bar()
        wait_for(lambda: self.told("IconPixmap"), "the icon as it is drawn, for a bar that may not recolour it")
        self.assertEqual(self.told("IconName"), "")
        wait_for(lambda: self.session.wait_open().extents.x > 1000, "the panel in its corner")


class Wayland(WithBar):
    def setUp(self):
        super().setUp()
        self.start_bar()
        environment = self.session.environment
        self.session.start("weston", ["weston", "--no-config", "--backend=headless-backend.so", "--use-pixman",
                                      "--xwayland", "--socket=wayland"])
        log = self.session.folder / "weston.log"
        display = wait_for(lambda: re.search(r"xserver listening on display (:\d+)", log.read_text("utf-8")),
                           "the X server of the compositor", 10)[1]
        del environment["QT_QPA_PLATFORM"]
        environment.update(WAYLAND_DISPLAY="wayland", DISPLAY=display)

    def goes_through(self) -> None:
        """With nothing but the bar and the accessibility tree: nobody else has a hand in a Wayland session."""
        self.session.start_program()
        self.activate()
        self.session.wait_open().act("Press")
        wait_for(self.session.command_file.exists, "the request")
        self.activate()
        self.session.wait_closed()
        self.choose("Открыть окно")
        self.session.tree.wait("frame", "Встречи")
        self.session.write_state(status="recording", since=0)

    def test_through_its_x_server(self):
        self.goes_through()
        self.session.tree.wait("alert message", lambda name: name.startswith("Murmeli записывает встречу"))
        self.assertEqual(self.came("notification"), [])

    def test_natively(self):
        self.session.environment.update(QT_QPA_PLATFORM="wayland",
                                        QT_IM_MODULE="compose")  # Qt's own asks for a seat, and this one has none
        self.goes_through()
        wait_for(lambda: self.came("notification") == ["Murmeli записывает встречу"], "the desktop's notification")
        self.assertIsNone(self.session.tree.find("alert message"), "a window that nobody can place")
