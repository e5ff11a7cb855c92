import base64
import hashlib
import hmac
import html
import json
import re
import signal
import socket
import time
import unittest
from urllib.parse import parse_qsl, urlsplit

from sandbox_case import wait_for
from web_case import ANNA, PAVEL, WebCase

KEY = ("eyJhbGciOiJIUzI1NiIsInR5cCI6IkpXVCJ9.eyJpc3MiOiJtdXJtZWxpLXNhbmRib3giLCJyZWYiOiJpbnZlbnRlZC1iYXNlIiwicm9sZSI6"
       "ImFub24iLCJpYXQiOjE3MDAwMDAwMDAsImV4cCI6MjYwMDAwMDAwMH0.fbJQ0csHqy-aQLJH6JaCQ1S8e2xT6HGW4lP2LwrVsVM")
LINKS = "/rest/v1/telegram_links?select=chat_id"
RIGHT = {"email": ANNA.email, "password": "sandbox"}


def encoded(data: bytes) -> str:
    return base64.urlsafe_b64encode(data).rstrip(b"=").decode()


def decoded(text: str) -> dict:
    return json.loads(base64.urlsafe_b64decode(text + "=" * (-len(text) % 4)))


def signature(text: str, secret: bytes = b"nothing in the sandbox is secret") -> str:
    return encoded(hmac.digest(secret, text.encode(), hashlib.sha256))


def signed(claims: dict, *secret: bytes) -> str:
    text = encoded(b'{"alg":"HS256","typ":"JWT"}') + "." + encoded(json.dumps(claims).encode())
    return f"{text}.{signature(text, *secret)}"


class SigningIn(WebCase):
    def test_a_wrong_password_brings_the_form_back(self):
        web = self.web()
        for path in ("/account?flow=app", "/account"):
            for form in ({"email": ANNA.email, "password": "Sandbox"}, {"email": "<b>@example.org"}, {}):
                with self.subTest(path=path, form=form):
                    self.assertNotIn('id="problem"', web.get(path).text())
                    page = web.submit(path, **form).text()
                    for field in ('id="problem"', 'id="email"', 'id="password"', 'id="sign-in"'):
                        self.assertIn(field, page)
                    self.assertNotIn("<b>@", page)
                    self.assertNotIn("murmeli://", page)

    def test_the_right_password_leads_back_to_the_application(self):
        web = self.web()
        addresses = []
        for user in (ANNA, PAVEL):
            page = web.submit("/account?flow=app", email=user.email, password="sandbox").text()
            address = html.unescape(re.search(r'<a id="back" href="([^"]+)"', page)[1])
            self.assertEqual(html.unescape(re.search(r'id="address"[^>]*>([^<]+)<', page)[1]), address)
            addresses.append(address)
            self.assertTrue(address.startswith("murmeli://auth#"))
            fragment = urlsplit(address).fragment
            self.assertRegex(fragment, r"^[\w.%=&~-]+$")
            values = dict(parse_qsl(fragment, strict_parsing=True))
            self.assertEqual(list(values), ["access_token", "refresh_token", "email"])
            self.assertEqual(values["email"], user.email)

            header, claims, sign = values["access_token"].split(".")
            self.assertEqual(sign, signature(f"{header}.{claims}"))
            self.assertEqual(decoded(header), {"alg": "HS256", "typ": "JWT"})
            claims = decoded(claims)
            self.assertEqual((claims["sub"], claims["email"], claims["role"]), (user.id, user.email, "authenticated"))
            self.assertEqual(claims["exp"] - claims["iat"], 3600)
            self.assertAlmostEqual(claims["iat"], time.time(), delta=5)
            reply = web.get("/rest/v1/profiles?select=email", apikey=KEY,
                            Authorization=f"Bearer {values['access_token']}")
            self.assertEqual(reply.json(), [{"email": user.email}])
        self.assertEqual(len(set(addresses)), 2)

    def test_the_browser_chooses_the_language(self):
        web = self.web()
        for accepted, word in (("", "Войти"), ("ru-RU,ru;q=0.9,en;q=0.8", "Войти"), ("de,en;q=0.5", "Sign in"),
                               ("en-US,en;q=0.9,ru;q=0.1", "Sign in"), ("*;q=x,,;q=", "Войти"), ("de", "Войти")):
            with self.subTest(accepted):
                headers = {"Accept-Language": accepted}
                self.assertIn(f">{word}</button>", web.get("/account?flow=app", **headers).text())

    def test_telegram_is_connected_on_the_account_page(self):
        web = self.web()
        pavel = web.as_user(PAVEL)
        self.assertIn('id="sign-in"', web.submit("/account", do="bind").text())
        reply = web.submit("/account", **RIGHT)
        self.assertEqual((reply.status, reply.headers["Location"]), (303, "/account"))
        cookie = {"Cookie": "other=1; " + reply.headers["Set-Cookie"].split(";")[0]}
        self.assertIn('id="bind"', web.get("/account", **cookie).text())

        web.submit("/account", cookie, do="bind")
        [row] = web.ask("GET", LINKS, headers=web.as_user(ANNA)).json()
        self.assertIn(str(row["chat_id"]), web.get("/account", **cookie).text())
        self.assertEqual(web.ask("GET", LINKS, headers=pavel).json(), [])
        web.submit("/account", cookie, do="unbind")
        self.assertEqual(web.shown("telegram"), {ANNA.email: None, PAVEL.email: None})
        web.submit("/account", cookie, do="sign-out")
        self.assertIn('id="sign-in"', web.get("/account", **cookie).text())


