import json
import os
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest
from datetime import datetime
from pathlib import Path

from sandbox_case import SANDBOX, SandboxCase, wait_for

import meeting_files
from homes import Home

SUMMARY = {
    "title": "Смета <b>ремонта</b> & «щит» 🐿️",
    "tldr": "Красим сами, щит ведёт Орлов; й и ё на месте.",
    "participants": ["Вера Лис", "Олег Дуб"],
    "decisions": ["Красим сами </li><script>", {"text": "Щит ведёт Орлов"}, "", 7, None],
    "action_items": [{"task": "Купить краску", "owner": "Вера Лис", "due": "5 марта"}, "Позвонить Орлову",
                     {"owner": "x"}],
    "next_steps": [], "open_questions": "Кто платит?", "risks": None,
    "_meta": {"started_at": "2026-03-04T07:30:00Z"},
}
BROWSER = next(filter(None, map(shutil.which, ("chromium", "google-chrome", "chromium-browser"))), None)
HANGS = 'sleep 3600 & echo $! $$ > "{pids}"; : > "{out}"; wait'


def bare(text: str) -> str:
    return "".join(text.split())


def alive(pid: int) -> bool:
    try:
        return Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


class Case(SandboxCase):
    def setUp(self):
        super().setUp()
        self.temporary = self.folder / "temporary"
        self.temporary.mkdir()
        self.out = self.folder / "out"
        self.out.mkdir()
        self.pdf = self.out / "протокол.pdf"
        self.summary = self.write(SUMMARY)

    def write(self, summary, name: str = "2026-03-04 10-30-00.protocol.json") -> Path:
        path = self.folder / name
        path.write_text(json.dumps(summary, ensure_ascii=False))
        return path

    def environment(self) -> dict[str, str]:
        return super().environment() | {"TMPDIR": str(self.temporary), "TZ": "UTC"}

    def fault(self, **members) -> None:
        notes = self.real_home / "MeetingNotes"
        notes.mkdir(exist_ok=True)
        (notes / ".sandbox-engine-faults.json").write_text(json.dumps(members))

    def run_script(self, script: str, *arguments, **environment: str) -> subprocess.CompletedProcess:
        return subprocess.run([sys.executable, str(SANDBOX / script), *map(str, arguments)], timeout=60,
                              env=self.environment() | environment, capture_output=True, text=True)

    def assert_fails(self, result: subprocess.CompletedProcess, word: str = ""):
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertRegex(result.stderr, r"\Asandbox: .+\n\Z")
        self.assertIn(word, result.stderr)

    def assert_left(self, *names: str):
        self.assertEqual(sorted(path.name for path in self.out.iterdir()), sorted(names))
        self.assertEqual(list(self.temporary.iterdir()), [])


