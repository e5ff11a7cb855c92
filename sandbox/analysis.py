"""An analysis made from a transcript alone, by the words that people use when they promise, object or count."""

from __future__ import annotations

import re
from collections import Counter
from dataclasses import dataclass

import dates
from wording import ENGLISH, RUSSIAN, Ways

LINE = re.compile(r"\[(\d{2,}):([0-5]\d):([0-5]\d)\]\s*([^:\n]{1,80}):\s*(\S.*)")
SENTENCE_END = re.compile(r"(?<=[.!?…])\s+")
MOST = 8
TITLE = 70
NEAR = 4  # lines within which people still answer each other
ALONE = re.compile(r"(?:од(?:ин|на|но|ного|ной)|one|об[ае]|half|third|quarter|треть|четверть)", re.IGNORECASE)


@dataclass(frozen=True)
class Said:
    place: int
    second: int
    stamp: str
    who: str
    text: str

    def sentence(self, pattern: re.Pattern) -> str | None:
        """The first sentence in which the pattern is found."""
        return next((one for one in sentences(self.text) if pattern.search(one)), None)


def sentences(text: str) -> list[str]:
    return SENTENCE_END.split(text.strip())


def read(transcript: str) -> list[Said]:
    said = []
    for line in transcript.split("\n"):
        match = LINE.fullmatch(line.strip())
        if match:
            hours, minutes, seconds, who, text = match.groups()
            said.append(Said(len(said), int(hours) * 3600 + int(minutes) * 60 + int(seconds),
                             f"[{hours}:{minutes}:{seconds}]", who.strip(), text))
    return said


def analyse(transcript: str) -> dict:
    said = read(transcript)
    russian = len(re.findall("[а-яё]", transcript, re.IGNORECASE))
    latin = len(re.findall("[a-z]", transcript, re.IGNORECASE))
    return Analysis(said, RUSSIAN if russian > latin else ENGLISH).report()


