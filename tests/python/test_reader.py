# SPDX-License-Identifier: MIT
"""Tests of the reader: sheets as arrays, and what the loop may do with them."""

import gc
import itertools
import weakref

import kelreader
import numpy
import pytest
from conftest import quick

SHEETS = [[[1, 0, 0], [0, 1, 0]], [[0, 0, 0], [0, 0, 0]], [[0, 0, 1], [0, 0, 0]]]


def test_each_sheet_is_an_array(simulated):
    with simulated(SHEETS).reader() as reader:
        sheets = list(reader)
    assert [sheet.number for sheet in sheets] == [1, 2, 3]
    side = sheets[0].side1
    assert isinstance(side, numpy.ndarray)
    assert side.dtype == numpy.int16
    assert side.shape == (128, 12)
    assert side[:2, :3].tolist() == [[2, 0, 0], [0, 2, 0]]
    assert side.sum() == 4
    assert not sheets[1].side1.any()
    assert numpy.argwhere(sheets[2].side1).tolist() == [[0, 2]]
    assert sheets[0].side2 is None
    assert sheets[0].side1_timing_marks == 2
    assert sheets[0].record is None


def test_an_array_is_the_sheets_own_memory_and_outlives_it(simulated):
    with simulated(SHEETS).reader() as reader:
        sheet = next(iter(reader))
    side = sheet.side1
    assert numpy.shares_memory(side, sheet.side1)
    assert not side.flags.writeable
    with pytest.raises(ValueError):
        side[0, 0] = 1
    del sheet, reader
    gc.collect()
    assert side[0, 0] == 2
    changed = side.copy()
    changed[0, 0] = 7
    assert side[0, 0] == 2


def test_both_sides_and_barcodes(simulated):
    sheet = {"side1": [[1, 2], [3, 4]], "side2": [[5, 6], [7, 0]], "barcodes": ["4711"]}
    form = {"side1Rows": [2], "side1Cols": [2], "side2Rows": [2], "side2Cols": [2]}
    with quick("OpScan 5", [sheet], form=form) as simulation:
        with simulation.reader(duplex=True, duplex_form=True, barcode=True) as reader:
            (read,) = list(reader)
    assert read.side1[:2, :2].tolist() == [[1, 2], [3, 4]]
    assert read.side2[:2, :2].tolist() == [[5, 6], [7, 0]]
    assert read.barcodes == ["4711"]
    assert simulation.errors == []


def test_a_sheet_is_rejected_while_it_is_in_the_reader(simulated):
    simulation = simulated(SHEETS)
    rejected = []
    with simulation.reader() as reader:
        for sheet in reader:
            assert sheet.in_reader
            if not sheet.side1.any():
                sheet.reject()
            rejected.append(sheet.rejected)
        assert not sheet.in_reader
        with pytest.raises(kelreader.UsageError, match="Sheet 3 is not in the reader any more"):
            sheet.reject()
    simulation.__exit__()
    assert rejected == [False, True, False]
    assert simulation.errors == []


def test_a_sheet_is_printed_on_with_its_own_text():
    sheets = [{"side1": [[1, 0]]}, {"side1": [[0, 1]]}, {"side1": [[1, 1]]}]
    with quick("Scanmark 2500", sheets) as simulation:
        with simulation.reader(printing=True) as reader:
            read = []
            for sheet in reader:
                if sheet.number == 1:
                    sheet.print("No. 1")
                elif sheet.number == 3:
                    sheet.print("No. 3")
                    sheet.reject()
                read.append(sheet)
    assert [(sheet.printed, sheet.printed_lines) for sheet in read] == [(True, ["No. 1"]), (False, []), (False, [])]
    assert simulation.errors == []


