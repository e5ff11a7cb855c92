import json
import os
import pwd
import signal
import threading
import time
import unittest
from datetime import datetime
from pathlib import Path
from unittest import mock

from sandbox_case import VAULT, Engine, SandboxCase, transcript, wait_for

import homes
import meeting_files

NEVER = "3600"


class RoundTrip(SandboxCase):
    def test_a_recording_becomes_a_meeting_that_can_be_read(self):
        engine = Engine(self, "--processing-seconds", "0.3")
        self.assertEqual(engine.state(), {"status": "idle", "detail": "", "telegram_connected": True,
                                          "since": 0, "jobs": 0})
        before = time.time()
        engine.command("start", 1.25)
        state = engine.wait_state(status="recording")
        self.assertTrue(before <= state["since"] <= time.time())
        self.assertFalse((self.root / "command.json").exists())
        engine.command("stop", 2.25)
        engine.wait_state(status="processing", jobs=1, since=0)
        self.assertEqual(engine.summary_files(), [])
        engine.wait_state(status="idle", jobs=0)

        [path] = engine.summary_files()
        engine.wait_said(f"wrote logs/{path.name}")
        summary = json.loads(path.read_text())
        meta = summary["_meta"]
        started = datetime.fromisoformat(meta["started_at"])
        self.assertAlmostEqual(started.timestamp(), state["since"], delta=1)
        self.assertEqual(path.name, started.astimezone().strftime("%Y-%m-%d %H-%M-%S") + ".protocol.json")
        self.assertGreater(meta["duration_min"], 0)
        self.assertTrue(summary["title"] and summary["tldr"] and summary["decisions"] and summary["action_items"])
        self.assertEqual({type(item) for item in summary["action_items"]}, {dict, str})
        self.assertGreater(summary["engine"]["build"], 2 ** 64)
        protocol = Path(meta["protocol_md"])
        self.assertEqual(protocol.parent, (self.home / VAULT).resolve())
        self.assertIn(summary["title"], protocol.name)
        lines = transcript(protocol)
        self.assertTrue(30 <= len(lines) <= 120)
        self.assertFalse((self.root / "auth_required.flag").exists())

    def test_the_format_in_force_when_the_protocol_is_written_decides_its_length(self):
        engine = Engine(self, "--processing-seconds", "0")
        protocols = []
        for number, format in enumerate(("full", "short", 7)):
            (self.root / "prefs.json").write_text(json.dumps({"protocol_format": format}))
            engine.command("start", number * 2 + 1)
            engine.wait_state(status="recording")
            engine.command("stop", number * 2 + 2)
            engine.wait_state(status="idle")
            [new] = [p for p in (self.home / VAULT).iterdir() if p not in protocols]
            protocols.append(new)
        has_summary = [any(f"## {word}" in p.read_text() for word in ("Кратко", "Summary")) for p in protocols]
        self.assertEqual(has_summary, [True, False, True])
        self.assertTrue(all(len(transcript(p)) >= 30 for p in protocols))

    def test_the_seed_decides_what_is_recorded(self):
        def titles(seed):
            return [meeting_files.recorded_meeting(seed, n, datetime(2025, 3, 4, 10).astimezone()).title
                    for n in range(1, 31)]
        self.assertEqual(titles(1), titles(1))
        self.assertNotEqual(titles(1), titles(2))
        self.assertEqual(len(set(titles(1))), 30)

    def test_every_recording_is_a_whole_meeting(self):
        at = datetime(2025, 3, 4, 10).astimezone()
        languages = []
        for number in range(1, 61):
            meeting = meeting_files.recorded_meeting(3, number, at)
            languages.append(meeting.language.code)
            markdown = meeting_files.protocol_markdown(meeting)
            self.assertNotRegex(markdown, r"[{}]")
            self.assertTrue(30 <= len(meeting.turns) <= 120, meeting.title)
            for turn in meeting.turns:
                self.assertNotIn(turn.speaker.split()[0], turn.text.replace(",", " ").split(),
                                 f"{meeting.title}: {turn.speaker} addresses nobody else")
        self.assertEqual(languages.count("ru"), 40)


