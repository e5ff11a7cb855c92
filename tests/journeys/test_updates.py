"""A newer release: how it is offered, when it is installed, and what the window says and does."""

from __future__ import annotations

import time

from session import JourneyTest, Session
from waiting import stays, wait_for

PLATE = "Доступна новая версия (0.9.0)"
UPDATE = "Обновить"
INSTALLING = "Устанавливаем…"
CHECK = "Проверить снова"
AVAILABLE = "Доступно обновление"
FAILED = "Не удалось проверить"
CLOSE = "Закрыть"
NOTES = "Что нового"
START_ANYWAY = "Всё равно начать"
RUNS = "updates-run"
COUNT_ITSELF = f'echo run >>"$HOME/{RUNS}"\n'


def install_updater(session: Session, script=COUNT_ITSELF) -> None:
    (session.notes / "update.sh").write_text(script, "utf-8")


def runs(session: Session) -> int:
    """How often the updater has been started."""
    file = session.home / RUNS
    return len(file.read_text("utf-8").splitlines()) if file.exists() else 0


def checks(session: Session) -> int:
    return sum(request["path"] == "/app/version.json" for request in session.ask_web("/sandbox/requests"))


def publish(session: Session, **release) -> None:
    session.ask_web("/sandbox/release", release)


def start_with_a_check(session: Session, *, last_button=START_ANYWAY) -> None:
    """The setup's last button looks for a release, without waiting for the first half minute to pass."""
    session.start_program("--setup")
    session.tree.wait("push button", last_button)
    wait_for(lambda: session.tree.focus_is_on(last_button), "the focus on the last button")
    session.screen.key("Return")
    session.wait_open()


def wait_window(session: Session, title: str) -> None:
    session.tree.wait("status bar", title)


def recording_session(test: JourneyTest, **options) -> Session:
    session = test.open_session(web=["--release", "0.9.0"], program=False,
                                state={"status": "recording", "since": time.time() - 60},
                                prefs={"notifications": False}, **options)
    install_updater(session)
    return session


class WhileRecording(JourneyTest):
    def test_it_waits_until_the_recording_is_over(self):
        session = self.open_session(engine=["--processing-seconds", "0.5"], web=["--release", "0.9.0"], program=False,
                                    prefs={"notifications": False})
        install_updater(session)
        session.write(session.command_file, {"action": "start", "ts": time.time()})
        wait_for(lambda: session.status() == "recording", "the service to record")
        start_with_a_check(session)
        session.tree.wait("alert message", PLATE)
        self.assertEqual(checks(session), 1)
        stays(lambda: runs(session) == 0, "no update during the recording", 1)
        session.press("push button", UPDATE)
        wait_window(session, AVAILABLE)
        session.wait_closed()
        wait_for(lambda: checks(session) == 2, "the window to look again")
        session.tree.wait("label", "Доступна новая версия (0.9.0)")
        stays(lambda: runs(session) == 0, "no update during the recording", 1)
        session.press("push button", CLOSE)
        session.tree.wait_gone("status bar", AVAILABLE)

        session.open_panel()
        session.press("push button", "Остановить запись")
        wait_for(lambda: session.status() == "idle", "the meeting to be done")
        session.tree.wait("label", "Готов к записи")
        session.press("push button", UPDATE)
        session.tree.wait("push button", INSTALLING)
        session.tree.wait("label", "Ставим обновление — приложение перезапустится само")
        wait_for(lambda: runs(session) == 1, "the updater to run")
        session.press("push button", CHECK)
        wait_for(lambda: checks(session) == 4, "one more look")
        session.press("push button", INSTALLING)
        stays(lambda: runs(session) == 1 and session.tree.find("push button", INSTALLING), "one updater only", 1)
        session.open_panel()
        self.assertEqual(len(session.tree.all("push button", INSTALLING)), 2, "on the plate too")

    def test_by_keyboard_alone_in_english(self):
        session = recording_session(self, language="en")
        publish(session, notes="Recording starts twice as fast.\n\nLong protocols are shorter.", released="28 November")
        session.look_away()
        start_with_a_check(session, last_button="Start anyway")
        session.tree.wait("alert message", "A new version is available (0.9.0)")
        wait_for(lambda: session.tree.focus_is_on("Stop recording"), "the focus on the orb")
        session.screen.key("shift+Tab")
        wait_for(lambda: session.tree.focus_is_on("Update"), "the focus on the plate")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Return")
        wait_window(session, "Update available")
        session.wait_closed()
        wait_for(lambda: session.tree.focus_is_on("Update"), "the focus on the first button")
        session.tree.wait("label", "Recording starts twice as fast.")
        session.tree.wait("label", "Version 0.8.0, 0.9.0 is available released 28 November")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Escape")
        session.tree.wait_gone("status bar", "Update available")
        self.assertEqual(runs(session), 0)


