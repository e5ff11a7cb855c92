"""The sandbox's own page, and the same controls in JSON for tests."""

from __future__ import annotations

import json
from collections import deque
from dataclasses import dataclass, field
from html import escape
from pathlib import Path

import accounts
import native_rec
import pages
import permissions
from accounts import Accounts
from exchange import Answer, Request, as_json, as_page
from faults import Faults
from releases import STEPS, Releases, Scripts
from service import Service

PREFIX = "/sandbox/"
LATEST = 500
SHOWN = 30
LONGEST_BODY = 400

# A form's fields become one JSON object; those marked with data-json hold JSON, and null when empty.
SCRIPT = """
const problem = document.getElementById('problem');
for (const form of document.forms) form.onsubmit = async event => {
  event.preventDefault();
  try {
    const body = {};
    for (const input of form.elements)
      if (input.name) body[input.name] = 'json' in input.dataset ? JSON.parse(input.value || 'null') : input.value;
    const answer = await fetch(form.dataset.to, {method: 'POST', body: JSON.stringify(body)});
    if (!answer.ok) throw (await answer.json()).message;
    location.reload();
  } catch (error) { problem.textContent = error; scrollTo(0, 0); }
};
"""


@dataclass
class Control:
    home: Path
    kept: Accounts
    releases: Releases
    scripts: Scripts
    faults: Faults
    service: Service
    seen: deque[dict] = field(default_factory=lambda: deque(maxlen=LATEST))

    def answer(self, request: Request) -> Answer | None:
        """None when there is no such control."""
        if request.path == "/":
            return as_page(self.page())
        name = request.path.removeprefix(PREFIX)
        if request.method != "POST":
            show = self.shown().get(name)
            return as_json(show()) if show else None
        change = self.changes().get(name)
        if change is None:
            return None
        try:
            body = request.json() if request.body else {}
            if not isinstance(body, dict):
                raise ValueError("the body is no JSON object")
            return as_json(change(body))
        except ValueError as error:
            return as_json({"message": str(error)}, 400)

    def shown(self) -> dict:
        return {
            "release": lambda: self.releases.release,
            "telegram": lambda: {user.email: self.kept.get(user, "chat_id") for user in accounts.USERS},
            "devices": lambda: {user.email: self.kept.get(user, "devices") for user in accounts.USERS},
            "glossary": lambda: {user.email: self.kept.get(user, "profile")["glossary"] for user in accounts.USERS},
            "permissions": lambda: native_rec.read(self.home),
            "faults": self.faults.shown,
            "install": lambda: {"fail_at": self.scripts.fail_at},
            "service": lambda: {"running": self.service.running()},
            "requests": lambda: list(self.seen),
        }

    def changes(self) -> dict:
        return {
            "release": self.change_release,
            "telegram": self.change_telegram,
            "glossary": self.change_glossary,
            "permissions": lambda body: permissions.change(self.home, body),
            "faults": self.change_fault,
            "install": self.change_install,
            "service/start": self.start_service,
            "tokens": self.make_tokens,
        }

    def change_release(self, body: dict) -> dict:
        self.releases.change(body)
        return self.releases.release

    def change_telegram(self, body: dict) -> dict:
        chat_id = body.get("chat_id")
        if chat_id is not None and type(chat_id) is not int:
            raise ValueError(f"{chat_id!r} is no chat")
        self.kept.bind(named_user(body), chat_id)
        return self.shown()["telegram"]()

    def change_glossary(self, body: dict) -> dict:
        glossary = body.get("glossary")
        if not isinstance(glossary, str | None):
            raise ValueError("a glossary is a text")
        self.kept.change_profile(named_user(body), {"glossary": glossary})
        return self.shown()["glossary"]()

    def change_fault(self, body: dict) -> dict:
        path, fault = body.get("path"), body.get("fault")
        if path is None and fault is None:
            self.faults.clear()
        elif isinstance(path, str) and isinstance(fault, str | None):
            self.faults.set(path, fault)
        else:
            raise ValueError("path and fault are texts")
        return self.faults.shown()

    def change_install(self, body: dict) -> dict:
        self.scripts.fail(body.get("fail_at"))
        return {"fail_at": self.scripts.fail_at}

    def start_service(self, _: dict) -> dict:
        if not self.service.start():
            raise ValueError("the engine did not start")
        return {"running": True}

    def make_tokens(self, body: dict) -> dict:
        expires_in = body.get("expires_in", accounts.TOKEN_SECONDS)
        if type(expires_in) not in (int, float) or not abs(expires_in) < 1e9:
            raise ValueError(f"{expires_in!r} is no number of seconds")
        return accounts.tokens(named_user(body), expires_in)

    def page(self) -> str:
        shown = {name: show() for name, show in self.shown().items()}
        parts = [
            '<h1>Murmeli sandbox</h1><p>What the network answers, for as long as this page\'s server runs. '
            '<a href="/account">Account site</a> · <a href="/bot">Bot</a> · <a href="">Look again</a></p>'
            '<p id="problem" class="bad" role="alert"></p>',
            "<h2>Published release</h2>", release_form(shown["release"]),
            "<h2>Telegram</h2>", *(telegram_form(email, chat) for email, chat in shown["telegram"].items()),
            devices_line(shown["devices"]),
            "<h2>Glossaries</h2>", *(glossary_form(email, text) for email, text in shown["glossary"].items()),
            "<h2>Permissions</h2>", permissions_form(shown["permissions"]),
            "<h2>Faults</h2>", *(fault_form(path, fault) for path, fault in shown["faults"].items()), NEW_FAULT,
            "<h2>Installation</h2>", install_form(shown["install"]["fail_at"]),
            service_form(shown["service"]["running"]),
            "<h2>Latest requests</h2>", requests_table(shown["requests"]),
            f"<script>{SCRIPT}</script>",
        ]
        return pages.frame("Murmeli sandbox", "".join(parts), wide=True)


