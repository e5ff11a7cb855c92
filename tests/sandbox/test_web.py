import http.client
import socket
import time

from sandbox_case import ANNA, PAVEL, SandboxCase, Web, wait_for

import accounts

KEY = accounts.ANONYMOUS_KEY
RELEASE, EDIT, REPORT = "/app/version.json", "/api/assist/edit", "/api/assist/report"
LINKS, PROFILES, DEVICE = (f"/rest/v1/{name}" for name in ("telegram_links", "profiles", "rpc/register_device"))
REMARK = {"remark": "replace Smith with Jones", "items": [
    {"section": "decisions", "index": 0, "text": "The roof is slate."},
    {"section": "decisions", "index": 1, "text": "Smith signs the contract."}]}
MEETING = {"transcript": "[00:00:05] Anna: I'll send the plan by Friday.", "meeting_date": "2026-03-04",
           "duration_min": 12.5}


class Answers(SandboxCase):
    def test_who_and_what_is_refused(self):
        web = Web(self, "--assist-seconds", "3600")
        good, expired = web.as_user(ANNA), web.as_user(ANNA, expires_in=-1)
        token, before = good["Authorization"], web.shown("glossary")
        cases = [("GET", LINKS, None, caller, 401) for caller in (
            {"Authorization": token}, {"apikey": KEY}, good | {"apikey": KEY[:-1]}, expired,
            good | {"Authorization": f"Bearer {KEY}"}, good | {"Authorization": token.replace("Bearer", "Basic")},
            good | {"Authorization": token[:-9] + token[:-10:-1]})]
        cases += [("POST", *question, caller, 401) for question in ((EDIT, REMARK), (REPORT, MEETING))
                  for caller in ({}, expired)]
        cases += [(method, path, body, good, status) for method, path, body, status in (
            ("GET", LINKS, None, 200), ("GET", "/rest/v1/secrets", None, 404),
            ("GET", f"{PROFILES}?select=email,shoe_size", None, 400), ("POST", DEVICE, {"name": "x"}, 404),
            ("DELETE", PROFILES, None, 403), ("PATCH", PROFILES, {"shoe_size": 4}, 400),
            ("PATCH", PROFILES, {"glossary": ["Qwen"]}, 400), ("PATCH", PROFILES, {"id": PAVEL.id}, 403),
            ("PATCH", PROFILES, '{"glossary":', 400), ("POST", "/sandbox/install", {"fail_at": "lunch"}, 400),
            ("POST", EDIT, REMARK | {"remark": " "}, 400), ("POST", EDIT, REMARK | {"items": [{"text": "x"}]}, 400),
            ("POST", REPORT, MEETING | {"transcript": None}, 400), ("POST", REPORT, [], 400))]
        # Another site that is open in the same browser.
        cases.append(("POST", "/sandbox/install", {}, {"Origin": "https://example.org"}, 403))
        for number, (method, path, body, caller, status) in enumerate(cases):
            with self.subTest(number, path=path, body=body):
                self.assertEqual(web.ask(method, path, body, caller).status, status)
        self.assertEqual(web.shown("glossary"), before)
        with self.assertRaises(ConnectionRefusedError):
            socket.create_connection(("127.0.0.2", web.port), timeout=2)

    def test_everyone_changes_the_own_row_and_a_restart_forgets_nothing(self):
        web = Web(self)
        text = "Квен → Qwen\nкавычки \" и \\\n😀"
        for user, query, glossary in ((ANNA, f"?id=eq.{ANNA.id}", text), (PAVEL, "", "термин"),
                                      (PAVEL, f"?id=eq.{ANNA.id}", "x")):
            caller = web.as_user(user) | {"Prefer": "return=minimal"}
            reply = web.ask("PATCH", PROFILES + query, {"glossary": glossary}, caller)
            self.assertEqual((reply.status, reply.body), (204, b""))
        web.control("telegram", email=ANNA.email, chat_id=123456789)
        web.end()
        web = Web(self)
        self.assertEqual(web.shown("glossary"), {ANNA.email: text, PAVEL.email: "термин"})
        self.assertEqual([web.ask("GET", f"{LINKS}?select=chat_id", None, web.as_user(user)).json()
                          for user in (ANNA, PAVEL)], [[{"chat_id": 123456789}], []])

    def test_requests_are_shown_without_tokens(self):
        web = Web(self)
        web.ask("GET", f"{LINKS}?select=chat_id", None, web.as_user(ANNA))
        seen = {"method": "GET", "path": LINKS, "query": "select=chat_id", "apikey": "ok", "bearer": ANNA.email}
        self.assertEqual(web.shown("requests"), [seen | {"body": None}])
        self.assertNotIn("eyJ", web.output.read_text())


class Faults(SandboxCase):
    def test_each_is_the_one_that_was_asked_for(self):
        web = Web(self)
        for fault, fits in (
                ("status=503", lambda reply: reply.status == 503 and reply.json()["message"]),
                ("html", lambda reply: reply.body.startswith(b"<!doctype html>")),
                ("empty", lambda reply: reply.headers["Content-Length"] == "0"),
                ("array", lambda reply: reply.json() == []), ("garbage", lambda reply: b"\xff" in reply.body),
                ("huge=300001", lambda reply: reply.json() == [] and len(reply.body) == 300001),
                ("redirect=https://example.org/x",
                 lambda reply: (reply.status, reply.headers["Location"]) == (302, "https://example.org/x"))):
            with self.subTest(fault):
                web.control("faults", path="/app", fault=fault)
                self.assertTrue(fits(web.ask("GET", RELEASE)))
        for fault, timeout, error in (("hang", 0.3, TimeoutError), ("reset", 8, ConnectionResetError),
                                      ("cut", 8, http.client.IncompleteRead)):
            web.control("faults", path=RELEASE, fault=fault)
            with self.subTest(fault):
                with self.assertRaises(error) as caught:
                    web.ask("GET", RELEASE, timeout=timeout)
                self.assertIs(type(caught.exception), error)  # an ordinary end is a kind of reset

    def test_the_longest_beginning_counts_and_no_fault_holds_up_the_end(self):
        web = Web(self, "--fault", "/=status=500", "--fault", f"{RELEASE}=delay=0.3")
        before = time.monotonic()
        paths = ("/bot", "/app/install.sh", "/sandbox/install", RELEASE, "/")
        self.assertEqual([web.ask("GET", path).status for path in paths], [500, 500, 500, 200, 200])
        self.assertGreaterEqual(time.monotonic() - before, 0.3)
        self.assertEqual(web.control("faults", path="/", fault=None), {RELEASE: "delay=0.3"})
        self.assertEqual((web.control("faults"), web.ask("GET", "/bot").status), ({}, 200))
        asked = len(web.shown("requests"))
        for path, fault in ((RELEASE, "hang"), ("/bot", "delay=3600"), (PROFILES, "endless"), (EDIT, "trickle")):
            web.control("faults", path=path, fault=fault)
            self.addCleanup(web.begin("GET", path).close)
        wait_for(lambda: len(web.shown("requests")) == asked + 4, "the four requests")
        self.assertEqual(web.end(), 0)
        self.assertNotIn("Traceback", web.output.read_text())
