#!/usr/bin/env python3
"""Counts the lines of code and of tests: tests are worth a quarter to a third of what they test."""

import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
CODE = ["src", "sandbox", "bench", "tools", "packaging", "cmake", "dev"]
ENDINGS = (".cpp", ".h", ".mm", ".qml", ".py", ".sh", ".txt", ".cmake", ".js")


def lines(*places: str) -> int:
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", *places], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.splitlines()
    files = [ROOT / name for name in names if name == "dev" or name.endswith(ENDINGS)]
    return sum(len(file.read_bytes().splitlines()) for file in files if file.is_file())


code, tests = lines(*CODE), lines("tests")
print(f"{code} lines of code, {tests} of tests: {tests / code:.2f} (wanted: 0.25 to 0.33)")