class Commands(SandboxCase):
    def test_a_command_is_handled_once(self):
        engine = Engine(self, "--processing-seconds", "0")
        engine.command("start", 10.5)
        engine.wait_state(status="recording")
        engine.command("stop", 11.5)
        engine.wait_state(status="idle")
        engine.command("stop", 11.5)
        engine.wait_said("command of 11.5 is already handled")
        engine.command("start", 12.5)
        engine.wait_state(status="recording")
        engine.command("start", 12.5)
        engine.wait_said("command of 12.5 is already handled")
        self.assertEqual(engine.state()["status"], "recording")
        self.assertEqual(engine.said("start requested"), 2)
        self.assertEqual(engine.said("recording"), 2)
        self.assertEqual(engine.said("stop requested"), 1)

    def test_stop_while_idle_is_ignored(self):
        engine = Engine(self, "--processing-seconds", "0")
        engine.command("stop", 1.0)
        engine.wait_said("stop ignored")
        engine.let_it_turn()
        self.assertEqual((engine.state()["status"], engine.state()["jobs"]), ("idle", 0))
        self.assertEqual(engine.summary_files(), [])
        self.assertFalse((self.root / "command.json").exists())

    def test_start_while_recording_keeps_the_recording(self):
        engine = Engine(self)
        engine.command("start", 1.0)
        since = engine.wait_state(status="recording")["since"]
        engine.command("start", 2.0)
        engine.wait_said("start ignored")
        engine.let_it_turn()
        self.assertEqual(engine.state()["since"], since)

    def test_nonsense_is_removed_and_survived(self):
        engine = Engine(self)
        command = self.root / "command.json"
        for content in ("", "[1]", "\x00\xff", '{"action":', "9" * 5000, "[" * 100000):
            command.write_text(content)
            os.utime(command, (1, 1))
            wait_for(lambda: not command.exists(), f"removal of {content[:20]!r}")
        for content in ('{"action":"pause","ts":3}', '{"action":["start"],"ts":4}', '{"ts":5}'):
            command.write_text(content)
            wait_for(lambda: not command.exists(), f"removal of {content!r}")
        self.assertEqual(engine.state()["status"], "idle")
        command.write_text('\ufeff {"extra":{}, "ts":"soon", "action":"start"}\n')
        engine.wait_state(status="recording")

    def test_a_command_that_is_still_being_written_is_waited_for(self):
        engine = Engine(self)
        command = self.root / "command.json"
        with open(command, "w") as file:
            file.write('{"action":"sta')
            file.flush()
            engine.let_it_turn()
            file.write('rt","ts":1.5}')
        engine.wait_state(status="recording")
        self.assertEqual(engine.said("unreadable"), 0)


