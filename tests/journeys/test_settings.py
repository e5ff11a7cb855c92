"""The settings: in their own window and as a tab, by mouse and by keyboard, and what each of them does."""

from __future__ import annotations

from main_window import answer_dialog, lines, open_window, quit_program, write_meeting
from session import JourneyTest, Session
from test_preferences import is_checked, stored, stores
from waiting import settles, wait_for

SETTINGS = "Настройки"
NOTIFICATIONS, LAUNCH, DELETE = "Уведомления", "Запускать при входе", "Удалять аудио после записи"
HOURS, DAYS = "Предел длительности, {} ч", "Хранить записи, {} дн."
INSTRUCTIONS, CLEAR = "Своя инструкция к протоколу", "Убрать инструкцию"
LOAD, REPLACE = f"Загрузить: {INSTRUCTIONS}", f"Заменить: {INSTRUCTIONS}"
NO_INSTRUCTIONS = "Не загружена — протокол пишется по общим правилам"


class SettingsTest(JourneyTest):
    def open_settings(self, **options) -> Session:
        session = self.open_session(**options)
        self.show(session)
        return session

    def show(self, session: Session) -> None:
        session.open_panel()
        session.press("push button", SETTINGS)
        session.wait_closed()
        session.tree.wait("frame", SETTINGS)
        session.tree.wait("heading", SETTINGS)

    def reach(self, session: Session, name: str, key="Tab") -> None:
        """By the keyboard alone, among more than a panel holds."""
        for _ in range(40):
            if session.tree.focus_is_on(name):
                return
            was = session.tree.focused()
            session.screen.key(key)
            wait_for(lambda: (now := session.tree.focused()) and now.path != (was and was.path), "the focus to move")
        raise AssertionError(f"the keyboard does not reach «{name}»")


class ByKeyboard(SettingsTest):
    def test_every_kind_of_control(self):
        session = self.open_session()
        session.look_away()
        session.open_panel()
        wait_for(lambda: session.tree.focus_is_on("Начать запись"), "the focus on the orb")
        session.tab_to(SETTINGS)
        session.screen.key("Return")
        session.wait_closed()
        session.tree.wait("heading", SETTINGS)

        self.reach(session, NOTIFICATIONS)
        session.screen.key("space")
        stores(session, "notifications", False)
        self.reach(session, HOURS.format(3))
        for key, hours in (("Up", "4"), ("Right", "5"), ("Up", "6"), ("Up", "6"), ("Down", "5"), ("Left", "4")):
            session.screen.key(key)
            stores(session, "max_record_hours", hours)
        self.reach(session, "Формат протокола, Развёрнутый")
        session.screen.key("Return")
        session.tree.wait("list item", "Короткий")
        session.screen.key("Down")
        session.screen.key("Return")
        stores(session, "protocol_format", "short")
        session.tree.wait_gone("list item", "Короткий")
        with self.case("a row that a toggle shows is on the way"):
            self.reach(session, DELETE)
            session.screen.key("Return")
            stores(session, "delete_source_on_success", False)
            session.tree.wait("label", "Хранить записи")
            self.reach(session, DAYS.format(3))
            session.screen.key("Left")
            stores(session, "keep_source_days", "2")
            self.reach(session, DELETE, "shift+Tab")
            session.screen.key("Return")
            session.tree.wait_gone("label", "Хранить записи")
            stores(session, "keep_source_days", "2")
        session.screen.key("Escape")
        session.tree.wait_gone("frame", SETTINGS)
        self.assertIsNone(session.program.poll())


