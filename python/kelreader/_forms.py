# SPDX-License-Identifier: MIT
"""Forms."""

import json
import os

from . import _core

BLANK = "-"
"""The value of a field without a mark, unless its form gives another."""
DOUBLE_MARK = "*"
"""The value of a field with several marks."""


def form(source):
    """Makes a Form from a form file, or from a dict with the content of one. A Form is returned unchanged. Raises
    UsageError for a fault, in one sentence with its place."""
    if isinstance(source, _core.Form):
        return source
    if isinstance(source, dict):
        return _core.Form.from_text(json.dumps(source))
    return _core.Form.from_file(os.fspath(source))
