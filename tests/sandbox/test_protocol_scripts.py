import json
import signal
import subprocess
import sys
from datetime import datetime
from pathlib import Path

from sandbox_case import SANDBOX, SandboxCase, wait_for

import homes
import meeting_files

WHOLE = 'printf "%%PDF-1.4 %%%%EOF" > "$OUT"'


def alive(pid: str) -> bool:
    try:
        return Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


class Scripts(SandboxCase):
    def setUp(self):
        super().setUp()
        self.out = self.folder / "out"
        self.out.mkdir()
        self.pdf = self.out / "протокол.pdf"

    def meeting(self, number: int = 1) -> tuple[Path, Path]:
        """The protocol and the summary file of a meeting."""
        meeting = meeting_files.recorded_meeting(4, number, datetime(2026, 3, number, 10).astimezone())
        return meeting_files.write(homes.Home(self.home), meeting, short=number == 3)

    def browser(self, script: str) -> dict[str, str]:
        """An environment whose only browser is this script; $OUT is where the PDF is wanted."""
        path = self.folder / "chromium"
        path.write_text(f'#!/bin/sh\nfor one; do case $one in --print-to-pdf=*) OUT=${{one#*=}};; esac; done\n{script}')
        path.chmod(0o755)
        return {"PATH": f"{self.folder}:/usr/bin:/bin", "TMPDIR": str(self.out)}

    def test_a_pdf_is_there_whole_or_the_old_one_stays(self):
        _, summary = self.meeting()
        for browser, arguments, status in (
                ("exit 0", [], 1), ('printf "%%PDF-1.4 cut" > "$OUT"', [], 1), (f"{WHOLE}; exit 1", [], 1),
                (WHOLE, [], 0), ("exit 1", ["--plain"], 0)):
            with self.subTest(browser, arguments=arguments):
                self.pdf.write_text("old")
                result = self.run_script("protocol_pdf.py", summary, self.pdf, *arguments, **self.browser(browser))
                self.assertEqual((result.returncode, self.pdf.read_bytes()[:5], list(self.out.iterdir())),
                                 (status, b"old" if status else b"%PDF-", [self.pdf]))

    def test_ended_or_killed_it_leaves_no_browser(self):
        _, summary = self.meeting()
        pids = self.folder / "pids"
        for number, status, script in (
                (signal.SIGTERM, 143, f'sleep 3600 & : > "$OUT"; echo $! $$ . > "{pids}"; wait'),
                (signal.SIGKILL, -9, f'echo $$ . > "{pids}"; exec sleep 3600')):
            with self.subTest(number):
                child = subprocess.Popen([sys.executable, SANDBOX / "protocol_pdf.py", summary, self.pdf],
                                         env=self.environment(**self.browser(script)), stderr=subprocess.DEVNULL)
                self.addCleanup(child.wait)
                self.addCleanup(child.kill)
                wait_for(lambda: pids.exists() and "." in pids.read_text(), "the browser")
                running = pids.read_text().split()[:-1]
                pids.unlink()
                self.assertTrue(all(map(alive, running)))
                child.send_signal(number)
                self.assertEqual(child.wait(8), status)
                wait_for(lambda: not any(map(alive, running)), "the browser's end")
                if number == signal.SIGTERM:
                    self.assertEqual(list(self.out.iterdir()), [])

    def test_only_the_transcript_stays_when_a_protocol_is_written_again(self):
        for number, heading in ((1, "## Транскрипт"), (2, "## Transcript"), (3, "## Транскрипт")):
            protocol, file = self.meeting(number)
            with self.subTest(number):
                before = protocol.read_text()
                self.assertEqual(self.run_script("reprotocol.py", file).returncode, 0)
                self.assertEqual(protocol.read_text(), before)
                # Somebody else's line ends, and the word that marks the transcript in other places too.
                head, mark, talk = before.partition(heading)
                talk = mark + talk.replace("\n", "\r\n") + "## Транскрипт был выше"
                protocol.write_bytes((head + talk).encode())
                changes = {"title": "Новое имя", "decisions": ["Транскрипт храним год"]}
                file.write_text(json.dumps(json.loads(file.read_text()) | changes))
                for _ in range(2):
                    self.assertEqual(self.run_script("reprotocol.py", file).returncode, 0)
                    new = protocol.read_bytes().decode()
                    self.assertTrue(new.startswith("# Новое имя\n") and new.endswith(f"\n{talk}"))
                    self.assertEqual(new.count("- Транскрипт храним год\n"), 1)
        for content in ("# Заметка без продолжения\n".encode(), b"\xff\xfe# \n## \x80"):
            protocol.write_bytes(content)
            self.assertEqual(self.run_script("reprotocol.py", file).returncode, 1)
            self.assertEqual(protocol.read_bytes(), content)
