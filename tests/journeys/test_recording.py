"""A recording from the first press to the finished meeting."""

from __future__ import annotations

import re
import time

import tray
from session import JourneyTest, Session
from waiting import wait_for

START = "Начать запись"
STOP = "Остановить запись"
STARTED = "Murmeli записывает встречу. Протокол придёт в Telegram, когда звонок закончится"
FINISHED = "Запись завершена. Готовлю расшифровку и протокол"


def seconds_told(name: str) -> int | None:
    """The seconds in «Идёт запись, 3 секунды»."""
    found = re.fullmatch(r"Идёт запись, (\d+) секунд\w*", name)
    return int(found[1]) if found else None


class Recording(JourneyTest):
    def test_by_mouse(self):
        session = self.open_session(engine=["--processing-seconds", "2.5"])
        wait_for(lambda: tray.is_template(session), "the idle icon")
        idle = tray.pixels(session)
        session.open_panel()
        session.tree.wait("label", "Готов к записи")
        session.press("radio button", "Короткий")
        session.wait_preference("protocol_format", "short")

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
        self.assertEqual(len(list(session.logs.glob("*.protocol.json"))), 1)
        [protocol] = (session.home / "Documents").rglob("*.md")
        self.assertNotIn("## Кратко", protocol.read_text("utf-8"), "what only the long form has")
        self.assertEqual(session.notifications(),
                         ["показано: Murmeli записывает встречу", "показано: Запись завершена", "показано: Протокол готов"])

    def watch_the_time_run(self, session: Session) -> None:
        node = session.tree.wait("label", lambda name: seconds_told(name) is not None)
        first = seconds_told(node.name)
        later = session.tree.wait("label", lambda name: (seconds_told(name) or 0) >= first + 2, 4)
        elapsed = time.time() - session.state()["since"]
        self.assertAlmostEqual(seconds_told(later.name), elapsed, delta=1.6)
