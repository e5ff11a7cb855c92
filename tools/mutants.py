#!/usr/bin/env python3
"""Breaks the program on purpose, one small change after the other, and tells which of them no test notices.

The changes stand in mutants.txt. Each is made in the working tree, its test is built and run, and the file is put
back. To be run when tests are cut or merged; it takes some ten seconds a change.
"""

from __future__ import annotations

import argparse
import os
import re
import signal
import subprocess
import sys
import tempfile
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
LIST = Path(__file__).with_suffix(".txt")
BUILD = ROOT / "build" / "dev"
PATIENCE = 120  # seconds for a test
# As ./dev builds, so that ccache knows what was built before.
BUILDING = {**os.environ, "QT_HASH_SEED": "0", "CCACHE_SLOPPINESS": "pch_defines,time_macros"}
RUNNING = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent"}


@dataclass(frozen=True)
class Mutant:
    name: str
    room: str
    file: Path
    text: str
    replacement: str

    def fault(self) -> str:
        """Why it cannot be applied; empty when it can."""
        if self.room != "views" and not list((ROOT / "tests" / "unit" / self.room).glob("*Test.cpp")):
            return f"there is no test of the room {self.room}"
        found = self.file.read_text("utf-8").count(self.text) if self.file.is_file() else 0
        return "" if found == 1 else f"its text is found {found} times in {self.file.relative_to(ROOT)}"


def read_list() -> list[Mutant]:
    mutants: list[Mutant] = []
    room = file = ""
    for block in LIST.read_text("utf-8").split("\n\n"):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        if lines and lines[0].startswith("= "):
            room, file = lines.pop(0)[2:].split()
        if not lines:
            continue
        name, *rest = lines
        signs = "".join(line[0] for line in rest)
        text, replacement = ("\n".join(line[2:] for line in rest if line[0] == sign) for sign in "-+")
        if not re.fullmatch(r"-+\++", signs) or text == replacement or name in (known.name for known in mutants):
            sys.exit(f"{LIST.name}: “{name}” needs a name of its own, what to find (-), and what comes there (+)")
        mutants.append(Mutant(name, room, ROOT / file, text, replacement))
    return mutants


def chosen(mutants: list[Mutant], wanted: list[str]) -> list[Mutant]:
    for word in wanted:
        if not any(word in (mutant.room, mutant.name) for mutant in mutants):
            sys.exit(f"No mutant and no room is called “{word}”; see --list.")
    return [mutant for mutant in mutants if not wanted or {mutant.room, mutant.name} & set(wanted)]


def refuse_changed(mutants: list[Mutant]) -> None:
    changed = subprocess.run(["git", "status", "--porcelain", "--", *{str(mutant.file) for mutant in mutants}],
                             cwd=ROOT, check=True, capture_output=True, text=True).stdout
    if changed:
        sys.exit(f"Please commit or put away first what would be in the way:\n{changed.rstrip()}")


@contextmanager
def applied(mutant: Mutant) -> Iterator[None]:
    before = mutant.file.read_bytes()
    try:
        mutant.file.write_bytes(before.replace(mutant.text.encode(), mutant.replacement.encode()))
        yield
    finally:
        mutant.file.write_bytes(before)  # with a time of its own, so that the next build takes it up


def target(room: str) -> str:
    return room if room == "views" else f"unit_{room}"


def build(*rooms: str) -> str:
    """What went wrong; empty when nothing did."""
    ninja = subprocess.run(["ninja", "-C", str(BUILD), "--quiet", *map(target, rooms)],
                           env=BUILDING, capture_output=True, text=True)
    if ninja.returncode == 0:
        return ""
    said = (ninja.stdout + ninja.stderr).strip().splitlines()
    return next((line for line in said if "error:" in line), said[-1] if said else "ninja failed")


def run_test(room: str) -> str:
    """How it fails; empty when it passes."""
    program = BUILD / "tests" / ("views/views" if room == "views" else target(room))  # as ctest calls it
    with tempfile.TemporaryFile() as said:  # no pipe, which a program left behind would keep open
        test = subprocess.Popen([program], cwd=program.parent, env=RUNNING, stdin=subprocess.DEVNULL, stdout=said,
                                stderr=subprocess.STDOUT, start_new_session=True)
        try:
            code = test.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            return "hangs"
        finally:
            try:
                os.killpg(test.pid, signal.SIGKILL)  # and what it has started
            except ProcessLookupError:
                pass
            test.wait()
        said.seek(0)
        failed = re.search(rb"^FAIL!  : ([\w:]+)", said.read(), re.MULTILINE)
    if code < 0:
        return "crashes"
    return "" if code == 0 else f"caught by {failed[1].decode()}" if failed else f"caught, exit code {code}"


def run(mutants: list[Mutant]) -> list[str]:
    """Which of them no test notices."""
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("Ended."))  # as Ctrl+C: after putting the file back
    refuse_changed(mutants)
    rooms = sorted({mutant.room for mutant in mutants})
    for room in rooms:  # a test that fails anyway would seem to notice everything
        if wrong := build(room) or run_test(room):
            sys.exit(f"The test of {room} has to pass before anything is broken: {wrong}")
    survivors = []
    for mutant in mutants:
        with applied(mutant):
            broken = build(mutant.room)
            how = f"does not build: {broken}" if broken else run_test(mutant.room) or "SURVIVES"
        print(f"{mutant.room:13}{mutant.name}: {how}", flush=True)
        if broken or how == "SURVIVES":
            survivors.append(mutant.name + (" (does not build)" if broken else ""))
    if rooms:
        build(*rooms)  # nothing made of a mutant stays behind
    return survivors


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("wanted", nargs="*", metavar="NAME|ROOM", help="only these mutants, or those of these rooms")
    parser.add_argument("--list", action="store_true", help="print the mutants and do nothing")
    parser.add_argument("--check", action="store_true", help="only see whether every text is found exactly once")
    options = parser.parse_args()
    mutants = chosen(read_list(), options.wanted)
    if options.list:
        print("\n".join(f"{mutant.room:13}{mutant.name}" for mutant in mutants))
        return 0
    stale = {mutant.name: fault for mutant in mutants if (fault := mutant.fault())}
    survivors = [] if options.check else run([mutant for mutant in mutants if mutant.name not in stale])
    for title, names in (("No test notices", survivors), ("Stale", [f"{name}: {why}" for name, why in stale.items()])):
        if names:
            print(f"{title}:", *names, sep="\n  ")
    if not survivors and not stale:
        print(f"{len(mutants)} mutants, {'all found in the code' if options.check else 'all noticed'}.")
    return 1 if survivors or stale else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