class Analysis:
    def __init__(self, said: list[Said], ways: Ways):
        self.said, self.ways = said, ways
        self.topics = self.agenda()

    def report(self) -> dict:
        return {
            "commitments": self.commitments(), "disagreements": self.disagreements(), "blockers": self.blockers(),
            "numbers": self.numbers(), "insights": self.insights(), "agenda_coverage": self.coverage(),
            "roles": self.roles(), "concepts": self.concepts(),
        }

    def after(self, line: Said, count: int = NEAR) -> list[Said]:
        return self.said[line.place + 1:line.place + 1 + count]

    def between(self, line: Said) -> str:
        """A moment after the line and before the next one, as whoever listens to the sound would note it."""
        following = self.after(line, 1)
        gap = following[0].second - line.second if following else 0
        if gap < 2:
            return line.stamp
        second = line.second + gap // 2
        return f"[{second // 3600:02d}:{second // 60 % 60:02d}:{second % 60:02d}]"

    def commitments(self) -> list[dict]:
        found, known = [], set()
        for line in self.said:
            promise = line.sentence(self.ways.promise)
            if promise is None or "?" in promise:
                continue
            source = promise if dates.find(promise) else line.text
            day = dates.find(source)
            if day is None and len(promise.split()) < 4:  # “I'll close the door” is no task
                continue
            aim = self.ways.aim.search(promise)
            what = promise.rstrip(".!… ")
            if (line.who, what.lower()) in known:
                continue
            known.add((line.who, what.lower()))
            found.append({
                "who": line.who, "what": what, "due": source[day.outer:day.end] if day else None,
                "quote": line.text, "at": line.stamp,
                "firmness": "мягкое" if self.ways.hedge.search(line.text) else "твёрдое",
                "definition_of_done": aim[1] if aim else None})
        return found[:2 * MOST]

    def disagreements(self) -> list[dict]:
        found, end = [], 0
        for line in self.said:
            objection = line.sentence(self.ways.against)
            if objection is None or line.place < end:
                continue
            earlier = [one for one in self.said[max(end, line.place - 2):line.place]
                       if one.who != line.who and len(one.text.split()) > 4]
            if not earlier or len(line.text.split()) < 5:
                continue
            other = earlier[-1]
            outcome = next((settled for one in self.after(line) if (settled := one.sentence(self.ways.settled))
                            and not set("?:") & set(settled)), None)
            found.append({
                "topic": self.topic_at(line) or short(sentences(other.text)[0]),
                "sides": [{"who": other.who, "position": sentences(other.text)[0], "at": other.stamp},
                          {"who": line.who, "position": objection, "at": line.stamp}],
                "outcome": outcome or self.ways.words["open"]})
            end = line.place + NEAR
        return found[:MOST // 2]

    def blockers(self) -> list[str]:
        found = [one for line in self.said if (one := line.sentence(self.ways.blocked)) and "?" not in one]
        return list(dict.fromkeys(found))[:MOST // 2]

    def numbers(self) -> list[dict]:
        found, announced = [], {first.place for _, first, _ in self.topics}
        for line in self.said:
            for sentence in sentences(line.text) if line.place not in announced else ():
                number = next((one for one in self.ways.number.finditer(sentence)
                               if self.counts(sentence, one)), None)
                if number and len(sentence.split()) > 2:
                    around = f"{sentence[:number.start()].strip()} … {sentence[number.end():].lstrip(' ,')}"
                    found.append({"metric": short(around.strip(" .,;:!…—–-") or sentence), "value": number[0],
                                  "at": line.stamp, "note": line.text if line.text != sentence else None})
                    break
        return found[:MOST]

    @staticmethod
    def counts(sentence: str, number: re.Match) -> bool:
        """Days are no numbers, nor is a lonely “one”, which means anything."""
        day = dates.find(sentence)
        if day and number.start() < day.end and day.start < number.end():
            return False
        return not ALONE.fullmatch(number[0].split()[0]) or len(number[0].split()) > 2

    def insights(self) -> list[dict]:
        words, found = self.ways.words, []
        for line in self.said:
            cause = line.sentence(self.ways.cause)
            if cause and "?" not in cause and len(cause.split()) > 4:
                found.append({"kind": words["cause" if len(found) % 2 == 0 else "observation"],
                              "title": short(cause), "detail": line.text,
                              "at": list(dict.fromkeys((line.stamp, self.between(line))))})
        found = found[:MOST // 2]
        counts = Counter(line.who for line in self.said)
        if len(counts) > 1:
            [(name, count)] = counts.most_common(1)
            questions = sum("?" in line.text for line in self.said)
            own = [line for line in self.said if line.who == name]
            found.append({"kind": words["observation"], "title": words["talk"].format(name=name),
                          "detail": words["talk_detail"].format(count=count, all=len(self.said), questions=questions),
                          "at": list(dict.fromkeys((own[0].stamp, own[-1].stamp)))})
        return found

    def agenda(self) -> list[tuple[str, Said, Said]]:
        """Each topic that was announced, the line that opens it and the last one before the next."""
        listing = next((line for line in self.said[:6]
                        if ":" in line.text and self.ways.agenda.search(line.text)), None)
        if listing is None:
            return self.parts()
        opened = []
        for name in listing.text.partition(":")[2].strip(" .").split(";"):
            name = name.strip()
            opening = next((line for line in self.said[listing.place + 1:]
                            if name and name.lower() in line.text.lower()), None if opened else listing)
            if opening:
                opened.append((name[:1].upper() + name[1:], opening))
        return [(name, opening, self.last_before(opened[place + 1][1] if place + 1 < len(opened) else None))
                for place, (name, opening) in enumerate(opened)]

    def parts(self) -> list[tuple[str, Said, Said]]:
        """Without an agenda: the questions that opened something, the longest ones, in their order."""
        asked = [line for line in self.said if "?" in line.text]
        chosen = sorted(sorted(asked, key=lambda line: (-len(line.text), line.place))[:3], key=lambda line: line.place)
        question = re.compile(r"\?")
        return [(short(line.sentence(question) or line.text), line,
                 self.last_before(chosen[place + 1] if place + 1 < len(chosen) else None))
                for place, line in enumerate(chosen)]

    def last_before(self, line: Said | None) -> Said:
        return self.said[line.place - 1 if line and line.place else -1]

    def topic_at(self, line: Said) -> str | None:
        return next((name for name, first, last in reversed(self.topics)
                     if first.place <= line.place <= last.place), None)

    def coverage(self) -> list[dict]:
        found = []
        for name, first, last in self.topics:
            block = self.said[first.place:max(first.place, last.place) + 1]
            if self.ways.no_time.search(first.text):
                status = "не дошли"
            elif any(line.sentence(self.ways.settled) for line in block[1:]):
                status = "пройдена полностью"
            else:
                status = "частично"
            found.append({"topic": name, "status": status, "at": first.stamp})
        return found

    def roles(self) -> list[dict]:
        if not self.said:
            return []
        words, found = self.ways.words, []

        def note(line: Said | None, role: str, evidence: str) -> None:
            if line and not any(known["who"] == line.who for known in found):
                found.append({"who": line.who, "role": role, "evidence": evidence, "at": line.stamp})

        note(self.said[0], words["role_chair"], words["role_chair_why"])
        numbered = self.numbers()
        by_stamp = {line.stamp: line for line in reversed(self.said)}
        for number in numbered:
            note(by_stamp[number["at"]], words["role_numbers"], words["role_numbers_why"])
            if len(found) > 1:
                break
        for dispute in self.disagreements()[:1]:
            note(by_stamp[dispute["sides"][1]["at"]], words["role_critic"], words["role_critic_why"])
        asking = Counter(line.who for line in self.said if "?" in line.text)
        if asking:
            [(who, count)] = asking.most_common(1)
            note(next(line for line in self.said if line.who == who and "?" in line.text), words["asks"],
                 words["asks_why"].format(count=count))
        return found

    def concepts(self) -> list[dict]:
        found, end = [], 0
        for line in self.said:
            idea = line.sentence(self.ways.idea)
            if idea is None or line.place < end or len(line.text.split()) < 5:
                continue
            answers = [one for one in self.after(line) if one.who != line.who]
            cons = [one for answer in answers if (one := answer.sentence(self.ways.bad))]
            pros = [one for answer in answers if (one := answer.sentence(self.ways.good)) and one not in cons]
            parts = sentences(line.text)
            start = parts.index(idea)  # “I have an idea.” alone says nothing
            whole = idea if len(idea.split()) > 3 else " ".join(parts[start:start + 3])
            found.append({"idea": whole.rstrip(".!… "), "pros": pros, "cons": cons, "at": line.stamp})
            end = line.place + 2
        return found[:MOST // 2]


def short(text: str) -> str:
    text = text.strip().rstrip(".!… ")
    if len(text) <= TITLE:
        return text
    return text[:TITLE].rpartition(" ")[0].rstrip(",;:—– ") + "…"
