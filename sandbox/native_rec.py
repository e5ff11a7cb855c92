#!/usr/bin/env python3
"""The recorder's stand-in: tells whether it may hear the microphone and see the screen, and asks for it.

It is installed alone, so it needs none of the sandbox's other files.
"""

from __future__ import annotations

import argparse
import json
import os
import pwd
import sys
import time
from pathlib import Path

MICROPHONE = ("authorized", "denied", "restricted", "notDetermined")
DEFAULTS = {
    "microphone": "notDetermined",
    "screen": False,
    "screen_asked": False,  # the screen has no third state of its own, but a person is asked only once
    "answer_microphone": "authorized",
    "answer_screen": True,
    "think_seconds": 0.6,
    "broken": False,
}


def home_folder() -> Path:
    here = Path(__file__).resolve().parent
    if (here.name, here.parent.name) == ("pipeline", "MeetingNotes"):
        return here.parents[1]
    home = Path(os.environ.get("HOME", "/nonexistent"))
    if home.resolve() == Path(pwd.getpwuid(os.getuid()).pw_dir).resolve():
        sys.exit(f"sandbox: refused: {home} is a real home folder")
    return home


def permissions_file(home: Path) -> Path:
    return home / "MeetingNotes" / ".sandbox-permissions.json"


def read(home: Path) -> dict:
    try:
        stored = json.loads(permissions_file(home).read_text(encoding="utf-8"))
    except (OSError, ValueError):
        stored = {}
    return DEFAULTS | (stored if isinstance(stored, dict) else {})


def store(home: Path, members: dict) -> dict:
    """Read again before writing: a person may have changed the rest while being asked."""
    changed = read(home) | members
    path = permissions_file(home)
    path.parent.mkdir(parents=True, exist_ok=True)
    temporary = path.with_name(f".{path.name}.{os.getpid()}.tmp")
    temporary.write_text(json.dumps(changed, indent=1), encoding="utf-8")
    os.replace(temporary, path)
    return changed


def request_microphone(home: Path, state: dict) -> dict:
    if state["microphone"] != "notDetermined":
        return state
    time.sleep(state["think_seconds"])
    return store(home, {"microphone": read(home)["answer_microphone"]})


def request_screen(home: Path, state: dict) -> dict:
    if state["screen"] or state["screen_asked"]:
        return state
    time.sleep(state["think_seconds"])
    return store(home, {"screen": read(home)["answer_screen"], "screen_asked": True})


def note_call(home: Path) -> None:
    with open(home / "MeetingNotes" / ".sandbox-recorder-calls.log", "a", encoding="utf-8") as log:
        log.write(" ".join(sys.argv[1:]) + "\n")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    action = parser.add_mutually_exclusive_group(required=True)
    action.add_argument("--status", action="store_const", dest="ask", const=lambda home, state: state)
    action.add_argument("--request-mic", action="store_const", dest="ask", const=request_microphone)
    action.add_argument("--request-screen", action="store_const", dest="ask", const=request_screen)
    arguments = parser.parse_args()
    home = home_folder()
    note_call(home)
    state = read(home)
    if state["broken"]:
        raise ImportError("cannot open the sound library: no suitable image found")
    state = arguments.ask(home, state)
    print(json.dumps({"microphone": state["microphone"], "screen": state["screen"]}), flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
