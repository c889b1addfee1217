# SPDX-License-Identifier: MIT
"""The command kelreader: what it writes on Windows is what it writes here."""

import json
import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

from harness import (NOTHING_BEHIND, PATIENCE, READER_PROGRAM, SimulatedReader, WindowsTest, on_the_screen,
                     registry_values, start_program, windows_path, wine)

COMMAND = "kelreader.exe"
WRONG_USAGE = 2
INTERRUPTED = 130
PORT = 17
# A machine that is busy takes its time to read a sheet.
PATIENT = ("--set", "Timeout=600")
SCAN = ("scan", "--model", 26, "--device", f"COM{PORT}", *PATIENT)
# A model of each family, but for the VMR138: its fixed pauses are too short for a pseudo-terminal on a busy machine.
MODELS = (40, 1, 21, 23, 26, 13, 8, 30)
FORM = {"recognitionMode": "window", "side1Rows": [63], "side1Cols": [48],
        "windows": [{"StartRow": 2, "NumRows": 5, "RowGap": 1, "StartCol": 3, "NumCols": 4, "ColGap": 1, "Page": 1,
                     "Orientation": 1}]}

# The head of the box of a USB reader without its library.
BOXES = {"English": "Reader Library Missing", "German": "Bibliothek des Leseger\u00e4ts fehlt",
         "French": "Biblioth\u00e8que du lecteur manquante", "Spanish": "Falta la biblioteca del lector"}


def here(*arguments, status=0):
    """What the command of this system writes."""
    done = subprocess.run([READER_PROGRAM, *map(str, arguments)], text=True, timeout=PATIENCE, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL)
    assert done.returncode == status, (arguments, done.returncode)
    return done.stdout


