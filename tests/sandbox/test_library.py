import json
import os
from collections import Counter
from pathlib import Path

from sandbox_case import SandboxCase


def content(home: Path) -> dict[str, bytes]:
    """Every file below a home, with the home's own path taken out."""
    return {str(path.relative_to(home)): os.readlink(path).encode() if path.is_symlink() else
            path.read_bytes().replace(str(home).encode(), b"HOME") for path in home.rglob("*") if not path.is_dir()}


def kind(path: Path) -> str:
    """What a reader of the logs folder meets."""
    try:
        value = json.loads(path.read_bytes())
    except (OSError, ValueError) as error:
        return type(error).__name__
    return "meeting" if isinstance(value, dict) and "participants" in value else type(value).__name__


class Library(SandboxCase):
    def write(self, home: Path) -> dict[str, bytes]:
        result = self.run_script("library.py", "--home", home, "--today", "2025-11-21")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return content(home)

    def assert_same(self, one: dict, other: dict):
        # Only the names: a difference of whole libraries would take minutes to print.
        self.assertEqual([name for name in sorted(one.keys() | other.keys()) if one.get(name) != other.get(name)], [])

    def test_it_is_the_same_every_time_and_replaces_nothing_but_itself(self):
        before = self.write(self.home)
        self.assert_same(before, self.write(self.folder / "other"))
        self.assertEqual(Counter(map(kind, self.logs.glob("*.protocol.json"))), {
            "meeting": 46, "dict": 6, "list": 1, "JSONDecodeError": 2, "UnicodeDecodeError": 1,
            "FileNotFoundError": 1, "IsADirectoryError": 1})
        self.assertEqual(len(list(self.logs.glob("*.report.json"))), 13)

        next(path for path in self.logs.glob("*.protocol.json") if kind(path) == "meeting").write_text("{}")
        own = {name: b"mine" for name in ("MeetingNotes/prefs.json", "MeetingNotes/logs/заметка.protocol.json")}
        victim = self.folder / "victim.protocol.json"
        for path in (victim, *(self.home / name for name in own)):
            path.write_bytes(b"mine")
        belongings = self.root / ".sandbox-library.json"
        listed = json.loads(belongings.read_text())
        listed["files"] += [str(victim), "MeetingNotes/logs/../../../victim.protocol.json", "MeetingNotes/prefs.json"]
        belongings.write_text(json.dumps(listed))
        self.assert_same(self.write(self.home), before | own)
        self.assertTrue(victim.exists())
