# SPDX-License-Identifier: MIT
"""Simulated readers, for tests without a reader."""

import json
import os
import tempfile

from . import _core
from ._forms import form as form_of
from ._reader import Reader


def simulate(model, sheets=None, *, form=None, seed=1, count=10, faults=(), options=(), wire_speed=False):
    """A simulated reader, as a context manager.

    sheets: what is in its feeder: a file of sheets, or a list whose elements are the marks of a side as a table of
        numbers, or dicts {"side1": ..., "side2": ..., "barcodes": [...], "fields": {...}}. Without it `count` random
        sheets are generated; the same `seed` gives the same sheets.
    form: the form that it is set up for; without it one page of the size of the largest sheet.
    faults: what goes wrong, such as "jam@sheet=3"; `kelreader simulate --list-faults` has more.
    options: of the model, as "NAME=VALUE".
    wire_speed: whether its bytes come at the speed of the line, or at once.

        with kelreader.simulate("VMR138", sheets=[[[1, 0], [0, 1]]]) as simulated:
            with simulated.reader() as reader:
                assert [sheet.side1.sum() for sheet in reader] != [0]
    """
    return Simulated(model, sheets, form, seed, count, faults, options, wire_speed)


def _plain(value):
    """Converts a NumPy array or number to what JSON can hold."""
    return value.tolist()


class Simulated:
    """A simulated reader; see simulate()."""

    def __init__(self, model, sheets, form, seed, count, faults, options, wire_speed):
        self.model = _core.model_number(str(model))
        self.errors = []
        """Errors in what the host sent, one sentence each; complete once it has ended."""
        self._made = None
        self._device = None
        self._arguments = {"seed": seed, "faults": list(faults), "options": list(options), "wire_speed": wire_speed}
        self._sheets = sheets
        self._count = count
        self._form = form
        self._readers = []

    def __enter__(self):
        if self._sheets is None:
            self._arguments["count"] = self._count
        elif isinstance(self._sheets, (str, os.PathLike)):
            self._arguments["sheets"] = os.fspath(self._sheets)
        else:
            sheets = [sheet if isinstance(sheet, dict) else {"side1": sheet} for sheet in self._sheets]
            self._count = len(sheets)
            self._made = tempfile.NamedTemporaryFile("w", suffix=".json", encoding="utf-8")
            json.dump(sheets, self._made, default=_plain)
            self._made.flush()
            self._arguments["sheets"] = self._made.name
        if self._form is None:
            self._form = _core.form_of_sheets(self.model, self._arguments)
        else:
            self._form = form_of(self._form)
        # A USB model is the library that a reader loads: each reader has its own.
        if not _core.is_usb_model(self.model):
            self._device = _core.SimulatedDevice(self.model, self._arguments, self._form)
        return self

    def __exit__(self, *failure):
        for reader in self._readers:
            if reader._core.is_open:
                self.errors += reader._core.simulator_errors()
                reader.close()
        if self._device:
            self.errors += self._device.end()
        if self._made:
            self._made.close()

    @property
    def device(self):
        """The device of its line; None for a USB model, which only reader() can reach."""
        return self._device.device if self._device else None

    @property
    def form(self):
        """The form that it is set up for."""
        return self._form

    def reader(self, **arguments):
        """A Reader at it. Without max_sheets it reads what is in the feeder and does not wait for more, unless the
        sheets are those of a file."""
        if "sheets" not in self._arguments or self._made:
            arguments.setdefault("max_sheets", self._count)
        arguments.setdefault("form", self._form)
        if self._device:
            return Reader(self.model, device=self.device, **arguments)
        reader = Reader(self.model, _simulated=self._arguments, **arguments)
        self._readers.append(reader)
        return reader
