"""What the icon in the tray shows."""

from __future__ import annotations

from screen import near
from session import Session

BRIGHT_RED = (218, 62, 79)
DIM_RED = (99, 38, 47)  # the same at 0.4 over the tray's ground
ENOUGH = 60  # pixels of 22 × 22 that the disc fills at the least


def _count(session: Session, colour: tuple[int, int, int]) -> int:
    return sum(near(pixel, colour, 12) for pixel in session.screen.picture(session.icon()).colours())


def is_bright_red(session: Session) -> bool:
    return _count(session, BRIGHT_RED) >= ENOUGH


def is_dim_red(session: Session) -> bool:
    return _count(session, DIM_RED) >= ENOUGH


def is_template(session: Session) -> bool:
    """Drawn in the tray's own ink: light shapes, and nothing of the red disc."""
    pixels = session.screen.picture(session.icon()).colours()
    light = sum(min(pixel) > 200 for pixel in pixels)
    red = sum(pixel[0] - max(pixel[1:]) > 30 for pixel in pixels)
    return light >= 15 and red == 0


def pixels(session: Session) -> bytes:
    return session.screen.picture(session.icon()).pixels
