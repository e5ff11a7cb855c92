#!/usr/bin/env python3
"""Stands in for everything on the network: the account site, the backend, the web service, the assistant."""

from __future__ import annotations

import argparse
import fcntl
import json
import shlex
import signal
import sys
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import unquote, urlsplit

import assist
import backend
import exchange
import homes
import pages
from account_site import AccountSite
from accounts import Accounts
from assist import Assist
from backend import Backend
from control import PREFIX as CONTROL, Control
from engine import seconds
from exchange import Answer, Failed, Request, as_json, as_page
from faults import Faults
from homes import Home, say
from releases import Releases, Scripts
from service import Service

LARGEST_BODY = 1024 * 1024
# Without these nobody could take a fault back that covers everything.
NEVER_FAULTY = ("/", "/sandbox/faults", "/sandbox/requests")


class Server(ThreadingHTTPServer):
    daemon_threads = True  # a connection that hangs must not hold up the end

    def __init__(self, port: int):
        super().__init__(("127.0.0.1", port), Handler)
        self.origin = f"http://127.0.0.1:{self.server_port}"
        self.stopping = threading.Event()

    def equip(self, home: Home, arguments: argparse.Namespace, faults: Faults) -> None:
        self.service = Service(home, shlex.split(arguments.engine_arguments))
        kept = Accounts(home.folder / ".sandbox-web.json")
        self.accounts, self.backend = AccountSite(kept), Backend(kept)
        self.releases = Releases(arguments.release)
        self.scripts = Scripts(home.folder, self.origin, arguments.pace, arguments.fail_install)
        self.assist = Assist(arguments.assist_seconds, self.stopping)
        self.faults = faults
        self.control = Control(home.folder, kept, self.releases, self.scripts, faults, self.service)

    def route(self, request: Request) -> Answer:
        path = request.path
        if path.startswith(backend.PREFIX):
            return self.backend.answer(request)
        if path.startswith(assist.PREFIX):
            return self.assist.answer(request)
        answer = None
        if path == "/account":
            answer = self.accounts.answer(request)
        elif path == "/" or path.startswith(CONTROL):
            answer = self.control.answer(request)
        elif request.method in ("GET", "HEAD"):
            answer = self.published(path, request)
        return answer or as_json({"message": f"nothing is at {path}"}, 404)

    def published(self, path: str, request: Request) -> Answer | None:
        if path == "/app/version.json":
            return self.releases.answer()
        if path in ("/app/install.sh", "/app/update.sh"):
            return self.scripts.script(path.rpartition("/")[2])
        if path.startswith("/app/engine/"):
            return self.scripts.engine_file(path.removeprefix("/app/engine/"))
        return as_page(bot_page(request)) if path == "/bot" else None

    def note(self, request: Request) -> None:
        """Keeps what a client asked, for tests and the sandbox's page, but none of its tokens."""
        if request.path == "/" or request.path.startswith(CONTROL):
            return
        try:
            body = json.loads(exchange.without_tokens(json.dumps(request.json())))
        except ValueError:
            body = None
        self.control.seen.append({
            "method": request.method, "path": exchange.without_tokens(request.path),
            "query": exchange.without_tokens(request.query),
            "apikey": backend.key_given(request), "bearer": backend.bearer_given(request), "body": body})

    def handle_error(self, request, client_address) -> None:
        error = sys.exc_info()[1]
        if not isinstance(error, OSError):  # a client may leave whenever it likes
            say(f"failed on a request: {type(error).__name__}")


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True  # head and body are two writes
    server: Server

    def serve(self) -> None:
        request = self.read_request()
        if request is None:
            return
        self.server.note(request)
        fault = None if request.path in NEVER_FAULTY else self.server.faults.of(request.path)
        if fault and (act := fault.act()):
            self.told(request, fault.text)
            self.close_connection = True
            act(self.connection, self.server.stopping)
            return
        if fault and fault.kind == "delay":
            self.server.stopping.wait(float(fault.value))
        answer = fault and fault.answer() or self.answer(request)
        self.told(request, f"{answer.status} ({fault.text})" if fault else str(answer.status))
        self.send(answer)

    do_GET = do_HEAD = do_POST = do_PATCH = do_PUT = do_DELETE = do_OPTIONS = serve

    def read_request(self) -> Request | None:
        """None when it was refused at once; then the connection is of no use either."""
        length = self.headers.get("Content-Length", "0")
        if "Transfer-Encoding" in self.headers:
            return self.refuse(411, "a body needs its length")
        if not (length.isascii() and length.isdigit()):
            return self.refuse(400, "the body's length is no number")
        if len(length) > 9 or int(length) > LARGEST_BODY:
            return self.refuse(413, "the body is too large")
        body = self.rfile.read(int(length))
        parts = urlsplit("//host/" + self.path.lstrip("/"))
        return Request(self.command, unquote(parts.path), parts.query, self.headers, body)

    def refuse(self, status: int, message: str) -> None:
        self.close_connection = True
        self.send(as_json({"message": message}, status, Connection="close"))

    def answer(self, request: Request) -> Answer:
        # A page from elsewhere that is open in the same browser has no business here.
        if request.method not in ("GET", "HEAD") and self.headers.get("Origin") not in self.own_origins():
            return as_json({"message": "this comes from another site"}, 403)
        try:
            return self.server.route(request)
        except Failed as failed:
            return failed.answer

    def own_origins(self) -> tuple[str | None, ...]:
        return None, self.server.origin, self.server.origin.replace("127.0.0.1", "localhost")

    def send(self, answer: Answer) -> None:
        bare = answer.status in (204, 304)
        self.send_response(answer.status)
        self.send_header("Cache-Control", "no-store")
        if not bare:
            self.send_header("Content-Type", answer.type)
            self.send_header("Content-Length", str(len(answer.body)))
        for name, value in answer.headers.items():
            self.send_header(name, value)
        self.end_headers()
        if not bare and self.command != "HEAD":
            self.wfile.write(answer.body)

    def told(self, request: Request, what: str) -> None:
        say(exchange.without_tokens(f"{request.method} {request.path!r}: {what}"))

    def log_message(self, format, *arguments) -> None:
        pass  # its lines hold the whole request line, and that may hold a token


