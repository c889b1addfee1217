"""The COM server as its hosts see it: surface, events, sheets, script hosts, registration, lifetime."""

import json
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from harness import BIN, READER_PROGRAM, SimulatedReader, WindowsTest, environment, machine_wide, registry_has, wine

EVENTS_PORT = 3
SHEETS_PORT = 12
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


def hive_keys(hive):
    """All keys of a hive's classes, by name."""
    answer = wine("reg", "query", hive + r"\Software\Classes", "/s")
    return {line for line in answer.stdout.splitlines() if line.startswith("HKEY_")}


class Clients(WindowsTest):
    def test_surface(self):
        self.run_program("com_surface.exe")

    def test_events(self):
        with SimulatedReader(model=24, port=EVENTS_PORT, seed=5, count=50) as reader:
            self.run_program("com_events.exe", EVENTS_PORT)
        self.assertNotIn("fault", [event["event"] for event in reader.events])

    def test_lifetime(self):
        with SimulatedReader(model=24, port=EVENTS_PORT, count=1):
            print(self.run_program("com_lifetime.exe", EVENTS_PORT, timeout=100))


if __name__ == "__main__":
    unittest.main()
