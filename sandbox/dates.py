"""Days and deadlines as people write them, in Russian and English."""

from __future__ import annotations

import re
from dataclasses import dataclass

# Nominative, genitive, dative, accusative.
WEEKDAYS = (
    ("понедельник", "понедельника", "понедельнику", "понедельник"),
    ("вторник", "вторника", "вторнику", "вторник"),
    ("среда", "среды", "среде", "среду"),
    ("четверг", "четверга", "четвергу", "четверг"),
    ("пятница", "пятницы", "пятнице", "пятницу"),
    ("суббота", "субботы", "субботе", "субботу"),
    ("воскресенье", "воскресенья", "воскресенью", "воскресенье"),
)
CASE_AFTER = {"до": 1, "с": 1, "со": 1, "после": 1, "к": 2, "ко": 2, "в": 3, "во": 3, "на": 3}
BEFORE_CLUSTER = {"к": "ко", "в": "во", "с": "со"}

MONTH_RU = r"(?:январ|феврал|март|апрел|ма[йя]|июн|июл|август|сентябр|октябр|ноябр|декабр)[а-я]*"
MONTH_EN = r"(?:january|february|march|april|may|june|july|august|september|october|november|december)"
DAY_EN = r"(?:mon|tues|wednes|thurs|fri|satur|sun)day"
COUNT = r"(?:\d+|пар[ауы]|дв[ае]|три|четыре|пять|шесть|десять|a|an|one|two|three|four|five|six|ten)"
DATE = re.compile(r"\b(?:" + "|".join((
    r"\d{4}-\d\d-\d\d",
    r"[0-3]?\d[./](?:0\d|1[0-2])(?:[./]\d{2,4})?(?![.\d%])",
    rf"\d{{1,2}}(?:-?го|-?е)? {MONTH_RU}(?: \d{{4}}(?: года)?)?",
    rf"\d{{1,2}}(?:st|nd|rd|th)?(?: of)? {MONTH_EN}(?:,? \d{{4}})?",
    rf"{MONTH_EN} \d{{1,2}}(?:st|nd|rd|th)?\b(?:,? \d{{4}})?",
    "|".join(sorted({form for forms in WEEKDAYS for form in forms}, key=len, reverse=True)),
    rf"(?:next |this )?{DAY_EN}",
    r"послезавтра|завтра(?:шнему дню|шнего дня)?|сегодня",
    r"the day after tomorrow|tomorrow|today|tonight",
    r"кон(?:ец|ца|цу|це) (?:следующ[а-я]+ |этой |этого )?(?:недели|месяца|квартала|года|дня)",
    r"(?:the )?end of (?:the |this |next )?(?:week|month|quarter|year|day)",
    r"(?:следующ|эт)[а-я]{2,3} (?:недел[а-я]|месяц[а-я]?)",
    r"(?:next|this) (?:week|month|quarter)",
    rf"через {COUNT}? ?(?:день|дня|дней|недел[а-я]|месяц[а-я]*)",
    rf"in {COUNT} (?:days?|weeks?|months?)",
)) + r")\b", re.IGNORECASE)
PREPOSITION = r"(к|ко|до|в|во|на|с|со|после|by|on|until|till|before|due)\s+"
BEFORE = re.compile(rf"\b{PREPOSITION}$", re.IGNORECASE)
LEADING = re.compile(PREPOSITION, re.IGNORECASE)


@dataclass(frozen=True)
class Found:
    start: int
    end: int
    preposition: str
    outer: int  # where it starts, the preposition included


def find(text: str, start: int = 0, end: int | None = None) -> Found | None:
    """The first day in that part of `text`."""
    match = DATE.search(text, start, len(text) if end is None else end)
    if match is None:
        return None
    before = BEFORE.search(text, 0, match.start())
    return Found(match.start(), match.end(), before[1] if before else "", before.start() if before else match.start())


def weekday(text: str) -> tuple[str, ...] | None:
    return next((forms for forms in WEEKDAYS if text.lower() in forms), None)


def replaced(text: str, found: Found, day: str) -> str:
    """`text` with another day in place of the one that was found, in the case that its preposition wants."""
    if LEADING.match(day):
        return text[:found.outer] + day + text[found.end:]
    forms, preposition = weekday(day), found.preposition
    if forms is None:
        return text[:found.start] + day + text[found.end:]
    day = forms[CASE_AFTER.get(preposition.lower(), 0)]
    for short, long in BEFORE_CLUSTER.items():
        if preposition in (short, long):
            preposition = long if day.startswith("вт") else short
    return text[:found.outer] + f"{preposition} {day}".strip() + text[found.end:]


def standing_alone(day: str) -> str:
    """The form of a day that follows no preposition."""
    forms = weekday(day)
    return forms[0] if forms else day
