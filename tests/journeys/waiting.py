"""How a journey waits: for a condition, never for a while."""

from __future__ import annotations

import time


def wait_for(condition, what: str, seconds: float = 10):
    """Polls until `condition()` gives something true, and returns that."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {seconds} s in vain for {what}")
        time.sleep(0.04)


def stays(condition, what: str, seconds: float) -> None:
    """The counterpart for what must not happen: fails as soon as `condition()` no longer holds."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if not condition():
            raise AssertionError(f"did not last {seconds} s: {what}")
        time.sleep(0.04)


def settles(condition, what: str, calm: float = 0.8, seconds: float = 10) -> None:
    """Waits until `condition()` has held without a break for `calm` seconds."""
    deadline = time.monotonic() + seconds
    since = None
    while since is None or time.monotonic() - since < calm:
        now = time.monotonic()
        if now > deadline:
            raise AssertionError(f"waited {seconds} s in vain for {what} to settle")
        since = (since or now) if condition() else None
        time.sleep(0.03)


def at_rest(look, what: str, calm: float):
    """What `look()` gives once it has given the same, and something, for `calm` seconds."""
    seen = [None]

    def rests() -> bool:
        seen.append(look())
        return bool(seen[-1]) and seen[-1] == seen[-2]

    settles(rests, what, calm)
    return seen[-1]
