"""The glossary: taught beside a protocol, edited in the assistant's pane, kept on the backend."""

from __future__ import annotations

import json

from main_window import (ANNA, ASSISTANT, fill, glossary, open_meeting, open_window, paste, quit_program, row_names,
                         rows, sign_in, write_meeting)
from session import JourneyTest, Session
from waiting import wait_for

HEARD, CORRECT, ADD = "Слышится", "Пишется", "Добавить слово"
SEARCH, CLEAR = "Поиск", "Очистить поиск"
SAVE, REVERT = "Сохранить", "Вернуть"
SAVED, NOT_SAVED = "Сохранено", "Не удалось сохранить"
NO_ACCOUNT = "Войдите в аккаунт, чтобы сохранить словарь"
EMPTY, NOTHING = "Словарь пуст — добавьте первое слово", "Ничего не нашлось"
TEACH, HIDE = "Научить слову", "Скрыть"
PROFILES = "/rest/v1/profiles"
START = "Квен → Qwen\nкубер → Kubernetes\nВектор\nФОТ"
START_ROWS = ["Квен пишется Qwen", "кубер пишется Kubernetes", "Вектор", "ФОТ"]


class AssistantTest(JourneyTest):
    def open_signed_in(self, *, account=True, language="ru") -> Session:
        session = self.open_session(web=[], program=False, language=language)
        session.ask_web("/sandbox/glossary", {"email": ANNA, "glossary": START})
        write_meeting(session, "2026-03-03 10-00-00", title="Boats", decisions=["Paint them green."])
        if account:
            sign_in(session)
        session.start_program()
        return session

    def open_pane(self, **options) -> Session:
        session = self.open_signed_in(**options)
        open_window(session)
        session.screen.key("ctrl+2")
        session.tree.wait("heading", ASSISTANT)
        return session

    def add(self, session: Session, heard: str, correct: str) -> None:
        if heard:
            fill(session, HEARD, heard)
        fill(session, CORRECT, correct)
        session.press("push button", ADD)
        wait_for(lambda: row_names(session)[:1] == [f"{heard} пишется {correct}" if heard else correct], "the new row")

    def wait_rows(self, session: Session, names: list[str]) -> None:
        wait_for(lambda: row_names(session) == names, f"{names}, not {row_names(session)}", 5)

    def wait_backend(self, session: Session, *entries: str) -> None:
        wait_for(lambda: (glossary(session) or "").splitlines() == list(entries),
                 f"{entries} on the backend, not {glossary(session)!r}", 5)

    def copy(self, session: Session) -> list[str]:
        """What the service reads."""
        return json.loads(session.prefs_file.read_text("utf-8")).get("glossary", "").splitlines()


class Resting(AssistantTest):
    def test_the_service_gets_the_glossary_though_no_window_is_opened(self):
        session = self.open_signed_in()
        wait_for(lambda: session.prefs_file.exists() and self.copy(session) == START.splitlines(), "the copy for the service")


