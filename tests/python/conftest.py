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

# No pauses: neither of the reader nor of the dialogue with it.
QUICK = {"options": ["feed-ms=0"]}


@pytest.fixture(autouse=True)
def warnings_are_errors():
    """A report that nobody expects fails the test."""
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        yield


@pytest.fixture
def simulated():
    """Makes a simulated VMR138 with these sheets in its feeder."""
    made = []

    def make(sheets, **more):
        one = kelreader.simulate("VMR138", sheets=sheets, **{**QUICK, **more})
        one.reader = functools.partial(one.reader, sleep_time=60)
        made.append(one)
        return one.__enter__()

    yield make
    for one in made:
        one.__exit__()
