"""One meeting's protocol: corrected by a remark, saved as PDF, passed on, shown in its folder."""

from __future__ import annotations

import json
import os
import re
import signal
import subprocess
from pathlib import Path
from urllib.parse import unquote, urlsplit

from gi.repository import Gio

from main_window import (BACK, WITHOUT_PRIVILEGES, Summary, add_tool, answer_dialog, clipboard, fill, install_scripts, is_root,
                         lines, open_meeting, open_window, quit_program, script_calls, set_engine_fault,
                         sign_in, summaries, wait_list, wait_row, write_library, write_meeting)
from screen import Rectangle
from session import PYTHON, JourneyTest, Session
from waiting import stays, wait_for

REMARK, SEND = "Замечание к протоколу", "Отправить замечание"
WORKING = "Ищу пункт и правлю протокол…"
NOT_FOUND = "Не нашёл пункт, о котором речь — уточните формулировку"
NO_SERVER = "Сервер не ответил — попробуйте ещё раз"
HINT = "Напишите замечание своими словами — найду нужный пункт и исправлю его"
NO_ACCOUNT = "Войдите в аккаунт, чтобы править протокол"
NOT_SAVED = "Не удалось сохранить правку"
EDITED = "Протокол исправлен"
SAVE, SHARE, REVEAL = "Сохранить PDF", "Поделиться", "Показать в папке"
BUILDING = "Собираю PDF…"
NO_PDF = "Не удалось собрать PDF — нужен Google Chrome"
NO_PROTOCOL = "Файл протокола не найден"
DIALOG = "Сохранить протокол"
MAIL, OPEN, FOLDER, COPY = range(4)
QUICK = ["--assist-seconds", "0.1"]
EDIT = "/api/assist/edit"


def exactly(text: str):
    """The JSON in which a number is the text that it was written as."""
    return json.loads(text, parse_int=str, parse_float=str)


class ProtocolTest(JourneyTest):
    def open_library(self, *, account=True, through=(), web=QUICK, **options) -> Session:
        session = self.open_session(web=web, program=False, **options)
        write_library(session)
        install_scripts(session)
        if account:
            sign_in(session)
        session.start_program(through=through)
        return session

    def open_newest(self, session: Session, language="ru") -> Summary:
        """The newest meeting in this language that was not corrected yet."""
        summary = next(summary for summary in summaries(session) if summary.members.get("language") == language
                       and not summary.members["_meta"].get("edited"))
        open_window(session)
        open_meeting(session, summary.title)
        return summary

    def send(self, session: Session, remark: str) -> None:
        fill(session, REMARK, remark)
        session.press("push button", SEND)


def word_of(summary: Summary, section="decisions", index=0) -> str:
    """A word that stands nowhere else in the protocol."""
    text = summary.members[section][index]
    everything = json.dumps(summary.members, ensure_ascii=False).lower()
    return next(word for word in re.findall(r"\w{6,}", text) if everything.count(word.lower()[:5]) == 1)


