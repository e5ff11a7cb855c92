"""Parts of the desktop that take calls and never answer."""

from __future__ import annotations

import socket

from session import PROGRAM, JourneyTest
from waiting import wait_for


class Bus(JourneyTest):
    def test_a_session_bus_that_never_answers_holds_up_nothing(self):
        for backlog, label in ((8, "takes calls"), (0, "takes none")):
            with self.case(label):
                session = self.open_session(program=False, state={"status": "idle"})
                dead = socket.socket(socket.AF_UNIX)
                self.addCleanup(dead.close)
                path = str(session.home / "bus")
                dead.bind(path)
                dead.listen(backlog)
                waiting = socket.socket(socket.AF_UNIX)  # with no room in the queue, nobody else gets in
                self.addCleanup(waiting.close)
                waiting.connect(path)
                session.start("murmeli", [str(PROGRAM)],
                              environment={**session.environment, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={path}"})
                icon = wait_for(session.screen.icon, "the icon", 6)
                session.screen.click(*icon.middle)
                wait_for(lambda: any(box.width > 300 and box.height > 400 for box in session.screen.windows()),
                         "the panel", 3)
                session.close()
