#!/usr/bin/env python3
"""Kills the first build of an index at random moments, and looks whether what it holds is whole and stays."""

import json
import os
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
INDEXER = Path(os.environ.get("MURMELI_INDEXER", ROOT / "build" / "dev" / "bin" / "murmeli_indexer"))
KILLS = int(os.environ.get("KILLS", "50"))
MEETINGS = 1500
WORDS = "смета подрядчик релиз сборка тексты установка стенд договор бюджет отпуск риск задача".split()

home = Path(tempfile.mkdtemp(prefix="kills-"))
index = home / "cache" / "index-1.db"


def fail(what):
    sys.exit(f"{what}; kept in {home}")


def write_meetings():
    logs = home / "MeetingNotes" / "logs"
    logs.mkdir(parents=True)
    for number in range(MEETINGS):
        protocol = logs / f"{number:04}.md"
        lines = (f"[00:{i // 60:02}:{i % 60:02}] Анна: {' '.join(random.choices(WORDS, k=12))} w{number}x{i}" for i in range(60))
        protocol.write_text("## Транскрипт\n" + "\n".join(lines))
        (logs / f"{number:04}.protocol.json").write_text(json.dumps({
            "title": f"Встреча {number}",
            "_meta": {"started_at": f"2026-01-01T00:{number // 60:02}:{number % 60:02}Z", "protocol_md": str(protocol)}}))


def held():
    """The meetings that the index holds, after a look at whether it is whole."""
    if not index.exists():
        return set()
    with sqlite3.connect(f"file:{index}?mode=ro", uri=True) as database:
        if database.execute("PRAGMA user_version").fetchone()[0] == 0:
            return set()  # killed before its tables were there
        if (said := database.execute("PRAGMA integrity_check").fetchone()[0]) != "ok":
            fail(f"the index is damaged: {said}")
        stems = [stem for stem, in database.execute("SELECT stem FROM doc WHERE alive")]
        if len(stems) != len(set(stems)):
            fail("a meeting shows twice")
        found = database.execute("SELECT count(*) FROM words JOIN doc ON doc.id = words.rowid WHERE words MATCH 'встреч' AND alive")
        if (count := found.fetchone()[0]) != len(stems):
            fail(f"{count} of {len(stems)} meetings are found")
    return set(stems)


random.seed(1)
write_meetings()
before, builds = set(), 0
for number in range(KILLS):
    process = subprocess.Popen([INDEXER, home], stdout=subprocess.DEVNULL)
    time.sleep(random.uniform(0.02, 0.5))
    process.send_signal(signal.SIGKILL)
    ended = process.wait()
    now = held()
    if not before <= now:
        fail(f"lost: {sorted(before - now)[:5]}")
    before = now
    if ended == 0 or len(now) == MEETINGS:
        builds += 1
        shutil.rmtree(home / "cache")
        before = set()
if subprocess.run([INDEXER, home], stdout=subprocess.DEVNULL, check=False).returncode != 0 or len(held()) != MEETINGS:
    fail("the last build did not end")
shutil.rmtree(home)
print(f"{KILLS} kills of a first build, {builds} of which had come to its end: the index was whole every time")
