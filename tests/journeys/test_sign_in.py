"""Signing in and out: the page in the browser, the address that comes back, the secret store, account.json."""

from __future__ import annotations

import json
import os
import signal
import subprocess
import time
from urllib.parse import parse_qsl, quote

from browser import Browser, register_scheme
from session import PROGRAM, JourneyTest, Session, command_line
from waiting import stays, wait_for

ANNA = "anna@example.org"
ANNA_ID = "5a1e6c1e-0b52-4f0e-9d5c-6f0f5a3c7a01"
CHAT = 4242
SIGN_IN = "Войти в Murmeli"
SIGN_OUT = "Выйти из аккаунта Murmeli"
ACCOUNT = "аккаунт Murmeli"
FIELD = "Адрес для входа"
PASTE = "Войти"
CANCEL = "Отменить вход"
REFUSED = "Это не адрес для входа. Скопируйте его целиком: он начинается с murmeli:"
QUIT = "Выйти из Murmeli (снова открыть — через меню приложений)"
START_ANYWAY = "Всё равно начать"
QUICK_ENGINE = ["--engine-arguments=--poll-seconds 0.05 --processing-seconds 0.3"]
SECRETS = ("access_token", "refresh_token", "email")


def address_of(session: Session, email=ANNA) -> str:
    """What the last page of a sign-in hands over."""
    values = {**session.ask_web("/sandbox/tokens", {"email": email}), "email": email}
    return "murmeli://auth#" + "&".join(f"{name}={quote(value, safe='')}" for name, value in values.items())


def values_in(address: str) -> dict[str, str]:
    # What parse_qsl makes of a plus does not matter: in these addresses it is encoded.
    return dict(parse_qsl(address.partition("#")[2]))


def stored(session: Session) -> dict[str, str | None]:
    """What the secret store holds of ours."""
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


def sign_in_by_hand(test: JourneyTest, session: Session) -> str:
    """The quick way, for journeys about what comes after."""
    session.open_panel()
    session.press("push button", SIGN_IN)
    session.tree.wait("text", FIELD)
    address = address_of(session)
    test.assertEqual(session.run_program(address).returncode, 0)
    session.tree.wait("label", ACCOUNT)
    wait_signed_in(session)
    return address


class ThroughTheBrowser(JourneyTest):
    def test_from_the_button_to_the_service(self):
        session = self.open_session(keyring=True, web=[])
        session.ask_web("/sandbox/telegram", {"email": ANNA, "chat_id": CHAT})
        register_scheme(session)
        session.open_panel()
        session.press("push button", SIGN_IN)
        page = wait_for(session.opened_urls, "the sign-in page")
        self.assertEqual(page, [f"{session.origin}/account?flow=app"])
        session.screen.key("Escape")
        session.wait_closed()

        browser = Browser(session)
        browser.go(page[0])
        browser.fill("#email", ANNA)
        browser.fill("#password", "guess")
        browser.click("#sign-in")
        browser.wait("document.querySelector('#problem')?.textContent")
        self.assertFalse(browser.evaluate("!!document.querySelector('#back')"))
        browser.fill("#password", "sandbox")
        browser.click("#sign-in")
        address = browser.wait("document.querySelector('#back')?.href")
        browser.close()
        # Not the recorder that stands first in the path.
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
        for end, method in (("/register_device", "POST"), ("/telegram_links", "GET")):
            requests = asked(session, end)
            self.assertEqual([(request["method"], request["apikey"], request["bearer"]) for request in requests],
                             [(method, "ok", ANNA)])
        self.assertEqual(len(session.ask_web("/sandbox/devices")[ANNA]), 1)


