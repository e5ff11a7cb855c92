"""Files in the logs folder that no careful service would write, and that the interface must bear."""

from __future__ import annotations

import os
from collections.abc import Callable
from datetime import date, timedelta
from pathlib import Path

from compose import Meeting
from homes import Home
from meeting_files import pretty, summary_object

HTML_TITLE = " \n<b>План</b> недели & <img src=\"x\">\r\nвторая строка\t"
RIGHT_TO_LEFT_TITLE = "‮אסיפה שבועית‬ — еженедельная встреча"


def odd_files(home: Home, today: date, sample: Meeting) -> dict[str, Callable[[Path], None]]:
    """The name of each odd file in the logs folder, with what creates it."""

    def stem(days: int, time: str) -> str:
        return f"{today - timedelta(days=days)} {time}"

    def text(content: str) -> Callable[[Path], None]:
        return lambda path: path.write_text(content, encoding="utf-8")

    def summary(**members) -> Callable[[Path], None]:
        return text(pretty(members))

    whole = summary_object(sample, home.vault / "нет такого протокола.md", exact=True)
    mixed = whole | {
        "title": "Задачи словами, числами и пустотой",
        "decisions": [{"text": "Решение записано объектом."}, {"note": "без текста"}, "", "  ", 7, None],
        "action_items": ["Задача строкой", {"task": "Задача без хозяина"}, {"owner": "Хозяин без задачи"}, []],
        "risks": [],
        "_meta": {"duration_min": -5, "analytics": {"duration_sec": "долго", "turns": 12.5, "speakers": {}}},
    }
    mixed_stem = stem(9, "12-12-12")
    names = {
        stem(3, "07-00-00"): text(""),
        stem(4, "07-00-01"): text(pretty(whole)[:400]),
        stem(5, "07-00-02"): text('[{"title": "Встреча в массиве"}]\n'),
        stem(2, "18-45-00"): summary(title=HTML_TITLE, tldr="<script>alert('tldr')</script> &amp; «кавычки»",
                                     decisions=["<i>Решение</i> с разметкой"]),
        stem(12, "16-20-00"): summary(title=RIGHT_TO_LEFT_TITLE, tldr="החלטות: שלוש. Решений три.",
                                      next_steps=["להתקשר מחר — позвонить завтра"]),
        stem(6, "07-00-03"): lambda path: os.symlink("нет-такого-файла.json", path),
        stem(7, "07-00-04"): lambda path: path.mkdir(),
        stem(20, "09-09-09"): summary(title=42, tldr=["не", "строка"], decisions="Решение одной строкой",
                                      action_items={"task": "не список"}, risks=None, summary=False,
                                      _meta=["не объект"]),
        stem(33, "10-33-00"): summary(title="Дата только в имени файла",
                                      tldr="О времени этой встречи говорит лишь имя файла.",
                                      _meta={"started_at": "вчера после обеда", "duration_min": 0}),
        "встреча без даты": summary(title="Встреча без даты", tldr="Даты нет нигде."),
        stem(41, "15-07-00"): summary(title="Очень " + "длинное " * 600 + "название", tldr="т" * 20000),
        stem(8, "07-00-05"): lambda path: path.write_bytes(b'{"title": "\xff\xfe\xc3(", "tldr": "\x80"}'),
        mixed_stem: text(pretty(mixed)),
    }
    files = {f"{name}.protocol.json": create for name, create in names.items()}
    files[f"{mixed_stem}.report.json"] = text('["разбор, который не объект"]\n')
    return files