def test_a_text_that_cannot_be_printed_is_refused(simulated):
    with quick("Scanmark 2500", [[[1]]]) as simulation:
        with simulation.reader(printing=True) as reader:
            for sheet in reader:
                with pytest.raises(kelreader.UsageError, match="a line to print has to be a text of the characters"):
                    sheet.print("\u20ac")
                with pytest.raises(kelreader.UsageError, match="This model prints at most 1 line on a sheet."):
                    sheet.print("a", "b")
    with simulated([[[1]]]).reader() as reader:
        for sheet in reader:
            with pytest.raises(kelreader.UsageError, match="say printing=True"):
                sheet.print("a")


# Of one row each: in page mode a Scanmark sends 48 columns a row.
ROWS = [[[1, 1, 0]], [[0, 0, 0]], [[0, 0, 1]]]


# A Scanmark is told when a session begins. Others see it in the line, which a busy machine may have closed and opened again
# before they look.
def test_leaving_the_loop_ends_the_batch_and_the_next_goes_on():
    with quick("Scanmark 2500", ROWS) as simulation:
        with simulation.reader() as reader:
            for sheet in reader:
                break
            assert not sheet.in_reader
            assert sheet.side1.sum() == 2
            rest = list(itertools.islice(reader, 2))
            assert [sheet.number for sheet in rest] == [1, 2]
            assert [sheet.side1.sum() for sheet in rest] == [0, 1]
    assert simulation.errors == []


def test_an_exception_in_the_loop_ends_the_batch_in_order():
    def judge(sheet):
        raise LookupError(sheet.number)

    with quick("Scanmark 2500", ROWS) as simulation:
        with simulation.reader() as reader:
            with pytest.raises(LookupError) as raised:
                reader.read(judge)
            assert raised.value.args == (1,)
            assert raised.traceback[-1].name == "judge"
            assert [sheet.side1.sum() for sheet in itertools.islice(reader, 1)] == [0]
    assert simulation.errors == []


def test_a_callback_may_end_the_batch(simulated):
    with simulated(SHEETS).reader() as reader:
        assert reader.read(lambda sheet: sheet.number < 2) == 2


def test_stop_ends_the_batch_after_the_sheet(simulated):
    with simulated(SHEETS).reader() as reader:
        numbers = []
        for sheet in reader:
            numbers.append(sheet.number)
            reader.stop()
        assert numbers == [1]


def test_a_closed_reader_says_so(simulated):
    reader = simulated(SHEETS).reader()
    reader.close()
    reader.close()
    assert repr(reader) == "<Reader, closed>"
    with pytest.raises(kelreader.UsageError, match="It is closed; make another one."):
        reader.port
    with pytest.raises(kelreader.UsageError, match="closed"):
        list(reader)


def test_a_reader_that_is_forgotten_in_a_batch_ends_it(simulated):
    reader = simulated(SHEETS).reader()
    sheets = iter(reader)
    sheet = next(sheets)
    forgotten = weakref.ref(reader)
    del reader, sheets
    gc.collect()
    assert forgotten() is None
    assert not sheet.in_reader


def test_settings_have_the_catalogues_words(simulated):
    with simulated(SHEETS).reader(recognition_threshold=17, parity="E") as reader:
        assert (reader.recognition_threshold, reader.parity) == (17, "E")
        reader.flow_control = kelreader.FlowControl.HARDWARE
        assert reader.flow_control == 2
        reader.stop_bits = 1.5
        assert reader.stop_bits == 1.5
        reader.duplex = True
        assert reader.duplex is True
        assert reader.reader_type == 22
        assert reader.reader_name == "Chatsworth Data ALS AccelScan OMR"
        with pytest.raises(AttributeError):
            reader.reader_type = 3


@pytest.mark.parametrize(
    "name, value, sentence",
    [
        ("port", "1", "port has to be a whole number from -32768 to 32767, not '1'."),
        ("port", True, "port has to be a whole number from -32768 to 32767, not True."),
        ("timeout", 2**31, "timeout has to be a whole number from -2147483648 to 2147483647, not 2147483648."),
        ("duplex", 1, "duplex has to be True or False, not 1."),
        ("parity", "\u20ac", "parity has to be a text of the characters of Latin-1, not '\u20ac'."),
        ("stop_bits", "one", "stop_bits has to be a number such as 1 or 1.5, not 'one'."),
    ],
)
def test_a_value_that_does_not_fit_is_refused_and_changes_nothing(simulated, name, value, sentence):
    with simulated(SHEETS).reader() as reader:
        before = getattr(reader, name)
        with pytest.raises(kelreader.UsageError) as refused:
            setattr(reader, name, value)
        assert str(refused.value) == sentence
        assert getattr(reader, name) == before


