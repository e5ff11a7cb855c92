"""The sandbox's home: where its files lie, and which folders it refuses to live in."""

from __future__ import annotations

import json
import os
import pwd
from pathlib import Path


class Refused(Exception):
    """The folder cannot be used; the text says why."""


class Home:
    """Every location below one sandbox home."""

    def __init__(self, folder: Path):
        self.folder = folder
        self.root = folder / "MeetingNotes"
        self.done = self.root / "done"
        self.inbox = self.root / "inbox"
        self.logs = self.root / "logs"
        self.vault = folder / "Documents" / "Vexlor" / "Vexlor" / "Meetings"
        self.state = self.root / "state.json"
        self.command = self.root / "command.json"
        self.prefs = self.root / "prefs.json"
        self.auth_flag = self.root / "auth_required.flag"

    def relative(self, path: Path) -> str:
        return path.relative_to(self.folder).as_posix()


def real_homes() -> list[str]:
    """The homes of the person at this machine: the account's, and the one that $HOME names."""
    homes = [os.environ.get("HOME", "")]
    try:
        homes.append(pwd.getpwuid(os.getuid()).pw_dir)
    except KeyError:
        pass
    return [home for home in homes if home]


def check(folder: Path) -> None:
    """Raises Refused when `folder` is a real home, under whatever name it is given."""
    resolved = folder.resolve()
    for home in real_homes():
        if resolved == Path(home).resolve() or (folder.exists() and os.path.exists(home)
                                                and os.path.samefile(folder, home)):
            raise Refused(f"{folder} is a real home folder; give the sandbox a folder of its own")


def open_home(name: str) -> Home:
    """Checks the folder and creates what is missing in it. Raises Refused."""
    if not name:
        raise Refused("--home needs a folder")
    given = Path(name)
    check(given)
    home = Home(given.resolve())
    folders = (home.root, home.done, home.inbox, home.logs, home.vault)
    # A link that leads out of the home would have us write into somebody else's files.
    for folder in folders:
        if not folder.resolve().is_relative_to(home.folder):
            raise Refused(f"{folder} leads outside {home.folder}")
    try:
        for folder in folders:
            folder.mkdir(parents=True, exist_ok=True)
    except OSError as error:
        raise Refused(f"cannot create {error.filename}: {error.strerror}") from error
    return home


def write_whole(path: Path, text: str) -> None:
    """Replaces `path` in one step: a reader sees the old text or the new one."""
    # The temporary name must not end like the file's own, or a scan of the folder would meet it.
    temporary = path.with_name(f".{path.name}.{os.getpid()}.tmp")
    temporary.write_text(text, encoding="utf-8")
    os.replace(temporary, path)


def read_object(path: Path) -> dict | None:
    """The JSON object in `path`; None when there is no such thing."""
    try:
        value = json.loads(path.read_text(encoding="utf-8-sig", errors="replace"))
    except (OSError, ValueError, RecursionError):
        return None
    return value if isinstance(value, dict) else None


def say(text: str) -> None:
    print(f"sandbox: {text}", flush=True)
