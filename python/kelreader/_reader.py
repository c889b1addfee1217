# SPDX-License-Identifier: MIT
"""The reader."""

import inspect
import json
import os

from . import _core
from ._forms import form as form_of
from ._reports import ReaderError, reports, warn
from ._sheets import Sheets

# What can be set, when a reader is made or later: the catalogue's words in Python's spelling.
SETTINGS = tuple(name for name, value in vars(_core.Reader).items() if isinstance(value, property) and value.fset)


def _property(name):
    core = getattr(_core.Reader, name)
    setter = (lambda self, value: setattr(self._core, name, value)) if core.fset else None
    return property(lambda self: getattr(self._core, name), setter, None, core.__doc__)


class Reader(Sheets):
    """An optical mark reader.

    A loop over it reads a batch: it starts the reader, reads a sheet in each pass, and ends the session in order when
    the feeder is empty, when the loop is left, and on an exception. While the body of the loop runs, the sheet is
    in the reader and may be rejected or printed on.

    model: number, name, or a part of a name that only one model has.
    port, device: where it is: a port number, 1 to 16, or a device or remote line such as "rfc2217:HOST:PORT".
    form: a form file, or what would stand in one as a dict, or a Form.
    settings: a key under which settings are kept, "HKCU\\\\Software\\\\Acme"; without it they are the model's defaults.
    answer_key: an answer key file, or what would stand in one as a dict, for readers that grade by themselves.
    max_sheets: where a batch ends; None reads until the feeder is empty.
    printing, print_distance: whether sheets may be printed on, and where the print begins in the model's own steps.
    needs_more: called with the record of a reader that delivers such; True has the form go on with the next record.
    trace: a file for what goes over the line, to be replayed.
    usb_library: the library of the USB readers' maker, instead of the usual one.
    settings by name, such as recognition_threshold=7, are set last.

    One thread uses a reader at a time, and a batch belongs to one thread; InUseError says so to any other.
    """

    def __init__(
        self,
        model=None,
        *,
        port=None,
        device=None,
        form=None,
        settings=None,
        answer_key=None,
        max_sheets=None,
        printing=False,
        print_distance=None,
        needs_more=None,
        trace=None,
        usb_library=None,
        _simulated=None,
        **properties,
    ):
        for name in properties:
            if name not in SETTINGS:
                raise TypeError(f"Reader() takes no argument {name!r}; settings are {', '.join(sorted(SETTINGS))}")
        wanted = {
            "model": model,
            "port": port,
            "device": None if device is None else os.fspath(device),
            "form": None if form is None else form_of(form),
            "settings": settings,
            "max_sheets": max_sheets,
            "printing": printing,
            "print_distance": print_distance,
            "trace": None if trace is None else os.fspath(trace),
            "usb_library": None if usb_library is None else os.fspath(usb_library),
            "simulated": _simulated,
        }
        if isinstance(answer_key, dict):
            wanted["answer_key"] = json.dumps(answer_key)
        elif answer_key is not None:
            wanted["answer_key_file"] = os.fspath(answer_key)
        super().__init__(
            _core.Reader({name: value for name, value in wanted.items() if value is not None}, needs_more)
        )
        for name, value in properties.items():
            if value is not None:
                setattr(self, name, value)

    def read(self, on_sheet):
        """Reads a batch and calls `on_sheet` with each sheet. The batch ends when it returns False or raises.
        Returns the number of sheets."""
        count = 0
        for sheet in self:
            count += 1
            if on_sheet(sheet) is False:
                break
        return count

    def load(self, key):
        """Loads the settings saved under a key. Raises ReaderError if one of them is out of range."""
        done, records = self._core.load(key)
        self._judge(done, records)

    def save(self, key):
        """Saves the settings under a key."""
        done, records = self._core.save(key)
        self._judge(done, records)

    def locate(self, start_port=0):
        """Searches the ports for the reader, `start_port` first if it is above 0. Returns the port that answers, which
        becomes `port`, or None. Raises ReaderError if a report ended the search."""
        found, records = self._core.locate(start_port)
        self._judge(found is not None, records)
        return found

    def firmware(self):
        """Returns the version of the reader's firmware, or None if the reader has none to report. Raises ReaderError
        if a report ended the query."""
        version, records = self._core.firmware()
        self._judge(version is not None, records)
        return version

    @staticmethod
    def _judge(done, records):
        if records and not done:
            raise ReaderError(reports(records))
        warn(records, 3)

    @property
    def raw(self):
        """The published object under its own names, for members without one here: Printer, Side1Rows, HelpFile ..."""
        return _core.RawReader(self._core)

    def __repr__(self):
        return f"<Reader {self.reader_name}>" if self._core.is_open else "<Reader, closed>"


def _signature():
    """The signature of Reader, with the settings as arguments."""
    known = inspect.signature(Reader.__init__)
    own = [known.parameters[name] for name in known.parameters if name not in ("_simulated", "properties", "port")]
    settings = [inspect.Parameter(name, inspect.Parameter.KEYWORD_ONLY, default=None) for name in SETTINGS]
    return known.replace(parameters=own + settings)


Reader.__init__.__signature__ = _signature()  # type: ignore[attr-defined]
for _name in (*SETTINGS, "reader_type", "reader_name"):
    setattr(Reader, _name, _property(_name))
