"""The invented users, their tokens, and what the backend keeps about them."""

from __future__ import annotations

import base64
import copy
import hashlib
import hmac
import json
import os
import threading
import time
import uuid
from dataclasses import dataclass
from datetime import datetime, timezone
from pathlib import Path

import homes

SECRET = b"nothing in the sandbox is secret"
PASSWORD = "sandbox"
TOKEN_SECONDS = 3600


@dataclass(frozen=True)
class User:
    id: str
    email: str
    name: str
    glossary: str | None  # one rule or term a line


USERS = (
    User("5a1e6c1e-0b52-4f0e-9d5c-6f0f5a3c7a01", "anna@example.org", "Анна Кузнецова",
         "Квен → Qwen\nкубер → Kubernetes\nВектор\nФОТ"),
    User("b7c0d9f4-3e1a-4c57-8a66-21d4e8b95f02", "pavel@example.org", "Павел Орлов", None),
)


class TokenRefused(Exception):
    """The text says why, in the backend's own words."""


def user_of(email) -> User | None:
    return next((user for user in USERS if user.email == email), None)


def signed_in(email: str, password: str) -> User | None:
    return user_of(email.strip().lower()) if password == PASSWORD else None


def encoded(data: bytes) -> str:
    return base64.urlsafe_b64encode(data).rstrip(b"=").decode()


def decoded(text: str) -> bytes:
    return base64.b64decode(text + "=" * (-len(text) % 4), altchars=b"-_", validate=True)


def signature(text: str) -> str:
    return encoded(hmac.digest(SECRET, text.encode(), hashlib.sha256))


def signed(claims: dict) -> str:
    parts = ({"alg": "HS256", "typ": "JWT"}, claims)
    text = ".".join(encoded(json.dumps(part, separators=(",", ":")).encode()) for part in parts)
    return f"{text}.{signature(text)}"


ANONYMOUS_KEY = signed({"iss": "murmeli-sandbox", "ref": "invented-base", "role": "anon",
                        "iat": 1700000000, "exp": 2600000000})


def tokens(user: User, expires_in: float = TOKEN_SECONDS) -> dict[str, str]:
    now = int(time.time())
    claims = {"sub": user.id, "email": user.email, "role": "authenticated",
              "iat": now, "exp": int(now + expires_in)}
    # Its + and / must be encoded in an address: a client that forgets to decode them gets another token.
    refresh = "sandbox-refresh+/" + base64.b64encode(os.urandom(24)).decode()
    return {"access_token": signed(claims), "refresh_token": refresh}


def owner(token: str) -> User:
    """Whose token this is. Raises TokenRefused."""
    text, _, given = token.rpartition(".")
    if not token.isascii() or not hmac.compare_digest(signature(text), given):
        raise TokenRefused("JWSError JWSInvalidSignature")
    try:
        header, claims = (json.loads(decoded(part)) for part in text.split("."))
        user = next((user for user in USERS if user.id == claims.get("sub")), None)
        if header["alg"] != "HS256" or claims["role"] != "authenticated" or user is None:
            raise TokenRefused("JWT is not a user's")
        if claims["exp"] <= time.time():
            raise TokenRefused("JWT expired")
    except (ValueError, KeyError, TypeError) as error:
        raise TokenRefused("JWSError CompactDecodeError") from error
    return user


def now_text() -> str:
    return datetime.now(timezone.utc).isoformat()


class Accounts:
    """What is kept about each user. Any thread; every change is on disk before it is answered."""

    def __init__(self, file: Path):
        self.file = file
        self.lock = threading.Lock()
        saved = homes.read_object(file) or {}
        self.users = {user.email: self.fresh(user) | saved.get(user.email, {}) for user in USERS}
        for kept in self.users.values():
            profile = kept["profile"]
            if isinstance(profile["glossary"], list):  # a home that was kept before the column became a text
                profile["glossary"] = "\n".join(profile["glossary"]).replace(" -> ", " → ") or None

    @staticmethod
    def fresh(user: User) -> dict:
        profile = {"id": user.id, "email": user.email, "full_name": user.name,
                   "glossary": user.glossary, "locale": "ru", "updated_at": now_text()}
        return {"profile": profile, "chat_id": None, "devices": {}}

    def get(self, user: User, member: str):
        with self.lock:
            return copy.deepcopy(self.users[user.email][member])

    def change_profile(self, user: User, changes: dict) -> None:
        with self.lock:
            self.users[user.email]["profile"].update(changes, updated_at=now_text())
            self.save()

    def bind(self, user: User, chat_id: int | None) -> None:
        with self.lock:
            self.users[user.email]["chat_id"] = chat_id
            self.save()

    def register_device(self, user: User, name: str) -> str:
        with self.lock:
            devices = self.users[user.email]["devices"]
            device = devices.setdefault(name, {"id": str(uuid.uuid4()), "first_seen": now_text()})
            device["last_seen"] = now_text()
            self.save()
            return device["id"]

    def save(self) -> None:
        homes.write_whole(self.file, json.dumps(self.users, ensure_ascii=True, indent=1))
