# SPDX-License-Identifier: MIT
import enum
import os
from collections.abc import Callable, Iterable, Iterator, Mapping, Sequence
from dataclasses import dataclass
from types import TracebackType
from typing import Any, NamedTuple, Self

import numpy
import numpy.typing
import pandas  # type: ignore[import]

_Marks = numpy.typing.NDArray[numpy.int16]
_Path = str | os.PathLike[str]
_FormSource = _Path | Mapping[str, Any] | Form
_Value = bool | int | str | None
_Record = dict[int | str, int | str | None]

BLANK: str
DOUBLE_MARK: str

class UsageError(ValueError): ...
class OperationError(OSError): ...
class InUseError(RuntimeError): ...

class ReportType(enum.IntEnum):
    RUN_TIME = 0
    SETTINGS = 1
    READER = 2

class FlowControl(enum.IntEnum):
    NONE = 0
    XON_XOFF = 1
    HARDWARE = 2
    BOTH = 3

class RecognitionMode(enum.IntEnum):
    PAGE = 1
    WINDOW = 2

@dataclass(frozen=True)
class Report:
    number: int
    type: ReportType
    title: str
    source: str
    description: str
    line: int
    port: int
    device: str
    cause: str
    remedy: str
    sentence: str

class ReaderError(Exception):
    reports: tuple[Report, ...]
    number: int
    type: ReportType
    title: str
    source: str
    description: str
    line: int
    port: int
    device: str
    cause: str
    remedy: str
    sentence: str
    def __init__(self, reports: Sequence[Report]) -> None: ...

class ReaderWarning(UserWarning):
    report: Report
    def __init__(self, report: Report) -> None: ...

class Sheet:
    @property
    def number(self) -> int: ...
    @property
    def side1(self) -> _Marks | None: ...
    @property
    def side2(self) -> _Marks | None: ...
    @property
    def side1_timing_marks(self) -> int: ...
    @property
    def side2_timing_marks(self) -> int: ...
    @property
    def read_at(self) -> float: ...
    @property
    def barcodes(self) -> list[str]: ...
    @property
    def record(self) -> _Record | None: ...
    @property
    def rejected(self) -> bool: ...
    @property
    def printed(self) -> bool: ...
    @property
    def printed_lines(self) -> list[str]: ...
    @property
    def in_reader(self) -> bool: ...
    def reject(self) -> None: ...
    def eject(self) -> None: ...
    def print(self, *lines: str) -> None: ...

class Form:
    @staticmethod
    def from_file(file: str) -> Form: ...
    @staticmethod
    def from_text(json: str) -> Form: ...
    @property
    def columns(self) -> list[str]: ...
    @property
    def fields(self) -> list[str]: ...
    def row(self, sheet: Sheet) -> tuple[_Value, ...]: ...

class _Sheets:
    def __enter__(self) -> Self: ...
    def __exit__(
        self, kind: type[BaseException] | None, failure: BaseException | None, where: TracebackType | None
    ) -> None: ...
    def __iter__(self) -> Iterator[Sheet]: ...
    def close(self) -> None: ...
    def stop(self) -> None: ...
    @property
    def form(self) -> Form: ...

class Reader(_Sheets):
    port: int
    baud_rate: int
    data_bits: int
    parity: str
    stop_bits: float
    flow_control: int
    timeout: int
    sleep_time: int
    reader_grade: bool
    duplex: bool
    duplex_form: bool
    barcode: bool
    feeder: bool
    rejecter: bool
    mark_cut_off: int
    mark_discrimination: int
    recognition_threshold: int
    windowing: bool
    recognition_mode: int
    def __init__(
        self,
        model: str | int | None = None,
        *,
        port: int | None = None,
        device: _Path | None = None,
        form: _FormSource | None = None,
        settings: str | None = None,
        answer_key: _Path | Mapping[str, Any] | None = None,
        max_sheets: int | None = None,
        printing: bool = False,
        print_distance: int | None = None,
        needs_more: Callable[[_Record], bool] | None = None,
        trace: _Path | None = None,
        usb_library: _Path | None = None,
        baud_rate: int | None = None,
        data_bits: int | None = None,
        parity: str | None = None,
        stop_bits: float | None = None,
        flow_control: int | None = None,
        timeout: int | None = None,
        sleep_time: int | None = None,
        reader_grade: bool | None = None,
        duplex: bool | None = None,
        duplex_form: bool | None = None,
        barcode: bool | None = None,
        feeder: bool | None = None,
        rejecter: bool | None = None,
        mark_cut_off: int | None = None,
        mark_discrimination: int | None = None,
        recognition_threshold: int | None = None,
        windowing: bool | None = None,
        recognition_mode: int | None = None,
    ) -> None: ...
    @property
    def reader_type(self) -> int: ...
    @property
    def reader_name(self) -> str: ...
    @property
    def raw(self) -> Any: ...
    def read(self, on_sheet: Callable[[Sheet], object]) -> int: ...
    def load(self, key: str) -> None: ...
    def save(self, key: str) -> None: ...
    def locate(self, start_port: int = 0) -> int | None: ...
    def firmware(self) -> str | None: ...

