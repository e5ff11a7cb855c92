"""Signing in and out: the page for the browser, the address that comes back, the secret store, account.json."""

from __future__ import annotations

import html
import json
import os
import re
import shutil
import signal
import subprocess
import time
import urllib.request
from urllib.parse import parse_qsl, quote, urlencode

from main_window import ANNA, ANNA_ID, quit_program, sign_in
from session import PROGRAM, REPOSITORY, JourneyTest, Session, command_line
from waiting import stays, wait_for

CHAT = 4242
SIGN_IN = "Войти в Murmeli"
ACCOUNT = "аккаунт Murmeli"
FIELD = "Адрес для входа"
SECRETS = ("access_token", "refresh_token", "email")
NO_SECRETS = dict.fromkeys(SECRETS)


def address_of(session: Session) -> str:
    """What the last page of a sign-in hands over."""
    values = {**session.ask_web("/sandbox/tokens", {"email": ANNA}), "email": ANNA}
    return "murmeli://auth#" + "&".join(f"{name}={quote(value, safe='')}" for name, value in values.items())


def values_in(address: str) -> dict[str, str]:
    return dict(parse_qsl(address.partition("#")[2]))


def stored(session: Session) -> dict[str, str | None]:
    def value(name: str) -> str | None:
        told = subprocess.run(["secret-tool", "lookup", "server", "Murmeli", "user", f"murmeli_{name}"],
                              env=session.environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=10,
                              check=False)
        return told.stdout.decode() if told.returncode == 0 else None

    return {name: value(name) for name in SECRETS}


def account_file(session: Session):
    return session.notes / "account.json"


def account(session: Session) -> dict:
    return json.loads(account_file(session).read_text("utf-8"))


def asked(session: Session, end: str) -> list[dict]:
    return [request for request in session.ask_web("/sandbox/requests") if request["path"].endswith(end)]


def wait_signed_in(session: Session, *, chat: str = "") -> None:
    wait_for(lambda: account_file(session).exists() and account(session)["chat_id"] == chat
             and asked(session, "/register_device") and asked(session, "/telegram_links"), "the session's file")


class SigningIn(JourneyTest):
    def register_scheme(self, session: Session) -> None:
        """As an installation does it: the desktop starts the program with the addresses of its scheme."""
        applications = session.home / ".local/share/applications"
        applications.mkdir(parents=True)
        shutil.copy(REPOSITORY / "packaging" / "murmeli.desktop", applications)
        (session.folder / "bin" / "murmeli").symlink_to(PROGRAM)

    def test_from_the_page_to_the_service(self):
        session = self.open_session(keyring=True, web=[])
        session.ask_web("/sandbox/telegram", {"email": ANNA, "chat_id": CHAT})
        self.register_scheme(session)
        session.open_panel()
        session.press("push button", SIGN_IN)
        page = wait_for(session.opened_urls, "the sign-in page")
        self.assertEqual(page, [f"{session.origin}/account?flow=app"])
        session.screen.key("Escape")
        session.wait_closed()

        form = urlencode({"email": ANNA, "password": "sandbox"}).encode()
        with urllib.request.urlopen(page[0], form, timeout=10) as answer:
            address = html.unescape(re.search(r'id="back" href="([^"]+)"', answer.read().decode())[1])
        # As browsers do it, and not by the recorder that stands first in the path.
        subprocess.run(["/usr/bin/xdg-open", address], env=session.environment, check=True, timeout=20,
                       stdin=subprocess.DEVNULL, capture_output=True)

        session.tree.wait("alert message", lambda name: name.startswith("Добро пожаловать!"))
        session.tree.wait("label", ACCOUNT)
        session.tree.wait_gone("push button", SIGN_IN)
        session.tree.wait_gone("text", FIELD)
        wait_signed_in(session, chat=str(CHAT))
        values = values_in(address)
        self.assertEqual(account(session), {**values, "account_id": ANNA_ID, "chat_id": str(CHAT)})
        self.assertEqual(account_file(session).stat().st_mode & 0o777, 0o600)
        wait_for(lambda: stored(session) == values, "the three secrets")

    def test_an_address_that_starts_the_program_changes_nothing(self):
        # Any web page may send one.
        session = self.open_session(keyring=True, web=[], program=False)
        session.start_program(address_of(session))
        stays(lambda: not account_file(session).exists() and not session.screen.windows(), "nothing came of it", 0.7)
        self.assertEqual(session.ask_web("/sandbox/requests"), [])
        self.assertEqual(stored(session), NO_SECRETS)
        self.assertNotIn("eyJ", command_line(session.program.pid))


