"""One meeting's protocol: corrected by a remark, saved as PDF, passed on, shown in its folder."""

from __future__ import annotations

import json
import re
import subprocess
from pathlib import Path
from urllib.parse import unquote, urlsplit

from gi.repository import Gio

from main_window import (COPY, FOLDER, MAIL, OPEN, WITHOUT_PRIVILEGES, Summary, add_tool, answer_dialog, clipboard,
                         fill, install_scripts, is_root, lines, open_meeting, open_window, pick, quit_program,
                         script_calls, sign_in, summaries, wait_dialog, wait_list, wait_menu, write_library,
                         write_meeting)
from session import PYTHON, JourneyTest, Session, exactly
from waiting import wait_for

REMARK, SEND = "Замечание к протоколу", "Отправить замечание"
WORKING = "Ищу пункт и правлю протокол…"
NOT_SAVED = "Не удалось сохранить правку"
EDITED = "Протокол исправлен"
SAVE, SHARE, REVEAL = "Сохранить PDF", "Поделиться", "Показать в папке"
BUILDING = "Собираю PDF…"
DIALOG = "Сохранить протокол"


class ProtocolTest(JourneyTest):
    def open_newest(self, *, through=()) -> tuple[Session, Summary]:
        """The library's newest Russian meeting that was not corrected yet."""
        session = self.open_session(web=["--assist-seconds", "0.1"], program=False)
        write_library(session)
        install_scripts(session)
        sign_in(session)
        session.start_program(through=through)
        summary = next(summary for summary in summaries(session) if summary.members.get("language") == "ru"
                       and not summary.members["_meta"].get("edited"))
        open_window(session)
        open_meeting(session, summary.title)
        return session, summary

    def start_file_manager(self, session: Session) -> Path:
        """Notes in the file that is returned what it is asked to show, a line each."""
        noted = session.folder / "shown"
        session.start("files", [PYTHON, str(Path(__file__).with_name("file_manager.py")), str(noted)])
        wait_for(lambda: session.tree.session_has("org.freedesktop.FileManager1"), "the file manager")
        return noted


