"""The main window of a program that somebody has signed in to, with meetings to show."""

from __future__ import annotations

import json
import subprocess
from dataclasses import dataclass
from datetime import date, datetime
from pathlib import Path

from accessibility import Node
from screen import Rectangle
from session import PYTHON, REPOSITORY, Session
from waiting import at_rest, wait_for

ANNA = "anna@example.org"
ANNA_ID = "5a1e6c1e-0b52-4f0e-9d5c-6f0f5a3c7a01"
MEETINGS, ASSISTANT = "Встречи", "Помощник"
BACK = "К списку встреч"
SEARCH = "Поиск встреч"
QUIT = "Выйти из Murmeli (снова открыть — через меню приложений)"


@dataclass(frozen=True)
class Summary:
    path: Path
    started: datetime
    members: dict

    @property
    def title(self) -> str:
        title = self.members.get("title")
        return " ".join(title.split()) if isinstance(title, str) else self.path.name.removesuffix(".protocol.json")

    @property
    def protocol(self) -> Path:
        return Path(self.members["_meta"]["protocol_md"])


def write_library(session: Session, today: date | None = None) -> None:
    # It refuses to write into the folder that $HOME names.
    subprocess.run([PYTHON, str(REPOSITORY / "sandbox/library.py"), "--home", str(session.home),
                    *([f"--today={today}"] if today else [])],
                   env={**session.environment, "HOME": str(session.folder / "service")}, check=True, timeout=60,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


def summaries(session: Session) -> list[Summary]:
    """What of the library is a summary, the newest first."""
    found = []
    for path in session.logs.glob("*.protocol.json"):
        try:
            members = json.loads(path.read_text("utf-8"))
        except (OSError, ValueError):
            continue
        if not isinstance(members, dict):
            continue
        try:
            started = datetime.strptime(path.name, "%Y-%m-%d %H-%M-%S.protocol.json")
        except ValueError:
            started = datetime.fromtimestamp(path.stat().st_mtime)
        found.append(Summary(path, started, members))
    return sorted(found, key=lambda summary: summary.started, reverse=True)


def write_meeting(session: Session, stem: str, **members) -> None:
    """A meeting of the journey's own."""
    session.write(session.logs / f"{stem}.protocol.json", members)


def sign_in(session: Session) -> None:
    """As the program finds it when it starts."""
    values = session.ask_web("/sandbox/tokens", {"email": ANNA})
    session.write(session.notes / "account.json", {**values, "email": ANNA, "account_id": ANNA_ID, "chat_id": ""})


def glossary(session: Session) -> str:
    return session.ask_web("/sandbox/glossary")[ANNA] or ""


def open_window(session: Session) -> None:
    session.open_panel()
    session.press("push button", "Открыть окно")
    session.wait_closed()
    session.tree.wait("frame", MEETINGS)


def quit_program(session: Session) -> None:
    session.open_panel()
    session.press("push button", QUIT)
    if session.program.wait(5) != 0:
        raise AssertionError(f"Murmeli has ended with {session.program.returncode}")
    wait_for(lambda: not session.screen.icon(), "the icon to go")


def places(session: Session) -> list[tuple[str, Rectangle]]:
    """Of the rows of whatever list is shown, as far as they are on screen, from above."""
    shown = [(node.name, node.extents) for node in session.tree.all("list item")]
    return sorted((row for row in shown if row[1].height > 0), key=lambda row: row[1].y)


def wait_still(session: Session) -> list[tuple[str, Rectangle]]:
    """What the list shows once nothing in it moves any more."""
    return at_rest(lambda: places(session), "the list", 0.3)


def wait_row(session: Session, title: str) -> Node:
    return session.tree.wait("list item", lambda name: name.startswith(f"{title}, "))


def open_meeting(session: Session, title: str) -> None:
    session.screen.click(*wait_row(session, title).extents.middle)
    session.look_away()
    wait_detail(session, title)


def wait_detail(session: Session, title: str) -> None:
    session.tree.wait("push button", BACK)
    session.tree.wait("heading", title)


def wait_list(session: Session) -> None:
    session.tree.wait("text", SEARCH)
    session.tree.wait_gone("push button", BACK)


def fill(session: Session, field: str, text: str) -> None:
    """Replaces what the field holds, through the clipboard: it keeps every letter."""
    session.screen.click(*session.tree.wait("text", field).extents.middle)
    wait_for(lambda: session.tree.focus_is_on(field), f"«{field}» to have the focus")
    paste(session, text)
    session.look_away()


def paste(session: Session, text: str) -> None:
    session.put_in_clipboard(text)
    session.screen.key("ctrl+a", "ctrl+v")


def wait_dialog(session: Session, dialog: str) -> None:
    session.tree.wait("dialog", dialog)
    wait_for(lambda: (node := session.tree.focused()) and node.role == "text", "the name to have the focus")


def answer_dialog(session: Session, dialog: str, file: Path) -> None:
    """By the dialog's own field."""
    wait_dialog(session, dialog)
    paste(session, str(file))
    session.screen.key("Return")
    session.tree.wait_gone("dialog", dialog)


def lines(path: Path) -> list[str]:
    return path.read_text("utf-8").splitlines() if path.exists() else []
