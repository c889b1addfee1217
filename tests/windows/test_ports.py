# SPDX-License-Identifier: MIT
"""The ports that kelreader lists. It opens each of them to see whether that can be done: nothing else may run meanwhile."""

import json
import unittest

from harness import SimulatedReader, WindowsTest, wine

PORT = 17
MAPPED = 9
PORTS_CLASS = "{4d36e978-e325-11ce-bfc1-08002be10318}"


class Ports(WindowsTest):
    def there(self, *arguments):
        return self.run_program("kelreader.exe", *arguments)

    def ports(self):
        return json.loads(self.there("ports", "--format", "json"))

    def test_a_number_for_a_port(self):
        self.there("ports", "set", MAPPED, f"COM{PORT}")
        with SimulatedReader(21, port=PORT, seed=7, count=1):
            ports = {entry["port"]: entry for entry in self.ports()}
            self.assertEqual((ports[MAPPED]["device"], ports[MAPPED]["opens"]), (f"COM{PORT}", True))
            self.assertEqual(ports[1]["device"], "COM1")
            self.assertIn('"event":"sheet"', self.there("scan", "--model", 21, "--port", MAPPED, "--max-sheets", 1, "--set",
                                                             "Timeout=600"))
        self.there("ports", "clear", MAPPED)
        listed = self.there("ports")
        self.assertIn(f"COM{PORT} is not there: File not found. Connect the reader", listed)
        self.assertIn("(COM16) is not a serial device: Invalid function.\n", listed)
        self.assertIn(f"Port {MAPPED} has no device", self.there("ports", "clear", MAPPED))

    def test_names_an_adapter_and_its_latency_timer(self):
        device = r"HKLM\System\CurrentControlSet\Enum\FTDIBUS\KELReader81U tests\0000"
        settings = device + r"\Device Parameters"
        with SimulatedReader(21, port=PORT, count=1, rate="wire"):
            self.addCleanup(wine, "reg", "delete", device.rpartition("\\")[0], "/f")
            for key, name, kind, value in ((device, "ClassGUID", "REG_SZ", PORTS_CLASS), (device, "Class", "REG_SZ", "Ports"),
                                           (device, "FriendlyName", "REG_SZ", f"USB Serial Port (COM{PORT})"),
                                           (settings, "PortName", "REG_SZ", f"COM{PORT}"),
                                           (settings, "LatencyTimer", "REG_DWORD", "16")):
                wine("reg", "add", key, "/v", name, "/t", kind, "/d", value, "/f", check=True)
            ports = {entry["device"]: entry for entry in self.ports()}
            self.assertEqual(ports[f"COM{PORT}"]["description"], "USB Serial Port")
            told = self.there("check", "--model", 21, "--device", f"COM{PORT}", "--format", "json")
        checked = [json.loads(line) for line in told.splitlines()]
        [timer] = [line for line in checked if line.get("check") == "buffering of the adapter"]
        self.assertEqual((timer["status"], timer["seen"]), ("warn", "16 ms"))
        self.assertIn("Device Manager", timer["advice"])
        self.assertTrue(checked[-1]["usable"], checked)


if __name__ == "__main__":
    unittest.main()