class Pasting(JourneyTest):
    def test_by_mouse(self):
        session = self.open_session(keyring=True, web=[])
        session.open_panel()
        session.press("push button", SIGN_IN)
        session.tree.wait("status bar", lambda name: name.startswith("Вход открыт в браузере."))
        self.paste(session, "https://example.org/#access_token=x")
        session.press("push button", PASTE)
        session.tree.wait("status bar", REFUSED)
        self.assertFalse(account_file(session).exists())

        address = address_of(session)
        self.paste(session, f"  {address}\n")
        session.press("push button", PASTE)
        session.tree.wait("label", ACCOUNT)
        session.tree.wait_gone("text", FIELD)
        wait_signed_in(session)
        self.assertEqual(account(session)["refresh_token"], values_in(address)["refresh_token"])

    def paste(self, session: Session, text: str) -> None:
        session.put_in_clipboard(text)
        session.screen.click(*session.tree.wait("text", FIELD).extents.middle, times=3)
        wait_for(lambda: session.tree.focus_is_on(FIELD), "the field to have the focus")
        session.screen.key("ctrl+a", "ctrl+v")

    def test_by_keyboard_alone_in_english(self):
        session = self.open_session(keyring=True, web=[], language="en")
        session.look_away()
        session.open_panel()
        session.tab_to("Sign in to Murmeli")
        session.screen.key("Return")
        wait_for(session.opened_urls, "the sign-in page")
        session.tab_to("Sign-in address")
        session.screen.type("murmeli://auth#email=anna%40example.org")
        session.screen.key("Return")
        session.tree.wait("status bar", "This is not a sign-in address. Copy all of it: it begins with murmeli:")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        self.assertTrue(session.tree.focus_is_on("Sign-in address"))
        session.screen.key("ctrl+a")
        address = address_of(session)
        session.put_in_clipboard(address)
        session.screen.key("ctrl+v", "Return")
        session.tree.wait("alert message", lambda name: name.startswith("Welcome!"))
        session.tree.wait("label", "Murmeli account")
        self.assertNotRegex(session.tree.text(), "[А-Яа-яЁё]")
        wait_signed_in(session)
        session.tab_to("Sign out of the Murmeli account")
        session.screen.key("Return")
        session.tree.wait("push button", "Sign in to Murmeli")
        session.tree.wait_gone("label", "Murmeli account")

    def test_the_keyboard_always_knows_where_it_is(self):
        """What had the focus vanishes at each of these steps."""
        session = self.open_session(web=[])
        session.look_away()
        session.open_panel()

        def press(name: str) -> None:
            session.tab_to(name)
            session.screen.key("Return")

        press(SIGN_IN)
        with self.case("cancelled"):
            press(CANCEL)
            session.tree.wait_gone("text", FIELD)
            wait_for(session.tree.focused, "a visible focus", 2)
        press(SIGN_IN)
        with self.case("signed in"):
            session.tab_to(FIELD)
            session.put_in_clipboard(address_of(session))
            session.screen.key("ctrl+v", "Return")
            session.tree.wait("label", ACCOUNT)
            wait_for(session.tree.focused, "a visible focus", 2)
        with self.case("signed out"):
            press(SIGN_OUT)
            session.tree.wait("push button", SIGN_IN)
            wait_for(session.tree.focused, "a visible focus", 2)

    def test_a_cancelled_sign_in_takes_nothing_and_another_does(self):
        session = self.open_session(web=[])
        session.open_panel()
        session.press("push button", SIGN_IN)
        self.paste(session, "murmeli:")
        session.press("push button", CANCEL)
        session.tree.wait_gone("text", FIELD)
        self.assertEqual(session.run_program(address_of(session)).returncode, 0)
        stays(lambda: not session.tree.find("label", ACCOUNT), "signed out", 0.7)
        self.assertFalse(account_file(session).exists())

        session.press("push button", SIGN_IN)
        wait_for(lambda: len(session.opened_urls()) == 2, "the sign-in page again")
        self.assertEqual(session.run_program(address_of(session)).returncode, 0)
        session.tree.wait("label", ACCOUNT)


class Unasked(JourneyTest):
    """Any web page may send such an address."""

    def assert_nothing_came(self, session: Session) -> None:
        stays(lambda: not account_file(session).exists() and not session.screen.windows(), "nothing came of it", 0.7)
        self.assertEqual(session.ask_web("/sandbox/requests"), [])
        self.assertEqual(stored(session), dict.fromkeys(SECRETS))

    def test_an_address_out_of_the_blue_changes_nothing(self):
        session = self.open_session(keyring=True, web=[])
        ended = session.run_program(address_of(session))
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, b"", b""))
        self.assert_nothing_came(session)
        session.open_panel()
        session.tree.wait("push button", SIGN_IN)
        self.assertFalse(session.tree.find("label", ACCOUNT))

    def test_neither_does_one_that_starts_the_program(self):
        session = self.open_session(keyring=True, web=[], program=False)
        session.start_program(address_of(session))
        self.assert_nothing_came(session)
        self.assertNotIn("eyJ", command_line(session.program.pid))

    def test_nor_another_person_after_a_sign_in(self):
        session = self.open_session(keyring=True, web=[])
        sign_in_by_hand(self, session)
        wait_for(lambda: stored(session)["email"] == ANNA, "the secrets")
        before = account_file(session).read_bytes()
        session.run_program(address_of(session, "pavel@example.org"))
        stays(lambda: account_file(session).read_bytes() == before, "Anna's session", 0.7)
        self.assertEqual({request["bearer"] for request in session.ask_web("/sandbox/requests")}, {ANNA})
        self.assertEqual(stored(session)["email"], ANNA)


