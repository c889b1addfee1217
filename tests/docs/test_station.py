# SPDX-License-Identifier: MIT
"""Tests that the page on stations has the keys, the states and the metrics that there are."""

import json
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

PROGRAM = Path(os.environ["KELREADER"]).resolve()
ROOT = Path(__file__).resolve().parents[2]
PAGE = (ROOT / "docs/station.md").read_text(encoding="utf-8")
SCHEMA = json.loads((ROOT / "station/station.schema.json").read_text(encoding="utf-8"))
KEYS = SCHEMA["properties"]
HAS_STREAMS = (PROGRAM.parent / "libKELReader81U_stream.so").exists()
PATIENCE = 600  # seconds, for a command that hangs


def rows(head):
    """The first and the second cell of each row of the table with this head."""
    table = PAGE.partition(f"| {head} |")[2].partition("\n\n")[0]
    return dict(re.findall(r"^\| (`.*?) \| (.*) \|$", table, re.MULTILINE))


def names(cell):
    return re.findall(r"`([^`]*)`", cell)


def listed(head):
    return {name for cell in rows(head) for name in names(cell)}


def state_of_a_station(form):
    """What a station with a reader and a stream says of itself."""
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "station.json"
        reader = {"name": "left", "model": 13, "simulate": {"unlimited": True, "count": 1}, "set": {"SleepTime": 1}}
        stream = {"stream": {"servers": ["localhost:1"]}} if HAS_STREAMS else {}
        file.write_text(json.dumps({"store": "s.db", "readers": [reader], **stream}), encoding="utf-8")
        variables = {**os.environ, "KELREADER_REGISTRY_DIR": f"{folder}/settings"}
        with subprocess.Popen([PROGRAM, "station", file], env=variables, stderr=subprocess.PIPE, text=True) as station:
            try:
                for line in station.stderr:
                    if "has no more sheets" in line:
                        break
                asked = [PROGRAM, "station", "--state", file, "--format", form]
                return subprocess.run(asked, env=variables, capture_output=True, text=True, check=True,
                                      timeout=PATIENCE).stdout
            finally:
                station.terminate()


class StationPageTest(unittest.TestCase):
    def test_the_page_has_every_key(self):
        described = rows("Key")
        self.assertEqual({name for cell in described for name in names(cell)}, set(KEYS))
        readers = set(names(described["`readers`"])) | {"print2"}  # print1 to print3
        self.assertEqual(readers, set(SCHEMA["$defs"]["reader"]["properties"]))
        self.assertEqual(set(names(described["`page`"])), set(KEYS["page"]["properties"]))
        self.assertLessEqual(set(KEYS["retry"]["properties"]), set(names(described["`retry`"])))
        stream = PAGE.partition("In the station's file:")[2]
        found = re.findall(r"^\| (`.*?) \|", stream.partition("| Key |")[2].partition("\n\n")[0], re.MULTILINE)
        self.assertEqual({name for cell in found for name in names(cell)}, set(KEYS["stream"]["properties"]))

    def test_the_page_has_every_state_and_every_metric(self):
        text = state_of_a_station("metrics")
        metrics = listed("Metric")
        if not HAS_STREAMS:
            metrics = {name for name in metrics if "_stream_" not in name}
        self.assertEqual(set(re.findall(r'state="(\w+)"', text)), listed("State"))
        self.assertEqual(set(re.findall(r"^# TYPE (\w+)", text, re.MULTILINE)), metrics)


if __name__ == "__main__":
    unittest.main()