class Pdf(Case):
    def text_of(self, path: Path) -> str:
        # It complains about every offset and object that is wrong.
        result = subprocess.run(["pdftotext", path, "-"], capture_output=True, text=True, timeout=15)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    @unittest.skipUnless(shutil.which("pdftotext"), "pdftotext is missing")
    def test_everything_can_be_read_in_it(self):
        english = {"title": "The roof", "decisions": ["Slate"], "risks": ["Rain"], "open_questions": ["Who pays?"],
                   "next_steps": ["Ring the roofer"], "_meta": {"started_at": "soon"}}
        cases = ((SUMMARY, ["Протокол встречи", SUMMARY["title"], "4 марта 2026, 07:30", "Вера Лис, Олег Дуб",
                            SUMMARY["tldr"], "Решения", "Красим сами </li><script>", "Щит ведёт Орлов", "Задачи",
                            "Купить краску — Вера Лис — 5 марта", "Позвонить Орлову", "Открытые вопросы",
                            "Кто платит?"],
                  ["Риски", "Следующие шаги", "None"]),
                 (english, ["Meeting protocol", "The roof", "4 March 2026, 10:30", "Decisions", "Slate", "Next steps",
                            "Ring the roofer", "Open questions", "Who pays?", "Risks", "Rain"], ["Action items"]))
        for form in ([], ["--plain"]):
            if not form and not BROWSER:
                continue
            for summary, present, absent in cases:
                with self.subTest(form=form, title=summary["title"]):
                    result = self.run_script("protocol_pdf.py", self.write(summary), self.pdf, *form)
                    self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
                    text = self.text_of(self.pdf)
                    place = 0
                    for part in present:
                        # A browser draws emoji with whatever font it finds, and not every reader gets them back.
                        part = bare(part if form else part.rstrip("🐿\ufe0f"))
                        self.assertIn(part.lower(), bare(text).lower()[place:])
                        place = bare(text).lower().index(part.lower(), place)
                    for part in absent:
                        self.assertNotIn(part, text)
                    self.assert_left(self.pdf.name)

    @unittest.skipUnless(shutil.which("pdftotext"), "pdftotext is missing")
    def test_the_plain_form_bears_what_is_long_or_odd(self):
        rows = [f"Решение {number}: " + "слово " * 30 for number in range(60)]
        cases = (({"title": "д" * 3000, "tldr": "слово " * 3000, "decisions": rows}, 8),
                 ({"title": 42, "tldr": ["x"], "decisions": {"a": 1}, "_meta": []}, 1),
                 ({"title": "\ud800\x00\x07 החלטות e\u0301 𝔘\n\r", "risks": ["\u2028"]}, 1), ({}, 1))
        for summary, pages in cases:
            with self.subTest(str(summary)[:40]):
                path = self.folder / "odd.json"
                path.write_text(json.dumps(summary))
                result = self.run_script("protocol_pdf.py", path, self.pdf, "--plain")
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                text = self.text_of(self.pdf)
                count = text.count("\f")
                self.assertTrue(pages <= count <= pages * 2, count)
                self.assertIn(f"{count}/{count}", bare(text))
                without_numbers = bare(re.sub(r"\d+ ?/ ?\d+\s*\f", "", text))
                for row in rows if pages > 1 else ():
                    self.assertIn(bare(row), without_numbers)

    def test_without_a_font_it_says_so(self):
        fonts = self.folder / "fonts"
        fonts.mkdir()
        (fonts / "Arial.ttf").write_bytes(b"OTTO" + bytes(50))
        (fonts / "DejaVuSans.ttf").write_bytes(b"\0\1\0\0\0\5" + b"\xff" * 60)
        for folder in (fonts, self.folder / "nowhere", ""):
            result = self.run_script("protocol_pdf.py", self.summary, self.pdf, "--plain",
                                     MURMELI_SANDBOX_FONTS=str(folder))
            self.assert_fails(result, "font")
        self.assert_left()

    def test_what_cannot_be_written_leaves_the_old_file(self):
        self.pdf.write_text("old")
        for name, content in (("empty", ""), ("cut", '{"title": "'), ("array", "[]")):
            path = self.folder / name
            path.write_text(content)
            self.assert_fails(self.run_script("protocol_pdf.py", path, self.pdf, "--plain"), name)
        self.assert_fails(self.run_script("protocol_pdf.py", self.folder / "lost", self.pdf, "--plain"), "lost")
        for place in (self.out / "lost" / "a.pdf", self.pdf / "a.pdf"):
            self.assert_fails(self.run_script("protocol_pdf.py", self.summary, place, "--plain"), str(place))
        self.assertEqual(self.pdf.read_text(), "old")
        self.assert_left(self.pdf.name)

    def test_faults_that_were_asked_for(self):
        self.fault(pdf="fail", reprotocol="fail")
        self.assert_fails(self.run_script("protocol_pdf.py", self.summary, self.pdf, "--plain"), "asked for")
        self.fault(pdf="no-file")
        self.assertEqual(self.run_script("protocol_pdf.py", self.summary, self.pdf, "--plain").returncode, 0)
        self.assert_left()
        self.fault(pdf="slow=0.6")
        before = time.monotonic()
        self.assertEqual(self.run_script("protocol_pdf.py", self.summary, self.pdf, "--plain").returncode, 0)
        self.assertGreaterEqual(time.monotonic() - before, 0.6)
        self.assert_left(self.pdf.name)


