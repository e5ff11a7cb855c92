"""One meeting's protocol: saved as PDF, passed on, shown in its folder."""

from __future__ import annotations

import json
import shutil
import subprocess
from pathlib import Path
from urllib.parse import unquote, urlsplit

from gi.repository import Gio

from main_window import lines, open_meeting, open_window, quit_program, wait_dialog, wait_list, write_meeting
from session import PROGRAM, PYTHON, REPOSITORY, JourneyTest, Session
from waiting import wait_for

SAVE, SHARE, REVEAL = "Сохранить PDF", "Поделиться", "Показать в папке"
MAIL, OPEN, FOLDER, COPY = "Отправить по почте", "Открыть", REVEAL, "Скопировать"
DIALOG = "Сохранить протокол"
TITLE, DECISION = "Итоги", "Красим лодки в зелёный."
NAME = f"2026-03-03 {TITLE}.pdf"


class Protocol(JourneyTest):
    def open_protocol(self, text="# Итоги\n") -> tuple[Session, Path]:
        """In the main window, and where its text is."""
        session = self.open_session(program=False)
        shutil.copytree(REPOSITORY / "sandbox", session.notes / "pipeline")
        protocol = session.home / "Итоги № 1" / "100% #2 «да?».md"
        protocol.parent.mkdir()
        protocol.write_text(text)
        write_meeting(session, "2026-03-03 10-00-00", title=TITLE, decisions=[DECISION],
                      _meta={"protocol_md": str(protocol)})
        session.start_program()
        open_window(session)
        open_meeting(session, TITLE)
        return session, protocol

    def start_file_manager(self, session: Session) -> Path:
        """Notes in the file that is returned what it is asked to show, a line each."""
        noted = session.folder / "shown"
        session.start("files", [PYTHON, str(Path(__file__).with_name("file_manager.py")), str(noted)])
        wait_for(lambda: session.tree.session_has("org.freedesktop.FileManager1"), "the file manager")
        return noted

    def wait_shown(self, noted: Path, path: Path) -> None:
        wait_for(lambda: [Gio.File.new_for_uri(uri).get_path() for uri in lines(noted)] == [str(path)], f"{path} shown")

    def open_dialog(self, session: Session) -> None:
        session.press("push button", SAVE)
        wait_dialog(session, DIALOG)

    def choose(self, session: Session, entry: str) -> None:
        session.press("push button", SHARE)
        session.press("menu item", entry)
        session.tree.wait_gone("menu item", entry)

    def test_saved_from_the_dialog_to_the_clipboard(self):
        session, _ = self.open_protocol()
        downloads = session.home / "Downloads"
        downloads.mkdir()
        self.open_dialog(session)
        session.tree.wait("push button", lambda name: name.replace("&", "") == "Отмена")
        session.screen.key("Escape")
        session.tree.wait_gone("dialog", DIALOG)

        self.open_dialog(session)
        self.assertEqual(list(downloads.iterdir()), [], "nothing came of what was called off")
        session.screen.key("Return")
        session.tree.wait_gone("dialog", DIALOG)
        session.tree.wait("status bar", f"Сохранено и скопировано в буфер обмена: {NAME}", 20)
        pdf = downloads / NAME
        told = subprocess.run(["pdftotext", "-layout", str(pdf), "-"], capture_output=True, timeout=20, check=True)
        self.assertIn(DECISION, told.stdout.decode())
        self.assertEqual(session.clipboard("text/uri-list").split(), [Gio.File.new_for_path(str(pdf)).get_uri()])
        self.assertEqual(session.clipboard(), str(pdf))

    def test_shared_in_the_four_ways(self):
        session, _ = self.open_protocol()
        self.choose(session, MAIL)
        attach, path = wait_for(lambda: session.calls("xdg-email"), "the mail")
        pdf = Path(path)
        self.assertEqual((attach, pdf.name), ("--attach", NAME))
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
            self.wait_shown(shown, pdf)
        self.choose(session, COPY)
        wait_for(lambda: session.clipboard("text/uri-list").split() == [pdf.as_uri()], "the clipboard")
        quit_program(session)
        self.assertTrue(pdf.exists(), "who got it may still be reading it")

    def test_revealed_in_its_folder(self):
        session, protocol = self.open_protocol()
        shown = self.start_file_manager(session)
        session.press("push button", REVEAL)
        self.wait_shown(shown, protocol)
        session.screen.key("Escape")
        wait_list(session)
        protocol.unlink()
        open_meeting(session, TITLE)
        session.tree.wait("label", "Файл протокола не найден")
        self.assertFalse(session.tree.find("push button", REVEAL))

    def test_what_was_said_is_found_and_opened_by_the_keyboard_alone(self):
        session, _ = self.open_protocol("## Транскрипт\n[00:00:05] Анна: Красим лодки\n[00:01:00] Пётр: Дорого!\n")
        session.screen.key("Escape", "ctrl+f")
        wait_for(lambda: session.tree.focus_is_on("Поиск встреч"), "the search")
        session.put_in_clipboard("лодка")
        session.screen.key("ctrl+v")
        session.tree.wait("status bar", "1 встреча · 2 места")
        session.screen.key("Down", "Down", "Down")
        wait_for(lambda: session.tree.focus_is_on("5 секунд, Анна: Красим лодки"), "the place")
        session.screen.key("Return")
        session.tree.wait("text", "Поиск в расшифровке")
        session.screen.key("Escape")
        session.tree.wait_gone("text", "Поиск в расшифровке")
        wait_for(lambda: session.tree.focus_is_on("5 секунд, Анна: Красим лодки"), "the place again")
        session.screen.key("ctrl+f")
        session.put_in_clipboard("kjlrf")
        session.screen.key("ctrl+v")
        session.tree.wait("status bar", "Ищу «лодка» — похоже, раскладка была другой")
        session.screen.key("Escape")
        session.tree.wait_gone("status bar", "1 встреча · 2 места")

    def test_its_transcript_is_found_in_and_quoted_by_the_keyboard_alone(self):
        session, _ = self.open_protocol("## Транскрипт\n[00:00:05] Анна: Красим лодки\n[00:01:00] Пётр: Какие лодки?\n")
        session.tree.wait("push button", "Расшифровка")
        session.tab_to("Расшифровка")
        session.screen.key("space")
        session.tree.wait("list item", "5 секунд, Анна: Красим лодки")
        session.screen.key("ctrl+f")
        wait_for(lambda: session.tree.focus_is_on("Поиск в расшифровке"), "the search in the transcript")
        session.put_in_clipboard("лодка ")
        session.screen.key("ctrl+v")
        session.tree.wait("status bar", "1 из 2")
        session.screen.key("F3")
        session.tree.wait("status bar", "2 из 2")
        session.screen.key("Tab", "Tab", "Tab", "Tab", "Tab", "Down", "shift+Down", "ctrl+c")
        quoted = f"«Красим лодки\nПётр: Какие лодки?» — Анна, 00:00:05, «{TITLE}», 03.03.2026"
        wait_for(lambda: session.clipboard() == quoted, "the quotation")
        session.screen.key("Escape", "Escape")
        session.tree.wait_gone("text", "Поиск в расшифровке")
        wait_for(lambda: session.tree.focus_is_on("Расшифровка"), "the link to have the keyboard again")

    def test_handed_out_without_names_and_without_a_browser_by_the_keyboard_alone(self):
        session, _ = self.open_protocol("## Транскрипт\n[00:00:05] Анна: Красим лодки\n[00:01:00] Пётр: Дорого!\n")
        downloads = session.home / "Downloads"
        downloads.mkdir()
        with self.case("the engine cannot make it"):
            shutil.rmtree(session.notes / ".venv")
            self.open_dialog(session)
            session.screen.key("Return")
            session.tree.wait("push button", "Собрать без Chrome")
            session.tab_to("Собрать без Chrome")
            session.screen.key("Return")
            session.tree.wait("check box", "Решения")
        session.tab_to("Скрыть имена")
        session.screen.key("space")
        session.tree.wait("status bar", "Скрыто имён: 0. Прочтите текст: прозвища и оговорки Murmeli не узнаёт.")
        session.tab_to("Расшифровка")
        session.screen.key("space")
        session.tree.wait("status bar", "Скрыто имён: 2. Прочтите текст: прозвища и оговорки Murmeli не узнаёт.")
        session.tab_to("PDF")
        session.screen.key("Return")
        session.tree.wait("push button", "Отдать")
        session.tab_to("Отдать")
        session.screen.key("Return")
        wait_dialog(session, "Сохранить встречу")
        session.screen.key("Return")
        session.tree.wait("status bar", f"Сохранено: {NAME}")
        told = subprocess.run(["pdftotext", str(downloads / NAME), "-"], capture_output=True, timeout=20, check=True)
        text = told.stdout.decode()
        self.assertIn("Участник 2: Дорого!", text)
        self.assertNotIn("Анна", text)
        session.screen.key("Escape")
        wait_for(lambda: session.tree.focus_is_on("Отдать иначе…"), "the link to have the keyboard again")
        with self.case("from the shell"):
            subprocess.run([PROGRAM, "open", "итоги", "--at", "00:01:00"], env=session.environment, timeout=20, check=True)
            session.tree.wait("list item", lambda name: name.endswith("Пётр: Дорого!"))

    def test_a_change_is_taken_back_and_a_meeting_locked_by_the_keyboard_alone(self):
        session, _ = self.open_protocol()
        session.screen.key("Escape")
        wait_list(session)
        stem, own, before = "2026-03-03 10-00-00", session.home / ".local/share/murmeli", "Красим лодки в красный."
        (own / "edits").mkdir(parents=True)
        begun = {"v": 1, "id": "1", "t": "2026-03-04T10:00:00Z", "kind": "remark", "section": "decisions", "index": 0,
                 "before": before, "after": DECISION, "remark": "в зелёный", "step": "begun"}
        (own / "edits" / f"{stem}.jsonl").write_text(json.dumps(begun) + '\n{"v":1,"id":"1","step":"done"}\n')
        open_meeting(session, TITLE)
        session.tree.wait("push button", "Правки: 1")
        session.tab_to("Правки: 1")
        session.screen.key("space")
        undo = session.tree.wait("push button", lambda name: name.startswith("Отменить правку: Решения, ")).name
        self.assertIn("убрано: красный, вставлено: зелёный", undo)
        session.tab_to(undo)
        session.screen.key("Return")
        session.tree.wait("push button", lambda name: name.startswith("Вернуть правку: Решения, "))
        self.assertIn(before, (session.notes / "logs" / f"{stem}.protocol.json").read_text())
        session.screen.key("Escape")
        wait_for(lambda: session.tree.focus_is_on("Правки: 1"), "the link to have the keyboard again")
        session.tab_to("Что ушло: 0")
        session.screen.key("space")
        session.tree.wait("check box", "Ничего не отправлять")
        session.tab_to("Ничего не отправлять")
        session.screen.key("space")
        wait_for(lambda: '"lock":true' in "".join(lines(own / "margin" / f"{stem}.json")), "the lock")
        session.screen.key("Escape")
        session.tree.wait("status bar", "Замок закрыт: эта встреча никуда не отправляется")
