"""Puts scenes together into one meeting: who said what when, what was agreed, and its analysis."""

from __future__ import annotations

from dataclasses import dataclass, field
from datetime import date, datetime, timedelta
from random import Random

from scene import Language, Line, Scene, Team

LONG_PAUSE_SECONDS = 10.0
PAUSE_SECONDS = 2.0
QUOTED = ("exact", "changed", "elsewhere", "exact", "invented", "somebody else")


@dataclass(frozen=True)
class Turn:
    start: float  # seconds from the meeting's start
    end: float
    speaker: str
    text: str

    @property
    def stamp(self) -> str:
        second = int(self.start)
        return f"[{second // 3600:02d}:{second // 60 % 60:02d}:{second % 60:02d}]"


@dataclass
class Meeting:
    started: datetime  # aware, local time
    language: Language
    team: Team
    title: str
    people: list[str]
    tldr: str = ""
    summary: str = ""
    decisions: list[str] = field(default_factory=list)
    action_items: list[dict] = field(default_factory=list)
    next_steps: list[str] = field(default_factory=list)
    open_questions: list[str] = field(default_factory=list)
    risks: list[str] = field(default_factory=list)
    turns: list[Turn] = field(default_factory=list)
    report: dict = field(default_factory=dict)

    @property
    def stem(self) -> str:
        return self.started.strftime("%Y-%m-%d %H-%M-%S")

    @property
    def seconds(self) -> float:
        return round(self.turns[-1].end + 3.0, 1)

    def analytics(self, exact: bool) -> dict:
        """Conversation statistics; without exact segments only the starts of turns are known."""
        ends = [turn.end for turn in self.turns]
        starts = [turn.start for turn in self.turns]
        if not exact:
            ends = starts[1:] + [self.seconds]
        spoken: dict[str, float] = {}
        for turn, end in zip(self.turns, ends):
            spoken[turn.speaker] = spoken.get(turn.speaker, 0.0) + end - turn.start
        total = sum(spoken.values())
        gaps = [start - end for start, end in zip(starts[1:], ends)]
        speakers = [turn.speaker for turn in self.turns]
        return {
            "duration_sec": self.seconds,
            "speech_share": round(total / self.seconds, 3) if exact else 0.0,
            "turns": 1 + sum(a != b for a, b in zip(speakers, speakers[1:])),
            "pauses": sum(gap > PAUSE_SECONDS for gap in gaps),
            "long_pauses": sum(gap > LONG_PAUSE_SECONDS for gap in gaps),
            "source": "segments" if exact else "turns",
            "speakers": [{"name": name, "seconds": round(time, 1), "share": round(time / total, 3)}
                         for name, time in sorted(spoken.items(), key=lambda pair: -pair[1])],
        }


