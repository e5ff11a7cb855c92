"""The two permissions in the setup's window: who is asked, when, and where a refusal leads."""

from __future__ import annotations

import shutil

from session import PROGRAM, REPOSITORY, JourneyTest, Session
from waiting import settles, stays, wait_for

DONE = "Murmeli готов"
ALLOW_MICROPHONE = "Разрешить: Микрофон"
ALLOW_SCREEN = "Разрешить: Запись экрана"
MICROPHONE_SETTINGS = "Открыть Настройки: Микрофон"
MICROPHONE_GRANTED = "Микрофон, доступ есть"
SCREEN_GRANTED = "Запись экрана, доступ есть"
STALE = "Если в «Настройках» → «Запись экрана» уже есть "
NOWHERE = "У этого рабочего стола нет страницы для таких разрешений."
OTHER = "Another program"
SETTINGS_RECORDER = '#!/bin/sh\nprintf "%s\\n" "$*" >> "{file}"\n'
PERSON = {"microphone": "notDetermined", "screen": False, "answer_microphone": "authorized", "answer_screen": True,
          "think_seconds": 0.3}


def prepare(test: JourneyTest, *, settings=True, state="idle", language="ru", **permissions) -> Session:
    """An installed engine with its recorder, and a desktop that may have settings."""
    session = test.open_session(program=False, language=language, state={"status": state})
    (session.notes / "pipeline").mkdir()
    shutil.copy(REPOSITORY / "sandbox" / "native_rec.py", session.notes / "pipeline")
    decide(session, **permissions)
    if settings:
        tool = session.folder / "bin" / "gnome-control-center"
        tool.write_text(SETTINGS_RECORDER.format(file=session.folder / "settings"), "utf-8")
        tool.chmod(0o700)
    return session


def decide(session: Session, **permissions) -> None:
    """What the recorder may do from now on, and what a person says when asked."""
    session.write(session.notes / ".sandbox-permissions.json", {**PERSON, **permissions})


def start(session: Session) -> None:
    session.start_program("--setup")
    session.tree.wait("heading", ("Murmeli готов", "Murmeli is ready"))


def start_without_settings(session: Session) -> None:
    """What else is installed on this machine is none of this desktop's."""
    session.program = session.start("murmeli", ["env", f"PATH={session.folder}/bin", str(PROGRAM), "--setup"])
    session.tree.follow(session.program.pid)


def recorder_calls(session: Session) -> list[str]:
    log = session.notes / ".sandbox-recorder-calls.log"
    return log.read_text("utf-8").splitlines() if log.exists() else []


def wait_calm(session: Session) -> list[str]:
    """The recorder's calls once nobody asks any more: a window that appears asks, and asks again when it is active."""
    settles(lambda: "active" in session.tree.wait("frame").states and rests(session), "the recorder to be left alone")
    return recorder_calls(session)


def rests(session: Session) -> bool:
    return not any("native_rec.py" in line for line in session.processes_in_home().values())


def settings_opened(session: Session) -> list[str]:
    file = session.folder / "settings"
    return file.read_text("utf-8").splitlines() if file.exists() else []


def go_elsewhere(session: Session) -> None:
    """To a window of another program."""
    if not session.screen.has_window(OTHER):
        session.start("other", ["xev", "-name", OTHER, "-geometry", "200x150+20+600"])
        wait_for(lambda: session.screen.has_window(OTHER), "the other window")
    session.screen.click(120, 680)
    wait_for(lambda: "active" not in session.tree.wait("frame").states, "the other window to be active")


def come_back(session: Session) -> None:
    session.screen.click(*session.tree.wait("heading").extents.middle)
    wait_for(lambda: "active" in session.tree.wait("frame").states, "our window to be active")


class Microphone(JourneyTest):
    def test_a_refusal_leads_to_the_settings_and_asks_nobody(self):
        for refusal in ("denied", "restricted"):
            with self.case(refusal):
                session = prepare(self, microphone=refusal, screen=True)
                start(session)
                session.tree.wait("panel", SCREEN_GRANTED)
                session.tree.wait("label", "Не хватает: Микрофон")
                calls = wait_calm(session)
                self.assertEqual(set(calls), {"--status"})
                session.press("push button", MICROPHONE_SETTINGS)
                wait_for(lambda: settings_opened(session) == ["microphone"], "the settings")
                stays(lambda: recorder_calls(session) == calls, "nobody is asked", 0.7)
                self.assertFalse(session.tree.find("alert message", lambda name: name.startswith(NOWHERE)))
                session.close()

    def test_a_recorder_that_breaks_is_no_end(self):
        session = prepare(self, broken=True)
        start(session)
        session.tree.wait("push button", ALLOW_SCREEN)
        session.press("push button", ALLOW_MICROPHONE)
        wait_for(lambda: settings_opened(session) == ["microphone"], "the settings")
        session.tree.wait("status bar", "Не хватает разрешений — запись встреч не начнётся")
        decide(session)
        session.press("push button", ALLOW_MICROPHONE)
        session.tree.wait("panel", MICROPHONE_GRANTED)

    def test_a_desktop_without_settings_says_so(self):
        session = prepare(self, settings=False, microphone="denied")
        start_without_settings(session)
        session.press("push button", MICROPHONE_SETTINGS)
        session.tree.wait("alert message", lambda name: name.startswith(NOWHERE))
        decide(session, microphone="authorized", screen=True)
        go_elsewhere(session)
        come_back(session)
        session.tree.wait_gone("alert message", lambda name: name.startswith(NOWHERE))


