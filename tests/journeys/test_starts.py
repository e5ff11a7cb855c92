"""How Murmeli starts and ends: once only, with and without a tray, without a home, from the panel and the menu."""

from __future__ import annotations

import tray
from screen import Rectangle
from session import JourneyTest, Session
from waiting import stays, wait_for

QUIT = "Выйти из Murmeli (снова открыть — через меню приложений)"
WINDOW = "Murmeli"


def window_is_active(session: Session) -> bool:
    frame = session.tree.find("frame", WINDOW)
    return frame is not None and "active" in frame.states


def close_window(session: Session) -> None:
    wait_for(session.screen.has_active_window, "the window manager to know the window")
    session.screen.key("alt+F4")
    wait_for(lambda: not session.screen.windows(), "the window to close")


class SecondStart(JourneyTest):
    def test_it_ends_at_once_and_the_first_stays(self):
        session = self.open_session(state={"status": "idle"})
        again = session.run_program()
        self.assertEqual((again.returncode, again.stdout, again.stderr), (0, b"", b""))
        stays(lambda: session.program.poll() is None and not session.screen.windows(), "the first one, undisturbed", 1)
        session.open_panel()

    def test_without_a_tray_it_brings_the_window_forward(self):
        session = self.open_session(tray=False)
        wait_for(lambda: window_is_active(session), "the window")
        close_window(session)
        self.assertIsNone(session.program.poll(), "closing the window does not end Murmeli")
        again = session.run_program()
        self.assertEqual((again.returncode, again.stdout, again.stderr), (0, b"", b""))
        wait_for(lambda: window_is_active(session), "the window to come back")

    def test_a_crash_leaves_nothing_in_the_way(self):
        session = self.open_session()
        session.program.kill()
        session.program.wait(5)
        wait_for(lambda: not session.screen.icon(), "the tray to drop the icon")
        session.start_program()
        self.assertEqual(session.run_program().returncode, 0)
        session.open_panel()


class WithoutTray(JourneyTest):
    def test_the_panel_comes_as_an_ordinary_window(self):
        session = self.open_session(tray=False, engine=["--processing-seconds", "0.5"])
        wait_for(lambda: window_is_active(session), "the window")
        session.tree.wait("label", "Готов к записи")
        session.press("push button", "Начать запись")
        session.tree.wait("label", "Идёт запись")
        session.screen.key("space")
        wait_for(lambda: session.status() == "idle", "the meeting to be done")

    def test_a_tray_that_comes_later_gets_the_icon(self):
        session = self.open_session(tray=False)
        wait_for(lambda: window_is_active(session), "the window")
        close_window(session)
        session.start_tray()
        session.open_panel()
        session.press_icon()
        session.wait_closed()

    def test_the_flag_brings_the_window_where_there_is_no_icon(self):
        session = self.open_session(tray=False)
        wait_for(lambda: window_is_active(session), "the window")
        close_window(session)
        session.write(session.flag_file, "")
        session.tree.wait("alert message", lambda name: name.startswith("Не найден пользователь"))

    def test_a_tray_that_is_restarted_gets_the_icon_again(self):
        session = self.open_session(tray=False, program=False)
        first = session.start_tray()
        session.start_program()
        session.icon()
        session.stop(first)
        wait_for(lambda: not session.screen.icon(), "the icon to go with the tray")
        session.start_tray()
        session.open_panel()


class WithoutHome(JourneyTest):
    def test_one_clear_line(self):
        session = self.open_session(program=False)
        unset = {key: value for key, value in session.environment.items() if key != "HOME"}
        for label, environment in {
            "unset": unset,
            "empty": {**unset, "HOME": ""},
            "missing": {**unset, "HOME": "/nonexistent"},
            "a file": {**unset, "HOME": "/etc/passwd"},
        }.items():
            with self.case(label):
                ended = session.run_program(environment=environment)
                self.assertEqual((ended.returncode, ended.stdout), (1, b""))
                self.assertRegex(ended.stderr.decode(), r"\Amurmeli: [^\n]*\bhome\b[^\n]*\n\Z")


class Ending(JourneyTest):
    def assert_ended(self, session: Session) -> None:
        self.assertEqual(session.program.wait(5), 0)
        wait_for(lambda: not session.screen.icon(), "the icon to go")

    def test_by_the_power_button(self):
        session = self.open_session()
        session.open_panel()
        session.press("push button", QUIT)
        self.assert_ended(session)

    def test_by_the_power_button_while_recording(self):
        session = self.open_session(engine=[])
        session.open_panel()
        session.press("push button", "Начать запись")
        session.tree.wait("label", "Идёт запись")
        session.press("push button", QUIT)
        self.assert_ended(session)
        stays(lambda: session.status() == "recording", "the recording, which is the service's", 0.5)

    def test_by_the_icon_menu(self):
        session = self.open_session()
        open_menu(session)
        choose(session, "Up")  # the last one
        self.assert_ended(session)


class IconMenu(JourneyTest):
    def test_record_and_stop(self):
        session = self.open_session(engine=["--processing-seconds", "0.5"], prefs={"notifications": False})
        open_menu(session)
        choose(session, "Down")
        wait_for(lambda: session.status() == "recording", "the service to record")
        wait_for(lambda: tray.is_bright_red(session), "the red icon")
        open_menu(session)
        choose(session, "Down")
        wait_for(lambda: list(session.logs.glob("*.json")), "the meeting's summary")

    def test_open_the_panel_and_leave_the_menu_alone(self):
        session = self.open_session(state={"status": "idle"})
        open_menu(session)
        session.screen.key("Escape")
        wait_for(lambda: not session.screen.windows(), "the menu to close")
        self.assertFalse(session.command_file.exists())
        open_menu(session)
        choose(session, "Down", "Down")
        session.wait_open()
        self.assertFalse(session.command_file.exists())


def open_menu(session: Session) -> None:
    session.press_icon(button=3)
    menu = wait_for(lambda: session.screen.windows(), "the menu")[0]
    screen = Rectangle(0, 0, 1280, 900)
    if not screen.contains(menu):
        raise AssertionError(f"the menu reaches off the screen: {menu}")
    session.look_away()


def choose(session: Session, *keys: str) -> None:
    session.screen.key(*keys, "Return")
