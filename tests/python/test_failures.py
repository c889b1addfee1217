# SPDX-License-Identifier: MIT
"""Tests of what is raised and what is warned of."""

import pickle
import time
import warnings

import kelreader
import pytest
from conftest import FOREVER, quick


def test_a_start_that_fails_is_raised_with_its_report_and_its_advice():
    with kelreader.Reader("VMR138", port=5) as reader:
        with pytest.raises(kelreader.ReaderError) as raised:
            list(reader)
    error = raised.value
    assert (error.number, error.type, error.title) == (8002, kelreader.ReportType.RUN_TIME, "")
    assert error.source.startswith("basRead.ReaderInit")
    assert error.port == 5
    assert error.description.startswith("Invalid port number: Port 5 has no device.")
    assert error.cause == "Port 5 has no device."
    assert error.remedy == "Assign it to one: kelreader ports set 5 DEVICE"
    assert error.__notes__ == [f"Cause: {error.cause}", f"Do: {error.remedy}"]
    assert error.reports[0].sentence == str(error)
    assert len(error.reports) > 1, "closing what never opened is reported as well"


def test_a_read_that_fails_is_raised_after_the_sheets_before_it(simulated):
    simulation = simulated([[[1]], [[1]], [[1]]], faults=["unplug@sheet=2"])
    numbers = []
    with simulation.reader() as reader:
        with pytest.raises(kelreader.ReaderError) as raised:
            for sheet in reader:
                numbers.append(sheet.number)
    assert numbers == [1]
    assert raised.value.description
    assert raised.value.remedy, "the page for operators says what to do"


def test_a_report_that_ends_nothing_is_a_warning(simulated):
    simulation = simulated([[[1]]])
    numbers = []
    with simulation.reader() as reader:
        with pytest.warns(kelreader.ReaderWarning) as warned:
            for sheet in reader:
                numbers.append(sheet.number)
                simulation._device.end()  # it is gone when the batch, which has all its sheets, is to be ended
    assert numbers == [1]
    assert all(warning.message.report.description for warning in warned)
    assert warned[0].filename == __file__


def test_a_report_that_does_not_end_the_batch_is_a_warning_before_the_sheet():
    happened = []
    with quick("OpScan 5", count=3, faults=["garble@byte=300"]) as simulation:
        with simulation.reader(max_sheets=3) as reader:
            with pytest.warns(kelreader.ReaderWarning) as warned:
                for sheet in reader:
                    happened.append((len(warned), sheet.number))
    assert happened == [(1, 1), (1, 2), (1, 3)]
    assert warned[0].message.report.source
    assert warned[0].filename == __file__


def test_an_error_can_be_sent_to_another_process():
    with kelreader.Reader("VMR138", port=5) as reader:
        with pytest.raises(kelreader.ReaderError) as raised:
            list(reader)
    again = pickle.loads(pickle.dumps(raised.value))
    assert (again.reports, str(again), again.number) == (raised.value.reports, str(raised.value), 8002)


def patiently(ask):
    """The answer to what a reader has a tenth of a second to answer: on a busy machine it is asked again."""
    latest = time.monotonic() + FOREVER
    while time.monotonic() < latest:
        try:
            if (answer := ask()) is not None:
                return answer
        except kelreader.ReaderError:
            pass
    return None


def test_locate_and_firmware_answer_or_raise():
    with quick("EZData") as simulation:
        kelreader.map_port(3, simulation.device)
        with kelreader.Reader("EZData", port=1) as reader, warnings.catch_warnings():
            warnings.simplefilter("ignore")
            assert patiently(reader.locate) == 3
            assert reader.port == 3
            assert patiently(reader.firmware) == "EZData 4.10"
    with kelreader.Reader("VMR138", port=5) as reader:
        assert reader.locate() is None, "a model that cannot be searched for"


def test_the_ports_are_listed_and_mapped():
    kelreader.map_port(3, "/nowhere/reader")
    listed = {port.port: port for port in kelreader.ports()}
    assert sorted(number for number in listed if number) == list(range(1, 17))
    assert (listed[3].device, listed[3].opens) == ("/nowhere/reader", False)
    assert listed[3].reason
    assert kelreader.unmap_port(3) is True
    assert kelreader.unmap_port(3) is False
    with pytest.raises(kelreader.UsageError, match="port has to be a whole number from 1 to 16, not 17."):
        kelreader.map_port(17, "/dev/null")