def named_user(body: dict) -> accounts.User:
    user = accounts.user_of(body.get("email"))
    if user is None:
        raise ValueError(f"nobody is called {body.get('email')!r}")
    return user


def form(to: str, inside: str, button: str = "Set") -> str:
    return f'<form class="row" data-to="{PREFIX}{to}">{inside}<button>{button}</button></form>'


def json_text(value) -> str:
    return escape(json.dumps(value, ensure_ascii=False))


WORDS = {None: "nowhere", False: "no", True: "yes"}


def choice(name: str, label: str, values, chosen) -> str:
    options = "".join(f'<option value="{json_text(value)}"{" selected" if value == chosen else ""}>'
                      f"{escape(value if isinstance(value, str) else WORDS[value])}</option>" for value in values)
    return f'<label>{label}<select name="{name}" data-json>{options}</select></label>'


def release_form(release: dict) -> str:
    version, released, notes = (json_text(release[name]) for name in ("version", "released", "notes"))
    return form("release", f'<label>version<input name="version" data-json value="{version}"></label>'
                f'<label>released<input name="released" data-json value="{released}"></label>'
                f'<label style="flex-basis: 100%">notes<textarea name="notes" data-json rows="4">{notes}</textarea>'
                "</label>", "Publish")


def telegram_form(email: str, chat_id: int | None) -> str:
    return form("telegram", f'<input type="hidden" name="email" value="{escape(email)}"><label>{escape(email)}'
                f'<input name="chat_id" data-json value="{"" if chat_id is None else chat_id}" '
                'placeholder="not connected"></label>')


def devices_line(devices: dict) -> str:
    known = [f"{email}: {', '.join(names)}" for email, names in devices.items() if names]
    return f"<p>Devices: {escape('; '.join(known) or 'none')}</p>"


def glossary_form(email: str, glossary: str | None) -> str:
    return form("glossary", f'<input type="hidden" name="email" value="{escape(email)}"><label '
                f'style="flex-basis: 100%">{escape(email)}<textarea name="glossary" data-json rows="2">'
                f'{json_text(glossary)}</textarea></label>')


def permissions_form(state: dict) -> str:
    states, either = native_rec.MICROPHONE, (False, True)
    return form("permissions",
                choice("microphone", "microphone", states, state["microphone"])
                + choice("answer_microphone", "its answer when asked", states, state["answer_microphone"])
                + choice("screen", "screen", either, state["screen"])
                + choice("answer_screen", "its answer when asked", either, state["answer_screen"])
                + choice("broken", "broken", either, state["broken"])
                + '<label>think_seconds<input name="think_seconds" data-json '
                  f'value="{json_text(state["think_seconds"])}"></label>')


def fault_form(path: str, fault: str) -> str:
    return form("faults", f'<input type="hidden" name="path" value="{escape(path)}">'
                f'<input type="hidden" name="fault" data-json value="">'
                f"<label><code>{escape(path)} = {escape(fault)}</code></label>", "Clear")


NEW_FAULT = form("faults", '<label>path<input name="path" placeholder="/rest/v1/" required></label>'
                 '<label>fault<input name="fault" placeholder="status=500" required></label>', "Add")


def install_form(fail_at: str | None) -> str:
    return form("install", choice("fail_at", "fail at step", (None, *STEPS), fail_at))


def service_form(running: bool) -> str:
    return "<p>The engine runs.</p>" if running else form("service/start", "<label>The engine does not run.</label>",
                                                          "Start")


def body_text(body) -> str:
    text = json.dumps(body, ensure_ascii=False)  # a transcript would bury everything else on the page
    return escape(text if len(text) <= LONGEST_BODY else text[:LONGEST_BODY] + " …")


def requests_table(seen: list[dict]) -> str:
    names = ("method", "path", "query", "apikey", "bearer", "body")
    rows = "".join("<tr>" + "".join(f"<td>{escape(request[name]) if name != 'body' else body_text(request[name])}</td>"
                                    for name in names) + "</tr>" for request in seen[:-SHOWN - 1:-1])
    return f"<table><tr>{''.join(f'<th>{name}</th>' for name in names)}</tr>{rows}</table>"
