"""A meeting's analysis: asked for, checked against what was said, copied, and there again without a network."""

from __future__ import annotations

import json
import re

from accessibility import Node
from main_window import (SEARCH, Summary, clipboard, fill, open_meeting, open_window, quit_program, sign_in, summaries, wait_detail,
                         write_library)
from session import JourneyTest, Session
from waiting import stays, wait_for

OPEN, BUILD, AGAIN, CLOSE = "Разбор встречи", "Разобрать", "Разобрать заново", "Закрыть"
EMPTY = "Разбора ещё нет.\nНажмите «Разобрать» — агент пройдёт по расшифровке"
WORKING = "Разбираю встречу — это занимает до двух минут"
NO_SERVER = "Сервер не ответил — попробуйте ещё раз"
NO_ACCOUNT = "Войдите в аккаунт, чтобы разобрать встречу"
CLAIMS = "ГЛАВНОЕ — ЧТО ЛЕГКО ПРОПУСТИТЬ"
REPORT = "/api/assist/report"
LINE = re.compile(r"^(?:> ?)*(\[[\d:]+\]) (.+)$", re.MULTILINE)


def stored(summary: Summary):
    return summary.path.with_name(summary.path.name.replace(".protocol.json", ".report.json"))


def analysis_of(summary: Summary) -> dict:
    """What is stored; some of the library's files are not what they should be."""
    path = stored(summary)
    analysis = json.loads(path.read_text("utf-8")) if path.exists() else {}
    return analysis if isinstance(analysis, dict) else {}


def said(summary: Summary) -> dict[str, str]:
    """The lines of the transcript by their stamps."""
    return dict(LINE.findall(summary.protocol.read_text("utf-8").partition("Транскрипт")[2]))


def is_chip(name: str) -> bool:
    return name.startswith(("Показать реплику, ", "Show the line, "))


def chips(session: Session) -> list[Node]:
    """The stamps that can be seen: rows above and below the view are there too."""
    view = session.tree.find("list", OPEN).extents
    return [node for node in session.tree.all(None, is_chip) if view.contains(node.extents)]


def opened(session: Session) -> set[str]:
    return {node.name for node in session.tree.all(None, is_chip) if "checked" in node.states}


