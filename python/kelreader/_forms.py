# SPDX-License-Identifier: MIT
"""Forms."""

import json
import os

from . import _core

BLANK = "-"
"""The value of a field without a mark, where its form says no other."""
DOUBLE_MARK = "*"
"""The value of a field with several marks."""


def form(source):
    """A form: from a form file, or of what would stand in one as a dict. A Form is given back as it is. UsageError, one
    sentence with the place, for what does not fit."""
    if isinstance(source, _core.Form):
        return source
    if isinstance(source, dict):
        return _core.Form.from_text(json.dumps(source))
    return _core.Form.from_file(os.fspath(source))
