#!/usr/bin/env python3
"""Sets what the recorder's stand-in may do, and what the person answers when it asks."""

from __future__ import annotations

import argparse
import json
import math
import sys
from pathlib import Path

import homes
import native_rec
from homes import say


def check(name: str, value) -> None:
    """Raises ValueError."""
    if name not in native_rec.DEFAULTS:
        raise ValueError(f"unknown permission {name!r}")
    if name.endswith("microphone"):
        fits = value in native_rec.MICROPHONE
    elif name == "think_seconds":
        fits = type(value) in (int, float) and 0 <= value < math.inf
    else:
        fits = isinstance(value, bool)
    if not fits:
        raise ValueError(f"{name} cannot be {value!r}")


def change(home: Path, members: dict) -> dict:
    """Stores these members and returns all of them. Raises ValueError, and then stores nothing."""
    for name, value in members.items():
        check(name, value)
    if members.keys() & {"screen", "answer_screen"}:
        members = {"screen_asked": False} | members  # a new answer is for a new question
    return native_rec.store(home, members)


def parse(words: list[str]) -> dict:
    members = {}
    for word in words:
        name, _, value = word.partition("=")
        try:
            members[name] = json.loads(value)
        except ValueError:
            members[name] = value
    return members


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--home", required=True, metavar="DIR")
    parser.add_argument("members", nargs="*", metavar="NAME=VALUE", help=", ".join(native_rec.DEFAULTS))
    arguments = parser.parse_args()
    try:
        home = homes.open_home(arguments.home)
        state = change(home.folder, parse(arguments.members))
    except (homes.Refused, ValueError) as refusal:
        print(f"sandbox: refused: {refusal}", file=sys.stderr, flush=True)
        return 1
    say(json.dumps(state))
    return 0


if __name__ == "__main__":
    sys.exit(main())
