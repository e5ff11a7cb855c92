"""What the service leaves behind for a meeting: summary file, protocol Markdown, stored analysis."""

from __future__ import annotations

import json
import os
from datetime import datetime, timedelta, timezone
from pathlib import Path
from random import Random

import homes
import scenarios_en
import scenarios_ru
from compose import Meeting, compose
from homes import Home

RUSSIAN, ENGLISH = scenarios_ru.LANGUAGE, scenarios_en.LANGUAGE
LANGUAGES = {language.code: language for language in (RUSSIAN, ENGLISH)}
TRANSCRIPT = "Транскрипт"  # the interface finds the transcript by this word, in any language

# Members that no client knows: whoever changes a summary must leave them as they are.
UNKNOWN = {
    "engine": {
        "name": "sandbox 🐿️", "build": 98765432109876543210, "share": 0.1, "settled": None, "steps": [[], [{}], [True]],
        "spelling": {"и\u0306": "й", "e\u0301": "é", "👩‍👩‍👧": "\u2028", "": ""},
    },
}


def recorded_meeting(seed: int, number: int, started: datetime) -> Meeting:
    """What the recording with this number turns out to be: two in three are Russian."""
    order = Random(f"{seed}:order")
    russian = [(RUSSIAN, team, scene) for team in RUSSIAN.teams for scene in team.scenes]
    english = [(ENGLISH, team, scene) for team in ENGLISH.teams for scene in team.scenes]
    order.shuffle(russian)
    order.shuffle(english)
    index, turn = divmod(number - 1, 3)
    pool, place = (english, index) if turn == 1 else (russian, index * 2 + (turn > 0))
    language, team, lead = pool[place % len(pool)]
    rng = Random(f"{seed}:{number}")
    topics = rng.sample(language.routines, 4)
    return compose(language, team, lead, topics[:3], started, rng,
                   postponed=topics[3] if rng.random() < 0.3 else None)


def protocol_name(meeting: Meeting) -> str:
    # The title stays readable in the name: it is how a moved protocol is found again.
    title = "".join("-" if sign in "/:\\" or ord(sign) < 32 else sign for sign in meeting.title)
    return f"{meeting.started:%Y-%m-%d %H-%M-%S} {title}.md"


def write(home: Home, meeting: Meeting, *, short: bool = False, exact: bool | None = True,
          extra_meta: dict | None = None) -> list[Path]:
    """Writes protocol and summary file. `exact` None leaves the dynamics out."""
    home.vault.mkdir(parents=True, exist_ok=True)
    home.logs.mkdir(parents=True, exist_ok=True)
    while True:
        protocol = home.vault / protocol_name(meeting)
        summary_file = home.logs / f"{meeting.stem}.protocol.json"
        if not os.path.lexists(protocol) and not os.path.lexists(summary_file):
            break
        meeting.started += timedelta(seconds=1)  # what is there belongs to somebody else
    homes.write_whole(protocol, protocol_markdown(meeting, short))
    summary = summary_object(meeting, protocol, exact)
    summary["_meta"] |= extra_meta or {}
    homes.write_whole(summary_file, pretty(summary))  # last: once it is there, all of it is there
    return [protocol, summary_file]


def write_report(home: Home, meeting: Meeting) -> Path:
    path = home.logs / f"{meeting.stem}.report.json"
    homes.write_whole(path, pretty(meeting.report, sort_keys=True))
    return path


def summary_object(meeting: Meeting, protocol: Path, exact: bool | None) -> dict:
    utc = meeting.started.astimezone(timezone.utc)
    meta = {
        "started_at": utc.isoformat(timespec="milliseconds").replace("+00:00", "Z"),
        "duration_min": round(meeting.seconds / 60, 1),
        "protocol_md": str(protocol),
    }
    if exact is not None:
        meta["analytics"] = meeting.analytics(exact)
    tasks = [item | {"trace": {"id": 2 ** 64 + place, "mark": "🧭"}} for place, item in enumerate(meeting.action_items)]
    if len(tasks) > 1:
        tasks[-1] = row_text(tasks[-1])  # the service writes a task in either form
    return outcome(meeting) | {"action_items": tasks} | UNKNOWN | {"_meta": meta}


def outcome(meeting: Meeting) -> dict:
    return {
        "title": meeting.title,
        "tldr": meeting.tldr,
        "summary": meeting.summary,
        "participants": meeting.people,
        "decisions": meeting.decisions,
        "action_items": meeting.action_items,
        "next_steps": meeting.next_steps,
        "open_questions": meeting.open_questions,
        "risks": meeting.risks,
        "language": meeting.language.code,
    }


def one_line(value) -> str:
    return " ".join(value.split()) if isinstance(value, str) else ""


def row_text(item) -> str:
    """An element of a section in one line, in whichever form it was written; empty when it says nothing."""
    if not isinstance(item, dict):
        return one_line(item)
    said = one_line(item.get("task")) or one_line(item.get("text"))
    return " — ".join(filter(None, (said, one_line(item.get("owner")), one_line(item.get("due"))))) if said else ""


def rows(summary: dict, section: str) -> list[str]:
    elements = summary.get(section)
    return list(filter(None, map(row_text, elements if isinstance(elements, list) else [elements])))


def protocol_markdown(meeting: Meeting, short: bool = False) -> str:
    words = meeting.language.words
    head = outcome_markdown(outcome(meeting), words, f"{meeting.started:%d.%m.%Y, %H:%M}", short)
    talk = [f"> {turn.stamp} {turn.speaker}: {turn.text}" for turn in meeting.turns]
    return head + "\n".join([f"## {words['transcript']}", "", *talk]) + "\n"


def outcome_markdown(summary: dict, words: dict[str, str], date: str, short: bool) -> str:
    """Everything before the transcript."""
    out = [f"# {one_line(summary.get('title'))}", "",
           f"**{words['date']}:** {date}  ",
           f"**{words['people']}:** {', '.join(rows(summary, 'participants'))}", "",
           f"> {one_line(summary.get('tldr'))}", ""]

    def section(heading: str, name: str, mark: str = "-") -> None:
        if found := rows(summary, name):
            out.extend([f"## {words[heading]}", "", *(f"{mark} {row}" for row in found), ""])

    if not short:
        out.extend([f"## {words['summary']}", "", one_line(summary.get("summary")), ""])
    section("decisions", "decisions")
    section("tasks", "action_items", "- [ ]")
    if not short:
        section("steps", "next_steps")
        section("questions", "open_questions")
        section("risks", "risks")
    return "\n".join(out) + "\n"


def pretty(value: dict, sort_keys: bool = False) -> str:
    return json.dumps(value, ensure_ascii=False, indent=2, sort_keys=sort_keys) + "\n"
