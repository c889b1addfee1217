# SPDX-License-Identifier: MIT
"""Ports."""

import collections
import os

from . import _core

Port = collections.namedtuple("Port", ["port", "device", "description", "opens", "reason"])
Port.__doc__ = """A port number, a serial device, or both; each may be None. `description` is what the device says of itself,
`reason` why it does not open and what to do."""


def ports():
    """All sixteen port numbers, then the serial devices that have none. Each device is opened and closed again."""
    return [Port(*state) for state in _core.ports()]


def map_port(port, device):
    """Has a port number, 1 to 16, stand for a device or a remote line such as "tcp:HOST:PORT"."""
    _core.map_port(port, os.fspath(device))


def unmap_port(port):
    """Takes the device of a port number away. False if it had none."""
    return _core.unmap_port(port)