class SecretStores(JourneyTest):
    def open_with_account(self, **options) -> Session:
        session = self.open_session(web=[], program=False, **options)
        sign_in(session)
        return session

    def start_quickly(self, session: Session) -> None:
        began = time.monotonic()
        session.start_program()
        self.assertLess(time.monotonic() - began, 2, "the icon waits for no store")
        wait_for(lambda: asked(session, "/register_device"), "the session", 4)
        session.open_panel()
        session.tree.wait("label", ACCOUNT)

    def test_a_start_without_one(self):
        self.start_quickly(self.open_with_account())

    def test_a_start_with_one_that_is_silent(self):
        session = self.open_with_account(keyring=True)
        os.kill(session.keyring.pid, signal.SIGSTOP)
        self.start_quickly(session)
        session.screen.key("Escape")
        session.wait_closed()
        quit_program(session)  # nor does the end wait

    def test_a_start_with_one_that_is_locked(self):
        session = self.open_with_account(keyring=True)
        session.start_program()
        wait_for(lambda: stored(session)["email"] == ANNA, "the secrets")
        session.stop(session.program)
        session.stop(session.keyring)
        session.start_keyring(locked=True)
        wait_for(lambda: not session.screen.icon(), "the icon to go")
        session.stop(session.web)
        session.start_web()  # which forgets what was asked
        self.start_quickly(session)


class Tokens(JourneyTest):
    def test_they_are_in_account_json_alone_and_in_the_store_until_one_signs_out(self):
        session = self.open_session(keyring=True, engine=["--processing-seconds", "0.3"], web=[])
        session.open_panel()
        session.press("push button", SIGN_IN)
        session.tree.wait("text", FIELD)
        address = address_of(session)
        self.assertEqual(session.run_program(address).returncode, 0)
        session.tree.wait("label", ACCOUNT)
        wait_signed_in(session)
        session.press("push button", "Начать запись")
        session.tree.wait("label", "Идёт запись")
        session.press("push button", "Остановить запись")
        wait_for(lambda: len(session.notifications()) == 3, "the notices")
        values = values_in(address)
        wait_for(lambda: stored(session) == values, "the secrets")
        self.assert_nowhere_else(session, values)
        session.tree.wait("alert message", lambda name: name.startswith("Протокол готов"))  # it moves what is below

        session.press("push button", "Выйти из аккаунта Murmeli")
        session.tree.wait("push button", SIGN_IN)
        wait_for(lambda: stored(session) == NO_SECRETS, "the secrets to be gone")
        self.assertEqual(account(session)["access_token"], values["access_token"], "the service keeps its file")

    def assert_nowhere_else(self, session: Session, values: dict[str, str]) -> None:
        files = [path for path in session.home.rglob("*") if path.is_file()]
        self.assertLessEqual({"notifications.log", "account.json"}, {path.name for path in files})
        found = set()
        for token in (values["access_token"], values["refresh_token"]):
            for form in (token, quote(token, safe="")):
                found.update(path.name for path in files if form.encode() in path.read_bytes())
                for line in session.processes_in_home().values():
                    self.assertNotIn(form, line)
                self.assertNotIn(form, session.program_log())
                self.assertNotIn(form, session.tree.text())
        self.assertEqual(found, {"account.json"})

    def test_a_second_start_wipes_its_argument(self):
        session = self.open_session(web=[])
        os.kill(session.program.pid, signal.SIGSTOP)  # so that the second one has somebody to wait for
        address = address_of(session)
        second = session.start("second", [str(PROGRAM), address])
        wait_for(lambda: command_line(second.pid) == f"{PROGRAM} {'x' * len(address)}", "the wiped argument", 2)
        os.kill(session.program.pid, signal.SIGCONT)
        self.assertEqual(second.wait(5), 0)
        self.assertEqual((session.folder / "second.log").read_bytes(), b"")
