#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the command where something is scarce: memory, room for files, threads, descriptors, processor time. Each run has
to end by itself, with success or with a sentence.

Usage: check_scarce_systems.py KELREADER [--sample] [--sanitized]

  --sample     a few commands only
  --sanitized  neither scarce memory nor scarce descriptors: the sanitizers need them for themselves
  --verbose    the last words of each run
"""

import argparse
import itertools
import json
import os
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import threading

PATIENCE = 600  # seconds: a run that has not ended after so long hangs

FORM = {"side1Rows": [20], "side1Cols": [48]}
REGISTRY_FILE = 'Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Scarce]\r\n' + "".join(
    f'"v{number}"="{number}"\r\n' for number in range(5000))
TRANSCRIPT = '# model: 13\n# max-sheets: 1\n> 1B "SRST" 0D\n< 0D\n'


class Flood:
    """A server that sends zeros to whoever calls, without end."""

    def __init__(self):
        self.socket = socket.create_server(("127.0.0.1", 0))
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            threading.Thread(target=self.flood, args=self.socket.accept()[:1], daemon=True).start()

    @staticmethod
    def flood(caller):
        try:
            while True:
                caller.sendall(bytes(65536))
        except OSError:
            caller.close()

    @property
    def device(self):
        return f"tcp:127.0.0.1:{self.socket.getsockname()[1]}"


def user_of_limits():
    """Root has no limit of processes, and becomes nobody, who may still reach the program."""
    if os.geteuid() != 0:
        return []
    return ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "--inh-caps=-all,+dac_override",
            "--ambient-caps=-all,+dac_override"]


PROCESSOR_TIME = "one second of processor time"

# What stands before the command.
SCARCE_FOR_SANITIZERS = {
    **{f"{size} MB of {what}": ["prlimit", f"--{limit}={size << 20}"]
       for size in (30, 60) for what, limit in (("addresses", "as"), ("data", "data"))},
    **{f"{number} descriptors": ["prlimit", f"--nofile={number}"] for number in (3, 6, 10, 20)},
}
SCARCITIES = {
    "files of no byte": ["prlimit", "--fsize=0"],
    "files of 4 kB": ["prlimit", "--fsize=4096"],
    "no further process or thread": [*user_of_limits(), "prlimit", "--nproc=0"],
    PROCESSOR_TIME: ["prlimit", "--cpu=1:6"],  # what runs on after the signal is killed
    "nothing": [],
}


def commands(folder, flood, scarce):
    form, registry, transcript = folder / "form.json", folder / "many.reg", folder / "session.txt"
    form.write_text(json.dumps(FORM))
    registry.write_bytes(REGISTRY_FILE.encode())
    transcript.write_text(TRANSCRIPT)
    scan = ["scan", "--form", form, "--max-sheets", "2", "--set", "SleepTime=1", "--set", "Timeout=1"]
    simulated = [*scan, "--simulate", "--rate", "unlimited"]
    sample = [
        ["model", "13", "--format", "json"],
        ["settings", "import", registry],
        [*simulated, "--model", "13"],
        [*simulated, "--model", "33"],
        [*scan, "--model", "13", "--device", flood.device],
    ]
    if scarce == PROCESSOR_TIME:
        sample.append([*simulated, "--model", "22", "--count", "1000000"])
    others = [
        ["models"],
        ["ports"],
        ["settings", "set", "HKCU\\Scarce", "x", "1"],
        ["settings", "list", "HKCU\\Scarce"],
        ["settings", "export", "HKCU\\Scarce", folder / "out.reg"],
        [*simulated, "--model", "22", "--out", folder / "out.json"],
        [*simulated, "--model", "5", "--trace", folder / "trace.txt"],
        [*simulated, "--model", "5", "--pictures", folder / "pictures", "--format", "html"],
        ["replay", transcript],
        ["locate", "--model", "23"],
        [*scan, "--model", "13", "--device", "tcp:127.0.0.1:1"],
        *([*scan, "--model", model, "--device", flood.device] for model in ("1", "5", "7", "20", "23", "24", "39")),
    ]
    return sample, others


def complaint(done):
    """What is wrong with the end of a run; empty if nothing."""
    if done.returncode < 0:
        return f"ended by {signal.Signals(-done.returncode).name}"
    words = done.stderr.strip()
    if any(sign in words for sign in ("terminate called", "Sanitizer", "std::", "runtime error")):
        return "ended without a sentence of its own"
    if done.returncode != 0 and not words and '"failure"' not in done.stdout:
        return f"ended with status {done.returncode} and no word"
    return ""


def run(command, environment):
    """How a run ended, and what is wrong with that."""
    process = subprocess.Popen(command, env=environment, text=True, errors="replace", stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    try:
        output, errors = process.communicate(timeout=PATIENCE)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        return None, "hangs"
    done = subprocess.CompletedProcess(command, process.returncode, output, errors)
    return done, complaint(done)


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("kelreader", type=pathlib.Path)
    arguments.add_argument("--sample", action="store_true")
    arguments.add_argument("--sanitized", action="store_true")
    arguments.add_argument("--verbose", action="store_true", help="shows the last words of each run")
    options = arguments.parse_args()
    program = options.kelreader.resolve()
    flood = Flood()
    runs = refused = 0
    faults = []
    for scarce, prefix in {**({} if options.sanitized else SCARCE_FOR_SANITIZERS), **SCARCITIES}.items():
        with tempfile.TemporaryDirectory() as place:
            folder = pathlib.Path(place)
            folder.chmod(0o777)
            # The look for leaks needs a thread, and a system that has one.
            environment = dict(os.environ, KELREADER_REGISTRY_DIR=str(folder / "registry"), LC_ALL="C.UTF-8",
                               ASAN_OPTIONS="detect_leaks=0")
            sample, others = commands(folder, flood, scarce)
            for words in itertools.chain(sample, [] if options.sample else others):
                command = [str(program), *map(str, words)]
                done, wrong = run([*prefix, *command], environment)
                runs += 1
                refused += done is not None and done.returncode != 0
                shown = f"{scarce}: kelreader {' '.join(command[1:])}"
                last = done.stderr.strip().rpartition("\n")[2][-200:] if done else ""
                if options.verbose:
                    print(f"{shown}\n    {done.returncode if done else ''} {last}", flush=True)
                if wrong:
                    faults.append(f"{shown}: {wrong}\n    {last}")
    print(f"  {runs} runs of the command on scarce systems, {refused} of them refused with a sentence")
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
