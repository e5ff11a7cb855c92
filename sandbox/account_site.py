"""The account site: signing in for the application, and connecting Telegram."""

from __future__ import annotations

import random
import secrets
from html import escape
from urllib.parse import quote

import accounts
import pages
from accounts import Accounts, User
from exchange import Answer, Request, as_page

COOKIE = "murmeli-sandbox"

TEXTS = {
    "ru": {
        "note": "песочница",
        "sign_in": "Вход в аккаунт",
        "why_app": "После входа вы вернётесь в приложение.",
        "why_site": "Войдите, чтобы подключить Telegram.",
        "email": "Эл. почта", "password": "Пароль", "do_sign_in": "Войти",
        "wrong": "Неверная почта или пароль.",
        "people": "Это песочница, люди в ней вымышлены. Войти можно как",
        "or": "или", "with_password": "пароль",
        "done": "Вход выполнен",
        "returning": "Возвращаем вас в приложение.",
        "by_hand": "Ничего не произошло? Браузер не всегда передаёт адрес приложению. Откройте приложение по ссылке "
                   "или скопируйте адрес и вставьте его в приложении.",
        "back": "Открыть приложение", "address": "Адрес для приложения", "copy": "Копировать",
        "copied": "Скопировано",
        "account": "Аккаунт", "telegram": "Telegram",
        "bound": "Подключён, чат", "not_bound": "Не подключён: протоколы некуда присылать.",
        "bind": "Подключить Telegram", "unbind": "Отключить Telegram", "sign_out": "Выйти",
    },
    "en": {
        "note": "sandbox",
        "sign_in": "Sign in",
        "why_app": "After that you go back to the application.",
        "why_site": "Sign in to connect Telegram.",
        "email": "E-mail", "password": "Password", "do_sign_in": "Sign in",
        "wrong": "Wrong e-mail or password.",
        "people": "This is a sandbox, and its people are invented. Sign in as",
        "or": "or", "with_password": "password",
        "done": "You are signed in",
        "returning": "Taking you back to the application.",
        "by_hand": "Nothing happened? Browsers do not always hand the address over. Open the application by the link, "
                   "or copy the address and paste it in the application.",
        "back": "Open the application", "address": "Address for the application", "copy": "Copy",
        "copied": "Copied",
        "account": "Account", "telegram": "Telegram",
        "bound": "Connected, chat", "not_bound": "Not connected: protocols have nowhere to go.",
        "bind": "Connect Telegram", "unbind": "Disconnect Telegram", "sign_out": "Sign out",
    },
}

HAND_OVER = """
const address = document.getElementById('address'), copy = document.getElementById('copy');
copy.onclick = async () => {
  address.select();
  try { await navigator.clipboard.writeText(address.value); } catch { document.execCommand('copy'); }
  copy.textContent = copy.dataset.copied;
};
location.href = address.value;
"""


class AccountSite:
    def __init__(self, kept: Accounts):
        self.kept = kept
        self.sessions: dict[str, User] = {}

    def answer(self, request: Request) -> Answer:
        language = pages.language_of(request.headers.get("Accept-Language", ""))
        if dict(request.parameters()).get("flow") == "app":
            return self.for_application(request, language)
        return self.own_page(request, language)

    def for_application(self, request: Request, language: str) -> Answer:
        if request.method != "POST":
            return page(language, "sign_in", sign_in_form(language, "why_app"))
        form = request.form()
        user = accounts.signed_in(form.get("email", ""), form.get("password", ""))
        if user is None:
            return page(language, "sign_in", sign_in_form(language, "why_app", form.get("email", "")))
        return page(language, "done", hand_over(language, user))

    def own_page(self, request: Request, language: str) -> Answer:
        session = session_of(request)
        user = self.sessions.get(session)
        if request.method != "POST":
            return page(language, "account", self.account(language, user) if user
                        else sign_in_form(language, "why_site"))
        form = request.form()
        cookie = {}
        if user is None:
            user = accounts.signed_in(form.get("email", ""), form.get("password", ""))
            if user is None:
                return page(language, "sign_in", sign_in_form(language, "why_site", form.get("email", "")))
            session = secrets.token_urlsafe(16)
            self.sessions[session] = user
            cookie = {"Set-Cookie": f"{COOKIE}={session}; Path=/account; HttpOnly; SameSite=Lax"}
        elif form.get("do") == "bind":
            self.kept.bind(user, random.randrange(10**8, 10**9))
        elif form.get("do") == "unbind":
            self.kept.bind(user, None)
        elif form.get("do") == "sign-out":
            del self.sessions[session]
        return Answer(303, headers={"Location": "/account"} | cookie)

    def account(self, language: str, user: User) -> str:
        text = TEXTS[language]
        chat_id = self.kept.get(user, "chat_id")
        if chat_id is None:
            state, do = f'<p id="telegram">{text["not_bound"]}</p>', "bind"
        else:
            state, do = f'<p id="telegram" class="good">{text["bound"]} {chat_id}</p>', "unbind"
        return (f"<h1>{escape(user.name)}</h1><p>{escape(user.email)}</p><h2>{text['telegram']}</h2>{state}"
                f'<form method="post"><button class="main" id="{do}" name="do" value="{do}">{text[do]}</button></form>'
                f'<form method="post" class="hint"><button id="sign-out" name="do" value="sign-out">'
                f'{text["sign_out"]}</button></form>')


def session_of(request: Request) -> str:
    for part in request.headers.get("Cookie", "").split(";"):
        name, _, value = part.strip().partition("=")
        if name == COOKIE:
            return value
    return ""


def page(language: str, title: str, body: str) -> Answer:
    text = TEXTS[language]
    return as_page(pages.frame(f"{text[title]} · Murmeli", body, language, text["note"]))


def sign_in_form(language: str, why: str, wrong_email: str | None = None) -> str:
    text = TEXTS[language]
    problem = "" if wrong_email is None else f'<p id="problem" class="bad" role="alert">{text["wrong"]}</p>'
    people = f" {text['or']} ".join(f"<code>{user.email}</code>" for user in accounts.USERS)
    return (f"<h1>{text['sign_in']}</h1><p>{text[why]}</p>{problem}"
            f'<form method="post"><label for="email">{text["email"]}</label>'
            f'<input id="email" name="email" type="email" autocomplete="username" required autofocus '
            f'value="{escape(wrong_email or "")}">'
            f'<label for="password">{text["password"]}</label>'
            f'<input id="password" name="password" type="password" autocomplete="current-password" required>'
            f'<button class="main" id="sign-in">{text["do_sign_in"]}</button></form>'
            f'<p class="hint">{text["people"]} {people}, {text["with_password"]} <code>{accounts.PASSWORD}</code>.</p>')


def hand_over(language: str, user: User) -> str:
    text = TEXTS[language]
    values = accounts.tokens(user) | {"email": user.email}
    address = "murmeli://auth#" + "&".join(f"{name}={quote(value, safe='')}" for name, value in values.items())
    return (f"<h1>{text['done']}</h1><p>{escape(user.name)}. {text['returning']}</p><p>{text['by_hand']}</p>"
            f'<p><a id="back" href="{escape(address)}">{text["back"]}</a></p>'
            f'<label for="address">{text["address"]}</label>'
            f'<textarea id="address" rows="4" readonly>{escape(address)}</textarea>'
            f'<button id="copy" type="button" data-copied="{text["copied"]}">{text["copy"]}</button>'
            f"<script>{HAND_OVER}</script>")
