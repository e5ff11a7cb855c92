"""The list of meetings: its order, the search, the keyboard, and what comes while it is open."""

from __future__ import annotations

import json
import re
import subprocess
from datetime import date, timedelta

from main_window import (ASSISTANT, BACK, MEETINGS, SEARCH, fill, open_meeting, open_window, paste, places,
                         quit_program, row_names, rows, summaries, wait_detail, wait_list, wait_row, wait_still,
                         write_library, write_meeting)
from screen import Rectangle, near
from session import JourneyTest, Session
from waiting import stays, wait_for

CLEAR = "Очистить поиск"
NOTHING = "Ничего не нашлось"
NO_MEETINGS = "Встреч пока нет — первая появится после звонка"
RECORD, STOP = "Записать встречу", "Остановить запись"
QUICK = ["--processing-seconds", "0.3"]


def titles(names: list[str]) -> list[str]:
    """Of the rows' names, each the title, the day and the time."""
    return [re.sub(r", (?:сегодня|вчера|[^,]+, [^,]+|[^,]+ \d{4}[^,]*), \d\d:\d\d(?: – \d\d:\d\d)?$", "", name)
            for name in names]


def in_one_line(text: str) -> str:
    return " ".join(text.split())


def ink_width(session: Session, part: Rectangle) -> int:
    """How wide what is written there is."""
    picture = session.screen.picture(part)
    ground = picture.at(picture.width - 1, picture.height - 1)
    inked = [x for x in range(picture.width)
             if any(not near(picture.at(x, y), ground, 40) for y in range(picture.height))]
    return inked[-1] - inked[0] + 1 if inked else 0


class MeetingsTest(JourneyTest):
    def open_library(self, *, today: date | None = None, **options) -> Session:
        session = self.open_session(program=False, **options)
        write_library(session, today)
        session.start_program()
        open_window(session)
        wait_for(lambda: rows(session), "the meetings")
        return session

    def scroll_down(self, session: Session, times=3) -> None:
        """By the wheel, over the list."""
        middle = session.tree.wait("list", MEETINGS).extents.middle
        session.screen.click(*middle, button=5, times=times, delay=10)
        session.look_away()
        wait_still(session)


