# SPDX-License-Identifier: MIT
"""The COM server as its hosts see it: surface, events, sheets, script hosts, registration, lifetime."""

import concurrent.futures
import json
import pathlib
import queue
import shutil
import subprocess
import tempfile
import unittest

from harness import (BIN, PATIENCE, READER_PROGRAM, WIDTH, FarEnd, SimulatedReader, WindowsTest, class_keys, environment,
                     machine_wide, on_the_screen, registry_has, wine, windows_path)

EVENTS_PORT = 3
SHEETS_PORT = 12
RECORDS_PORT = 13
EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples" / "windows"

# A model of each serial family: its number, and rows and columns of its form where it has to be told.
SERIAL_MODELS = {
    "Apperson": (1, 30, 12),
    "Chatsworth": (21, 20, 12),
    "EZData": (23, 20, 12),
    "OpScan": (2, 20, 48),
    "Peripheral Dynamics": (24, 20, 14),
    "Scanmark": (13, 20, 48),
    "Sekonic": (8, 20, 48),
}
SHEETS = 2
LIBRARY = r"\TypeLib\{D26AAE3A-FCED-44AA-A71D-B230E65BED1F}"
READER_CLASS = r"\CLSID\{2C6C95C8-7189-412B-91E7-B1BFFF79C578}"
READER_INTERFACE = r"\Interface\{872252CF-07E3-44D5-AB6C-AD1B55B5E3DE}"
READER_NAME = r"\KELReader81U.clsKELReader"


# For what has no width: its programs are made for one.
once = unittest.skipUnless(WIDTH == 64, "run in 64 bits")


class Clients(WindowsTest):
    def test_surface(self):
        self.run_program("com_surface.exe")

    def test_arrays(self):
        self.run_program("com_arrays.exe")

    def test_events(self):
        with SimulatedReader(model=21, port=EVENTS_PORT, seed=5, count=50) as reader:
            self.run_program("com_events.exe", EVENTS_PORT)
        self.assertNotIn("fault", [event["event"] for event in reader.events])

    @once
    def test_records(self):
        # The reader feeds by itself: a sheet more than the host asks for would come in place of the last answer.
        with SimulatedReader(model=40, port=RECORDS_PORT, seed=5, count=2) as reader:
            self.run_program("com_records.exe", RECORDS_PORT)
        self.assertNotIn("fault", [event["event"] for event in reader.events])

    def test_options(self):
        with SimulatedReader(model=21, port=SHEETS_PORT, count=1), on_the_screen():
            self.run_program("com_options.exe", SHEETS_PORT)

    def test_callers(self):
        self.run_program("com_callers.exe")

    def test_faults(self):
        self.run_program(BIN / "com_faults.exe", cwd=BIN / "faulty")

    @once
    def test_reload(self):
        with SimulatedReader(model=21, port=EVENTS_PORT, count=1):
            self.run_program("com_reload.exe", EVENTS_PORT)

    @once
    def test_lifetime(self):
        with SimulatedReader(model=21, port=SHEETS_PORT, count=1):
            self.run_program("com_lifetime.exe", SHEETS_PORT)


# Code pages: a language that has it, and a text of its letters in 6 bytes; the third letter's last byte in Japanese is a
# backslash's code.
CODE_PAGES = {1252: ("de_DE.UTF-8", "Pr\u00fc\u00dfe\u20ac"), 932: ("ja_JP.UTF-8", "\u8a66\u9a13\u30bd")}


