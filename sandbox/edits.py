"""Understands a remark on a protocol: which item is meant, and what its text becomes."""

from __future__ import annotations

import re
from collections.abc import Iterator
from dataclasses import dataclass, field

import dates

WORD = re.compile(r"\w+(?:\.\w+)*")
STEM_LETTERS = 4
ENDING_LETTERS = 3
VOWELS = "аеёиоуыэюяaeiouy"

SECTIONS = {
    "action_items": r"задач[а-я]*|поручени[а-я]*|action[ _]?items?|tasks?",
    "decisions": r"решени[а-я]*|decisions?",
    "next_steps": r"(?:следующ[а-я]+ )?шаг[а-я]*|(?:next[ _])?steps?",
    "open_questions": r"(?:открыт[а-я]+ )?вопрос[а-я]*|(?:open[ _])?questions?",
    "risks": r"риск[а-я]*|risks?",
    "tldr": r"итог[а-я]*|резюме|кратко[а-я]*|summary|tl;?dr",
}
SAME_SECTION = {"summary": "tldr"}
ORDINALS = (
    r"перв[а-я]+|first|1st", r"втор[а-я]+|second|2nd", r"трет[а-я]+|third|3rd", r"четв[её]рт[а-я]+|fourth|4th",
    r"пят[а-я]+|fifth|5th", r"шест[а-я]+|sixth|6th", r"седьм[а-я]+|seventh|7th", r"восьм[а-я]+|eighth|8th",
    r"девят[а-я]+|ninth|9th", r"десят[а-я]+|tenth|10th")
ORDINAL = rf"(?P<ordinal>{'|'.join(ORDINALS)}|последн[а-я]+|last|\d+-?(?:й|я|е|м|ю|ой|ем|го))"
PLACE = re.compile(
    rf"(?<!\w)(?:(?P<in>в|во|из|у|для|in|from|of|for) )?(?:the )?(?:{ORDINAL} )?"
    rf"(?:{'|'.join(f'(?P<{name}>{words})' for name, words in SECTIONS.items())})"
    r"(?: (?:№|#|number |номер )?(?P<number>\d+))?(?!\w)[,:]?", re.IGNORECASE)

RUSSIAN_CHANGE = r"(?:замени|смени|поменя|меня|измени|исправ|поправ|переименуй)[а-яё]*"
CHANGE = (
    rf"{RUSSIAN_CHANGE}\s+(?P<old>.+?)\s+на\s+(?P<new>.+)",
    rf"(?P<old>.+?)\s+{RUSSIAN_CHANGE}\s+на\s+(?P<new>.+)",
    r"вместо\s+(?P<old>.+?)[\s,—–:-]+(?:должн[а-я]+ быть|надо|нужно|на?пиши[а-я]*|поставь[а-я]*|будет)\s+(?P<new>.+)",
    r"вместо\s+(?P<old>.+?)\s*(?:,|—|–| - )\s*(?P<new>.+)",
    r"\bне\s+(?P<old>.+?),?\s+а\s+(?P<new>.+)",
    r"(?:правильно\s*[—–:-]?\s*|должн[а-я]+ быть\s+)?(?P<new>.+?),\s+а не\s+(?P<old>.+)",
    r"(?P<old>.+?)\s*(?:→|->|=>)\s*(?P<new>.+)",
    r"(?:replace|substitute|swap)\s+(?P<old>.+?)\s+(?:with|by|for)\s+(?P<new>.+)",
    r"(?:change|correct|fix|rename|turn)\s+(?P<old>.+?)\s+(?:to|into|with)\s+(?P<new>.+)",
    r"instead of\s+(?P<old>.+?)[\s,—–:-]+(?:it should be|it must be|should be|say|write|put|use)\s+(?P<new>.+)",
    r"(?:(?:say|write|put|use|it should be|it's)\s+)?(?P<new>.+?)\s+instead of\s+(?P<old>.+)",
    r"(?:(?:напиши|пиши|поставь|должн[а-я]+ быть)[а-я]*\s+)?(?P<new>.+?)\s+вместо\s+(?P<old>.+)",
    r"\bnot\s+(?P<old>.+?),?\s+(?:but|it's|it is)\s+(?P<new>.+)",
    r"(?:it's\s+|it is\s+|it should be\s+)?(?P<new>.+?),\s+not\s+(?P<old>.+)",
    r"(?P<old>.+?)\s+(?:should be|must be|должн[а-я]+ быть)\s+(?P<new>.+)",
)
REMOVE = (
    r"(?:удали|убери|убра|вычеркн|выкин|сотри|исключи)[а-яё]*\s+(?P<old>.+)",
    r"(?:remove|delete|drop|strike(?: out)?|erase|cut(?: out)?)\s+(?P<old>.+)",
)
ANNOUNCED = re.compile(r"^(?:слов[а-я]*|фраз[а-я]+|имя|имени|фамили[а-я]+|названи[а-я]+|"
                       r"упоминани[а-я]+(?: о| об| про)?|там|здесь|тут|это|(?:the )?(?:words?|phrase|name|mention of)|it's|it is)\s+", re.IGNORECASE)
