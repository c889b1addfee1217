# SPDX-License-Identifier: MIT
"""What readers and replays share: the sheets of a batch, and an orderly end."""

import atexit
import weakref

from ._reports import ReaderError, reports, warn

_open: weakref.WeakSet["Sheets"] = weakref.WeakSet()


@atexit.register
def _close_all():
    for source in list(_open):
        source._core.close()


class Sheets:
    """A source of sheets: an iterable, and a context manager that ends it."""

    def __init__(self, core):
        self._core = core
        _open.add(self)

    def __enter__(self):
        return self

    def __exit__(self, *failure):
        self.close()

    def close(self):
        """Ends the batch in order, if there is one, and releases the line. Further calls have no effect."""
        self._core.close()
        _open.discard(self)

    def stop(self):
        """Ends the batch after the current sheet. The only method that any thread may call."""
        self._core.stop()

    def __iter__(self):
        core = self._core

        def told():
            warn(core.take_notes(), 3)

        try:
            while (sheet := core.next(told)) is not None:
                yield sheet
        finally:
            core.end()
            warn(core.take_notes(), 2)
        if faults := reports(core.take_faults()):
            raise ReaderError(faults)

    @property
    def form(self):
        """The form of the sheets."""
        return self._core.form
