"""What can go wrong between a client and the web side, by the beginning of the path."""

from __future__ import annotations

import math
import socket
import struct
import threading
from collections.abc import Callable
from dataclasses import dataclass

from exchange import Answer, as_json, as_page

BLOCK = 64 * 1024
HEAD = b"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n"
PLAIN = ("hang", "reset", "html", "empty", "array", "garbage", "cut", "endless", "trickle")


@dataclass(frozen=True)
class Fault:
    text: str
    kind: str
    value: str

    @classmethod
    def parse(cls, text: str) -> Fault:
        """Raises ValueError for what is no fault."""
        kind, sign, value = text.partition("=")
        fits = {
            "delay": lambda: 0 <= float(value) and math.isfinite(float(value)),
            "status": lambda: 200 <= int(value) <= 599,
            "huge": lambda: int(value) >= 2,
            "redirect": lambda: value.isascii() and value.isprintable() and value != "",
        }.get(kind, lambda: kind in PLAIN and not sign)
        try:
            fine = fits()
        except (ValueError, OverflowError):
            fine = False
        if not fine:
            raise ValueError(f"unknown fault {text!r}")
        return cls(text, kind, value)

    def answer(self) -> Answer | None:
        """The wrong answer; None when the fault is not in what is answered."""
        if self.kind == "status":
            return as_json({"code": "sandbox", "message": "this failure was asked for", "details": None,
                            "hint": None}, int(self.value))
        if self.kind == "html":
            return as_page("<!doctype html><title>Sign in to the network</title><p>Please accept the terms.")
        if self.kind == "garbage":
            return Answer(200, b'{"version": "\xff\xfe\x80\xc3"', "application/json")
        if self.kind == "redirect":
            return Answer(302, headers={"Location": self.value})
        return {"empty": Answer(200, type="application/json"), "array": as_json([])}.get(self.kind)

    def act(self) -> Callable[[socket.socket, threading.Event], None] | None:
        """What to do to the connection in place of answering; it is of no use afterwards."""
        if self.kind == "huge":
            return lambda connection, _: send_huge(connection, int(self.value))
        return {"hang": hang, "reset": reset, "cut": cut, "endless": endless, "trickle": trickle}.get(self.kind)


class Faults:
    """Which path has which fault. Any thread."""

    def __init__(self):
        self.by_path: dict[str, Fault] = {}
        self.lock = threading.Lock()

    def set(self, path: str, text: str | None) -> None:
        """Raises ValueError."""
        if not path.startswith("/"):
            raise ValueError(f"{path!r} is not a path")
        fault = None if text is None else Fault.parse(text)
        with self.lock:
            self.by_path.pop(path, None)
            if fault is not None:
                self.by_path[path] = fault

    def clear(self) -> None:
        with self.lock:
            self.by_path.clear()

    def of(self, path: str) -> Fault | None:
        with self.lock:
            found = max((start for start in self.by_path if path.startswith(start)), key=len, default=None)
            return self.by_path.get(found)

    def shown(self) -> dict[str, str]:
        with self.lock:
            return {path: fault.text for path, fault in self.by_path.items()}


def hang(connection: socket.socket, _: threading.Event) -> None:
    while connection.recv(BLOCK):  # until the client gives up
        pass


def reset(connection: socket.socket, _: threading.Event) -> None:
    # Taken out of its object, since that one would say goodbye properly before it closes.
    with socket.socket(fileno=connection.detach()) as taken:
        taken.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))


def cut(connection: socket.socket, _: threading.Event) -> None:
    connection.sendall(HEAD + b'Content-Length: 4096\r\n\r\n{"version": "9.')


def endless(connection: socket.socket, _: threading.Event) -> None:
    connection.sendall(HEAD + b"\r\n[")
    while True:
        connection.sendall(b'"more",' * (BLOCK // 7))


def trickle(connection: socket.socket, stopping: threading.Event) -> None:
    connection.sendall(HEAD + b"\r\n[")
    while not stopping.wait(1):
        connection.sendall(b" ")


def send_huge(connection: socket.socket, size: int) -> None:
    connection.sendall(HEAD + b"Content-Length: %d\r\n\r\n[" % size)
    left = size - 2
    while left > 0:
        connection.sendall(b" " * min(BLOCK, left))
        left -= BLOCK
    connection.sendall(b"]")
