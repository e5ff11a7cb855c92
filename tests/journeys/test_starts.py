"""How Murmeli starts and ends: once only, with and without a tray or a home, and on a desktop that never answers."""

from __future__ import annotations

import socket

import tray
from screen import Rectangle
from session import PROGRAM, JourneyTest, Session
from waiting import stays, wait_for


class Starting(JourneyTest):
    def test_a_second_start_ends_at_once_and_the_first_stays(self):
        session = self.open_session(state={"status": "idle"})
        again = session.run_program()
        self.assertEqual((again.returncode, again.stdout, again.stderr), (0, b"", b""))
        stays(lambda: session.program.poll() is None and not session.screen.windows(), "the first one, undisturbed", 1)
        session.run_program("--window")
        session.tree.wait("frame", "Встречи")
        wait_for(session.screen.has_active_window, "the window manager to know the window")
        session.screen.key("ctrl+w")
        session.tree.wait_gone("frame", "Встречи")
        session.open_panel()

    def test_without_a_home_it_says_so_in_one_line(self):
        session = self.open_session(program=False)
        unset = {key: value for key, value in session.environment.items() if key != "HOME"}
        for label, environment in (("unset", unset), ("empty", {**unset, "HOME": ""}),
                                   ("missing", {**unset, "HOME": "/nonexistent"}),
                                   ("a file", {**unset, "HOME": "/etc/passwd"})):
            with self.case(label):
                ended = session.run_program(environment=environment)
                self.assertEqual((ended.returncode, ended.stdout), (1, b""))
                self.assertRegex(ended.stderr.decode(), r"\Amurmeli: [^\n]*\bhome\b[^\n]*\n\Z")

    def test_a_session_bus_that_never_answers_holds_up_nothing(self):
        for backlog, label in ((8, "takes calls"), (0, "takes none")):
            with self.case(label):
                session = self.open_session(program=False, state={"status": "idle"})
                dead = socket.socket(socket.AF_UNIX)
                self.addCleanup(dead.close)
                path = str(session.home / "bus")
                dead.bind(path)
                dead.listen(backlog)
                waiting = socket.socket(socket.AF_UNIX)  # with no room in the queue, nobody else gets in
                self.addCleanup(waiting.close)
                waiting.connect(path)
                session.start("murmeli", [str(PROGRAM)],
                              environment={**session.environment, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={path}"})
                icon = wait_for(session.screen.icon, "the icon", 6)
                session.screen.click(*icon.middle)
                wait_for(lambda: any(box.width > 300 and box.height > 400 for box in session.screen.windows()),
                         "the panel", 3)
                session.close()


class WithoutTray(JourneyTest):
    def wait_window(self, session: Session) -> None:
        wait_for(lambda: (frame := session.tree.find("frame", "Murmeli")) and "active" in frame.states, "the window")

    def close(self, session: Session) -> None:
        session.close_window()
        wait_for(lambda: not session.screen.windows(), "the window to close")

    def test_the_panel_comes_as_an_ordinary_window(self):
        session = self.open_session(tray=False, state={"status": "idle"})
        self.wait_window(session)
        session.press("push button", "Начать запись")
        wait_for(session.command_file.exists, "the request")
        self.close(session)
        self.assertIsNone(session.program.poll(), "closing the window does not end Murmeli")
        with self.case("a second start brings it forward"):
            again = session.run_program()
            self.assertEqual((again.returncode, again.stdout, again.stderr), (0, b"", b""))
            self.wait_window(session)
            self.close(session)
        with self.case("so does what has to be told"):
            session.write(session.flag_file, "")
            session.tree.wait("alert message", lambda name: name.startswith("Не найден пользователь"))
        with self.case("with the window open it ends as well"):
            session.program.terminate()
            self.assertEqual(session.program.wait(5), 0)

    def test_a_tray_that_comes_later_or_again_gets_the_icon(self):
        session = self.open_session(tray=False)
        self.wait_window(session)
        self.close(session)
        first = session.start_tray()
        session.open_panel()
        session.press_icon()
        session.wait_closed()
        session.stop(first)
        wait_for(lambda: not session.screen.icon(), "the icon to go with the tray")
        session.start_tray()
        session.open_panel()


class IconMenu(JourneyTest):
    def choose(self, session: Session, *keys: str) -> None:
        session.press_icon(button=3)
        menu = wait_for(session.screen.windows, "the menu")[0]
        self.assertTrue(Rectangle(0, 0, 1280, 900).contains(menu), f"the menu reaches off the screen: {menu}")
        session.look_away()
        session.screen.key(*keys)
        wait_for(lambda: menu not in session.screen.windows(), "the menu to close")

    def test_from_the_record_to_the_end(self):
        session = self.open_session(engine=["--processing-seconds", "0.5"], prefs={"notifications": False})
        self.choose(session, "Escape")
        self.choose(session, "Down", "Return")
        wait_for(lambda: session.status() == "recording", "the service to record")
        wait_for(lambda: tray.is_bright_red(session), "the red icon")
        self.choose(session, "Up", "Return")  # the last one, which asks first
        session.press("push button", "Отмена")
        session.tree.wait_gone("push button", "Отмена")
        self.choose(session, "Down", "Return")
        wait_for(lambda: session.status() == "idle", "the meeting to be done")
        self.assertEqual(len(list(session.logs.glob("*.protocol.json"))), 1)
        wait_for(lambda: tray.is_template(session), "the icon at rest")
        self.choose(session, "Down", "Down", "Return")
        session.wait_open()
        session.press_icon()
        session.wait_closed()
        self.choose(session, "Up", "Return")
        self.assertEqual(session.program.wait(5), 0)
        wait_for(lambda: not session.screen.icon(), "the icon to go")
