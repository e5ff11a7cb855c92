"""A desktop of one's own: display, window manager, compositor, tray, buses, the service, and Murmeli in it."""

from __future__ import annotations

import ctypes
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import unittest
import urllib.request
from contextlib import contextmanager
from pathlib import Path
from types import MethodType

from accessibility import Tree
from screen import Rectangle, Screen
from waiting import at_rest, wait_for

REPOSITORY = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("MURMELI_BIN", REPOSITORY / "build/dev/bin/murmeli"))
EVIDENCE = REPOSITORY / "build" / "journeys"
PYTHON = "/usr/bin/python3"  # the one that has gi
ORB_NAMES = ("Начать запись", "Остановить запись", "Start recording", "Stop recording")

# No service folders: nothing but what the journey starts may answer on the session bus.
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={path}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""

CALL_RECORDER = '#!/bin/sh\nprintf "%s\\n" "$@" >> "$0.calls"\n'


def command_line(pid: int) -> str:
    """As everybody on the machine may read it; empty once the process has ended."""
    try:
        return Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode("utf-8", "replace").strip()
    except OSError:
        return ""


def selection_has_owner(display: str, name: str) -> bool:
    """Whether a compositor or a tray has announced itself on the display."""
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    x11.XInternAtom.restype = ctypes.c_ulong
    x11.XGetSelectionOwner.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
    x11.XGetSelectionOwner.restype = ctypes.c_ulong
    x11.XCloseDisplay.argtypes = [ctypes.c_void_p]
    connection = x11.XOpenDisplay(display.encode())
    if not connection:
        return False
    try:
        return bool(x11.XGetSelectionOwner(connection, x11.XInternAtom(connection, name.encode(), 0)))
    finally:
        x11.XCloseDisplay(connection)


