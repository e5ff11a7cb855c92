#!/usr/bin/env python3
"""The recording service's stand-in: obeys command.json, publishes state.json, leaves meetings behind."""

from __future__ import annotations

import argparse
import fcntl
import json
import os
import signal
import sys
import threading
import time
from dataclasses import dataclass, field
from datetime import datetime
from pathlib import Path

import homes
import meeting_files
from homes import Home, say

HALF_WRITTEN_SECONDS = 1.0  # an unreadable command younger than this may still be on its way
TORN_EVERY_SECONDS = 0.4
TORN_PAUSE_SECONDS = 0.1

AUTH_NOTICE = {
    "title": "Не найден пользователь — войдите в аккаунт",
    "body": "Протокол встречи готов, но доставить его некуда: аккаунт не найден. "
            "Войдите, и он придёт сам.",
}


@dataclass
class Faults:
    torn: bool = False
    deaf: bool = False
    breathless: float | None = None  # after so many seconds it does nothing any more
    auth: bool = False
    slow: float = 0.0
    rewrite: float | None = None  # so many seconds after a protocol was edited it stands as the service once wrote it

    @classmethod
    def parse(cls, names: list[str]) -> Faults:
        faults = cls()
        for name in names:
            key, _, value = name.partition("=")
            if key in ("slow", "breathless", "rewrite"):
                setattr(faults, key, seconds(value))
            elif key in ("torn", "deaf", "auth") and not value:
                setattr(faults, key, True)
            else:
                raise argparse.ArgumentTypeError(f"unknown fault {name!r}")
        return faults


@dataclass
class Recording:
    number: int  # how many recordings this service has begun, this one included
    since: float


@dataclass
class Rewriting:
    """Writes over edited protocols what the service itself had written, as one that makes them anew."""
    logs: Path
    after: float
    looked_at: dict[Path, int] = field(default_factory=dict)  # when changed, in nanoseconds
    own: dict[Path, str] = field(default_factory=dict)
    due: dict[Path, float] = field(default_factory=dict)

    def tick(self, now: float) -> None:
        for path in self.logs.glob("*.protocol.json"):
            changed = path.stat().st_mtime_ns
            if self.looked_at.get(path) == changed:
                continue
            self.looked_at[path] = changed
            meta = (homes.read_object(path) or {}).get("_meta")
            if not (isinstance(meta, dict) and meta.get("edited") is True):
                self.own[path] = path.read_text("utf-8")
            elif path in self.own:
                self.due.setdefault(path, now + self.after)
        for path in [path for path, when in self.due.items() if when <= now]:
            del self.due[path]
            homes.write_whole(path, self.own[path])
            say(f"wrote {path.name} anew")


