"""The engine as the server's own child: an installation starts it, and it ends with the server."""

from __future__ import annotations

import fcntl
import subprocess
import sys
import threading
import time
from pathlib import Path

from homes import Home, say

ENGINE = Path(__file__).resolve().parent / "engine.py"
START_SECONDS = 10.0
END_SECONDS = 5.0


class Service:
    """Any thread."""

    def __init__(self, home: Home, arguments: list[str]):
        self.home = home
        self.arguments = arguments
        self.child: subprocess.Popen | None = None
        self.closed = False
        self.lock = threading.Lock()

    def running(self) -> bool:
        return self.child is not None and self.child.poll() is None

    def start(self) -> bool:
        """Starts the engine unless one runs in this home, whoever began it. False when it did not come up."""
        with self.lock:
            if self.closed:
                return False
            if self.running() or runs_elsewhere(self.home):
                say("the engine runs already")
                return True
            before = stamp(self.home.state)
            self.child = subprocess.Popen(
                [sys.executable, str(ENGINE), "--home", str(self.home.folder), *self.arguments],
                stdin=subprocess.DEVNULL)
            deadline = time.monotonic() + START_SECONDS
            while self.running() and not self.closed and time.monotonic() < deadline:
                if stamp(self.home.state) != before:
                    return True
                time.sleep(0.02)
            say("the engine did not start")
            return False

    def end(self) -> None:
        self.closed = True  # at once, for a start that still waits
        with self.lock:
            if not self.running():
                return
            self.child.terminate()
            try:
                self.child.wait(END_SECONDS)
            except subprocess.TimeoutExpired:
                self.child.kill()
                self.child.wait()


def stamp(path: Path) -> tuple[int, int] | None:
    try:
        status = path.stat()
    except OSError:
        return None
    return status.st_ino, status.st_mtime_ns


def runs_elsewhere(home: Home) -> bool:
    with open(home.root / ".sandbox-engine.lock", "w") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            return True
    return False
