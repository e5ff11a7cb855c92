"""What Murmeli says unasked: the banner about the account, and the toasts."""

from __future__ import annotations

from datetime import datetime, timezone

from main_window import open_window, wait_detail, wait_row, write_meeting
from session import JourneyTest
from waiting import at_rest, settles, stays, wait_for

TITLE = "Не найден пользователь — авторизуйтесь"
BODY = ("Хотел доставить протокол встречи, но не смог найти твой аккаунт. "
        "Войди в Murmeli — и всё автоматически доставится.")
BANNER = f"{TITLE}. {BODY}"


class AuthorisationBanner(JourneyTest):
    def test_the_flag_opens_the_panel_once_and_only_the_cross_lowers_it(self):
        session = self.open_session()
        session.look_away()
        session.write(session.flag_file, "")
        session.wait_open()
        session.tree.wait("alert message", BANNER)
        session.screen.click(300, 700)
        session.wait_closed()
        stays(lambda: not session.panel_is_open(), "the closed panel", 3.5)
        self.assertTrue(session.flag_file.exists())

        session.open_panel()
        frame = session.tree.wait("frame", "Murmeli").extents
        session.press("push button", "Закрыть уведомление")
        wait_for(lambda: not session.flag_file.exists(), "the flag to be removed")
        session.tree.wait_gone("alert message")
        smaller = at_rest(lambda: session.tree.find("frame", "Murmeli").extents, "the panel", 0.3)
        self.assertEqual((smaller.x, smaller.y, smaller.width), (frame.x, frame.y, frame.width))
        self.assertLess(smaller.height, frame.height - 60, "the window follows its content")
        stays(session.panel_is_open, "the panel without its banner", 2)

    def test_a_flag_that_was_there_first_opens_it_in_its_place(self):
        session = self.open_session(program=False)
        session.look_away()
        session.write(session.flag_file, "")
        session.start_program()
        session.tree.wait("alert message", BANNER)
        settles(session.panel_is_open, "the panel")
        first = session.tree.wait("frame", "Murmeli").extents
        session.screen.click(300, 700)
        session.wait_closed()
        session.open_panel()
        self.assertEqual(session.tree.wait("frame", "Murmeli").extents, first, "under the icon at once")


class Toasts(JourneyTest):
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


class Pulse(JourneyTest):
    def test_a_service_that_does_not_start_is_told_and_asked_again_from_the_card(self):
        session = self.open_session(engine=["--fault", "deaf"])
        session.open_panel()
        session.press("push button", "Начать запись")
        wait_for(session.command_file.exists, "the request")
        asked = session.command_file.read_bytes()
        told = "Запись не началась. Служба не ответила за 12 секунд"
        session.tree.wait("alert message", told, 16)
        wait_for(lambda: len(session.tree.all("alert message", told)) == 2, "the banner and its card")
        [card] = [node for node in session.tree.all("alert message", told) if node.extents.width == 330]
        self.assertEqual(card.extents.height, 112)
        [again] = [node for node in session.tree.all("push button", "Попробовать ещё")
                   if card.extents.contains(node.extents)]
        session.screen.click(*again.extents.middle)
        wait_for(lambda: session.command_file.read_bytes() != asked, "the press on the card to ask again")
        session.tree.wait_gone("alert message", told)


class Marks(JourneyTest):
    def test_a_mark_goes_to_its_meeting_by_the_keyboard_alone(self):
        session = self.open_session(state={"status": "idle"})
        started = datetime.now(timezone.utc)
        session.write_state(status="recording", since=started.timestamp())
        session.open_panel()
        session.tab_to("Пометка к этой минуте")
        session.screen.type("stand")
        session.screen.key("Return")
        noted = session.tree.wait("list item", lambda name: name.endswith(", stand")).name
        session.write_state(status="processing")
        write_meeting(session, "синк", title="Синк", _meta={"started_at": started.isoformat(), "duration_min": 30})
        session.screen.key("Escape")
        open_window(session)
        wait_row(session, "Синк")
        session.screen.key("Down", "Return")
        wait_detail(session, "Синк")
        self.assertEqual(session.tree.wait("list item", lambda name: name.endswith(", stand")).name, noted)
        session.tab_to("Изменить пометку")
        session.screen.key("space")
        wait_for(lambda: (now := session.tree.focused()) and now.role == "text", "the mark to be edited")
        session.screen.key("ctrl+a")
        session.screen.type("rig")
        session.screen.key("Return")
        session.tree.wait("list item", lambda name: name.endswith(", rig"))
        session.tab_to("Убрать пометку")
        session.screen.key("space")
        session.tree.wait("alert message", "Пометка убрана")
        session.tab_to("Вернуть")
        session.screen.key("space")
        session.tree.wait("list item", lambda name: name.endswith(", rig"))
