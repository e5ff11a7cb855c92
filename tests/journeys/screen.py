"""Mouse, keyboard and pixels of one display."""

from __future__ import annotations

import re
import subprocess
from dataclasses import dataclass

from waiting import wait_for

INDENT_OF_TOP_LEVEL = 5  # of a window that xwininfo lists right below the root
LARGEST_ICON = 64


@dataclass(frozen=True)
class Rectangle:
    x: int
    y: int
    width: int
    height: int

    @property
    def right(self) -> int:
        return self.x + self.width

    @property
    def bottom(self) -> int:
        return self.y + self.height

    @property
    def middle(self) -> tuple[int, int]:
        return self.x + self.width // 2, self.y + self.height // 2

    def contains(self, other: Rectangle) -> bool:
        return (self.x <= other.x and self.y <= other.y
                and other.right <= self.right and other.bottom <= self.bottom)


class Picture:
    """A piece of the screen; `at` counts from the piece's corner."""

    def __init__(self, ppm: bytes):
        head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", ppm)
        if not head:
            raise ValueError("not an 8-bit PPM picture")
        self.width, self.height = int(head[1]), int(head[2])
        self.pixels = ppm[head.end():]

    def at(self, x: int, y: int) -> tuple[int, int, int]:
        start = 3 * (y * self.width + x)
        return tuple(self.pixels[start:start + 3])

    def colours(self) -> list[tuple[int, int, int]]:
        return [tuple(self.pixels[i:i + 3]) for i in range(0, len(self.pixels), 3)]

    def row(self, y: int) -> list[tuple[int, int, int]]:
        return [self.at(x, y) for x in range(self.width)]


def near(one: tuple[int, int, int], other: tuple[int, int, int], tolerance=4) -> bool:
    return all(abs(a - b) <= tolerance for a, b in zip(one, other))


class Screen:
    def __init__(self, environment: dict):
        self._environment = environment

    def _run(self, *command: str) -> bytes:
        done = subprocess.run(command, env=self._environment, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=20, check=False)
        if done.returncode != 0:
            raise AssertionError(f"{' '.join(command)}: {done.stderr.decode(errors='replace').strip()}")
        return done.stdout

    def has_window_manager(self) -> bool:
        return b"window id" in self._run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")

    def has_active_window(self) -> bool:
        """Whether the window manager, not only the program, takes a window for the one that keys are for."""
        told = self._run("xprop", "-root", "_NET_ACTIVE_WINDOW").decode()
        return re.search(r"window id # 0x[1-9a-f]", told) is not None

    def has_window(self, title: str) -> bool:
        """Of whichever program."""
        return f'"{title}"' in self._reliably("xwininfo", "-root", "-tree")

    # Pointer and keys.

    def move(self, x: int, y: int) -> None:
        self._run("xdotool", "mousemove", "--sync", str(x), str(y))

    def click(self, x: int, y: int, *, button=1, times=1, delay=60) -> None:
        self._run("xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(times),
                  "--delay", str(delay), str(button))

    def key(self, *keys: str) -> None:
        self._run("xdotool", "key", *keys)

    def type(self, text: str) -> None:
        self._run("xdotool", "type", "--delay", "4", text)

    # Windows and pixels.

    def icon(self) -> Rectangle | None:
        """Murmeli's icon inside the tray, once it has been given its place there."""
        for line in self._reliably("xwininfo", "-root", "-tree").splitlines():
            found = re.search(r'\("[^"]*" "murmeli"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(\d+)\+(\d+)$', line)
            if not found:
                continue
            width, height, x, y = map(int, found.groups())
            docked = len(line) - len(line.lstrip()) > INDENT_OF_TOP_LEVEL
            if docked and 1 < width <= LARGEST_ICON:
                return Rectangle(x, y, width, height)
        return None

    def windows(self) -> list[Rectangle]:
        """Murmeli's visible windows, the icon left out."""
        told = self._reliably("xdotool", "search", "--onlyvisible", "--class", "murmeli",
                              "getwindowgeometry", "--shell", "%@")
        figures = [int(figure) for figure in re.findall(r"^(?:X|Y|WIDTH|HEIGHT)=(-?\d+)$", told, re.MULTILINE)]
        found = [Rectangle(*figures[at:at + 4]) for at in range(0, len(figures), 4)]
        return [window for window in found if window.width > LARGEST_ICON]

    def _reliably(self, *command: str) -> str:
        """What the command says once no window vanishes under its hands."""
        def said() -> list[str]:
            done = subprocess.run(command, env=self._environment, stdin=subprocess.DEVNULL, capture_output=True,
                                  timeout=20, check=False)
            return [] if done.stderr else [done.stdout.decode(errors="replace")]

        return wait_for(said, f"{command[0]} to see the windows")[0]

    def picture(self, part: Rectangle | None = None) -> Picture:
        crop = ["-crop", f"{part.width}x{part.height}+{part.x}+{part.y}", "+repage"] if part else []
        return Picture(self._run("import", "-window", "root", *crop, "-depth", "8", "ppm:-"))
