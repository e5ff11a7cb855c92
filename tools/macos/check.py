#!/usr/bin/env python3
"""Checks the macOS side on Debian, as far as that goes without Apple's headers.

    check.py                      the files of macos/, bundle lists, icon         (seconds)
    check.py --tree BUILD         also every source of src/ outside linux/, by BUILD/compile_commands.json
    check.py --configure          also lets CMake configure and generate for Darwin
    check.py --itself             breaks copies of the files and expects each break to be found

Takes clang-19, libc++-19-dev and llvm (Debian 12), and Qt's headers. The declarations of Apple's frameworks are
stand-ins of ours under include/: the check proves that the code agrees with them, not that they agree with Apple's.
"""
import argparse, json, plistlib, re, shlex, struct, subprocess, sys, tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
LLVM = Path("/usr/lib/llvm-19")
QT = Path("/usr/include/x86_64-linux-gnu/qt6")
ROOMS = ("QtCore", "QtGui", "QtWidgets", "QtNetwork", "QtQml", "QtQuick", "QtQmlIntegration")
problems = []


def say(problem):
    problems.append(problem)
    print(problem)


def target(root):
    text = (root / "CMakeLists.txt").read_text()
    return re.search(r"CMAKE_OSX_DEPLOYMENT_TARGET (\S+)", text)[1]


def flags(root, scratch):
    """The compiler as on macOS: Apple's target, libc++ with its dates of availability, our stand-ins."""
    site = (LLVM / "include/c++/v1/__config_site").read_text()
    (scratch / "__config_site").write_text(
        "\n".join(l for l in site.split("\n") if "NO_VENDOR_AVAILABILITY_ANNOTATIONS" not in l))
    system = [scratch, LLVM / "include/c++/v1", HERE / "include/system", HERE / "include/frameworks",
              LLVM / "lib/clang/19/include", QT, *(QT / room for room in ROOMS)]
    result = [f"{LLVM}/bin/clang++", "-target", f"x86_64-apple-macos{target(root)}", "-std=c++20", "-nostdinc++",
              "-U__nonnull", "-D_GNU_SOURCE", "-fblocks", "-fPIC", "-Wall", "-Wextra", "-Wpedantic",
              "-Wunguarded-availability", "-Wobjc-method-access", "-Wno-missing-field-initializers",
              "-DQT_NO_CAST_FROM_ASCII", "-DQT_NO_CAST_TO_ASCII", "-DQT_NO_FOREACH"]
    for folder in system:
        result += ["-isystem", str(folder)]
    return result + ["-idirafter", "/usr/include/x86_64-linux-gnu", "-idirafter", "/usr/include"]


def compiled(command, what):
    run = subprocess.run(command, capture_output=True, text=True)
    found = [l for l in run.stderr.split("\n") if re.search(r"(error|warning):", l)]
    return [f"{what}: {l.split(': ', 1)[-1]}" for l in found] or ([f"{what}: failed"] if run.returncode else [])


def farm(root, scratch):
    """Rooms are included as "room/Header.h"."""
    folder = scratch / "rooms"
    folder.mkdir(exist_ok=True)
    for room in (root / "src").iterdir():
        link = folder / room.name
        if room.is_dir() and not link.exists():
            link.symlink_to(room)
    return folder


def listed(root):
    text = (root / "src/platform/macos/Files.cmake").read_text()
    arc = re.findall(r"set_source_files_properties\((.*?)\s+PROPERTIES [^)]*-fobjc-arc\)", text, re.S)
    return re.findall(r"macos/\w+\.(?:mm|cpp)", text.split(")")[0]), " ".join(arc).split()


def one(root, scratch, path, arc, out):
    command = flags(root, scratch) + ["-I", str(root / "src/platform"), "-I", str(farm(root, scratch))]
    command += ["-x", "objective-c++"] if path.suffix == ".mm" else []
    command += ["-fobjc-arc"] if arc else []
    return compiled(command + ["-c", str(path), "-o", str(out)], path.name)


def platform(root, scratch):
    names, arc = listed(root)
    there = {f"macos/{p.name}" for p in (root / "src/platform/macos").iterdir() if p.suffix in (".mm", ".cpp")}
    for name in there ^ set(names):
        say(f"{name}: in the folder or in Files.cmake only")
    objects = []
    for name in names:
        objects.append(scratch / (Path(name).name + ".o"))
        for problem in one(root, scratch, root / "src/platform" / name, name in arc, objects[-1]):
            say(problem)
    # Every function that an interface declares, linux/ has to define, and so has macos/.
    done = subprocess.run(["llvm-nm", "--defined-only", "--extern-only", "-C",
                           *(str(o) for o in objects if o.exists())], capture_output=True, text=True).stdout
    for header in sorted((root / "src/platform").glob("*.h")):
        if header.with_suffix(".cpp").exists():
            continue
        text = re.sub(r"//[^\n]*", "", header.read_text())
        own = header.with_suffix(".cpp").read_text() if header.with_suffix(".cpp").exists() else ""
        for name in re.findall(r"^[\w:<>]+[ &*]+(\w+)\([^;{}]*\);", text, re.M):
            if f"::{name}(" not in done and f" {name}(" not in own:
                say(f"{header.name}: nobody in macos/ defines {name}()")
    print(f"{len(names)} files of macos/")


def tree(root, scratch, build):
    jobs = []
    for entry in json.loads((build / "compile_commands.json").read_text()):
        file = Path(entry["file"])
        if "/src/" not in entry["file"] or "/linux/" in entry["file"] or "autogen" in entry["file"] \
                or build in file.parents or "tests" in file.parts:
            continue
        words, own = shlex.split(entry["command"])[1:], []
        for at, word in enumerate(words):
            if word.startswith(("-I", "-D")) and "DBUS" not in word and "QT_NO_" not in word:
                own.append(word)
        jobs.append((file, flags(root, scratch) + own + ["-fsyntax-only", str(file)]))
    with ThreadPoolExecutor(2) as pool:
        for found in pool.map(lambda job: compiled(job[1], job[0].name), jobs):
            for problem in found:
                say(problem)
    print(f"{len(jobs)} sources of src/")


