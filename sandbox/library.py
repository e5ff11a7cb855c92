#!/usr/bin/env python3
"""Fills a sandbox home with a sample library: five months of meetings and a few odd files."""

from __future__ import annotations

import argparse
import os
import sys
from datetime import date, datetime, time, timedelta, timezone
from pathlib import Path
from random import Random

import homes
import meeting_files
from compose import Meeting, compose
from homes import Home, say
from meeting_files import ENGLISH, RUSSIAN
from odd_files import odd_files
from scene import Scene

DAYS_BACK = 150
TODAY_AT = (time(8, 30), time(9, 15, 20), time(10, 40, 5))
YESTERDAY_AT = (time(10, 0, 12), time(13, 30, 41), time(16, 5, 8))
REPORT_EVERY = 4


def has_report(index: int) -> bool:
    return index % REPORT_EVERY == 0


def starts(today: date, count: int, rng: Random) -> list[datetime]:
    """When the meetings began, oldest first: on working days, the last ones yesterday and today."""
    days = [today - timedelta(days=back) for back in range(2, DAYS_BACK + 1)]
    working = [day for day in days if day.weekday() < 5]
    earlier = count - len(TODAY_AT) - len(YESTERDAY_AT)
    chosen = [working[-1], *rng.sample(working[:-1], earlier - 1)]
    at = [datetime.combine(day, time(rng.randrange(9, 18), rng.choice((0, 5, 15, 30, 45)), rng.randrange(60)))
          for day in chosen]
    at += [datetime.combine(today - timedelta(days=1), moment) for moment in YESTERDAY_AT]
    at += [datetime.combine(today, moment) for moment in TODAY_AT]
    return [moment.astimezone() for moment in sorted(at)]