class Backend(WebCase):
    def test_who_is_let_in(self):
        web = self.web()
        claims = {"sub": ANNA.id, "role": "authenticated", "exp": time.time() + 60}
        good = web.token(ANNA)
        own = signed(claims)
        cases = (
            ("nothing", {}, 401),
            ("no key", {"Authorization": f"Bearer {good}"}, 401),
            ("wrong key", {"apikey": KEY[:-1], "Authorization": f"Bearer {good}"}, 401),
            ("no token", {"apikey": KEY}, 401),
            ("the key as a token", {"apikey": KEY, "Authorization": f"Bearer {KEY}"}, 401),
            ("another kind", {"apikey": KEY, "Authorization": f"Basic {good}"}, 401),
            ("no token's text", {"apikey": KEY, "Authorization": "Bearer a.b"}, 401),
            ("other letters", {"apikey": KEY, "Authorization": "Bearer \xe9"}, 401),
            ("expired", {"apikey": KEY, "Authorization": f"Bearer {web.token(ANNA, expires_in=-1)}"}, 401),
            ("another secret", {"apikey": KEY, "Authorization": f"Bearer {signed(claims, b'guess')}"}, 401),
            ("a stranger", {"apikey": KEY, "Authorization": f"Bearer {signed(claims | {'sub': 'x'})}"}, 401),
            ("another role", {"apikey": KEY, "Authorization": f"Bearer {signed(claims | {'role': 'anon'})}"}, 401),
            ("a good token", {"apikey": KEY, "Authorization": f"Bearer {good}"}, 200),
            ("in small letters", {"apikey": KEY, "Authorization": f"bearer {own}"}, 200),
        )
        for name, headers, status in cases:
            for path in ("/rest/v1/profiles", LINKS):
                with self.subTest(name, path=path):
                    reply = web.ask("GET", path, headers=headers)
                    self.assertEqual(reply.status, status)
                    if status == 401:
                        self.assertTrue(reply.json()["message"])
        expired = web.token(ANNA, expires_in=-1)
        error = web.get(LINKS, apikey=KEY, Authorization=f"Bearer {expired}").json()
        self.assertEqual((error["code"], error["message"]), ("PGRST301", "JWT expired"))

    def test_what_is_asked_wrongly(self):
        web = self.web()
        headers = web.as_user(ANNA)
        own = f"/rest/v1/profiles?id=eq.{ANNA.id}"
        device = "/rest/v1/rpc/register_device"
        before = web.ask("GET", "/rest/v1/profiles", headers=headers).json()
        cases = (
            ("GET", "/rest/v1/secrets", None, 404, "PGRST205"),
            ("GET", "/rest/v1/profiles?select=email,shoe_size", None, 400, "42703"),
            ("GET", "/rest/v1/profiles?shoe_size=eq.4", None, 400, "42703"),
            ("GET", "/rest/v1/profiles?id=like.5", None, 400, "PGRST100"),
            ("POST", "/rest/v1/rpc/fly", "{}", 404, "PGRST202"),
            ("POST", device, '{"name":"x"}', 404, "PGRST202"),
            ("POST", device, '["x"]', 400, "PGRST102"),
            ("POST", device, '{"p_name":7}', 400, "23502"),
            ("GET", device, None, 405, "PGRST101"),
            ("POST", "/rest/v1/telegram_links", '{"chat_id":1}', 403, "42501"),
            ("DELETE", own, None, 403, "42501"),
            ("PATCH", own, '{"glossary":', 400, "PGRST102"),
            ("PATCH", own, '{"glossary":NaN}', 400, "PGRST102"),
            ("PATCH", own, "[" * 90000, 400, "PGRST102"),
            ("PATCH", own, "", 400, "PGRST102"),
            ("PATCH", own, '{"shoe_size":4}', 400, "PGRST204"),
            ("PATCH", own, '{"glossary":["Qwen"]}', 400, "22P02"),
            ("PATCH", own, '{"full_name":7}', 400, "22P02"),
            ("PATCH", own, f'{{"id":"{PAVEL.id}"}}', 403, "42501"),
            ("PATCH", "/rest/v1/profiles", '{"glossary":{}}', 400, "22P02"),
        )
        for method, path, body, status, code in cases:
            with self.subTest(method, path=path, body=(body or "")[:30]):
                reply = web.ask(method, path, body, headers)
                self.assertEqual((reply.status, reply.json()["code"]), (status, code))
        self.assertEqual(web.ask("GET", "/rest/v1/profiles", headers=headers).json(), before)

    def test_a_profile_is_changed_by_its_owner_alone(self):
        web = self.web()
        anna, pavel = web.as_user(ANNA), web.as_user(PAVEL)

        def glossary(headers):
            [row] = web.ask("GET", "/rest/v1/profiles?select=glossary,id", headers=headers).json()
            self.assertEqual(list(row), ["glossary", "id"])
            return row["glossary"]

        self.assertIn("Квен → Qwen\n", glossary(anna))
        self.assertIsNone(glossary(pavel))
        minimal = {"Prefer": "return=minimal"}
        new = "Квен → Qwen\nкавычки \" и \\\n😀"
        path = f"/rest/v1/profiles?id=eq.{ANNA.id}"
        reply = web.ask("PATCH", path, json.dumps({"glossary": new}), anna | minimal)
        self.assertEqual((reply.status, reply.body, reply.headers["Content-Length"]), (204, b"", None))
        self.assertEqual(glossary(anna), new)

        reply = web.ask("PATCH", path + "&select=full_name,glossary", '{"full_name":"Анна"}', anna)
        self.assertEqual((reply.status, reply.json()), (200, [{"full_name": "Анна", "glossary": new}]))
        reply = web.ask("PATCH", path, '{"glossary":"x"}', pavel)
        self.assertEqual((reply.status, reply.json()), (200, []))
        self.assertEqual(web.shown("glossary"), {ANNA.email: new, PAVEL.email: None})
        single = web.ask("GET", path, headers=anna | {"Accept": "application/vnd.pgrst.object+json"}).json()
        self.assertEqual((single["id"], single["full_name"]), (ANNA.id, "Анна"))

    def test_which_row_a_change_reaches(self):
        web = self.web()
        headers = web.as_user(PAVEL) | {"Prefer": "return=minimal"}
        annas = web.shown("glossary")[ANNA.email]
        for number, (query, changed) in enumerate((
                ("", True), (f"?id=eq.{PAVEL.id}", True), (f"?email=eq.{PAVEL.email}&locale=eq.ru", True),
                (f"?id=eq.{ANNA.id}", False), (f"?id=eq.{PAVEL.id}&locale=eq.en", False))):
            for value in (f"термин {number}", None):
                with self.subTest(query, value=value):
                    web.control("glossary", email=PAVEL.email, glossary="прежний")
                    reply = web.ask("PATCH", f"/rest/v1/profiles{query}", json.dumps({"glossary": value}), headers)
                    self.assertEqual((reply.status, reply.body), (204, b""))
                    self.assertEqual(web.shown("glossary"),
                                     {ANNA.email: annas, PAVEL.email: value if changed else "прежний"})

    def test_a_home_from_before_the_glossary_was_a_text(self):
        self.web().end()
        profile = {"id": ANNA.id, "email": ANNA.email, "full_name": "", "locale": "ru", "updated_at": ""}
        (self.home / ".sandbox-web.json").write_text(json.dumps(
            {ANNA.email: {"profile": profile | {"glossary": ["Квен -> Qwen", "ФОТ"]}},
             PAVEL.email: {"profile": profile | {"glossary": []}}}))
        self.assertEqual(self.web().shown("glossary"), {ANNA.email: "Квен → Qwen\nФОТ", PAVEL.email: None})

    def test_a_restart_forgets_nothing(self):
        web = self.web()
        anna = web.as_user(ANNA)
        path = f"/rest/v1/profiles?id=eq.{ANNA.id}"

        def register(name, headers=anna):
            return web.ask("POST", "/rest/v1/rpc/register_device", json.dumps({"p_name": name}), headers).json()

        ids = register("ноутбук"), register("стенд")
        first = web.shown("devices")[ANNA.email]["ноутбук"]
        self.assertEqual(register("ноутбук"), ids[0])
        again = web.shown("devices")[ANNA.email]["ноутбук"]
        self.assertEqual(again["first_seen"], first["first_seen"])
        self.assertGreater(again["last_seen"], first["last_seen"])
        web.ask("PATCH", path, '{"glossary":"новое"}', anna)
        web.control("telegram", email=ANNA.email, chat_id=123456789)
        before = {name: web.shown(name) for name in ("devices", "telegram")}
        self.assertEqual(before["devices"][PAVEL.email], {})
        self.assertNotIn(register("ноутбук", web.as_user(PAVEL)), ids)
        before["devices"] = web.shown("devices")

        web.end()
        web = self.web()
        self.assertEqual({name: web.shown(name) for name in before}, before)
        self.assertEqual(web.ask("GET", LINKS, headers=anna).json(), [{"chat_id": 123456789}])
        self.assertEqual(web.ask("GET", path, headers=anna).json()[0]["glossary"], "новое")
        self.assertEqual(register("стенд"), ids[1])