class Texts(WindowsTest):
    """Texts in the letters of two code pages, one of them with two bytes a letter."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def file(self, name, content):
        file = self.folder / name
        file.write_text(json.dumps(content))
        return file

    @once
    def test_code_pages(self):
        for page, (language, text) in CODE_PAGES.items():
            with self.subTest(page):
                on_line = text.encode(f"cp{page}").decode("latin-1")  # as files of simulated readers have it
                records = self.file(f"{page}.json", [{"fields": {"Student ID": on_line}}])
                log = self.folder / f"{page}.log"
                library = self.file(f"library{page}.json", {"sheets": [{"side1": [[0] * 48], "barcodes": [on_line]}],
                                                            "logFile": windows_path(log)})
                with SimulatedReader(model=40, port=RECORDS_PORT, sheets=records) as reader, FarEnd(SHEETS_PORT):
                    self.run_program(BIN / "com_texts.exe", page, RECORDS_PORT, SHEETS_PORT, "/L=German", cwd=BIN / "simulated",
                                     env=environment(LC_ALL=language, KEL_OMRAPI_SIMULATION=windows_path(library)))
                self.assertNotIn("fault", [event["event"] for event in reader.events])
                lines = [json.loads(line) for line in log.read_text("utf-8").split("\n") if line.startswith("{")]
                printed_lines = [line.get("text") for line in lines if line["event"] == "printed"]
                self.assertIn(on_line, printed_lines)
                self.assertNotIn("fault", log.read_text("utf-8"))


def printed(sheet):
    """A sheet of the command as the example host prints it."""
    lines = [f"Sheet {sheet['sheet']}" + "".join(f" {barcode}" for barcode in sheet["barcodes"])]
    for row, marks in enumerate(sheet["side1"], 1):
        lines += [f"  row {row}, column {column}: {mark}" for column, mark in enumerate(marks, 1) if mark]
    return [line.rstrip() for line in lines]


class Sheets(WindowsTest):
    """What hosts read from simulated readers is what the command reads from the same ones."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.enterContext(machine_wide())
        self.run_program("regsvr32", "/s", "KELReader81U.dll")
        self.addCleanup(self.run_program, "regsvr32", "/s", "/u", "KELReader81U.dll")

    def here(self, *arguments):
        answer = subprocess.run([READER_PROGRAM, "scan", *map(str, arguments)], stdout=subprocess.PIPE, text=True,
                                check=True, timeout=PATIENCE)
        events = [json.loads(line) for line in answer.stdout.splitlines()]
        return [line for event in events if event["event"] == "sheet" for line in printed(event)]

    def there(self, *arguments, **more):
        output = self.run_program(BIN / "ReadBatch.exe", *arguments, **more)
        return [line.rstrip() for line in output.splitlines()]

    def read_on_both_sides(self, family, port):
        """What the command and what a host reads of a family, and what the simulated reader has to say of the host."""
        model, rows, columns = SERIAL_MODELS[family]
        form = self.folder / f"{family}.json"
        form.write_text(json.dumps({"side1Rows": [rows], "side1Cols": [columns]}))
        expected = self.here("--model", model, "--simulate", "--seed", 7, "--count", SHEETS, "--rate", "unlimited",
                             "--form", form, "--max-sheets", SHEETS)
        with SimulatedReader(model, port=port, seed=7, count=SHEETS, form=form) as reader:
            read = self.there(model, port, SHEETS, rows, columns, PATIENCE // 2)
        return expected, read, [event["event"] for event in reader.events]

    def test_serial_families(self):
        ports = queue.SimpleQueue()
        for port in (EVENTS_PORT, SHEETS_PORT, RECORDS_PORT):
            ports.put(port)

        def read(family):
            port = ports.get()
            try:
                return self.read_on_both_sides(family, port)
            finally:
                ports.put(port)

        with concurrent.futures.ThreadPoolExecutor(3) as readers:
            done = {family: readers.submit(read, family) for family in SERIAL_MODELS}
        for family, outcome in done.items():
            with self.subTest(family):
                expected, sheets, events = outcome.result()
                self.assertEqual(sheets, expected)
                self.assertGreater(len(expected), SHEETS)
                self.assertNotIn("fault", events)

    def test_usb_family(self):
        sheets = self.folder / "sheets.json"
        marks = [[0] * 48 for _ in range(20)]
        marks[4][6] = marks[19][47] = 12
        sheets.write_text(json.dumps({"sheets": [{"side1": marks}] * SHEETS}))
        read = self.there(30, 1, SHEETS, 20, 48, cwd=BIN / "simulated",
                          env=environment(KEL_OMRAPI_SIMULATION=windows_path(sheets)))
        self.assertEqual(read, ["Sheet 1", "  row 5, column 7: 12", "  row 20, column 48: 12",
                                "Sheet 2", "  row 5, column 7: 12", "  row 20, column 48: 12"])

    def test_script_hosts(self):
        for script in ("ReadSheets.vbs", "ReadSheets.js"):
            with self.subTest(script), SimulatedReader(21, port=SHEETS_PORT, seed=7, count=SHEETS):
                output = self.run_program("cscript", "//nologo", windows_path(EXAMPLES / script), 21, SHEETS_PORT, SHEETS,
                                          20, 12, status=SHEETS)
                self.assertEqual(output.split("\n")[:3], ["Chatsworth Data OMR2000", "Sheet 1: 40 timing marks",
                                                          "Sheet 2: 40 timing marks"])
        # A host's failure object hears what goes wrong.
        for script in ("ReadSheets.vbs", "ReadSheets.js"):
            with self.subTest(script):
                output = self.run_program("cscript", "//nologo", windows_path(EXAMPLES / script), 24, 17, SHEETS, status=0)
                self.assertIn("Failure 8002 in basRead.ReaderInit", output)


class Registration(WindowsTest):
    def test_none_is_needed(self):
        with machine_wide():
            self.assertFalse(registry_has(r"HKLM\Software\Classes" + READER_CLASS))
            self.run_program("com_unregistered.exe")

    def test_an_error_library_by_its_name(self):
        with machine_wide():
            self.run_program("com_crash.exe")
            self.assertFalse(registry_has(r"HKLM\Software\Classes\KELError10.Error"))

    def test_nothing_stays_behind(self):
        with machine_wide():
            for arguments, hive in ((("/s",), "HKLM"), (("/s", "/n", "/i:user"), "HKCU")):
                with self.subTest(hive):
                    before = class_keys("HKLM"), class_keys("HKCU")
                    self.run_program("regsvr32", *arguments, "KELReader81U.dll")
                    for key in (LIBRARY, READER_CLASS, READER_INTERFACE, READER_NAME):
                        self.assertTrue(registry_has(hive + r"\Software\Classes" + key), key)
                    self.run_program("regsvr32", *arguments, "/u", "KELReader81U.dll")
                    self.assertEqual((class_keys("HKLM"), class_keys("HKCU")), before)


if __name__ == "__main__":
    unittest.main()