class Looking(MeetingsTest):
    def test_all_of_them_the_newest_first(self):
        session = self.open_library()
        expected = [summary.title for summary in summaries(session)]
        self.assertEqual(len(expected), 52)
        self.assertEqual([node.name for node in session.tree.all("heading")][:3], [MEETINGS, "Сегодня", "Вчера"])
        listed = [name for name, _ in wait_still(session)]
        middle = session.tree.find("list", MEETINGS).extents.middle

        def scrolled() -> bool:
            session.screen.click(*middle, button=5, times=4, delay=250)  # any faster, and it passes rows over
            shown = [name for name, _ in wait_still(session)]
            self.assertIn(shown[0], listed, "no row is passed over")
            listed.extend(name for name in shown if name not in listed)
            return shown[-1].startswith(expected[-1])

        wait_for(scrolled, "the oldest meeting", 60)
        self.assertEqual([in_one_line(title)[:60] for title in titles(listed)],
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

    def test_a_home_without_meetings(self):
        session = self.open_session()
        open_window(session)
        session.tree.wait("status bar", NO_MEETINGS)
        self.assertEqual(row_names(session), [])
        write_meeting(session, "2026-03-03 10-00-00", title="Первая")
        wait_row(session, "Первая")
        session.tree.wait_gone("status bar", NO_MEETINGS)
        fill(session, SEARCH, "вторая")
        session.tree.wait("status bar", NOTHING)


class Searching(MeetingsTest):
    def test_by_mouse_and_by_keyboard(self):
        session = self.open_library()
        everything = row_names(session)

        def found(words: str) -> list[str]:
            return [summary.title for summary in summaries(session)
                    if words in f"{summary.title}\n{summary.members.get('tldr')}".lower()]

        expected = found("план")
        self.assertGreater(len(expected), 2)
        fill(session, SEARCH, "ПлАН")
        wait_for(lambda: list(map(in_one_line, titles(row_names(session)))) == expected, "what was searched for")
        session.press("push button", CLEAR)
        wait_for(lambda: row_names(session) == everything, "all of them again")

        session.tab_to("Разделы, Встречи")
        session.screen.key("ctrl+f")
        wait_for(lambda: session.tree.focus_is_on(SEARCH), "the search field to have the focus")
        paste(session, "ДЕТСКАЯ комната")
        wait_for(lambda: titles(row_names(session)) == found("детская комната"), "the one meeting")
        session.screen.key("ctrl+f")
        paste(session, "такого тут нет")
        session.tree.wait("status bar", NOTHING)
        session.screen.key("Escape")
        wait_for(lambda: row_names(session) == everything, "all of them again")
        session.tree.wait_gone("push button", CLEAR)
        self.assertTrue(session.tree.focus_is_on(SEARCH))


class Going(MeetingsTest):
    def test_there_and_back_by_keyboard(self):
        session = self.open_library()
        known = [summary.title for summary in summaries(session)]
        session.screen.key("ctrl+f", "Down")
        self.wait_current(session, known[0])
        for keys, title in ((("Down", "Down", "Down"), known[3]), (("Up",), known[2]), (("End",), known[-1]),
                            (("Home",), known[0]), (("Down",), known[1])):
            with self.case(" ".join(keys)):
                session.screen.key(*keys)
                self.wait_current(session, title)
        session.screen.key("Return")
        wait_detail(session, known[1])
        session.screen.key("Escape")
        wait_list(session)
        self.wait_current(session, known[1])
        session.screen.key("Down", "Return")
        wait_detail(session, known[2])

    def wait_current(self, session: Session, title: str) -> None:
        wait_for(lambda: "focused" in wait_row(session, title).states, f"«{title}» to have the focus", 2)

    def test_back_to_the_same_place(self):
        session = self.open_library()
        self.scroll_down(session)
        for key in ("Escape", "alt+Left"):
            with self.case(key):
                before = places(session)
                name, place = before[len(before) // 2]
                session.screen.click(*place.middle)
                session.look_away()
                wait_detail(session, titles([name])[0])
                session.screen.key(key)
                wait_list(session)
                self.assertEqual(wait_still(session), before)
                self.wait_current(session, titles([name])[0])

        fill(session, SEARCH, "план")
        session.tree.wait("push button", CLEAR)
        before = wait_still(session)
        session.screen.click(*before[1][1].middle)
        session.press("push button", BACK)
        wait_list(session)
        with self.case("search"):
            self.assertEqual(wait_still(session), before)
            self.assertTrue(session.tree.find("push button", CLEAR), "the query is still there")

    def test_tabs(self):
        session = self.open_library()
        self.scroll_down(session)
        before = places(session)
        session.screen.key("ctrl+2")
        session.tree.wait("heading", ASSISTANT)
        session.tree.wait_gone("text", SEARCH)
        session.screen.key("ctrl+1")
        session.tree.wait("text", SEARCH)
        self.assertEqual(wait_still(session), before)
        session.press("page tab", ASSISTANT)
        session.tree.wait("heading", ASSISTANT)
        session.tab_to("Разделы, Помощник")
        session.screen.key("Up")
        session.tree.wait("text", SEARCH)

    def test_english_by_keyboard_alone(self):
        session = self.open_session(language="en", program=False)
        write_meeting(session, "2026-03-03 10-00-00", title="Boats", tldr="About boats.", decisions=["Paint them."])
        write_meeting(session, "2026-03-04 11-00-00", title="Quay", tldr="About the quay.")
        session.start_program()
        session.open_panel()
        session.tab_to("Open window")
        session.screen.key("Return")
        session.tree.wait("frame", "Meetings")
        names = wait_for(lambda: row_names(session), "the meetings")
        self.assertEqual(names, ["Quay, wednesday, mar 4, 11:00", "Boats, tuesday, mar 3, 10:00"])
        for _ in range(2):  # it is left and reached again
            session.tab_to("Search meetings")
            session.screen.key("Tab")
            wait_for(lambda: not session.tree.focus_is_on("Search meetings"), "the focus to move on")
        session.tab_to("Search meetings")
        session.screen.type("BOAT")
        wait_for(lambda: len(rows(session)) == 1, "the one that was searched for")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Down", "Return")
        session.tree.wait("push button", "Back to the meetings")
        session.tree.wait("list item", "Paint them.")
        session.tree.wait("label", "Protocol file not found")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Escape")
        session.tree.wait("text", "Search meetings")
        session.screen.key("ctrl+f", "ctrl+a")
        session.screen.type("zzz")
        session.tree.wait("status bar", "Nothing found")
        session.screen.key("Escape")
        wait_for(lambda: len(rows(session)) == 2, "both again")


class Coming(MeetingsTest):
    def test_a_recording_from_here_to_the_list(self):
        # The library's newest meeting may lie hours ahead; what is recorded now shall be newer.
        session = self.open_library(today=date.today() - timedelta(days=1), engine=QUICK)
        known = set(session.logs.glob("*.protocol.json"))

        def record() -> str:
            """The new meeting's title."""
            session.press("push button", RECORD)
            wait_for(lambda: len(session.notifications()) % 2, "word of the recording")
            session.press("push button", STOP)
            added = wait_for(lambda: set(session.logs.glob("*.protocol.json")) - known, "the summary", 20)
            known.update(added)
            session.tree.wait("push button", RECORD)
            return json.loads(added.pop().read_text("utf-8"))["title"]

        with self.case("scrolled"):
            self.scroll_down(session)
            before = places(session)
            title = record()
            stays(lambda: places(session) == before, "what is on screen", 1)
            middle = session.tree.find("list", MEETINGS).extents.middle
            session.screen.click(*middle, button=4, times=20, delay=5)
            self.assertTrue(wait_row(session, title).name.startswith(f"{title}, сегодня, "))
        with self.case("at the top"):
            session.screen.key("ctrl+f")
            wait_still(session)
            title = record()
            wait_for(lambda: titles(row_names(session))[:1] == [title], "the new meeting at the top", 3)

    def test_a_summary_that_is_being_rewritten_stays(self):
        session = self.open_library()
        summary = summaries(session)[1]
        title = summary.title
        whole = summary.path.read_bytes()
        wait_row(session, title)
        nudge = session.logs / "nudge"
        with open(summary.path, "wb") as file:
            for part in (0, len(whole) // 2):
                file.write(whole[:part])
                file.flush()
                nudge.write_text("")  # the folder changes, and is looked at
                stays(lambda: any(name.startswith(f"{title}, ") for name in row_names(session)), "the row", 0.7)
                nudge.unlink()
            changed = json.dumps({**summary.members, "title": "Переписано"}, ensure_ascii=False).encode()
            file.seek(0)
            file.truncate()
            file.write(changed)
        wait_row(session, "Переписано")
        self.assertFalse(any(name.startswith(f"{title}, ") for name in row_names(session)))
        summary.path.unlink()
        session.tree.wait_gone("list item", lambda name: name.startswith("Переписано, "))


class Window(MeetingsTest):
    def test_size_and_place_survive_a_restart(self):
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
        quit_program(session)
        for end in ("restart", "closing"):
            with self.case(end):
                if end == "restart":
                    session.start_program()
                else:
                    session.screen.key("alt+F4")
                    session.tree.wait_gone("frame", MEETINGS)
                open_window(session)
                wait_for(lambda: extents() == before, f"{before}, not {extents()}", 3)
