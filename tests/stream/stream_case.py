# SPDX-License-Identifier: MIT
"""What tests of streams have in common: a server, stations that send and collectors. KELREADER names the program."""

import json
import os
import signal
import subprocess
import sys
import tempfile
import threading
import unittest
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[2] / "scripts"))
from store_rows import query
from stream_servers import PATIENCE, Servers, miscounted, wait_for

PROGRAM = Path(os.environ["KELREADER"]).resolve()
STREAM = "KELREADER"


class Command:
    """The command at work; what it says is collected."""

    def __init__(self, folder, *arguments, program=PROGRAM, **variables):
        environment = {**os.environ, "KELREADER_REGISTRY_DIR": str(Path(folder) / "settings"), **variables}
        self.process = subprocess.Popen([program, *arguments], cwd=folder, env=environment, stderr=subprocess.PIPE,
                                        stdout=subprocess.DEVNULL, text=True)
        self.lines = []
        self.thread = threading.Thread(target=lambda: self.lines.extend(iter(self.process.stderr.readline, "")))
        self.thread.start()

    def says(self, text):
        try:
            wait_for(lambda: any(text in line for line in self.lines), f"'{text}'")
        except TimeoutError:
            raise AssertionError(f"it says {self.lines} and not '{text}'") from None

    def end(self, number=signal.SIGTERM):
        """The exit status."""
        if self.process.poll() is None:
            self.process.send_signal(number)
        status = self.process.wait(PATIENCE)
        self.thread.join()
        self.process.stderr.close()
        return status


class StreamCase(unittest.TestCase):
    """A folder, a server that is not started yet, and what sends to it and collects from it."""

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.servers = self.enterContext(Servers(self.folder, 1))
        self.server = self.servers.all[0]

    def enterContext(self, manager):
        result = manager.__enter__()
        self.addCleanup(manager.__exit__, None, None, None)
        return result

    def command(self, *arguments, **more):
        command = Command(self.folder, *arguments, **more)
        self.addCleanup(command.end, signal.SIGKILL)
        return command

    def station(self, sheets=5, name="hall", stream=None, readers=("left", "right"), seed=0):
        file = self.folder / f"{name}.json"
        file.write_text(json.dumps({
            "station": name, "store": f"{name}.db", "batch": "all", "retry": {"first": 0.05, "longest": 0.2},
            "stream": stream or {"servers": self.servers.urls},
            "readers": [{"name": reader, "model": 13, "set": {"SleepTime": 1},
                         "simulate": {"unlimited": True, "count": sheets, "seed": seed}}
                        for seed, reader in enumerate(readers, seed)]}), encoding="utf-8")
        file.chmod(0o640)
        return self.command("station", file)

    def collector(self, *more):
        return self.command("collect", "--from", self.server.url, "--store", "all.db", *more)

    def sheets(self, store):
        return query(self.folder / store, "SELECT station, reader, batch, number, time, model, side1, barcodes, record "
                                          "FROM sheets ORDER BY station, reader, number")

    def unsent(self, store):
        return query(self.folder / store, "SELECT last - sent FROM store")

    def assert_each_once(self, *stores):
        """The stream has each entry of stations that have ended once: what was acknowledged, and no more than there is.
        A reader that is empty is looked at now and then, which makes an entry that may not be sent any more."""
        sent, last = map(sum, zip(*(query(self.folder / store, "SELECT sent, last FROM store")[0] for store in stores)))
        messages = self.servers.messages(STREAM)
        self.assertEqual(miscounted(sent, messages, last), [])
        return messages

    def wait_sent(self, store, sheets):
        """Until the readers of a station have fed all, and the stream has it."""
        wait_for(lambda: len(self.sheets(store)) == sheets and self.unsent(store) == [(0,)], "sending all sheets")
