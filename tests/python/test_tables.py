# SPDX-License-Identifier: MIT
"""Tests of forms with fields, and of tables of sheets."""

import csv
import io
import json
import os
import subprocess
import sys

import kelreader
import pandas
import pytest

FORM = {
    "side1Rows": [2],
    "side1Cols": [3],
    "fields": [
        {"name": "Q", "rows": [1, 2], "columns": [1, 3], "labels": "ABC"},
        {"name": "back", "side": 2, "row": 1, "columns": [1, 2]},
        {"name": "last", "row": 2, "column": 3},
    ],
}
SHEETS = [[[1, 0, 0], [0, 1, 1]], [[0, 0, 0], [0, 0, 1]]]
COLUMNS = ["sheet", "barcodes", "rejected", "printed", "Q1", "Q2", "back", "last"]
ROWS = [
    [1, "", False, False, "A", kelreader.DOUBLE_MARK, None, 2],
    [2, "", False, False, kelreader.BLANK, "C", None, 2],
]


def test_a_frame_has_the_columns_of_the_form(simulated):
    with simulated(SHEETS).reader(form=FORM) as reader:
        frame = kelreader.frame(reader, FORM)
    assert isinstance(frame, pandas.DataFrame)
    assert list(frame.columns) == COLUMNS
    assert frame.values.tolist() == ROWS
    assert frame["Q2"].value_counts().to_dict() == {"*": 1, "C": 1}


def test_rows_come_without_pandas_and_as_they_are_read(simulated):
    with simulated(SHEETS).reader(form=FORM) as reader:
        rows = kelreader.rows(reader, FORM)
        assert next(rows) == dict(zip(COLUMNS, ROWS[0]))
        assert next(rows) == dict(zip(COLUMNS, ROWS[1]))


def test_a_missing_pandas_is_told(monkeypatch):
    monkeypatch.setitem(sys.modules, "pandas", None)
    with pytest.raises(ImportError, match="rows\\(\\) gives the same without it"):
        kelreader.frame([], FORM)


def as_csv(value):
    if value is None:
        return ""
    return str(value).lower() if isinstance(value, bool) else str(value)


def test_the_command_gives_the_same(simulated, tmp_path):
    form, sheets = tmp_path / "form.json", tmp_path / "sheets.json"
    form.write_text(json.dumps(FORM))
    sheets.write_text(json.dumps([{"side1": side} for side in SHEETS]))
    scan = [os.environ["KELREADER"], "scan", "--model", "AccelScan", "--simulate", "--rate", "unlimited", "--setting"]
    scan += ["feed-ms=0", "--set", "Timeout=600", "--sheets", sheets, "--form", form, "--max-sheets", "2", "--fields", "--format"]
    clean = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}

    def lines(format):
        return subprocess.run([*scan, format], capture_output=True, text=True, check=True, env=clean).stdout

    told = [json.loads(line) for line in lines("json").splitlines()]
    assert [list(event.items())[1:] for event in told[:-1]] == [list(zip(COLUMNS, row)) for row in ROWS]
    table = list(csv.reader(io.StringIO(lines("csv"))))
    assert table[0] == COLUMNS
    assert table[1:] == [[as_csv(value) for value in row] for row in ROWS]


def test_a_form_is_a_file_a_dict_or_a_form(tmp_path):
    file = tmp_path / "form.json"
    file.write_text(json.dumps(FORM))
    for source in (str(file), file, FORM):
        form = kelreader.form(source)
        assert form.fields == ["Q1", "Q2", "back", "last"]
        assert form.columns == COLUMNS
        assert kelreader.form(form) is form


def test_a_field_that_is_wrong_is_refused_in_one_sentence(tmp_path):
    wrong = {**FORM, "fields": [{"name": "Q", "row": 3, "columns": [1, 3]}]}
    with pytest.raises(kelreader.UsageError) as refused:
        kelreader.form(wrong)
    assert str(refused.value) == "the form: fields[0].row reaches row 3, but side 1 has 2 rows."
    file = tmp_path / "form.json"
    file.write_text(json.dumps(wrong))
    with pytest.raises(kelreader.UsageError) as refused:
        kelreader.Reader("VMR138", port=1, form=file)
    assert str(refused.value) == f"{file}: fields[0].row reaches row 3, but side 1 has 2 rows."
