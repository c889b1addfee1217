# SPDX-License-Identifier: MIT
"""Ports."""

import collections
import os

from . import _core

Port = collections.namedtuple("Port", ["port", "device", "description", "opens", "reason"])
Port.__doc__ = """A port number, a serial device, or both; each may be None. `description` is what the device reports
about itself, `reason` why it does not open and what to do."""


def ports():
    """Returns all sixteen port numbers, then the serial devices without a number. Opens and closes each device."""
    return [Port(*state) for state in _core.ports()]


def map_port(port, device):
    """Assigns a device, or a remote line such as "tcp:HOST:PORT", to a port number from 1 to 16."""
    _core.map_port(port, os.fspath(device))


def unmap_port(port):
    """Removes the device of a port number. Returns False if it had none."""
    return _core.unmap_port(port)
