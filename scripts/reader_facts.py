# SPDX-License-Identifier: MIT
"""What the sources say of the readers: models, drivers, texts, failures, and the numbers that drivers report."""

import importlib.util
import json
import os
import re
import subprocess
import sys


def text_parser(root):
    """The parser of the texts' own generator."""
    sys.dont_write_bytecode = True
    description = importlib.util.spec_from_file_location("generate_language_file", root / "strings/generate_language_file.py")
    module = importlib.util.module_from_spec(description)
    description.loader.exec_module(module)
    return module


def english_texts(root):
    problems = []
    path = root / "strings/texts/English.txt"
    entries = text_parser(root).parse(str(path), path.read_text(encoding="utf-8"), problems)
    if problems:
        raise SystemExit("\n".join(problems))
    return {number: entry.text for number, entry in entries.items()}


def read(root, path):
    return (root / path).read_text(encoding="utf-8")


def need(condition, what):
    if not condition:
        raise SystemExit(f"generate_reader_pages.py: {what}")


def model_rows(root):
    """The rows of the table of models, by their numbers: the text of each."""
    rows = re.findall(r"^    \{(\d+), (.*?)\},$", read(root, "types/ModelTable.h"), re.MULTILINE | re.DOTALL)
    need(rows, "types/ModelTable.h has no rows of models")
    return {int(number): row for number, row in rows}


def families_of_models(root):
    """The driver's folder of each model, by its number."""
    source = read(root, "dispatch/DriverFamilies.cpp")
    folders = {}
    for name, init in re.findall(r"constexpr DriverFamily (\w+) = \{\s*\.Init = (\w+),", source):
        holders = [
            header.parent.name
            for header in sorted((root / "drivers").glob("*/bas*.h"))
            if re.search(rf"\b{init}\(", header.read_text(encoding="utf-8"))
        ]
        need(len(holders) == 1, f"{init} is declared in {len(holders)} drivers")
        folders[name] = holders[0]
    named = {name: folders[family] for name, family in re.findall(r'\{"(\w+)", &(\w+)\},', source)}
    drivers = {number: re.findall(r'"([^"]*)"', row)[2] for number, row in model_rows(root).items()}
    need(set(drivers.values()) <= set(named), "a model names a driver that dispatch/DriverFamilies.cpp lacks")
    return {number: named[driver] for number, driver in drivers.items()}


def print_lines(root):
    """Print lines, positions from and to, and characters of the models that may have an imprinter."""
    found = {}
    for number, row in model_rows(root).items():
        printer = re.search(r"\{(.*)\}$", row)
        if printer:
            found[number] = tuple(map(int, printer[1].split(",")))
    need(found, "types/ModelTable.h has no model that prints")
    return found


def failure_texts(root):
    """The run-time failures: their standard texts by number."""
    numbers = dict(re.findall(r"^    (\w+) = (\d+),$", read(root, "types/RuntimeFailure.h"), re.MULTILINE))
    texts = {}
    for name, text in re.findall(
        r'case FailureCode::(\w+):\s*return ((?:"[^"]*"\s*)+);', read(root, "types/RuntimeFailure.cpp")
    ):
        texts[int(numbers[name])] = "".join(re.findall(r'"([^"]*)"', text))
    need(texts and len(texts) == len(numbers), "types/RuntimeFailure.cpp does not have a text for each failure")
    texts[68] = "Device unavailable"
    return texts


TOKENS = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)|(?P<text>"(?:\\.|[^"\\\n])*")|(?P<character>'(?:\\[^'\n]*|[^'\\\n])')""",
    re.DOTALL,
)
TEXT_NAME = re.compile(r"\btext::(k\w+)")
LITERAL_REPORT = re.compile(r'report(?:Reader|Numbered)Fault\(((?:[^;"]|"(?:\\.|[^"\\])*")*?)\);', re.DOTALL)


def text_names(root):
    """The numbers of the texts by their names."""
    rows = re.findall(r"^(\d+) = (\w+)$", read(root, "strings/texts.names"), re.MULTILINE)
    return {name: int(number) for number, name in rows}


def numbers_in(source, names):
    """The numbers of the texts that a source names."""
    plain = TOKENS.sub(" ", source)
    return {names[name] for name in TEXT_NAME.findall(plain) if name in names}


def literals_in(source):
    """The words that a source reports without a number."""
    found = set()
    plain = TOKENS.sub(lambda token: " " if token["comment"] else token[0], source)
    for report in LITERAL_REPORT.findall(plain):
        found |= {text for text in re.findall(r'"((?:\\.|[^"\\])*)"', report) if re.search(r"\w \w", text)}
    return found


def sources_of(root, *folders):
    return [path for folder in folders for kind in ("*.cpp", "*.h") for path in sorted((root / folder).glob(kind))]


def catalogue(program):
    listed = subprocess.run([program, "models", "--format", "json"], capture_output=True, text=True)
    need(listed.returncode == 0, f"{program} does not list the models: {listed.stderr.strip()}")
    return json.loads(listed.stdout)


def usual_program(root):
    named = os.environ.get("KELREADER")
    programs = [named] if named else sorted(root.glob("build/*/bin/kelreader"), key=lambda path: path.stat().st_mtime)
    need(programs, "build the command first, or name it with --kelreader")
    return str(programs[-1])
