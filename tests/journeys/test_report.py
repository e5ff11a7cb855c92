"""A meeting's analysis: asked for, checked against what was said, and there again without a network."""

from __future__ import annotations

import json
import re

from accessibility import Node
from main_window import (SEARCH, Summary, fill, open_meeting, open_window, quit_program, sign_in, summaries,
                         wait_detail, write_library)
from session import JourneyTest, Session
from waiting import wait_for

OPEN, BUILD, AGAIN, CLOSE = "Разбор встречи", "Разобрать", "Разобрать заново", "Закрыть"
WORKING = "Разбираю встречу — это занимает до двух минут"
CLAIMS = "ГЛАВНОЕ — ЧТО ЛЕГКО ПРОПУСТИТЬ"
LINE = re.compile(r"^(?:> ?)*(\[[\d:]+\]) (.+)$", re.MULTILINE)


def stored(summary: Summary):
    return summary.path.with_name(summary.path.name.replace(".protocol.json", ".report.json"))


def said(summary: Summary) -> dict[str, str]:
    """The lines of the transcript by their stamps."""
    return dict(LINE.findall(summary.protocol.read_text("utf-8").partition("Транскрипт")[2]))


def chips(session: Session) -> list[Node]:
    """The stamps that can be seen: rows above and below the view are there too."""
    view = session.tree.find("list", OPEN).extents
    return [node for node in session.tree.all(None, lambda name: name.startswith("Показать реплику, "))
            if view.contains(node.extents)]


class Report(JourneyTest):
    def test_from_the_meeting_to_a_quotation_and_again_without_a_network(self):
        session = self.open_session(web=["--assist-seconds", "0.4"], program=False)
        write_library(session)
        sign_in(session)
        session.start_program()
        summary = next(one for one in summaries(session)
                       if one.members.get("language") == "ru" and not stored(one).exists())
        open_window(session)
        fill(session, SEARCH, summary.title)
        open_meeting(session, summary.title)
        session.press("push button", OPEN)
        session.press("push button", BUILD)
        session.tree.wait("status bar", WORKING)
        session.tree.wait("heading", CLAIMS, 10)
        text = wait_for(lambda: stored(summary).exists() and stored(summary).read_text("utf-8"), "the analysis")
        self.assertIn("12345678901234567890", text)
        self.assert_quoted(session, summary, json.loads(text)["insights"])

        session.press("push button", CLOSE)
        wait_detail(session, summary.title)
        wait_for(lambda: session.tree.focus_is_on(OPEN), "the focus where it came from")
        quit_program(session)
        session.stop(session.web)
        session.start_program()
        open_window(session)
        open_meeting(session, summary.title)
        session.press("push button", OPEN)
        session.tree.wait("heading", CLAIMS)
        session.tree.wait("push button", AGAIN)
        self.assertEqual(stored(summary).read_text("utf-8"), text)

    def assert_quoted(self, session: Session, summary: Summary, insights: list[dict]) -> None:
        """A press on a stamp below an insight shows what was said then."""
        lines = said(summary)
        insight = next(one for one in insights if one["at"] and one["at"][0] in lines)
        title = session.tree.wait("label", insight["title"])
        below = [node for node in chips(session) if node.extents.y > title.extents.y]
        first = min(below, key=lambda node: (node.extents.y, node.extents.x))
        session.screen.click(*first.extents.middle)
        session.look_away()
        session.tree.wait("push button", lines[insight["at"][0]])