def bot_page(request: Request) -> str:
    if pages.language_of(request.headers.get("Accept-Language", "")) == "en":
        return pages.frame("Murmeli bot", "<h1>The Murmeli bot</h1><p>Here a Telegram chat would open. In the sandbox "
                           'a chat is connected on the <a href="/account">account site</a>.</p>', "en", "sandbox")
    return pages.frame("Бот Murmeli", "<h1>Бот Murmeli</h1><p>Здесь открылся бы чат в Telegram. В песочнице чат "
                       'подключают на <a href="/account">сайте аккаунта</a>.</p>', "ru", "песочница")


def serve(server: Server) -> None:
    for number in (signal.SIGTERM, signal.SIGINT):
        signal.signal(number, lambda *_: server.stopping.set())
    threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.1}, daemon=True).start()
    say(f"ready at {server.origin}")
    server.stopping.wait()
    server.shutdown()
    server.server_close()
    server.service.end()
    say("finished")


def arguments_given() -> tuple[argparse.Namespace, Faults]:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--home", required=True, metavar="DIR")
    parser.add_argument("--port", type=int, default=8460, help="0: any that is free")
    parser.add_argument("--release", default="0.8.0", metavar="VERSION", help="the published one")
    parser.add_argument("--pace", type=seconds, default=0.5, metavar="S", help="how long a step of the installer takes")
    parser.add_argument("--assist-seconds", type=seconds, default=1.2, metavar="S",
                        help="how long a remark takes; an analysis takes three times as long")
    parser.add_argument("--fail-install", metavar="STEP")
    parser.add_argument("--engine-arguments", default="", metavar="TEXT")
    parser.add_argument("--fault", action="append", default=[], metavar="PATH=FAULT")
    arguments = parser.parse_args()
    faults = Faults()
    try:
        for text in arguments.fault:
            path, _, fault = text.partition("=")
            faults.set(path, fault)
        Scripts.check_step(arguments.fail_install)
        shlex.split(arguments.engine_arguments)
    except ValueError as error:
        parser.error(str(error))
    return arguments, faults


def main() -> int:
    arguments, faults = arguments_given()
    try:
        home = homes.open_home(arguments.home)
        with open(home.root / ".sandbox-web.lock", "w") as lock:
            # Two servers in one home would each write what the other does not know.
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except OSError as error:
                raise homes.Refused(f"another server runs in {home.folder}") from error
            try:
                server = Server(arguments.port)
            except (OSError, OverflowError) as error:
                raise homes.Refused(f"cannot listen on port {arguments.port}: {error}") from error
            server.equip(home, arguments, faults)
            serve(server)
    except homes.Refused as refusal:
        print(f"sandbox: refused: {refusal}", file=sys.stderr, flush=True)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
