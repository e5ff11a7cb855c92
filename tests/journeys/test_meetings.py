"""The list of meetings: its order, its looks, and what stays in place while things come and go."""

from __future__ import annotations

import json
import re
import subprocess
from datetime import date, timedelta

from main_window import (ASSISTANT, MEETINGS, SEARCH, open_meeting, open_window, places, quit_program, summaries,
                         wait_detail, wait_list, wait_row, wait_still, write_library, write_meeting)
from screen import Rectangle, near
from session import JourneyTest, Session
from waiting import stays, wait_for


def title_of(row: str) -> str:
    """A row's name is the title, the day and the time."""
    return re.sub(r", (?:сегодня|вчера|[^,]+, [^,]+|[^,]+ \d{4}[^,]*), \d\d:\d\d(?: – \d\d:\d\d)?$", "", row)


def ink_width(session: Session, part: Rectangle) -> int:
    """How wide what is written there is."""
    picture = session.screen.picture(part)
    ground = picture.at(picture.width - 1, picture.height - 1)
    inked = [x for x in range(picture.width)
             if any(not near(picture.at(x, y), ground, 40) for y in range(picture.height))]
    return inked[-1] - inked[0] + 1 if inked else 0


class Meetings(JourneyTest):
    def open_library(self, *, today: date | None = None, **options) -> Session:
        session = self.open_session(program=False, **options)
        write_library(session, today)
        session.start_program()
        open_window(session)
        wait_still(session)
        return session

    def scroll(self, session: Session, button: int, **clicks) -> None:
        """By the wheel, over the list."""
        session.screen.click(*session.tree.wait("list", MEETINGS).extents.middle, button=button, **clicks)
        wait_still(session)

    def test_all_of_them_the_newest_first(self):
        session = self.open_library()
        expected = [summary.title for summary in summaries(session)]
        self.assertEqual(len(expected), 52)
        self.assertEqual([node.name for node in session.tree.all("heading")][:3], [MEETINGS, "Сегодня", "Вчера"])
        listed = [name for name, _ in wait_still(session)]

        def scrolled() -> bool:
            self.scroll(session, 5, times=4, delay=250)  # any faster, and it passes rows over
            shown = [name for name, _ in places(session)]
            self.assertIn(shown[0], listed, "no row is passed over")
            listed.extend(name for name in shown if name not in listed)
            return shown[-1].startswith(expected[-1])

        wait_for(scrolled, "the oldest meeting", 60)
        self.assertEqual([" ".join(title_of(name).split())[:60] for name in listed],
                         [title[:60] for title in expected])

    def test_markup_is_shown_as_it_was_written(self):
        session = self.open_session(program=False)
        write_meeting(session, "2026-03-03 10-00-00", title="<b>Ш</b>", tldr="<i>Ш</i>", decisions=["<u>Ш</u>"])
        session.start_program()
        open_window(session)
        row = wait_row(session, "<b>Ш</b>").extents
        wait_still(session)
        session.look_away()
        texts = Rectangle(row.x + 122, row.y + 4, row.width - 180, row.height - 8)
        for half, y in (("title", texts.y), ("summary", texts.y + texts.height // 2)):
            with self.case(f"{half} in the list"):
                self.assertGreater(ink_width(session, Rectangle(texts.x, y, texts.width, texts.height // 2)), 35)
        open_meeting(session, "<b>Ш</b>")
        for role, text in (("heading", "<b>Ш</b>"), ("label", "<i>Ш</i>"), ("list item", "<u>Ш</u>")):
            with self.case(f"{role} in the protocol"):
                place = session.tree.wait(role, text).extents
                wait_for(lambda: ink_width(session, place) > 35, f"«{text}» in full", 2)

    def test_what_is_on_screen_stays_where_it_is(self):
        # The library's newest meeting may lie hours ahead; what is recorded now shall be newer.
        session = self.open_library(today=date.today() - timedelta(days=1), engine=["--processing-seconds", "0.3"])
        self.scroll(session, 5, times=3, delay=10)
        session.look_away()
        before = wait_still(session)
        with self.case("back from a meeting"):
            name, place = before[len(before) // 2]
            session.screen.click(*place.middle)
            session.look_away()
            wait_detail(session, title_of(name))
            session.screen.key("Escape")
            wait_list(session)
            self.assertEqual(wait_still(session), before)
            wait_for(lambda: session.tree.focus_is_on(name), "the row to have the focus")
        with self.case("back from another tab"):
            session.press("page tab", ASSISTANT)
            session.tree.wait("heading", ASSISTANT)
            session.tree.wait_gone("text", SEARCH)
            session.screen.key("ctrl+1")
            session.tree.wait("text", SEARCH)
            self.assertEqual(wait_still(session), before)
        with self.case("a meeting comes"):
            title = self.record(session)
            stays(lambda: places(session) == before, "what is on screen", 1)
            self.scroll(session, 4, times=20, delay=5)
            self.assertTrue(wait_row(session, title).name.startswith(f"{title}, сегодня, "))

    def record(self, session: Session) -> str:
        """The new meeting's title."""
        known = set(session.logs.glob("*.protocol.json"))
        session.press("push button", "Записать встречу")
        wait_for(session.notifications, "word of the recording")
        session.press("push button", "Остановить запись")
        added = wait_for(lambda: set(session.logs.glob("*.protocol.json")) - known, "the summary", 20)
        return json.loads(added.pop().read_text("utf-8"))["title"]

    def test_the_window_keeps_its_size_and_place(self):
        session = self.open_session()
        open_window(session)

        def window() -> str:
            told = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Встречи"], check=True, timeout=10,
                                  env=session.environment, capture_output=True, text=True)
            return told.stdout.split()[0]

        def extents() -> Rectangle:
            return session.tree.wait("frame", MEETINGS).extents

        subprocess.run(["xdotool", "windowsize", "--sync", window(), "870", "610", "windowmove", "--sync", window(),
                        "90", "70"], check=True, timeout=10, env=session.environment)
        wait_for(lambda: (extents().width, extents().height) == (870, 610), "the new size")
        wait_for(lambda: extents().x < 120, "the new place")
        before = extents()
        with self.case("closed"):
            session.close_window()
            session.tree.wait_gone("frame", MEETINGS)
            open_window(session)
            wait_for(lambda: extents() == before, f"{before}, not {extents()}", 3)
        with self.case("started again"):
            quit_program(session)
            session.start_program()
            open_window(session)
            wait_for(lambda: extents() == before, f"{before}, not {extents()}", 3)