@dataclass
class Engine:
    home: Home
    processing_seconds: float
    poll_seconds: float
    beat_seconds: float  # how often it writes what has not changed; 0: never
    seed: int
    telegram: bool
    faults: Faults
    stopping: threading.Event = field(default_factory=threading.Event)
    recording: Recording | None = None
    begun: int = 0
    processing: list[tuple[float, Recording]] = field(default_factory=list)  # when due, what
    waiting: list[tuple[float, str]] = field(default_factory=list)  # when to obey, which action
    last_ts: float | None = None
    published: str = ""
    published_at: float = 0.0
    rewriting: Rewriting | None = None

    def __post_init__(self) -> None:
        if self.faults.rewrite is not None:
            self.rewriting = Rewriting(self.home.logs, self.faults.rewrite)

    def run(self) -> None:
        self.publish()
        say(f"ready in {self.home.folder}")
        begun = time.monotonic()
        while not self.stopping.wait(self.poll_seconds):
            if self.faults.breathless is None or time.monotonic() - begun < self.faults.breathless:
                self.tick()
        self.finish()

    def tick(self) -> None:
        now = time.monotonic()
        if not self.faults.deaf:
            action = self.take_command()
            if action is not None:
                self.waiting.append((now + self.faults.slow, action))
        while self.waiting and self.waiting[0][0] <= now:
            self.obey(self.waiting.pop(0)[1])
            self.publish()
        while self.processing and self.processing[0][0] <= now:
            self.write_meeting(self.processing.pop(0)[1])
        if self.rewriting is not None:
            try:
                self.rewriting.tick(now)
            except OSError as error:
                say(f"could not write a protocol anew: {error}")
        self.publish()

    def finish(self) -> None:
        """Whoever was told that a meeting is being processed gets it; the interface is left idle."""
        if self.recording is not None:
            say("stopped during a recording, which is dropped")
            self.recording = None
        for _, recording in self.processing:
            self.write_meeting(recording)
        self.processing.clear()
        self.publish()
        say("finished")

    def take_command(self) -> str | None:
        """The next action to obey, each command once."""
        path = self.home.command
        try:
            age = time.time() - path.stat().st_mtime
        except OSError:
            return None
        if homes.read_object(path) is None and 0 <= age < HALF_WRITTEN_SECONDS:
            return None
        # Moved away before it is read for good: a command that arrives now is not deleted unread.
        taken = path.with_name(".command.taken")
        try:
            os.replace(path, taken)
            command = homes.read_object(taken)
            taken.unlink()
        except OSError:
            return None
        if command is None:
            say("unreadable command removed")
            return None
        action, ts = command.get("action"), command.get("ts")
        if isinstance(ts, bool) or not isinstance(ts, (int, float)):
            ts = None
        if ts is not None and ts == self.last_ts:
            say(f"command of {ts} is already handled")
            return None
        self.last_ts = self.last_ts if ts is None else ts
        if action not in ("start", "stop"):
            say(f"unknown action {action!r} ignored")
            return None
        say(f"{action} requested")
        return action

    def obey(self, action: str) -> None:
        if action == "start":
            if self.recording is not None:
                say("start ignored: already recording")
                return
            self.begun += 1
            self.recording = Recording(self.begun, time.time())
            say("recording")
        else:
            if self.recording is None:
                say("stop ignored: nothing is being recorded")
                return
            self.processing.append((time.monotonic() + self.processing_seconds, self.recording))
            self.recording = None
            say(f"processing, {len(self.processing)} in all")

    def write_meeting(self, recording: Recording) -> None:
        prefs = homes.read_object(self.home.prefs) or {}
        short = prefs.get("protocol_format") == "short"
        started = datetime.fromtimestamp(recording.since).astimezone()
        meeting = meeting_files.recorded_meeting(self.seed, recording.number, started)
        try:
            written = meeting_files.write(self.home, meeting, short=short)
        except OSError as error:
            say(f"could not write the meeting: {error}")
            return
        for path in written:
            say(f"wrote {path.relative_to(self.home.root)}" if path.is_relative_to(self.home.root)
                else f"wrote {self.home.relative(path)}")
        if self.faults.auth:
            homes.write_whole(self.home.auth_flag, json.dumps(AUTH_NOTICE, ensure_ascii=False))
            say("wrote auth_required.flag")

    def state(self) -> str:
        status = "recording" if self.recording else "processing" if self.processing else "idle"
        return json.dumps({
            "status": status,
            "detail": "",
            "telegram_connected": self.telegram,
            "since": self.recording.since if self.recording else 0,
            "jobs": len(self.processing),
        })

    def publish(self) -> None:
        text, now = self.state(), time.monotonic()
        known = text == self.published and self.home.state.exists()
        # A clumsy writer rewrites also what did not change, so that every reader meets it.
        beat = TORN_EVERY_SECONDS if self.faults.torn else self.beat_seconds
        if known and not (beat and now - self.published_at >= beat):
            return
        try:
            if self.faults.torn and not self.stopping.is_set():
                self.write_torn(text)
            else:
                homes.write_whole(self.home.state, text)
        except OSError as error:
            say(f"could not write state.json: {error}")
            return
        self.published, self.published_at = text, now

    def write_torn(self, text: str) -> None:
        with open(self.home.state, "w", encoding="utf-8") as file:
            file.write(text[:len(text) // 2])
            file.flush()
            self.stopping.wait(TORN_PAUSE_SECONDS)
            file.write(text[len(text) // 2:])


def seconds(text: str) -> float:
    try:
        value = float(text)
    except ValueError:
        value = -1.0
    if not 0 <= value < 1e6:
        raise argparse.ArgumentTypeError(f"{text!r} is not a number of seconds")
    return value


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--home", required=True, metavar="DIR")
    parser.add_argument("--processing-seconds", type=seconds, default=6.0, metavar="S")
    parser.add_argument("--poll-seconds", type=seconds, default=0.1, metavar="S")
    parser.add_argument("--beat-seconds", type=seconds, default=0.0, metavar="S",
                        help="write the state so often also while nothing changes (default: never)")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--no-telegram", action="store_true")
    parser.add_argument("--fault", action="append", default=[], 
                        metavar="torn|deaf|auth|slow=SECONDS|breathless=SECONDS|rewrite=SECONDS")
    arguments = parser.parse_args()
    try:
        faults = Faults.parse(arguments.fault)
    except argparse.ArgumentTypeError as error:
        parser.error(str(error))
    try:
        home = homes.open_home(arguments.home)
    except homes.Refused as refusal:
        print(f"sandbox: refused: {refusal}", file=sys.stderr, flush=True)
        return 1
    with open(home.root / ".sandbox-engine.lock", "a") as lock:
        # Two services in one home would each handle the same command.
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            print(f"sandbox: refused: another engine runs in {home.folder}", file=sys.stderr, flush=True)
            return 1
        lock.truncate(0)
        lock.write(str(os.getpid()))
        lock.flush()
        engine = Engine(home, arguments.processing_seconds, max(arguments.poll_seconds, 0.01),
                        arguments.beat_seconds, arguments.seed, not arguments.no_telegram, faults)
        for number in (signal.SIGTERM, signal.SIGINT):
            signal.signal(number, lambda *_: engine.stopping.set())
        engine.run()
    return 0


if __name__ == "__main__":
    sys.exit(main())
