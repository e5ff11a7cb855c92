"""Shared files that are missing, or are no files at all: reading one must never hold up the windows."""

from __future__ import annotations

import os
import shutil
import stat
from pathlib import Path

from session import JourneyTest, Session
from waiting import settles

IDLE = "Готов к записи"
RECORDING = "Идёт запись"
REFUSED = "Не удалось передать запрос службе"


def sparse_zeros(path: Path) -> None:
    with open(path, "wb") as file:
        file.truncate(2 << 30)


ODD_FILES = {
    "a folder": Path.mkdir,
    "a pipe": os.mkfifo,
    "a link to itself": lambda path: path.symlink_to(path.name),
    "2 GB of zeros": sparse_zeros,
    "a device": lambda path: path.symlink_to("/dev/zero"),
}


def clear(path: Path) -> None:
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


def answers(session: Session) -> None:
    """A press on the icon is obeyed: the panel closes and comes back."""
    session.press_icon()
    session.wait_closed(3)
    session.press_icon()
    session.wait_open(3)
    session.look_away()


class OddFiles(JourneyTest):
    def test_what_is_no_state_reads_as_idle(self):
        session = self.open_session(prefs={"notifications": False}, state={"status": "recording"})
        session.open_panel()
        for label, make in ODD_FILES.items():
            with self.case(label):
                clear(session.state_file)
                session.write_state(status="recording")
                session.tree.wait("label", RECORDING)
                clear(session.state_file)
                make(session.state_file)
                session.tree.wait("label", IDLE, 3)
                answers(session)

    def test_preferences_that_are_a_pipe_at_the_start_and_at_a_press(self):
        session = self.open_session(program=False)
        os.mkfifo(session.prefs_file)
        session.start_program()
        session.open_panel()
        session.tree.wait("label", IDLE, 3)
        session.press("radio button", "Короткий")
        answers(session)
        self.assertTrue(stat.S_ISFIFO(session.prefs_file.lstat().st_mode))

    def test_a_folder_that_is_not_there_yet_is_waited_for(self):
        session = self.open_session(notes=False)
        session.open_panel()
        session.tree.wait("label", IDLE, 3)
        session.press("radio button", "Короткий")
        session.press("push button", "Начать запись")
        session.tree.wait("label", REFUSED)
        answers(session)
        self.assertFalse(session.notes.exists(), "the folder is the service's to make")
        session.notes.mkdir()
        session.write_state(status="recording")
        session.tree.wait("label", RECORDING)
        settles(session.panel_is_open, "the panel")