class Teaching(AssistantTest):
    def test_beside_a_protocol(self):
        session = self.open_signed_in()
        open_window(session)
        open_meeting(session, "Boats")
        session.press("push button", TEACH)
        session.tree.wait("text", HEARD)
        wait_for(lambda: session.tree.focus_is_on(HEARD), "the field to have the focus")
        fill(session, HEARD, " маркел ")
        fill(session, CORRECT, "Murmeli")
        session.press("push button", ADD)
        session.tree.wait("status bar", "Запомнил: маркел → Murmeli")
        self.wait_backend(session, *START.splitlines(), "маркел → Murmeli")
        with self.case("the same word again"):
            fill(session, HEARD, "МАРКЕЛ")
            fill(session, CORRECT, "Мурмели")
            session.screen.key("Return")
            wait_for(lambda: "Мурмели" in (glossary(session) or ""), "the changed rule")
            self.assertNotIn("Murmeli", glossary(session))
            self.assertEqual(len(glossary(session).splitlines()), 5)
        session.press("push button", HIDE)
        session.tree.wait_gone("text", HEARD)
        session.screen.key("ctrl+2")
        wait_for(lambda: any(name.endswith("пишется Мурмели") for name in row_names(session)), "the rule in the pane")
        self.assertEqual(len(rows(session)), 5)

    def test_english_by_keyboard_alone(self):
        session = self.open_signed_in(language="en")
        session.ask_web("/sandbox/glossary", {"email": ANNA, "glossary": None})
        session.open_panel()
        session.tab_to("Open window")
        session.screen.key("Return")
        session.tree.wait("list item", lambda name: name.startswith("Boats, "))
        session.screen.key("ctrl+f", "Down", "Return")
        session.tab_to("Teach a word")
        session.screen.key("Return")
        wait_for(lambda: session.tree.focus_is_on("Heard as"), "the field to have the focus")
        session.screen.type("cue")
        session.screen.key("Return")
        wait_for(lambda: session.tree.focus_is_on("Written as"), "the next field to have the focus")
        session.screen.type("Quay")
        session.screen.key("Return")
        session.tree.wait("status bar", "Learned: cue → Quay")
        self.wait_backend(session, "cue → Quay")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Escape")
        session.tree.wait_gone("text", "Heard as")
        self.assertTrue(session.tree.find("push button", "Back to the meetings"), "only the box was closed")

        session.screen.key("ctrl+2")
        session.tree.wait("heading", "Assistant")
        self.wait_rows(session, ["cue is written Quay"])
        wait_for(session.tree.focused, "a visible focus", 2)
        session.tab_to("Written as")
        session.screen.type("Kubernetes")
        session.screen.key("Return")
        self.wait_rows(session, ["Kubernetes", "cue is written Quay"])
        wait_for(lambda: session.tree.focus_is_on("Heard as"), "the field to have the focus again")
        session.screen.key("ctrl+s")
        session.tree.wait("status bar", lambda name: name.startswith("Saved"))
        self.wait_backend(session, "Kubernetes", "cue → Quay")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")


class Editing(AssistantTest):
    def test_add_remove_save_and_revert(self):
        session = self.open_pane()
        self.wait_rows(session, START_ROWS)
        session.press("push button", SAVE)  # nothing has changed
        self.add(session, "фигма", "Figma")
        self.add(session, "", "СберМаркет")
        session.tree.wait("label", "Записей: 6")
        session.press("push button", "Убрать: Вектор")
        self.wait_rows(session, ["СберМаркет", "фигма пишется Figma", *START_ROWS[:2], "ФОТ"])
        session.tab_to("СберМаркет")
        session.screen.key("Down", "Down")
        wait_for(lambda: session.tree.focus_is_on("Квен пишется Qwen"), "the third row to have the focus")
        session.screen.key("Delete")
        left = ["СберМаркет", "фигма пишется Figma", "кубер пишется Kubernetes", "ФОТ"]
        self.wait_rows(session, left)
        self.assertEqual(glossary(session), START, "nothing is sent before it is saved")

        session.screen.key("ctrl+1", "ctrl+2")
        self.wait_rows(session, left)
        session.screen.key("ctrl+s")
        session.tree.wait("status bar", SAVED)
        self.wait_backend(session, "СберМаркет", "фигма → Figma", "кубер → Kubernetes", "ФОТ")
        self.assertEqual(self.copy(session), glossary(session).splitlines())
        session.press("push button", SAVE)
        changes = [request for request in session.ask_web("/sandbox/requests") if request["method"] == "PATCH"]
        self.assertEqual(len(changes), 1, "what has not changed is not sent")

        session.press("push button", "Убрать: ФОТ")
        self.wait_rows(session, left[:3])
        session.press("push button", REVERT)
        self.wait_rows(session, left)
        self.assertEqual(len(glossary(session).splitlines()), 4)

    def test_search_and_what_is_removed_in_it(self):
        session = self.open_pane()
        self.wait_rows(session, START_ROWS)
        session.screen.key("ctrl+f")
        wait_for(lambda: session.tree.focus_is_on(SEARCH), "the search field to have the focus")
        for text, names in (("КУБЕР", START_ROWS[1:2]), ("qwen", START_ROWS[:1]), ("фот", START_ROWS[3:])):
            with self.case(text):
                paste(session, text)
                self.wait_rows(session, names)
        session.press("push button", "Убрать: ФОТ")
        session.tree.wait("status bar", NOTHING)
        session.tree.wait("label", "Записей: 3")
        session.press("push button", CLEAR)
        self.wait_rows(session, START_ROWS[:3])
        session.press("push button", SAVE)
        self.wait_backend(session, *START.splitlines()[:3])

    def test_what_is_taught_while_a_draft_is_open_is_kept(self):
        session = self.open_pane()
        self.wait_rows(session, START_ROWS)
        self.add(session, "", "Черновик")
        session.screen.key("ctrl+1")
        open_meeting(session, "Boats")
        session.press("push button", TEACH)
        fill(session, HEARD, "маркел")
        fill(session, CORRECT, "Murmeli")
        session.press("push button", ADD)
        wait_for(lambda: "маркел → Murmeli" in glossary(session).splitlines(), "the taught word")
        session.screen.key("ctrl+2")
        wait_for(lambda: "Черновик" in row_names(session), "the draft")
        session.screen.key("ctrl+s")
        wait_for(lambda: "Черновик" in glossary(session).splitlines(), "the draft on the backend")
        self.assertIn("маркел → Murmeli", glossary(session).splitlines())