class Report(JourneyTest):
    def open_library(self, *, account=True, seconds="0.4", **options) -> Session:
        session = self.open_session(web=["--assist-seconds", seconds], program=False, **options)
        write_library(session)
        if account:
            sign_in(session)
        session.start_program()
        return session

    def open_detail(self, session: Session, analysed: bool, language="ru") -> Summary:
        summary = next(summary for summary in summaries(session) if summary.members.get("language") == language
                       and bool(analysis_of(summary)) == analysed)
        open_window(session)
        fill(session, SEARCH, summary.title)
        open_meeting(session, summary.title)
        return summary

    def test_from_the_meeting_to_a_quotation_and_back(self):
        session = self.open_library()
        summary = self.open_detail(session, analysed=False)
        session.press("push button", OPEN)
        session.tree.wait("status bar", EMPTY)
        session.press("push button", BUILD)
        session.tree.wait("status bar", WORKING)
        session.tree.wait("heading", CLAIMS, 10)
        wait_for(stored(summary).exists, "the stored analysis")
        text = stored(summary).read_text("utf-8")
        analysis = json.loads(text)
        self.assertIn("12345678901234567890", text)
        self.assertEqual(list(analysis), sorted(analysis))

        lines = said(summary)
        insight = next(one for one in analysis["insights"] if one["at"] and one["at"][0] in lines)
        title = session.tree.wait("label", insight["title"])
        below = [node for node in chips(session) if node.extents.y > title.extents.y]
        first = min(below, key=lambda node: (node.extents.y, node.extents.x))
        session.screen.click(*first.extents.middle)
        session.look_away()
        quotation = session.tree.wait("push button", lines[insight["at"][0]])
        self.assertEqual(opened(session), {first.name})

        with self.case("its neighbours"):
            stamps = list(lines)
            place = stamps.index(insight["at"][0])
            session.screen.click(*quotation.extents.middle)
            beside = [lines[stamps[i]] for i in (place - 1, place + 1) if 0 <= i < len(stamps)]
            for line in beside:
                session.tree.wait("label", line)
            session.press("push button", lines[insight["at"][0]])
            for line in beside:
                session.tree.wait_gone("label", line)

        with self.case("one at a time"):
            other = next(node for node in chips(session) if node.name != first.name)
            session.screen.click(*other.extents.middle)
            session.look_away()
            wait_for(lambda: opened(session) == {other.name}, "the first one to fold")
            session.press(None, other.name)
            wait_for(lambda: not opened(session), "every quotation to fold")

        session.press("push button", CLOSE)
        wait_detail(session, summary.title)
        wait_for(lambda: session.tree.focus_is_on(OPEN), "the focus where it came from")
        quit_program(session)

        with self.case("the next start, without a network"):
            session.stop(session.web)
            session.start_program()
            open_window(session)
            open_meeting(session, summary.title)
            session.press("push button", OPEN)
            session.tree.wait("heading", CLAIMS)
            session.tree.wait("push button", AGAIN)
            self.assertEqual(stored(summary).read_text("utf-8"), text)

    def test_by_keyboard_alone_in_english(self):
        session = self.open_library(language="en")
        summary = self.open_detail_by_keyboard(session)
        session.tab_to("Meeting analysis")
        session.screen.key("Return")
        session.tree.wait("push button", "Analyse again")
        wait_for(lambda: session.tree.focus_is_on("Analyse again"), "the focus in the analysis")

        analysis = json.loads(stored(summary).read_text("utf-8"))
        first = analysis["blockers"][0] if analysis["blockers"] else analysis["insights"][0]["title"]
        session.screen.key("j")
        wait_for(lambda: (session.tree.focused() or first).name.startswith(first), "the first item")
        session.screen.key("j", "Up", "k")
        wait_for(lambda: session.tree.focused().name.startswith(first), "the first item again")
        session.screen.key("ctrl+c")
        wait_for(lambda: clipboard(session, "UTF8_STRING").startswith(first), "the item in the clipboard")

        insight = analysis["insights"][0]
        for _ in range(20):
            if session.tree.focused().name.startswith(insight["title"]):
                break
            session.screen.key("Down")
        session.screen.key("Return")
        wait_for(lambda: opened(session), "an open stamp")
        session.screen.key("Escape")
        wait_for(lambda: not opened(session), "the quotation to fold")
        session.screen.key("Escape")
        session.tree.wait("heading", summary.title)
        wait_for(lambda: session.tree.focus_is_on("Meeting analysis"), "the focus where it came from")

    def open_detail_by_keyboard(self, session: Session) -> Summary:
        summary = next(one for one in summaries(session) if one.members.get("language") == "en"
                       and analysis_of(one))
        open_window(session, "Open window", "Meetings")
        session.screen.key("ctrl+f")
        wait_for(lambda: session.tree.focus_is_on("Search meetings"), "the search to have the focus")
        session.put_in_clipboard(summary.title)
        session.screen.key("ctrl+v", "Down")
        wait_for(lambda: session.tree.all("list item", lambda name: name.startswith(summary.title)), "the meeting")
        session.screen.key("Return")
        session.tree.wait("heading", summary.title)
        return summary

    def requests(self, session: Session) -> int:
        return sum(request["path"] == REPORT for request in session.ask_web("/sandbox/requests"))

    def test_what_goes_wrong_leaves_what_is_there(self):
        session = self.open_library(seconds="0.1")
        summary = self.open_detail(session, analysed=True)
        before = stored(summary).read_bytes()
        session.press("push button", OPEN)
        session.tree.wait("heading", CLAIMS)
        for fault in ("status=500", "reset", "html", "array", "empty", "redirect=https://127.0.0.1:1/"):
            with self.case(fault):
                session.ask_web("/sandbox/faults", {"path": REPORT, "fault": fault})
                before_it = self.requests(session)
                session.press("push button", AGAIN)
                wait_for(lambda: self.requests(session) > before_it, "the request")
                session.tree.wait_gone("status bar", WORKING)
                session.tree.wait("alert message")
                session.tree.wait("heading", CLAIMS)
                self.assertEqual(stored(summary).read_bytes(), before)
        with self.case("a server that never answers leaves the window alive"):
            session.ask_web("/sandbox/faults", {"path": REPORT, "fault": "hang"})
            session.press("push button", AGAIN)
            session.tree.wait("status bar", WORKING)
            session.press("push button", CLOSE)
            wait_detail(session, summary.title)
            session.press("push button", OPEN)
            session.tree.wait("status bar", WORKING)  # still on its way
            session.press("push button", CLOSE)
            session.screen.key("Escape")
            session.tree.wait_gone("push button", OPEN)

    def test_who_is_not_signed_in_is_told(self):
        session = self.open_library(account=False)
        self.open_detail(session, analysed=False)
        session.press("push button", OPEN)
        session.press("push button", BUILD)
        session.tree.wait("alert message", NO_ACCOUNT)
        stays(lambda: session.tree.find("status bar", EMPTY), "the empty pane", 0.5)