class Checking(JourneyTest):
    def open_window(self) -> Session:
        session = recording_session(self)
        start_with_a_check(session)
        session.tree.wait("alert message", PLATE)
        session.press("push button", UPDATE)
        wait_window(session, AVAILABLE)
        return session

    def test_what_is_wrong_is_said_and_the_next_look_is_right(self):
        session = self.open_window()
        session.tree.wait("label", "Версия 0.8.0, доступна 0.9.0 от 28 ноября 2026")
        session.tree.wait("label", lambda name: name.startswith("Исправлено: после сна компьютера"))
        session.tree.wait("label", lambda name: name.startswith("Проверено в "))
        for fault in ("reset", "status=503", "html", "cut", "garbage", "array", "huge=400000"):
            with self.case(fault):
                session.ask_web("/sandbox/faults", {"path": "/app/version.json", "fault": fault})
                session.press("push button", CHECK)
                wait_window(session, FAILED)
                session.tree.wait("label", "Сервер обновлений не ответил — попробуйте позже")
                session.ask_web("/sandbox/faults", {})
                session.press("push button", CHECK)
                wait_window(session, AVAILABLE)
        session.ask_web("/sandbox/faults", {"path": "/app/version.json", "fault": "delay=0.7"})
        session.press("push button", CHECK)
        wait_window(session, "Проверяем обновления")
        session.tree.wait("push button", "Проверяем…")
        wait_window(session, AVAILABLE)
        publish(session, version="0.8.0", notes="", released="")
        session.press("push button", CHECK)
        wait_window(session, "Версия актуальна")
        session.tree.wait("label", "У вас последняя версия (0.8.0)")
        session.tree.wait("label", "Описание появится со следующей версией")
        self.assertFalse(session.tree.find("push button", UPDATE))
        self.assertEqual(runs(session), 0)

    def test_the_keyboard_goes_from_the_buttons_to_the_notes_and_out(self):
        session = self.open_window()
        wait_for(lambda: checks(session) == 2, "the window's own look")
        session.tree.wait("push button", CHECK)
        wait_for(lambda: session.tree.focus_is_on(UPDATE), "the focus on the first button")
        for key, names in (("Tab", (CHECK, NOTES, CLOSE, UPDATE)), ("shift+Tab", (CLOSE, NOTES, CHECK, UPDATE))):
            for name in names:
                session.screen.key(key)
                wait_for(lambda: session.tree.focus_is_on(name), f"{key} to lead to «{name}»", 3)
        session.screen.key("shift+Tab", "Return")
        session.tree.wait_gone("status bar", AVAILABLE)
        self.assertEqual(runs(session), 0)

    def test_whoever_closes_it_can_have_it_again(self):
        session = self.open_window()
        closings = (lambda: session.press("push button", CLOSE), lambda: session.screen.key("Escape"),
                    lambda: session.screen.key("alt+F4"))
        for close in closings:
            wait_for(session.screen.has_active_window, "the window manager to know the window")
            close()
            session.tree.wait_gone("status bar", AVAILABLE)
            before = checks(session)
            session.open_panel()
            session.press("push button", UPDATE)
            wait_window(session, AVAILABLE)
            wait_for(lambda: checks(session) == before + 1, "a new look with every opening")

    def test_the_updater_outlives_the_program_it_replaces(self):
        session = self.open_session(web=["--release", "0.9.0"], program=False, state={"status": "idle"})
        pid = session.home / "pid"
        install_updater(session, f"""
            echo run >>"$HOME/{RUNS}"
            program=$(cat "{pid}")
            kill "$program"
            while kill -0 "$program"; do sleep 0.05; done
            echo run >>"$HOME/{RUNS}"
        """)
        session.start_program("--setup")
        pid.write_text(str(session.program.pid), "ascii")
        session.press("push button", START_ANYWAY)
        session.program.wait(10)
        wait_for(lambda: runs(session) == 2, "the updater to come to its end")
