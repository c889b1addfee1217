# SPDX-License-Identifier: MIT
"""The samples for hosts in other languages: what they name is what the type library has, and those in C# compile."""

import pathlib
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples" / "windows"
IDL = (ROOT / "com" / "KELReader81U.idl").read_text()
SAMPLES = ("ReadSheets.vbs", "ReadSheets.js", "ReadSheets.ps1", "ReadSheets.cs", "ReadTyped.cs", "frmRead.frm", "SheetsToCells.cls")

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


# What the system's importer makes of the library's types, arrays as System.Array.
IN_C_SHARP = {"VARIANT_BOOL": "bool", "BSTR": "string", "SAFEARRAY(short)": "Array", "SAFEARRAY(BSTR)": "Array", "long": "int",
              "IDispatch*": "object", "IUnknown*": "object", "VARIANT": "object"}


def c_sharp_arguments(arguments):
    """The arguments of a member, and the type of its result."""
    result, taken = "void", []
    for marks, kind, name in re.findall(r"\[([^]]*)\] ([\w()]+\**) (\w+)", arguments):
        by_reference = "out" in marks
        kind = kind.removesuffix("*") if by_reference else kind
        kind = IN_C_SHARP.get(kind) or kind.removesuffix("*")
        if "retval" in marks:
            result = kind
        else:
            taken.append((kind, name, by_reference))
    return taken, result


def listed(taken):
    return ", ".join(f"{'ref ' * by_reference}{kind} {name}" for kind, name, by_reference in taken)


def c_sharp_members(name):
    """An interface's members. A property that takes an argument or a reference has no syntax of its own in C#."""
    properties, lines = {}, []
    for marks, member, arguments in re.findall(r"\[([^]]*)\]\s*HRESULT (\w+)\((.*?)\);", interface(name), re.DOTALL):
        taken, result = c_sharp_arguments(arguments)
        access = re.search(r"prop(get|put)", marks)
        if not access:
            lines.append(f"{result} {member}({listed(taken)});")
        elif len(taken) == (access.group(1) == "put") and not any(by_reference for *_, by_reference in taken):
            properties.setdefault(member, {})[access.group(1)] = result if access.group(1) == "get" else taken[0][0]
        else:
            lines.append(f"{result} {'get' if access.group(1) == 'get' else 'set'}_{member}({listed(taken)});")
    for member, accesses in properties.items():
        [kind] = set(accesses.values())
        lines.append(f"{kind} {member} {{ {'get; ' * ('get' in accesses)}{'set; ' * ('put' in accesses)}}}")
    return lines


def interop():
    """The library's declarations in C#, under the names that the system's importer gives them."""
    lines = ["using System;", "using System.Runtime.InteropServices;", "namespace KELReader81U {"]
    for name, values in re.findall(r"enum (\w+) \{(.*?)\}", IDL, re.DOTALL):
        lines.append(f"public enum {name} {{ {re.sub(r'0x8(.{7})', r'unchecked((int)0x8' + chr(92) + '1)', values)} }}")
    handlers = []
    for name, arguments in re.findall(r"void (\w+)\(([^;]*)\);", interface("__clsKELReader", "dispinterface")):
        handlers.append(f"event __clsKELReader_{name}EventHandler {name};")
        lines.append(f"public delegate void __clsKELReader_{name}EventHandler({listed(c_sharp_arguments(arguments)[0])});")
    lines.append(f"public interface __clsKELReader_Event {{ {' '.join(handlers)} }}")
    for name in re.findall(r"interface (_cls\w+) :", IDL):
        lines.append(f'[ComImport, Guid("{guid_before(f"interface {name} :")}")]')
        lines.append(f"public interface {name} {{ {' '.join(c_sharp_members(name))} }}")
    for name in re.findall(r"coclass (\w+)", IDL):
        events = ", __clsKELReader_Event" * (name == "clsKELReader")
        lines.append(f'[ComImport, Guid("{guid_before(f"coclass {name}")}")] public class {name}Class {{ }}')
        lines.append(f'[ComImport, Guid("{guid_before(f"interface _{name} :")}"), CoClass(typeof({name}Class))]')
        lines.append(f"public interface {name} : _{name}{events} {{ }}")
    return "\n".join([*lines, "}", ""])


class Samples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def compile(self, source, *options, out="x.exe"):
        compiled = subprocess.run(["mcs", "-nologo", "-warnaserror", *options, f"-out:{self.folder}/{out}", source],
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertEqual((compiled.returncode, compiled.stdout), (0, ""))

    def test_call_what_the_reader_has(self):
        known = members("_clsKELReader") | set(events())
        self.assertLessEqual({"ReadBatch", "ReadSheet"}, known)
        for sample in [EXAMPLES / name for name in SAMPLES] + [ROOT / "docs" / "windows.md"]:
            with self.subTest(sample.name):
                used = set(re.findall(r"\bo?[rR]eader\.(?:set_)?(\w+)", sample.read_text()))
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
        self.compile(EXAMPLES / "ReadSheets.cs", "-r:Microsoft.CSharp")

    def test_typed_c_sharp_compiles(self):
        """Not with the assembly that the system's importer would make, but with its names and types."""
        library = self.folder / "interop.cs"
        library.write_text(interop())
        self.compile(library, "-target:library", out="KELReader81U.Interop.dll")
        used = f"-r:{self.folder}/KELReader81U.Interop.dll"
        self.compile(EXAMPLES / "ReadTyped.cs", used)
        [told] = re.findall(r"```csharp\n(.*?)```", (ROOT / "docs" / "windows.md").read_text(), re.DOTALL)
        page = self.folder / "page.cs"
        page.write_text("using System;\nusing KELReader81U;\npublic static class Program\n{\n    public static void Main()\n    {\n" +
                        told + "    }\n}\n")
        self.compile(page, used)

    def test_an_interop_assembly_is_of_the_library(self):
        project = xml.etree.ElementTree.parse(EXAMPLES / "ReadTyped.csproj")
        reference = {entry.tag: entry.text for entry in project.find(".//COMReference")}
        self.assertEqual(reference["Guid"], "{" + guid_before("library KELReader81U") + "}")
        self.assertIn(f"version({reference['VersionMajor']}.{reference['VersionMinor']})", IDL)
        self.assertEqual(project.find(".//Compile").get("Include"), "ReadTyped.cs")


if __name__ == "__main__":
    unittest.main()
