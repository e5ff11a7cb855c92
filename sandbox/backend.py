"""The tables and functions below /rest/v1, with the manners of a hosted Postgres."""

from __future__ import annotations

import accounts
from accounts import Accounts, TokenRefused, User
from exchange import Answer, Failed, Request, as_json

PREFIX = "/rest/v1/"
COLUMNS = {
    "profiles": ("id", "email", "full_name", "glossary", "locale", "updated_at"),
    "telegram_links": ("user_id", "chat_id"),
}
NO_FILTERS = ("select", "order", "limit", "offset")


def failure(status: int, code: str, message: str, **headers: str) -> Failed:
    return Failed(as_json({"code": code, "message": message, "details": None, "hint": None}, status, **headers))


def key_given(request: Request) -> str:
    key = request.headers.get("apikey")
    return "none" if key is None else "ok" if key == accounts.ANONYMOUS_KEY else "wrong"


def bearer(request: Request) -> User | None:
    """None without a token. Raises TokenRefused."""
    kind, _, token = request.headers.get("Authorization", "").partition(" ")
    return accounts.owner(token.strip()) if kind.lower() == "bearer" else None


def bearer_given(request: Request) -> str:
    try:
        user = bearer(request)
    except TokenRefused:
        return "invalid"
    return user.email if user else "none"


class Backend:
    def __init__(self, kept: Accounts):
        self.kept = kept

    def answer(self, request: Request) -> Answer:
        user = self.caller(request)
        name = request.path.removeprefix(PREFIX)
        if name.startswith("rpc/"):
            return self.call(user, name.removeprefix("rpc/"), request)
        if name not in COLUMNS:
            raise failure(404, "PGRST205", f"Could not find the table 'public.{name}' in the schema cache")
        if request.method in ("GET", "HEAD"):
            return self.read(user, name, request)
        if (request.method, name) == ("PATCH", "profiles"):
            return self.change_profile(user, request)
        raise failure(403, "42501", f"permission denied for table {name}")

    def caller(self, request: Request) -> User:
        key = key_given(request)
        if key != "ok":
            message = "No API key found in request" if key == "none" else "Invalid API key"
            raise Failed(as_json({"message": message}, 401))
        try:
            user = bearer(request)
        except TokenRefused as refusal:
            raise failure(401, "PGRST301", str(refusal), **{"WWW-Authenticate": "Bearer"}) from refusal
        if user is None:
            raise failure(401, "PGRST302", "Anonymous access is disabled", **{"WWW-Authenticate": "Bearer"})
        return user

    def call(self, user: User, function: str, request: Request) -> Answer:
        if request.method != "POST":
            raise failure(405, "PGRST101", "Only POST may call a function here")
        body = body_object(request)
        if function != "register_device" or set(body) != {"p_name"}:
            parameters = ", ".join(body) or "no parameters"
            raise failure(404, "PGRST202", f"Could not find the function public.{function}({parameters})")
        if not isinstance(body["p_name"], str) or not body["p_name"]:
            raise failure(400, "23502", "a device needs a name")
        return as_json(self.kept.register_device(user, body["p_name"]))

    def rows(self, user: User, table: str) -> list[dict]:
        if table == "profiles":
            return [self.kept.get(user, "profile")]
        chat_id = self.kept.get(user, "chat_id")
        return [] if chat_id is None else [{"user_id": user.id, "chat_id": chat_id}]

    def read(self, user: User, table: str, request: Request) -> Answer:
        rows = matching(self.rows(user, table), table, request)
        return rows_answer(rows, table, request)

    def change_profile(self, user: User, request: Request) -> Answer:
        changes = body_object(request)
        for column, value in changes.items():
            check_value(user, column, value)
        # Without a filter too it is the own row alone: no other is visible to this user.
        found = matching(self.rows(user, "profiles"), "profiles", request)
        if found and changes:
            self.kept.change_profile(user, changes)
            found = self.rows(user, "profiles")
        if "return=minimal" in request.headers.get("Prefer", ""):
            return Answer(204)
        return rows_answer(found, "profiles", request)


def body_object(request: Request) -> dict:
    try:
        body = request.json()
    except ValueError:
        body = None
    if not isinstance(body, dict):
        raise failure(400, "PGRST102", "Empty or invalid json")
    return body


def check_value(user: User, column: str, value) -> None:
    if column not in COLUMNS["profiles"]:
        raise failure(400, "PGRST204", f"Could not find the '{column}' column of 'profiles' in the schema cache")
    if column == "id" and value != user.id:
        raise failure(403, "42501", 'new row violates row-level security policy for table "profiles"')
    if not isinstance(value, str | None):
        raise failure(400, "22P02", f'malformed value for column "{column}"')


def check_column(table: str, column: str) -> str:
    if column not in COLUMNS[table]:
        raise failure(400, "42703", f"column {table}.{column} does not exist")
    return column


def filters(request: Request) -> list[tuple[str, str]]:
    return [(name, value) for name, value in request.parameters() if name not in NO_FILTERS]


def matching(rows: list[dict], table: str, request: Request) -> list[dict]:
    for column, condition in filters(request):
        operator, _, operand = condition.partition(".")
        check_column(table, column)
        if operator != "eq":
            raise failure(400, "PGRST100", f'"failed to parse filter ({condition})"')
        rows = [row for row in rows if str(row[column]) == operand]
    return rows


def rows_answer(rows: list[dict], table: str, request: Request) -> Answer:
    selected = dict(request.parameters()).get("select") or "*"
    columns = COLUMNS[table] if selected == "*" else [check_column(table, name.strip())
                                                      for name in selected.split(",")]
    rows = [{column: row[column] for column in columns} for row in rows]
    if "vnd.pgrst.object" not in request.headers.get("Accept", ""):
        return as_json(rows)
    if len(rows) != 1:
        raise failure(406, "PGRST116", "Cannot coerce the result to a single JSON object")
    return as_json(rows[0])
