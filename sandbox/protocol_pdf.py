#!/usr/bin/env python3
"""Writes a meeting's protocol as PDF: through a browser without a window when there is one, else by itself."""

from __future__ import annotations

import argparse
import contextlib
import ctypes
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
from datetime import datetime
from html import escape
from pathlib import Path

import homes
import meeting_files
import pdf_writer
import script_faults
from pdf_writer import Style

BROWSERS = ("chromium", "google-chrome", "chromium-browser")
BROWSER_ARGUMENTS = ("--headless", "--no-sandbox", "--disable-gpu", "--no-pdf-header-footer", "--no-first-run",
                     "--disable-extensions", "--disable-background-networking", "--disable-breakpad",
                     "--disable-dev-shm-usage")
BROWSER_SECONDS = 60.0
POLL_SECONDS = 0.05
SECTIONS = {"decisions": "decisions", "action_items": "tasks", "next_steps": "steps", "open_questions": "questions",
            "risks": "risks"}
KICKER = {"ru": "Протокол встречи", "en": "Meeting protocol"}

CSS = """
@page { size: A4; margin: 20mm 19mm 22mm;
  @bottom-right { content: counter(page) " / " counter(pages); color: #80848f;
    font: 8pt "Inter", "DejaVu Sans", sans-serif; } }
* { box-sizing: border-box; }
body { margin: 0; font: 10.5pt/1.5 "Inter", "DejaVu Sans", sans-serif; color: #22242b; overflow-wrap: anywhere; }
.kicker { font-size: 8.5pt; font-weight: 600; letter-spacing: .08em; text-transform: uppercase; color: #5c6bf0; }
h1 { margin: 2mm 0 2.5mm; font-size: 22pt; line-height: 1.2; font-weight: 700; letter-spacing: -.01em; }
.meta { margin: 0; color: #6a6e7a; font-size: 9.5pt; }
.tldr { margin: 7mm 0 2mm; padding: 4mm 5mm; border-left: 1.2mm solid #5c6bf0; border-radius: 1.5mm; font-size: 11pt;
  background: #f2f3fe; -webkit-print-color-adjust: exact; }
h2 { margin: 8mm 0 2.5mm; font-size: 13pt; line-height: 1.3; break-after: avoid; }
ul { margin: 0; padding: 0; list-style: none; }
li { position: relative; padding: 1.6mm 0 1.6mm 6mm; border-top: .2mm solid #e7e8ee; break-inside: avoid; }
li::before { content: ""; position: absolute; left: .6mm; top: 3.4mm; width: 1.8mm; height: 1.8mm; border-radius: 50%;
  background: #5c6bf0; -webkit-print-color-adjust: exact; }
.action_items li::before { border: .4mm solid #5c6bf0; border-radius: .6mm; width: 2.6mm; height: 2.6mm; left: .2mm;
  background: none; }
.risks li::before { background: #e0803c; } .open_questions li::before { background: #b09a2c; }
"""


class Failed(Exception):
    """The text says why."""


class Ended(Exception):
    """Somebody asked for the end."""


class Protocol:
    """What the page says, in either form."""

    def __init__(self, summary: dict, stem: str):
        self.title = readable(summary.get("title"))
        self.tldr = readable(summary.get("tldr"))
        language = meeting_files.RUSSIAN if re.search("[а-яё]", self.title or self.tldr, re.IGNORECASE) \
            else meeting_files.ENGLISH
        self.code, words = language.code, language.words
        self.kicker = KICKER[self.code] if self.title else ""
        self.title = self.title or KICKER[self.code]
        started = moment(summary, stem)
        date = f"{language.due(started.date())} {started:%Y, %H:%M}" if started else ""
        people = ", ".join(map(readable, meeting_files.rows(summary, "participants")))
        self.meta = " · ".join(filter(None, (date, people)))
        self.sections = {name: (words[heading], list(map(readable, meeting_files.rows(summary, name))))
                         for name, heading in SECTIONS.items()}

    def html(self) -> str:
        parts = [f'<p class="tldr">{escape(self.tldr)}</p>' if self.tldr else ""]
        for name, (heading, rows) in self.sections.items():
            if rows:
                listed = "".join(f"<li>{escape(row)}</li>" for row in rows)
                parts.append(f'<section class="{name}"><h2>{heading}</h2><ul>{listed}</ul></section>')
        return (f'<!doctype html><html lang="{self.code}"><meta charset="utf-8"><title>{escape(self.title)}</title>'
                f'<style>{CSS}</style><div class="kicker">{self.kicker}</div><h1>{escape(self.title)}</h1>'
                f'<p class="meta">{escape(self.meta)}</p>{"".join(parts)}')

    def plain(self) -> bytes:
        """Raises NoFont."""
        accent, grey = (0.36, 0.42, 0.94), (0.42, 0.43, 0.48)
        document = pdf_writer.open_document(self.title)
        document.add(self.kicker, Style(9, bold=True, colour=accent))
        document.add(self.title, Style(20, bold=True, before=3))
        document.add(self.meta, Style(9.5, colour=grey, before=4))
        document.add(self.tldr, Style(11.5, before=14, indent=12, bar=True))
        for heading, rows in self.sections.values():
            if rows:
                document.add(heading, Style(13.5, bold=True, before=18))
            for row in rows:
                document.add(row, Style(10.5, before=4, indent=16, mark="•"))
        return document.written()


