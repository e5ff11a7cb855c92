#!/usr/bin/env python3
"""Writes a meeting's protocol again after its summary was changed; the transcript stays as it is."""

from __future__ import annotations

import argparse
import re
import sys
from pathlib import Path

import homes
import meeting_files
import script_faults


class Failed(Exception):
    """The text says why."""


def transcript_start(markdown: str) -> int:
    """Where the transcript's heading begins; the word alone may stand in a decision too."""
    heading = re.search(rf"^#+ .*{meeting_files.TRANSCRIPT}", markdown, re.MULTILINE)
    if heading is None:
        raise Failed("the protocol has no transcript that could be kept")
    return heading.start()


def rendered(summary: dict, old: str) -> str:
    place = transcript_start(old)
    head, transcript = old[:place], old[place:]
    known = meeting_files.LANGUAGES.get(str(summary.get("language")))
    language = known or (meeting_files.RUSSIAN if re.search("[а-яё]", head, re.IGNORECASE) else meeting_files.ENGLISH)
    words = language.words
    date = re.search(rf"^\*\*{words['date']}:\*\* *(.*?) *$", head, re.MULTILINE)
    short = f"## {words['summary']}\n" not in head.replace("\r\n", "\n")
    return meeting_files.outcome_markdown(summary, words, date[1] if date else "", short) + transcript


def write_again(summary_file: Path) -> Path:
    summary = homes.read_object(summary_file)
    meta = (summary or {}).get("_meta")
    name = meta.get("protocol_md") if isinstance(meta, dict) else None
    if not isinstance(name, str) or not name:
        raise Failed(f"{summary_file} names no protocol")
    protocol = Path(name)
    try:
        if not protocol.is_file():
            raise Failed(f"there is no protocol {protocol}")
        # As bytes: reading it as text would change the transcript's line ends.
        old = protocol.read_bytes().decode()
        new = rendered(summary, old)
        if new != old:
            homes.write_whole(protocol.resolve(), new)
    except (OSError, ValueError) as error:
        raise Failed(f"{protocol}: {error}") from error
    return protocol


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("summary", type=Path, metavar="SUMMARY_JSON")
    arguments = parser.parse_args()
    try:
        if script_faults.asked("reprotocol") == "fail":
            raise Failed("this failure was asked for")
        print(write_again(arguments.summary))
    except Failed as failure:
        print(f"sandbox: {failure}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