def test_what_a_reader_is_made_of_is_checked_at_once(tmp_path):
    with pytest.raises(kelreader.UsageError, match="Which model"):
        kelreader.Reader()
    with pytest.raises(kelreader.UsageError, match="the nearest"):
        kelreader.Reader("Grademasster", port=1)
    with pytest.raises(kelreader.UsageError, match="port has to be a whole number from 1 to 16, not 17."):
        kelreader.Reader("GradeMaster", port=17)
    with pytest.raises(TypeError, match="takes no argument 'baudrate'; settings are barcode, baud_rate"):
        kelreader.Reader("GradeMaster", port=1, baudrate=9600)
    with pytest.raises(kelreader.UsageError, match="The form file .*none.json cannot be read: No such file"):
        kelreader.Reader("GradeMaster", port=1, form=tmp_path / "none.json")
    with pytest.raises(kelreader.UsageError, match="'Software' is not a key of the settings"):
        kelreader.Reader(settings="Software")


def test_the_published_object_is_there_for_the_rest(simulated):
    with simulated(SHEETS).reader() as reader:
        raw = reader.raw
        raw.Side1Rows = [63, 20]
        assert raw.Side1Rows == [63, 20]
        raw.HelpFile = "help.chm"
        assert raw.HelpFile == "help.chm"
        assert raw.Printer.BufferCount == 0
        list(reader)
        assert raw.Side1Array.shape == (128, 12)
        assert raw.CancelScan is True
        assert not hasattr(raw, "RecognitionThreshold"), "that is recognition_threshold"


def test_settings_are_kept_and_loaded(simulated, tmp_path):
    key = rf"HKCU\Software\{tmp_path.name}"
    with simulated(SHEETS).reader(recognition_threshold=9, port=3) as reader:
        reader.save(key)
    with kelreader.Reader(settings=key) as reader:
        assert (reader.reader_type, reader.recognition_threshold, reader.port) == (22, 9, 3)
        reader.recognition_threshold = 1
        reader.load(key)
        assert reader.recognition_threshold == 9
        with pytest.raises(kelreader.UsageError, match="is not a key of the settings"):
            reader.load("Acme")


def test_answer_keys_may_be_written_in_python():
    key = {"formIds": ["0001"], "questions": [{"name": "Question 1", "choices": ["A", "B"], "correctAnswers": ["C"]}]}
    with pytest.raises(kelreader.UsageError, match=r"the answer key: questions\[0\].correctAnswers\[0\]"):
        kelreader.Reader("BenchMark 3000", port=1, answer_key=key)


def test_records_are_dictionaries():
    with quick("BenchMark 3000", count=2) as simulation:
        seen = []

        def needs_more(record):
            seen.append(record)
            return False

        with simulation.reader(needs_more=needs_more) as reader:
            sheets = list(reader)
    assert len(sheets) == 2
    assert [sheet.record for sheet in sheets] == seen
    assert all("Student ID" in record and all(isinstance(key, (int, str)) for key in record) for record in seen)
    assert any(isinstance(key, int) for record in seen for key in record), "questions stand under their numbers"


def test_a_callback_that_raises_ends_the_batch_and_arrives_with_its_traceback():
    with quick("BenchMark 3000", count=3) as simulation:

        def needs_more(record):
            raise LookupError("no such student")

        with simulation.reader(needs_more=needs_more) as reader:
            with pytest.raises(LookupError, match="no such student") as raised:
                list(reader)
        assert raised.traceback[-1].name == "needs_more"
    assert simulation.errors == []
