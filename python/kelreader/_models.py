# SPDX-License-Identifier: MIT
"""The catalogue of models."""

import collections
import enum
import re

from . import _core


class FlowControl(enum.IntEnum):
    """Handshaking of the line."""

    NONE = 0
    XON_XOFF = 1
    HARDWARE = 2
    BOTH = 3


class RecognitionMode(enum.IntEnum):
    """Which parts of a sheet are read."""

    PAGE = 1
    WINDOW = 2


def _spelling(name):
    """Converts a name of the catalogue to Python's spelling: RecognitionThreshold becomes recognition_threshold."""
    return re.sub(r"(?<=[a-z])(?=[A-Z])", "_", name.replace("TimeOut", "Timeout")).lower()


Model = collections.namedtuple("Model", [_spelling(name) for name, _ in _core.models("")[0]])  # type: ignore[misc]
Model.__doc__ = "What a model can do, with its defaults: the catalogue's record."


def models(maker=None):
    """Returns the models in the order of the catalogue; with a maker, "apperson", "chatsworth", "pdi", "scantron" or
    "sekonic", only that maker's."""
    return [Model(*(value for _, value in record)) for record in _core.models(maker or "")]


def model(name):
    """Returns a model by its number, its name, or a part of a name that only one model has."""
    number = _core.model_number(str(name))
    return next(model for model in models() if model.reader_type == number)
