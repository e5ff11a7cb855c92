import json
from datetime import datetime
from pathlib import Path

from sandbox_case import SandboxCase

import homes
import meeting_files

WHOLE = 'printf "%%PDF-1.4 %%%%EOF" > "$OUT"'


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

    def test_only_the_transcript_stays_when_a_protocol_is_written_again(self):
        for number, heading in ((1, "## Транскрипт"), (2, "## Transcript"), (3, "## Транскрипт")):
            protocol, file = self.meeting(number)
            with self.subTest(number):
                _, mark, talk = protocol.read_text().partition(heading)
                changes = {"title": "Новое имя", "decisions": ["Транскрипт храним год"]}
                file.write_text(json.dumps(json.loads(file.read_text()) | changes))
                for _ in range(2):
                    self.assertEqual(self.run_script("reprotocol.py", file).returncode, 0)
                    new = protocol.read_text()
                    self.assertTrue(new.startswith("# Новое имя\n") and new.endswith(f"\n{mark}{talk}"))
                    self.assertEqual(new.count("- Транскрипт храним год\n"), 1)
