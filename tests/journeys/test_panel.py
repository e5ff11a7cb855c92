"""The panel as a piece of the desktop: where it stands, what opens and closes it, how it follows the desktop."""

from __future__ import annotations

from screen import Rectangle, near
from session import JourneyTest, Session
from waiting import at_rest, settles, stays, wait_for

DARK_PANEL = (0x16, 0x17, 0x1D)
LIGHT_PANEL = (0xFB, 0xFB, 0xFC)
ELSEWHERE = (300, 700)
SCREEN_WIDTH = 1280
TRAY_BOTTOM = 24
SIGN_IN = ("Войти в Murmeli", "Sign in to Murmeli")


def ground(session: Session) -> tuple[int, int, int]:
    """The panel's own colour, in its left margin beside a control."""
    button = session.tree.wait("push button", SIGN_IN)
    x, y = button.extents.x - 6, button.extents.middle[1]
    return session.screen.picture(Rectangle(x, y, 1, 1)).at(0, 0)


def settle_closed(session: Session) -> None:
    settles(lambda: not session.panel_is_open(), "the closed panel")


class Toggling(JourneyTest):
    def test_the_icon_opens_and_closes(self):
        session = self.open_session()
        for _ in range(2):
            session.press_icon()
            settles(session.panel_is_open, "the open panel")
            session.press_icon()
            settle_closed(session)
        session.screen.click(*session.icon().middle, times=2)
        settle_closed(session)  # a double click ends as it began
        session.open_panel()
        session.screen.click(*session.icon().middle, times=2)
        settles(session.panel_is_open, "the panel open, as before")

    def test_a_press_elsewhere_and_escape_close(self):
        session = self.open_session()
        session.open_panel()
        session.screen.click(*ELSEWHERE)
        settle_closed(session)
        orb = session.open_panel()
        # The shadow around the panel belongs to its window, but looks like the desktop.
        session.screen.click(session.tree.wait("frame", "Murmeli").extents.x + 10, orb.extents.y)
        settle_closed(session)
        session.open_panel()
        session.screen.click(*ELSEWHERE, button=3)
        settle_closed(session)
        session.screen.key("Escape")  # the desktop's own menu
        session.press_icon()
        settles(session.panel_is_open, "the panel that one press opens again")
        session.look_away()
        wait_for(session.tree.focused, "the keyboard to be ours")
        session.screen.key("Escape")
        settle_closed(session)

    def test_another_window_takes_over_where_a_press_inside_does_not(self):
        session = self.open_session()
        session.press_icon()
        session.wait_open()
        session.screen.click(*session.tree.wait("label", "Готов к записи").extents.middle)
        session.screen.click(*session.tree.wait("label", "Telegram").extents.middle, button=3)
        stays(session.panel_is_open, "the panel", 1)
        session.screen.move(*session.icon().middle)
        session.start("another window", ["xmessage", "Совсем другое"])
        settle_closed(session)


class Place(JourneyTest):
    def test_under_the_icon_and_inside_the_screen(self):
        session = self.open_session()
        session.open_panel()
        wait_for(lambda: near(ground(session), DARK_PANEL), "the panel to have faded in")
        icon = session.icon()
        body = self.run_of_panel(session, session.tree.wait("push button", SIGN_IN).extents.middle[1])
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

    def test_everything_stands_within_its_margins_in_both_languages(self):
        session = self.open_session(state={"status": "idle"})
        session.open_panel()
        for language, title in (("ru", "Готов к записи"), ("en", "Ready to record")):
            with self.case(language):
                session.write(session.prefs_file, {"locale": language})
                session.tree.wait("label", title)
                frame = session.tree.wait("frame", "Murmeli").extents
                wide = session.tree.wait("push button", SIGN_IN).extents
                self.assertEqual(wide.x - frame.x, frame.right - wide.right)
                body = Rectangle(frame.x + 48, frame.y, frame.width - 96, frame.height)
                for node in session.tree.all(None, lambda name: name and name != "Murmeli"):
                    self.assertTrue(body.contains(node.extents), f"{node} at {node.extents} leaves {body}")


class Look(JourneyTest):
    def test_the_desktop_chooses_and_changes_its_mind(self):
        session = self.open_session(portal=["color-scheme=2", "text-scaling-factor=1.3"])
        session.open_panel()
        with self.case("larger texts and what holds them"):
            wide = session.tree.wait("push button", SIGN_IN).extents.width
            self.assertEqual(wide, round(340 * 1.3) - 2 * 12)
            self.change(session, "text-scaling-factor 1")
            wait_for(lambda: session.tree.wait("push button", SIGN_IN).extents.width == 340 - 2 * 12, "the usual size")
        wait_for(lambda: near(ground(session), LIGHT_PANEL), "the light panel")
        self.change(session, "color-scheme 1")
        wait_for(lambda: near(ground(session), DARK_PANEL), "the dark panel")

    def test_movement_stops_where_the_desktop_asks(self):
        session = self.open_session(portal=["enable-animations=true"])
        orb = session.open_panel()
        self.wait_moving(session, orb.extents)
        self.change(session, "enable-animations false")
        self.settle_still(session, orb.extents)
        self.change(session, "enable-animations true")
        self.wait_moving(session, orb.extents)

    def test_still_from_the_start_and_while_recording(self):
        # The desktop's own setting, and another one's default that its portal answers for.
        session = self.open_session(portal=["reduced-motion=1", "enable-animations=true"],
                                    state={"status": "recording", "since": 0}, prefs={"notifications": False})
        self.settle_still(session, session.open_panel().extents)

    def change(self, session: Session, line: str) -> None:
        session.portal.stdin.write(line.encode() + b"\n")
        session.portal.stdin.flush()

    def wait_moving(self, session: Session, part: Rectangle) -> None:
        first = session.screen.picture(part).pixels
        wait_for(lambda: session.screen.picture(part).pixels != first, "the orb to move", 2)

    def settle_still(self, session: Session, part: Rectangle) -> None:
        at_rest(lambda: session.screen.picture(part).pixels, "the orb, which should stand still,", 1.0)
