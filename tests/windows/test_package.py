# SPDX-License-Identifier: MIT
"""The zip for Windows: what is in it works from wherever it is unpacked, with and without registration."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest
import zipfile

from harness import BIN, WIDTH, SimulatedReader, WindowsTest, machine_wide, registry_has, wine

PORT = 14
SHEETS = 2
READER_NAME = r"HKLM\Software\Classes\KELReader81U.clsKELReader"


class Package(WindowsTest):
    def setUp(self):
        folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        subprocess.run(["cpack", "-G", "ZIP", "-B", folder / "packages"], cwd=BIN.parent, check=True,
                       stdout=subprocess.DEVNULL)
        [package] = (folder / "packages").glob("*.zip")
        self.assertRegex(package.name, r"^KELReader81U-\d+\.\d+\.\d+-win%d\.zip$" % WIDTH)
        place = folder / "a folder with blanks"
        with zipfile.ZipFile(package) as archive:
            archive.extractall(place)
        self.root = place / package.stem

    def test_holds_what_hosts_and_operators_need(self):
        names = {str(path.relative_to(self.root)) for path in self.root.rglob("*") if path.is_file()}
        self.assertLessEqual({"KELReader81U.dll", "LKELReader81.txt", "KELReader81U.manifest", "README.txt", "LICENSE.txt",
                              "ReadBatch.exe", "ReadBatch.exe.manifest", "examples/ReadBatch.cpp",
                              "examples/ReadSheets.vbs", "examples/ReadSheets.js", "examples/ReadSheets.cs",
                              "examples/ReadSheets.ps1", "examples/ReadSheets.vbp", "examples/frmRead.frm",
                              "examples/SheetsToCells.cls", "examples/ReadTyped.cs", "examples/ReadTyped.csproj",
                              "development/KELReader81U.idl",
                              "development/KELReader81U.tlb", "development/KELReader81U.h", "docs/windows.md",
                              "docs/readers/README.md", "docs/readers/scantron.md"}, names)
        self.assertFalse([name for name in names if "CMakeLists" in name or "advice" in name or name.endswith(".in")])
        self.assertNotIn("@", (self.root / "README.txt").read_text())

    def test_works_without_and_with_registration(self):
        self.enterContext(machine_wide())  # until the last clean-up is done
        self.assertFalse(registry_has(READER_NAME))
        with SimulatedReader(21, port=PORT, seed=7, count=SHEETS):
            output = self.run_program(self.root / "ReadBatch.exe", 21, PORT, SHEETS, 20, 12, cwd=self.root)
        self.assertEqual([line.rstrip() for line in output.splitlines() if line.startswith("Sheet")], ["Sheet 1", "Sheet 2"])

        self.run_program("regsvr32", "/s", "KELReader81U.dll", cwd=self.root)
        self.addCleanup(wine, "regsvr32", "/s", "/u", "KELReader81U.dll", cwd=self.root)
        self.assertTrue(registry_has(READER_NAME))
        with SimulatedReader(21, port=PORT, seed=7, count=SHEETS):
            output = self.run_program("cscript", "//nologo", "ReadSheets.vbs", 21, PORT, SHEETS,
                                      cwd=self.root / "examples", status=SHEETS)
        self.assertIn("Sheet 2: 40 timing marks", output)
        self.run_program("regsvr32", "/s", "/u", "KELReader81U.dll", cwd=self.root)
        self.assertFalse(registry_has(READER_NAME))


if __name__ == "__main__":
    unittest.main()