class Correcting(ProtocolTest):
    def test_what_a_remark_changes(self):
        session, summary = self.open_newest()
        session.ask_web("/sandbox/faults", {"path": "/api/assist/edit", "fault": "delay=1"})
        summary.path.chmod(0o640)
        markdown = summary.protocol.read_text("utf-8")
        remark, old, new = self.remark_on(summary)
        fill(session, REMARK, remark)
        session.press("push button", SEND)
        session.tree.wait("status bar", WORKING)
        self.write_as_the_service(summary)
        before = exactly(summary.path.read_text("utf-8"))
        session.tree.wait("status bar", f"Исправил: {new}")
        session.tree.wait("list item", new)
        self.assertEqual(session.tree.find("list item", new).description, f"Было: {old}")
        self.assertFalse(session.tree.find("list item", old))
        session.tree.wait(None, EDITED)

        after = exactly(summary.path.read_text("utf-8"))
        note = {key: after["_meta"].pop(key) for key in ("edited", "edits", "edited_at")}
        self.assertEqual({**before, "decisions": [new, *before["decisions"][1:]]}, after)
        self.assertEqual(list(before), list(after), "the order of the members")
        self.assertEqual((note["edited"], note["edits"]), (True, "1"))
        self.assertRegex(note["edited_at"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertEqual(summary.path.stat().st_mode & 0o777, 0o640)
        wait_for(lambda: summary.protocol.read_text("utf-8") == markdown.replace(old, new), "the new protocol")

        session.screen.key("Escape")
        wait_list(session)
        open_meeting(session, summary.title)
        session.tree.wait(None, EDITED)
        session.tree.wait("list item", new)

    def remark_on(self, summary: Summary) -> tuple[str, str, str]:
        """A remark on the first decision, how that reads, and how it will read."""
        old = summary.members["decisions"][0]
        everything = json.dumps(summary.members, ensure_ascii=False).lower()
        word = next(word for word in re.findall(r"\w{6,}", old) if everything.count(word.lower()[:5]) == 1)
        return f"замени {word} на переправа", old, old.replace(word, "переправа")

    def write_as_the_service(self, summary: Summary) -> None:
        """While the remark is on its way; what else the file holds stays as it was."""
        text = summary.path.read_text("utf-8")
        summary.path.write_text(text.replace("{", '{"delivered": 12345678901234567890, ', 1), "utf-8")

    def test_a_folder_that_takes_nothing(self):
        # To root every folder is open as long as it keeps that privilege.
        session, summary = self.open_newest(through=WITHOUT_PRIVILEGES if is_root() else ())
        whole = summary.path.read_bytes()
        remark, old, new = self.remark_on(summary)
        session.logs.chmod(0o500)
        fill(session, REMARK, remark)
        session.press("push button", SEND)
        session.tree.wait("alert message", NOT_SAVED)
        self.assertEqual(summary.path.read_bytes(), whole)
        self.assertTrue(session.tree.find("list item", old))
        session.logs.chmod(0o700)
        session.press("push button", SEND)  # what was written is still there
        session.tree.wait("list item", new)


class Saving(ProtocolTest):
    def test_from_the_dialog_to_the_clipboard(self):
        session, summary = self.open_newest()
        downloads = session.home / "Downloads"
        downloads.mkdir()
        self.open_dialog(session)
        session.tree.wait("push button", lambda name: name.replace("&", "") == "Отмена")
        session.screen.key("Escape")
        session.tree.wait_gone("dialog", DIALOG)
        self.assertEqual(script_calls(session, "protocol_pdf.py"), 0)

        self.open_dialog(session)
        session.screen.key("Return")
        session.tree.wait_gone("dialog", DIALOG)
        place = downloads / f"{summary.started:%Y-%m-%d} {summary.title}.pdf"
        session.tree.wait("status bar", f"Сохранено и скопировано в буфер обмена: {place.name}", 20)
        told = subprocess.run(["pdftotext", "-layout", str(place), "-"], capture_output=True, timeout=20, check=True)
        self.assertIn(" ".join(summary.members["decisions"][0].split()), " ".join(told.stdout.decode().split()))
        self.assertEqual(clipboard(session, "text/uri-list").split(), [Gio.File.new_for_path(str(place)).get_uri()])
        self.assertEqual(clipboard(session, "UTF8_STRING"), str(place))

    def open_dialog(self, session: Session) -> None:
        session.press("push button", SAVE)
        wait_dialog(session, DIALOG)

    def test_a_build_ends_with_the_program(self):
        session, _ = self.open_newest()
        session.write(session.notes / ".sandbox-engine-faults.json", {"pdf": "hang"})
        session.press("push button", SAVE)
        answer_dialog(session, DIALOG, session.home / "protocol.pdf")
        session.tree.wait("status bar", BUILDING)

        def is_building() -> bool:
            return any("protocol_pdf.py" in line for line in session.processes_in_home().values())

        wait_for(is_building, "the script")
        quit_program(session)
        wait_for(lambda: not is_building(), "the script to end", 3)
        self.assertEqual(list(session.home.glob("*.pdf*")), [])


class Sharing(ProtocolTest):
    def choose(self, session: Session, entry: int) -> None:
        before = session.screen.windows()
        session.press("push button", SHARE)
        pick(session, wait_menu(session, before), entry)

    def test_the_four_ways(self):
        session, summary = self.open_newest()
        mail = add_tool(session, "xdg-email")
        self.choose(session, MAIL)
        attach, path = wait_for(lambda: lines(mail)[1:] and lines(mail), "the mail")
        pdf = Path(path)
        self.assertEqual(attach, "--attach")
        self.assertEqual(pdf.name, f"{summary.started:%Y-%m-%d} {summary.title}.pdf")
        self.assertTrue(pdf.read_bytes().startswith(b"%PDF-"))
        self.assertEqual(pdf.parent.stat().st_mode & 0o777, 0o700, "nobody else reads what was built")

        def wait_opened(*paths: str) -> None:
            wait_for(lambda: [unquote(urlsplit(url).path) for url in session.opened_urls()] == list(paths), paths)

        self.choose(session, OPEN)
        wait_opened(path)
        with self.case("a desktop without a file manager"):
            self.choose(session, FOLDER)
            wait_opened(path, str(pdf.parent))
        with self.case("a file manager"):
            shown = self.start_file_manager(session)
            self.choose(session, FOLDER)
            wait_for(lambda: [Gio.File.new_for_uri(uri).get_path() for uri in lines(shown)] == [path], "the folder")
        self.choose(session, COPY)
        wait_for(lambda: clipboard(session, "text/uri-list").split() == [pdf.as_uri()], "the clipboard")
        self.assertEqual(script_calls(session, "protocol_pdf.py"), 1, "it is built once")
        quit_program(session)
        self.assertTrue(pdf.exists(), "who got it may still be reading it")


class Revealing(ProtocolTest):
    def test_the_protocol_in_its_folder(self):
        session = self.open_session(program=False)
        shown = self.start_file_manager(session)
        protocol = session.home / "Итоги № 1" / "100% #2 «да?».md"
        protocol.parent.mkdir()
        protocol.write_text("# Итоги\n")
        write_meeting(session, "2026-03-03 10-00-00", title="Итоги", _meta={"protocol_md": str(protocol)})
        session.start_program()
        open_window(session)
        open_meeting(session, "Итоги")
        session.press("push button", REVEAL)
        wait_for(lambda: [Gio.File.new_for_uri(uri).get_path() for uri in lines(shown)] == [str(protocol)],
                 "the protocol to be shown")
        session.screen.key("Escape")
        wait_list(session)
        protocol.unlink()
        open_meeting(session, "Итоги")
        session.tree.wait("label", "Файл протокола не найден")
        self.assertFalse(session.tree.find("push button", REVEAL))