class Command(WindowsTest):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def there(self, *arguments, status=0):
        return self.run_program(COMMAND, *arguments, status=status)

    def test_models(self):
        for arguments in (("models", "--format", "json"), ("model", "13"), ("--version",), ("help", "scan")):
            with self.subTest(arguments):
                self.assertEqual(self.there(*arguments), here(*arguments))

    def test_form_with_letters_in_its_name(self):
        form = self.folder / "M\u00e4rz \u8a66.json"
        form.write_text(json.dumps(FORM))
        picture = self.folder / "Bl\u00e4tter \u8a66.svg"
        self.assertEqual(self.there("form", windows_path(form), "--picture", windows_path(picture)), here("form", form))
        drawn = picture.read_bytes()
        here("form", form, "--picture", picture)
        self.assertEqual(drawn, picture.read_bytes())

    def test_reads_a_simulated_reader_of_each_family(self):
        for model in MODELS:
            with self.subTest(model=model):
                arguments = ("scan", "--simulate", "--model", model, "--seed", 7, "--count", 2, "--max-sheets", 2, "--rate",
                             "unlimited", "--set", "SleepTime=40", *PATIENT)
                read = self.there(*arguments)
                self.assertIn('"event":"sheet","sheet":2', read)
                self.assertEqual(read, here(*arguments))

    def test_reads_the_simulated_reader_with_fixed_pauses(self):
        read = self.there("scan", "--simulate", "--model", 24, "--count", 2, "--max-sheets", 2, *PATIENT)
        self.assertIn('"event":"sheet","sheet":2', read)
        self.assertNotIn('"event":"failure"', read)

    def test_a_simulated_reader_that_is_unplugged(self):
        read = self.there("scan", "--simulate", "--model", 21, "--seed", 7, "--count", 3, "--fault", "unplug@sheet=2",
                          *PATIENT, status=1)
        failures = [json.loads(line) for line in read.splitlines() if '"event":"failure"' in line]
        self.assertTrue(failures, read)
        self.assertEqual(failures[0]["number"], 8020)
        self.assertIn("has hung up", failures[0]["description"])

    def test_reads_from_a_port_by_its_name(self):
        arguments = ("scan", "--model", 21, "--max-sheets", 1, *PATIENT)
        with SimulatedReader(21, port=PORT, seed=7, count=1):
            read = self.there(*arguments, "--device", f"COM{PORT}")
        self.assertEqual(read, here(*arguments, "--simulate", "--seed", 7, "--count", 1))

    def test_checks_a_simulated_reader(self):
        for model, fault, usable in ((21, None, True), (21, "switched-off:0", False), (30, None, True)):
            with self.subTest(model=model, fault=fault):
                report = self.folder / f"report {model} {usable}"
                arguments = ["check", "--simulate", "--model", model, "--sheets", 1, "--format", "json", "--report",
                             windows_path(report)]
                told = self.there(*arguments, *(["--fault", fault] if fault else []), status=0 if usable else 1)
                self.assertEqual(json.loads(told.splitlines()[-1])["usable"], usable)
                # The report comes to the same verdict wherever it is opened.
                again = here("check", "--replay", report, "--format", "json", status=0 if usable else 1)
                self.assertEqual(json.loads(again.splitlines()[-1]), json.loads(told.splitlines()[-1]))
                self.assertRegex(report.read_text(), r"(?m)^# date: \d{4}-\d\d-\d\d \d\d:\d\d:\d\d [+-]\d{4}$")

    def test_a_port_that_is_not_there(self):
        answer = self.there("scan", "--model", 21, "--port", NOTHING_BEHIND, status=1)
        self.assertIn('"number":8002', answer)
        self.assertIn(f"(COM{NOTHING_BEHIND}) is not there", answer)

    def test_a_box_of_a_procedure_goes_to_standard_error_in_the_language_that_was_asked_for(self):
        for language, title in BOXES.items():
            with self.subTest(language):
                answer = self.there("scan", "--model", 30, "--max-sheets", 1, f"/L={language}", status=1)
                self.assertRegex(answer, f"{title}: .*OMRAPI\\.DLL")

    def test_a_console_shows_every_letter_and_keeps_its_code_page(self):
        for language, title in BOXES.items():
            with self.subTest(language), on_the_screen():
                command = (COMMAND, "scan", "--model", 30, "--max-sheets", 1, f"/L={language}")
                shown = self.run_program("in_console.exe", 80, " ".join(map(str, command)), status=1)
                self.assertEqual(shown.splitlines()[0], "code page 437")
                self.assertIn(f"{title}: ", shown)

    def test_keeps_settings_in_the_registry(self):
        key = r"HKCU\Software\KELReader81U tests\Command"
        self.there("settings", "set", key, "ScannerPort", "7")
        self.assertEqual(self.there("settings", "get", key, "ScannerPort"), "7\n")
        self.assertEqual(registry_values(key)["ScannerPort"], ("REG_SZ", "7"))
        wine("reg", "add", key, "/v", "List", "/t", "REG_MULTI_SZ", "/d", r"a\0b", "/f", check=True)
        self.assertEqual(self.there("settings", "get", key, "List"), "a\\0b\n")
        file = self.folder / "settings.reg"
        self.there("settings", "export", key, windows_path(file))
        self.assertIn('"ScannerPort"="7"\r\n', file.read_bytes().decode("utf-16"))
        self.there("settings", "delete", key)
        self.there("settings", "import", windows_path(file))
        self.assertEqual(sorted(self.there("settings", "list", key).splitlines()),
                         [r"List         REG_MULTI_SZ  a\0b", "ScannerPort  REG_SZ        7"])
        self.there("settings", "delete", key)
        self.assertIsNone(registry_values(key))

    def test_a_trace_is_replayed(self):
        trace = self.folder / "trace"
        self.there("scan", "--simulate", "--model", 21, "--count", 1, "--max-sheets", 1, *PATIENT, "--trace",
                   windows_path(trace))
        self.assertEqual(self.there("replay", windows_path(trace)), here("replay", trace))

    def test_wrong_usage(self):
        for arguments, sentence in (
                (("scna",), "There is no command 'scna'"),
                (("scan", "--model", "13"), "Where is the reader?"),
                (("scan", "--model", "13", "--simulate", "--store", "x"), "there is no store"),
                (("simulate", "--model", "13"), "On Windows no reader can be played"),
                (("scan", "--model", "13", "--simulate", "--form", "nothing.json"), "nothing.json")):
            with self.subTest(arguments):
                self.assertIn(sentence, self.there(*arguments, status=WRONG_USAGE))
        self.assertEqual(self.there("simulate", "--list-faults"), here("simulate", "--list-faults"))

    def stop_after_a_sheet(self, stop, *arguments, **more):
        """Stops a scan that runs; what it still writes, how it ends, and what the reader has seen of it."""
        with SimulatedReader(26, port=PORT, count=1000) as reader, start_program(*arguments, **more) as scan:
            while '"event":"sheet"' not in scan.stdout.readline():
                self.assertIsNone(scan.poll())
            stop(scan)
            end = json.loads(scan.stdout.read().splitlines()[-1])
            self.assertEqual(scan.wait(PATIENCE), INTERRUPTED)
        self.assertEqual((end["event"], end["cancelScan"]), ("end", True))
        self.assertNotIn("fault", [event["event"] for event in reader.events])
        self.assertEqual(reader.events[-1]["event"], "ejected")

    def test_control_c_ends_a_scan_in_order(self):
        self.stop_after_a_sheet(lambda scan: scan.send_signal(signal.SIGINT), COMMAND, *SCAN)

    def test_a_console_that_is_closed_ends_a_scan_in_order(self):
        def close(scan):
            scan.stdin.write("\n")
            scan.stdin.flush()
        self.stop_after_a_sheet(close, "close_console.exe", " ".join(map(str, (COMMAND, *SCAN))), stdin=subprocess.PIPE)


if __name__ == "__main__":
    unittest.main()
