# SPDX-License-Identifier: MIT
"""Servers of NATS JetStream on the loop-back address, for tests and figures: started, killed, frozen, asked.

Every wait ends by what happens; what has not happened after PATIENCE seconds does not happen any more.
"""

import contextlib
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import time
import urllib.error
import urllib.request
from pathlib import Path

PATIENCE = 600
PROGRAM = shutil.which("nats-server") or shutil.which("nats-server", path="/usr/sbin:/usr/local/sbin")


def wait_for(condition, what):
    """Waits until something is so, and gives what the condition gave; a fifth of the time goes into looking at most."""
    end = (looked := time.monotonic()) + PATIENCE
    while not (result := condition()):
        if (now := time.monotonic()) > end:
            raise TimeoutError(f"{what} does not happen any more")
        time.sleep(max(0.02, 4 * (now - looked)))
        looked = time.monotonic()
    return result


def report(counted, faults):
    """Prints what was counted, and what is wrong with it; the exit status."""
    print(f"{counted}, {len(faults)} faults")
    for fault in faults:
        print(fault)
    return 1 if faults else 0


def miscounted(marked, messages, entries):
    """What is wrong with the number of messages in a stream, as a list: all that a store has marked as sent are there,
    each once. The last entries may have been made or sent while the station ended."""
    return [] if marked <= messages <= entries else [
        f"{marked} of {entries} sheets and reports were sent, and the stream has {messages} messages"]


def free_ports(count):
    """Ports that nobody has now."""
    sockets = [socket.socket() for _ in range(count)]
    try:
        for one in sockets:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in sockets]
    finally:
        for one in sockets:
            one.close()


class Server:
    """One server, which keeps its ports and its folder whenever it is started again."""

    def __init__(self, folder, ports, name="one", routes=(), lines=""):
        if not PROGRAM:
            sys.exit("nats-server is missing; scripts/install-packages.sh test installs it")
        self.name = name
        self.port, self.monitor, route = ports
        self.folder = Path(folder) / name
        self.folder.mkdir()
        self.config = self.folder / "server.conf"
        text = [f"server_name: {name}", f'listen: "127.0.0.1:{self.port}"', f'http: "127.0.0.1:{self.monitor}"',
                f'jetstream {{ store_dir: "{self.folder / "streams"}" }}', lines]
        if routes:
            peers = ", ".join(f'"nats-route://127.0.0.1:{port}"' for port in routes)
            text.append(f'cluster {{ name: halls, listen: "127.0.0.1:{route}", routes: [{peers}] }}')
        self.config.write_text("\n".join(text) + "\n", encoding="utf-8")
        self.process = None

    @property
    def url(self):
        return f"nats://127.0.0.1:{self.port}"

    def start(self):
        with open(self.folder / "log", "a", encoding="utf-8") as log:
            self.process = subprocess.Popen([PROGRAM, "-c", self.config], stdout=log, stderr=log)

    def is_ready(self):
        if self.process.poll() is not None:
            raise RuntimeError((self.folder / "log").read_text(encoding="utf-8"))
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{self.monitor}/healthz", timeout=10) as answer:
                return json.load(answer)["status"] == "ok"
        except (OSError, urllib.error.URLError):
            return False

    def streams(self):
        """The server's streams by name, as it describes them; nothing if it cannot be asked."""
        try:
            url = f"http://127.0.0.1:{self.monitor}/jsz?accounts=true&streams=true"
            with urllib.request.urlopen(url, timeout=10) as answer:
                accounts = json.load(answer).get("account_details") or []
        except (OSError, urllib.error.URLError):
            return {}
        return {stream["name"]: stream for account in accounts for stream in account.get("stream_detail") or []}

    def kill(self):
        self._end(signal.SIGKILL)

    def stop(self):
        self._end(signal.SIGTERM)

    def freeze(self):
        os.kill(self.process.pid, signal.SIGSTOP)

    def thaw(self):
        os.kill(self.process.pid, signal.SIGCONT)

    def _end(self, number):
        if self.process and self.process.poll() is None:
            self.process.send_signal(number)
            self.process.wait(PATIENCE)


class Servers:
    """Some servers: one alone, or a cluster. Gone with the block."""

    def __init__(self, folder, count, lines=""):
        self.count = count
        ports = free_ports(3 * count)
        groups = [ports[3 * index:3 * index + 3] for index in range(count)]
        routes = [group[2] for group in groups] if count > 1 else ()
        self.all = [Server(folder, group, f"server{index}", routes, lines) for index, group in enumerate(groups)]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for server in self.all:
            server.kill()

    @property
    def urls(self):
        return [server.url for server in self.all]

    def start(self):
        for server in self.all:
            server.start()
        self.wait_ready()

    def wait_ready(self):
        for server in self.all:
            wait_for(server.is_ready, f"{server.name} being ready")

    def leader(self, stream):
        """The server that leads a stream of a cluster, or nothing while there is none."""
        for server in self.all:
            cluster = server.streams().get(stream, {}).get("cluster", {})
            if cluster.get("leader"):
                return next(one for one in self.all if one.name == cluster["leader"])
        return None

    def messages(self, stream):
        """How many messages a stream holds, as the server that leads it says; nothing while there is none. Another one,
        after it was down, may get its copy much later."""
        keeper = self.all[0] if self.count == 1 else self.leader(stream)
        return keeper and keeper.streams().get(stream, {}).get("state", {}).get("messages")


def publish(server, subject, content):
    """Sends one message without an answer, as any program may."""
    with _connected(server) as stream:
        stream.write(f"PUB {subject} {len(content)}\r\n".encode() + content + b"\r\nPING\r\n")
        stream.flush()
        while not stream.readline().startswith(b"PONG"):
            pass


def ask(server, subject, content):
    """Sends a question of JSON, and gives the answer."""
    question = json.dumps(content).encode()
    with _connected(server) as stream:
        stream.write(f"SUB answer 1\r\nPUB {subject} answer {len(question)}\r\n".encode() + question + b"\r\n")
        stream.flush()
        while not (line := stream.readline()).startswith(b"MSG"):
            pass
        return json.loads(stream.read(int(line.split()[-1])))


@contextlib.contextmanager
def _connected(server):
    with socket.create_connection(("127.0.0.1", server.port), PATIENCE) as line, line.makefile("rwb") as stream:
        stream.readline() # INFO
        stream.write(b'CONNECT {"verbose":false}\r\n')
        yield stream
