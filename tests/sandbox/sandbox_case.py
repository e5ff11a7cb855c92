"""What the sandbox's tests share: a temporary home, child processes, waiting for a condition."""

from __future__ import annotations

import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

SANDBOX = Path(__file__).resolve().parents[2] / "sandbox"
sys.path.insert(0, str(SANDBOX))

VAULT = Path("Documents/Vexlor/Vexlor/Meetings")
STAMPED = re.compile(r"\[(\d\d):(\d\d):(\d\d)\]")


def wait_for(condition, what: str, seconds: float = 8.0):
    """The first true value of `condition`; fails when there is none in time."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {seconds} s in vain: {what}")
        time.sleep(0.005)


def transcript(protocol: Path) -> dict[str, str]:
    """Stamp to words, read as the interface reads a protocol."""
    text = protocol.read_text(encoding="utf-8")
    start = text.find("Транскрипт")
    lines = {}
    for line in text[start:].split("\n") if start >= 0 else []:
        line = line.strip("> ")
        if line.startswith("[") and "]" in line:
            stamp, _, words = line.partition("]")
            lines[stamp + "]"] = words.strip()
    return lines


class SandboxCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.home = self.folder / "home"
        self.root = self.home / "MeetingNotes"
        self.logs = self.root / "logs"
        # The children's own $HOME is a folder of ours too: a missing refusal can harm nobody.
        self.real_home = self.folder / "real home"
        self.real_home.mkdir()

    def environment(self) -> dict[str, str]:
        return os.environ | {"HOME": str(self.real_home), "PYTHONDONTWRITEBYTECODE": "1"}

    def run_script(self, script: str, *arguments: str) -> subprocess.CompletedProcess:
        return subprocess.run([sys.executable, str(SANDBOX / script), *arguments], env=self.environment(),
                              capture_output=True, text=True, timeout=15)


class Engine:
    """A running engine."""

    def __init__(self, case: SandboxCase, *arguments: str):
        self.case = case
        self.output = case.folder / f"output-{time.monotonic_ns()}"
        with open(self.output, "w") as output:
            self.child = subprocess.Popen(
                [sys.executable, str(SANDBOX / "engine.py"), "--home", str(case.home),
                 "--poll-seconds", "0.02", *arguments],
                env=case.environment(), stdout=output, stderr=subprocess.STDOUT)
        case.addCleanup(self.end)
        self.wait_said("ready")

    def end(self, number: int = signal.SIGTERM) -> int:
        if self.child.poll() is None:
            self.child.send_signal(number)
        try:
            return self.child.wait(8)
        except subprocess.TimeoutExpired:
            self.child.kill()
            self.child.wait()
            raise

    def said(self, text: str) -> int:
        """How many lines begin with these words."""
        return sum(line.startswith(f"sandbox: {text}") for line in self.output.read_text().splitlines())

    def wait_said(self, text: str, times: int = 1):
        wait_for(lambda: self.said(text) >= times, f"output line {text!r} × {times}")

    def state(self) -> dict:
        return json.loads((self.case.root / "state.json").read_text())

    def wait_state(self, **members) -> dict:
        def reached():
            state = self.state()
            return state if members.items() <= state.items() else None
        return wait_for(reached, f"state {members}")

    def command(self, action: str, ts: float) -> None:
        temporary = self.case.root / "command.tmp"
        temporary.write_text(f'{{"action":"{action}","ts":{ts!r}}}')
        os.replace(temporary, self.case.root / "command.json")

    def summary_files(self) -> list[Path]:
        return sorted(self.case.logs.glob("*.protocol.json"))

    def wait_summary_files(self, count: int) -> list[Path]:
        wait_for(lambda: len(self.summary_files()) >= count, f"{count} summary files")
        return self.summary_files()

    def let_it_turn(self) -> None:
        """Returns when the service has gone through its loop twice: it restores a lost state file."""
        for _ in range(2):
            (self.case.root / "state.json").unlink()
            wait_for((self.case.root / "state.json").exists, "the state file to come back")
