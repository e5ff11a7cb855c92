"""What the sandbox's tests share: a temporary home, the engine and the web side in it, and how to talk to them."""

from __future__ import annotations

import http.client
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TESTS = Path(__file__).resolve().parents[1]
SANDBOX = TESTS.parent / "sandbox"
sys.path += [str(SANDBOX), str(TESTS / "journeys")]

import accounts
from waiting import wait_for

ANNA, PAVEL = accounts.USERS


class SandboxCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name).resolve()
        self.home = self.folder / "home"
        self.root = self.home / "MeetingNotes"
        self.logs = self.root / "logs"
        # The children's own $HOME is a folder of ours too: a missing refusal can harm nobody.
        self.real_home = self.folder / "real home"
        self.real_home.mkdir()

    def environment(self, **more: str) -> dict[str, str]:
        return os.environ | {"HOME": str(self.real_home), "PYTHONDONTWRITEBYTECODE": "1"} | more

    def run_script(self, script: str | Path, *arguments, **environment: str) -> subprocess.CompletedProcess:
        return subprocess.run([sys.executable, SANDBOX / script, *map(str, arguments)], timeout=30,
                              env=self.environment(**environment), capture_output=True, text=True)


class Child:
    """A program of the sandbox that runs until it is ended."""

    def __init__(self, case: SandboxCase, script: str, *arguments: str):
        handle, name = tempfile.mkstemp(dir=case.folder)
        self.output = Path(name)
        with open(handle, "w") as output:
            self.child = subprocess.Popen([sys.executable, SANDBOX / script, "--home", case.home, *arguments],
                                          env=case.environment(), stdout=output, stderr=subprocess.STDOUT)
        case.addCleanup(self.end)
        ready = re.compile(r"^sandbox: ready (?:in|at) (.+)\n", re.MULTILINE)
        self.ready = wait_for(lambda: ready.search(self.output.read_text()), f"{script} to be ready")[1]

    def end(self) -> int:
        self.child.terminate()
        try:
            return self.child.wait(8)
        finally:
            self.child.kill()
            self.child.wait()


class Engine(Child):
    def __init__(self, case: SandboxCase, *arguments: str):
        self.state_file, self.command_file = case.root / "state.json", case.root / "command.json"
        super().__init__(case, "engine.py", "--poll-seconds", "0.02", *arguments)

    def state(self) -> dict:
        return json.loads(self.state_file.read_text())

    def command(self, action: str, ts: float) -> None:
        temporary = self.command_file.with_suffix(".tmp")
        temporary.write_text(f'{{"action":"{action}","ts":{ts!r}}}')
        os.replace(temporary, self.command_file)

    def let_it_turn(self) -> None:
        """Returns when the service has gone through its loop twice: it restores a lost state file."""
        for _ in range(2):
            self.state_file.unlink()
            wait_for(self.state_file.exists, "the state file to come back")


class Reply:
    def __init__(self, response: http.client.HTTPResponse):
        self.status, self.headers, self.body = response.status, response.headers, response.read()

    def json(self):
        return json.loads(self.body)


class Web(Child):
    def __init__(self, case: SandboxCase, *arguments: str):
        super().__init__(case, "web.py", "--port", "0", *arguments)
        self.port = int(self.ready.rpartition(":")[2])

    def begin(self, method: str, path: str, body=None, headers=None, timeout=8.0) -> http.client.HTTPConnection:
        """A request whose answer is not read yet. A body that is no text goes as JSON."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=timeout)
        text = body if body is None or isinstance(body, str) else json.dumps(body)
        connection.request(method, path, text and text.encode(), headers or {})
        return connection

    def ask(self, *request, **how) -> Reply:
        connection = self.begin(*request, **how)
        try:
            return Reply(connection.getresponse())
        finally:
            connection.close()

    def control(self, name: str, **body):
        """What the control answers; fails unless it obeys."""
        reply = self.ask("POST", f"/sandbox/{name}", body)
        assert reply.status == 200, reply.body
        return reply.json()

    def shown(self, name: str):
        return self.ask("GET", f"/sandbox/{name}").json()

    def as_user(self, user: accounts.User, **how) -> dict:
        token = self.control("tokens", email=user.email, **how)["access_token"]
        return {"apikey": accounts.ANONYMOUS_KEY, "Authorization": f"Bearer {token}"}
