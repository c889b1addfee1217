# SPDX-License-Identifier: MIT
"""The DLL as a file: what it needs, what it offers, what is in its resources, for which width of programs."""

import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import unittest

from harness import BIN, WIDTH, version

TOOLS = {64: "x86_64-w64-mingw32-", 32: "i686-w64-mingw32-"}[WIDTH]
# Those that every host has anyway: what the options dialog alone needs is loaded when it is shown.
SYSTEM = {"ADVAPI32.DLL", "GDI32.DLL", "KERNEL32.DLL", "MSVCRT.DLL", "OLE32.DLL", "OLEAUT32.DLL", "USER32.DLL"}
ENTRY_POINTS = ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer", "DllUnregisterServer"]
MEGABYTE = 1 << 20
ROOT = pathlib.Path(__file__).resolve().parents[2]


def tool(name, *arguments):
    return subprocess.run([TOOLS + name, *map(str, arguments)], check=True, stdout=subprocess.PIPE, text=True).stdout


class Image(unittest.TestCase):
    def setUp(self):
        self.headers = tool("objdump", "-p", BIN / "KELReader81U.dll")

    def test_is_of_its_width(self):
        self.assertIn({64: "pei-x86-64", 32: "pei-i386"}[WIDTH], self.headers)

    def test_begins_with_few_libraries_of_the_system_alone(self):
        needed = {name.upper() for name in re.findall(r"DLL Name: (\S+)", self.headers)}
        self.assertLessEqual(needed, SYSTEM)
        self.assertIn("OLEAUT32.DLL", needed)

    def test_exports_the_entry_points_without_decoration(self):
        names = self.headers[self.headers.index("[Ordinal/Name Pointer] Table"):].split("\n\n")[0].splitlines()[1:]
        self.assertEqual(sorted(line.split()[-1] for line in names), ENTRY_POINTS)

    def test_handlers_of_faults_may_be_called(self):
        flags = int(re.search(r"DllCharacteristics\s+([0-9a-f]+)", self.headers).group(1), 16)
        self.assertEqual(flags & 0x400, 0, "the image claims to have no handlers")

    def test_has_the_type_library_of_its_width(self):
        image = (BIN / "KELReader81U.dll").read_bytes()
        library = (BIN.parent / "com" / "generated" / "KELReader81U.tlb").read_bytes()
        self.assertTrue(library.startswith(b"MSFT"))
        self.assertIn(library, image)
        kind = int.from_bytes(library[0x14:0x18], "little") & 0xF  # SYS_WIN32 or SYS_WIN64
        self.assertEqual(kind, {32: 1, 64: 3}[WIDTH])

    def test_all_of_it_is_of_one_version(self):
        numbers = [*map(int, version().split(".")), 0]
        text = ".".join(map(str, numbers))
        for name in ("KELReader81U.dll", "ReadBatch.exe", "simulated/OMRAPI.dll", "kelreader.exe"):
            if not (BIN / name).exists():
                continue  # the command is not built in every edition
            with self.subTest(name):
                image = (BIN / name).read_bytes()
                fixed = struct.unpack_from("<8H", image, image.index(struct.pack("<L", 0xFEEF04BD)) + 8)  # of VERSIONINFO
                self.assertEqual([fixed[i ^ 1] for i in range(8)], numbers * 2)
                for value in ("FileVersion", text, "CompanyName", "The KELReader81U developers"):
                    self.assertIn((value + "\0").encode("utf-16-le"), image)
        manifest = (BIN / "KELReader81U.manifest").read_text(encoding="utf-8")
        [library] = re.findall(r"^    version\((.*)\),$", (ROOT / "com/KELReader81U.idl").read_text(encoding="utf-8"), re.M)
        self.assertEqual(re.findall(r'<(?:assemblyIdentity|typelib) .* version="(.*?)"', manifest), [text, library])
        self.assertEqual(library, "%d.%d" % tuple(numbers[:2]))
        self.assertIn(f"version {text}", " ".join((ROOT / "docs/windows.md").read_text(encoding="utf-8").split()))

    def test_the_manifest_names_the_processor(self):
        manifest = (BIN / "KELReader81U.manifest").read_text(encoding="utf-8")
        self.assertIn({64: 'processorArchitecture="amd64"', 32: 'processorArchitecture="x86"'}[WIDTH], manifest)

    def test_is_small(self):
        with tempfile.TemporaryDirectory() as folder:
            stripped = pathlib.Path(folder) / "stripped.dll"
            shutil.copy(BIN / "KELReader81U.dll", stripped)
            tool("strip", stripped)
            self.assertLess(stripped.stat().st_size, 4 * MEGABYTE)

    def test_a_simulated_library_has_plain_names_too(self):
        names = tool("objdump", "-p", BIN / "simulated" / "OMRAPI.dll")
        self.assertIn(" OMR_OpenDeviceUSB\n", names)
        self.assertIn(" OMR_GetMarks\n", names)
        self.assertNotIn("@", names[names.index("[Ordinal/Name Pointer] Table"):])


if __name__ == "__main__":
    unittest.main()
