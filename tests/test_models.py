# SPDX-License-Identifier: MIT
"""Tests that a model is one row: the enumerations and the documents follow from the table, and a wrong row is refused."""

import contextlib
import io
import re
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "scripts"))

import generate_models

FILES = (generate_models.TABLE, "types/Enumerations.h", "com/KELReader81U.idl", *generate_models.COUNTED)
LAST = len(generate_models.rows((ROOT / generate_models.TABLE).read_text(encoding="utf-8")))
NEW = """
    {%d, "%s", "A new model", "Scantron", "Scanmark",
     Scantron, "19200,N,8,2", " -   -   x   +   o   o   x   no  no", "Scantron", 48, {1, 0, 135, 135}},
    });
"""


class ModelsTest(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = Path(directory.name)
        for file in FILES:
            (self.root / file).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / file, self.root / file)

    def text(self, file):
        return (self.root / file).read_text(encoding="utf-8")

    def add(self, number, enumerator):
        table = self.root / generate_models.TABLE
        table.write_text(self.text(generate_models.TABLE).replace("\n    });\n", NEW % (number, enumerator)), encoding="utf-8")

    def run_generator(self, *arguments):
        said = io.StringIO()
        with contextlib.redirect_stdout(said), contextlib.redirect_stderr(said):
            status = generate_models.main(arguments, self.root)
        return status, said.getvalue()

    def refusal(self):
        before = {file: self.text(file) for file in FILES}
        with self.assertRaises(SystemExit) as refused:
            self.run_generator()
        self.assertEqual({file: self.text(file) for file in FILES}, before)
        return str(refused.exception)

    def test_everything_is_up_to_date(self):
        self.assertEqual(self.run_generator("--check"), (0, ""))

    def test_a_row_is_all_that_a_model_needs(self):
        number = LAST + 1
        self.add(number, "kelReaderTypeScantronNew")
        status, said = self.run_generator("--check")
        self.assertEqual(status, 1)
        self.assertIn("types/Enumerations.h does not have the models of types/ModelTable.h; run scripts/generate_models.py", said)
        self.assertEqual(self.run_generator()[0], 0)
        self.assertEqual(self.run_generator("--check"), (0, ""))
        header, interface = self.text("types/Enumerations.h"), self.text("com/KELReader81U.idl")
        self.assertIn(f"    kelReaderTypeScantronNew = {number},\n}};\n", header)
        self.assertIn("kReaderTypeCount = kelReaderTypeScantronNew + 1;", header)
        self.assertIn(f"        kelReaderTypeScantronNew = {number}\n    }} kelReaderType;\n", interface)
        self.assertIn(f" {number} optical mark readers", self.text("README.md"))
        for file in FILES[1:]:
            was = (ROOT / file).read_text(encoding="utf-8").splitlines()
            self.assertLessEqual(len(set(self.text(file).splitlines()) - set(was)), 3, file)

    def test_a_number_is_never_used_twice(self):
        self.add(LAST, "kelReaderTypeScantronNew")
        self.assertEqual(self.refusal(), f"types/ModelTable.h: {LAST}: two models have this number; take the next free one")

    def test_numbers_have_no_gaps(self):
        self.add(LAST + 2, "kelReaderTypeScantronNew")
        self.assertIn("without a gap", self.refusal())

    def test_a_name_is_never_used_twice(self):
        self.add(LAST + 1, "kelReaderTypePDIVMR138")
        self.assertIn("two models are called kelReaderTypePDIVMR138", self.refusal())

    def test_a_name_begins_as_all_do(self):
        self.add(LAST + 1, "ScantronNew")
        self.assertIn('"ScantronNew" is no name of a model; try kelReaderType and the model', self.refusal())

    def test_both_enumerations_have_every_row(self):
        models = re.findall(r'^    \{(\d+), "(\w+)"', self.text(generate_models.TABLE), re.MULTILINE)
        for file in FILES[1:3]:
            published = re.findall(r"\b(kelReaderType\w+) = (\d+)", self.text(file))
            self.assertEqual({(name, number) for number, name in models}, set(published) - {("kelReaderTypeNone", "0")}, file)


if __name__ == "__main__":
    unittest.main()