class Screen(JourneyTest):
    def test_a_refusal_is_explained_until_it_is_taken_back(self):
        session = prepare(self, microphone="authorized", answer_screen=False, think_seconds=1)
        start(session)
        session.tree.wait("panel", MICROPHONE_GRANTED)
        session.press("push button", ALLOW_SCREEN)
        session.tree.wait("panel", "Запись экрана: ждём ответа")
        self.assertFalse(session.tree.find("push button", ALLOW_SCREEN))
        session.tree.wait("alert message", lambda name: name.startswith(STALE))
        wait_for(lambda: settings_opened(session) == ["applications"], "the settings")
        session.tree.wait("push button", ALLOW_SCREEN)
        self.assertEqual(recorder_calls(session).count("--request-screen"), 1)

        go_elsewhere(session)
        decide(session, microphone="authorized", screen=True)
        come_back(session)
        session.tree.wait("panel", SCREEN_GRANTED)
        session.tree.wait_gone("alert message", lambda name: name.startswith(STALE))
        session.tree.wait("push button", "Начать")


    def test_what_is_explained_can_be_read(self):
        session = prepare(self, settings=False, answer_screen=False)
        start_without_settings(session)
        session.press("push button", ALLOW_SCREEN)
        session.tree.wait("alert message", lambda name: name.startswith(STALE))
        top = session.tree.wait("frame").extents.y
        bottom = session.tree.wait("push button", "Всё равно начать").extents.y

        def in_sight(beginning: str) -> bool:
            note = session.tree.wait("alert message", lambda name: name.startswith(beginning)).extents
            return top <= note.y and note.bottom <= bottom

        wait_for(lambda: in_sight(NOWHERE), "the latest note above the buttons", 2)


class Refreshing(JourneyTest):
    def test_whoever_comes_back_sees_what_holds_now(self):
        session = prepare(self)
        start(session)
        session.tree.wait("push button", ALLOW_MICROPHONE)
        steps = (({"microphone": "authorized", "screen": False}, {MICROPHONE_GRANTED, "Запись экрана"}),
                 ({"microphone": "authorized", "screen": True}, {MICROPHONE_GRANTED, SCREEN_GRANTED}),
                 ({"microphone": "denied", "screen": True}, {"Микрофон", SCREEN_GRANTED}))
        for permissions, rows in steps:
            go_elsewhere(session)
            decide(session, **permissions)
            calls = recorder_calls(session)
            stays(lambda: recorder_calls(session) == calls, "nobody is asked behind the user's back", 0.3)
            come_back(session)
            wait_for(lambda: {node.name for node in session.tree.all("panel")} >= rows, f"the rows {rows}")
        session.tree.wait("push button", MICROPHONE_SETTINGS)
        self.assertEqual(set(recorder_calls(session)), {"--status"})

    def test_a_recording_is_not_disturbed(self):
        session = prepare(self, state="recording", microphone="authorized", screen=True)
        start(session)
        session.press("push button", ALLOW_MICROPHONE)
        session.press("push button", ALLOW_SCREEN)
        go_elsewhere(session)
        come_back(session)
        stays(lambda: recorder_calls(session) == [] and not settings_opened(session), "nobody is asked", 1)
        go_elsewhere(session)
        session.write_state(status="idle")
        come_back(session)
        session.tree.wait("panel", MICROPHONE_GRANTED)
        session.tree.wait("panel", SCREEN_GRANTED)


class Keyboard(JourneyTest):
    def test_by_keyboard_alone_in_english(self):
        session = prepare(self, language="en", answer_microphone="denied", answer_screen=True)
        session.look_away()
        start(session)
        session.tree.wait("push button", "Allow: Microphone")
        wait_for(lambda: session.tree.focus_is_on("Start anyway"), "the focus on the last button")
        session.screen.key("Tab")
        wait_for(lambda: session.tree.focus_is_on("Allow: Microphone"), "the focus on the microphone")
        session.screen.key("Return")
        session.tree.wait("push button", "Open Settings: Microphone")
        wait_for(lambda: settings_opened(session) == ["microphone"], "the settings")
        session.screen.key("space")
        wait_for(lambda: settings_opened(session) == 2 * ["microphone"], "the settings again")
        session.screen.key("Tab")
        wait_for(lambda: session.tree.focus_is_on("Allow: Screen recording"), "the focus on the screen")
        session.screen.key("Return")
        session.tree.wait("panel", "Screen recording, granted")
        session.tree.wait("label", "Missing: Microphone")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        self.assertEqual([call for call in recorder_calls(session) if call != "--status"],
                         ["--request-mic", "--request-screen"])
