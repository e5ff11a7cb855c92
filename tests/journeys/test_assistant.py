"""The glossary: taught beside a protocol, edited in the assistant's pane, kept on the backend and for the service."""

from __future__ import annotations

from main_window import (ANNA, ASSISTANT, fill, glossary, open_meeting, open_window, row_names, sign_in,
                         write_meeting)
from session import JourneyTest, Session
from waiting import wait_for

HEARD, CORRECT, ADD = "Слышится", "Пишется", "Добавить слово"
START = ["Квен → Qwen", "кубер → Kubernetes", "ФОТ"]


class Glossary(JourneyTest):
    def test_from_a_word_beside_a_protocol_to_the_service(self):
        session = self.open_session(web=[], program=False)
        session.ask_web("/sandbox/glossary", {"email": ANNA, "glossary": "\n".join(START)})
        write_meeting(session, "2026-03-03 10-00-00", title="Boats", decisions=["Paint them green."])
        sign_in(session)
        session.start_program()
        self.wait_kept(session, *START)  # the service needs it, though no window is opened

        open_window(session)
        open_meeting(session, "Boats")
        session.press("push button", "Научить слову")
        self.add(session, " маркел ", "Murmeli")
        session.tree.wait("status bar", "Запомнил: маркел → Murmeli")
        self.wait_kept(session, *START, "маркел → Murmeli")

        session.screen.key("ctrl+2")
        session.tree.wait("heading", ASSISTANT)
        self.wait_rows(session, "Квен пишется Qwen", "кубер пишется Kubernetes", "ФОТ", "маркел пишется Murmeli")
        self.add(session, "фигма", "Figma")
        session.press("push button", "Убрать: ФОТ")
        session.tab_to("фигма пишется Figma")
        session.screen.key("Down", "Delete")
        self.wait_rows(session, "фигма пишется Figma", "кубер пишется Kubernetes", "маркел пишется Murmeli")
        session.screen.key("ctrl+s")
        session.tree.wait("status bar", "Сохранено")
        self.wait_kept(session, "фигма → Figma", "кубер → Kubernetes", "маркел → Murmeli")

    def add(self, session: Session, heard: str, correct: str) -> None:
        fill(session, HEARD, heard)
        fill(session, CORRECT, correct)
        session.press("push button", ADD)

    def wait_rows(self, session: Session, *names: str) -> None:
        wait_for(lambda: row_names(session) == list(names), f"{names}, not {row_names(session)}", 5)

    def wait_kept(self, session: Session, *entries: str) -> None:
        """On the backend, and in the copy that the service reads."""
        text = "\n".join(entries)
        wait_for(lambda: glossary(session) == text == session.preferences().get("glossary"),
                 f"{entries}, not {glossary(session)!r}", 5)
