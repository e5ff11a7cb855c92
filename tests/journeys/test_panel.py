"""The panel as a piece of the desktop: where it stands, what opens and closes it, how it follows the desktop."""

from __future__ import annotations

from screen import Rectangle, near
from session import JourneyTest, Session
from waiting import settles, stays, wait_for

DARK_PANEL = (0x16, 0x17, 0x1D)
LIGHT_PANEL = (0xFB, 0xFB, 0xFC)
ELSEWHERE = (300, 700)
SCREEN_WIDTH = 1280
TRAY_BOTTOM = 24


def ground(session: Session) -> tuple[int, int, int]:
    """The panel's own colour, in its left margin beside a control."""
    button = session.tree.wait("push button", lambda name: name in ("Войти в Murmeli", "Sign in to Murmeli"))
    x, y = button.extents.x - 6, button.extents.middle[1]
    return session.screen.picture(Rectangle(x, y, 1, 1)).at(0, 0)


class Toggling(JourneyTest):
    def test_the_icon_opens_and_closes(self):
        session = self.open_session()
        for expected in (True, False, True, False):
            session.press_icon()
            settles(lambda: session.panel_is_open() == expected, f"the panel {'open' if expected else 'closed'}")

    def test_a_press_elsewhere_closes(self):
        session = self.open_session()
        session.open_panel()
        session.screen.click(*ELSEWHERE)
        settles(lambda: not session.panel_is_open(), "the closed panel")
        session.open_panel()
        session.screen.click(*ELSEWHERE, button=3)
        settles(lambda: not session.panel_is_open(), "the panel closed by the right button")
        session.screen.key("Escape")  # the desktop's own menu
        session.press_icon()
        settles(session.panel_is_open, "the panel that one press opens again")

    def test_a_press_beside_the_panel_closes(self):
        session = self.open_session()
        orb = session.open_panel()
        frame = session.tree.wait("frame", "Murmeli")
        # The shadow around the panel belongs to its window, but looks like the desktop.
        session.screen.click(frame.extents.x + 10, orb.extents.y)
        settles(lambda: not session.panel_is_open(), "the closed panel")

    def test_another_window_takes_over_while_the_pointer_lies_on_the_icon(self):
        session = self.open_session()
        session.press_icon()
        session.wait_open()
        session.start("another window", ["xmessage", "Совсем другое"])
        settles(lambda: not session.panel_is_open(), "the closed panel")

    def test_presses_inside_leave_it_open(self):
        session = self.open_session()
        session.open_panel()
        title = session.tree.wait("label", "Готов к записи")
        session.screen.click(*title.extents.middle)
        hint = session.tree.wait("label", "Telegram")
        session.screen.click(*hint.extents.middle, button=3)
        stays(session.panel_is_open, "the panel", 1)

    def test_a_quick_double_click_ends_as_it_began(self):
        session = self.open_session()
        session.screen.click(*session.icon().middle, times=2)
        settles(lambda: not session.panel_is_open(), "the panel closed, as before")
        session.open_panel()
        session.screen.click(*session.icon().middle, times=2)
        settles(session.panel_is_open, "the panel open, as before")

    def test_escape_closes(self):
        session = self.open_session()
        session.open_panel()
        wait_for(session.tree.focused, "the keyboard to be ours")
        session.screen.key("Escape")
        settles(lambda: not session.panel_is_open(), "the closed panel")


class Place(JourneyTest):
    def test_under_the_icon_and_inside_the_screen(self):
        session = self.open_session()
        session.open_panel()
        wait_for(lambda: near(ground(session), DARK_PANEL), "the panel to have faded in")
        icon = session.icon()
        row_of_title = session.tree.wait("push button", "Войти в Murmeli").extents.middle[1]
        body = self.run_of_panel(session, row_of_title)
        self.assertAlmostEqual(body[1], SCREEN_WIDTH - 8, delta=1)
        self.assertAlmostEqual(body[1] - body[0], 340, delta=2)

        top = self.top_of_panel(session, body[0] + 40)
        self.assertAlmostEqual(top, icon.bottom + 3 + 9, delta=2, msg="the arrow stands between icon and panel")
        arrow = self.run_of_panel(session, top - 4)
        self.assertIsNotNone(arrow, "there is an arrow on the panel's top edge")
        self.assertLess(arrow[1] - arrow[0], 14)
        middle = (arrow[0] + arrow[1]) / 2
        self.assertAlmostEqual(middle, min(icon.x + icon.width / 2, SCREEN_WIDTH - 8 - 32), delta=1.5)

    def run_of_panel(self, session: Session, y: int) -> tuple[int, int] | None:
        """First and last (excluded) column in which the panel's colour stands in this row."""
        row = session.screen.picture(Rectangle(0, y, SCREEN_WIDTH, 1)).row(0)
        found = [x for x, pixel in enumerate(row) if near(pixel, DARK_PANEL)]
        return (found[0], found[-1] + 1) if found else None

    def top_of_panel(self, session: Session, x: int) -> int:
        column = session.screen.picture(Rectangle(x, TRAY_BOTTOM, 1, 200))
        return TRAY_BOTTOM + next(y for y in range(200) if near(column.at(0, y), DARK_PANEL, 6))

    def test_margins_are_equal_on_both_sides(self):
        for language in ("ru", "en"):
            with self.case(language):
                session = self.open_session(language=language)
                session.open_panel()
                frame = session.tree.wait("frame", "Murmeli").extents
                wide = session.tree.wait("push button", ("Войти в Murmeli", "Sign in to Murmeli")).extents
                self.assertEqual(wide.x - frame.x, frame.right - wide.right)
                body = Rectangle(frame.x + 48, frame.y, frame.width - 96, frame.height)
                for node in session.tree.all(None, lambda name: name and name != "Murmeli"):
                    self.assertTrue(body.contains(node.extents), f"{node} at {node.extents} leaves {body}")
                session.close()

    def test_it_grows_with_its_content(self):
        session = self.open_session()
        session.open_panel()
        frame = session.tree.wait("frame", "Murmeli").extents
        session.write(session.flag_file, "")
        session.tree.wait("alert message")
        taller = wait_for(lambda: (found := session.tree.find("frame", "Murmeli").extents).height > frame.height + 60
                          and found, "the panel to grow with the banner")
        self.assertEqual((taller.x, taller.y, taller.width), (frame.x, frame.y, frame.width))
        session.press("push button", "Закрыть уведомление")
        wait_for(lambda: session.tree.find("frame", "Murmeli").extents == frame, "the panel to shrink again")


