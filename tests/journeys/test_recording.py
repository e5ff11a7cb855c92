"""A recording from the first press to the finished meeting, and what passes between panel and service."""

from __future__ import annotations

import json
import os
import re
import signal
import time

import tray
from session import JourneyTest, Session
from waiting import stays, wait_for

START = "Начать запись"
STOP = "Остановить запись"
STARTED = "Murmeli записывает встречу. Протокол придёт в Telegram, когда звонок закончится"
FINISHED = "Запись завершена. Готовлю расшифровку и протокол"


def seconds_told(name: str) -> int | None:
    """The seconds in «Идёт запись, 3 секунды» or "Recording, 3 seconds"."""
    found = re.fullmatch(r"(?:Идёт запись|Recording), (\d+) (?:секунд|second)\w*", name)
    return int(found[1]) if found else None


class RoundTrip(JourneyTest):
    def test_by_mouse(self):
        session = self.open_session(engine=["--processing-seconds", "2.5"])
        wait_for(lambda: tray.is_template(session), "the idle icon")
        idle = tray.pixels(session)
        session.open_panel()
        session.tree.wait("label", "Готов к записи")

        session.press("push button", START)
        wait_for(lambda: session.status() == "recording", "the service to record")
        self.assertFalse(session.command_file.exists(), "the service has taken the command")
        session.tree.wait("push button", STOP)
        session.tree.wait("label", "Идёт запись")
        session.tree.wait("alert message", STARTED)
        for phase in (tray.is_bright_red, tray.is_dim_red, tray.is_bright_red, tray.is_dim_red):
            wait_for(lambda: phase(session), phase.__name__, 2)
        self.watch_the_time_run(session)
        self.assertTrue(session.tree.focus_is_on(STOP), "a toast must not take the focus")

        session.press("push button", STOP)
        wait_for(lambda: session.status() == "processing", "the service to process")
        session.tree.wait("label", "Готовлю протокол")
        session.tree.wait("alert message", FINISHED)
        wait_for(lambda: tray.is_template(session) and tray.pixels(session) != idle, "the gear in the tray", 3)
        session.tree.wait("label", "Готов к записи", 8)
        wait_for(lambda: tray.pixels(session) == idle, "the idle icon as it was", 3)
        session.tree.wait("push button", START)

        self.assert_one_meeting(session)
        self.assertEqual(session.notifications(),
                         ["показано: Murmeli записывает встречу", "показано: Запись завершена"])
        session.tree.wait_gone("alert message", FINISHED, 8)

    def test_by_keyboard_alone(self):
        session = self.open_session(engine=["--processing-seconds", "0.5"])
        session.look_away()
        session.open_panel()
        wait_for(lambda: session.tree.focus_is_on(START), "the focus on the orb")
        session.screen.key("Return")
        session.tree.wait("label", "Идёт запись")
        wait_for(lambda: session.tree.focus_is_on(STOP), "the focus to stay on the orb")
        session.screen.key("space")
        wait_for(lambda: session.status() == "idle", "the meeting to be done")
        session.tree.wait("label", "Готов к записи")
        self.assert_one_meeting(session)
        session.screen.key("Escape")
        session.wait_closed()

    def test_in_english(self):
        session = self.open_session(engine=["--processing-seconds", "2.5"], prefs={"locale": "en"})
        session.open_panel()
        session.tree.wait("label", "Ready to record")
        session.press("push button", "Start recording")
        session.tree.wait("label", "Recording")
        session.tree.wait("alert message", lambda name: name.startswith("Murmeli is recording. "))
        self.watch_the_time_run(session)
        session.press("push button", "Stop recording")
        session.tree.wait("label", "Preparing the protocol")
        session.tree.wait("alert message", lambda name: name.startswith("Recording finished. "))
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.tree.wait("label", "Ready to record", 8)
        self.assert_one_meeting(session)
        self.assertEqual(session.notifications(), ["показано: Murmeli is recording", "показано: Recording finished"])

    def watch_the_time_run(self, session: Session) -> None:
        node = session.tree.wait("label", lambda name: seconds_told(name) is not None)
        first = seconds_told(node.name)
        later = session.tree.wait("label", lambda name: (seconds_told(name) or 0) >= first + 2, 4)
        elapsed = time.time() - session.state()["since"]
        self.assertAlmostEqual(seconds_told(later.name), elapsed, delta=1.6)

    def assert_one_meeting(self, session: Session) -> None:
        summaries = wait_for(lambda: list(session.logs.glob("*.json")), "the meeting's summary")
        self.assertEqual(len(summaries), 1)
        self.assertIsInstance(json.loads(summaries[0].read_text("utf-8")), dict)


