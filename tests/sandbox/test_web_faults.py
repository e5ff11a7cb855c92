import http.client
import json
import socket
import time
import unittest

from web_case import Web, WebCase

PATH = "/app/version.json"


class Faults(WebCase):
    def raw(self, web: Web, timeout: float = 8) -> socket.socket:
        """A connection on which the release was asked for, and nothing is read yet."""
        connection = socket.create_connection(("127.0.0.1", web.port), timeout=timeout)
        self.addCleanup(connection.close)
        connection.sendall(f"GET {PATH} HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n".encode())
        return connection

    def test_answers_that_are_wrong(self):
        web = self.web()
        cases = (
            ("status=500", 500, lambda reply: reply.json()["message"]),
            ("status=204", 204, lambda reply: reply.body == b""),
            ("html", 200, lambda reply: reply.body.startswith(b"<!doctype html>")),
            ("empty", 200, lambda reply: reply.headers["Content-Length"] == "0"),
            ("array", 200, lambda reply: reply.json() == []),
            ("garbage", 200, lambda reply: b"\xff" in reply.body),
            ("huge=300001", 200, lambda reply: reply.json() == [] and len(reply.body) == 300001),
            ("redirect=https://example.org/x", 302, lambda reply: reply.headers["Location"] == "https://example.org/x"),
        )
        for fault, status, fits in cases:
            with self.subTest(fault):
                web.control("faults", path="/app", fault=fault)
                reply = web.get(PATH)
                self.assertEqual(reply.status, status)
                self.assertTrue(fits(reply))
        web.control("faults", path="/app", fault=None)
        self.assertEqual(web.get(PATH).json()["version"], "0.8.0")

    def test_a_late_answer(self):
        web = self.web("--fault", f"{PATH}=delay=0.4")
        before = time.monotonic()
        self.assertEqual(web.get(PATH).json()["version"], "0.8.0")
        self.assertGreaterEqual(time.monotonic() - before, 0.4)

    def test_an_answer_that_is_cut(self):
        web = self.web("--fault", f"{PATH}=cut")
        with self.assertRaises(http.client.IncompleteRead) as caught:
            web.get(PATH)
        self.assertTrue(caught.exception.partial)

    def test_no_answer_at_all(self):
        web = self.web("--fault", f"{PATH}=hang")
        connection = self.raw(web, timeout=0.3)
        with self.assertRaises(TimeoutError):
            connection.recv(1)
        web.control("faults", path=PATH, fault="reset")
        with self.assertRaises(ConnectionResetError):
            self.raw(web).recv(1)

    def test_answers_without_an_end(self):
        web = self.web("--fault", f"{PATH}=endless")
        connection, got = self.raw(web), 0
        while got < 4_000_000:
            block = connection.recv(1 << 20)
            self.assertTrue(block)
            got += len(block)
        connection.close()
        web.control("faults", path=PATH, fault="trickle")
        connection, got = self.raw(web), b""
        while not got.endswith(b"\r\n\r\n[ "):
            got += connection.recv(1)
        self.assertNotIn(b"Content-Length", got)
        # A client that left makes no noise.
        web.end()
        self.assertNotIn("failed", web.output.read_text())

    def test_the_longest_beginning_of_the_path_counts(self):
        web = self.web("--fault", "/=status=500", "--fault", "/app/=status=501", "--fault", f"{PATH}=array")
        paths = ("/bot", "/rest/v1/x", "/app/install.sh", PATH, "/sandbox/install")
        self.assertEqual([web.get(path).status for path in paths], [500, 500, 501, 200, 500])
        self.assertEqual(web.get("/").status, 200)
        self.assertEqual(web.control("faults", path="/", fault=None), {"/app/": "status=501", PATH: "array"})
        self.assertEqual(web.control("faults"), {})
        self.assertEqual([web.get(path).status for path in ("/bot", PATH)], [200, 200])

    def test_what_is_no_fault(self):
        web = self.web()
        for fault in ("", "rain", "hang=1", "delay", "delay=-1", "delay=nan", "delay=inf", "status=99", "status=x",
                      "huge=1", "huge=1e9", "redirect=", "redirect=/\r\nX: y", "redirect=/я"):
            with self.subTest(fault):
                reply = web.ask("POST", "/sandbox/faults", json.dumps({"path": "/", "fault": fault}))
                self.assertEqual(reply.status, 400)
        self.assertEqual(web.shown("faults"), {})


if __name__ == "__main__":
    unittest.main()