ARTICLE = re.compile(r"^the\s+", re.IGNORECASE)
DEADLINE = (
    r"\b(?:срок|дедлайн)[а-я]*(?P<about>.*?)"
    r"(?:\s*[—–:=-]\s*|\s+(?:на|это|теперь|должен быть|поставь)\s+|\s+)(?P<new>{day})",
    r"\b(?:перенес|сдвин|отлож)[а-яё]*\s+(?P<about>.*?)\s*(?:на|до)\s+(?P<new>{day})",
    r"(?:deadline|due date)(?P<about>.*?)\s+(?:to|is|should be|must be|becomes)\s+(?P<new>{day})",
    r"\b(?:deadline|due date|due)(?P<about>.*?)\s*[—–:=-]?\s*(?P<new>{day})",
    r"(?:move|postpone|push)\s+(?P<about>.*?)\s*(?:to|until|till)\s+(?P<new>{day})",
)
DAY = rf"(?:{dates.PREPOSITION.replace('(', '(?:', 1)})?{dates.DATE.pattern}"
DEADLINE = tuple(pattern.replace("{day}", DAY) for pattern in DEADLINE)
POLITE = re.compile(r",?\s*(?<!\w)(?:пожалуйста|плиз|please|нет,|no,)(?!\w),?", re.IGNORECASE)
MARKS = " \t\n.,;:!?«»\"'“”„—–-"
PARENTHETICAL = re.compile(r"наверно[ех]?|возможно|вероятно|может быть|видимо|конечно|кажется|пожалуй|"
                           r"perhaps|maybe|probably|however|of course|possibly", re.IGNORECASE)
DANGLING = re.compile(r"[,—–]?\s*\b(?:без|об?|про|со?|ко?|во?|на|для|по|от|without|of|with|about|for|to|by|in|on)\s*$",
                      re.IGNORECASE)


@dataclass(frozen=True)
class Word:
    text: str
    start: int
    end: int
    quality: float = 0.0


@dataclass
class Remark:
    text: str  # without its courtesies and without the place it names
    section: str | None = None
    number: int | None = None  # from 1; -1 is the last
    named: list[str] = field(default_factory=list)

    @property
    def russian(self) -> bool:
        return re.search("[а-яё]", self.text, re.IGNORECASE) is not None


def edit(remark: str, items: list[dict]) -> dict:
    """The one item that the remark means, with its new text; or that there is none."""
    understood = read(remark)
    near = candidates(understood, items)
    for change in (deadline, replacement, removal):
        found = change(understood, near)
        if found is None and understood.number is None:
            found = change(understood, items)  # a section that was named in passing
        if found is not None:
            item, text = found
            return {"found": True, "section": item["section"], "index": item["index"], "text": text}
    return {"found": False}


def read(text: str) -> Remark:
    text = " ".join(POLITE.sub(" ", text).split())
    for place in PLACE.finditer(text):
        if not (place["in"] or place["ordinal"] or place["number"] or place[0].endswith(":")):
            continue
        section = next(name for name in SECTIONS if place[name])
        rest = f"{text[:place.start()]} {text[place.end():]}"
        return Remark(" ".join(rest.split()).strip(" ,"), section, numbered(place))
    return Remark(text.strip(" ,"))


