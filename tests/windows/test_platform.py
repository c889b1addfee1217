# SPDX-License-Identifier: MIT
"""The Windows edition from within: ports, pump, registry, faults; sheets of each serial family, read as this system's
edition reads them."""

import concurrent.futures
import json
import pathlib
import subprocess
import tempfile
import unittest

from harness import PATIENCE, READER_PROGRAM, FarEnd, SimulatedReader, WindowsTest, port_link, registry_values

PROGRAM = "windows_platform_tests.exe"
DIALOG = "OptionsDialog*"  # test_dialog.py

# A model of each serial family, and the columns of its sheets.
MODELS = {
    "Apperson Advantage 1200": (40, 12),
    "Apperson Advantage Link": (1, 12),
    "Chatsworth OMR2000": (21, 12),
    "EZData": (23, 12),
    "OpScan 8": (26, 48),
    "Peripheral Dynamics VMR138": (24, 14),
    "Scanmark 2500": (13, 48),
    "Sekonic SR-607": (8, 48),
}
FIRST_PORT = 4
ROWS = 20
SHEETS = 2


class FromWithin(WindowsTest):
    def run_tests(self, *arguments):
        with FarEnd(port=1):
            output = self.run_program(PROGRAM, *arguments)
        self.assertIn("[  PASSED  ]", output)
        self.assertNotIn("Running 0 tests", output)

    def test_platform(self):
        self.run_tests(f"--gtest_filter=-{DIALOG}")

        saved = registry_values(r"HKCU\Software\KELReader81U tests\Saved")
        self.assertEqual(len(saved), 19)
        self.assertEqual({kind for kind, _ in saved.values()}, {"REG_SZ"})
        texts = {name: text for name, (_, text) in saved.items()}
        self.assertLessEqual({"ScannerType": "13", "ScannerPort": "12", "SleepTime": "75", "ScannerStopBits": "2",
                              "ScannerParity": "N", "Duplex": "True"}.items(), texts.items())


def printed_form(event):
    """A sheet of the command as print_batch prints it."""
    lines = [f"sheet {event['sheet']}"]
    for side in (event["side1"], event["side2"]):
        lines += [f"{len(side)} rows"] + ["".join(f" {mark}" for mark in row) for row in side]
    return lines + [f"barcode [{barcode}]" for barcode in event["barcodes"]]


class Sheets(WindowsTest):
    def read_here(self, port, model, form):
        """What the command of this system reads."""
        with SimulatedReader(model, port=port, seed=7, count=3, form=form):
            output = subprocess.run(
                [READER_PROGRAM, "scan", "--model", str(model), "--device", str(port_link(port)), "--form", form,
                 "--set", "Timeout=600", "--max-sheets", str(SHEETS)],
                text=True, timeout=PATIENCE, stdout=subprocess.PIPE, check=True).stdout
        events = [json.loads(line) for line in output.splitlines()]
        return sum((printed_form(event) for event in events if event["event"] == "sheet"), [])

    def compare(self, port, model, columns):
        with tempfile.TemporaryDirectory() as folder:
            form = pathlib.Path(folder) / "form.json"
            form.write_text(json.dumps({"recognitionMode": "page", "side1Rows": [ROWS], "side1Cols": [columns]}))
            expected = self.read_here(port, model, form)
            with SimulatedReader(model, port=port, seed=7, count=3, form=form) as reader:
                printed = self.run_program("print_batch.exe", port, model, SHEETS, ROWS, columns)
            self.assertIn("sheet 2", expected)
            self.assertEqual(printed.split("\n")[:-1], expected)
            self.assertNotIn("fault", [event["event"] for event in reader.events])

    def test_same_as_here(self):
        with concurrent.futures.ThreadPoolExecutor(len(MODELS)) as together:
            results = {name: together.submit(self.compare, port, *model)
                       for port, (name, model) in enumerate(MODELS.items(), FIRST_PORT)}
        for name, result in results.items():
            with self.subTest(name):
                result.result()


if __name__ == "__main__":
    unittest.main()
