#!/usr/bin/env python3
"""Start-up, memory, idle and opening figures of Murmeli beside other tray programs, in turn."""

import ctypes
import json
import os
import shutil
import statistics
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
BIN = ROOT / "build" / "optimised" / "bin"
os.environ["MURMELI_BIN"] = str(BIN / "murmeli")
sys.path.insert(0, str(ROOT / "tests" / "journeys"))

from main_window import SEARCH, fill, open_meeting, sign_in, summaries, write_library  # noqa: E402
from session import Session  # noqa: E402
from waiting import wait_for  # noqa: E402

ROUNDS = int(os.environ.get("ROUNDS", "5"))
OPENINGS = int(os.environ.get("OPENINGS", "100"))
IDLE_SECONDS = 20
RESTS = 40  # seconds after the start the first checks are done, and what they needed has gone
OPENING_MOVES = 0.13  # seconds
LET_GO = 250
KEEPASSXC = """[GUI]
ShowTrayIcon=true
MinimizeToTray=true
MinimizeOnStartup=true
"""


def through_setup(session: Session) -> None:
    last_button = "Всё равно начать"
    session.start_program("--setup")
    session.tree.wait("push button", last_button)
    wait_for(lambda: session.tree.focus_is_on(last_button), "the focus on the last button")
    session.screen.key("Return")
    session.wait_open()


def analysed(summary: Path) -> bool:
    """Some of the library's analyses are not what they should be."""
    try:
        stored = summary.with_name(summary.name.replace(".protocol.json", ".report.json")).read_text("utf-8")
        return isinstance(json.loads(stored), dict)
    except (OSError, ValueError):
        return False


class Attributes(ctypes.Structure):
    _fields_ = [("x", ctypes.c_int), ("y", ctypes.c_int), ("width", ctypes.c_int), ("height", ctypes.c_int),
                ("border_width", ctypes.c_int), ("depth", ctypes.c_int), ("visual", ctypes.c_void_p),
                ("root", ctypes.c_ulong), ("klass", ctypes.c_int), ("bit_gravity", ctypes.c_int),
                ("win_gravity", ctypes.c_int), ("backing_store", ctypes.c_int), ("backing_planes", ctypes.c_ulong),
                ("backing_pixel", ctypes.c_ulong), ("save_under", ctypes.c_int), ("colormap", ctypes.c_ulong),
                ("map_installed", ctypes.c_int), ("map_state", ctypes.c_int), ("rest", ctypes.c_long * 8)]


class ClassHint(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("klass", ctypes.c_char_p)]


class Display:
    """Looks at the windows of a display quickly enough to time them."""

    def __init__(self, name):
        self.x = ctypes.CDLL("libX11.so.6")
        self.test = ctypes.CDLL("libXtst.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        self._ignore = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda *_: 0)
        self.x.XSetErrorHandler(self._ignore)  # windows come and go while we look
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(name.encode()))
        self.root = self.x.XDefaultRootWindow(self.display)

    def _children(self, window):
        root, parent = ctypes.c_ulong(), ctypes.c_ulong()
        children, count = ctypes.POINTER(ctypes.c_ulong)(), ctypes.c_uint()
        if not self.x.XQueryTree(self.display, ctypes.c_ulong(window), ctypes.byref(root), ctypes.byref(parent),
                                 ctypes.byref(children), ctypes.byref(count)):
            return []
        found = list(children[:count.value]) if count.value else []
        if children:
            self.x.XFree(children)
        return found

    def visible(self, program, fits, window=None):
        for child in self._children(window or self.root):
            hint, attributes = ClassHint(), Attributes()
            if self.x.XGetClassHint(self.display, ctypes.c_ulong(child), ctypes.byref(hint)):
                ours = hint.name == program.encode()
                if ours and self.x.XGetWindowAttributes(self.display, ctypes.c_ulong(child), ctypes.byref(attributes)) \
                        and attributes.map_state == 2 and fits(attributes.width, attributes.height):
                    return True
            if self.visible(program, fits, child):
                return True
        return False

    def point(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, x, y, ctypes.c_ulong(0))
        self.x.XSync(self.display, 0)

    def press(self, x, y):
        self.point(x, y)
        time.sleep(0.05)
        for down in (1, 0):
            self.test.XTestFakeButtonEvent(self.display, 1, down, ctypes.c_ulong(0))
        self.x.XFlush(self.display)


