# SPDX-License-Identifier: MIT
"""Reports: what a reader has to say when something goes wrong."""

import enum
import warnings
from dataclasses import dataclass, fields


class ReportType(enum.IntEnum):
    """What kind of failure a report tells."""

    RUN_TIME = 0
    """A statement failed."""
    SETTINGS = 1
    """A setting of the host, or a code of the USB readers' library."""
    READER = 2
    """A fault of the reader or its line."""


@dataclass(frozen=True)
class Report:
    """A report of a reader, with the advice of the pages for operators."""

    number: int
    """The number of the failure, or the reader's own code; 0 if there is none."""
    type: ReportType
    """What kind of failure it is."""
    title: str
    """What was being done; empty for failures of a statement."""
    source: str
    """The procedure that reports."""
    description: str
    """What went wrong."""
    line: int
    """The number of the failing statement, or 0."""
    port: int
    """The port that it is about, or 0."""
    device: str
    """What this port stands for."""
    cause: str
    """What brings it about, as the operator's page says; may be empty."""
    remedy: str
    """What to do, as the operator's page says; may be empty."""
    sentence: str
    """All in one line, for a person."""

    def __str__(self):
        return self.sentence


def reports(records):
    """The reports of the reader's own records."""
    return [Report(**{**record, "type": ReportType(record["type"])}) for record in records]


class ReaderError(Exception):
    """A report has ended a start or a read, a search or a question. Its attributes are those of the first report;
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
    """A report that has ended nothing, as `report`."""

    def __init__(self, report):
        super().__init__(report.sentence)
        self.report = report


def warn(records, stacklevel):
    """Makes warnings of reports; `stacklevel` counts from the caller."""
    for report in reports(records):
        warnings.warn(ReaderWarning(report), stacklevel=stacklevel + 1)