class Commands(JourneyTest):
    def assert_command(self, session: Session, action: str, since: float) -> None:
        wait_for(session.command_file.exists, "the command")
        text = session.command_file.read_bytes().decode("ascii")
        self.assertRegex(text, r'\A\{"action":"%s","ts":\d+(\.\d+)?\}\Z' % action)
        self.assertTrue(since <= json.loads(text)["ts"] <= time.time())

    def test_a_service_that_never_answers(self):
        session = self.open_session(engine=["--fault", "deaf"])
        session.open_panel()
        before = time.time()
        session.press("push button", START)
        self.assert_command(session, "start", before)
        session.tree.wait("label", "Запускаем запись…")
        written = session.command_file.stat()
        session.press("push button", START)
        session.screen.key("Return")
        stays(lambda: session.command_file.stat() == written, "one command only while waiting", 1)
        session.tree.wait_gone("label", "Запускаем запись…", 13)
        self.assertAlmostEqual(time.time() - before, 12, delta=1.5)
        session.tree.wait("label", "Начни звонок — запишу автоматически")
        session.command_file.unlink()
        again = time.time()
        session.press("push button", START)
        self.assert_command(session, "start", again)

    def test_stop_is_asked_for_while_recording_only(self):
        session = self.open_session(state={"status": "recording", "since": time.time() - 90})
        session.open_panel()
        before = time.time()
        session.press("push button", STOP)
        self.assert_command(session, "stop", before)
        session.tree.wait("label", "Останавливаем…")
        session.write_state(status="Recording")  # another word, and so it counts as idle
        session.tree.wait("label", "Готов к записи")
        again = time.time()
        session.command_file.unlink()
        session.press("push button", START)
        self.assert_command(session, "start", again)

    def test_two_quick_presses_are_one(self):
        session = self.open_session(engine=[])
        orb = session.open_panel()
        os.kill(session.engine.pid, signal.SIGSTOP)
        before = time.time()
        session.screen.click(*orb.extents.middle, times=2, delay=40)
        self.assert_command(session, "start", before)
        os.kill(session.engine.pid, signal.SIGCONT)
        session.tree.wait("label", "Идёт запись")
        stays(lambda: session.status() == "recording" and not session.command_file.exists(),
              "the recording that two quick presses began", 1)

    def test_a_clumsy_writer_disturbs_nobody(self):
        session = self.open_session(engine=["--fault", "torn"])
        session.open_panel()
        session.press("push button", START)
        session.tree.wait("label", "Идёт запись")
        stays(lambda: session.tree.find("push button", STOP), "the recording on the panel", 3)
        self.assertEqual(session.notifications(), ["показано: Murmeli записывает встречу"])


class WhileRecording(JourneyTest):
    def test_times_and_background_work(self):
        session = self.open_session(state={"status": "recording", "since": time.time() - 75 * 60, "jobs": 1},
                                    prefs={"notifications": False})
        session.open_panel()
        session.tree.wait("label", lambda name: re.fullmatch(r"Идёт запись, 75 минут( \d+ секунд\w*)?", name))
        session.tree.wait("label", "Разбирается прошлая встреча…")
        session.write_state(status="recording", since=0, jobs=3)
        session.tree.wait("label", "Разбирается встреч: 3")
        session.tree.wait("label", "Слушаю встречу…")
        session.write_state(status="processing", jobs=3, detail="Ищу поручения")
        session.tree.wait("label", "Ищу поручения")
        session.tree.wait_gone("label", "Разбирается встреч: 3")

    def test_the_vanished_state_is_the_end_of_the_recording(self):
        session = self.open_session(state={"status": "recording"})
        wait_for(lambda: tray.is_bright_red(session), "the red icon")
        session.state_file.unlink()
        wait_for(lambda: tray.is_template(session), "the idle icon")
        self.assertEqual(session.notifications(),
                         ["показано: Murmeli записывает встречу", "показано: Запись завершена"])
