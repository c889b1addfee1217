# SPDX-License-Identifier: MIT
"""The base of the tests of the Windows edition: a Wine prefix, ports, readers connected to them. See README.md."""

import contextlib
import fcntl
import json
import os
import pathlib
import pty
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import tty
import unittest

BIN = pathlib.Path(os.environ["KEL_WINDOWS_BIN"])  # the programs and DLLs of the Windows edition
WIDTH = int(os.environ["KEL_WINDOWS_WIDTH"])  # 32 or 64 bits, theirs
READER_PROGRAM = os.environ["KEL_READER_PROGRAM"]  # the command kelreader of this system, for its simulated readers
PREFIX = pathlib.Path(os.environ["WINEPREFIX"])
PORTS = PREFIX / "ports"
NO_FILE = PREFIX / "no_device"

NOTHING_BEHIND = 15  # a port that leads nowhere
FILE_BEHIND = 16     # a port that leads to a file

PATIENCE = 600  # seconds: a program that has not ended after so long does not end

# Where Wine is: on this system, or in a root of its own (scripts/wine-root.sh).
_ROOT = os.environ.get("KEL_WINE_ROOT")
_IN_ROOT = [str(pathlib.Path(__file__).resolve().parents[2] / "scripts/wine-root.sh"), "run", _ROOT] if _ROOT else []
_LOADERS = {64: "/usr/lib/wine/wine64", 32: "/usr/lib/wine/wine"}
_WINESERVER = "/usr/lib/wine/wineserver"
_DISPLAY = PREFIX.with_name(PREFIX.name + ".display")  # the number of the display, and the process that has it
_NO_STREAMS = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


def environment(width=WIDTH, **more):
    """The environment of a program under Wine: a display of its own, no Mono, no browser, no debugger."""
    result = dict(os.environ)
    result.pop("DISPLAY", None)
    with contextlib.suppress(FileNotFoundError):
        result["DISPLAY"] = ":" + _DISPLAY.read_text().split()[0]
    result.update(WINEDEBUG="-all", WINEARCH="win64", WINEPREFIX=str(PREFIX), WINELOADER=_LOADERS[width], LC_ALL="C.UTF-8",
                  WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d;winedbg.exe=d")
    result.update(more)
    return result


def wine(*arguments, timeout=PATIENCE, check=False, cwd=BIN, env=None, width=WIDTH):
    """Runs a program under Wine to its end; its output is text. The system's own programs are those of the width."""
    # Not a pipe: Wine's own processes inherit it, and live longer.
    with tempfile.TemporaryFile("w+", errors="replace") as output:
        try:
            done = subprocess.run([*_IN_ROOT, _LOADERS[width], *map(str, arguments)], cwd=cwd,
                                  env=env or environment(width), timeout=timeout, stdin=subprocess.DEVNULL,
                                  stdout=output, stderr=subprocess.STDOUT)
        except subprocess.TimeoutExpired as late:
            output.seek(0)
            raise RuntimeError(f"{late}; its output:\n{output.read()}") from None
        output.seek(0)
        done.stdout = output.read()
    if check and done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, arguments))}: {done.returncode}\n{done.stdout}")
    return done


def version(build=BIN.parent):
    """The version of a Windows edition, "8.1.0"."""
    [line] = re.findall(r"^CMAKE_PROJECT_VERSION:STATIC=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)
    return line


@contextlib.contextmanager
def start_program(*arguments, stdin=subprocess.DEVNULL):
    """A program of BIN that runs meanwhile; what it writes is a pipe. The process is the program's own."""
    with subprocess.Popen([*_IN_ROOT, _LOADERS[WIDTH], *map(str, arguments)], cwd=BIN, env=environment(), text=True,
                          stdin=stdin, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
        try:
            yield process
        finally:
            process.kill()


def windows_path(path):
    """A path of this system as programs under Wine know it."""
    return "Z:" + str(path).replace("/", "\\")


def start_server():
    """Starts Wine, with a program that keeps its services running from one test to the next."""
    subprocess.run([*_IN_ROOT, _WINESERVER, "-p"], env=environment(), check=True, **_NO_STREAMS)
    subprocess.Popen([*_IN_ROOT, _LOADERS[WIDTH], "keep_alive.exe"], cwd=BIN, env=environment(),
                     start_new_session=True, **_NO_STREAMS)


def stop_server(env=None):
    for option in ("-k", "-w"):
        subprocess.run([*_IN_ROOT, _WINESERVER, option], env=env or environment(), check=False, **_NO_STREAMS)


def start_display():
    """A display that nobody looks at."""
    reading, writing = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "2560x1600x24", "-nolisten", "tcp"],
                              pass_fds=[writing], start_new_session=True, **_NO_STREAMS)
    os.close(writing)
    with os.fdopen(reading) as told:
        _DISPLAY.write_text(f"{told.readline().strip()} {server.pid}\n")


