#!/usr/bin/env python3
"""The rules of the house that no compiler knows. Prints what breaks them; exits 1 when anything does."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
SRC = ROOT / "src"
FLOORS = {  # a room includes from lower floors only, or from rooms of its own floor that stand before it
    "base": 0,
    "service": 1, "language": 1, "platform": 1,
    "localisation": 2, "ui": 2,
    "account": 3, "meetings": 3, "receipts": 3, "margin": 3, "transcript": 3, "glossary": 3, "protocol": 3, "report": 3, "search": 3, "handout": 3, "update": 3, "permissions": 3, "setup": 3,
    "settings": 3, "notices": 3,
    "detail": 4, "panel": 4, "windows": 4, "commands": 4,
    "app": 5,
}
WITHIN_FLOOR = {
    "receipts": {"meetings"}, "glossary": {"account"}, "protocol": {"meetings", "account", "glossary"}, "report": {"meetings", "account", "transcript"},
    "settings": {"account", "receipts", "update", "permissions", "search"}, "setup": {"permissions", "update"},
    "margin": {"meetings"}, "transcript": {"meetings", "margin"}, "notices": {"meetings", "permissions"},
    "search": {"glossary", "meetings", "margin", "transcript", "report"},
    "handout": {"meetings", "receipts", "transcript", "protocol", "report", "search"},
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
        before = ""
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
            if "qmllint disable" in line and not before.startswith("//"):
                fault(path, number, "a hole in the check of QML without its reason on the line above")
            before = line.strip()


def check_cpp():
    for path in tracked("src/*.cpp", "src/*.h", "src/*.mm"):
        room = path.relative_to(SRC).parts[0]
        for number, line in lines(path):
            code = line.split("//")[0]
            if re.search(r"\binstance\(", code):
                fault(path, number, "reaches for a single object; it comes in by the constructor")
            if room == "ui" or path.name in LOOKS_OF_THEIR_OWN:
                continue
            if re.search(r'\bQColor[({]\s*[\d"u.]|QColor::from|\bqRgba?\(|Qt::(white|black|red|green|blue)\b|"#[0-9A-Fa-f]{6}', code):
                fault(path, number, "a colour of its own; looks belong to ui")
            if re.search(r"constexpr (int|double|qreal) \w*([wW]idth|[hH]eight|[mM]argin|[gG]ap|[rR]adius|[sS]pacing)\w*", code):
                fault(path, number, "a size of its own; looks belong to ui")
            if re.search(r"setDuration\(|QEasingCurve|Q\w+Animation", code):
                fault(path, number, "moves something by itself; looks belong to ui")


# Sizes that are no look of ours, with the reason.
LOOKS_OF_THEIR_OWN = {
    "PanelPlacement.cpp",  # how a panel stands to icon and screen, which are the desktop's
    "HandoutPages.cpp", "HandoutPages.h", "PagePicture.cpp",  # what is on paper, which is white
    "KeyPanel.cpp",  # what the desktop puts around a window
}


def texts():
    """The keys of all texts, and of those the ones that are in no list but ours."""
    tables = re.split(r"\nconst std::array", (SRC / "localisation" / "TextsRussian.cpp").read_text(encoding="utf-8"))[1:]
    keys = [set(re.findall(r'^\s*\{"([a-z_.]+)",', table, re.MULTILINE)) for table in tables]
    return keys[0] | keys[1], keys[1]


def check_literals():
    keys, own = texts()
    symbols = {path.stem for path in (SRC / "ui" / "symbols").glob("*.svg")}
    literals = set()
    for path in tracked("src/*.cpp", "src/*.h", "src/*.mm", "src/*.qml"):
        if path.name.startswith("Texts"):
            continue
        for number, line in lines(path):
            found = re.findall(r'"([a-z0-9_.]+)"', line)
            literals.update(found)
            for literal in found:
                whole = re.fullmatch(r"[a-z_]+(\.[a-z0-9_]+)+\.?", literal)
                foreign = re.match(r"(org|com)\.|.*\.jsonl?$", literal) or literal in symbols
                if whole and not foreign and literal not in keys and not any(
                        key.startswith(literal.rstrip(".") + ".") for key in keys):
                    fault(path, number, f"no text and no symbol is called {literal}")
            match = re.match(r'\s*(?:symbol|name)\s*:\s*"([a-z0-9.]+)"', line)
            if match and match[1] not in symbols:
                fault(path, number, f"no symbol is called {match[1]}")
    table = SRC / "localisation" / "TextsRussian.cpp"
    for key in own - literals:
        # Some are put together: a beginning, or an end, stands in the code.
        if not any(literal and (literal.endswith(".") and key.startswith(literal) or
                                literal.startswith(".") and key.endswith(literal)) for literal in literals):
            fault(table, 1, f"nobody says {key}")
    for symbol in symbols - literals:
        fault(SRC / "ui" / "symbols" / f"{symbol}.svg", 1, "nobody shows it")


def check_tokens():
    theme = SRC / "ui" / "Theme.qml"
    inside = theme.read_text(encoding="utf-8")
    outside = "".join(path.read_text(encoding="utf-8") for path in tracked("src/*.qml") if path != theme)
    for token in re.findall(r"^    (?:readonly property \w+|function) (\w+)", inside, re.MULTILINE):
        if not re.search(rf"\bTheme\.{token}\b", outside) and len(re.findall(rf"\b{token}\b", inside)) == 1:
            fault(theme, 1, f"nobody uses {token}")


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


for check in (check_includes, check_qml, check_cpp, check_literals, check_tokens, check_docs):
    check()
print("\n".join(faults))
sys.exit(1 if faults else 0)