class Composer:
    """Speaks one meeting through, scene by scene, and notes what comes of it."""

    def __init__(self, language: Language, team: Team, started: datetime, rng: Random):
        self.language, self.team, self.started, self.rng = language, team, started, rng
        self.clock = rng.uniform(2.0, 6.0)
        self.pace = rng.uniform(2.0, 3.2)  # seconds a word: the transcript keeps the gist of longer talk
        self.meeting = Meeting(started, language, team, "", list(team.people))
        self.report: dict = {key: [] for key in (
            "agenda_coverage", "blockers", "commitments", "concepts", "disagreements",
            "insights", "numbers", "roles")}
        self.used: dict[str, list[str]] = {}  # phrases left, so that one is not said again at once

    def compose(self, lead: Scene, others: list[Scene], postponed: Scene | None) -> Meeting:
        chair = self.team.people[0]
        topics = [lead, *others]
        self.open_meeting(chair, topics + ([postponed] if postponed else []))
        for index, topic in enumerate(topics):
            if index:
                self.say(chair, self.phrase("next").format(topic=lower_first(topic.title)))
            self.play(topic, shift=0 if index == 0 else self.rng.randrange(4))
        self.close_meeting(chair, postponed)
        self.sum_up(topics)
        return self.meeting

    def phrase(self, kind: str) -> str:
        left = self.used.get(kind)
        if not left:
            left = self.used[kind] = self.rng.sample(self.language.phrases[kind],
                                                     len(self.language.phrases[kind]))
        return left.pop()

    def say(self, speaker: str, text: str) -> Turn:
        length = max(2.0, len(text.split()) * self.pace)
        turn = Turn(round(self.clock, 2), round(self.clock + length, 2), speaker, text)
        self.meeting.turns.append(turn)
        pause = self.rng.uniform(11.0, 19.0) if self.rng.random() < 0.04 else self.rng.uniform(0.3, 6.0)
        self.clock += length + pause
        return turn

    def open_meeting(self, chair: str, topics: list[Scene]) -> None:
        opening = self.say(chair, self.phrase("hello"))
        self.say(self.team.people[1], self.phrase("hello_back"))
        if self.rng.random() < 0.6:
            self.say(self.team.people[self.rng.choice((2, 3))], self.phrase("small_talk"))
        listed = "; ".join(lower_first(topic.title) for topic in topics)
        self.say(chair, self.phrase("agenda").format(topics=listed))
        self.note_role(chair, "chair", opening.stamp)

    def play(self, topic: Scene, shift: int) -> None:
        """Speaks a scene through; `shift` hands its roles round the table."""
        people = self.team.people
        cast = {role: people[(index + shift) % 4] for index, role in enumerate("ABCD")}
        today = self.started.date()
        dues = [workday(today, task.days) if task.days is not None else None for task in topic.tasks]
        words = {role: first_name(name) for role, name in cast.items()}
        words |= {name: self.rng.choice(values) for name, values in topic.slots.items()}
        words |= {key: self.language.by(today, due) for key, due in zip(("by", "by2"), dues) if due}
        fill = lambda text: text.format_map(words)
        said: dict[str, Turn] = {}
        first = None
        for line in topic.lines:
            turn = self.say(cast[line.role], fill(line.text))
            first = first or turn
            said |= {tag: turn for tag in line.tags}
            self.nod(line, cast)
        self.note(topic, cast, dues, fill, said, first.stamp)

    def quoted(self, turn: Turn, cast: dict[str, str]) -> dict:
        """What an analysis quotes: mostly as it was said, now and then as a language model gets it wrong."""
        quote = {"quote": turn.text, "at": turn.stamp}
        way = QUOTED[len(self.report["commitments"]) % len(QUOTED)]
        if way == "changed":
            words = turn.text.split()
            quote["quote"] = " ".join(word for place, word in enumerate(words) if place % 5 != 3)
        elif way == "elsewhere":
            quote["at"] = self.meeting.turns[0].stamp
        elif way == "invented":
            quote["quote"] = self.phrase("invented")
        elif way == "somebody else":
            quote["who"] = next(name for name in cast.values() if name != turn.speaker)
        return quote

    def nod(self, line: Line, cast: dict[str, str]) -> None:
        if line.text.endswith(".") and not line.tags and self.rng.random() < 0.06:
            self.say(cast[self.rng.choice([role for role in "ABCD" if role != line.role])], self.phrase("nod"))

    def note(self, topic: Scene, cast, dues, fill, said: dict[str, Turn], opened: str) -> None:
        meeting, report = self.meeting, self.report
        for target, text in ((meeting.decisions, topic.decision), (meeting.next_steps, topic.step),
                             (meeting.open_questions, topic.question), (meeting.risks, topic.risk)):
            if text:
                target.append(fill(text))
        for task, due, tag in zip(topic.tasks, dues, ("task", "task2")):
            owner, when = cast[task.owner], self.language.due(due) if due else None
            meeting.action_items.append({"task": fill(task.text), "owner": owner, "due": when})
            report["commitments"].append({
                "who": owner, "what": fill(task.text), "due": when, **self.quoted(said[tag], cast), "firmness": "твёрдое" if task.firm else "с оговоркой",
                "definition_of_done": task.done_when and fill(task.done_when)})
        # The interface knows these statuses by their Russian beginnings, whatever the meeting's language.
        left_open = topic.question and not topic.decision
        status = "частично, решение не принято" if left_open else "пройден"
        report["agenda_coverage"].append({"topic": topic.title, "status": status, "at": opened})
        if topic.risk and left_open:
            report["blockers"].append(fill(topic.risk))
        if topic.number:
            metric, value, remark = map(fill, topic.number)
            report["numbers"].append({"metric": metric, "value": value, "note": remark or None,
                                      "at": said["number"].stamp})
            self.note_role(said["number"].speaker, "numbers", said["number"].stamp)
        if topic.insight:
            kind, title, detail = map(fill, topic.insight)
            report["insights"].append({"kind": kind, "title": title, "detail": detail,
                                       "at": list(dict.fromkeys((said["insight"].stamp, opened)))})
        if topic.dispute:
            about, who, position, other, answer, outcome = topic.dispute
            report["disagreements"].append({"topic": fill(about), "outcome": fill(outcome), "sides": [
                {"who": cast[who], "position": fill(position), "at": said["for"].stamp},
                {"who": cast[other], "position": fill(answer), "at": said["against"].stamp}]})
            self.note_role(cast[other], "critic", said["against"].stamp)
        if topic.idea:
            idea, pros, cons = topic.idea
            report["concepts"].append({"idea": fill(idea), "pros": list(map(fill, pros)),
                                       "cons": list(map(fill, cons)), "at": said["idea"].stamp})

    def note_role(self, who: str, kind: str, stamp: str) -> None:
        role, evidence = (self.language.words[f"role_{kind}"], self.language.words[f"role_{kind}_why"])
        if not any(known["who"] == who or known["role"] == role for known in self.report["roles"]):
            self.report["roles"].append({"who": who, "role": role, "evidence": evidence, "at": stamp})

    def close_meeting(self, chair: str, postponed: Scene | None) -> None:
        words = self.language.words
        if postponed:
            topic = lower_first(postponed.title)
            turn = self.say(chair, self.phrase("postpone").format(topic=topic))
            self.meeting.next_steps.append(words["postponed"].format(topic=topic))
            self.report["agenda_coverage"].append(
                {"topic": postponed.title, "status": "не дошли", "at": turn.stamp})
        self.say(chair, self.phrase("sum_up"))
        for item in self.meeting.action_items[:5]:
            due = words["recap_due"].format(due=item["due"]) if item["due"] else ""
            if item["owner"] == chair:
                self.say(chair, words["recap_own"].format(task=lower_first(item["task"]), due=due))
            else:
                self.say(chair, self.phrase("recap").format(
                    name=first_name(item["owner"]), task=lower_first(item["task"]), due=due))
                self.say(item["owner"], self.phrase("accept"))
        self.say(chair, self.phrase("bye"))
        self.say(self.team.people[self.rng.choice((1, 2, 3))], self.phrase("bye_back"))

    def sum_up(self, topics: list[Scene]) -> None:
        # Gists hold no slots: they name what was settled, not the day's figures.
        meeting, words = self.meeting, self.language.words
        meeting.title = topics[0].title
        meeting.tldr = " ".join(topic.gist for topic in topics[:2])
        meeting.summary = words["present"].format(
            team=self.team.name, people=", ".join(meeting.people)) + " " + " ".join(t.gist for t in topics)
        meeting.report = self.report


def compose(language: Language, team: Team, lead: Scene, others: list[Scene], started: datetime,
            rng: Random, postponed: Scene | None = None) -> Meeting:
    return Composer(language, team, started, rng).compose(lead, others, postponed)


def workday(today: date, days: int) -> date:
    due = today + timedelta(days=days)
    return due + timedelta(days=max(0, 7 - due.weekday()) if due.weekday() >= 5 else 0)


def first_name(name: str) -> str:
    return name.split()[0]


def lower_first(text: str) -> str:
    """For a text in the middle of a sentence; an abbreviation keeps its capitals."""
    return text if text[1:2].isupper() else text[:1].lower() + text[1:]
