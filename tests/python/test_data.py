# SPDX-License-Identifier: MIT
"""Tests of what is data: models, simulated readers, replays, and the package itself."""

import importlib.resources
import json
import os
import subprocess
import sys
from pathlib import Path

import kelreader
import pytest
from conftest import quick

ROOT = Path(os.environ["KEL_SOURCES"])


def test_the_models_are_those_of_the_catalogue():
    models = kelreader.models()
    assert models and sorted(model.reader_type for model in models) == list(range(1, len(models) + 1))
    scanmark = kelreader.model("Scanmark 2500")
    assert (scanmark.reader_type, scanmark.baud_rate, scanmark.stop_bits, scanmark.max_cols) == (13, 19200, 2.0, 48)
    assert kelreader.model(13) == scanmark
    with pytest.raises(kelreader.UsageError, match="nearest"):
        kelreader.model("Scanmork")


def test_the_models_of_a_maker():
    assert {model.reader_name for model in kelreader.models("pdi")} == {"Peripheral Dynamics Inc. VMR138"}
    with pytest.raises(kelreader.UsageError):
        kelreader.models("acme")


def test_a_record_has_each_property_in_pythons_spelling():
    names = kelreader.Model._fields
    assert len(names) == len(set(names))
    for name in ("reader_grade", "mark_cut_off", "recognition_threshold_maximum", "timeout", "timeout_enabled", "max_cols"):
        assert name in names


# These have so long to answer, or send by themselves what the host then has to be ready for: on a busy machine they are
# read from recordings.
RECORDED = {
    20: "chatsworth/two_sheets_20.txt",
    23: "ezdata/all_positions.txt",
    24: "peripheral_dynamics/batch_of_two.txt",
    37: "ezdata/start_37.txt",
    40: "apperson/advantage_answers.txt",
}


LIVE = [model for model in kelreader.models() if model.reader_type not in RECORDED]


@pytest.mark.parametrize("model", LIVE, ids=[str(model.reader_type) for model in LIVE])
def test_a_model_can_be_simulated_and_read(model):
    usb = model.interface_type == 2
    with quick(model.reader_type, [[[1]]], options=[] if usb else ["feed-ms=0"]) as simulation:
        # Without it a Chatsworth sends by itself.
        feeder = True if model.reader_type in (35, 41) else None
        with simulation.reader(feeder=feeder) as reader:
            (sheet,) = list(reader)
            assert sheet.side1.any() or sheet.record
    assert simulation.errors == []


@pytest.mark.parametrize("model", RECORDED)
def test_a_model_can_be_read_from_a_recording(model):
    transcript = ROOT / "tests" / "transcripts" / RECORDED[model]
    assert f"# model: {model}\n" in transcript.read_text(encoding="utf-8")
    with kelreader.replay(transcript) as session:
        sheets = list(session)
    assert sheets[0].side1.any() or sheets[0].record
    assert (session.differences, session.unsent) == ([], "")


def test_the_same_seed_gives_the_same_sheets():
    def read(seed):
        with quick(seed=seed, count=2) as simulation:
            with simulation.reader() as reader:
                return [sheet.side1.tolist() for sheet in reader]

    assert read(5) == read(5)
    assert read(5) != read(6)


def test_what_a_simulated_reader_does_not_take_is_refused(tmp_path):
    with pytest.raises(kelreader.UsageError, match="sheet 1, side1, row 1"):
        kelreader.simulate("VMR138", sheets=[{"side1": [["x"]]}]).__enter__()
    with pytest.raises(kelreader.UsageError):
        kelreader.simulate("VMR138", faults=["earthquake"]).__enter__()
    with pytest.raises(kelreader.UsageError, match="count has to be a whole number"):
        kelreader.simulate("VMR138", count=-1).__enter__()


