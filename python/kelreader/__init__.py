# SPDX-License-Identifier: MIT
"""Reads marked paper sheets with optical mark readers; each sheet is an array.

    import kelreader

    with kelreader.Reader("Scanmark 2500", port=1, form="form.json") as reader:
        for sheet in reader:
            print(sheet.number, sheet.side1.sum(), sheet.barcodes)

See docs/python.md.
"""

from ._core import Form, InUseError, OperationError, Sheet, UsageError
from ._forms import BLANK, DOUBLE_MARK, form
from ._models import FlowControl, Model, RecognitionMode, model, models
from ._ports import Port, map_port, ports, unmap_port
from ._reader import Reader
from ._replay import Replay, replay
from ._reports import ReaderError, ReaderWarning, Report, ReportType
from ._simulate import Simulated, simulate
from ._table import frame, rows

__all__ = [
    "BLANK",
    "DOUBLE_MARK",
    "FlowControl",
    "Form",
    "InUseError",
    "Model",
    "OperationError",
    "Port",
    "Reader",
    "ReaderError",
    "ReaderWarning",
    "RecognitionMode",
    "Replay",
    "Report",
    "ReportType",
    "Sheet",
    "Simulated",
    "UsageError",
    "form",
    "frame",
    "map_port",
    "model",
    "models",
    "ports",
    "replay",
    "rows",
    "simulate",
    "unmap_port",
]

# They are known by the names by which they are imported.
for _name in __all__:
    if isinstance(globals()[_name], type):
        globals()[_name].__module__ = __name__
