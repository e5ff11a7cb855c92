"""The two preferences on the panel, and the file that the service reads them from."""

from __future__ import annotations

import json

from session import JourneyTest, Session
from waiting import settles, wait_for

FULL_HINT = "Развёрнутый: полный протокол со всеми разделами"
SHORT_HINT = "Короткий: только итоги, открытые вопросы и поручения"
AUTO_RECORD = "Авто-запись при активном микрофоне"


def stored(session: Session) -> dict:
    """What the file holds; figures as they are written."""
    return json.loads(session.prefs_file.read_text("utf-8"), parse_int=str, parse_float=str)


def stores(session: Session, key: str, value) -> None:
    wait_for(lambda: session.prefs_file.exists() and stored(session).get(key) == value, f"{key} = {value} in the file")


def is_checked(session: Session, name: str) -> bool:
    node = session.tree.find(None, name)
    return node is not None and "checked" in node.states


class Format(JourneyTest):
    def test_a_press_is_written_and_foreign_keys_stay(self):
        session = self.open_session()
        session.write(session.prefs_file,
                      '{"locale": "ru", "x": 12345678901234567890123, "y": [1.10, 1e300, {"a": "\\u0436"}], "auto_record": true}')
        before = stored(session)
        session.open_panel()
        session.press("radio button", "Короткий")
        stores(session, "protocol_format", "short")
        self.assertEqual(stored(session), {**before, "protocol_format": "short"})
        self.assertIn("12345678901234567890123", session.prefs_file.read_text("utf-8"))
        session.tree.wait("label", SHORT_HINT)
        wait_for(lambda: is_checked(session, "Короткий") and not is_checked(session, "Развёрнутый"), "the choice to hold")
        session.press("radio button", "Развёрнутый")
        stores(session, "protocol_format", "full")
        session.tree.wait("label", FULL_HINT)

    def test_arrows(self):
        session = self.open_session()
        session.look_away()
        session.open_panel()
        wait_for(lambda: session.tree.focus_is_on("Начать запись"), "the focus on the orb")
        session.screen.key("Tab")
        wait_for(lambda: session.tree.focus_is_on("Формат протокола, Развёрнутый"),
                 "the focus on the format")
        for key, value in (("Right", "short"), ("Left", "full"), ("Down", "short"), ("Right", "short"), ("Up", "full")):
            session.screen.key(key)
            stores(session, "protocol_format", value)

    def test_the_service_obeys(self):
        session = self.open_session(engine=["--processing-seconds", "0.3"])
        session.open_panel()
        session.press("radio button", "Короткий")
        stores(session, "protocol_format", "short")
        session.press("push button", "Начать запись")
        session.tree.wait("label", "Идёт запись")
        session.press("push button", "Остановить запись")
        wait_for(lambda: session.status() == "idle", "the meeting to be done")
        protocols = list((session.home / "Documents").rglob("*.md"))
        self.assertTrue(protocols, "the service has left a protocol")
        self.assertNotIn("## Кратко", protocols[0].read_text("utf-8"), "what only the long form has")

    def test_what_another_writes_shows(self):
        session = self.open_session()
        session.open_panel()
        wait_for(lambda: is_checked(session, "Развёрнутый"), "the default choice")
        session.write(session.prefs_file, {"protocol_format": "short", "auto_record": False})
        wait_for(lambda: is_checked(session, "Короткий") and not is_checked(session, AUTO_RECORD), "the new choice")


class AutoRecord(JourneyTest):
    def test_off_and_on(self):
        session = self.open_session()
        session.open_panel()
        wait_for(lambda: is_checked(session, AUTO_RECORD), "the default")
        session.press(None, AUTO_RECORD)
        stores(session, "auto_record", False)
        wait_for(lambda: not is_checked(session, AUTO_RECORD), "the mark to go")
        self.assertRegex(session.tree.find(None, AUTO_RECORD).description, "^Авто-запись выключена")
        session.press(None, AUTO_RECORD)
        stores(session, "auto_record", True)

    def test_assistive_programs_know_a_check_box(self):
        session = self.open_session()
        session.open_panel()
        self.assertEqual(session.tree.wait(None, AUTO_RECORD).role, "check box")

    def test_a_text_is_no_switch(self):
        session = self.open_session(prefs={"auto_record": "false", "protocol_format": 1})
        session.open_panel()
        settles(lambda: is_checked(session, AUTO_RECORD) and is_checked(session, "Развёрнутый"), "the defaults")

    def test_a_damaged_file_is_replaced(self):
        session = self.open_session()
        session.write(session.prefs_file, "[1, 2]")
        session.open_panel()
        session.press(None, AUTO_RECORD)
        wait_for(lambda: session.prefs_file.read_text("utf-8") == '{"auto_record":false}', "the one key in the file")


class Keyboard(JourneyTest):
    def test_every_control_in_order(self):
        session = self.open_session()
        session.look_away()
        session.open_panel()
        expected = ["Начать запись", "Формат протокола, Развёрнутый", AUTO_RECORD, "Подключить", "Войти в Murmeli", "Протоколы",
                    "Открыть окно", "Настройки", "Выйти из Murmeli (снова открыть — через меню приложений)", "Начать запись"]
        for name in expected:
            wait_for(lambda: session.tree.focus_is_on(name), f"the focus on «{name}»", 3)
            session.screen.key("Tab")

    def test_space_presses_the_check_box(self):
        session = self.open_session()
        session.look_away()
        session.open_panel()
        wait_for(session.tree.focused, "the keyboard to be ours")
        session.screen.key("Tab", "Tab")
        wait_for(lambda: session.tree.focus_is_on(AUTO_RECORD), "the focus on the box")
        session.screen.key("space")
        stores(session, "auto_record", False)
        session.screen.key("Return")
        stores(session, "auto_record", True)