def numbered(place: re.Match) -> int | None:
    ordinal = (place["ordinal"] or "").lower()
    digits = place["number"] or re.match(r"\d*", ordinal)[0]
    if digits:
        return int(digits[:6])
    if ordinal.startswith(("последн", "last")):
        return -1
    return next((number for number, words in enumerate(ORDINALS, 1) if re.fullmatch(words, ordinal)), None)


def candidates(remark: Remark, items: list[dict]) -> list[dict]:
    if remark.section is None:
        return items
    own = [item for item in items if SAME_SECTION.get(item["section"], item["section"]) == remark.section]
    if remark.number is None:
        return own
    place = remark.number - 1 if remark.number > 0 else len(own) - 1
    return sorted(own, key=lambda item: item["index"])[place:place + 1] if place >= 0 else []


def words_in(text: str) -> list[Word]:
    return [Word(match[0], match.start(), match.end()) for match in WORD.finditer(text)]


def likeness(one: str, other: str) -> float:
    """1 for the same word, less for another ending of it, 0 for another word."""
    one, other = (word.lower().replace("ё", "е") for word in (one, other))
    if one == other:
        return 1.0
    shared = common(one, other)
    rest = max(len(one), len(other)) - shared
    if shared < STEM_LETTERS or rest > ENDING_LETTERS or any(map(str.isdigit, one + other)):
        return 0.0
    return 0.9 - 0.1 * rest


def common(one: str, other: str) -> int:
    return next((place for place, (a, b) in enumerate(zip(one, other)) if a != b), min(len(one), len(other)))


def shared_words(hint: str, text: str) -> float:
    theirs = [word.text for word in words_in(text)]
    return sum(max((likeness(word.text, their) for their in theirs), default=0)
               for word in words_in(hint) if len(word.text) >= STEM_LETTERS)


def places(old: str, text: str) -> list[list[Word]]:
    """Where the words of `old` stand in `text` in a row, whatever their endings."""
    wanted, there = words_in(old), words_in(text)
    found, at = [], 0
    while wanted and at + len(wanted) <= len(there):
        row = there[at:at + len(wanted)]
        qualities = [likeness(want.text, word.text) for want, word in zip(wanted, row)]
        if all(qualities):
            found.append([Word(w.text, w.start, w.end, q) for w, q in zip(row, qualities)])
        at += len(wanted) if all(qualities) else 1
    return found


def readings(patterns: tuple[str, ...], remark: Remark) -> Iterator[tuple[str, str, str, bool]]:
    """Every way to read the remark: the old words, the new ones, what was said before, and if the new came first."""
    for pattern in patterns:
        for match in each_split(pattern, remark.text):
            parts = match.groupdict()
            old, new = parts["old"].strip(MARKS), ANNOUNCED.sub("", parts.get("new") or "").strip(MARKS)
            bare = ANNOUNCED.sub("", old).strip(MARKS)
            new_first = "new" in parts and match.start("new") < match.start("old")
            pairs = ((old, new), (bare, new), (ARTICLE.sub("", bare), ARTICLE.sub("", new)))
            for words, others in dict.fromkeys(pairs):
                yield words, others, remark.text[:match.start()], new_first


def each_split(pattern: str, text: str) -> Iterator[re.Match]:
    """The pattern's matches: with the old words as long as possible, and with them as short as possible."""
    for form in (pattern.replace("(?P<old>.+?)", "(?P<old>.+)"), pattern):
        match = re.search(form + r"$", text, re.IGNORECASE)
        if match:
            yield match


def best(items: list[dict], old: str, hint: str) -> tuple[dict, list[list[Word]]] | None:
    found = [(item, places(old, item["text"])) for item in items]
    found = [(item, rows) for item, rows in found if rows]
    return max(found, key=lambda pair: (max(sum(word.quality for word in row) for row in pair[1]),
                                        shared_words(hint, pair[0]["text"])), default=None)


def replacement(remark: Remark, items: list[dict]) -> tuple[dict, str] | None:
    for old, new, hint, new_first in readings(CHANGE, remark):
        found = best(items, old, hint) if new else None
        if found is None:
            continue
        item, rows = found
        text = item["text"]
        if new_first:
            new = without_context(new, text)
        for row in reversed(rows):
            text = put(text, row, old, new)
        if text != item["text"]:
            return item, text
    return None


