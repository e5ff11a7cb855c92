import json
import os
import pwd
import shutil
import subprocess
import sys
import unittest
from unittest import mock

from sandbox_case import SANDBOX, SandboxCase

import native_rec
import permissions


class Recorder(SandboxCase):
    def setUp(self):
        super().setUp()
        (self.root / "pipeline").mkdir(parents=True)
        self.script = self.root / "pipeline" / "native_rec.py"
        shutil.copy(SANDBOX / "native_rec.py", self.script)

    def ask(self, argument: str, script=None, **environment: str) -> subprocess.CompletedProcess:
        return subprocess.run([sys.executable, script or self.script, argument], capture_output=True, text=True,
                              env=self.environment() | environment, timeout=8)

    def test_what_it_answers(self):
        cases = (
            ({}, "--status", "notDetermined", False),
            ({}, "--request-mic", "authorized", False),
            ({"answer_microphone": "denied"}, "--request-mic", "denied", False),
            ({"microphone": "denied", "think_seconds": 3600}, "--request-mic", "denied", False),
            ({"microphone": "restricted", "screen": True}, "--status", "restricted", True),
            ({"screen": True, "think_seconds": 3600}, "--request-screen", "notDetermined", True),
            ({}, "--request-screen", "notDetermined", True),
            ({"answer_screen": False}, "--request-screen", "notDetermined", False),
        )
        for members, argument, microphone, screen in cases:
            with self.subTest(argument, **members):
                (self.root / ".sandbox-permissions.json").unlink(missing_ok=True)
                permissions.change(self.home, {"think_seconds": 0} | members)
                expected = {"microphone": microphone, "screen": screen}
                self.assertEqual(json.loads(self.ask(argument).stdout), expected)
                # Nobody is asked twice, and the answer stays.
                native_rec.store(self.home, {"think_seconds": 3600})
                self.assertEqual(json.loads(self.ask(argument).stdout), expected)
        calls = (self.root / ".sandbox-recorder-calls.log").read_text().splitlines()
        self.assertEqual(calls, [argument for _, argument, _, _ in cases for _ in range(2)])

    def test_a_broken_recorder_prints_a_trace(self):
        permissions.change(self.home, {"broken": True})
        result = self.ask("--status")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("Traceback", result.stderr)

    def test_away_from_a_home_it_goes_by_the_environment(self):
        away = SANDBOX / "native_rec.py"
        self.assertEqual(self.ask("--status", away, HOME=str(self.home)).returncode, 0)
        self.assertEqual((self.root / ".sandbox-recorder-calls.log").read_text(), "--status\n")
        with mock.patch.dict(os.environ, {"HOME": pwd.getpwuid(os.getuid()).pw_dir}):
            with self.assertRaises(SystemExit):
                native_rec.home_folder()

    def test_permissions_are_set_whole_or_not_at_all(self):
        for words, status in ((["microphone=denied", "screen=true", "think_seconds=0.5"], 0),
                              (["microphone=restricted", "screen=yes"], 1), (["keyboard=true"], 1),
                              (["think_seconds=-1"], 1), (["think_seconds=true"], 1), ([], 0)):
            with self.subTest(words):
                result = self.run_script("permissions.py", "--home", str(self.home), *words)
                self.assertEqual(result.returncode, status, result.stderr)
                members = json.loads((self.root / ".sandbox-permissions.json").read_text())
                self.assertEqual((members["microphone"], members["screen"], members["think_seconds"]),
                                 ("denied", True, 0.5))
        self.assertEqual(self.run_script("permissions.py", "--home", str(self.real_home)).returncode, 1)


if __name__ == "__main__":
    unittest.main()