def readable(value) -> str:
    """In one line, without what neither a page nor a font can bear."""
    text = value if isinstance(value, str) else ""
    text = "".join(" " if ord(sign) < 32 or ord(sign) == 127 else "\ufffd" if "\ud800" <= sign <= "\udfff" else sign
                   for sign in text)
    return " ".join(text.split())


def moment(summary: dict, stem: str) -> datetime | None:
    meta = summary.get("_meta")
    try:
        return datetime.fromisoformat(meta["started_at"]).astimezone()
    except (KeyError, TypeError, ValueError, OverflowError):
        pass
    try:
        return datetime.strptime(stem[:19], "%Y-%m-%d %H-%M-%S")
    except ValueError:
        return None


class Printer:
    def __init__(self):
        self.stopping = threading.Event()

    def wait(self, seconds: float) -> None:
        if self.stopping.wait(seconds):
            raise Ended

    def write(self, summary_file: Path, destination: Path, plain: bool) -> None:
        summary = homes.read_object(summary_file)
        if summary is None:
            raise Failed(f"{summary_file} holds no summary")
        protocol = Protocol(summary, summary_file.name)
        # Beside its place, so that it gets there in one step; its name ends like no PDF while it is not whole.
        temporary = destination.with_name(f".{destination.name[:100]}.{os.getpid()}.tmp")
        try:
            browser = None if plain else next(filter(None, map(shutil.which, BROWSERS)), None)
            if browser:
                self.print_page(browser, protocol.html(), temporary)
            else:
                temporary.write_bytes(protocol.plain())
            check_whole(temporary)
            self.wait(0)
            os.replace(temporary, destination)
        except pdf_writer.NoFont as error:
            raise Failed(str(error)) from error
        except OSError as error:
            raise Failed(f"cannot write {destination}: {error}") from error
        finally:
            with contextlib.suppress(OSError):
                temporary.unlink(missing_ok=True)

    def print_page(self, browser: str, html: str, destination: Path) -> None:
        with tempfile.TemporaryDirectory(prefix="murmeli-pdf-", ignore_cleanup_errors=True) as folder:
            page = Path(folder) / "protocol.html"
            page.write_text(html, encoding="utf-8")
            # Killed, it cleans up nothing: whatever it writes must lie where we do.
            own = dict.fromkeys(("HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"), folder)
            child = subprocess.Popen(
                [browser, *BROWSER_ARGUMENTS, f"--user-data-dir={folder}/profile", f"--print-to-pdf={destination}",
                 page.as_uri()], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                env=os.environ | own, start_new_session=True, preexec_fn=die_with_parent)
            try:
                deadline = time.monotonic() + BROWSER_SECONDS
                while child.poll() is None:
                    if time.monotonic() > deadline:
                        raise Failed(f"{browser} took longer than {BROWSER_SECONDS:.0f} s")
                    self.wait(POLL_SECONDS)
            finally:
                end_group(child)
            if child.returncode:
                raise Failed(f"{browser} ended with {child.returncode}")


def die_with_parent() -> None:
    if sys.platform == "linux":  # killed without warning, this script could not end its browser
        ctypes.CDLL(None).prctl(1, signal.SIGKILL)


def end_group(child: subprocess.Popen) -> None:
    """Also after the child itself is gone: it may have left some of its own behind."""
    try:
        os.killpg(child.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    child.wait()


def check_whole(path: Path) -> None:
    content = path.read_bytes() if path.exists() else b""
    if not content.startswith(b"%PDF-") or b"%%EOF" not in content[-1024:]:
        raise Failed("the file did not become whole")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("summary", type=Path, metavar="SUMMARY_JSON")
    parser.add_argument("destination", type=Path, metavar="DEST_PDF")
    parser.add_argument("--plain", action="store_true", help="without a browser")
    arguments = parser.parse_args()
    printer = Printer()
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        signal.signal(number, lambda *_: printer.stopping.set())
    fault, _, value = script_faults.asked("pdf").partition("=")
    try:
        if fault == "fail":
            raise Failed("this failure was asked for")
        if fault == "no-file":
            return 0
        if fault in ("hang", "slow"):
            printer.wait(float(value) if fault == "slow" else threading.TIMEOUT_MAX)
        printer.write(arguments.summary, arguments.destination.absolute(), arguments.plain)
    except Failed as failure:
        print(f"sandbox: {failure}", file=sys.stderr)
        return 1
    except Ended:
        return 128 + signal.SIGTERM
    return 0


if __name__ == "__main__":
    sys.exit(main())
