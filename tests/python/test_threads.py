# SPDX-License-Identifier: MIT
"""Tests of threads and signals."""

import queue
import signal
import subprocess
import sys
import threading

import kelreader
import pytest
from conftest import FOREVER, quick


def in_thread(task):
    """The result of a task in a thread of its own, or what it raised."""
    results = queue.Queue()

    def run():
        try:
            results.put(task())
        except BaseException as raised:
            results.put(raised)

    thread = threading.Thread(target=run)
    thread.start()
    result = results.get(timeout=FOREVER)
    thread.join(FOREVER)
    return result


def test_a_second_thread_is_told_while_a_batch_is_the_firsts(simulated):
    with simulated([[[1]], [[1]]]).reader() as reader:
        for sheet in reader:
            told = in_thread(lambda: reader.port)
            assert isinstance(told, kelreader.InUseError)
            assert "Another thread uses this object" in str(told)
            assert isinstance(in_thread(sheet.reject), kelreader.InUseError)
        assert in_thread(lambda: reader.port) == 1, "nobody uses it any more"


def test_a_second_thread_is_told_while_the_first_waits():
    with quick(count=0) as simulation:
        with simulation.reader(max_sheets=1) as reader:
            waiting = threading.Thread(target=lambda: list(reader))
            waiting.start()
            told = None
            while told is None:
                try:
                    reader.port
                except kelreader.InUseError as error:
                    told = error
            reader.stop()
            waiting.join(FOREVER)
            assert not waiting.is_alive()


def test_waiting_lets_other_threads_run_and_stop_ends_it():
    with quick(count=0) as simulation:
        with simulation.reader(max_sheets=1) as reader:
            sheets = []
            waiting = threading.Thread(target=lambda: sheets.extend(reader))
            waiting.start()
            for _ in range(1000):  # this thread has the interpreter while the other waits
                pass
            while waiting.is_alive():
                reader.stop()
                waiting.join(0.05)
            assert sheets == []


def test_two_readers_in_one_loop(simulated):
    first, second = simulated([[[1, 0]], [[0, 0]]]), simulated([[[0, 1]], [[1, 1]]])
    with first.reader() as one, second.reader() as other:
        pairs = [(a.side1.sum(), b.side1.sum()) for a, b in zip(one, other)]
    assert pairs == [(2, 2), (0, 4)]


def test_many_readers_in_as_many_threads():
    count = 16
    results = queue.Queue()

    def read(number):
        try:
            marks = [[[1] * (number % 12 + 1)]] * 3
            with quick(sheets=marks) as simulation:
                with simulation.reader() as reader:
                    results.put((number, [sheet.side1.sum() // 2 for sheet in reader], simulation.errors))
        except BaseException as raised:
            results.put((number, raised, None))

    threads = [threading.Thread(target=read, args=(number,)) for number in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(FOREVER)
    read_by = sorted(results.get_nowait() for _ in range(count))
    assert read_by == [(number, [number % 12 + 1] * 3, []) for number in range(count)]


# Whoever runs the tests may ignore an interrupt; the program is not to.
INTERRUPTED = """
import kelreader, signal
signal.signal(signal.SIGINT, signal.default_int_handler)
with kelreader.simulate("AccelScan", sheets=[[[1]]], options=["feed-ms=0"]) as simulation:
    try:
        with simulation.reader(max_sheets=-1, timeout=600) as reader:
            for sheet in reader:
                print("sheet", flush=True)
    except KeyboardInterrupt:
        print("interrupted", flush=True)
print("errors", simulation.errors)
"""


def test_ctrl_c_ends_the_session_in_order():
    program = subprocess.Popen([sys.executable, "-c", INTERRUPTED], stdout=subprocess.PIPE, text=True)
    assert program.stdout.readline() == "sheet\n"
    # Whenever it comes: while the loop's body runs, or while the next sheet is waited for.
    program.send_signal(signal.SIGINT)
    told, _ = program.communicate(timeout=FOREVER)
    assert told == "interrupted\nerrors []\n"
    assert program.returncode == 0


def test_a_handler_that_raises_ends_the_wait_too():
    class Late(Exception):
        pass

    def late(*_):
        raise Late

    before = signal.signal(signal.SIGALRM, late)
    try:
        with quick(count=0) as simulation:
            with simulation.reader(max_sheets=1) as reader:
                signal.setitimer(signal.ITIMER_REAL, 0.05)
                with pytest.raises(Late):
                    list(reader)
                assert reader.raw.CancelScan is True
                assert reader.port == 1, "it can be used again"
    finally:
        signal.signal(signal.SIGALRM, before)


LEFT_OPEN = """
import kelreader
simulation = kelreader.simulate("AccelScan", sheets=[[[1]], [[1]]], options=["feed-ms=0"]).__enter__()
reader = simulation.reader(timeout=600)
sheet = next(iter(reader))
sheets = iter(reader)
sheet = next(sheets)
print("left")
"""


def test_a_program_may_end_within_a_batch():
    program = subprocess.run([sys.executable, "-c", LEFT_OPEN], capture_output=True, text=True, timeout=FOREVER)
    assert (program.stdout, program.returncode) == ("left\n", 0), program.stderr
    assert program.stderr == ""
