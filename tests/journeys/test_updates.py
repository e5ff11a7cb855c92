"""A newer release: the window that offers it, and the updater that replaces the program."""

from __future__ import annotations

import time

from main_window import lines
from session import JourneyTest, Session
from waiting import wait_for

PLATE = "Доступна новая версия (0.9.0)"
AVAILABLE = "Доступно обновление"
UPDATE, CHECK, NOTES, CLOSE = "Обновить", "Проверить снова", "Что нового", "Закрыть"
START_ANYWAY = "Всё равно начать"
RUNS = "updates-run"
COUNT_ITSELF = f'echo run >>"$HOME/{RUNS}"\n'


def install_updater(session: Session, script=COUNT_ITSELF) -> None:
    (session.notes / "update.sh").write_text(script, "utf-8")


def runs(session: Session) -> int:
    """How often the updater has been started."""
    return len(lines(session.home / RUNS))


def checks(session: Session) -> int:
    return sum(request["path"] == "/app/version.json" for request in session.ask_web("/sandbox/requests"))


class Updates(JourneyTest):
    def test_whoever_closes_the_window_can_have_it_again(self):
        # While a recording runs, nothing is installed by itself.
        session = self.open_session(web=["--release", "0.9.0"], program=False, prefs={"notifications": False},
                                    state={"status": "recording", "since": time.time() - 60})
        install_updater(session)
        # The setup's last button looks for a release, without waiting for the first half minute to pass.
        session.start_program("--setup")
        session.press("push button", START_ANYWAY)
        session.wait_open()
        session.tree.wait("alert message", PLATE)
        for close in (lambda: session.press("push button", CLOSE), lambda: session.screen.key("Escape"),
                      session.close_window):
            before = checks(session)
            session.press("push button", UPDATE)
            session.tree.wait("status bar", AVAILABLE)
            session.wait_closed()
            wait_for(lambda: checks(session) == before + 1, "a new look with every opening")
            session.tree.wait("push button", CHECK)
            self.go_round(session)
            close()
            session.tree.wait_gone("status bar", AVAILABLE)
            session.open_panel()
        self.assertEqual(runs(session), 0)

    def go_round(self, session: Session) -> None:
        """By keyboard, from the buttons to the notes and out."""
        wait_for(lambda: session.tree.focus_is_on(UPDATE), "the focus on the first button")
        for name in (CHECK, NOTES, CLOSE, UPDATE):
            session.screen.key("Tab")
            wait_for(lambda: session.tree.focus_is_on(name), f"the focus on «{name}»", 3)

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