def bundle(root):
    folder = root / "packaging/macos"
    text = re.sub(r"@\w+@", "1.0", (folder / "Info.plist.in").read_text())
    info = plistlib.loads(text.encode())
    for key in ("CFBundleIdentifier", "CFBundleExecutable", "CFBundleIconFile", "CFBundleVersion", "LSUIElement",
                "LSMinimumSystemVersion", "NSMicrophoneUsageDescription"):
        if key not in info:
            say(f"Info.plist.in: no {key}")
    for language in info.get("CFBundleLocalizations", []):
        strings = (folder / f"{language}.lproj/InfoPlist.strings").read_text(encoding="utf-8")
        for key in re.findall(r'^"?(\w+)"? *=', strings, re.M):
            if key not in info:
                say(f"{language}.lproj: {key} is not in Info.plist.in")
    for agent in folder.glob("com.*.plist"):
        content = plistlib.loads(agent.read_bytes())
        if content["Label"] != agent.stem:
            say(f"{agent.name}: labelled otherwise")
        if not content["ProgramArguments"][0].endswith(f".app/Contents/MacOS/{info['CFBundleExecutable']}"):
            say(f"{agent.name}: starts something else than the bundle")
    data = (folder / f"{info['CFBundleIconFile']}.icns").read_bytes()
    sides = {b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512, b"ic09": 512,
             b"ic10": 1024}
    if data[:4] != b"icns" or struct.unpack(">I", data[4:8])[0] != len(data):
        say("icns: head or length")
    at = 8
    while at < len(data):
        kind, length = data[at:at + 4], struct.unpack(">I", data[at + 4:at + 8])[0]
        if struct.unpack(">II", data[at + 24:at + 32]) != (sides.pop(kind, 0),) * 2:
            say(f"icns: {kind} holds another size")
        at += length
    if sides:
        say(f"icns: missing {sorted(sides)}")


def configure(root, scratch):
    run = subprocess.run(["cmake", "-Wno-dev", "-S", str(root), "-B", str(scratch / "build"), "-G", "Ninja",
                          "--toolchain", str(HERE / "cmake/darwin.cmake"), "-DMURMELI_DEVELOPER=OFF",
                          "-DCMAKE_BUILD_TYPE=Release", "-DMURMELI_ONLY_CONFIGURES=ON"], capture_output=True, text=True)
    for line in re.findall(r"CMake Error.*\n(?:\s+.*\n)?", run.stderr):
        say(" ".join(line.split()))
    if run.returncode:
        return
    ninja = (scratch / "build/build.ninja").read_text()
    names, arc = listed(root)
    for name in names:
        if f"src/platform/{name}" not in ninja:
            say(f"{name}: not built for Darwin")
    if "src/platform/linux/" in ninja:
        say("files of linux/ are built for Darwin")
    for inside in ("MacOS/Murmeli", "Resources/Murmeli.icns", "Resources/ru.lproj/InfoPlist.strings"):
        if f"Murmeli.app/Contents/{inside}" not in ninja:
            say(f"the bundle lacks {inside}")


# (file, what, instead): each must be found.
BREAKS = [
    ("Desktop.mm", "inFileViewerRootedAtPath", "inFileViewerRootedAt"),
    ("Desktop.mm", "[m_session start]", "[m_session release]"),
    ("Desktop.mm", "[m_session cancel]", "[NSApp activate]"),  # macOS 14
    ("Desktop.mm", "presentationAnchorForWebAuthenticationSession:", "presentationAnchorFor:"),
    ("Desktop.mm", "bool signsInThroughBrowser() const override", "bool signsInThroughBrowser() override"),
    ("Desktop.mm", "@[ file ]", "@[ path ]"),
    ("Desktop.mm", "NSRectEdgeMaxY : NSRectEdgeMinY", "NSEventMaskLeftMouseDown : NSRectEdgeMinY"),
    ("WindowSystem.mm", "NSStatusWindowLevel", "NSStatusBarWindowLevel"),
    ("WindowSystem.mm", "nativeWindow(window);", "window->winId();"),
    ("Appearance.mm", "bestMatchFromAppearancesWithNames", "bestMatch"),
]


def itself(root, scratch):
    _, with_arc = listed(root)
    for name, what, instead in BREAKS:
        arc = f"macos/{name}" in with_arc
        text = (root / "src/platform/macos" / name).read_text()
        broken = scratch / name
        broken.write_text(text.replace(what, instead))
        if what not in text:
            say(f"itself: {name} no longer holds {what}")
            continue
        before = one(root, scratch, root / "src/platform/macos" / name, arc, scratch / "x.o")
        if len(one(root, scratch, broken, arc, scratch / "x.o")) <= len(before):
            say(f"itself: {name} with {instead} was taken for good")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tree", type=Path, metavar="BUILD")
    parser.add_argument("--configure", action="store_true")
    parser.add_argument("--itself", action="store_true")
    options = parser.parse_args()
    root = ROOT
    with tempfile.TemporaryDirectory() as folder:
        scratch = Path(folder)
        bundle(root)
        platform(root, scratch)
        if options.itself: itself(root, scratch)
        if options.configure: configure(root, scratch)
        if options.tree: tree(root, scratch, options.tree.resolve())
    print(f"{len(problems)} problems")
    sys.exit(bool(problems))


main()