class Correcting(ProtocolTest):
    def test_what_a_remark_changes(self):
        session = self.open_library()
        session.ask_web("/sandbox/faults", {"path": EDIT, "fault": "delay=0.7"})
        summary = self.open_newest(session)
        session.tree.wait("push button", REVEAL)
        self.assertFalse(session.tree.find(None, EDITED))
        summary.path.chmod(0o640)
        before = exactly(summary.path.read_text("utf-8"))
        markdown = summary.protocol.read_text("utf-8")
        word, old = word_of(summary), summary.members["decisions"][0]
        new = old.replace(word, "переправа")

        self.send(session, f"замени {word} на переправа")
        session.tree.wait("status bar", WORKING)
        session.tree.wait("status bar", f"Исправил: {new}")
        session.tree.wait("list item", new)
        self.assertEqual(session.tree.find("list item", new).description, f"Было: {old}")
        self.assertFalse(session.tree.find("list item", old))
        session.tree.wait(None, EDITED)
        session.press("push button", SEND)  # the remark is done with

        after = exactly(summary.path.read_text("utf-8"))
        note = {key: after["_meta"].pop(key) for key in ("edited", "edits", "edited_at")}
        self.assertEqual({**before, "decisions": [new, *before["decisions"][1:]]}, after)
        self.assertEqual(list(before), list(after), "the order of the members")
        self.assertEqual((note["edited"], note["edits"]), (True, "1"))
        self.assertRegex(note["edited_at"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertEqual(summary.path.stat().st_mode & 0o777, 0o640)
        wait_for(lambda: summary.protocol.read_text("utf-8") == markdown.replace(old, new), "the new protocol")

        with self.case("a task that is an object"):
            session.ask_web("/sandbox/faults", {})
            task = summary.members["action_items"][0]["task"]
            word = re.findall(r"\w+", task)[-1]
            self.send(session, f"в первой задаче замени {word} на дирижабль")
            session.tree.wait("list item", task.replace(word, "дирижабль"))
            again = exactly(summary.path.read_text("utf-8"))
            self.assertEqual(again["action_items"][0], {**before["action_items"][0],
                                                        "task": task.replace(word, "дирижабль")})
            self.assertEqual(again["_meta"]["edits"], "2")
            wait_for(lambda: "дирижабль" in summary.protocol.read_text("utf-8"), "the new protocol")

        session.screen.key("Escape")
        wait_list(session)
        open_meeting(session, summary.title)
        session.tree.wait(None, EDITED)
        session.tree.wait("list item", new)

    def test_remarks_that_come_to_nothing_and_one_that_does_not(self):
        session = self.open_library()
        summary = self.open_newest(session)
        whole = summary.path.read_bytes()
        word = word_of(summary)
        remark = f"замени {word} на переправа"

        def refused(role: str, text: str) -> None:
            session.tree.wait(role, text)
            self.assertEqual(summary.path.read_bytes(), whole)
            self.assertFalse(session.tree.find(None, EDITED))

        with self.case("nothing matches"):
            self.send(session, "замени дельфинарий на океанариум")
            refused("status bar", NOT_FOUND)
        for fault in ("status=500", "reset", "html", "array", "cut", "redirect=https://127.0.0.1:1/"):
            with self.case(fault):
                session.ask_web("/sandbox/faults", {"path": EDIT, "fault": fault})
                self.send(session, remark)
                wait_for(lambda: session.tree.find("alert message"), "what went wrong")
                refused("alert message", lambda text: re.search("[а-яё]", text))
        with self.case("the server is gone"):
            session.stop(session.web)
            self.send(session, remark + "!")
            refused("alert message", lambda text: re.search("[а-яё]", text))
            session.start_web(*QUICK)
        self.assertEqual({path.name for path in session.logs.iterdir() if path.name.startswith(summary.path.name[:19])}
                         - {summary.path.name, summary.path.name.replace("protocol", "report")}, set())

    def test_after_a_failure_the_next_remark_is_taken(self):
        session = self.open_library()
        summary = self.open_newest(session)
        word, old = word_of(summary), summary.members["decisions"][0]
        session.ask_web("/sandbox/faults", {"path": EDIT, "fault": "status=500"})
        self.send(session, f"замени {word} на переправа")
        session.tree.wait("alert message", NO_SERVER)
        session.ask_web("/sandbox/faults", {})
        session.press("push button", SEND)  # what was written is still there
        session.tree.wait("list item", old.replace(word, "переправа"))

    def test_a_remark_that_was_not_sent_is_still_there(self):
        session = self.open_library(account=False)
        first, second = [one for one in summaries(session) if one.members.get("language") == "ru"][:2]
        open_window(session)
        open_meeting(session, first.title)
        fill(session, REMARK, "срок — пятн")
        session.screen.key("Escape")
        wait_list(session)
        open_meeting(session, second.title)
        session.press("push button", SEND)
        stays(lambda: session.tree.find("status bar", HINT), "the hint: there is nothing to send", 0.5)
        session.screen.key("alt+Left")
        wait_list(session)
        open_meeting(session, first.title)
        session.tree.wait("status bar", HINT)
        session.press("push button", SEND)
        session.tree.wait("alert message", NO_ACCOUNT)

    def test_signed_out(self):
        session = self.open_library(account=False)
        summary = self.open_newest(session)
        whole = summary.path.read_bytes()
        self.send(session, f"замени {word_of(summary)} на переправа")
        session.tree.wait("alert message", NO_ACCOUNT)
        self.assertEqual(summary.path.read_bytes(), whole)
        self.assertEqual([request for request in session.ask_web("/sandbox/requests") if request["path"] == EDIT], [])

    def test_a_folder_that_takes_nothing(self):
        # To root every folder is open as long as it keeps that privilege.
        session = self.open_library(through=WITHOUT_PRIVILEGES if is_root() else ())
        summary = self.open_newest(session)
        whole = summary.path.read_bytes()
        word, old = word_of(summary), summary.members["decisions"][0]
        session.logs.chmod(0o500)
        self.send(session, f"замени {word} на переправа")
        session.tree.wait("alert message", NOT_SAVED)
        self.assertEqual(summary.path.read_bytes(), whole)
        self.assertTrue(session.tree.find("list item", old))
        session.logs.chmod(0o700)
        session.press("push button", SEND)
        session.tree.wait("list item", old.replace(word, "переправа"))

    def test_what_the_service_writes_meanwhile_is_kept(self):
        session = self.open_library()
        session.ask_web("/sandbox/faults", {"path": EDIT, "fault": "delay=1"})
        summary = self.open_newest(session)
        word = word_of(summary)
        self.send(session, f"замени {word} на переправа")
        session.tree.wait("status bar", WORKING)
        session.write(summary.path, {**summary.members, "delivered": "Telegram"})
        session.tree.wait_gone("status bar", WORKING)
        written = json.loads(summary.path.read_text("utf-8"))
        self.assertEqual(written.get("delivered"), "Telegram")
        corrected = summary.members["decisions"][0].replace(word, "переправа")
        self.assertEqual(written["decisions"][0], corrected)
        session.tree.wait("list item", corrected)

    def test_english_by_keyboard_alone(self):
        session = self.open_session(web=QUICK, program=False, language="en")
        install_scripts(session)
        sign_in(session)
        write_meeting(session, "2026-03-03 10-00-00", title="Boats", decisions=["Paint them green."])
        session.start_program()
        session.open_panel()
        session.tab_to("Open window")
        session.screen.key("Return")
        session.tree.wait("list item", lambda name: name.startswith("Boats, "))
        session.screen.key("ctrl+f", "Down", "Return")
        session.tree.wait("list item", "Paint them green.")
        session.tab_to("Remark on the protocol")
        session.screen.type("change green to yellow")
        session.tab_to("Send the remark")
        session.screen.key("Return")
        session.tree.wait("status bar", "Fixed: Paint them yellow.")
        session.tree.wait("list item", "Paint them yellow.")
        session.tree.wait(None, "The protocol was corrected")
        wait_for(session.tree.focused, "a visible focus", 2)
        session.tab_to("Remark on the protocol")
        session.screen.type("change violet to blue")
        session.screen.key("Return")
        session.tree.wait("status bar", "Could not find the item you mean — try rephrasing")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        session.screen.key("Escape")
        session.tree.wait("text", "Search meetings")


class Saving(ProtocolTest):
    def choose(self, session: Session, path: Path) -> None:
        session.press("push button", SAVE)
        answer_dialog(session, DIALOG, path)

    def test_from_the_dialog_to_the_clipboard(self):
        session = self.open_library()
        set_engine_fault(session, pdf="slow=0.7")
        summary = self.open_newest(session)
        folder = session.home / "Мои документы"
        folder.mkdir()
        place = folder / "Итог № 1 (100%).pdf"
        session.press("push button", SAVE)
        session.tree.wait("dialog", DIALOG)
        session.screen.key("Escape")
        session.tree.wait_gone("dialog", DIALOG)
        self.assertEqual(script_calls(session, "protocol_pdf.py"), 0)

        self.choose(session, place)
        session.tree.wait("status bar", BUILDING)
        session.press("push button", SHARE)  # which has to wait
        session.tree.wait("status bar", f"Сохранено и скопировано в буфер обмена: {place.name}", 20)
        told = subprocess.run(["pdfinfo", str(place)], capture_output=True, text=True, timeout=20, check=True)
        self.assertRegex(told.stdout, r"Pages: +[1-9]")
        self.assert_text(place, summary.title, *summary.members["decisions"])
        self.assertEqual(clipboard(session, "text/uri-list").split(), [Gio.File.new_for_path(str(place)).get_uri()])
        self.assertEqual(clipboard(session, "UTF8_STRING"), str(place))
        self.assertEqual(script_calls(session, "protocol_pdf.py"), 1)

    def assert_text(self, pdf: Path, *texts: str) -> None:
        told = subprocess.run(["pdftotext", "-layout", str(pdf), "-"], capture_output=True, timeout=20, check=True)
        words = told.stdout.decode().split()
        for text in texts:
            self.assertIn(" ".join(text.split()), " ".join(words))

    def test_the_name_is_suggested(self):
        session = self.open_library()
        summary = self.open_newest(session)
        downloads = session.home / "Downloads"
        downloads.mkdir()
        session.press("push button", SAVE)
        session.tree.wait("dialog", DIALOG)
        wait_for(lambda: (node := session.tree.focused()) and node.role == "text", "the name to have the focus")
        with self.case("the dialog's own words"):
            self.assertTrue(session.tree.find("push button", lambda name: name.replace("&", "") == "Отмена"))
        session.screen.key("Return")
        session.tree.wait_gone("dialog", DIALOG)
        place = downloads / f"{summary.started:%Y-%m-%d} {summary.title}.pdf"
        session.tree.wait("status bar", f"Сохранено и скопировано в буфер обмена: {place.name}", 20)
        self.assertTrue(place.read_bytes().startswith(b"%PDF-"))

    def test_failures_and_what_comes_after_them(self):
        session = self.open_library()
        self.open_newest(session)
        place = session.home / "protocol.pdf"
        for fault in ("fail", "no-file"):
            with self.case(fault):
                set_engine_fault(session, pdf=fault)
                self.choose(session, place)
                session.tree.wait("alert message", NO_PDF)
                self.assertFalse(place.exists())
                self.assertEqual(clipboard(session, "UTF8_STRING"), str(place), "what had been copied before")
                self.assertNotIn("file:", clipboard(session, "text/uri-list"))
        set_engine_fault(session)
        python = session.notes / ".venv/bin/python"
        python.rename(python.with_name("elsewhere"))
        with self.case("no engine"):
            self.choose(session, place)
            session.tree.wait("alert message", NO_PDF)
        python.with_name("elsewhere").rename(python)
        self.choose(session, place)
        session.tree.wait("status bar", f"Сохранено и скопировано в буфер обмена: {place.name}", 20)
        session.tree.wait_gone("alert message")

    def start_build(self, session: Session) -> Summary:
        """One that comes to no end by itself."""
        set_engine_fault(session, pdf="hang")
        summary = self.open_newest(session)
        self.choose(session, session.home / "protocol.pdf")
        session.tree.wait("status bar", BUILDING)
        wait_for(lambda: self.is_building(session), "the script")
        return summary

    def is_building(self, session: Session) -> bool:
        return any("protocol_pdf.py" in line for line in session.processes_in_home().values())

    def test_a_build_goes_on_without_its_protocol_and_tells_how_it_ended(self):
        session = self.open_library()
        summary = self.start_build(session)
        session.press("push button", BACK)
        wait_list(session)
        stays(lambda: self.is_building(session), "the script", 0.5)
        for pid, line in session.processes_in_home().items():
            if "protocol_pdf.py" in line:
                os.kill(pid, signal.SIGKILL)
        session.tree.wait("alert message", f"{summary.title}. {NO_PDF}")
        self.assertEqual(list(session.home.glob(".*.pdf")), [])

    def test_a_build_ends_with_the_program(self):
        session = self.open_library()
        self.start_build(session)
        quit_program(session)
        wait_for(lambda: not self.is_building(session), "the script to end", 3)
        self.assertEqual(list(session.home.glob("*.pdf*")), [])

    def test_the_keyboard_is_not_lost_during_a_build(self):
        session = self.open_library()
        self.start_build(session)
        wait_for(session.tree.focused, "a visible focus", 2)
        session.screen.key("Escape")
        wait_list(session)


class Sharing(ProtocolTest):
    def menu(self, session: Session) -> Rectangle:
        windows = session.screen.windows()
        session.press("push button", SHARE)
        found = wait_for(lambda: [window for window in session.screen.windows() if window not in windows],
                         "the menu", 20)
        return found[0]

    def choose(self, session: Session, entry: int) -> None:
        menu = self.menu(session)
        session.screen.click(menu.middle[0], menu.y + menu.height * (2 * entry + 1) // 8)
        wait_for(lambda: menu not in session.screen.windows(), "the menu to close")
        session.look_away()

    def test_the_four_ways(self):
        session = self.open_library()
        mail = add_tool(session, "xdg-email")
        summary = self.open_newest(session)
        self.choose(session, MAIL)
        attach, path = wait_for(lambda: lines(mail)[1:] and lines(mail), "the mail")
        pdf = Path(path)
        self.assertEqual(attach, "--attach")
        self.assertEqual(pdf.name, f"{summary.started:%Y-%m-%d} {summary.title}.pdf")
        self.assertTrue(pdf.read_bytes().startswith(b"%PDF-"))
        self.assertEqual(pdf.parent.stat().st_mode & 0o777, 0o700, "nobody else reads what was built")

        def opened(urls: int) -> list[str]:
            found = session.opened_urls()
            return len(found) == urls and [unquote(urlsplit(url).path) for url in found]

        self.choose(session, OPEN)
        self.assertEqual(wait_for(lambda: opened(1), "the viewer"), [path])
        with self.case("a desktop without a file manager"):
            self.choose(session, FOLDER)
            self.assertEqual(wait_for(lambda: opened(2), "the folder"), [path, str(pdf.parent)])
        with self.case("a file manager"):
            shown = start_file_manager(session)
            self.choose(session, FOLDER)
            wait_for(lambda: [Gio.File.new_for_uri(uri).get_path() for uri in lines(shown)] == [path], "the folder")
        self.choose(session, COPY)
        wait_for(lambda: clipboard(session, "text/uri-list").split() == [pdf.as_uri()], "the clipboard")
        self.assertEqual(script_calls(session, "protocol_pdf.py"), 1, "it is built once")
        quit_program(session)
        self.assertTrue(pdf.exists(), "who got it may still be reading it")

    def test_a_failure(self):
        session = self.open_library()
        set_engine_fault(session, pdf="fail")
        self.open_newest(session)
        windows = session.screen.windows()
        session.press("push button", SHARE)
        session.tree.wait("alert message", NO_PDF)
        stays(lambda: session.screen.windows() == windows, "no menu", 0.5)


def start_file_manager(session: Session) -> Path:
    """Notes in the file that is returned what it is asked to show, a line each."""
    noted = session.folder / "shown"
    session.start("files", [PYTHON, str(Path(__file__).with_name("file_manager.py")), str(noted)])
    wait_for(lambda: session.tree.session_has("org.freedesktop.FileManager1"), "the file manager")
    return noted


class Revealing(ProtocolTest):
    def test_the_protocol_in_its_folder(self):
        session = self.open_session(program=False)
        shown = start_file_manager(session)
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
        session.tree.wait("label", NO_PROTOCOL)
        self.assertFalse(session.tree.find("push button", REVEAL))
        session.press("push button", BACK)
        wait_row(session, "Итоги")
