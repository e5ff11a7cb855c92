"""The first minutes: the engine is installed and the permissions are given in front of the user, or not."""

from __future__ import annotations

import os
import shutil
import signal

from main_window import QUIT
from session import PROGRAM, REPOSITORY, JourneyTest, Session
from waiting import settles, wait_for

TITLE = "Готовим Murmeli"
DONE = "Murmeli готов"
FAILED = "Установка прервалась"
ALLOW_MICROPHONE, MICROPHONE_GRANTED = "Разрешить: Микрофон", "Микрофон, доступ есть"
ALLOW_SCREEN, SCREEN_GRANTED = "Разрешить: Запись экрана", "Запись экрана, доступ есть"
NOWHERE = "У этого рабочего стола нет страницы для таких разрешений."
STEPS = ["Подготовка системы", "Приложение", "Среда Python", "Движок записи", "Распознавание речи", "Модели",
         "Фоновая служба"]
QUICK_ENGINE = ["--engine-arguments=--poll-seconds 0.05 --processing-seconds 0.4"]


class Installing(JourneyTest):
    def test_nobody_answers_at_first(self):
        session = self.open_session(notes=False, program=False, web=QUICK_ENGINE)
        session.stop(session.web)
        session.start_program()
        session.tree.wait("heading", FAILED)
        session.tree.wait("alert message", lambda name: name.startswith("curl: ("))
        session.press("push button", "Журнал")
        log = session.home / ".local/state/murmeli/setup.log"
        wait_for(lambda: session.opened_urls() == [f"file://{log}"], "the log to open")
        session.start_web("--port", session.origin.rpartition(":")[2], *QUICK_ENGINE)
        session.press("push button", "Повторить")
        session.tree.wait("heading", DONE, 15)
        for label in STEPS:
            session.tree.wait("list item", f"{label}, готово")

    def test_closing_the_window_does_not_end_it(self):
        session = self.open_session(notes=False, program=False, web=[*QUICK_ENGINE, "--pace", "0.4"])
        session.start_program()
        session.tree.wait("heading", TITLE)
        figure = session.tree.wait("progress bar").name
        session.tree.wait("progress bar", lambda name: name != figure)
        session.close_window()
        session.tree.wait_gone("heading")
        session.open_panel()
        session.press_icon()
        session.wait_closed()
        self.assertFalse(session.state_file.exists(), "the installation is still at work")
        session.tree.wait("heading", DONE, 15)
        wait_for(lambda: "active" in session.tree.wait("frame", TITLE).states, "the window to be in front")

    def test_quitting_ends_all_that_it_began(self):
        works, fetched = ["--pace", "60"], ["--fault", "/app/install.sh=hang"]
        for label, web, at_work, number in (("while a step works", works, "sleep 60", None),
                                            ("while the installer is fetched", fetched, "curl ", None),
                                            ("terminated", works, "sleep 60", signal.SIGTERM),
                                            ("interrupted", works, "sleep 60", signal.SIGINT),
                                            ("its terminal gone", works, "sleep 60", signal.SIGHUP)):
            with self.case(label):
                session = self.open_session(notes=False, program=False, web=web)
                others = session.processes_in_home()
                session.start_program()
                session.tree.wait("heading", TITLE)
                # A shell, its pipeline, and what that runs.
                wait_for(lambda: any(at_work in line for line in session.processes_in_home().values()), at_work)
                self.assertGreater(len(session.processes_in_home().keys() - others.keys()), 2)
                if number:
                    os.kill(session.program.pid, number)
                else:
                    session.open_panel()
                    session.press("push button", QUIT)
                self.assertEqual(session.program.wait(5), 0)
                self.assertLessEqual(session.processes_in_home().keys(), others.keys())
                session.close()


class Permissions(JourneyTest):
    def open_session_with_recorder(self) -> Session:
        session = self.open_session(program=False, state={"status": "idle"})
        (session.notes / "pipeline").mkdir()
        shutil.copy(REPOSITORY / "sandbox" / "native_rec.py", session.notes / "pipeline")
        return session

    def decide(self, session: Session, **permissions) -> None:
        """What the recorder may do from now on, and what a person says when asked."""
        session.write(session.notes / ".sandbox-permissions.json", permissions)

    def test_whoever_comes_back_sees_what_holds_now(self):
        session = self.open_session_with_recorder()
        self.decide(session, microphone="notDetermined", screen=False)
        session.start_program("--setup")
        session.tree.wait("push button", ALLOW_MICROPHONE)
        self.go_elsewhere(session)
        self.decide(session, microphone="authorized", screen=True)
        session.screen.click(*session.tree.wait("heading").extents.middle)
        session.tree.wait("panel", MICROPHONE_GRANTED)
        session.tree.wait("panel", SCREEN_GRANTED)

    def go_elsewhere(self, session: Session) -> None:
        """To a window of another program."""
        session.start("other", ["xev", "-name", "Another program", "-geometry", "200x150+20+600"])
        wait_for(lambda: session.screen.has_window("Another program"), "the other window")
        session.screen.click(120, 680)
        wait_for(lambda: "active" not in session.tree.wait("frame").states, "the other window to be active")

    def test_a_desktop_without_settings_says_so_in_sight(self):
        session = self.open_session_with_recorder()
        self.decide(session, microphone="notDetermined", screen=False, answer_screen=False)
        # What else is installed on this machine is none of this desktop's.
        session.program = session.start("murmeli", ["env", f"PATH={session.folder}/bin", str(PROGRAM), "--setup"])
        session.tree.follow(session.program.pid)
        session.press("push button", ALLOW_SCREEN)

        def in_sight() -> bool:
            top = session.tree.wait("frame").extents.y
            bottom = session.tree.wait("push button", "Всё равно начать").extents.y
            note = session.tree.wait("alert message", lambda name: name.startswith(NOWHERE)).extents
            return top <= note.y and note.bottom <= bottom

        settles(in_sight, "the latest note above the buttons")
