"""A running web side, and how tests talk to it."""

from __future__ import annotations

import http.client
import json
import re
import signal
import subprocess
import sys
import time
from urllib.parse import urlencode

from sandbox_case import SANDBOX, SandboxCase, wait_for

import accounts

ANNA, PAVEL = accounts.USERS


class WebCase(SandboxCase):
    def web(self, *arguments: str) -> Web:
        return Web(self, *arguments)


class Reply:
    def __init__(self, response: http.client.HTTPResponse):
        self.status = response.status
        self.headers = response.headers
        self.body = response.read()

    def text(self) -> str:
        return self.body.decode()

    def json(self):
        return json.loads(self.body)


class Web:
    def __init__(self, case: SandboxCase, *arguments: str):
        self.output = case.folder / f"web-{time.monotonic_ns()}"
        with open(self.output, "w") as output:
            self.child = subprocess.Popen(
                [sys.executable, str(SANDBOX / "web.py"), "--home", str(case.home), "--port", "0", *arguments],
                env=case.environment(), stdout=output, stderr=subprocess.STDOUT)
        case.addCleanup(self.end)
        ready = wait_for(lambda: re.search(r"^sandbox: ready at (http://127\.0\.0\.1:(\d+))$",
                                           self.output.read_text(), re.MULTILINE), "the ready line")
        self.origin, self.port = ready[1], int(ready[2])

    def end(self, number: int = signal.SIGTERM) -> int:
        if self.child.poll() is None:
            self.child.send_signal(number)
        try:
            return self.child.wait(8)
        except subprocess.TimeoutExpired:
            self.child.kill()
            self.child.wait()
            raise

    def connection(self, timeout: float = 8) -> http.client.HTTPConnection:
        return http.client.HTTPConnection("127.0.0.1", self.port, timeout=timeout)

    def ask(self, method: str, path: str, body: str | bytes | None = None, headers: dict | None = None,
            timeout: float = 8) -> Reply:
        connection = self.connection(timeout)
        try:
            connection.request(method, path, body.encode() if isinstance(body, str) else body, headers or {})
            return Reply(connection.getresponse())
        finally:
            connection.close()

    def get(self, path: str, **headers: str) -> Reply:
        return self.ask("GET", path, headers=headers)

    def submit(self, path: str, headers: dict | None = None, **form: str) -> Reply:
        return self.ask("POST", path, urlencode(form),
                        {"Content-Type": "application/x-www-form-urlencoded"} | (headers or {}))

    def control(self, name: str, **body):
        """What the control answers; fails unless it obeys."""
        reply = self.ask("POST", f"/sandbox/{name}", json.dumps(body))
        assert reply.status == 200, reply.text()
        return reply.json()

    def shown(self, name: str):
        return self.get(f"/sandbox/{name}").json()

    def token(self, user: accounts.User, **how) -> str:
        return self.control("tokens", email=user.email, **how)["access_token"]

    def as_user(self, user: accounts.User) -> dict:
        return {"apikey": accounts.ANONYMOUS_KEY, "Authorization": f"Bearer {self.token(user)}"}
