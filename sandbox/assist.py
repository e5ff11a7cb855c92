"""The assistant below /api/assist: applies a remark to a protocol, analyses a transcript."""

from __future__ import annotations

import threading

import analysis
import edits
from accounts import TokenRefused
from backend import bearer
from exchange import Answer, Failed, Request, as_json

PREFIX = "/api/assist/"
LONGEST_REMARK = 2000
REPORT_TIMES = 3.0


class Assist:
    def __init__(self, seconds: float, stopping: threading.Event):
        self.seconds = seconds
        self.stopping = stopping

    def answer(self, request: Request) -> Answer:
        work = {"edit": (self.edit, 1.0), "report": (self.report, REPORT_TIMES)}.get(
            request.path.removeprefix(PREFIX))
        if work is None:
            raise refused(404, f"nothing is at {request.path}")
        if request.method != "POST":
            raise refused(405, "only POST is answered here")
        check_caller(request)
        act, times = work
        result = act(body_of(request))
        self.stopping.wait(self.seconds * times)
        return as_json(result)

    @staticmethod
    def edit(body: dict) -> dict:
        remark, items = body.get("remark"), body.get("items")
        if not isinstance(remark, str) or not remark.strip() or len(remark) > LONGEST_REMARK:
            raise refused(400, f"remark is a text of at most {LONGEST_REMARK} characters")
        if not isinstance(items, list) or not all(map(is_item, items)):
            raise refused(400, "items is a list of objects with section, index and text")
        return edits.edit(remark, items)

    @staticmethod
    def report(body: dict) -> dict:
        transcript, date, minutes = (body.get(name) for name in ("transcript", "meeting_date", "duration_min"))
        if not isinstance(transcript, str) or not isinstance(date, str):
            raise refused(400, "transcript and meeting_date are texts")
        if type(minutes) not in (int, float):
            raise refused(400, "duration_min is a number")
        return analysis.analyse(transcript) | {
            # A client stores the whole answer, also what it does not know and cannot hold in a double.
            "model": {"name": "sandbox", "big": 12345678901234567890, "moods": ["🐿️", "и\u0306", {}]},
            "meeting": {"date": date, "duration_min": minutes},
        }


def check_caller(request: Request) -> None:
    try:
        user = bearer(request)
    except TokenRefused as refusal:
        raise refused(401, str(refusal)) from refusal
    if user is None:
        raise refused(401, "a user's token is needed")


def is_item(item) -> bool:
    return (isinstance(item, dict) and type(item.get("index")) is int
            and isinstance(item.get("section"), str) and isinstance(item.get("text"), str))


def body_of(request: Request) -> dict:
    try:
        body = request.json()
    except ValueError as error:
        raise refused(400, "the body is no JSON") from error
    if not isinstance(body, dict):
        raise refused(400, "the body is no JSON object")
    return body


def refused(status: int, message: str) -> Failed:
    return Failed(as_json({"message": message}, status))
