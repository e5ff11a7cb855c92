"""What Murmeli says unasked: the banner about the account, and the toasts."""

from __future__ import annotations

from session import JourneyTest, Session
from waiting import settles, stays, wait_for

TITLE = "Не найден пользователь — авторизуйтесь"
BODY = ("Хотел доставить протокол встречи, но не смог найти твой аккаунт. "
        "Войди в Murmeli — и всё автоматически доставится.")
CLOSE = "Закрыть уведомление"


class AuthorisationBanner(JourneyTest):
    def raise_flag(self, session: Session, content="") -> None:
        session.write(session.flag_file, content)
        session.wait_open()

    def test_the_flag_opens_the_panel_and_the_cross_lowers_it(self):
        session = self.open_session()
        session.look_away()
        self.raise_flag(session)
        session.tree.wait("alert message", f"{TITLE}. {BODY}")
        session.press("push button", CLOSE)
        wait_for(lambda: not session.flag_file.exists(), "the flag to be removed")
        session.tree.wait_gone("alert message")
        stays(session.panel_is_open, "the panel without its banner", 2)
        self.raise_flag(session)
        session.tree.wait("alert message", f"{TITLE}. {BODY}")

    def test_escape_closes_the_panel_and_leaves_the_request(self):
        session = self.open_session()
        session.look_away()
        self.raise_flag(session)
        session.tree.wait("alert message")
        wait_for(session.tree.focused, "the keyboard to be ours")
        session.screen.key("Escape")
        session.wait_closed()
        self.assertTrue(session.flag_file.exists(), "only the cross lowers it")
        session.open_panel()
        session.tree.wait("alert message", f"{TITLE}. {BODY}")

    def test_a_closed_panel_stays_closed_while_the_flag_stays(self):
        session = self.open_session()
        session.look_away()
        self.raise_flag(session)
        session.screen.click(300, 700)
        session.wait_closed()
        stays(lambda: not session.panel_is_open(), "the closed panel", 3.5)
        self.assertTrue(session.flag_file.exists())
        session.open_panel()
        session.tree.wait("alert message")

    def test_words_of_the_flag(self):
        session = self.open_session()
        session.look_away()
        for label, content, expected in (
            ("own", {"title": "Войдите снова", "body": "Протокол ждёт."}, "Войдите снова. Протокол ждёт."),
            ("empty title", {"title": "", "body": "Текст"}, f"{TITLE}. Текст"),
            ("numbers", {"title": 5, "body": None}, f"{TITLE}. {BODY}"),
            ("not JSON", "{", f"{TITLE}. {BODY}"),
            ("markup", {"title": "<b>Жирно</b>", "body": "a & b"}, "<b>Жирно</b>. a & b"),
        ):
            with self.case(label):
                session.write(session.flag_file, content)
                session.tree.wait("alert message", expected)

    def test_the_service_takes_the_flag_back(self):
        session = self.open_session()
        session.look_away()
        self.raise_flag(session)
        session.tree.wait("alert message")
        session.flag_file.unlink()
        session.tree.wait_gone("alert message")
        self.assertTrue(session.panel_is_open())

    def test_a_flag_that_was_there_first(self):
        session = self.open_session(program=False)
        session.look_away()
        session.write(session.flag_file, "")
        session.start_program()
        session.tree.wait("alert message", f"{TITLE}. {BODY}")
        settles(session.panel_is_open, "the panel")
        first = session.tree.wait("frame", "Murmeli").extents
        session.screen.click(300, 700)
        session.wait_closed()
        session.open_panel()
        self.assertEqual(session.tree.wait("frame", "Murmeli").extents, first, "under the icon at once")

    def test_the_service_itself_raises_it(self):
        session = self.open_session(engine=["--processing-seconds", "0.3", "--fault", "auth"])
        session.open_panel()
        session.press("push button", "Начать запись")
        session.tree.wait("label", "Идёт запись")
        session.press("push button", "Остановить запись")
        session.tree.wait("alert message", lambda name: name.startswith("Не найден пользователь — войдите в аккаунт. "))
        self.assertTrue(session.flag_file.exists())


class Toasts(JourneyTest):
    def test_switched_off(self):
        session = self.open_session(prefs={"notifications": False}, state={"status": "idle"})
        session.write_state(status="recording")
        wait_for(session.notifications, "the line in the log")
        stays(lambda: not session.screen.windows(), "the screen without a toast", 1)
        session.write(session.prefs_file, {"notifications": True})
        session.write_state(status="idle")
        session.tree.wait("alert message", lambda name: name.startswith("Запись завершена"))
        self.assertEqual(session.notifications(), ["пропущено: уведомления выключены", "показано: Запись завершена"])

    def test_two_stand_below_each_other_and_leave_by_themselves(self):
        session = self.open_session(state={"status": "idle"})
        session.write_state(status="recording")
        first = session.tree.wait("alert message", lambda name: name.startswith("Murmeli записывает встречу"))
        session.write_state(status="idle")
        second = session.tree.wait("alert message", lambda name: name.startswith("Запись завершена"))
        self.assertEqual((first.extents.width, first.extents.height), (330, 74))
        self.assertEqual(first.extents.right, 1280 - 12)
        self.assertEqual(first.extents.y, 24 + 8)  # below the tray
        self.assertEqual(second.extents.x, first.extents.x)
        self.assertEqual(second.extents.y - first.extents.y, 82)
        session.tree.wait_gone("alert message", seconds=8)
        wait_for(lambda: not session.screen.windows(), "the toasts' windows to go")

    def test_one_covers_no_click(self):
        session = self.open_session(state={"status": "idle"})
        session.open_panel()
        session.write_state(status="recording")
        toast = session.tree.wait("alert message", lambda name: name.startswith("Murmeli записывает встречу"))
        orb = session.orb()
        self.assertGreater(toast.extents.bottom, orb.extents.y, "the toast lies over the panel")
        session.screen.click(toast.extents.middle[0], orb.extents.y + 30)
        wait_for(session.command_file.exists, "the press to reach the orb below the toast")

    def test_no_line_for_what_is_no_recording(self):
        session = self.open_session(state={"status": "idle"})
        session.open_panel()
        session.write_state(status="processing")
        session.tree.wait("label", "Готовлю протокол")
        session.write_state(status="idle")
        session.tree.wait("label", "Готов к записи")
        self.assertEqual(session.notifications(), [])
        self.assertEqual(session.tree.all("alert message"), [])