def meetings(today: date, seed: int) -> list[Meeting]:
    """Every team comes to its scenes in order; teams take turns, so that their stories interleave."""
    rng = Random(f"{seed}:library")
    teams = [(language, team) for language in (RUSSIAN, ENGLISH) for team in language.teams]
    plan = []
    for place in range(max(len(team.scenes) for _, team in teams)):
        rng.shuffle(teams)
        plan += [(language, team, team.scenes[place]) for language, team in teams if place < len(team.scenes)]
    # One long session in each language: the whole list of what a team speaks of.
    long_places = [next(i for i, entry in enumerate(plan) if i >= len(plan) // 2 and entry[0] is language)
                   for language in (RUSSIAN, ENGLISH)]
    made = []
    for index, (started, (language, team, lead)) in enumerate(zip(starts(today, len(plan), rng), plan)):
        count = 10 if index in long_places else rng.choice((3, 3, 4, 5))
        topics = (covering(lead, language.routines, count, rng) if has_report(index)
                  else rng.sample(language.routines, count))
        left = [scene for scene in language.routines if scene not in topics]
        postponed = rng.choice(left) if rng.random() < 0.3 else None
        made.append(compose(language, team, lead, topics, started, rng, postponed))
    return made


def earlier_meetings(today: date, seed: int, count: int) -> list[Meeting]:
    """So many more, long ones, hour by hour back from where the library begins."""
    rng = Random(f"{seed}:more")
    last = datetime.combine(today - timedelta(days=DAYS_BACK + 7), time(18)).astimezone()
    made = []
    for index in range(count):
        language = rng.choice((RUSSIAN, ENGLISH))
        team = rng.choice(language.teams)
        topics = rng.sample(language.routines, min(10, len(language.routines)))
        made.append(compose(language, team, rng.choice(team.scenes), topics, last - timedelta(hours=index), rng, None))
    return made


def covering(lead: Scene, routines: tuple[Scene, ...], count: int, rng: Random) -> list[Scene]:
    """Topics beside the lead that leave no section of an analysis empty."""
    kinds = (lambda scene: scene.number, lambda scene: scene.insight, lambda scene: scene.dispute,
             lambda scene: scene.idea, lambda scene: scene.risk and scene.question and not scene.decision)
    order = rng.sample(routines, len(routines))
    chosen: list[Scene] = []
    for kind in kinds:
        if not any(map(kind, [lead, *chosen])):
            chosen.append(next(filter(kind, order)))
    chosen += [scene for scene in order if scene not in chosen][:max(0, count - len(chosen))]
    return rng.sample(chosen, len(chosen))


def write_library(home: Home, today: date, seed: int, more: int = 0) -> None:
    mine = Belongings(home)
    mine.remove()
    made = meetings(today, seed) + earlier_meetings(today, seed, more)
    reports = 0
    try:
        for index, meeting in enumerate(made):
            mine.add(*write_meeting(home, index, meeting))
            if has_report(index) and index < len(made) - more:
                mine.add(stamped(meeting_files.write_report(home, meeting), meeting))
                reports += 1
        odd = odd_files(home, today, made[0])
        for name, create in odd.items():
            path = home.logs / name
            if os.path.lexists(path):
                say(f"left alone: {home.relative(path)}")
                continue
            create(path)
            mine.add(path)
            if not path.is_symlink():
                moment = datetime.combine(today - timedelta(days=60), time(12)).timestamp()
                os.utime(path, (moment, moment))
    finally:
        mine.remember()
    say(f"wrote {len(made)} meetings, {reports} reports and {len(odd)} odd files in {home.folder}")


def write_meeting(home: Home, index: int, meeting: Meeting) -> list[Path]:
    extra = {}
    if index % 7 == 3:
        extra["started_at"] = meeting.started.isoformat(timespec="seconds")
    if index % 11 == 5:
        later = (meeting.started + timedelta(hours=3)).astimezone(timezone.utc)
        extra |= {"edited": True, "edits": 1 + index % 3, "edited_at": f"{later:%Y-%m-%dT%H:%M:%SZ}"}
    if index % 13 == 6:  # the user moved the protocol; only its name leads to it
        extra["protocol_md"] = str(home.vault / "Старое место" / meeting_files.protocol_name(meeting))
    exact = None if index % 9 == 7 else index % 5 != 2
    written = meeting_files.write(home, meeting, short=index % 6 == 4, exact=exact, extra_meta=extra)
    return [stamped(path, meeting) for path in written]


def stamped(path: Path, meeting: Meeting) -> Path:
    """Dates the file as the service would have left it: a few minutes after the meeting."""
    moment = meeting.started.timestamp() + meeting.seconds + 180
    os.utime(path, (moment, moment))
    return path


class Belongings:
    """Remembers what this program wrote, so that the next run replaces that and nothing else."""

    def __init__(self, home: Home):
        self.home = home
        self.list = home.root / ".sandbox-library.json"
        self.paths: list[Path] = []

    def add(self, *paths: Path) -> None:
        self.paths += paths

    def remember(self) -> None:
        names = [self.home.relative(path) for path in self.paths]
        homes.write_whole(self.list, meeting_files.pretty({"files": names}))

    def remove(self) -> None:
        names = (homes.read_object(self.list) or {}).get("files")
        for name in names if isinstance(names, list) else []:
            path = self.home.folder / str(name)
            # The list is a file like any other: it may not lead us to what cannot be ours.
            if path.parent not in (self.home.logs, self.home.vault) or path.name in ("", ".", ".."):
                continue
            try:
                path.rmdir() if path.is_dir() and not path.is_symlink() else path.unlink()
            except OSError:
                pass  # already gone, or a folder that somebody has filled


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--home", required=True, metavar="DIR")
    parser.add_argument("--today", type=date.fromisoformat, default=date.today(), metavar="YYYY-MM-DD")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--more", type=int, default=0, metavar="N", help="write N long meetings more, as 10000")
    arguments = parser.parse_args()
    try:
        home = homes.open_home(arguments.home)
        write_library(home, arguments.today, arguments.seed, arguments.more)
    except homes.Refused as refusal:
        print(f"sandbox: refused: {refusal}", file=sys.stderr, flush=True)
        return 1
    except OSError as error:
        print(f"sandbox: cannot write the library: {error}", file=sys.stderr, flush=True)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
