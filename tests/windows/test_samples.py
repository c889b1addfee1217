# SPDX-License-Identifier: MIT
"""The samples for hosts in other languages: what they name is what the type library has, and the C# one compiles."""

import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples" / "windows"
IDL = (ROOT / "com" / "KELReader81U.idl").read_text()
SAMPLES = ("ReadSheets.vbs", "ReadSheets.js", "ReadSheets.ps1", "ReadSheets.cs", "frmRead.frm", "SheetsToCells.cls")

# What the languages have themselves.
IN_VISUAL_BASIC = {"SAFEARRAY(short)*": "{}() As Integer", "SAFEARRAY(BSTR)*": "{}() As String",
                   "VARIANT_BOOL*": "{} As Boolean", "short*": "{} As Integer"}


def interface(name, kind="interface"):
    """The text between the braces of an interface."""
    start = IDL.index("{", re.search(rf"{kind} {name}\b[^;{{]*\{{", IDL).start())
    return IDL[start:IDL.index("};", start)]


def members(name):
    return set(re.findall(r"HRESULT (\w+)\(", interface(name)))


def events():
    """The events' names and their arguments as (type, name)."""
    found = {}
    for name, arguments in re.findall(r"void (\w+)\(([^;]*)\);", interface("__clsKELReader", "dispinterface")):
        found[name] = re.findall(r"\[in, out\] (\S+) (\w+)", arguments)
    return found


def guid_before(text):
    """The identifier of what begins with the text."""
    return re.findall(r"uuid\(([-0-9A-F]+)\)", IDL[:IDL.index(text)])[-1]


def visual_basic(file):
    """A source's statements, each on a line of its own."""
    return re.sub(r" _\r?\n\s*", " ", (EXAMPLES / file).read_text())


class Samples(unittest.TestCase):
    def test_call_what_the_reader_has(self):
        known = members("_clsKELReader") | set(events())
        self.assertLessEqual({"ReadBatch", "ReadSheet"}, known)
        for sample in [EXAMPLES / name for name in SAMPLES] + [ROOT / "docs" / "windows.md"]:
            with self.subTest(sample.name):
                used = set(re.findall(r"\bo?[rR]eader\.(\w+)", sample.read_text()))
                self.assertTrue(used)
                self.assertLessEqual(used, known)

    def test_visual_basic_hears_events_as_they_are(self):
        for sample in ("frmRead.frm", "SheetsToCells.cls"):
            with self.subTest(sample):
                handlers = re.findall(r"Private Sub oReader_(\w+)\((.*)\)", visual_basic(sample))
                self.assertTrue(handlers)
                for name, arguments in handlers:
                    expected = [IN_VISUAL_BASIC[kind].format(argument) for kind, argument in events()[name]]
                    self.assertEqual(arguments, ", ".join(expected))

    def test_visual_basic_names_constants_that_there_are(self):
        for sample in ("frmRead.frm", "SheetsToCells.cls"):
            for constant in re.findall(r"\bkel\w+", (EXAMPLES / sample).read_text()):
                self.assertRegex(IDL, rf"\b{constant} = ")

    def test_visual_basic_reads_its_files(self):
        for sample in ("frmRead.frm", "SheetsToCells.cls", "ReadSheets.vbp"):
            lines = (EXAMPLES / sample).read_bytes().split(b"\n")
            self.assertTrue(all(line.endswith(b"\r") for line in lines[:-1]), sample)

    def test_identifiers(self):
        library = "{" + guid_before("library KELReader81U") + "}#8.1#0#KELReader81U.dll"
        self.assertIn("version(8.1)", IDL)
        self.assertIn(library, (EXAMPLES / "ReadSheets.vbp").read_text())
        self.assertIn(f'Guid("{guid_before("dispinterface __clsKELReader")}")', (EXAMPLES / "ReadSheets.cs").read_text())
        self.assertRegex((EXAMPLES / "ReadSheets.cs").read_text(), r"\[DispId\(2\)\]\s+void ReadSheet")

    def test_c_sharp_compiles(self):
        with tempfile.TemporaryDirectory() as folder:
            compiled = subprocess.run(["mcs", "-nologo", "-warnaserror", "-r:Microsoft.CSharp", f"-out:{folder}/x.exe",
                                       EXAMPLES / "ReadSheets.cs"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                      text=True)
        self.assertEqual((compiled.returncode, compiled.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
