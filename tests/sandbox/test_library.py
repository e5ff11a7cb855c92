import json
import os
import shutil
import tempfile
import unittest
from datetime import date, datetime, timedelta
from pathlib import Path

from sandbox_case import STAMPED, VAULT, SandboxCase, transcript

TODAY = date(2025, 11, 21)
SUFFIX = ".protocol.json"
LISTS = ("agenda_coverage", "blockers", "commitments", "concepts", "disagreements", "insights", "numbers", "roles")


def stamps_in(value) -> list[str]:
    """Every stamp under an "at", however deep."""
    if isinstance(value, list):
        return [stamp for element in value for stamp in stamps_in(element)]
    if not isinstance(value, dict):
        return []
    at = value.get("at", [])
    return ([at] if isinstance(at, str) else list(at)) + [s for v in value.values() for s in stamps_in(v)
                                                          if isinstance(v, (dict, list)) and v is not at]


class LibraryCase(SandboxCase):
    def write(self, home: Path, *arguments: str) -> str:
        result = self.run_script("library.py", "--home", str(home), "--today", str(TODAY), *arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    @staticmethod
    def content(home: Path) -> dict[str, bytes | str]:
        """Every file below a home, with the home's own path taken out."""
        files = {}
        for path in sorted(home.rglob("*")):
            name = str(path.relative_to(home))
            if path.is_symlink():
                files[name] = f"link to {os.readlink(path)}"
            elif path.is_dir():
                files[name] = "folder"
            else:
                files[name] = path.read_bytes().replace(str(home.resolve()).encode(), b"HOME")
        return files


    def assert_same(self, one: dict, other: dict):
        # Only the names: a difference of whole libraries would take minutes to print.
        self.assertEqual([name for name in sorted(one.keys() | other.keys()) if one.get(name) != other.get(name)], [])


class Content(LibraryCase):
    """One library, read in many ways."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.shared = Path(folder.name) / "home"

    def setUp(self):
        super().setUp()
        if not self.shared.exists():
            self.write(self.shared)
        self.home = self.shared
        self.logs = self.home / "MeetingNotes" / "logs"
        self.meetings = {}  # stem to summary, the whole ones
        for path in sorted(self.logs.glob("*" + SUFFIX)):
            try:
                summary = json.loads(path.read_text())
            except (OSError, ValueError):
                continue
            if isinstance(summary, dict) and "participants" in summary and "started_at" in summary["_meta"]:
                self.meetings[path.name.removesuffix(SUFFIX)] = summary

    def protocol(self, stem: str) -> Path:
        summary = self.meetings[stem]
        path = Path(summary["_meta"]["protocol_md"])
        if not path.exists():
            [path] = [p for p in (self.home / VAULT).iterdir() if summary["title"].lower() in p.name.lower()]
        return path

    def test_meetings_reach_from_five_months_ago_to_today(self):
        self.assertGreaterEqual(len(self.meetings), 44)
        days = [datetime.fromisoformat(s["_meta"]["started_at"]).astimezone().date() for s in self.meetings.values()]
        self.assertTrue(TODAY - timedelta(155) <= min(days) <= TODAY - timedelta(140), min(days))
        self.assertEqual(max(days), TODAY)
        self.assertGreaterEqual(days.count(TODAY), 2)
        self.assertGreaterEqual(days.count(TODAY - timedelta(1)), 2)
        languages = [s["language"] for s in self.meetings.values()]
        self.assertAlmostEqual(languages.count("ru") / len(languages), 2 / 3, delta=0.05)
        self.assertEqual(len({s["title"] for s in self.meetings.values()}), len(self.meetings))

    def test_the_stem_is_the_local_start(self):
        forms = set()
        for stem, summary in self.meetings.items():
            text = summary["_meta"]["started_at"]
            self.assertRegex(text, r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d{3})?(Z|[+-]\d\d:\d\d)$")
            self.assertEqual(datetime.fromisoformat(text).astimezone().strftime("%Y-%m-%d %H-%M-%S"), stem)
            forms.add("." in text)
        self.assertEqual(forms, {True, False})

    def test_people_talk_in_every_protocol(self):
        sections = {key: 0 for key in ("decisions", "action_items", "next_steps", "open_questions", "risks")}
        for stem, summary in self.meetings.items():
            with self.subTest(stem):
                markdown = self.protocol(stem).read_text()
                self.assertNotRegex(markdown, r"[{}]")
                lines = transcript(self.protocol(stem))
                self.assertEqual(len(lines), markdown.count("\n> ["), "two lines with one stamp")
                self.assertTrue(30 <= len(lines) <= 120, len(lines))
                times = [int(h) * 3600 + int(m) * 60 + int(s)
                         for h, m, s in (STAMPED.fullmatch(stamp).groups() for stamp in lines)]
                self.assertEqual(times, sorted(times))
                self.assertLess(times[-1], summary["_meta"]["duration_min"] * 60)
                self.assertLessEqual({words.split(":")[0] for words in lines.values()}, set(summary["participants"]))
                for item in summary["action_items"]:
                    if isinstance(item, dict):
                        self.assertIn(item["owner"], summary["participants"])
                    self.assertIn(item["task"] if isinstance(item, dict) else item, markdown)
                for decision in summary["decisions"]:
                    self.assertIn(decision, markdown)
                for key in sections:
                    sections[key] += bool(summary[key])
        for key, count in sections.items():
            self.assertGreater(count, len(self.meetings) // 2, key)

    def test_summaries_hold_what_a_client_must_not_lose(self):
        for stem, summary in self.meetings.items():
            with self.subTest(stem):
                tasks = summary["action_items"]
                self.assertEqual([type(item) for item in tasks],
                                 [dict] * (len(tasks) - 1) + [dict if len(tasks) < 2 else str] if tasks else [])
                engine = summary["engine"]
                # Neither a double nor 64 bits hold these.
                self.assertGreater(engine["build"], 2 ** 64)
                self.assertTrue(all(item["trace"]["id"] >= 2 ** 64 for item in tasks if isinstance(item, dict)))
                self.assertIn("и\u0306", engine["spelling"])
                self.assertEqual(engine["steps"], [[], [{}], [True]])
        self.assertGreater(sum(len(summary["action_items"]) > 1 for summary in self.meetings.values()), 30)

    def test_dynamics_agree_with_the_transcript(self):
        kinds = []
        for stem, summary in self.meetings.items():
            analytics = summary["_meta"].get("analytics")
            kinds.append(analytics and analytics["source"])
            if not analytics:
                continue
            with self.subTest(stem):
                speakers = [words.split(":")[0] for words in transcript(self.protocol(stem)).values()]
                self.assertEqual(analytics["turns"], 1 + sum(a != b for a, b in zip(speakers, speakers[1:])))
                self.assertEqual({s["name"] for s in analytics["speakers"]}, set(speakers))
                self.assertAlmostEqual(sum(s["share"] for s in analytics["speakers"]), 1, places=2)
                self.assertAlmostEqual(analytics["duration_sec"] / 60, summary["_meta"]["duration_min"], delta=0.1)
                self.assertLessEqual(analytics["long_pauses"], analytics["pauses"])
        self.assertGreater(kinds.count("segments"), len(kinds) // 2)
        self.assertGreater(kinds.count("turns"), 0)
        self.assertGreater(kinds.count(None), 0)

    def test_stored_analyses_are_whole_and_quote_the_transcript(self):
        whole = 0
        for path in self.logs.glob("*.report.json"):
            report = json.loads(path.read_text())
            stem = path.name.removesuffix(".report.json")
            if not isinstance(report, dict):
                continue
            with self.subTest(stem):
                lines = transcript(self.protocol(stem))
                stamps = stamps_in(report)
                self.assertGreaterEqual(len(stamps), 10)
                self.assertLessEqual(set(stamps), lines.keys())
                people = set(self.meetings[stem]["participants"])
                for commitment in report["commitments"]:
                    self.assertEqual(lines[commitment["at"]], f"{commitment['who']}: {commitment['quote']}")
                for dispute in report["disagreements"]:
                    self.assertEqual([lines[side["at"]].split(":")[0] for side in dispute["sides"]],
                                     [side["who"] for side in dispute["sides"]])
                self.assertLessEqual({role["who"] for role in report["roles"]}, people)
                whole += set(report) == set(LISTS) and all(report[key] for key in LISTS)
        self.assertGreaterEqual(whole, 6)

    def test_every_odd_file_is_there(self):
        def by_content(test):
            return [path for path in self.logs.glob("*" + SUFFIX) if path.is_file() and test(path.read_bytes())]

        def parsed(test):
            found = []
            for path in self.logs.glob("*" + SUFFIX):
                try:
                    value = json.loads(path.read_bytes())
                except (OSError, ValueError):
                    continue
                if test(value):
                    found.append(path)
            return found

        def titled(test):
            return parsed(lambda v: isinstance(v, dict) and isinstance(v.get("title"), str) and test(v["title"]))

        self.assertEqual(len(by_content(lambda raw: raw == b"")), 1, "empty")
        self.assertEqual(len(by_content(lambda raw: raw.startswith(b"{\n") and b'"tldr"' in raw
                                        and not raw.rstrip().endswith(b"}"))), 1, "cut")
        self.assertEqual(len(by_content(lambda raw: b"\xff\xfe" in raw)), 1, "not UTF-8")
        self.assertEqual(len(parsed(lambda v: isinstance(v, list))), 1, "array")
        self.assertEqual(len(titled(lambda t: "\n" in t and "\r" in t and "<b>" in t)), 1, "line breaks and HTML")
        self.assertEqual(len(titled(lambda t: "\u202e" in t and "\u05d0" in t)), 1, "right to left")
        self.assertEqual(len(titled(lambda t: len(t) > 4000)), 1, "long title")
        self.assertEqual(len(parsed(lambda v: isinstance(v, dict) and v.get("title") == 42
                                    and not isinstance(v["_meta"], dict))), 1, "wrong types")
        links = [p for p in self.logs.glob("*" + SUFFIX) if p.is_symlink()]
        self.assertEqual([p.exists() for p in links], [False], "dangling link")
        self.assertEqual(len([p for p in self.logs.glob("*" + SUFFIX) if p.is_dir()]), 1, "folder")
        [stem_only] = titled(lambda t: "имени файла" in t)
        datetime.strptime(stem_only.name.removesuffix(SUFFIX), "%Y-%m-%d %H-%M-%S")
        with self.assertRaises(ValueError):
            datetime.fromisoformat(json.loads(stem_only.read_text())["_meta"]["started_at"])
        [dateless] = titled(lambda t: "без даты" in t)
        self.assertLess(dateless.stat().st_mtime, datetime(2025, 11, 1).timestamp())
        [mixed] = titled(lambda t: "пустотой" in t)
        kinds = {type(item) for item in json.loads(mixed.read_text())["action_items"]}
        self.assertEqual(kinds, {str, dict, list})
        report = self.logs / mixed.name.replace(SUFFIX, ".report.json")
        self.assertIsInstance(json.loads(report.read_text()), list)


class Writing(LibraryCase):
    def test_the_same_day_and_seed_give_the_same_library(self):
        other, third = self.folder / "other", self.folder / "third"
        self.write(self.home)
        self.write(other)
        self.write(third, "--seed", "2")
        self.assert_same(self.content(self.home), self.content(other))
        self.assertFalse(self.content(self.home) == self.content(third))

    def test_a_second_run_replaces_its_own_files_only(self):
        self.write(self.home)
        before = self.content(self.home)
        whole = [p for p in sorted(self.logs.glob("*" + SUFFIX)) if p.is_file() and p.stat().st_size > 1500]
        whole[0].write_text("{}")
        whole[1].unlink()
        shutil.rmtree(self.home / VAULT)
        self.write(self.home)
        self.assert_same(self.content(self.home), before)

        own = {"MeetingNotes/prefs.json": b"{}", "MeetingNotes/logs/2025-11-21 09-00-00.protocol.json": b"mine",
               "MeetingNotes/logs/notes.txt": b"mine", str(VAULT / "заметка.md"): b"mine"}
        for name, content in own.items():
            (self.home / name).write_bytes(content)
        self.write(self.home, "--seed", "5")
        self.write(self.home)
        self.assert_same(self.content(self.home), before | own)

    def test_a_file_that_was_there_first_is_left_alone(self):
        self.write(self.folder / "model")
        names = [n for n, kind in self.content(self.folder / "model").items()
                 if n.endswith((SUFFIX, ".md")) and isinstance(kind, bytes)]
        for name in names:
            (self.home / name).parent.mkdir(parents=True, exist_ok=True)
            (self.home / name).write_bytes(b"mine")
        self.write(self.home)
        self.write(self.home)
        for name in names:
            self.assertEqual((self.home / name).read_bytes(), b"mine", name)

    def test_nothing_outside_the_home_is_touched(self):
        victim = self.folder / "victim.protocol.json"
        victim.write_text("precious")
        (self.root).mkdir(parents=True)
        (self.root / "prefs.json").write_text("{}")
        (self.root / ".sandbox-library.json").write_text(json.dumps({"files": [
            str(victim), "../victim.protocol.json", "MeetingNotes/logs/../../../victim.protocol.json",
            "MeetingNotes/prefs.json", "", ".", "MeetingNotes/logs/..", "MeetingNotes/logs", 7, None]}))
        self.write(self.home)
        self.assertEqual(victim.read_text(), "precious")
        self.assertTrue((self.root / "prefs.json").exists())
        self.assertEqual({path.name for path in self.folder.iterdir()}, {"home", "real home", victim.name})
        self.assertEqual(list(self.real_home.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
