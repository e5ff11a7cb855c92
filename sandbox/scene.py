"""The material of meetings: scenes of talk with what they lead to, the teams, the words of a language."""

from __future__ import annotations

import re
from collections.abc import Callable
from dataclasses import dataclass, field
from datetime import date

SPOKEN = re.compile(r"([A-D])((?: #\w+)*): (.+)")


@dataclass(frozen=True)
class Line:
    role: str  # a letter; the team says who it is
    text: str
    tags: frozenset[str]


@dataclass(frozen=True)
class Task:
    owner: str
    text: str
    days: int | None = None
    done_when: str | None = None
    firm: bool = True


@dataclass(frozen=True)
class Scene:
    """One topic of a meeting. Texts may hold {A}..{D}, {by}, {by2} and the scene's own slots."""
    title: str
    gist: str
    lines: tuple[Line, ...]
    decision: str | None = None
    tasks: tuple[Task, ...] = ()
    step: str | None = None
    question: str | None = None
    risk: str | None = None
    number: tuple[str, str, str] | None = None  # metric, value, note
    insight: tuple[str, str, str] | None = None  # kind, title, detail
    dispute: tuple[str, str, str, str, str, str] | None = None  # topic, who, position, who, position, outcome
    idea: tuple[str, tuple[str, ...], tuple[str, ...]] | None = None  # idea, pros, cons
    slots: dict[str, tuple] = field(default_factory=dict)


@dataclass(frozen=True)
class Team:
    name: str
    people: tuple[str, str, str, str]  # A, B, C, D; A leads the meeting
    scenes: tuple[Scene, ...]  # in the order in which the team comes to them


@dataclass(frozen=True)
class Language:
    code: str
    teams: tuple[Team, ...]
    routines: tuple[Scene, ...]  # what every team speaks of now and then
    words: dict[str, str]
    phrases: dict[str, tuple[str, ...]]
    due: Callable[[date], str]  # as written: "14 ноября"
    by: Callable[[date, date], str]  # as said, given today: "к пятнице"


def scene(title: str, gist: str, talk: str, *, tasks: tuple = (), **members) -> Scene:
    """Builds a scene from its talk: one "A #tag: words" a line."""
    lines = []
    for text in talk.strip().splitlines():
        match = SPOKEN.fullmatch(text.strip())
        if match is None:
            raise ValueError(f"{title}: not a line of talk: {text!r}")
        lines.append(Line(match[1], match[3], frozenset(match[2].replace("#", "").split())))
    made = Scene(title, gist, tuple(lines), tasks=tuple(Task(*task) for task in tasks), **members)
    needed = {"task": len(made.tasks) > 0, "task2": len(made.tasks) > 1, "number": made.number,
              "insight": made.insight, "for": made.dispute, "against": made.dispute, "idea": made.idea}
    present = {tag for line in made.lines for tag in line.tags}
    expected = {tag for tag, wanted in needed.items() if wanted}
    if present != expected or len(made.tasks) > 2:
        raise ValueError(f"{title}: tags {sorted(present)}, expected {sorted(expected)}")
    return made
