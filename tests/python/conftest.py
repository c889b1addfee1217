# SPDX-License-Identifier: MIT
"""What the tests of the Python package share: readers without hardware, and settings of their own."""

import functools
import os
import tempfile
import warnings

# Before the package comes: a thread finds the folder when it first needs it, and stays with it.
_settings = tempfile.TemporaryDirectory()
os.environ["KELREADER_REGISTRY_DIR"] = _settings.name

import kelreader
import pytest

_simulate = kelreader.simulate


FOREVER = 300  # seconds: what has not happened after so long does not happen any more


def quick(model="AccelScan", sheets=None, **more):
    """A simulated reader that makes no pauses, and whose host is patient. Unless another one is asked for it is an ALS
    AccelScan: its dialogue waits for each reply and each sheet, however late they come on a busy machine. It reads marks
    as 2."""
    simulation = _simulate(model, sheets=sheets, **{"options": ["feed-ms=0"], **more})
    simulation.reader = functools.partial(simulation.reader, sleep_time=1, timeout=600)
    return simulation


@pytest.fixture(autouse=True)
def warnings_are_errors():
    """A report that nobody expects fails the test."""
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        yield


@pytest.fixture(autouse=True)
def ports_of_its_own():
    """What one test maps is not there for the next: a pseudo-terminal may come to have the number of an earlier one."""
    yield
    for port in range(1, 17):
        kelreader.unmap_port(port)


@pytest.fixture
def simulated():
    """Makes quick simulated readers with these sheets in their feeders."""
    made = []

    def make(sheets, **more):
        made.append(quick(sheets=sheets, **more))
        return made[-1].__enter__()

    yield make
    for one in made:
        one.__exit__()