def without_context(new: str, text: str) -> str:
    """“The budget is 7 million, not 5”: what leads to the new words stands in the item already."""
    there, words = words_in(text), words_in(new)
    while len(words) > 1 and any(likeness(words[0].text, word.text) for word in there):
        words.pop(0)
    return new[words[0].start:] if words else new


def put(text: str, row: list[Word], old: str, new: str) -> str:
    start, end = row[0].start, row[-1].end
    now, then = dates.find(text, start, end), dates.find(new)
    if now and then and (now.start, now.end) == (start, end):
        return dates.replaced(text, now, new[then.start if then.outer else 0:then.end])
    news = words_in(new)
    if len(news) == len(row):
        endings = [bent(want.text, word.text, put_in.text)
                   for want, word, put_in in zip(words_in(old), row, news)]
        for word, ending in reversed(list(zip(news, endings))):
            new = new[:word.start] + ending + new[word.end:]
    if ARTICLE.match(new) and text[:start].lower().endswith("the "):
        new = ARTICLE.sub("", new)
    if start == 0 and text[:1].isupper():
        new = new[:1].upper() + new[1:]
    return text[:start] + new + text[end:]


def bent(old: str, there: str, new: str) -> str:
    """`new` with the ending that the text has where the remark has another: Иванова — Иванову, Петрова — Петрову."""
    shared = common(old.lower(), there.lower())
    wanted, has = old[shared:].lower(), there[shared:].lower()
    if wanted == has or not has.isalpha() and has or not new.lower().endswith(wanted):
        return new
    stem = new[:len(new) - len(wanted)]
    if not wanted and stem[-1:].lower() in VOWELS or len(stem) < 2:
        return new
    return stem + has


def removal(remark: Remark, items: list[dict]) -> tuple[dict, str] | None:
    for old, _, hint, _ in readings(REMOVE, remark):
        found = best(items, old, hint)
        if found is None:
            continue
        item, rows = found
        text = item["text"]
        for row in reversed(rows):
            text = without(text, row[0].start, row[-1].end)
        text = tidied(text, item["text"])
        if words_in(text):  # an item without a word is no item
            return item, text
    return None


def without(text: str, start: int, end: int) -> str:
    before, after = text[:start], text[end:]
    if PARENTHETICAL.fullmatch(text, start, end) and before.rstrip().endswith(",") and after.startswith(","):
        return before.rstrip()[:-1] + after[1:]
    if not after.strip() or after.lstrip()[0] in ",.;:!?)":
        before = DANGLING.sub("", before)
    return before + after


def tidied(text: str, before: str) -> str:
    text = re.sub(r"«\s*»|\"\s*\"|“\s*”|\(\s*\)", "", text)
    text = re.sub(r"\s+([,.;:!?)])", r"\1", re.sub(r"\s+", " ", text))
    text = re.sub(r"([,;:])(?:\s*[,;:])+", r"\1", text)
    text = re.sub(r"[,;:]\s*([.!?])", r"\1", text).strip().lstrip(",;:—– ")
    return text[:1].upper() + text[1:] if before[:1].isupper() else text


def deadline(remark: Remark, items: list[dict]) -> tuple[dict, str] | None:
    match = next(filter(None, (re.search(pattern, remark.text, re.IGNORECASE) for pattern in DEADLINE)), None)
    if match is None:
        return None
    if remark.section is None:
        items = [item for item in items if item["section"] == "action_items"] or items
    hint = f"{remark.text[:match.start()]} {match['about']} {remark.text[match.end():]}"
    score = lambda item: (shared_words(hint, item["text"]), dates.find(item["text"]) is not None)
    item = max(items, key=score, default=None)
    if item is None:
        return None
    text, day = item["text"], match["new"].strip()
    there = dates.find(text)
    if there:
        changed = dates.replaced(text, there, day)
    else:
        end = text[-1] if text.endswith((".", "!")) else ""
        added = f", срок — {dates.standing_alone(day)}" if remark.russian else f", due {day}"
        changed = text.removesuffix(end) + added + end if end else text + added
    return (item, changed) if changed != text else None
