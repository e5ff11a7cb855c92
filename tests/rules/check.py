#!/usr/bin/env python3
"""The rules of the house that no compiler knows. Prints what breaks them; exits 1 when anything does."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SRC = ROOT / "src"
FLOORS = {  # a room includes from lower floors only, or from rooms of its own floor that stand before it
    "base": 0,
    "service": 1, "platform": 1,
    "localisation": 2, "ui": 2,
    "account": 3, "meetings": 3, "glossary": 3, "protocol": 3, "report": 3, "update": 3, "permissions": 3, "setup": 3,
    "settings": 3, "notices": 3,
    "detail": 4, "panel": 4, "windows": 4,
    "app": 5,
}
WITHIN_FLOOR = {
    "glossary": {"account"}, "protocol": {"meetings", "account", "glossary"}, "report": {"meetings", "account"},
    "settings": {"account", "update", "permissions"}, "setup": {"permissions", "update"},
    "windows": {"detail"},
}
faults = []


def fault(path, line, what):
    faults.append(f"{path.relative_to(ROOT)}:{line}: {what}")


def tracked(*patterns):
    out = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", *patterns], cwd=ROOT, check=True,
                         capture_output=True, text=True).stdout
    return [ROOT / name for name in out.split() if (ROOT / name).exists()]


def lines(path):
    return enumerate(path.read_text(encoding="utf-8").splitlines(), 1)


def rooms():
    return sorted(folder.name for folder in SRC.iterdir() if folder.is_dir())


def check_includes():
    for path in tracked("src/*.cpp", "src/*.h", "src/*.mm"):
        room = path.relative_to(SRC).parts[0]
        for number, line in lines(path):
            match = re.match(r'#include "(\w+)/', line)
            if not match or match[1] in ("linux", "macos"):
                continue
            other = match[1]
            if other == room and path.name == "main.cpp":
                continue  # the program is beside its room's library, not in it
            if other == room or other not in FLOORS:
                fault(path, number, f"includes {other}/…, which is no room below")
            elif FLOORS[other] > FLOORS[room] or (
                    FLOORS[other] == FLOORS[room] and other not in WITHIN_FLOOR.get(room, ())):
                fault(path, number, f"includes upwards or sideways: {room} → {other}")
        if room != "platform" and "/linux/" not in str(path) and "/macos/" not in str(path):
            for number, line in lines(path):
                if re.match(r"\s*#\s*if.*\b(__APPLE__|__linux__|Q_OS_)", line) and path.name not in SYSTEM_DIFFERENCES:
                    fault(path, number, "asks for the operating system outside of platform/")


# Where a line of difference is not worth an interface, with the reason.
SYSTEM_DIFFERENCES = {
    "Files.cpp",  # struct stat spells its times differently
    "PanelModel.cpp",  # the help text of the quit button names the desktop's own way to start programs
}


def check_qml():
    for path in tracked("src/*.qml"):
        theme = path.name == "Theme.qml"
        for number, line in lines(path):
            code = line.split("//")[0]
            if not theme:
                if re.search(r'"#[0-9A-Fa-f]{3,8}"|Qt\.(rgba|hsla|darker|lighter|tint)\(|color:\s*"', code):
                    fault(path, number, "a colour of its own; take it from Theme")
                if re.search(r"font\.(pixelSize|pointSize)\s*:\s*\d|duration\s*:\s*\d", code):
                    fault(path, number, "a size or duration of its own; take it from Theme")
            if re.search(r"[а-яё]", code, re.IGNORECASE):
                fault(path, number, "a text of its own; texts are keys of L")
            text = re.search(r'\b(text|title|help|hint|name)\s*:\s*"([^"]*[A-Za-z]{2,} [^"]*)"', code)
            if text:
                fault(path, number, f"a text of its own: {text[2]}")


def check_keys():
    keys = set()
    for path in tracked("src/localisation/Texts*.cpp"):
        keys.update(re.findall(r'^\s*\{"([a-z_.]+)",', path.read_text(encoding="utf-8"), re.MULTILINE))
    for path in tracked("src/*.qml"):
        for number, line in lines(path):
            for key in re.findall(r'L\.t\("([^"]+)"', line):
                known = any(other.startswith(key) for other in keys) if key.endswith(".") else key in keys
                if not known:
                    fault(path, number, f"no text has the key {key}")
    for path in tracked("src/*.cpp"):
        for number, line in lines(path):
            for key in re.findall(r'(?:\bt\(u?|\btext\()"([a-z_]+\.[a-z_.]+)"', line):
                if key not in keys and "localisation" not in str(path):
                    fault(path, number, f"no text has the key {key}")


def check_symbols():
    have = {path.stem for path in (SRC / "ui" / "symbols").glob("*.svg")}
    for path in tracked("src/*.qml"):
        for number, line in lines(path):
            match = re.match(r'\s*(?:symbol|name)\s*:\s*"([a-z0-9.]+)"', line)
            if match and match[1] not in have:
                fault(path, number, f"no symbol is called {match[1]}")


def check_docs():
    document = ROOT / "docs" / "architecture.md"
    named = set(re.findall(r"`src/(\w+)/`", document.read_text(encoding="utf-8")))
    for room in rooms():
        if room not in named:
            fault(document, 1, f"does not name the room src/{room}/")
    for room in named - set(rooms()):
        fault(document, 1, f"names a room that is not there: src/{room}/")
    listed = re.findall(r"add_subdirectory\((\w+)\)", (SRC / "CMakeLists.txt").read_text())
    if sorted(listed) != rooms():
        fault(SRC / "CMakeLists.txt", 1, "does not list the rooms that are there")


for check in (check_includes, check_qml, check_keys, check_symbols, check_docs):
    check()
print("\n".join(faults))
sys.exit(1 if faults else 0)
