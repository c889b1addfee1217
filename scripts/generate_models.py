#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes what is published of the models from the rows of types/ModelTable.h: the enumerations, and the places of the
documents that say how many models there are.

    scripts/generate_models.py [--check]

--check writes nothing, names each file that differs, and fails if one does.
"""

import argparse
import re
import sys
from pathlib import Path

TABLE = "types/ModelTable.h"

# Where the number of models stands in words, or the highest number.
COUNTED = {
    "README.md": r"(?<=with )\d+(?= optical mark readers)",
    "docs/kelreader.1": r"(?<=readers: )\d+(?= models)",
    "stream/message.schema.json": r'(?<="model": \{ "type": "integer", "minimum": 0, "maximum": )\d+',
}


def rows(text):
    """The enumerators by their numbers."""
    found = [(int(number), name) for number, name in re.findall(r'^    \{(\d+), "(\w*)",', text, re.MULTILINE)]
    if not found:
        raise SystemExit(f"{TABLE}: there is no row of a model")
    numbers = [number for number, _ in found]
    names = [name for _, name in found]
    for number, name in found:
        if not re.fullmatch(r"kelReaderType[A-Z]\w*", name) or name == "kelReaderTypeNone":
            raise SystemExit(f'{TABLE}: {number}: "{name}" is no name of a model; try kelReaderType and the model')
        if numbers.count(number) > 1:
            raise SystemExit(f"{TABLE}: {number}: two models have this number; take the next free one")
        if names.count(name) > 1:
            raise SystemExit(f"{TABLE}: {number}: two models are called {name}")
        if not 1 <= number <= len(found):
            raise SystemExit(f"{TABLE}: {number}: the numbers run from 1 without a gap; take the next free one")
    return dict(sorted(found))


def replace_once(path, text, pattern, new):
    changed, count = re.subn(pattern, lambda _: new, text, flags=re.DOTALL)
    if count != 1:
        raise SystemExit(f"{path}: what the models are written into stands there {count} times, not once")
    return changed


def enumerators(models, indentation, last=","):
    lines = [f"{indentation}{name} = {number}" for number, name in ((0, "kelReaderTypeNone"), *models.items())]
    return ",\n".join(lines) + last + "\n"


def generated(root):
    """The files that hold what follows from the rows, with their texts."""

    def read(path):
        return (root / path).read_text(encoding="utf-8")

    models = rows(read(TABLE))
    last = len(models)
    header = "types/Enumerations.h"
    text = replace_once(header, read(header), r"(?<=enum kelReaderType : std::int32_t \{\n).*?(?=\};)", enumerators(models, " " * 4))
    yield header, replace_once(header, text, r"(?<=kReaderTypeCount = )\w+(?= \+ 1;)", models[last])
    interface = "com/KELReader81U.idl"
    yield interface, replace_once(interface, read(interface), r"(?<=enum kelReaderType \{\n).*?(?=    \} kelReaderType;)",
                                  enumerators(models, " " * 8, ""))
    for path, place in COUNTED.items():
        yield path, replace_once(path, read(path), place, str(last))


def main(arguments=None, root=Path(__file__).resolve().parents[1]):
    parser = argparse.ArgumentParser(description="Makes what is published of the models from their table.")
    parser.add_argument("--check", action="store_true", help="write nothing; fail if a file is not up to date")
    options = parser.parse_args(arguments)
    different = [(path, text) for path, text in generated(root) if (root / path).read_text(encoding="utf-8") != text]
    for path, text in different:
        if options.check:
            print(f"{path} does not have the models of {TABLE}; run scripts/generate_models.py", file=sys.stderr)
        else:
            (root / path).write_text(text, encoding="utf-8")
            print(path)
    return 1 if different and options.check else 0


if __name__ == "__main__":
    sys.exit(main())
