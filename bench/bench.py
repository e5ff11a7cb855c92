#!/usr/bin/env python3
"""Start-up, memory, idle and opening figures of Murmeli beside a minimal Qt Quick tray program, in turn."""

import ctypes
import json
import os
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

ROUNDS = int(os.environ.get("ROUNDS", "7"))
IDLE_SECONDS = 20


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

    def press(self, x, y):
        self.test.XTestFakeMotionEvent(self.display, -1, x, y, ctypes.c_ulong(0))
        self.x.XSync(self.display, 0)
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
    return figures["Rss"], figures["Pss"]


def processor_seconds(pid):
    fields = Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def wake_ups(pid):
    status = Path(f"/proc/{pid}/task/{pid}/status").read_text()
    return int(status.split("voluntary_ctxt_switches:")[1].split()[0])


def with_every_window():
    """Resident memory, MB, once every window, tab and pane has been open; the main window still shows its meetings."""
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
        return memory(session.program.pid)[0]


def median(values):
    return statistics.median(values)


def main():
    figures = {"murmeli": {"start": [], "rss": [], "pss": []}, "minimal_tray": {"start": [], "rss": [], "pss": []}}
    opening = []
    with Session(program=False) as session:
        display = Display(session.display)
        for round_number in range(ROUNDS + 1):  # the first warms the caches
            for program, seen in figures.items():
                process = session.start(program, [str(BIN / program)])
                start = until(lambda: display.visible(program, is_icon))
                time.sleep(2.5)
                rss, pss = memory(process.pid)
                if program == "murmeli":
                    icon = session.icon()
                    display.press(*icon.middle)
                    opened = until(lambda: display.visible("murmeli", is_panel))
                session.stop(process)
                until(lambda: not display.visible(program, is_icon))
                if round_number == 0:
                    continue
                if program == "murmeli":
                    opening.append(opened)
                seen["start"].append(start)
                seen["rss"].append(rss)
                seen["pss"].append(pss)

        process = session.start("murmeli", [str(BIN / "murmeli")])
        until(lambda: display.visible("murmeli", is_icon))
        time.sleep(4)
        before = processor_seconds(process.pid), wake_ups(process.pid)
        time.sleep(IDLE_SECONDS)
        after = processor_seconds(process.pid), wake_ups(process.pid)

    ours, theirs = figures["murmeli"], figures["minimal_tray"]
    print(f"\n{ROUNDS} rounds in turn, medians          Murmeli   minimal   ratio   bound")
    for name, unit, key, scale, bound in (("start to visible icon", "ms", "start", 1000, 1.2),
                                          ("resident memory", "MB", "rss", 1, 1.3),
                                          ("proportional memory", "MB", "pss", 1, None)):
        one, other = median(ours[key]) * scale, median(theirs[key]) * scale
        print(f"{name + ', ' + unit:36} {one:8.1f} {other:9.1f} {one / other:7.2f}   {bound or ''}")
    everything = with_every_window()
    print(f"{'every window shown once, MB':36} {everything:8.1f} {median(theirs['rss']):9.1f} "
          f"{everything / median(theirs['rss']):7.2f}   2")
    pairs = [a / b for a, b in zip(ours["start"], theirs["start"])]
    print(f"{'start, ratio pair by pair':36} {'':18} {median(pairs):7.2f}   from {min(pairs):.2f} to {max(pairs):.2f}")
    print(f"click to panel on screen, ms         {median(opening) * 1000:8.1f}")
    print(f"idle, wake-ups a second              {(after[1] - before[1]) / IDLE_SECONDS:8.2f}                     3")
    print(f"idle, % of a core                    {(after[0] - before[0]) / IDLE_SECONDS * 100:8.3f}                     0.1")


if __name__ == "__main__":
    main()