def is_icon(width, height):
    return 8 <= width <= 64 and 8 <= height <= 64


def is_panel(width, height):
    return width > 300 and height > 400


def until(condition, seconds=20.0):
    start = time.perf_counter()
    while not condition():
        if time.perf_counter() - start > seconds:
            sys.exit("waited in vain for a window")
    return time.perf_counter() - start


def memory(pid):
    figures = {}
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
        name, value = line.split(":")
        figures[name] = int(value.split()[0]) / 1024
    return figures["Rss"], figures["Pss"], figures["Private_Dirty"]


def processor_seconds(pid):
    fields = Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def wake_ups(pid):
    status = Path(f"/proc/{pid}/task/{pid}/status").read_text()
    return int(status.split("voluntary_ctxt_switches:")[1].split()[0])


def holds(pid):
    """Descriptors and threads."""
    return tuple(len(os.listdir(f"/proc/{pid}/{folder}")) for folder in ("fd", "task"))


def renderer(pid):
    drivers = sorted({Path(line.split()[-1]).name for line in Path(f"/proc/{pid}/maps").read_text().splitlines()
                      if "_dri.so" in line or "libgallium" in line})
    return f"a graphics library ({', '.join(drivers)})" if drivers else "Qt Quick's own, in software"


def with_every_window():
    """What is held once every window, tab and pane has been open and the main window shows, and when all have gone."""
    with Session(program=False, web=["--release", "9.0.0"], prefs={"notifications": False},
                 state={"status": "recording", "since": time.time() - 60}) as session:
        write_library(session)
        sign_in(session)
        through_setup(session)  # and then the panel
        session.press("push button", "Обновить")
        session.tree.wait("status bar", "Доступно обновление")
        session.screen.key("Escape")
        session.tree.wait_gone("status bar", "Доступно обновление")
        session.open_panel()
        session.press("push button", "Открыть окно")
        session.tree.wait("frame", "Встречи")
        meeting = next(one for one in summaries(session) if one.members.get("language") == "ru" and analysed(one.path))
        fill(session, SEARCH, meeting.title)
        open_meeting(session, meeting.title)
        session.press("push button", "Разбор встречи")
        session.tree.wait("heading", "ГЛАВНОЕ — ЧТО ЛЕГКО ПРОПУСТИТЬ")
        session.screen.key("Escape", "Escape")
        session.screen.key("ctrl+2")
        session.tree.wait("heading", "Помощник")
        session.screen.key("ctrl+3")
        session.tree.wait("heading", "Настройки")
        session.screen.key("ctrl+1")
        session.press_icon()
        session.tree.wait("push button", "Настройки")
        session.press("push button", "Настройки")
        session.tree.wait("frame", "Настройки")
        session.screen.key("Escape")
        session.tree.wait_gone("frame", "Настройки")
        time.sleep(2.5)
        shown = memory(session.program.pid)
        session.close_window()
        session.tree.wait_gone("frame", "Встречи")
        time.sleep(LET_GO)
        return shown, memory(session.program.pid)


def open_and_close(display, icon):
    """Seconds from the click to the panel."""
    display.press(*icon)
    seconds = until(lambda: display.visible("murmeli", is_panel))
    time.sleep(0.6)
    display.press(*icon)
    until(lambda: not display.visible("murmeli", is_panel))
    display.point(600, 700)  # a pointer that rests on the icon is one that may press it
    time.sleep(0.5)
    return seconds


def frame_gaps(session, display, icon, openings=10):
    """The longest wait for a picture, in milliseconds, in each of some openings of the panel."""
    log, gaps = session.folder / "murmeli.log", []
    for _ in range(openings):
        start = log.stat().st_size
        open_and_close(display, icon)
        drawn = [float(line.split()[0]) for line in log.read_bytes()[start:].decode().splitlines() if "Frame rendered" in line]
        shown = [moment for moment in drawn if moment - drawn[0] <= OPENING_MOVES]
        gaps.append(max(later - earlier for earlier, later in zip(shown, shown[1:])) * 1000)
    return gaps


def median(values):
    return statistics.median(values)


def show(name, values, unit="MB", digits=1):
    print(f"{name:44}" + "".join(f"{value:10.{digits}f}" for value in values) + f"   {unit}")