class Control(WebCase):
    def test_requests_are_shown_without_tokens(self):
        web = self.web()
        pair = web.control("tokens", email=ANNA.email)
        access, refresh = pair["access_token"], pair["refresh_token"]
        anna = {"apikey": KEY, "Authorization": f"Bearer {access}"}
        web.ask("GET", LINKS, headers=anna)
        web.ask("POST", "/rest/v1/rpc/register_device", json.dumps({"p_name": "a", "t": [access, refresh]}),
                {"apikey": "x", "Authorization": "Bearer x"})
        web.get(f"/nowhere/{access}?t={access}&r={refresh}")
        web.submit("/account?flow=app", **RIGHT)
        web.ask("BREW", f"/{access}")
        seen = web.shown("requests")
        self.assertEqual(seen[0], {"method": "GET", "path": "/rest/v1/telegram_links", "query": "select=chat_id",
                                   "apikey": "ok", "bearer": ANNA.email, "body": None})
        self.assertEqual([(one["apikey"], one["bearer"]) for one in seen[1:]],
                         [("wrong", "invalid"), ("none", "none"), ("none", "none")])
        self.assertEqual(seen[1]["body"]["p_name"], "a")
        page = web.get("/").text()
        self.assertIn("<title>Murmeli sandbox</title>", page)
        self.assertIn("register_device", page)
        web.end()
        for text in (web.output.read_text(), json.dumps(seen), page):
            for secret in ("eyJ", refresh[-20:], "password=sandbox"):
                self.assertNotIn(secret, text)

    def test_a_page_from_elsewhere_changes_nothing(self):
        web = self.web()
        for origin, status in (("https://example.org", 403), ("null", 403), (f"{web.origin}.example.org", 403),
                               (web.origin, 200), (f"http://localhost:{web.port}", 200)):
            for path in ("/sandbox/telegram", "/account?flow=app"):
                with self.subTest(origin, path=path):
                    reply = web.ask("POST", path, json.dumps({"email": ANNA.email, "chat_id": 5}), {"Origin": origin})
                    self.assertEqual(reply.status, status)
                    bound = web.control("telegram", email=ANNA.email, chat_id=None)
                    self.assertIsNone(bound[ANNA.email])

    def test_releases_are_served_as_they_were_given(self):
        web = self.web("--release", "0.9.0")
        release = web.get("/app/version.json").json()
        self.assertEqual((release["version"], release["released"]), ("0.9.0", "28 ноября 2026"))
        self.assertGreaterEqual(len(release["notes"].split("\n\n")), 3)
        for odd in ({"version": 9}, {"notes": None}, {"released": ["\ud800"]}, {"version": "1.0\n"}):
            release |= odd
            web.control("release", **odd)
            served = web.ask("GET", "/app/version.json").body
            self.assertEqual(json.loads(served.decode("utf-8", "surrogatepass")), release)

    def test_wrong_orders_are_refused(self):
        web = self.web()
        orders = (("release", '{"size":1}'), ("telegram", '{"email":"x"}'), ("install", '{"fail_at":"lunch"}'),
                  ("telegram", f'{{"email":"{ANNA.email}","chat_id":"5"}}'), ("glossary", '{"email":"x"}'),
                  ("glossary", f'{{"email":"{ANNA.email}","glossary":[]}}'), ("faults", '{"path":"/","fault":"rain"}'),
                  ("faults", '{"path":"rest","fault":"hang"}'), ("permissions", '{"microphone":"maybe"}'),
                  ("permissions", '{"screen":1}'), ("tokens", f'{{"email":"{ANNA.email}","expires_in":true}}'),
                  ("tokens", "[]"), ("tokens", "{"))
        def everything():
            return [web.shown(name) for name in ("release", "telegram", "glossary", "install", "faults", "permissions")]

        before = everything()
        for name, body in orders:
            with self.subTest(name, body=body):
                reply = web.ask("POST", f"/sandbox/{name}", body)
                self.assertEqual(reply.status, 400)
                self.assertTrue(reply.json()["message"])
        self.assertEqual(everything(), before)