def test_a_recorded_session_is_replayed(simulated, tmp_path):
    trace = tmp_path / "session.trace"
    with simulated([[[1, 0]], [[0, 1]]]).reader(trace=trace) as reader:
        live = [sheet.side1.tolist() for sheet in reader]
    with kelreader.replay(trace) as session:
        replayed = []
        for sheet in session:
            replayed.append(sheet.side1.tolist())
            with pytest.raises(kelreader.UsageError, match="not in the reader"):
                sheet.reject()
    assert replayed == live
    assert session.differences == []
    assert session.unsent == ""


def test_a_replay_beside_a_reader(simulated, tmp_path):
    trace = tmp_path / "session.trace"
    simulation = simulated([[[1, 0]], [[0, 1]]])
    with simulation.reader(trace=trace) as reader:
        list(reader)
    with kelreader.replay(trace) as session, simulated([[[1, 0]], [[0, 1]]]).reader() as reader:
        assert all((a.side1 == b.side1).all() for a, b in zip(session, reader))


def test_a_transcript_that_is_none_is_refused(tmp_path):
    with pytest.raises(kelreader.UsageError, match="The transcript .*none cannot be read: No such file or directory."):
        kelreader.replay(tmp_path / "none")
    broken = tmp_path / "broken"
    broken.write_text("# model: 24\n> zz\n")
    with pytest.raises(kelreader.UsageError, match="line 2"):
        kelreader.replay(broken)


def test_everything_public_has_a_docstring_and_a_name_of_the_package():
    for name in kelreader.__all__:
        thing = getattr(kelreader, name)
        if isinstance(thing, (str, int)):
            continue
        assert thing.__doc__, name
        if isinstance(thing, type):
            assert thing.__module__ == "kelreader", name
            for member, value in vars(thing).items():
                if not member.startswith("_") and (callable(value) or isinstance(value, property)):
                    assert value.__doc__, f"{name}.{member}"


def test_the_package_is_typed():
    assert importlib.resources.files("kelreader").joinpath("py.typed").is_file()


def test_the_stubs_are_those_of_the_package():
    told = subprocess.run(
        [sys.executable, "-m", "mypy.stubtest", "kelreader", "--ignore-missing-stub", "--ignore-unused-allowlist",
         "--allowlist", str(Path(__file__).with_name("stubtest_allowlist.txt"))],
        capture_output=True,
        text=True,
    )
    assert told.returncode == 0, told.stdout + told.stderr


def samples(page):
    """The Python samples of a page."""
    lines = (ROOT / page).read_text(encoding="utf-8").split("\n")
    sample = None
    for number, line in enumerate(lines, 2):
        if line == "```python":
            sample, first = [], number
        elif line == "```" and sample is not None:
            yield first, "\n".join(sample)
            sample = None
        elif sample is not None:
            sample.append(line)


def test_the_samples_of_the_page_run(tmp_path, monkeypatch, capsys):
    """They stand on each other, as they do on the page; what stands at port 1 is a simulated Scanmark."""
    monkeypatch.chdir(tmp_path)
    (tmp_path / "form.json").write_text(json.dumps({"side1Rows": [20], "side1Cols": [48]}))
    sheets = [[[9 if column == row % 5 else 0 for column in range(48)] for row in range(20)]] * 3
    found = list(samples("docs/python.md"))
    assert len(found) >= 5
    names = {"__name__": "sample"}
    for first, sample in found:
        with quick("Scanmark 2500", sheets, form=tmp_path / "form.json") as simulation:
            kelreader.map_port(1, simulation.device)
            source = "\n" * (first - 1) + sample
            with monkeypatch.context() as patch:
                patch.setattr(kelreader, "Reader", at_hand(kelreader.Reader))
                patch.setattr(kelreader, "simulate", quick)
                exec(compile(source, "docs/python.md", "exec"), names)
    assert "0 double marks" in capsys.readouterr().out


def at_hand(reader):
    """A reader that ends with the sheets in the feeder, makes no pauses, and is patient."""

    def make(*arguments, **named):
        return reader(*arguments, **{"max_sheets": 3, "sleep_time": 1, "timeout": 600, **named})

    return make
