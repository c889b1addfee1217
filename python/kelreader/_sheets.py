# SPDX-License-Identifier: MIT
"""What a reader and a replay have in common: the sheets of a batch, and an end in order."""

import atexit
import weakref

from ._reports import ReaderError, reports, warn

_open: weakref.WeakSet["Sheets"] = weakref.WeakSet()


@atexit.register
def _close_all():
    for source in list(_open):
        source._core.close()


class Sheets:
    """A source of sheets: a range to be looped over, and a context manager that ends it."""

    def __init__(self, core):
        self._core = core
        _open.add(self)

    def __enter__(self):
        return self

    def __exit__(self, *failure):
        self.close()

    def close(self):
        """Ends the batch in order, if there is one, and everything else. To be called once more does no harm."""
        self._core.close()
        _open.discard(self)

    def stop(self):
        """Has the batch end after the sheet at hand. The one method that any thread may call."""
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
