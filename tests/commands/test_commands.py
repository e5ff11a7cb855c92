"""Murmeli in the shell: the real program in a home of its own, with nothing else in its environment."""

from __future__ import annotations

import fcntl
import json
import os
import pty
import re
import select
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("MURMELI_BIN", ROOT / "build/dev/bin/murmeli"))
PAPER = (ROOT / "packaging/murmeli.1").read_text().replace("\\-", "-")
sys.path.append(str(ROOT / "tests/journeys"))

from waiting import wait_for

DAY, STEM, OTHER = "2026-03-04", "2026-03-04 10-15-00", "2026-03-03 09-00-00"
TALK = "## Транскрипт\n[00:00:00] Пётр: Начнём\n[00:01:00] Анна: Красим лодки завтра\n"
READING = ("status", "list", "show", "search")


class Commands(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name).resolve()
        self.notes = self.home / "MeetingNotes"
        self.own = self.home / ".local/share/murmeli"

    def write_meetings(self) -> None:
        logs = self.notes / "logs"
        logs.mkdir(parents=True)
        protocol = self.home / "a.md"
        protocol.write_text(TALK)
        for stem, title, decision in ((STEM, "План лодок", "Красим лодки для Анны за 500 ₽"), (OTHER, "План зимы", "Ждём")):
            (logs / f"{stem}.protocol.json").write_text(json.dumps({
                "title": title, "tldr": "Коротко.", "participants": ["Анна"], "decisions": [decision],
                "_meta": {"duration_min": 30, "protocol_md": str(protocol), "started_at": f"{stem[:10]}T10:15:00Z"}}))

    def write_state(self, **members) -> None:
        self.notes.mkdir(exist_ok=True)
        (self.notes / "state.json").write_text(json.dumps({"status": "idle", "since": 0, "jobs": 0} | members))

    def environment(self, **more: str) -> dict[str, str]:
        return {"HOME": str(self.home), "PATH": "/usr/bin:/bin", "TZ": "UTC"} | more

    def start(self, *arguments: str, **how) -> subprocess.Popen:
        child = subprocess.Popen([PROGRAM, *arguments], env=self.environment(), stdout=subprocess.PIPE, text=True, **how)
        self.addCleanup(child.stdout.close)
        self.addCleanup(child.wait)
        self.addCleanup(child.kill)
        return child

    def run_command(self, *arguments: str, **environment: str) -> subprocess.CompletedProcess:
        return subprocess.run([PROGRAM, *arguments], env=self.environment(**environment), timeout=60, text=True,
                              stdin=subprocess.DEVNULL, capture_output=True)

    def check(self, status: int, *arguments: str, **environment: str) -> str:
        result = self.run_command(*arguments, **environment)
        self.assertEqual(result.returncode, status, (arguments, result.stderr))
        return result.stdout

    def test_every_command_ends_as_the_manual_says(self):
        self.assertEqual(self.run_command("list").returncode, 1, "no folder at all")
        self.write_meetings()
        self.write_state()
        for status, *arguments in (
                (0, "status"), (0, "stop"), (4, "mark"), (0, "list"), (1, "list", "--since", "2026-04-01"),
                (0, "show", STEM), (0, "show", "2026-03-03"), (0, "show", "last"), (0, "show", "лодка"),
                (1, "show", "ничего"), (6, "show", "план"), (0, "show", "--sent", "--edits", "last"),
                (0, "search", "лодку"), (1, "search", "самовар"), (0, "search", "--no-update", "лодку"),
                (0, "search", "лодку", "-самовар"), (1, "search", "лодку", "-красим"),
                (0, "export", "last"), (0, "export", "last", "-o", str(self.home / "b.pdf")),
                (4, "export", "last", "-o", str(self.home / "нет" / "b.pdf")), (1, "export", "ничего"),
                (1, "open", "ничего"), (0, "index"), (0, "index", "--rebuild"), (0, "help"), (0, "help", "list"),
                (0, "complete", ""), (0, "list", "--help"),
                (2, "list", "--limit", "много"), (2, "list", "лишнее"), (2, "show"), (2, "search", "--json"),
                (2, "list", "--since", "вторник"), (2, "status", "--loud"), (2, "list", "--limit"),
                (2, "list", "--json=yes"), (2, "list", "--lang", "fr"), (2, "help", "dance"),
                (2, "export", "last", "--format", "doc"), (2, "export", "last", "--sections", "jokes"),
                (2, "export", "last", "--sections", ",")):
            with self.subTest(arguments=arguments):
                result = self.run_command(*arguments)
                self.assertEqual(result.returncode, status, result.stderr)
                self.assertNotIn("QStandardPaths", result.stderr)
                if status == 2:
                    self.assertRegex(result.stderr, rf"^murmeli: .+ — murmeli help {arguments[0]}\n$")
                    self.assertEqual(result.stdout, "")
                if status in (4, 6):
                    self.assertTrue(result.stderr.startswith("murmeli: "), result.stderr)
        self.assertTrue((self.home / "b.pdf").read_bytes().startswith(b"%PDF"))
        self.assertFalse(list(self.home.rglob("murmeli.lock")), "no command takes the program's lock")

    def test_what_programs_read(self):
        self.write_meetings()
        self.write_state(status="recording", since=1772619300.0, detail="Zoom")
        status = json.loads(self.check(0, "status", "--json"))
        self.assertEqual({key: status[key] for key in ("v", "status", "since", "detail", "jobs", "pulse")},
                         {"v": 1, "status": "recording", "since": "2026-03-04T10:15:00Z", "detail": "Zoom", "jobs": 0,
                          "pulse": "unknown"})
        self.check(0, "mark", "важное", "место")
        self.assertIn("важное место", (self.own / "marks.jsonl").read_text())
        meetings = json.loads(self.check(0, "list", "--json", "--limit", "1"))
        self.assertEqual(meetings, {"v": 1, "meetings": [
            {"stem": STEM, "title": "План лодок", "start": "2026-03-04T10:15:00Z", "end": "2026-03-04T10:45:00Z",
             "duration_min": 30}]})
        found = json.loads(self.check(0, "search", "--json", "лодка"))
        place = found["results"][0]["places"][0]
        self.assertEqual((found["v"], found["results"][0]["stem"], place["text"][slice(place["hits"][0][0], sum(place["hits"][0]))]),
                         (1, STEM, "лодок"))
        protocol = json.loads(self.check(0, "show", "--json", STEM))
        self.assertEqual(protocol["sections"][1]["items"], [{"text": "Красим лодки для Анны за 500 ₽"}])
        talk = json.loads(self.check(0, "show", "--json", "--transcript", "--sent", "--edits", "--analysis", STEM))
        self.assertEqual(talk["sections"][0]["items"][1],
                         {"text": "Красим лодки завтра", "speaker": "Анна", "stamp": "00:01:00"})
        self.assertEqual((talk["sent"], talk["edits"], talk["analysis"]), ([], [], {}))
        hidden = self.check(0, "export", STEM, "--format", "txt", "--hide-names", "--hide-numbers", "--sections=decisions,transcript")
        self.assertIn("• Красим лодки для Участник 1 за …\n", hidden)
        self.assertIn("[00:01:00] Участник 1: Красим лодки завтра", hidden)
        sent = json.loads(self.check(0, "show", "--json", "--sent", STEM))["sent"]
        self.assertEqual((sent[0]["kind"], sent[0]["to"], sent[0]["parts"][-2:]), ("file", "stdout", ["names", "numbers"]))
        self.assertEqual(self.check(0, "show", "--lang", "en", OTHER).splitlines()[:4],
                         ["# План зимы", "", "March 3, 2026 · 10:15 – 10:45", ""])

    def test_a_recording_is_started_and_stopped(self):
        self.write_state()

        def serve() -> None:
            command = wait_for(lambda: (self.notes / "command.json").exists(), "the request")
            self.asked = json.loads((self.notes / "command.json").read_text())["action"]
            (self.notes / "command.json").unlink()
            self.write_state(status="recording" if self.asked == "start" else "processing", since=1772619300.0)

        for command, expected in (("start", "start"), ("stop", "stop"), ("toggle", "start"), ("toggle", "stop")):
            with self.subTest(command):
                service = threading.Thread(target=serve)
                service.start()
                self.check(0, command)
                service.join()
                self.assertEqual(self.asked, expected)
        self.write_state(status="recording", since=1772619300.0)
        self.check(0, "start")
        self.assertFalse((self.notes / "command.json").exists(), "it is so already")
        self.check(0, "stop", "--no-wait")
        self.assertTrue((self.notes / "command.json").exists())

    def test_a_service_that_does_not_answer(self):
        self.write_state()
        begun = time.monotonic()
        result = self.run_command("start", "--lang", "en")
        self.assertEqual(result.returncode, 3)
        self.assertGreater(time.monotonic() - begun, 11)
        self.assertEqual(result.stderr, "murmeli: The recording did not start: The recorder is not installed\n")

    def test_the_state_is_watched(self):
        self.write_state()
        child = self.start("status", "--watch", "--json")
        first = json.loads(child.stdout.readline())
        self.assertEqual((first["status"], first["class"], first["text"]), ("idle", "idle", "Готов к записи"))
        (self.notes / "state.json").unlink()
        self.assertEqual(json.loads(child.stdout.readline())["class"], "missing")
        self.write_state(status="recording", since=1772619300.0)
        self.assertEqual(json.loads(child.stdout.readline())["tooltip"], "Идёт запись\nс 10:15")
        child.send_signal(2)
        self.assertIn(child.wait(10), (-2, 130))
        reader = self.start("status", "--watch")
        reader.stdout.readline()
        reader.stdout.close()
        self.assertEqual(reader.wait(10), 0, "nobody reads any more")

    def test_as_a_unix_user_expects(self):
        self.write_meetings()
        whole = self.check(0, "list", LANG="C")
        self.assertEqual(whole, "2026-03-04 10:15  30 мин  План лодок\n2026-03-03 10:15  30 мин  План зимы\n".replace("30 мин", "30\u00a0мин"))
        shell = subprocess.run(["bash", "-c", 'set -o pipefail; "$0" list | head -1', PROGRAM], env=self.environment(),
                               timeout=30, capture_output=True, text=True)
        self.assertEqual((shell.returncode, shell.stdout.count("\n"), shell.stderr), (0, 1, ""))
        with open("/dev/full", "w") as full:
            self.assertEqual(subprocess.run([PROGRAM, "list"], env=self.environment(), stdout=full, timeout=30,
                                            stderr=subprocess.DEVNULL).returncode, 4)
        summary = self.notes / "logs" / f"{STEM}.protocol.json"
        summary.write_text(summary.read_text().replace("План лодок".encode("ascii", "backslashreplace").decode(), "\\u001b[31mПлан"))
        for columns, expected in ((20, "03-04  [31mПлан"), (80, "2026-03-04 10:15  30\u00a0мин   [31mПлан")):
            with self.subTest(columns=columns):
                shown = self.on_terminal(columns, "list", "--limit", "1", NO_COLOR="1")
                self.assertEqual(shown, expected + "\r\n")
        self.assertIn("\x1b[2m", self.on_terminal(80, "list", TERM="xterm"))
        wide = self.on_terminal(20, "show", "last", NO_COLOR="1")
        self.assertIn("Красим лодки для Анны за 500 ₽", wide, "a text is not cut")

    def on_terminal(self, columns: int, *arguments: str, **environment: str) -> str:
        ours, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        child = subprocess.Popen([PROGRAM, *arguments], env=self.environment(**environment), stdout=theirs)
        os.close(theirs)
        told = b""
        while select.select([ours], [], [], 20)[0]:
            try:
                told += os.read(ours, 4096)
            except OSError:  # the other end has gone
                break
        os.close(ours)
        child.wait(10)
        return told.decode()

    def test_everything_stands_in_the_manual_and_is_completed(self):
        self.write_meetings()
        offered = self.check(0, "complete", "").split()
        self.assertEqual(offered, re.findall(r"^  (\w+)", self.check(0, "help"), re.MULTILINE))
        for command in offered:
            usage = self.check(0, "help", command).splitlines()[0]
            options = set(re.findall(r"\[(-[-\w]+)", usage))
            self.assertEqual(options | {"--lang", "--help"}, set(self.check(0, "complete", command, "-").split()))
            entry = re.search(rf"\.TP\n\.BR [^\n]*\b{command}\b[^\n]*\n", PAPER)
            self.assertTrue(entry, f"{command} is not in the manual")
            for option in options:
                self.assertIn(option, entry[0], command)
            self.assertEqual("--json" in options, command in READING)
        self.assertEqual(self.check(0, "complete", "show", "2026-03-04"), STEM + "\n")
        self.check(0, "index")
        self.assertEqual(self.check(0, "complete", "search", "от:А"), "от:Анна\n")
        bash = subprocess.run(["bash", "-c", f'PATH={PROGRAM.parent}:$PATH; . {ROOT}/packaging/completions/murmeli.bash; '
                               'COMP_WORDS=(murmeli show 2026-03-03); COMP_CWORD=2; _murmeli; echo "${COMPREPLY[@]}";'
                               'COMP_WORDS=(murmeli search от : А); COMP_CWORD=4; _murmeli; echo "${COMPREPLY[@]}"'],
                              env=self.environment(LANG="C.UTF-8"), timeout=30, capture_output=True, text=True)
        self.assertEqual(bash.stdout, OTHER.replace(" ", "\\ ") + "\nАнна\n")


if __name__ == "__main__":
    unittest.main()
