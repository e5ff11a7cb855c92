#!/usr/bin/env python3
"""Kills a writer of our own files at random moments, and looks whether anything is lost or broken."""

import json
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
WRITER = Path(os.environ.get("MURMELI_WRITER", ROOT / "build" / "dev" / "bin" / "murmeli_writer"))
ROUNDS = int(os.environ.get("ROUNDS", "500"))
LONGEST = 0.12  # seconds that a writer lives
KEPT = 40  # rounds in one home, so that its files stay small


def fail(what):
    sys.exit(f"{what}; kept in {home}")


def whole(path):
    try:
        return json.loads(path.read_bytes())
    except FileNotFoundError:
        return {}
    except ValueError:
        fail(f"{path.name} is broken")


def marks():
    """The texts that can be read, of those that wait and of those in the margin."""
    texts = [mark["text"] for mark in whole(home / "data/margin/meeting.json").get("marks", [])]
    waiting = home / "data/marks.jsonl"
    for line in waiting.read_bytes().split(b"\n") if waiting.exists() else []:
        try:
            texts.append(json.loads(line)["text"])
        except ValueError:
            pass  # cut off by a kill, and so never told as written
    return texts


random.seed(1)
said, last, kills, written = set(), (0, -1), 0, 0
for number in range(ROUNDS):
    if number % KEPT == 0:
        if number > 0:
            shutil.rmtree(home)
        home, said, last = Path(tempfile.mkdtemp(prefix="kills-")), set(), (number, -1)
    writer = subprocess.Popen([WRITER, home, str(number)], stdout=subprocess.PIPE)
    time.sleep(random.uniform(0, LONGEST))
    writer.send_signal(signal.SIGKILL)
    for line in writer.stdout.read().decode().splitlines():
        word, *rest = line.split()
        written += 1
        if word == "mark":
            said.add(rest[0])
        elif word == "set":
            last = (int(rest[0]), int(rest[1]))
    if writer.wait() != -signal.SIGKILL:
        fail("the writer ended by itself")
    kills += 1
    found = set(marks())
    if said - found:
        fail(f"lost: {sorted(said - found)}")
    settings = whole(home / "config/settings.json")
    if last[1] >= 0 and (settings["round"], settings["step"]) < last:
        fail(f"settings went back to {settings}, {last} was written")
    for path in (home / "data", home / "config"):
        if path.exists() and path.stat().st_mode & 0o77:
            fail(f"{path} is open to others")
shutil.rmtree(home)
print(f"{kills} kills among {written} writes, nothing lost and nothing broken")