class SigningOut(JourneyTest):
    def test_the_secrets_go_and_the_service_keeps_its_file(self):
        session = self.open_session(keyring=True, web=[])
        address = sign_in_by_hand(self, session)
        wait_for(lambda: stored(session) == values_in(address), "the secrets")
        before = account_file(session).read_bytes()
        session.press("push button", SIGN_OUT)
        session.tree.wait("push button", SIGN_IN)
        session.tree.wait_gone("label", ACCOUNT)
        wait_for(lambda: stored(session) == dict.fromkeys(SECRETS), "the secrets to be gone")
        self.assertEqual(account_file(session).read_bytes(), before)

        session.press("push button", QUIT)
        self.assertEqual(session.program.wait(5), 0)
        wait_for(lambda: not session.screen.icon(), "the icon to go")
        session.start_program()
        wait_for(lambda: len(asked(session, "/register_device")) == 2, "the session to be there again")
        session.open_panel()
        session.tree.wait("label", ACCOUNT)
        self.assertFalse(session.tree.find("alert message"), "nobody is greeted who has not just signed in")
        wait_for(lambda: stored(session) == values_in(address), "the secrets to be back")


class SecretStores(JourneyTest):
    def open_with_account(self, **options) -> Session:
        session = self.open_session(web=[], program=False, **options)
        values = {**session.ask_web("/sandbox/tokens", {"email": ANNA}), "email": ANNA, "account_id": ANNA_ID,
                  "chat_id": ""}
        session.write(account_file(session), values)
        return session

    def assert_quick(self, session: Session, patience: float) -> None:
        began = time.monotonic()
        session.start_program()
        self.assertLess(time.monotonic() - began, 2, "the icon waits for no store")
        wait_for(lambda: asked(session, "/register_device"), "the session", patience)
        session.open_panel()
        session.tree.wait("label", ACCOUNT)
        self.assertEqual(asked(session, "/register_device")[0]["bearer"], ANNA)

    def test_a_start_without_one(self):
        self.assert_quick(self.open_with_account(), 4)

    def test_a_start_with_one_that_is_silent(self):
        session = self.open_with_account(keyring=True)
        os.kill(session.keyring.pid, signal.SIGSTOP)
        self.assert_quick(session, 4)
        session.press("push button", QUIT)
        self.assertEqual(session.program.wait(3), 0, "nor does the end")

    def test_a_start_with_one_that_is_locked(self):
        session = self.open_with_account(keyring=True)
        session.start_program()
        wait_for(lambda: stored(session)["email"] == ANNA, "the secrets")
        session.stop(session.program)
        session.stop(session.keyring)
        session.start_keyring(locked=True)
        told = subprocess.run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.secrets",
                               "/org/freedesktop/secrets/collection/login", "org.freedesktop.DBus.Properties.Get",
                               "string:org.freedesktop.Secret.Collection", "string:Locked"],
                              env=session.environment, capture_output=True, text=True, check=True, timeout=10)
        self.assertIn("boolean true", told.stdout)
        wait_for(lambda: not session.screen.icon(), "the icon to go")
        session.stop(session.web)
        session.start_web()  # which forgets what was asked
        self.assert_quick(session, 4)


class Tokens(JourneyTest):
    def test_they_are_in_account_json_and_in_the_store_alone(self):
        session = self.open_session(notes=False, keyring=True, program=False, web=QUICK_ENGINE)
        session.start_program()
        session.tree.wait("push button", START_ANYWAY, 15)
        session.screen.key("Return")
        session.wait_open()
        session.press_icon()
        session.wait_closed()
        address = sign_in_by_hand(self, session)
        values = values_in(address)
        session.press("push button", "Начать запись")
        session.tree.wait("label", "Идёт запись")
        session.press("push button", "Остановить запись")
        wait_for(lambda: len(session.notifications()) == 2, "the notices")
        wait_for(lambda: stored(session) == values, "the secrets")
        files = [path for path in session.home.rglob("*") if path.is_file()]
        self.assertLessEqual({"setup.log", "notifications.log", "account.json"}, {path.name for path in files})
        found = set()
        for token in (values["access_token"], values["refresh_token"]):
            for form in (token, quote(token, safe="")):
                found.update(str(path.relative_to(session.home)) for path in files if form.encode() in path.read_bytes())
                for line in session.processes_in_home().values():
                    self.assertNotIn(form, line)
                self.assertNotIn(form, session.program_log())
                self.assertNotIn(form, session.tree.text())
        self.assertEqual(found, {"MeetingNotes/account.json"})

    def test_a_second_start_wipes_its_argument(self):
        session = self.open_session(web=[])
        os.kill(session.program.pid, signal.SIGSTOP)  # so that the second one has somebody to wait for
        address = address_of(session)
        second = session.start("second", [str(PROGRAM), address])
        wait_for(lambda: command_line(second.pid) == f"{PROGRAM} {'x' * len(address)}", "the wiped argument", 2)
        os.kill(session.program.pid, signal.SIGCONT)
        self.assertEqual(second.wait(5), 0)
        self.assertEqual((session.folder / "second.log").read_bytes(), b"")
