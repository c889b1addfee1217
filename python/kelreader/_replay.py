# SPDX-License-Identifier: MIT
"""Replays of recorded sessions."""

import os
from pathlib import Path

from . import _core
from ._forms import form as form_of
from ._sheets import Sheets


def replay(file, *, form=None):
    """Replays a session that was recorded with trace=, without a reader and without its pauses.

        with kelreader.replay("session.trace") as session:
            for sheet in session:
                ...
        assert not session.differences

    form: replaces the recorded one.
    """
    try:
        text = Path(file).read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as refusal:
        why = refusal.strerror if isinstance(refusal, OSError) else "it is not UTF-8"
        raise _core.UsageError(f"The transcript {os.fspath(file)} cannot be read: {why}.") from None
    return Replay(text, os.fspath(file), None if form is None else form_of(form))


class Replay(Sheets):
    """A recorded session; see replay(). Its sheets come when the reader is done with them: what was rejected or printed
    stays as it was."""

    def __init__(self, text, file, form):
        super().__init__(_core.Replay(text, file, form))
        self._left = None

    def close(self):
        """Ends the replay. `differences` and `unsent` remain available."""
        if self._core.is_open:
            self._core.end()
            self._left = self._core.differences, self._core.unsent
        super().close()

    @property
    def differences(self):
        """Where the session differs from its transcript, one sentence each."""
        return self._left[0] if self._left else self._core.differences

    @property
    def unsent(self):
        """The first output of the transcript that was not sent; empty if there is none."""
        return self._left[1] if self._left else self._core.unsent
