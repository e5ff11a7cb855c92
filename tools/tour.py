"""A short tour on a virtual display: what is pressed, what the service's files then hold, and pictures of it."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "journeys"))

import tray
from session import PYTHON, REPOSITORY, Session
from waiting import wait_for


class Tour:
    def __init__(self, session: Session, folder: Path):
        self.session = session
        self.folder = folder
        self.steps = 0

    def step(self, what: str) -> None:
        self.steps += 1
        print(f"\n{self.steps}. {what}", flush=True)

    def picture(self, name: str) -> None:
        path = self.folder / f"{self.steps}-{name}.png"
        subprocess.run(["import", "-window", "root", str(path)], env=self.session.environment, check=True)
        print(f"   picture: {path}", flush=True)

    def tell(self, path: Path) -> None:
        text = path.read_text("utf-8").strip() if path.exists() else "(not there)"
        print(f"   {path.relative_to(self.session.home)}: {text[:200]}", flush=True)

    def play(self) -> None:
        session = self.session
        summaries = set(session.logs.glob("*.protocol.json"))
        print(f"The sandbox holds {len(summaries)} sample meetings. The icon stands in the tray.", flush=True)
        subprocess.run(["xsetroot", "-solid", "#23242C"], env=session.environment, check=True)

        self.step("The setup installs the engine from the sandbox, step by step.")
        session.tree.wait("push button", "Всё равно начать", 60)
        self.picture("setup")
        session.press("push button", "Разрешить: Микрофон")
        session.tree.wait("panel", "Микрофон, доступ есть")
        session.press("push button", "Разрешить: Запись экрана")
        session.tree.wait("push button", "Начать")
        self.picture("permissions")
        session.press("push button", "Начать")
        session.wait_open()
        session.press_icon()
        session.wait_closed()

        self.step("A click on the icon opens the panel.")
        session.open_panel()
        self.tell(session.state_file)
        self.picture("panel")

        self.step("A press on the orb asks the service to record.")
        engine = int((session.notes / ".sandbox-engine.lock").read_text())
        os.kill(engine, signal.SIGSTOP)  # so that the request can be seen before it is taken
        session.press("push button", "Начать запись")
        wait_for(session.command_file.exists, "the request")
        self.tell(session.command_file)
        self.picture("starting")
        os.kill(engine, signal.SIGCONT)
        wait_for(lambda: session.status() == "recording", "the service to record")
        wait_for(lambda: tray.is_bright_red(session), "the red icon")
        wait_for(lambda: tray.is_dim_red(session), "the icon to blink")
        wait_for(lambda: "показано: Murmeli записывает встречу" in session.notifications(), "the toast")
        print("   the icon is red and blinks; a toast says so", flush=True)
        self.tell(session.state_file)
        self.picture("recording")

        self.step("Another press ends the recording.")
        session.press("push button", "Остановить запись")
        wait_for(lambda: session.status() == "processing", "the service to write it up")
        wait_for(lambda: tray.is_template(session), "the gear in the tray")
        session.tree.wait(None, "Готовлю протокол")
        self.tell(session.state_file)
        self.picture("processing")

        self.step("The service writes the meeting up.")
        added = wait_for(lambda: set(session.logs.glob("*.protocol.json")) - summaries, "the summary file", 30)
        wait_for(lambda: session.status() == "idle", "the service to be idle")
        session.tree.wait(None, "Готов к записи")
        for path in added:
            self.tell(path)
        print("   notifications.log:", *session.notifications(), sep="\n     ", flush=True)
        self.picture("idle-again")

        self.step("The interface speaks English as soon as the preference says so.")
        session.write(session.prefs_file, {"locale": "en"})
        session.tree.wait(None, "Ready to record")
        self.tell(session.prefs_file)
        self.picture("english")


def main() -> int:
    folder = Path(sys.argv[1] if len(sys.argv) > 1 else "build/tour")
    folder.mkdir(parents=True, exist_ok=True)
    arguments = "--engine-arguments=--poll-seconds 0.05 --processing-seconds 4"
    with Session(program=False, installed=False, keyring=True, web=[arguments]) as session:
        subprocess.run([PYTHON, str(REPOSITORY / "sandbox" / "library.py"), "--home", str(session.home)],
                       env={**session.environment, "HOME": str(session.home.parent)}, check=True,
                       stdout=subprocess.DEVNULL)
        session.start_program()
        Tour(session, folder).play()
    print(f"\nThat was the tour. The pictures are in {folder}.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