def stop_display():
    with contextlib.suppress(FileNotFoundError, ProcessLookupError):
        os.kill(int(_DISPLAY.read_text().split()[1]), signal.SIGTERM)
    _DISPLAY.unlink(missing_ok=True)


def make_prefix():
    """A new prefix with COM1 to COM17 mapped to links that tests make and remove."""
    if PREFIX.exists():
        stop_server()
        shutil.rmtree(PREFIX)
    shutil.copytree(_untouched_prefix(), PREFIX, symlinks=True, copy_function=_linked_or_copied)
    PORTS.mkdir()
    (PORTS / "file").write_text("no serial device")
    ports = [f'"COM{number}"="{port_link(number)}"' for number in range(1, 18)]
    _add_key("system.reg", r"[Software\\Wine\\Ports]", *ports)
    # No window manager is on the display: with each window Wine would wait two seconds for one.
    _add_key("user.reg", r"[Software\\Wine\\X11 Driver]", '"Managed"="N"')


def _add_key(file, *lines):
    """Adds a key to a registry that no Wine has read yet."""
    with open(PREFIX / file, "a", encoding="utf-8") as registry:
        registry.write("\n".join(["", *lines, ""]))


def _untouched_prefix():
    """A prefix as Wine makes it, which takes a while; made once for all that lie beside it."""
    prefix = PREFIX.with_name("untouched_prefix")
    with open(prefix.with_suffix(".lock"), "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not (prefix / "made").exists():
            shutil.rmtree(prefix, ignore_errors=True)
            env = environment(WINEPREFIX=str(prefix))
            wine("wineboot", "--init", cwd="/", env=env, check=True)
            # Script hosts register what they are made of at their first start.
            script = prefix / "nothing.vbs"
            script.write_text("WScript.Quit 0\n")
            for width in _LOADERS:
                with contextlib.suppress(FileNotFoundError):  # this Wine has one width
                    wine("cscript", "//nologo", windows_path(script), cwd="/",
                         env=environment(width, WINEPREFIX=str(prefix)), width=width)
            stop_server(env)
            (prefix / "made").touch()
    return prefix


def _linked_or_copied(source, copy):
    """The system's libraries and programs, which nobody changes, take no room and no time."""
    if pathlib.Path(source).suffix in (".dll", ".exe", ".drv", ".sys", ".ttf"):
        os.link(source, copy)
    else:
        shutil.copy2(source, copy)


def port_link(number):
    return PORTS / ("file" if number == FILE_BEHIND else f"com{number}")


def registry_values(key, width=WIDTH):
    """The values of a key as `reg query` shows them: name to (type, text)."""
    answer = wine("reg", "query", key, width=width)
    if answer.returncode != 0:
        return None
    rows = [line.split(None, 2) for line in answer.stdout.splitlines() if line.startswith("    ")]
    return {row[0]: (row[1], row[2] if len(row) > 2 else "") for row in rows}


def registry_has(key, width=WIDTH):
    return wine("reg", "query", key, width=width).returncode == 0


def class_keys(hive, width=WIDTH):
    """All keys of a hive's classes, as programs of a width see them."""
    folder = BIN if width == WIDTH else pathlib.Path(os.environ[f"KEL_WINDOWS_{width}"]) / "bin"
    return set(wine(folder / "class_keys.exe", hive, width=width, check=True).stdout.splitlines())


class SimulatedReader:
    """A simulated reader (`kelreader simulate`) connected to a port. What it reported is in `events` at the end."""

    def __init__(self, model, port=1, sheets=None, seed=1, count=3, form=None, rate="unlimited", faults=(), settings=()):
        arguments = [READER_PROGRAM, "simulate", "--model", str(model), "--link", str(port_link(port)), "--rate", rate]
        arguments += ["--sheets", str(sheets)] if sheets else ["--seed", str(seed), "--count", str(count)]
        arguments += ["--form", str(form)] if form else []
        for fault in faults:
            arguments += ["--fault", fault]
        for setting in settings:
            arguments += ["--setting", setting]
        self.events = []
        self._link = port_link(port)
        self._process = subprocess.Popen(arguments, stdout=subprocess.PIPE, text=True)
        self._collect()

    def _collect(self):
        first = self._process.stdout.readline()
        if not first:
            raise RuntimeError("no simulated reader")
        self.events.append(json.loads(first))

        def read():
            for line in self._process.stdout:
                self.events.append(json.loads(line))
        self._reading = threading.Thread(target=read, daemon=True)
        self._reading.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.send_signal(signal.SIGINT)
        self._process.wait(timeout=PATIENCE)
        self._reading.join()
        self._process.stdout.close()
        with contextlib.suppress(FileNotFoundError):
            self._link.unlink()


class FarEnd:
    """The far end of a port that does what lines of text ask it for; PortTest.h tells which."""

    def __init__(self, port=1):
        self._link = port_link(port)
        self._thread = threading.Thread(target=self._serve, daemon=True)
        self._ends = False

    def __enter__(self):
        self._open()
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._ends = True
        self._close()
        self._thread.join(timeout=PATIENCE)

    def _open(self):
        self._master, self._slave = pty.openpty()
        tty.setraw(self._slave)
        fresh = self._link.with_name(self._link.name + ".new")
        with contextlib.suppress(FileNotFoundError):
            fresh.unlink()
        fresh.symlink_to(os.ttyname(self._slave))
        fresh.rename(self._link)

    def _close(self):
        with contextlib.suppress(FileNotFoundError):
            self._link.unlink()
        os.close(self._slave)
        os.close(self._master)

    def _serve(self):
        pending = b""
        while not self._ends:
            try:
                pending += os.read(self._master, 4096)
            except OSError:
                if self._ends:
                    return
                time.sleep(0.01)
                continue
            while b"\n" in pending:
                order, pending = pending.split(b"\n", 1)
                self._do(order)

    def _do(self, order):
        word, _, rest = order.partition(b" ")
        if word == b"echo":
            self._send(rest)
        elif word == b"send":
            self._send(bytes(ord("a") + i % 26 for i in range(int(rest))))
        elif word == b"late":
            delay, _, text = rest.partition(b" ")
            time.sleep(int(delay) / 1000)
            self._send(text)
        elif word == b"hangup":
            self._send(rest)
            time.sleep(0.1)
            self._close()
            self._open()

    def _send(self, data):
        while data:
            data = data[os.write(self._master, data):]


def main():
    """harness.py start|stop: before and after all tests."""
    if sys.argv[1] == "start":
        stop_display()
        PREFIX.parent.mkdir(parents=True, exist_ok=True)
        start_display()
        make_prefix()
        start_server()
    else:
        stop_server()
        stop_display()


@contextlib.contextmanager
def _one_at_a_time(what):
    with open(PREFIX / f"{what}.lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield


def machine_wide():
    """For tests that change what the whole prefix has, such as registration: one at a time."""
    return _one_at_a_time("machine")


def on_the_screen():
    """For tests that show windows, which would take the focus from one another: one at a time. Innermost of both."""
    return _one_at_a_time("screen")


class WindowsTest(unittest.TestCase):
    """A test case of programs under Wine."""

    maxDiff = None

    def run_program(self, *arguments, timeout=PATIENCE, status=0, **more):
        """Runs a program and checks its exit status; the answer is its output."""
        answer = wine(*arguments, timeout=timeout, **more)
        self.assertEqual(answer.returncode, status, f"{' '.join(map(str, arguments))}:\n{answer.stdout}")
        return answer.stdout


if __name__ == "__main__":
    main()
