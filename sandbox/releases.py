"""What the web service publishes: the newest release, the two scripts, the files of the engine."""

from __future__ import annotations

import shlex
from pathlib import Path

from exchange import Answer, as_json, as_text

HERE = Path(__file__).resolve().parent
ENGINE_FILES = ("engine.py", "homes.py", "meeting_files.py", "compose.py", "scene.py", "scenarios_ru.py",
                "scenarios_en.py", "native_rec.py", "protocol_pdf.py", "pdf_writer.py", "reprotocol.py",
                "script_faults.py")
STEPS = ("system", "app", "venv", "engine", "asr", "models", "service")
NOTES = """Запись теперь начинается вдвое быстрее, а значок в трее сразу показывает, что она идёт.

Протоколы длинных встреч стали короче: решения и задачи собраны в начале, подробности — ниже.

Исправлено: после сна компьютера приложение снова видит микрофон.

Это песочница: обновление ничего не заменяет."""


class Releases:
    """The published release; a client may be served anything as its members."""

    def __init__(self, version: str):
        self.release = {"version": version, "notes": NOTES, "released": "28 ноября 2026"}

    def change(self, members: dict) -> None:
        unknown = members.keys() - self.release.keys()
        if unknown:
            raise ValueError(f"a release has no {', '.join(sorted(unknown))}")
        self.release = self.release | members

    def answer(self) -> Answer:
        return as_json(self.release)


class Scripts:
    """The installer and the updater, written for one server and one home."""

    def __init__(self, home: Path, origin: str, pace: float, fail_at: str | None):
        self.values = {"ORIGIN": origin, "HOME": str(home), "PACE": f"{pace:f}", "STEPS": " ".join(STEPS),
                       "ENGINE_FILES": " ".join(ENGINE_FILES)}
        self.fail(fail_at)

    def fail(self, step: str | None) -> None:
        """From now on an installation fails at this step. Raises ValueError."""
        self.check_step(step)
        self.fail_at = step

    @staticmethod
    def check_step(step: str | None) -> None:
        if step is not None and step not in STEPS:
            raise ValueError(f"{step!r} is not one of {', '.join(STEPS)}")

    def script(self, name: str) -> Answer:
        text = (HERE / name).read_text(encoding="utf-8")
        for key, value in (self.values | {"FAIL_AT": self.fail_at or ""}).items():
            text = text.replace(f"@{key}@", shlex.quote(value))
        return as_text(text)

    @staticmethod
    def engine_file(name: str) -> Answer | None:
        return as_text((HERE / name).read_text(encoding="utf-8")) if name in ENGINE_FILES else None