class Browser(Case):
    def fake(self, script: str) -> dict[str, str]:
        """An environment whose only browser is this script; $OUT is where the PDF is wanted."""
        folder = self.folder / "bin"
        folder.mkdir(exist_ok=True)
        path = folder / "chromium"
        path.write_text('#!/bin/sh\nfor one; do case $one in --print-to-pdf=*) OUT=${one#*=};; esac; done\n' + script)
        path.chmod(0o755)
        return {"PATH": f"{folder}:/usr/bin:/bin"}

    def start(self, **environment: str) -> subprocess.Popen:
        child = subprocess.Popen([sys.executable, str(SANDBOX / "protocol_pdf.py"), self.summary, self.pdf],
                                 env=self.environment() | environment, stderr=subprocess.DEVNULL)
        self.addCleanup(child.wait)
        self.addCleanup(child.kill)
        return child

    def test_a_browser_that_fails(self):
        self.pdf.write_text("old")
        for script in ("exit 3", "exit 0", ': > "$OUT"', 'printf "%%PDF-1.4 cut" > "$OUT"', 'echo "%%EOF" > "$OUT"',
                       'printf "%%PDF-1.4 %%%%EOF" > "$OUT"; exit 1', "kill -9 $$"):
            with self.subTest(script):
                self.assert_fails(self.run_script("protocol_pdf.py", self.summary, self.pdf, **self.fake(script)))
                self.assertEqual(self.pdf.read_text(), "old")
                self.assert_left(self.pdf.name)
        fine = self.fake('printf "%%PDF-1.4 %%%%EOF" > "$OUT"')
        self.assertEqual(self.run_script("protocol_pdf.py", self.summary, self.pdf, **fine).returncode, 0)
        self.assertEqual(self.pdf.read_text(), "%PDF-1.4 %%EOF")

    def test_the_end_takes_the_browser_along(self):
        pids = self.folder / "pids"
        environment = self.fake(HANGS.format(pids=pids, out="$OUT"))
        for number in (signal.SIGTERM, signal.SIGINT):
            child = self.start(**environment)
            wait_for(lambda: pids.exists() and len(pids.read_text().split()) == 2, "the browser and its child")
            running = [int(pid) for pid in pids.read_text().split()]
            self.assertTrue(all(map(alive, running)))
            child.send_signal(number)
            self.assertEqual(child.wait(8), 143)
            wait_for(lambda: not any(map(alive, running)), "the browser's end")
            self.assert_left()
            pids.unlink()

    def test_killed_it_leaves_no_browser(self):
        pids = self.folder / "pids"
        child = self.start(**self.fake(f'echo $$ > "{pids}"; exec sleep 3600'))
        wait_for(lambda: pids.exists() and pids.read_text().strip(), "the browser")
        child.kill()
        wait_for(lambda: not alive(int(pids.read_text())), "the browser's end")

    def test_the_end_while_it_hangs(self):
        self.fault(pdf="hang")
        child = self.start()
        wait_for(lambda: self.catches(child.pid), "the signals to be caught")
        child.terminate()
        self.assertEqual(child.wait(8), 143)
        self.assert_left()

    def catches(self, pid: int) -> bool:
        caught = int(re.search(r"SigCgt:\s*(\w+)", Path(f"/proc/{pid}/status").read_text())[1], 16)
        return bool(caught >> (signal.SIGTERM - 1) & 1)

    @unittest.skipUnless(BROWSER, "no browser")
    def test_a_real_browser_ends_too(self):
        def ours() -> list[str]:
            """Everything that runs with this test's folder for temporary files."""
            found = []
            for path in Path("/proc").glob("[0-9]*/environ"):
                try:
                    if f"TMPDIR={self.temporary}".encode() in path.read_bytes():
                        found.append(path.parent.name)
                except OSError:
                    pass
            return found

        child = self.start()
        wait_for(lambda: len(ours()) > 3 and list(self.temporary.glob("*/profile/*")), "the browser's processes")
        child.terminate()
        child.wait(8)
        wait_for(lambda: not ours(), "the end of all of them")
        self.assert_left(*[self.pdf.name] if child.returncode == 0 else [])


