# SPDX-License-Identifier: MIT
"""What stands in a store of sheets, read beside the program that writes it."""

import contextlib
import sqlite3
from pathlib import Path

from stream_servers import PATIENCE


def query(store, text, *values):
    """The rows that a store answers; none as long as it is being made."""
    if not Path(store).exists():
        return []
    with contextlib.closing(sqlite3.connect(store, timeout=PATIENCE)) as database:
        try:
            return database.execute(text, values).fetchall()
        except sqlite3.OperationalError:
            return []


def number_in(store, text):
    """The one number that a store answers; 0 as long as it is being made."""
    return (query(store, text) or [(0,)])[0][0]
