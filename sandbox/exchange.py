"""One request and its answer, as the parts of the web side hand them to each other."""

from __future__ import annotations

import json
import re
from dataclasses import dataclass, field
from email.message import Message
from urllib.parse import parse_qsl

TOKENS = re.compile(r"eyJ[\w-]+\.[\w-]+\.[\w-]*|sandbox-refresh[\w+/=%-]*")


class Failed(Exception):
    """Carries the answer for a request that cannot be obeyed."""

    def __init__(self, answer: Answer):
        super().__init__(answer.status)
        self.answer = answer


@dataclass
class Request:
    method: str
    path: str
    query: str
    headers: Message
    body: bytes

    def json(self):
        """Raises ValueError, also for what only Python takes for JSON."""
        try:
            return json.loads(self.body, parse_constant=lambda name: int(name))
        except RecursionError as error:
            raise ValueError("nested too deeply") from error

    def parameters(self) -> list[tuple[str, str]]:
        return parse_qsl(self.query, keep_blank_values=True)

    def form(self) -> dict[str, str]:
        return dict(parse_qsl(self.body.decode("utf-8", "replace"), keep_blank_values=True))


@dataclass
class Answer:
    status: int
    body: bytes = b""
    type: str = "text/plain; charset=utf-8"
    headers: dict[str, str] = field(default_factory=dict)


def as_json(value, status: int = 200, **headers: str) -> Answer:
    text = json.dumps(value, ensure_ascii=False)
    return Answer(status, text.encode("utf-8", "surrogatepass"), "application/json; charset=utf-8", headers)


def as_page(text: str, status: int = 200) -> Answer:
    return Answer(status, text.encode(), "text/html; charset=utf-8")


def as_text(text: str, status: int = 200) -> Answer:
    return Answer(status, text.encode())


def without_tokens(text: str) -> str:
    """Whatever a client sends and wherever: a token is never shown."""
    return TOKENS.sub("(token)", text)
