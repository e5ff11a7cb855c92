"""The settings: in their own window and as a tab, and what each of them does to the desktop."""

from __future__ import annotations

from main_window import answer_dialog, open_window, quit_program, write_meeting
from session import JourneyTest, Session
from waiting import wait_for

SETTINGS = "Настройки"
FORMAT = "Формат протокола, {}"
INSTRUCTIONS = "Своя инструкция к протоколу"


class SettingsTest(JourneyTest):
    def show(self, session: Session) -> None:
        session.open_panel()
        session.press("push button", SETTINGS)
        session.wait_closed()
        session.tree.wait("heading", SETTINGS)


class Windows(SettingsTest):
    def test_the_panel_the_tab_and_the_one_window_agree(self):
        session = self.open_session()
        self.show(session)
        before = session.tree.all("frame", SETTINGS)
        self.assertEqual(len(before), 1)
        self.show(session)
        self.assertEqual([node.path for node in session.tree.all("frame", SETTINGS)], [before[0].path])

        open_window(session)
        session.screen.key("ctrl+3")
        wait_for(lambda: len(session.tree.all("combo box", FORMAT.format("Развёрнутый"))) == 2, "the tab")
        session.open_panel()
        session.press("radio button", "Короткий")
        session.wait_preference("protocol_format", "short")
        wait_for(lambda: len(session.tree.all("combo box", FORMAT.format("Короткий"))) == 2, "both to follow")

    def test_the_language_changes_in_every_open_window(self):
        session = self.open_session()
        write_meeting(session, "2026-03-03 10-00-00", title="Boats", decisions=["Paint them green."])
        open_window(session)
        session.tree.wait("page tab", "Встречи")
        self.show(session)
        session.press("combo box", "Язык интерфейса, Русский")
        session.press("list item", "English")
        session.wait_preference("locale", "en")
        session.tree.wait("heading", "Settings")
        session.tree.wait("page tab", "Meetings")
        session.tree.wait("text", "Search meetings")
        others = set(session.tree.text().splitlines()) - {SETTINGS}  # a window's title stays as it was made
        self.assertNotRegex("\n".join(others), "[А-Яа-яЁё]")
        session.press_icon()
        session.tree.wait("label", "Ready to record")


class Effects(SettingsTest):
    def test_instructions(self):
        session = self.open_session()
        self.show(session)
        rules = session.home / "Мои правила.md"
        rules.write_text("# Правила\nПиши коротко.\n" + "я" * 3000, "utf-8")
        session.press("push button", f"Загрузить: {INSTRUCTIONS}")
        answer_dialog(session, INSTRUCTIONS, rules)
        session.tree.wait("label", "Загружена, 6 КБ. Действует только для ваших встреч")
        target = session.notes / "my_instructions.md"
        self.assertEqual(target.read_bytes(), rules.read_bytes())
        session.press("push button", "Убрать инструкцию")
        session.tree.wait("push button", f"Загрузить: {INSTRUCTIONS}")
        self.assertFalse(target.exists())


class Leaving(SettingsTest):
    def test_no_process_stays_behind(self):
        session = self.open_session()
        recorder = session.notes / "pipeline/native_rec.py"
        recorder.parent.mkdir()
        begun = session.folder / "begun"
        recorder.write_text(f"import time\nopen({str(begun)!r}, 'w').close()\nwhile True: time.sleep(1)\n")
        before = session.processes_in_home().keys() | {session.program.pid}
        self.show(session)
        wait_for(begun.exists, "the question for permissions")
        quit_program(session)
        wait_for(lambda: not (session.processes_in_home().keys() - before), "all to end", 3)