class Language(JourneyTest):
    def test_a_change_shows_while_the_panel_is_open(self):
        session = self.open_session(state={"status": "idle"})
        session.open_panel()
        session.tree.wait("label", "Готов к записи")
        session.write(session.prefs_file, {"locale": "en"})
        session.tree.wait("label", "Ready to record", 5)
        for role, name in (("push button", "Start recording"), ("radio button", "Short"),
                           ("push button", "Protocols"), ("push button", "Sign in to Murmeli"),
                           ("label", "Start a call — I will record it automatically")):
            session.tree.wait(role, name, 1)
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.write(session.prefs_file, {"locale": "ru"})
        session.tree.wait("label", "Готов к записи", 5)

    def test_the_desktop_language_holds_where_none_is_chosen(self):
        for language, title in (("en", "Ready to record"), ("de", "Готов к записи"), ("ru", "Готов к записи")):
            with self.case(language):
                session = self.open_session(language=language)
                session.open_panel()
                session.tree.wait("label", title)
                session.close()


class Look(JourneyTest):
    def test_dark_without_a_desktop_that_says(self):
        session = self.open_session()
        session.open_panel()
        wait_for(lambda: near(ground(session), DARK_PANEL), "the dark panel")

    def test_the_desktop_chooses_and_changes_its_mind(self):
        session = self.open_session(portal=["color-scheme=2"])
        session.open_panel()
        wait_for(lambda: near(ground(session), LIGHT_PANEL), "the light panel")
        self.change(session, "color-scheme 1")
        wait_for(lambda: near(ground(session), DARK_PANEL), "the dark panel")
        self.change(session, "color-scheme 2")
        wait_for(lambda: near(ground(session), LIGHT_PANEL), "the light panel again")

    def test_a_dark_desktop(self):
        session = self.open_session(portal=["color-scheme=1"])
        session.open_panel()
        wait_for(lambda: near(ground(session), DARK_PANEL), "the dark panel")

    def test_movement_stops_where_the_desktop_asks(self):
        session = self.open_session(portal=["enable-animations=true"])
        orb = session.open_panel()
        look = lambda: session.screen.picture(orb.extents).pixels
        first = look()
        wait_for(lambda: look() != first, "the orb to move", 2)
        self.change(session, "enable-animations false")
        settled = [look()]

        def stands():
            settled.append(look())
            return settled[-1] == settled[-2]

        settles(stands, "the orb to stand still", calm=1.0)
        self.change(session, "enable-animations true")
        wait_for(lambda: look() != settled[-1], "the orb to move again", 2)

    def test_still_from_the_start_and_while_recording(self):
        # The desktop's own setting, and another one's default that its portal answers for.
        session = self.open_session(portal=["reduced-motion=1", "enable-animations=true"],
                                    state={"status": "recording", "since": 0}, prefs={"notifications": False})
        orb = session.open_panel()
        look = lambda: session.screen.picture(orb.extents).pixels
        settled = [look()]

        def stands():
            settled.append(look())
            return settled[-1] == settled[-2]

        settles(stands, "the recording orb to stand still", calm=1.0)

    def change(self, session: Session, line: str) -> None:
        session.portal.stdin.write(line.encode() + b"\n")
        session.portal.stdin.flush()


class Footer(JourneyTest):
    def test_protocols_open_their_folder(self):
        session = self.open_session(engine=[])
        session.open_panel()
        session.press("push button", "Протоколы")
        wait_for(session.opened_urls, "the folder to open")
        self.assertEqual(session.opened_urls(), [f"file://{session.home}/Documents/Vexlor/Vexlor/Meetings"])
        session.wait_closed()

    def test_the_button_opens_the_window(self):
        session = self.open_session()
        session.open_panel()
        session.press("push button", "Открыть окно")
        session.tree.wait("frame", "Встречи")
        session.wait_closed()

    def test_links_go_to_the_browser(self):
        session = self.open_session(state={"status": "idle", "telegram_connected": False})
        session.open_panel()
        session.press("push button", "Подключить")
        wait_for(session.opened_urls, "the bot's link to open")
        session.write_state(status="idle", telegram_connected=True)
        session.tree.wait("label", "Подключено")
        session.tree.wait_gone("push button", "Подключить")
        for url in session.opened_urls():
            self.assertRegex(url, r"\Ahttps?://[^/]+/")
