# SPDX-License-Identifier: MIT
"""Reports of failures."""

import enum
import warnings
from dataclasses import dataclass, fields


class ReportType(enum.IntEnum):
    """The kind of failure."""

    RUN_TIME = 0
    """A statement failed."""
    SETTINGS = 1
    """A setting of the host, or a code of the USB readers' library."""
    READER = 2
    """A fault of the reader or its line."""


@dataclass(frozen=True)
class Report:
    """A report of a failure, with the advice from the operators' pages."""

    number: int
    """The number of the failure, or the reader's own code; 0 if there is none."""
    type: ReportType
    """The kind of failure."""
    title: str
    """The operation that failed; empty for failures of a statement."""
    source: str
    """The procedure that made the report."""
    description: str
    """What went wrong."""
    line: int
    """The number of the failing statement, or 0."""
    port: int
    """The port concerned, or 0."""
    device: str
    """The device assigned to this port."""
    cause: str
    """The usual cause, from the operators' page; may be empty."""
    remedy: str
    """What to do, from the operators' page; may be empty."""
    sentence: str
    """The report in one line."""

    def __str__(self):
        return self.sentence


def reports(records):
    """Makes reports of the module's records."""
    return [Report(**{**record, "type": ReportType(record["type"])}) for record in records]


class ReaderError(Exception):
    """Raised when a report ends a start, a read, a search or a query. Its attributes are those of the first report;
    `reports` has all of them."""

    def __init__(self, reports):
        super().__init__(reports[0].sentence)
        self.reports = tuple(reports)
        first = self.reports[0]
        for field in fields(Report):
            setattr(self, field.name, getattr(first, field.name))
        if first.cause:
            self.add_note(f"Cause: {first.cause}")
        if first.remedy:
            self.add_note(f"Do: {first.remedy}")

    def __reduce__(self):
        return ReaderError, (self.reports,)


class ReaderWarning(UserWarning):
    """Warns of a report that ended nothing; the report is `report`."""

    def __init__(self, report):
        super().__init__(report.sentence)
        self.report = report


def warn(records, stacklevel):
    """Issues reports as warnings; `stacklevel` counts from the caller."""
    for report in reports(records):
        warnings.warn(ReaderWarning(report), stacklevel=stacklevel + 1)
