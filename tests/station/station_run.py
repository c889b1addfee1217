# SPDX-License-Identifier: MIT
"""Stations as processes, for tests and for screenshots."""

import http.client
import json
import os
import re
import signal
import subprocess
import tempfile
import time
from pathlib import Path

# How long anything may take before it counts as hung, in seconds.
HUNG = 300


def simulated(name, model=21, count=4, seed=1, **more):
    """A simulated reader of a station: a Chatsworth, unless it is to be another one. It waits for its bytes as long as the
    busiest machine needs."""
    return {"name": name, "model": model, "set": {"SleepTime": 1, "Timeout": HUNG},
            "simulate": {"unlimited": True, "count": count, "seed": seed}, **more}


class Station:
    """A station at work in a folder of its own, or of somebody else's; `within` are words of a program that starts it."""

    def __init__(self, program, readers, folder=None, within=(), **more):
        self._own = tempfile.TemporaryDirectory() if folder is None else None
        self.folder = Path(folder or self._own.name)
        self.program = program
        self.file = self.folder / "station.json"
        self.file.write_text(json.dumps({
            "station": "hall", "store": "hall.db", "batch": "monday", "retry": {"first": 0.1, "longest": 0.2},
            "page": {"port": 0}, "metrics": {"port": 0}, "readers": readers, **more}))
        self.store = self.folder / "hall.db"
        self.errors = self.folder / "errors"
        with self.errors.open("w") as errors:
            self.process = subprocess.Popen([*within, program, "station", str(self.file)], stderr=errors,
                                            env=self.environment())

    def environment(self):
        return {**os.environ, "KELREADER_REGISTRY_DIR": str(self.folder)}

    def told(self):
        return self.errors.read_text(encoding="utf-8")

    def wait(self, condition):
        """Waits until something is so, and returns it; a fifth of the time goes into looking at most."""
        end = (looked := time.monotonic()) + HUNG
        while not (result := condition()):
            if (now := time.monotonic()) > end:
                raise AssertionError("It did not come to that. The station told:\n" + self.told())
            time.sleep(max(0.02, 4 * (now - looked)))
            looked = time.monotonic()
        return result

    def address(self, kind="page"):
        """Where the page is, or the metrics are, without a slash at the end."""
        return self.wait(lambda: (found := re.search(rf"The {kind} (?:is|are) at (\S+?)/(?:metrics)?\.\n", self.told()))
                         and found[1])

    def connect(self, kind="page"):
        return http.client.HTTPConnection(self.address(kind).partition("//")[2], timeout=HUNG)

    def request(self, path, method="GET", headers=None, kind="page"):
        """The status, the headers and the text of an answer."""
        connection = self.connect(kind)
        try:
            connection.request(method, path, headers=headers or {})
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read().decode("utf-8")
        finally:
            connection.close()

    def json(self, path):
        status, _, text = self.request(path)
        assert status == 200, text
        return json.loads(text)

    def wait_for_sheets(self, count):
        self.wait(lambda: sum(reader["sheets"] for reader in self.json("/state")["readers"]) == count)

    def run(self, *arguments):
        return subprocess.run([self.program, *map(str, arguments)], capture_output=True, text=True, timeout=HUNG,
                              env=self.environment())

    def stop(self):
        """Ends it in order; its exit status."""
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(HUNG)

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        if self._own:
            self._own.cleanup()