class Reprotocol(Case):
    def setUp(self):
        super().setUp()
        self.home_paths = Home(self.home.resolve())

    def meetings(self, count: int, **how):
        for number in range(1, count + 1):
            meeting = meeting_files.recorded_meeting(4, number, datetime(2026, 3, number, 10).astimezone())
            protocol, summary = meeting_files.write(self.home_paths, meeting, **how)
            yield protocol, summary, json.loads(summary.read_text())

    def test_an_unchanged_summary_gives_the_same_protocol(self):
        for short in (False, True):
            for protocol, summary, _ in self.meetings(4, short=short):
                with self.subTest(protocol.name):
                    old, inode = protocol.read_bytes(), protocol.stat().st_ino
                    result = self.run_script("reprotocol.py", summary)
                    self.assertEqual((result.returncode, result.stderr), (0, ""))
                    self.assertEqual((protocol.read_bytes(), protocol.stat().st_ino), (old, inode))

    def test_only_the_transcript_stays(self):
        for short in (False, True):
            for protocol, file, summary in self.meetings(3, short=short):
                with self.subTest(protocol.name):
                    # Somebody else's line ends, and the word that marks the transcript in another place.
                    head, heading, talk = protocol.read_text().partition("## Транскрипт")
                    if not heading:
                        head, heading, talk = protocol.read_text().partition("## Transcript · Транскрипт")
                    talk = talk.replace("\n", "\r\n") + "## Транскрипт был выше"
                    protocol.write_bytes((head + heading + talk).encode())
                    summary["title"] = "Новое имя\n  встречи"
                    summary["decisions"] = ["Транскрипт храним год", {"text": "Второе"}]
                    summary["action_items"][0] |= {"task": "Сделать иначе", "due": "пятница"}
                    summary["risks"] = []
                    file.write_text(json.dumps(summary, ensure_ascii=False))
                    self.assertEqual(self.run_script("reprotocol.py", file).returncode, 0)
                    new = protocol.read_bytes().decode()
                    self.assertTrue(new.endswith("\n" + heading + talk))
                    above = new.removesuffix(heading + talk)
                    self.assertTrue(above.startswith("# Новое имя встречи\n"))
                    self.assertIn("\n- Транскрипт храним год\n- Второе\n", above)
                    self.assertIn(f"- [ ] Сделать иначе — {summary['action_items'][0]['owner']} — пятница\n", above)
                    self.assertEqual(head.splitlines()[2:4], above.splitlines()[2:4])
                    self.assertEqual("## Кратко" in head or "## Summary" in head, not short)
                    self.assertEqual("## Кратко" in above or "## Summary" in above, not short)
                    self.assertNotIn("## Рис", above)
                    # The word stands above the transcript now.
                    self.assertEqual(self.run_script("reprotocol.py", file).returncode, 0)
                    self.assertEqual(protocol.read_bytes().decode(), new)

    def test_what_it_leaves_alone(self):
        [(protocol, file, summary)] = self.meetings(1)
        whole = protocol.read_bytes()
        before = sorted(self.home.rglob("*"))
        lost = protocol.with_name("lost.md")
        for meta in ({"protocol_md": str(lost)}, {"protocol_md": str(protocol.parent)}, {"protocol_md": 7}, {}, None):
            with self.subTest(meta):
                file.write_text(json.dumps(summary | {"_meta": meta}))
                self.assert_fails(self.run_script("reprotocol.py", file))
        file.write_text(json.dumps(summary | {"title": "x"}))
        self.fault(reprotocol="fail")
        self.assert_fails(self.run_script("reprotocol.py", file), "asked for")
        self.fault()
        self.assertEqual(protocol.read_bytes(), whole)
        for content in ("# Заметка без продолжения\n".encode(), b"\xff\xfe# \n## \x80", b""):
            protocol.write_bytes(content)
            self.assert_fails(self.run_script("reprotocol.py", file))
            self.assertEqual(protocol.read_bytes(), content)
        file.write_text("[")
        self.assert_fails(self.run_script("reprotocol.py", file))
        self.assertEqual(sorted(self.home.rglob("*")), before)

    def test_a_link_stays_a_link(self):
        [(protocol, file, summary)] = self.meetings(1)
        target = self.folder / "elsewhere.md"
        os.replace(protocol, target)
        protocol.symlink_to(target)
        file.write_text(json.dumps(summary | {"title": "Другое"}))
        self.assertEqual(self.run_script("reprotocol.py", file).returncode, 0)
        self.assertTrue(protocol.is_symlink() and target.read_text().startswith("# Другое\n"))


if __name__ == "__main__":
    unittest.main()