class Replay(_Sheets):
    def __init__(self, text: str, file: str, form: Form | None) -> None: ...
    @property
    def differences(self) -> list[str]: ...
    @property
    def unsent(self) -> str: ...

class Simulated:
    model: int
    errors: list[str]
    def __init__(
        self,
        model: str | int,
        sheets: _Path | Sequence[Any] | None,
        form: _FormSource | None,
        seed: int,
        count: int,
        faults: Sequence[str],
        options: Sequence[str],
        wire_speed: bool,
    ) -> None: ...
    def __enter__(self) -> Self: ...
    def __exit__(
        self, kind: type[BaseException] | None, failure: BaseException | None, where: TracebackType | None
    ) -> None: ...
    @property
    def device(self) -> str | None: ...
    @property
    def form(self) -> Form: ...
    def reader(self, **arguments: Any) -> Reader: ...

class Port(NamedTuple):
    port: int | None
    device: str | None
    description: str
    opens: bool
    reason: str

class Model(NamedTuple):
    reader_grade: bool
    reader_grade_enabled: bool
    reader_grade_visible: bool
    barcode: bool
    barcode_enabled: bool
    barcode_visible: bool
    duplex: bool
    duplex_enabled: bool
    duplex_visible: bool
    feeder: bool
    feeder_enabled: bool
    feeder_visible: bool
    rejecter: bool
    rejecter_enabled: bool
    rejecter_visible: bool
    printer: bool
    printer_enabled: bool
    printer_visible: bool
    interface_type: int
    baud_rate: int
    baud_rate_enabled: bool
    baud_rate_visible: bool
    data_bits: int
    data_bits_enabled: bool
    data_bits_visible: bool
    flow_control: int
    flow_control_enabled: bool
    flow_control_visible: bool
    stop_bits: float
    stop_bits_enabled: bool
    stop_bits_visible: bool
    reader_type: int
    mark_cut_off: int
    mark_discrimination: int
    mark_discrimination_enabled: bool
    mark_discrimination_visible: bool
    recognition_threshold: int
    recognition_threshold_enabled: bool
    recognition_threshold_visible: bool
    recognition_threshold_minimum: int
    recognition_threshold_maximum: int
    sleep_time: int
    sleep_time_enabled: bool
    sleep_time_visible: bool
    timeout: int
    timeout_enabled: bool
    timeout_visible: bool
    reader_name: str
    parity: str
    parity_enabled: bool
    parity_visible: bool
    port_enabled: bool
    port_visible: bool
    windowing: bool
    windowing_enabled: bool
    windowing_visible: bool
    locate_enabled: bool
    firmware_enabled: bool
    max_cols: int

def form(source: _FormSource) -> Form: ...
def frame(sheets: Iterable[Sheet], form: _FormSource) -> pandas.DataFrame: ...
def rows(sheets: Iterable[Sheet], form: _FormSource) -> Iterator[dict[str, _Value]]: ...
def models(maker: str | None = None) -> list[Model]: ...
def model(name: str | int) -> Model: ...
def ports() -> list[Port]: ...
def map_port(port: int, device: _Path) -> None: ...
def unmap_port(port: int) -> bool: ...
def replay(file: _Path, *, form: _FormSource | None = None) -> Replay: ...
def simulate(
    model: str | int,
    sheets: _Path | Sequence[Any] | None = None,
    *,
    form: _FormSource | None = None,
    seed: int = 1,
    count: int = 10,
    faults: Sequence[str] = (),
    options: Sequence[str] = (),
    wire_speed: bool = False,
) -> Simulated: ...