class Windows(SettingsTest):
    def test_there_is_one_window(self):
        session = self.open_settings()
        before = session.tree.all("frame", SETTINGS)
        self.assertEqual(len(before), 1)
        self.show(session)
        self.assertEqual([node.path for node in session.tree.all("frame", SETTINGS)], [before[0].path])

    def test_the_language_changes_in_every_open_window(self):
        session = self.open_session()
        write_meeting(session, "2026-03-03 10-00-00", title="Boats", decisions=["Paint them green."])
        open_window(session)
        session.tree.wait("page tab", "Встречи")
        self.show(session)
        session.press("combo box", "Язык интерфейса, Русский")
        session.press("list item", "English")
        stores(session, "locale", "en")
        session.tree.wait("heading", "Settings")
        session.tree.wait("heading", "Recording")
        session.tree.wait("page tab", "Meetings")
        session.tree.wait("text", "Search meetings")
        titled_once = session.tree.find("frame", SETTINGS)
        self.assertTrue(titled_once, "the settings' title stays as it was made")
        others = set(session.tree.text().splitlines()) - {SETTINGS, "Русский"}
        self.assertNotRegex("\n".join(others), "[А-Яа-яЁё]")
        session.press_icon()
        session.tree.wait("label", "Ready to record")

    def test_the_panel_the_tab_and_the_window_agree(self):
        session = self.open_settings()
        open_window(session)
        session.screen.key("ctrl+3")
        wait_for(lambda: len(session.tree.all("check box", "Автозапись звонков")) == 2, "the tab")
        session.open_panel()
        session.press("radio button", "Короткий")
        stores(session, "protocol_format", "short")
        wait_for(lambda: len(session.tree.all("combo box", "Формат протокола, Короткий")) == 2, "both to follow")
        session.press(None, "Авто-запись при активном микрофоне")
        stores(session, "auto_record", False)
        wait_for(lambda: not any("checked" in node.states
                                 for node in session.tree.all("check box", "Автозапись звонков")), "both to follow")
        with self.case("and the other way round"):
            session.screen.key("Escape")
            session.wait_closed()
            session.screen.key("ctrl+1")
            session.tree.wait("text", "Поиск встреч")
            session.screen.key("ctrl+3")
            session.tree.wait("check box", "Автозапись звонков")
            session.write(session.prefs_file, {**stored(session), "auto_record": True})
            session.open_panel()
            wait_for(lambda: is_checked(session, "Авто-запись при активном микрофоне"), "the panel to follow")


class Effects(SettingsTest):
    def test_launch_at_login(self):
        session = self.open_settings()
        entry = session.home / ".config/autostart/murmeli.desktop"
        self.assertFalse(entry.exists())
        for hidden in ("true", "false"):
            session.press("check box", LAUNCH)
            stores(session, "launch_at_login", hidden == "false")
            wait_for(lambda: entry.exists() and f"Hidden={hidden}" in lines(entry), f"Hidden={hidden}")
        self.assertTrue(any(line.startswith('Exec="') and line.endswith('/murmeli"') for line in lines(entry)))

    def test_instructions(self):
        session = self.open_settings()
        session.tree.wait("label", NO_INSTRUCTIONS)
        rules = session.home / "Мои правила.md"
        rules.write_text("# Правила\nПиши коротко.\n" + "я" * 3000, "utf-8")
        target = session.notes / "my_instructions.md"
        self.choose(session, LOAD, rules)
        wait_for(lambda: target.exists() and target.read_bytes() == rules.read_bytes(), "the instructions in place")
        session.tree.wait("label", "Загружена, 6 КБ. Действует только для ваших встреч")

        with self.case("what is no text leaves the old ones"):
            picture = session.home / "picture.md"
            picture.write_bytes(b"\x89PNG\r\n\x1a\n\xff")
            self.choose(session, REPLACE, picture)
            session.tree.wait("label", "Файл не подошёл: он пуст или это не текст в UTF-8")
            self.assertEqual(target.read_bytes(), rules.read_bytes())
        session.press("push button", CLEAR)
        session.tree.wait("label", NO_INSTRUCTIONS)
        self.assertFalse(target.exists())
        session.tree.wait_gone("push button", CLEAR)
        session.tree.wait("push button", LOAD)

    def choose(self, session: Session, button: str, file) -> None:
        session.press("push button", button)
        answer_dialog(session, INSTRUCTIONS, file)

    def test_an_update_is_looked_for(self):
        session = self.open_settings(web=["--release", "0.8.0"])
        self.show_end(session)
        session.press("push button", "Проверить: Версия")
        session.tree.wait("label", "У вас последняя версия (0.8.0)")

    def show_end(self, session: Session) -> None:
        """The last rows, which the keyboard brings on screen."""
        self.reach(session, "Открыть: Журнал работы")

        def stands() -> bool:
            return bool(session.tree.find("push button", "Открыть: Журнал работы"))

        settles(stands, "the end of the settings")

    def test_notices_are_silent_when_they_are_off(self):
        session = self.open_settings(engine=["--processing-seconds", "0.3"])
        session.press("check box", NOTIFICATIONS)
        stores(session, "notifications", False)
        session.open_panel()
        session.press("push button", "Начать запись")
        wait_for(lambda: session.notifications() == ["пропущено: уведомления выключены"], "the decision in the log")


class Leaving(SettingsTest):
    def test_no_process_stays_behind(self):
        session = self.open_session()
        recorder = session.notes / "pipeline/native_rec.py"
        recorder.parent.mkdir(exist_ok=True)
        begun = session.folder / "begun"
        recorder.write_text(f"import time\nopen({str(begun)!r}, 'w').close()\nwhile True: time.sleep(1)\n")
        before = session.processes_in_home().keys() | {session.program.pid}
        self.show(session)
        wait_for(begun.exists, "the question for permissions")
        quit_program(session)
        wait_for(lambda: not (session.processes_in_home().keys() - before), "all to end", 3)
