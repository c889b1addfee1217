# SPDX-License-Identifier: MIT
from typing import Any

def __getattr__(name: str) -> Any: ...