def main():
    programs = {"murmeli": [str(BIN / "murmeli")], "minimal_tray": [str(BIN / "minimal_tray")]}
    if shutil.which("keepassxc"):
        programs["keepassxc"] = ["keepassxc"]
    starts = {program: [] for program in programs}
    rests = {program: [] for program in programs}
    first, later = [], []
    with Session(program=False, web=[]) as session:
        del session.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"]  # users start it without
        sign_in(session)
        settings = session.home / ".config/keepassxc/keepassxc.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(KEEPASSXC, "utf-8")
        display = Display(session.display)
        for round_number in range(ROUNDS + 1):  # the first warms the caches
            for program, command in programs.items():
                process = session.start(program, command)
                start = until(lambda: display.visible(program, is_icon))
                if round_number > 0:
                    time.sleep(RESTS)
                    starts[program].append(start)
                    rests[program].append(memory(process.pid))
                    if program == "murmeli":
                        icon = session.icon().middle
                        first.append(open_and_close(display, icon))
                        later += [open_and_close(display, icon) for _ in range(4)]
                session.stop(process)
                until(lambda: not display.visible(program, is_icon))

        process = session.start("murmeli", programs["murmeli"])
        until(lambda: display.visible("murmeli", is_icon))
        time.sleep(RESTS)
        before = processor_seconds(process.pid), wake_ups(process.pid)
        time.sleep(IDLE_SECONDS)
        idle = processor_seconds(process.pid) - before[0], wake_ups(process.pid) - before[1]
        icon = session.icon().middle
        for _ in range(10):
            open_and_close(display, icon)
        grown = [(*memory(process.pid), *holds(process.pid))]
        for _ in range(OPENINGS):
            open_and_close(display, icon)
        grown.append((*memory(process.pid), *holds(process.pid)))
        session.write_state(status="recording", since=time.time())
        display.press(*icon)
        until(lambda: display.visible("murmeli", is_panel))
        time.sleep(6)  # the toast has gone
        drawn = renderer(process.pid)
        before = processor_seconds(process.pid)
        time.sleep(IDLE_SECONDS)
        moving = processor_seconds(process.pid) - before
        session.stop(process)
        until(lambda: not display.visible("murmeli", is_icon))
        session.write_state(status="idle")
        told = {"QT_LOGGING_RULES": "qt.scenegraph.time.renderloop=true", "QT_MESSAGE_PATTERN": "%{time process} %{message}"}
        session.start("murmeli", programs["murmeli"], environment={**session.environment, **told})
        until(lambda: display.visible("murmeli", is_icon))
        time.sleep(RESTS)
        gaps = frame_gaps(session, display, icon)
    shown, gone = with_every_window()

    print(f"\nRenderer: {drawn}. {ROUNDS} rounds in turn, medians.")
    print(f"{'':44}" + "".join(f"{name:>10}" for name in ("resident", "shared", "dirty")) + "   (shared: proportional)")
    for program, seen in rests.items():
        show(f"{program} at rest", [median(column) for column in zip(*seen)])
    show("murmeli, every window opened, one shows", shown)
    show("murmeli, minutes after the last has gone", gone)
    print("Aims: 35, 25, 6 at rest; 60, 40, 12 after the last window.\n")
    for program, seen in starts.items():
        show(f"{program}, start to icon", [median(seen) * 1000], "ms")
    pairs = [ours / theirs for ours, theirs in zip(starts["murmeli"], starts["minimal_tray"])]
    print(f"{'start, ratio pair by pair':44}{median(pairs):10.2f}   from {min(pairs):.2f} to {max(pairs):.2f}, aim 1.0")
    show("click to panel, the first", [median(first) * 1000], "ms, aim 120")
    show("click to panel, later", [median(later) * 1000], "ms, aim 60")
    show("longest wait for a picture in its opening", [median(gaps), max(gaps)], "ms, median and worst; a frame is 16.7")
    show("idle, wake-ups a second", [idle[1] / IDLE_SECONDS], "aim 0.7", 2)
    show("idle, of a core", [idle[0] / IDLE_SECONDS * 100], "%, aim 0.00", 3)
    show("panel moves while recording, of a core", [moving / IDLE_SECONDS * 100], "%, aim 3")
    for when, figures in zip(("after 10 openings", f"after {OPENINGS} more"), grown):
        print(f"{when:44}" + "".join(f"{value:10.1f}" for value in figures[:3])
              + f"   MB, {figures[3]} descriptors, {figures[4]} threads")


if __name__ == "__main__":
    main()