class Processing(SandboxCase):
    def test_jobs_counts_what_is_processed_while_the_next_is_recorded(self):
        engine = Engine(self, "--processing-seconds", NEVER)
        for number in range(2):
            engine.command("start", number * 2 + 1)
            engine.wait_state(status="recording", jobs=number)
            engine.command("stop", number * 2 + 2)
            engine.wait_state(status="processing", jobs=number + 1)
        engine.command("start", 9)
        self.assertGreater(engine.wait_state(status="recording", jobs=2)["since"], 0)
        self.assertEqual(engine.summary_files(), [])
        self.assertEqual(engine.end(), 0)
        self.assertEqual(len(engine.summary_files()), 2)
        self.assertEqual((engine.state()["status"], engine.state()["jobs"]), ("idle", 0))

    def test_a_meeting_is_written_when_due_although_the_next_is_recorded(self):
        engine = Engine(self, "--processing-seconds", "0.5")
        engine.command("start", 1)
        engine.wait_state(status="recording")
        engine.command("stop", 2)
        engine.wait_state(status="processing")
        engine.command("start", 3)
        engine.wait_state(status="recording", jobs=1)
        engine.wait_summary_files(1)
        engine.wait_state(status="recording", jobs=0)
        engine.command("stop", 4)
        engine.wait_state(status="idle")
        titles = {json.loads(path.read_text())["title"] for path in engine.summary_files()}
        self.assertEqual(len(titles), 2)

    def test_an_interrupt_leaves_idle_behind(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            engine = Engine(self)
            engine.command("start", float(number))
            engine.wait_state(status="recording")
            self.assertEqual(engine.end(number), 0)
            self.assertEqual((engine.state()["status"], engine.state()["since"]), ("idle", 0))
        self.assertEqual(engine.summary_files(), [])


class StateFile(SandboxCase):
    def observe(self, drive) -> tuple[int, list[str]]:
        """Reads the state file without a pause while `drive` runs: how often, and what did not parse."""
        path, over, bad, count = self.root / "state.json", threading.Event(), [], [0]

        def read():
            while not over.is_set():
                text = path.read_text()
                count[0] += 1
                try:
                    if len(json.loads(text)) != 5:
                        bad.append(text)
                except ValueError:
                    bad.append(text)

        reader = threading.Thread(target=read)
        reader.start()
        try:
            drive(bad)
        finally:
            over.set()
            reader.join()
        return count[0], bad

    def test_is_never_seen_torn(self):
        engine = Engine(self, "--processing-seconds", "0", "--poll-seconds", "0.01")

        def drive(_):
            for number in range(1, 13):
                engine.command("start", number + 0.1)
                engine.wait_said("recording", number)
                engine.command("stop", number + 0.2)
                engine.wait_said("processing", number)

        reads, bad = self.observe(drive)
        self.assertEqual(bad, [])
        self.assertGreater(reads, 100)

    def test_is_seen_torn_when_asked_for(self):
        Engine(self, "--fault", "torn")
        self.observe(lambda bad: wait_for(lambda: bad, "a torn state"))

    def test_comes_back_when_lost(self):
        engine = Engine(self, "--no-telegram")
        (self.root / "state.json").unlink()
        wait_for((self.root / "state.json").exists, "the state file")
        self.assertIs(engine.state()["telegram_connected"], False)


class Faults(SandboxCase):
    def test_deaf_leaves_commands_alone(self):
        engine = Engine(self, "--fault", "deaf")
        engine.command("start", 1.0)
        engine.let_it_turn()
        self.assertTrue((self.root / "command.json").exists())
        self.assertEqual(engine.state()["status"], "idle")

    def test_slow_takes_the_command_and_obeys_later(self):
        engine = Engine(self, "--fault", "slow=0.7")
        asked = time.monotonic()
        engine.command("start", 1.0)
        wait_for(lambda: not (self.root / "command.json").exists(), "the command to be taken")
        self.assertEqual(engine.state()["status"], "idle")
        engine.wait_state(status="recording")
        self.assertGreaterEqual(time.monotonic() - asked, 0.7)

    def test_auth_raises_the_flag_after_processing(self):
        engine = Engine(self, "--fault", "auth", "--processing-seconds", "0.2")
        flag = self.root / "auth_required.flag"
        engine.command("start", 1.0)
        engine.wait_state(status="recording")
        self.assertFalse(flag.exists())
        engine.command("stop", 2.0)
        engine.wait_state(status="idle")
        notice = json.loads(flag.read_text())
        self.assertRegex(notice["title"], "[а-яё]")
        self.assertRegex(notice["body"], "[а-яё]")

    def test_an_unknown_fault_is_an_error(self):
        for fault in ("quiet", "slow=", "slow=-1", "slow=nan", "torn=1"):
            result = self.run_script("engine.py", "--home", str(self.home), "--fault", fault)
            self.assertEqual(result.returncode, 2, fault)
        self.assertFalse(self.home.exists())


class Refusal(SandboxCase):
    def refused(self, home: Path):
        for script in ("engine.py", "library.py"):
            result = self.run_script(script, "--home", str(home))
            self.assertEqual(result.returncode, 1, script)
            self.assertIn("refused", result.stderr)
            self.assertEqual(result.stdout, "")

    def test_the_home_that_the_environment_names(self):
        link = self.folder / "link"
        link.symlink_to(self.real_home)
        for home in (self.real_home, link, self.real_home / ".." / "real home"):
            self.refused(home)
        self.assertEqual(list(self.real_home.iterdir()), [])

    def test_the_account_home_whatever_the_environment_says(self):
        account = Path(pwd.getpwuid(os.getuid()).pw_dir)
        with mock.patch.dict(os.environ, {"HOME": str(self.real_home)}):
            with self.assertRaises(homes.Refused):
                homes.check(account)
            homes.check(self.home)

    def test_a_folder_that_leads_outside(self):
        outside = self.folder / "outside"
        outside.mkdir()
        self.home.mkdir()
        self.root.symlink_to(outside)
        self.refused(self.home)
        self.assertEqual(list(outside.iterdir()), [])

    def test_a_second_engine(self):
        Engine(self)
        result = self.run_script("engine.py", "--home", str(self.home))
        self.assertEqual(result.returncode, 1)
        self.assertIn("another engine", result.stderr)


if __name__ == "__main__":
    unittest.main()
