#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Kills, freezes and stops the servers of a stream while a station sends, and counts what comes out at its other end.

Three servers keep the stream; simulated readers feed all the while. The collector is killed; the server at which it is
connected is frozen, so that the connection hangs and does not close; a server is killed, then the one that leads; the one
at which the station is connected is frozen; all three are stopped and started. At the end each sheet of the station's store
is in the collector's store, once, and in the stream once. The stores are read without the program that wrote them.

Usage: kill_streams.py KELREADER [--readers N] [--sheets N] [--rounds N]
"""

import argparse
import collections
import json
import os
import subprocess
import sys
import tempfile
import urllib.request
from pathlib import Path

from store_rows import number_in, query
from stream_servers import PATIENCE, Servers, miscounted, report, wait_for

STREAM = "KELREADER"
# How many sheets come through between two blows.
BETWEEN = 5

# Who is connected to the servers: the beginning of its name there, its log, and what it says when its connection is up.
Client = collections.namedtuple("Client", "name log up")
STATION = Client("kelreader station", "station.log", "takes sheets")
COLLECTOR = Client("kelreader collect", "collect.log", "Collecting from the stream")
DOWN = "keeps the sheets meanwhile"


class Run:
    """The station, the collector and their stores."""

    def __init__(self, program, folder, servers, readers, sheets):
        self.folder = folder
        self.servers = servers
        self.total = readers * sheets
        file = folder / "hall.json"
        file.write_text(json.dumps({
            "station": "hall", "store": "hall.db", "batch": "all", "retry": {"first": 0.05, "longest": 0.5},
            "stream": {"servers": servers.urls, "replicas": 3},
            "readers": [{"name": f"reader{number}", "model": 13, "set": {"SleepTime": 1},
                         "simulate": {"unlimited": True, "count": sheets, "seed": number}}
                        for number in range(readers)]}), encoding="utf-8")
        self.logs = [open(folder / name, "w", encoding="utf-8") for name in (STATION.log, COLLECTOR.log)]
        self.commands = [[program, "station", file],
                         [program, "collect", "--from", ",".join(servers.urls), "--store", folder / "all.db"]]
        self.processes = [subprocess.Popen(command, stderr=log) for command, log in zip(self.commands, self.logs)]

    def rows(self, store, text):
        return query(self.folder / store, text)

    def collected(self):
        return number_in(self.folder / "all.db", "SELECT count(*) FROM sheet")

    def wait_progress(self):
        """Until some more sheets have come through, or all have."""
        wanted = min(self.total, self.collected() + BETWEEN)
        wait_for(lambda: self.alive() and self.collected() >= wanted, "collecting")

    def alive(self):
        for process, log in zip(self.processes, self.logs):
            if process.poll() is not None:
                raise RuntimeError(Path(log.name).read_text(encoding="utf-8"))
        return True

    def is_up(self, client):
        """Whether what a client of the stream said last of it is that it is up."""
        told = self.told(client)
        return told.rfind(client.up) > told.rfind(DOWN)

    def times_down(self, client):
        return self.told(client).count(DOWN)

    def told(self, client):
        return (self.folder / client.log).read_text(encoding="utf-8")

    def kill_collector(self):
        self.processes[1].kill()
        self.processes[1].wait(PATIENCE)
        self.processes[1] = subprocess.Popen(self.commands[1], stderr=self.logs[1])

    def end(self):
        for process in self.processes:
            process.terminate()
        status = [process.wait(PATIENCE) for process in self.processes]
        for log in self.logs:
            log.close()
        return status


def server_of(client, run, servers):
    """The server at which a client is connected; nothing while it looks for another one."""
    found = []
    for server in servers.all:
        with urllib.request.urlopen(f"http://127.0.0.1:{server.monitor}/connz", timeout=PATIENCE) as answer:
            found += [server for connection in json.load(answer)["connections"]
                      if connection.get("name", "").startswith(client.name)]
    return found[0] if len(found) == 1 and run.is_up(client) else None


def freeze_server_of(client, run, servers):
    """The client's connection hangs, and it gives that up and goes on with another server."""
    server = wait_for(lambda: server_of(client, run, servers), f"{client.name} being connected")
    before = run.times_down(client)
    server.freeze()
    wait_for(lambda: run.alive() and run.times_down(client) > before, "giving up a connection")
    run.wait_progress()
    server.thaw()
    servers.wait_ready()
    print(f"froze the server of {client.name}", flush=True)


def strike(run, servers):
    """One round of blows."""
    run.kill_collector()
    run.wait_progress()
    print("killed the collector", flush=True)

    freeze_server_of(COLLECTOR, run, servers)

    for name, choose in (("a server", lambda: next(one for one in servers.all if one is not servers.leader(STREAM))),
                         ("the leader", lambda: servers.leader(STREAM))):
        server = wait_for(choose, "a leader")
        server.kill()
        run.wait_progress()
        server.start()
        servers.wait_ready()
        print(f"killed {name}", flush=True)

    freeze_server_of(STATION, run, servers)

    for server in servers.all:
        server.stop()
    for server in servers.all:
        server.start()
    servers.wait_ready()
    run.wait_progress()
    print("stopped and started all servers", flush=True)


def faults_of(run, servers):
    sent = run.rows("hall.db", "SELECT reader, number, side1, time FROM sheets ORDER BY reader, number")
    found = run.rows("all.db", "SELECT reader, number, side1, time FROM sheets ORDER BY reader, number")
    faults = []
    if len(found) != run.total:
        faults.append(f"{run.total} sheets were fed, and {len(found)} were collected")
    if found != sent:
        faults.append("the sheets that were collected are not those that were stored")
    for reader in sorted({row[0] for row in found}):
        numbers = [row[1] for row in found if row[0] == reader]
        if numbers != list(range(1, len(numbers) + 1)):
            faults.append(f"{reader}: the numbers are not 1 to {len(numbers)}, each once")
    # The station goes on, and what it finds at a reader that is empty is sent too.
    marked = run.rows("hall.db", "SELECT sent FROM store")[0][0]
    messages = wait_for(lambda: servers.messages(STREAM), "a leader")
    entries = run.rows("hall.db", "SELECT last FROM store")[0][0]
    faults += miscounted(marked, messages, entries)
    if aside := run.rows("all.db", "SELECT count(*) FROM unread")[0][0]:
        faults.append(f"{aside} messages could not be read")
    return faults


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("program", type=Path)
    arguments.add_argument("--readers", type=int, default=16)
    arguments.add_argument("--sheets", type=int, default=500, help="of each reader")
    arguments.add_argument("--rounds", type=int, default=10)
    options = arguments.parse_args()
    with tempfile.TemporaryDirectory() as name, Servers(name, 3) as servers:
        folder = Path(name)
        os.environ["KELREADER_REGISTRY_DIR"] = str(folder / "settings")
        servers.start()
        run = Run(options.program.resolve(), folder, servers, options.readers, options.sheets)
        try:
            run.wait_progress()
            for _ in range(options.rounds):
                strike(run, servers)
            wait_for(lambda: run.alive() and run.collected() >= run.total, "collecting all sheets")
            wait_for(lambda: run.rows("hall.db", "SELECT last - sent FROM store") == [(0,)], "sending all")
            faults = faults_of(run, servers)
            collected = run.collected()
        finally:
            status = run.end()
    if status != [0, 130]:
        faults.append(f"station and collector ended with {status}")
    return report(f"{run.total} sheets of {options.readers} readers, {options.rounds} rounds of blows to three servers: "
                  f"{collected} sheets collected", faults)


if __name__ == "__main__":
    sys.exit(main())
