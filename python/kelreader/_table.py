# SPDX-License-Identifier: MIT
"""Tables with one row per sheet."""

from ._forms import form as form_of


def rows(sheets, form):
    """The rows of a table of sheets, each as a dict: "sheet", "barcodes", "rejected", "printed", and the fields of the
    form by their names. A field is a label, BLANK without a mark, DOUBLE_MARK with several, or None if its cells were
    not read. `sheets` may be a reader: a row comes with its sheet."""
    form = form_of(form)
    columns = form.columns
    for sheet in sheets:
        yield dict(zip(columns, form.row(sheet)))


def frame(sheets, form):
    """Returns the same as a pandas data frame."""
    try:
        import pandas  # type: ignore[import]
    except ImportError:
        raise ImportError("frame() needs pandas (python3-pandas); rows() gives the same without it.") from None
    form = form_of(form)
    done = list(sheets)  # whether a sheet was printed on is known once the next one has come
    return pandas.DataFrame.from_records([form.row(sheet) for sheet in done], columns=form.columns)
