#!/usr/bin/env python3
"""Kills corrections, undos, redos and receipts at random moments, and looks whether the ledger tells what is written."""

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
EDITOR = Path(os.environ.get("MURMELI_EDITOR", ROOT / "build" / "dev" / "bin" / "murmeli_editor"))
KILLS = int(os.environ.get("KILLS", "1000"))
LONGEST = 0.1  # seconds that an editor lives
KEPT = 40  # kills in one home, so that its files stay small
FOREIGN = {"big": 12345678901234567890, "else": "stays"}


def fail(what):
    sys.exit(f"{what}; kept in {home}")


def lines(path):
    found = []
    for line in path.read_bytes().split(b"\n") if path.exists() else []:
        try:
            found.append(json.loads(line))
        except ValueError:
            pass  # cut off by a kill, and so never told as written
    return found


def begin():
    place = Path(tempfile.mkdtemp(prefix="kills-"))
    (place / "MeetingNotes" / "logs").mkdir(parents=True)
    (place / "MeetingNotes" / "logs" / "meeting.protocol.json").write_text(
        json.dumps({**FOREIGN, "decisions": ["a", "b", "c"]}))
    return place


random.seed(1)
tries = 0
for number in range(KILLS):
    if number % KEPT == 0:
        if number > 0:
            shutil.rmtree(home)
        home, texts, made, sent = begin(), ["a", "b", "c"], set(), set()
    editor = subprocess.Popen([EDITOR, home, str(number)], stdout=subprocess.PIPE)
    time.sleep(random.uniform(0, LONGEST))
    editor.send_signal(signal.SIGKILL)
    under_way = None
    for word, *rest in (line.split() for line in editor.stdout.read().decode().splitlines()):
        if word == "try":
            under_way = rest
            tries += 1
        elif word == "did":
            texts[texts.index(under_way[0])] = under_way[1]
            under_way = None
            made.add(rest[0])
        elif word == "sent":
            sent.add(rest[0])
        else:
            fail(f"the editor says {word}")
    if editor.wait() != -signal.SIGKILL:
        fail("the editor ended by itself")
    try:
        summary = json.loads((home / "MeetingNotes/logs/meeting.protocol.json").read_bytes())
    except ValueError:
        fail("the protocol is broken")
    if any(summary[key] != value for key, value in FOREIGN.items()):
        fail("a foreign member is lost")
    later = list(texts)
    if under_way:
        later[later.index(under_way[0])] = under_way[1]
    if summary["decisions"] not in (texts, later):
        fail(f"it reads {summary['decisions']} instead of {texts} or {later}")
    texts = summary["decisions"]

    ledger = lines(home / "data/edits/meeting.jsonl")
    done = {line["id"] for line in ledger if line.get("step") == "done"}
    begun = [line for line in ledger if line.get("step") == "begun"]
    if made - done:
        fail(f"not in the ledger: {sorted(made - done)}")
    # What the ledger tells of the items, from what they were at first.
    told = ["a", "b", "c"]
    for position, line in enumerate(begun):
        follows = any(next_["before"] == line["after"] for next_ in begun[position + 1:])
        if line["id"] in done or line["after"] in texts or follows:
            told[told.index(line["before"])] = line["after"]
    if told != texts:
        fail(f"the ledger tells {told}, the protocol reads {texts}")
    noted = {line["id"] for month in (home / "data/sent").glob("*.jsonl") for line in lines(month)}
    if sent - noted:
        fail(f"receipts are lost: {sorted(sent - noted)}")
shutil.rmtree(home)
print(f"{KILLS} kills among {tries} corrections, undos and redos: the protocol was old or new and the ledger told which")