class Serving(WebCase):
    def test_one_connection_serves_many_requests(self):
        web = self.web()
        connection = web.connection()
        self.addCleanup(connection.close)
        local = set()
        for method, path, status in (("GET", "/bot", 200), ("HEAD", "/bot", 200), ("GET", "/lost", 404),
                                     ("POST", "/sandbox/install", 200), ("POST", "/app/version.json", 404)):
            connection.request(method, path, b"{}" if method == "POST" else None)
            local.add(connection.sock.getsockname())
            reply = connection.getresponse()
            self.assertEqual((path, reply.status), (path, status))
            reply.read()
        self.assertEqual(len(local), 1)

    def test_bodies_without_a_usable_length(self):
        web = self.web()
        for headers, status in (({"Transfer-Encoding": "chunked"}, 411), ({"Content-Length": "-1"}, 400),
                                ({"Content-Length": "9" * 5000}, 413), ({"Content-Length": "99999999"}, 413)):
            with self.subTest(status):
                connection = web.connection()
                self.addCleanup(connection.close)
                connection.putrequest("POST", "/sandbox/install")
                for header in headers.items():
                    connection.putheader(*header)
                connection.endheaders()
                self.assertEqual(connection.getresponse().status, status)

    def test_it_listens_to_this_machine_alone(self):
        web = self.web()
        with self.assertRaises(ConnectionRefusedError):
            socket.create_connection(("127.0.0.2", web.port), timeout=2)

    def test_it_ends_at_once_although_connections_hang(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            web = self.web("--fault", "/app=hang", "--fault", "/bot=delay=3600", "--fault", "/rest=endless")
            held = [web.connection() for _ in range(3)]
            for connection, path in zip(held, ("/app/version.json", "/bot", "/rest/v1/profiles")):
                self.addCleanup(connection.close)
                connection.request("GET", path)
            wait_for(lambda: len(web.shown("requests")) == 3, "the three requests")
            before = time.monotonic()
            self.assertEqual(web.end(number), 0)
            self.assertLess(time.monotonic() - before, 2)
            self.assertNotIn("Traceback", web.output.read_text())

    def test_what_it_refuses(self):
        web = self.web()
        free = self.folder / "another"
        cases = ((self.real_home, [], 1, "real home"), (self.home, ["--port", "0"], 1, "another server"),
                 (free, ["--port", str(web.port)], 1, "cannot listen"),
                 (free, ["--fault", "/=sunshine"], 2, "sunshine"), (free, ["--fault", "hang"], 2, "path"),
                 (free, ["--fail-install", "lunch"], 2, "lunch"), (free, ["--engine-arguments", "'"], 2, "quot"))
        for home, arguments, status, word in cases:
            with self.subTest(arguments, home=home.name):
                result = self.run_script("web.py", "--home", str(home), *arguments)
                self.assertEqual((result.returncode, result.stdout), (status, ""))
                self.assertIn(word, result.stderr)
        self.assertEqual(list(self.real_home.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
