"""Shared files that are missing, or are not what they should be."""

from __future__ import annotations

import os
import shutil
import stat
from pathlib import Path

from session import JourneyTest, Session
from waiting import settles, stays, wait_for

IDLE = "Готов к записи"
RECORDING = "Идёт запись"
REFUSED = "Не удалось передать запрос службе"
TWO_GIGABYTES = 2 << 30


def link_to_itself(path: Path) -> None:
    path.symlink_to(path.name)


def sparse_zeros(path: Path) -> None:
    with open(path, "wb") as file:
        file.truncate(TWO_GIGABYTES)


ODD_FILES = {
    "a folder": Path.mkdir,
    "a pipe": os.mkfifo,
    "a link to itself": link_to_itself,
    "2 GB of zeros": sparse_zeros,
    "a device": lambda path: path.symlink_to("/dev/zero"),
    "broken UTF-8": lambda path: path.write_bytes(b'{"status":"rec\xff\xfeording","detail":"\xc3("}'),
    "an array": lambda path: path.write_text('["recording"]'),
    "deep brackets": lambda path: path.write_text("[" * 100_000),
    "a huge number": lambda path: path.write_text('{"status":"idle","jobs":' + "9" * 5000 + ',"since":1e300}'),
    "half an object": lambda path: path.write_text('{"status":"recording","det'),
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


class StateFile(JourneyTest):
    def test_each_reads_as_idle(self):
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
        self.assertIsNone(session.program.poll())

    def test_a_far_start_and_endless_detail(self):
        session = self.open_session(prefs={"notifications": False})
        session.open_panel()
        session.write_state(status="recording", since=1e300)
        session.tree.wait("label", "Идёт запись, 0 секунд")
        session.write_state(status="idle", detail="слово " * 2000)
        session.tree.wait("label", lambda name: name.startswith("слово слово"))
        frame = session.tree.wait("frame", "Murmeli").extents
        self.assertLess(frame.bottom, 900, "the panel stays on the screen")
        answers(session)


class PreferencesFile(JourneyTest):
    def test_a_pipe_at_the_start_and_at_a_press(self):
        session = self.open_session(program=False)
        os.mkfifo(session.prefs_file)
        session.start_program()
        session.open_panel()
        session.tree.wait("label", IDLE, 3)
        session.press("radio button", "Короткий")
        session.press(None, "Авто-запись при активном микрофоне")
        answers(session)
        self.assertTrue(stat.S_ISFIFO(session.prefs_file.lstat().st_mode))

    def test_others(self):
        session = self.open_session(state={"status": "idle"})
        session.open_panel()
        for label in ("a folder", "a link to itself", "2 GB of zeros"):
            with self.case(label):
                clear(session.prefs_file)
                session.write(session.prefs_file, {"locale": "en"})
                session.tree.wait("label", "Ready to record")
                clear(session.prefs_file)
                ODD_FILES[label](session.prefs_file)
                session.tree.wait("label", IDLE, 3)
                session.press(None, "Авто-запись при активном микрофоне")
                answers(session)


class FlagFile(JourneyTest):
    def test_what_is_no_file_raises_no_flag(self):
        session = self.open_session()
        session.open_panel()
        for label in ("a folder", "a pipe"):
            with self.case(label):
                ODD_FILES[label](session.flag_file)
                stays(lambda: not session.tree.find("alert message"), "the panel without a banner", 2)
                answers(session)
                clear(session.flag_file)

    def test_a_large_one_still_raises_it(self):
        session = self.open_session()
        session.look_away()
        sparse_zeros(session.flag_file)
        session.tree.wait("alert message", lambda name: name.startswith("Не найден пользователь — авторизуйтесь. "))
        session.press("push button", "Закрыть уведомление")
        wait_for(lambda: not session.flag_file.exists(), "the flag to be removed")


class NoFolder(JourneyTest):
    def test_murmeli_waits_for_it(self):
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

    def test_a_file_in_its_place(self):
        session = self.open_session(notes=False, program=False)
        session.notes.write_text("")
        session.start_program()
        session.open_panel()
        session.tree.wait("label", IDLE, 3)
        session.press("radio button", "Короткий")
        session.press("push button", "Начать запись")
        session.tree.wait("label", REFUSED)
        answers(session)

    def test_a_command_file_that_is_none(self):
        session = self.open_session(state={"status": "idle"})
        session.command_file.mkdir()
        session.open_panel()
        session.press("push button", "Начать запись")
        session.tree.wait("label", REFUSED)
        answers(session)
        clear(session.command_file)
        os.mkfifo(session.command_file)
        answers(session)
