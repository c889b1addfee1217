# SPDX-License-Identifier: MIT
"""Tests that each folder includes only what lies below it: the order of the rooms is the table here; and that each source
names its licence.

KEL_SOURCES names a folder whose sources are checked instead of this checkout's.
"""

import os
import re
import sys
import unittest
from pathlib import Path

ROOT = Path(os.environ.get("KEL_SOURCES") or Path(__file__).resolve().parents[1])

# From the ground up. A room includes itself and the rooms in front of it.
ORDER = (
    "types",
    "platform",
    "strings",
    "failure",
    "contract",
    "profiles",
    "drivers",
    "dispatch",
    "reader",
    "options",
    "startup",
    "formats",
    "recording",
    "simulators",
    "pictures",
    "host",
    "store",
    "stream",
    "station",
    "com",
    "python",
    "cli",
)

# What is built into the component, and so must stand without recordings and simulated readers.
COMPONENT = ORDER[: ORDER.index("startup") + 1] + ("com",)
OUTSIDE = ("formats", "recording", "simulators", "pictures", "host", "store", "stream", "station", "python", "cli")

# What binds another language to the libraries as a host has them.
BINDINGS = ("python",)

# A simulated reader is written from the wire alone: it knows what a line is, and nothing of the component above.
GROUND = ("types", "platform")
WITHOUT_COMPONENT = ("formats", "recording", "simulators")

# Folders of one system, which do not know each other, and which the interfaces beside them do not know.
APART = (
    {"platform/posix", "platform/windows", "platform/remote_line"},
    {"stream/nats"},
    {"options/posix", "options/qt", "options/win32"},
)

# Who may know one system: the parts of the rooms above that are made for it. Everybody else sees the interfaces.
KNOW_THEIR_SYSTEM = {
    "platform/posix": (
        "options/posix",
        "startup",
        "simulators/pseudo_terminal",
        "store",
        "stream",
        "station",
        "cli/posix",
    ),
    "platform/windows": (
        "options/win32",
        "startup",
        "simulators/platform/windows",
        "host/windows",
        "com",
        "cli/windows",
        "cli/main.cpp",
    ),
    "platform/remote_line": (),
}

# Each family is a folder of its own beside what all of them share.
SHARED = {"drivers": {"common"}, "simulators": {"framework"}}

# A Chatsworth reader speaks the EZData readers' commands in frames of its own.
RELATED = {("simulators/chatsworth", "simulators/ezdata")}

# The one place that joins a system's implementations to the component, and the outermost programs.
JOINS = {"startup"}
OUTERMOST = {"tests", "fuzz", "benchmarks", "examples"}