class Failing(AssistantTest):
    def test_a_server_that_is_down_while_saving(self):
        session = self.open_pane()
        self.wait_rows(session, START_ROWS)
        session.ask_web("/sandbox/faults", {"path": PROFILES, "fault": "status=500"})
        self.add(session, "фигма", "Figma")
        expected = ["фигма → Figma", *START.splitlines()]
        session.screen.key("ctrl+s")
        session.tree.wait("status bar", NOT_SAVED)
        self.assertEqual(row_names(session), ["фигма пишется Figma", *START_ROWS])
        self.assertEqual(self.copy(session), expected)
        self.assertEqual(glossary(session), START)

        with self.case("still down at the next start"):
            quit_program(session)
            session.start_program()
            open_window(session)
            session.screen.key("ctrl+2")
            self.wait_rows(session, ["фигма пишется Figma", *START_ROWS])
            self.assertEqual(self.copy(session), expected)
        with self.case("up again"):
            quit_program(session)
            session.ask_web("/sandbox/faults", {})
            session.start_program()
            open_window(session)
            self.wait_backend(session, *expected)
            session.screen.key("ctrl+2")
            self.wait_rows(session, ["фигма пишется Figma", *START_ROWS])
            self.assertFalse(session.tree.find("status bar", NOT_SAVED))

    def test_one_that_is_gone_is_tried_again_by_hand(self):
        session = self.open_pane()
        self.wait_rows(session, START_ROWS)
        session.ask_web("/sandbox/faults", {"path": PROFILES, "fault": "reset"})
        self.add(session, "", "Figma")
        session.press("push button", SAVE)
        session.tree.wait("status bar", lambda name: len(name) > 5 and name != SAVED)
        session.ask_web("/sandbox/faults", {})
        session.press("push button", SAVE)
        session.tree.wait("status bar", SAVED)
        self.wait_backend(session, "Figma", *START.splitlines())

    def test_a_glossary_that_cannot_be_loaded_is_not_overwritten(self):
        session = self.open_signed_in()
        session.ask_web("/sandbox/faults", {"path": PROFILES, "fault": "html"})
        open_window(session)
        session.screen.key("ctrl+2")
        session.tree.wait("status bar", "Не удалось загрузить словарь")
        session.ask_web("/sandbox/faults", {})
        session.screen.key("ctrl+1")
        open_meeting(session, "Boats")
        session.press("push button", TEACH)
        fill(session, HEARD, "маркел")
        fill(session, CORRECT, "Murmeli")
        session.press("push button", ADD)
        wait_for(lambda: "маркел → Murmeli" in glossary(session).splitlines(), "the taught word")
        self.assertEqual(glossary(session).splitlines(), [*START.splitlines(), "маркел → Murmeli"])

    def test_signed_out(self):
        session = self.open_pane(account=False)
        session.tree.wait("status bar", EMPTY)
        self.add(session, "", "Figma")
        session.screen.key("ctrl+s")
        session.tree.wait("status bar", NO_ACCOUNT)
        self.assertEqual(self.copy(session), ["Figma"])
        self.assertEqual(row_names(session), ["Figma"])
        self.assertEqual(glossary(session), START)
