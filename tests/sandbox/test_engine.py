import json
import os
import pwd
from datetime import datetime
from pathlib import Path
from unittest import mock

from sandbox_case import Engine, SandboxCase, Web, wait_for

import homes
import native_rec


class Service(SandboxCase):
    def test_a_recording_becomes_a_meeting_that_can_be_read(self):
        engine = Engine(self, "--processing-seconds", "0")
        with open(engine.state_file) as reader:
            engine.command("start", 1.25)
            wait_for(lambda: engine.state()["status"] == "recording", "the recording")
            # Replaced, never rewritten: whoever reads meanwhile sees a whole state.
            self.assertEqual(json.load(reader), {"status": "idle", "detail": "", "telegram_connected": True,
                                                 "since": 0, "jobs": 0})
        engine.command("stop", 2.25)
        [path] = wait_for(lambda: list(self.logs.glob("*.protocol.json")), "the summary file")
        # It comes last and whole: all that it names is there.
        summary = json.loads(path.read_text())
        started = datetime.fromisoformat(summary["_meta"]["started_at"]).astimezone()
        self.assertEqual(path.name, f"{started:%Y-%m-%d %H-%M-%S}.protocol.json")
        self.assertGreater(summary["engine"]["build"], 2 ** 64)  # a client that reads it as a number loses it
        self.assertRegex(Path(summary["_meta"]["protocol_md"]).read_text(),
                         r"## .*Транскрипт\n\n(> \[\d\d:\d\d:\d\d\] [^:]+: .+\n){30,}\Z")

    def test_a_command_is_obeyed_once_and_only_where_it_fits(self):
        engine = Engine(self, "--processing-seconds", "3600")
        for action, ts, status, jobs in (
                ("stop", 1, "idle", 0), ("start", 2, "recording", 0), ("start", 3, "recording", 0),
                ("stop", 4, "processing", 1), ("start", 4, "processing", 1), ("start", 5, "recording", 1)):
            with self.subTest(action, ts=ts):
                engine.command(action, ts)
                wait_for(lambda: not engine.command_file.exists(), "the command to be taken")
                engine.let_it_turn()
                self.assertEqual((engine.state()["status"], engine.state()["jobs"]), (status, jobs))
        # The end writes what is being processed, and drops the recording.
        self.assertEqual((engine.end(), len(list(self.logs.iterdir())), engine.state()["status"]), (0, 1, "idle"))

    def test_it_is_torn_and_deaf_when_asked(self):
        engine = Engine(self, "--fault", "torn", "--fault", "deaf")
        engine.command("start", 1)
        wait_for(lambda: homes.read_object(engine.state_file) is None, "a torn state")
        engine.let_it_turn()
        self.assertTrue(engine.command_file.exists())

    def test_an_edited_protocol_is_written_anew_when_asked(self):
        engine = Engine(self, "--processing-seconds", "0", "--fault", "rewrite=0")
        engine.command("start", 1)
        wait_for(lambda: engine.state()["status"] == "recording", "the recording")
        engine.command("stop", 2)
        [path] = wait_for(lambda: list(self.logs.glob("*.protocol.json")), "the summary file")
        engine.let_it_turn()
        own = path.read_text()
        edited = json.loads(own)
        edited["_meta"]["edited"] = True
        homes.write_whole(path, json.dumps(edited))
        wait_for(lambda: path.read_text() == own, "the service's own version")


class Refusals(SandboxCase):
    def test_a_real_home_under_any_name_and_a_folder_that_leads_out(self):
        account = Path(pwd.getpwuid(os.getuid()).pw_dir)
        link = self.folder / "link"
        link.symlink_to(self.real_home)
        self.home.mkdir()
        self.root.symlink_to(self.real_home)
        with mock.patch.dict(os.environ, {"HOME": str(self.real_home)}):
            for home in (account, self.real_home, link, self.real_home / "../real home"):
                with self.subTest(home), self.assertRaises(homes.Refused):
                    homes.check(home)
            with self.assertRaises(homes.Refused):
                homes.open_home(str(self.home))
        with mock.patch.dict(os.environ, {"HOME": str(account)}), self.assertRaises(SystemExit):
            native_rec.home_folder()
        self.assertEqual(list(self.real_home.iterdir()), [])

    def test_no_program_starts_where_it_must_not_or_with_what_it_does_not_know(self):
        Engine(self)
        Web(self)
        free = self.folder / "free"
        for script, home, fault, status, word in (
                ("engine", self.real_home, "", 1, "real home"), ("library", self.real_home, "", 1, "real home"),
                ("web", self.real_home, "", 1, "real home"), ("permissions", self.real_home, "", 1, "real home"),
                ("engine", self.home, "", 1, "another engine"), ("web", self.home, "", 1, "another server"),
                ("engine", free, "--fault=quiet", 2, "quiet"), ("web", free, "--fault=/=rain", 2, "rain")):
            with self.subTest(script, word=word):
                result = self.run_script(f"{script}.py", "--home", home, *filter(None, [fault]))
                self.assertEqual((result.returncode, result.stdout), (status, ""))
                self.assertIn(word, result.stderr)
        self.assertEqual((list(self.real_home.iterdir()), free.exists()), ([], False))