class Session:
    opened: list[Session] = []

    def __init__(self, *, tray=True, engine: list[str] | None = None, notes=True, language="ru",
                 prefs: dict | None = None, state: dict | None = None, portal: list[str] | None = None,
                 program=True, installed: bool | None = None, web: list[str] | None = None, keyring=False):
        self._wants = {"tray": tray, "engine": engine, "portal": portal, "program": program, "web": web,
                       "keyring": keyring}
        self._makes = {"notes": notes, "prefs": prefs, "state": state,
                       "installed": notes if installed is None else installed}
        self._language = language
        self._processes: list[tuple[str, subprocess.Popen]] = []
        self._logs: list = []
        self._has_tray = False

    # What the journey looks at.

    def notifications(self) -> list[str]:
        """The lines of the notifications log without their times."""
        log = self.logs / "notifications.log"
        return [line.partition(" ")[2] for line in log.read_text("utf-8").splitlines()] if log.exists() else []

    def state(self) -> dict:
        return json.loads(self.state_file.read_text("utf-8"))

    def status(self) -> str:
        return self.state()["status"]

    def preferences(self) -> dict:
        return json.loads(self.prefs_file.read_text("utf-8")) if self.prefs_file.exists() else {}

    def wait_preference(self, key: str, value) -> None:
        wait_for(lambda: self.preferences().get(key) == value, f"{key} to be {value} in the file")

    def processes_in_home(self) -> dict[int, str]:
        """What the session's home is the home of, by process number, and how each was called."""
        found = {}
        for folder in Path("/proc").glob("[0-9]*"):
            try:
                if f"HOME={self.home}".encode() in (folder / "environ").read_bytes().split(b"\0"):
                    found[int(folder.name)] = command_line(int(folder.name))
            except OSError:
                continue  # it has ended meanwhile, or is somebody else's
        # The desktop starts its registry when first somebody tells of himself, whoever that is.
        return {pid: line for pid, line in found.items() if "at-spi2-registryd" not in line}

    def program_log(self) -> str:
        return (self.folder / "murmeli.log").read_text("utf-8")

    def calls(self, tool: str) -> list[str]:
        """Every argument that this tool of the desktop was started with."""
        file = self._tools / f"{tool}.calls"
        return file.read_text("utf-8").splitlines() if file.exists() else []

    def opened_urls(self) -> list[str]:
        return self.calls("xdg-open")

    # What the service does.

    def write(self, path: Path, content: str | dict) -> None:
        """In one step, as the service does it."""
        text = content if isinstance(content, str) else json.dumps(content, ensure_ascii=False)
        temporary = path.with_name(f".{path.name}.new")
        temporary.write_text(text, "utf-8")
        os.replace(temporary, path)

    def write_state(self, **state) -> None:
        self.write(self.state_file, state)

    # Life of the session.

    def __enter__(self) -> Session:
        self.folder = Path(tempfile.mkdtemp(prefix="mj"))
        self.home = self.folder / "home"
        self.notes = self.home / "MeetingNotes"
        self.logs = self.notes / "logs"
        self.command_file = self.notes / "command.json"
        self.flag_file = self.notes / "auth_required.flag"
        self.prefs_file = self.notes / "prefs.json"
        self.state_file = self.notes / "state.json"
        self._runtime = self.folder / "run"
        self._tools = self.folder / "bin"
        for folder in (self.home, self._runtime, self._tools, self.folder / "service"):
            folder.mkdir(mode=0o700)
        for name in ("xdg-open", "xdg-email"):
            tool = self._tools / name
            tool.write_text(CALL_RECORDER, "utf-8")
            tool.chmod(0o700)
        if self._makes["notes"]:
            self.logs.mkdir(parents=True)
        if self._makes["installed"]:
            self.pretend_installed()
        if self._makes["prefs"] is not None:
            self.write(self.prefs_file, self._makes["prefs"])
        if self._makes["state"] is not None:
            self.write(self.state_file, self._makes["state"])
        Session.opened.append(self)
        try:
            self._start_desktop()
        except BaseException:
            self.keep_evidence("start")
            self.close()
            raise
        return self

    def __exit__(self, *_) -> None:
        self.close()

    def _start_desktop(self) -> None:
        self.display = ""
        self.environment = {
            "PATH": f"{self._tools}:{os.environ.get('PATH', '/usr/bin:/bin')}",
            "HOME": str(self.home),
            "XDG_RUNTIME_DIR": str(self._runtime),
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self._runtime}/bus",
            "LANG": "C.UTF-8",
            "LANGUAGE": self._language,
            "NO_AT_BRIDGE": "1",
            "QT_QPA_PLATFORM": "xcb",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            **self._addresses("http://127.0.0.1:9"),  # nobody is there until a web service is
        }
        self._start_display()
        configuration = self.folder / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(path=self._runtime / "bus"), "utf-8")
        self.start("bus", ["dbus-daemon", f"--config-file={configuration}", "--nofork", "--nopidfile"])
        self.start("openbox", ["openbox", "--sm-disable"])
        wait_for((self._runtime / "bus").exists, "the session bus")
        self.start("accessibility", ["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])
        self.screen = Screen(self.environment)
        wait_for(self.screen.has_window_manager, "the window manager")
        # With the first key the display changes keyboards, and the window manager takes its shortcuts anew.
        self.screen.key("Shift_L")
        self.start("picom", ["picom", "--backend", "xrender", "--config", "/dev/null"])
        if self._wants["tray"]:
            self.start_tray()
        wait_for(lambda: selection_has_owner(self.display, "_NET_WM_CM_S0"), "the compositor")
        bus = self.environment["DBUS_SESSION_BUS_ADDRESS"]
        self.tree = wait_for(lambda: Tree.open(bus), "the accessibility bus")
        if self._wants["engine"] is not None:
            self.start_engine(*self._wants["engine"])
        if self._wants["portal"] is not None:
            self.start_portal(*self._wants["portal"])
        if self._wants["keyring"]:
            self.start_keyring()
        if self._wants["web"] is not None:
            self.start_web(*self._wants["web"])
        if self._wants["program"]:
            self.start_program()

    @staticmethod
    def _addresses(origin: str) -> dict[str, str]:
        return {"MURMELI_WEB_ORIGIN": origin, "MURMELI_ACCOUNT_SITE": origin + "/account",
                "MURMELI_BACKEND": origin, "MURMELI_BOT_LINK": origin + "/bot"}

    def _start_display(self) -> None:
        # The server takes the first free number by itself: two sessions never fight for one.
        self.start("display", ["Xvfb", "-displayfd", "1", "-screen", "0", "1280x900x24", "-nolisten", "tcp",
                               "-noreset"])
        log = self.folder / "display.log"
        number = wait_for(lambda: re.search(rb"^(\d+)\n", log.read_bytes(), re.MULTILINE), "the display")[1]
        self.display = self.environment["DISPLAY"] = f":{int(number)}"

    def start(self, name: str, command: list[str], *, environment: dict | None = None, **options) -> subprocess.Popen:
        log = open(self.folder / f"{name}.log", "ab")
        self._logs.append(log)
        process = subprocess.Popen(
            # Whatever ends this run, nothing that it started stays behind.
            ["setpriv", "--pdeathsig", "KILL", *command], env=environment or self.environment,
            cwd=self.folder, stdout=log, stderr=log, start_new_session=True,
            **{"stdin": subprocess.DEVNULL, **options})
        self._processes.append((name, process))
        return process

    def stop(self, process: subprocess.Popen) -> None:
        """Ends the process with the children in its group."""
        for number in (signal.SIGCONT, signal.SIGTERM):
            _signal_group(process, number)
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            pass
        _signal_group(process, signal.SIGKILL)
        process.wait(5)
        if process.stdin:
            process.stdin.close()
        self._processes = [entry for entry in self._processes if entry[1] is not process]

    def start_tray(self) -> subprocess.Popen:
        tray = self.start("tray", ["trayer", "--edge", "top", "--align", "right", "--SetDockType", "true",
                                   "--SetPartialStrut", "true", "--widthtype", "request", "--height", "24",
                                   "--tint", "0x15161b", "--transparent", "true", "--alpha", "0"])
        wait_for(lambda: selection_has_owner(self.display, "_NET_SYSTEM_TRAY_S0"), "the tray")
        self._has_tray = True
        if any(name == "murmeli" and process.poll() is None for name, process in self._processes):
            self.wait_icon_at_rest()
        return tray

    def start_engine(self, *arguments: str) -> None:
        # The stand-in refuses to live in the folder that $HOME names.
        environment = {**self.environment, "HOME": str(self.folder / "service")}
        self.start("engine", [PYTHON, str(REPOSITORY / "sandbox" / "engine.py"), "--home", str(self.home),
                              "--poll-seconds", "0.05", *arguments], environment=environment)
        wait_for(self.state_file.exists, "the service's state")

    def start_web(self, *arguments: str) -> None:
        """The web service, the account site and the backend; the program's addresses lead there."""
        environment = {**self.environment, "HOME": str(self.folder / "service"), "PYTHONUNBUFFERED": "1"}
        log = self.folder / "web.log"
        said_before = log.stat().st_size if log.exists() else 0
        self.web = self.start("web", [PYTHON, str(REPOSITORY / "sandbox" / "web.py"), "--home", str(self.home),
                                      "--port", "0", "--pace", "0.05", *arguments], environment=environment)
        said = wait_for(lambda: re.search(rb"ready at (http://\S+)", log.read_bytes()[said_before:]), "the web service")
        self.origin = said[1].decode()
        self.environment.update(self._addresses(self.origin))

    def ask_web(self, path: str, body: dict | None = None):
        """What the sandbox's control answers; with a body it is told something."""
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.origin + path, data, {"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=10) as answer:
            return json.loads(answer.read() or b"null")

    def start_keyring(self, *, locked=False) -> None:
        """A secret store on this session's bus; what an open one has stored, a locked one keeps to itself."""
        command = ["gnome-keyring-daemon", "--foreground", "--components=secrets"]
        self.keyring = self.start("keyring", command if locked else [*command, "--unlock"], stdin=subprocess.PIPE)
        self.keyring.stdin.write(b"" if locked else b"sandbox")
        self.keyring.stdin.close()
        wait_for(lambda: self.tree.session_has("org.freedesktop.secrets"), "the secret store")

    def pretend_installed(self) -> None:
        """The files by which the program knows that an engine is there."""
        python = self.notes / ".venv/bin/python"
        python.parent.mkdir(parents=True)
        python.symlink_to(PYTHON)
        (self.home / ".cache/huggingface/hub").mkdir(parents=True)

    def start_portal(self, *arguments: str) -> None:
        self.portal = self.start("portal", [PYTHON, str(Path(__file__).with_name("settings_portal.py")), *arguments],
                                 stdin=subprocess.PIPE)
        wait_for(lambda: self.tree.session_has("org.freedesktop.portal.Desktop"), "the settings portal")

    def start_program(self, *arguments: str) -> None:
        self.program = self.start("murmeli", [str(PROGRAM), *arguments])
        self.tree.follow(self.program.pid)
        wait_for(self._has_started, "Murmeli to show its icon and its accessibility tree")
        if self._has_tray:
            self.wait_icon_at_rest()

    def _has_started(self) -> bool:
        if self.program.poll() is not None:
            raise AssertionError(f"Murmeli has ended with {self.program.returncode} at its start")
        return bool((self.screen.icon() or not self._has_tray) and self.tree.application())

    def run_program(self, *arguments: str, environment: dict | None = None) -> subprocess.CompletedProcess:
        """One more start, which is expected to end by itself."""
        return subprocess.run([str(PROGRAM), *arguments], env=environment or self.environment, cwd=self.folder,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=15, check=False)

    def keep_evidence(self, test: str) -> None:
        folder = EVIDENCE / test
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        for log in self.folder.glob("*.log"):
            shutil.copy(log, folder)
        if self.display:
            subprocess.run(["import", "-window", "root", str(folder / "screen.png")], check=False,
                           env={**self.environment, "HOME": str(folder)}, timeout=20, capture_output=True)
        if hasattr(self, "tree"):
            try:
                told = "\n".join(map(str, self.tree.nodes()))
            except AssertionError as error:
                told = str(error)
            (folder / "tree.txt").write_text(told, "utf-8")

    def close(self) -> None:
        if self in Session.opened:
            Session.opened.remove(self)
        if hasattr(self, "tree"):
            self.tree.close()
        for _, process in reversed(self._processes[:]):
            self.stop(process)
        for log in self._logs:
            log.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    # What a user does.

    def icon(self) -> Rectangle:
        return wait_for(self.screen.icon, "the icon in the tray")

    def wait_icon_at_rest(self) -> None:
        """A tray that takes an icon in shifts it about for a moment; a press would miss it."""
        at_rest(self.screen.icon, "the icon in the tray", 0.15)

    def press_icon(self, button=1) -> None:
        self.screen.click(*self.icon().middle, button=button)

    def orb(self):
        return self.tree.find("push button", ORB_NAMES)

    def panel_is_open(self) -> bool:
        return self.orb() is not None

    def wait_open(self, seconds=5):
        return wait_for(self.orb, "the panel", seconds)

    def wait_closed(self, seconds=5) -> None:
        wait_for(lambda: not self.panel_is_open(), "the panel to close", seconds)

    def open_panel(self):
        self.press_icon()
        orb = self.wait_open()
        self.look_away()
        return orb

    def look_away(self) -> None:
        """Takes the pointer off the panel, so that nothing is hovered."""
        self.screen.move(300, 700)

    def tab_to(self, name) -> None:
        """Goes by the keyboard alone to what has this or a fitting name, once around at the most."""
        fits = name if callable(name) else lambda found: found == name
        was = wait_for(self.tree.focused, "a visible focus, whatever has just vanished", 2)
        for _ in range(80):
            if fits(was.name):
                return
            self.screen.key("Tab")
            was = wait_for(lambda: (now := self.tree.focused()) and now.path != was.path and now, "the focus to move")
        raise AssertionError(f"the keyboard does not reach «{name}», but {was}")

    def put_in_clipboard(self, text: str) -> None:
        owner = self.start("clipboard", ["xclip", "-quiet", "-selection", "clipboard", "-in"], stdin=subprocess.PIPE)
        owner.stdin.write(text.encode())
        owner.stdin.close()
        wait_for(lambda: self.clipboard() == text, "the clipboard to hold the text")

    def clipboard(self, target="UTF8_STRING") -> str:
        told = subprocess.run(["xclip", "-selection", "clipboard", "-out", "-target", target], timeout=10, check=False,
                              env=self.environment, stdin=subprocess.DEVNULL, capture_output=True)
        return told.stdout.decode() if told.returncode == 0 else ""

    def close_window(self) -> None:
        """As the window manager does it."""
        wait_for(self.screen.has_active_window, "the window manager to know the window")
        self.screen.key("alt+F4")

    def press(self, role: str, name) -> None:
        def place() -> Rectangle | None:
            node = self.tree.find(role, name)
            return node and node.extents

        # A press on what still moves would miss it.
        self.screen.click(*at_rest(place, f"{role or 'something'} «{name}»", 0.1).middle)
        self.look_away()


def _signal_group(process: subprocess.Popen, number: int) -> None:
    try:
        os.killpg(process.pid, number)  # every process leads a group of its own
    except ProcessLookupError:
        pass


class JourneyTest(unittest.TestCase):
    """Keeps a screenshot and the outputs of whatever session is open when a test fails."""

    longMessage = True
    maxDiff = None

    def __init__(self, method: str):
        super().__init__(method)
        keeping = self._evidence(self.id())(getattr(type(self), method))
        setattr(self, method, MethodType(keeping, self))

    def open_session(self, **options) -> Session:
        return self.enterContext(Session(**options))

    @contextmanager
    def case(self, label: str):
        with self.subTest(label), self._evidence(f"{self.id()}.{label}"):
            yield

    @contextmanager
    def _evidence(self, test: str):
        try:
            yield
        except Exception:
            for session in Session.opened:
                session.keep_evidence(re.sub(r"[^\w.-]+", "_", test))
            raise
