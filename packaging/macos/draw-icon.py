#!/usr/bin/env python3
"""Draws Murmeli.icns from the icon that other desktops show. Takes rsvg-convert (Debian: librsvg2-bin)."""

import struct
import subprocess
from pathlib import Path

HERE = Path(__file__).parent
# The format's name for each size in pixels; some are of a doubled size, for dense screens. The plain small ones
# have no name that takes a PNG inside of a bundle; the system makes them from the next larger.
SIDES = {
    b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512, b"ic09": 512, b"ic10": 1024,
}


def drawn(side):
    return subprocess.run(["rsvg-convert", "--width", str(side), "--height", str(side),
                           HERE.parent / "icons" / "murmeli.svg"], check=True, capture_output=True).stdout


pictures = {side: drawn(side) for side in set(SIDES.values())}
entries = b"".join(kind + struct.pack(">I", 8 + len(pictures[side])) + pictures[side] for kind, side in SIDES.items())
(HERE / "Murmeli.icns").write_bytes(b"icns" + struct.pack(">I", 8 + len(entries)) + entries)
