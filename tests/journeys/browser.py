"""A real browser without a window, told what to do over a pipe."""

from __future__ import annotations

import json
import os
import select
import shutil
import time

from session import PROGRAM, REPOSITORY, Session
from waiting import wait_for

PATIENCE = 20  # seconds; a browser's first start is slow


class Browser:
    def __init__(self, session: Session):
        home = session.folder / "browser"
        home.mkdir()
        from_us, self._to_browser = os.pipe()
        self._from_browser, to_us = os.pipe()
        self._read = b""
        self._calls = 0
        # The browser wants its pipes under these very numbers.
        wiring = f'exec chromium "$@" 3<&{from_us} 4>&{to_us}'
        self._process = session.start(
            "browser", ["bash", "-c", wiring, "browser", "--remote-debugging-pipe", "--headless=new", "--disable-gpu",
                        "--no-sandbox", "--no-first-run", "--disable-background-networking", "--disable-extensions",
                        "--disable-dev-shm-usage", f"--user-data-dir={home}", "about:blank"],
            environment={**session.environment, "HOME": str(home)}, pass_fds=[from_us, to_us])
        os.close(from_us)
        os.close(to_us)
        self._session = session
        self._page = ""
        self._page = self._call("Target.attachToTarget", targetId=self._first_page(), flatten=True)["sessionId"]

    def close(self) -> None:
        self._session.stop(self._process)
        os.close(self._to_browser)
        os.close(self._from_browser)

    def go(self, url: str) -> None:
        self._call("Page.navigate", url=url)
        self.wait(f"location.href === {json.dumps(url)} && document.readyState === 'complete'")

    def evaluate(self, expression: str):
        try:
            answer = self._call("Runtime.evaluate", expression=expression, returnByValue=True)
        except AssertionError as error:
            if "navigated" in str(error):
                return None  # the page left while it was being asked; the next one answers
            raise
        return answer["result"].get("value")

    def wait(self, expression: str):
        return wait_for(lambda: self.evaluate(expression), f"the page to be so: {expression}", PATIENCE)

    def fill(self, selector: str, text: str) -> None:
        """As a person does: into the field that has the focus."""
        self.evaluate(f"field = document.querySelector({json.dumps(selector)}), field.focus(), field.select()")
        self._call("Input.insertText", text=text)

    def click(self, selector: str) -> None:
        self.evaluate(f"document.querySelector({json.dumps(selector)}).click()")

    def _first_page(self) -> str:
        def page() -> str | None:
            targets = self._call("Target.getTargets")["targetInfos"]
            return next((target["targetId"] for target in targets if target["type"] == "page"), None)

        return wait_for(page, "the browser's page")

    def _call(self, method: str, **parameters) -> dict:
        self._calls += 1
        message = {"id": self._calls, "method": method, "params": parameters}
        if self._page:
            message["sessionId"] = self._page
        os.write(self._to_browser, json.dumps(message).encode() + b"\0")
        deadline = time.monotonic() + PATIENCE
        while True:
            answer = self._next_message(deadline, method)
            if answer.get("id") == self._calls:
                if "error" in answer:
                    raise AssertionError(f"{method}: {answer['error']['message']}")
                return answer["result"]

    def _next_message(self, deadline: float, method: str) -> dict:
        while b"\0" not in self._read:
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([self._from_browser], [], [], left)[0]:
                raise AssertionError(f"the browser does not answer to {method}")
            more = os.read(self._from_browser, 65536)
            if not more:
                raise AssertionError("the browser has ended")
            self._read += more
        message, _, self._read = self._read.partition(b"\0")
        return json.loads(message)


def register_scheme(session: Session) -> None:
    """As an installation does it: the desktop starts the program with the addresses of its scheme."""
    applications = session.home / ".local/share/applications"
    applications.mkdir(parents=True)
    shutil.copy(REPOSITORY / "packaging" / "murmeli.desktop", applications)
    (session.folder / "bin" / "murmeli").symlink_to(PROGRAM)