def sources():
    folders = (folder for folder in ROOT.iterdir() if folder.is_dir() and not folder.name.startswith((".", "build")))
    for folder in sorted(folders):
        for path in sorted(folder.rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path, path.relative_to(ROOT)


def meant(source, name):
    """The project's own file that an include means, if it is one: beside the source first, as a compiler looks for it."""
    for place in (Path(os.path.normpath(source.parent / name)), Path(name)):
        if (ROOT / place).is_file():
            return place
    return None


def included(path, source):
    """The project's own files that a file includes, with the line."""
    for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
        found = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
        if found and (target := meant(source, found[1])):
            yield number, target


def lies_in(source, places):
    return any(place in (str(source), *map(str, source.parents)) for place in places)


def fault(source, target):
    """What is wrong with an include, if anything."""
    room, other = source.parts[0], target.parts[0]
    if room in OUTERMOST:
        return None
    if other in OUTERMOST:
        return f"{other}/ is for tests and programs alone"
    for name in (room, other):
        if name not in ORDER:
            return f"{name}/ has no place in the order of rooms"
    if ORDER.index(other) > ORDER.index(room):
        return f"{other}/ lies above {room}/"
    if room in COMPONENT and other in OUTSIDE:
        return f"{other}/ is no part of the component"
    if room in WITHOUT_COMPONENT and other not in GROUND + WITHOUT_COMPONENT:
        return f"{room}/ stands without the component"
    if room in BINDINGS and other != room:
        return f"{room}/ sees what hosts see: the public headers"
    here, there = "/".join(source.parts[:2]), "/".join(target.parts[:2])
    if here != there and there in KNOW_THEIR_SYSTEM and not lies_in(source, KNOW_THEIR_SYSTEM[there]):
        return f"{source} is not made for one system, or has no leave to know {there}/"
    if here == there or room in JOINS:
        return None
    if any(there in folders and (here in folders or len(source.parts) == 2) for folders in APART) and room == other:
        return f"{here}/ and {there}/ do not know each other"
    if room == other and room in SHARED and len(source.parts) > 2 and len(target.parts) > 2:
        if target.parts[1] not in SHARED[room] and (here, there) not in RELATED:
            return f"{here}/ and {there}/ do not know each other"
    return None


class RoomsTest(unittest.TestCase):
    def test_includes_run_downwards(self):
        faults = [
            f"{source}:{number}: includes {target}: {wrong}"
            for path, source in sources()
            for number, target in included(path, source)
            if (wrong := fault(source, target))
        ]
        self.assertEqual(faults, [], "\n" + "\n".join(faults))

    def test_every_folder_of_sources_has_its_place(self):
        folders = {source.parts[0] for _, source in sources()}
        self.assertEqual(folders - set(ORDER) - OUTERMOST, set())

    def test_wrong_includes_are_seen(self):
        for source, target in (
            ("reader/clsKELReader.cpp", "options/frmOptions.h"),
            ("drivers/ncs/basNCS.cpp", "reader/clsKELReader.h"),
            ("drivers/ncs/basNCS.cpp", "drivers/ezdata/basNCSEZData.h"),
            ("simulators/ncs/OpScan.cpp", "drivers/ncs/PageDecoder.h"),
            ("platform/posix/RemoteLine.h", "platform/remote_line/GensioBridge.h"),
            ("platform/Platform.h", "platform/posix/LocalLine.h"),
            ("platform/Platform.h", "recording/Transcript.h"),
            ("com/Exports.cpp", "recording/Transcript.h"),
            ("types/Text.h", "platform/Platform.h"),
            ("python/Module.cpp", "host/Batch.h"),
            ("reader/clsKELReader.cpp", "tests/support/ReaderHost.h"),
            ("reader/clsKELReader.cpp", "platform/posix/LocalLine.h"),
            ("host/Batch.cpp", "platform/windows/WindowsText.h"),
            ("cli/Shared.cpp", "platform/windows/WindowsText.h"),
            ("startup/Main.cpp", "platform/remote_line/GensioBridge.h"),
        ):
            self.assertIsNotNone(fault(Path(source), Path(target)), f"{source} {target}")

    def test_includes_are_found_as_a_compiler_finds_them(self):
        for source, name, target in (
            ("reader/clsKELReader.cpp", "platform/Platform.h", "platform/Platform.h"),
            ("drivers/ncs/basNCS.cpp", "../../reader/clsKELReader.h", "reader/clsKELReader.h"),
            ("platform/posix/PosixPlatform.h", "../windows/WindowsPlatform.h", "platform/windows/WindowsPlatform.h"),
            ("reader/clsKELReader.cpp", "ReaderEvents.h", "reader/ReaderEvents.h"),
        ):
            self.assertEqual(meant(Path(source), name), Path(target))
        self.assertIsNone(meant(Path("reader/clsKELReader.cpp"), "TextNames.h"))  # generated


# Files of these kinds, and of these names, say in their first lines what their licence is.
COMMENTED = {
    *(".h", ".cpp", ".py", ".pyi", ".sh", ".cmake", ".map", ".names", ".html", ".svg", ".css", ".js", ".service", ".sysusers"),
    *(".idl", ".rc", ".nsi", ".wxs", ".1", ".frm", ".cls", ".cs", ".csproj", ".ps1", ".vbs", ".in", ".ini"),
}
COMMENTED_NAMES = {"CMakeLists.txt", "Doxyfile", "triggers", "postinst", "prerm"}
WITHOUT_COMMENTS = {Path("cmake/WindowsPackage.txt.in")}  # its text is what users read
MADE_ELSEWHERE = ("tests/transcripts", "fuzz/corpus", "options/qt/kept", "docs/screenshots")


def with_comments():
    for folder, folders, files in os.walk(ROOT):
        here = Path(folder).relative_to(ROOT)
        folders[:] = sorted(name for name in folders if not name.startswith((".", "build")) and name != "__pycache__")
        for source in (here / name for name in sorted(files)):
            named = source.suffix in COMMENTED or source.name in COMMENTED_NAMES
            if named and source not in WITHOUT_COMMENTS and not lies_in(source, MADE_ELSEWHERE):
                yield source


def names_its_licence(source):
    lines = (ROOT / source).read_text(encoding="utf-8").splitlines()
    if source.suffix in (".h", ".cpp"):
        return lines[:1] == ["// SPDX-License-Identifier: MIT"]
    if source.suffix in (".frm", ".cls"):  # the properties of a form or a class come before its code
        lines = [line for line in lines if line.startswith("'")]
    return any("SPDX-License-Identifier: MIT" in line for line in lines[:2])


class LicenceTest(unittest.TestCase):
    def test_each_source_names_its_licence(self):
        self.assertEqual([str(source) for source in with_comments() if not names_its_licence(source)], [])


if __name__ == "__main__":
    unittest.main()
