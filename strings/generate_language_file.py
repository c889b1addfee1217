#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Generates the language database and the headers of text numbers and their names from the source texts.

    generate_language_file.py --out LKELReader81.txt --header TextNumbers.h
                              [--names texts.names --names-header TextNames.h] FILE...

Each FILE holds the texts of one language. The language's name is the base name of the file, and the languages stand in
the database in the order of the arguments; the first one is the language that is used when nothing else is chosen.

A source file is UTF-8. Lines that are blank or begin with "#" say nothing; every other line is an entry:

    354 = The reader did not answer.
    246 = "Error "

Quotes around a text keep its leading and trailing blanks. "~~" is a line end, "&" marks the access key of a caption
("&&" is an ampersand), "%1" stands for a value that is filled in.

The file of names has the same form, with the name of a constant in the place of the text; each number has one name.

Nothing is written when the texts have a problem. Each problem is one line on standard error,
"FILE:LINE: NUMBER: what is wrong", and the exit status is 1.
"""

import argparse
import os
import re
import sys
import unicodedata
from typing import NamedTuple

# The indexes of the database: FIRST_NUMBER, FIRST_NUMBER + STEP, ... The database has a line for each of them up to the
# highest number in use, so the table that the component sizes from these values always holds that number.
FIRST_NUMBER = 102
STEP = 2
LAST_NUMBER = 998

# Captions of the options dialog that are visible together. 138 and 140 are texts of lists and have no access key.
DIALOG_CAPTIONS = tuple(n for n in range(102, 160, STEP) if n not in (138, 140)) + (168, 170, 660, 662)
# Captions that one control bears at different times may have the same access key.
CAPTIONS_OF_ONE_CONTROL = ((116, 168, 170), (660, 662))
# Captions that are titles too, in which an access-key mark would be shown as it stands.
CAPTIONS_WITHOUT_ACCESS_KEY = (102, 108)

LONGEST_LANGUAGE_NAME = 63
NUMBERS_A_LINE = 16


class Entry(NamedTuple):
    line: int
    text: str


class Language(NamedTuple):
    name: str
    path: str
    entries: dict


def describe(path, line, number, what):
    return f"{path}:{line}: {number}: {what}"


def text_of(raw):
    """Returns the text of an entry and what is wrong with its form, one of them None."""
    if raw.startswith('"'):
        if len(raw) < 2 or not raw.endswith('"'):
            return None, "the closing quote is missing"
        raw = raw[1:-1]
    if not raw:
        return None, "the text is empty"
    if raw.startswith("["):
        return None, 'the text begins with "["'
    if raw.strip() == "?":
        return None, 'the text is "?" alone'
    for character in raw:
        if unicodedata.category(character) in ("Cc", "Cf", "Zl", "Zp"):
            return None, f"the text holds the control character U+{ord(character):04X}"
    if any(len(tildes) % 2 for tildes in re.findall("~+", raw)):
        return None, 'a "~" stands alone; a line end is "~~"'
    return raw, None


def placement_problem(number):
    if number < FIRST_NUMBER or number > LAST_NUMBER:
        return f"the number is not in {FIRST_NUMBER} to {LAST_NUMBER}"
    if (number - FIRST_NUMBER) % STEP:
        return f"the number is not {FIRST_NUMBER} plus a multiple of {STEP}"
    return None


def parse(path, content, problems):
    """Returns the entries of one source file by number."""
    entries = {}
    for line, source in enumerate(content.split("\n"), start=1):
        source = source.rstrip("\r").strip(" \t")
        if not source or source.startswith("#"):
            continue
        match = re.fullmatch(r"([1-9][0-9]*)[ \t]*=[ \t]*(.*)", source)
        if not match:
            problems.append(describe(path, line, "-", 'this is no entry of the form "354 = text"'))
            continue
        number = int(match[1])
        text, form_problem = text_of(match[2])
        for problem in (placement_problem(number), form_problem):
            if problem:
                problems.append(describe(path, line, number, problem))
        if number in entries:
            problems.append(describe(path, line, number, f"the number stands in line {entries[number].line} already"))
        elif text is not None:
            entries[number] = Entry(line, text)
        else:
            # The number has an entry, so it isn't reported as missing on top of the entry's own problem.
            entries[number] = Entry(line, "")
    if not entries:
        problems.append(describe(path, 1, "-", "the file has no entries"))
    return entries


def language_name(path, taken, problems):
    name = os.path.splitext(os.path.basename(path))[0]
    if not re.fullmatch("[A-Za-z](?:[A-Za-z0-9 _-]*[A-Za-z0-9])?", name) or name.upper() == "VBLM":
        problems.append(describe(path, 0, "-", f'"{name}" is no name for a language'))
    elif len(name) > LONGEST_LANGUAGE_NAME:
        what = f"the language's name is longer than {LONGEST_LANGUAGE_NAME} characters"
        problems.append(describe(path, 0, "-", what))
    elif name.lower() in taken:
        problems.append(describe(path, 0, "-", f'the language "{name}" is given twice'))
    taken.add(name.lower())
    return name


def load(paths, problems):
    languages = []
    taken = set()
    for path in paths:
        name = language_name(path, taken, problems)
        try:
            with open(path, "rb") as file:
                content = file.read().decode("utf-8-sig")
        except OSError as error:
            problems.append(describe(path, 0, "-", f"the file can't be read: {error.strerror}"))
        except UnicodeDecodeError as error:
            problems.append(describe(path, error.object.count(b"\n", 0, error.start) + 1, "-", "the line is not UTF-8"))
        else:
            languages.append(Language(name, path, parse(path, content, problems)))
    return languages


def check_same_numbers(languages, problems):
    for number in sorted(set().union(*(language.entries for language in languages))):
        holder = next(language for language in languages if number in language.entries)
        for other in languages:
            if number not in other.entries:
                line = holder.entries[number].line
                problems.append(describe(holder.path, line, number, f"{other.name} has no text for this number"))


def placeholders(text):
    return set(re.findall("%[0-9]", text))


def check_placeholders(languages, problems):
    for holder in languages:
        for number, entry in holder.entries.items():
            if not entry.text:
                continue
            wanted = set()
            for other in languages:
                if number in other.entries:
                    wanted |= placeholders(other.entries[number].text)
            for missing in sorted(wanted - placeholders(entry.text)):
                what = f'"{missing}" stands in another language, but not here'
                problems.append(describe(holder.path, entry.line, number, what))


def access_key(caption):
    """Returns the access key of a caption, None if it has none, and what is wrong with its marks."""
    keys = []
    position = 0
    while (position := caption.find("&", position)) >= 0:
        key = caption[position + 1 : position + 2]
        if key != "&":
            if not key.isalnum():
                return None, 'no letter or digit follows the access-key mark "&"'
            keys.append(key.casefold())
        position += 2
    if len(keys) > 1:
        return None, "the caption has more than one access key"
    return (keys[0] if keys else None), None


def same_control(number, other):
    return any(number in group and other in group for group in CAPTIONS_OF_ONE_CONTROL)


def check_access_keys(language, problems):
    taken = {}
    for number in DIALOG_CAPTIONS:
        entry = language.entries.get(number)
        if entry is None:
            continue
        key, problem = access_key(entry.text)
        if problem is None and key and number in CAPTIONS_WITHOUT_ACCESS_KEY:
            problem = "the caption is a title too and can't have an access key"
        if problem is None and key:
            for other in taken.get(key, []):
                if not same_control(number, other):
                    problem = f'the access key "{key.upper()}" is that of {other} too'
                    break
            taken.setdefault(key, []).append(number)
        if problem:
            problems.append(describe(language.path, entry.line, number, problem))


def parse_names(path, language, problems):
    """Returns the names of the texts by number."""
    with open(path, encoding="utf-8") as file:
        content = file.read()
    names = {}
    taken = {}
    for line, source in enumerate(content.split("\n"), start=1):
        source = source.strip()
        if not source or source.startswith("#"):
            continue
        match = re.fullmatch(r"([1-9][0-9]*) = (k[A-Z][A-Za-z0-9]*)", source)
        if not match:
            problems.append(describe(path, line, "-", 'this is no entry of the form "354 = kStatusUnanswered"'))
            continue
        number, name = int(match[1]), match[2]
        if number in names:
            problems.append(describe(path, line, number, "the number has a name already"))
        if name in taken:
            problems.append(describe(path, line, number, f"{name} is the name of {taken[name]} already"))
        if number not in language.entries:
            problems.append(describe(path, line, number, f"{language.name} has no text for this number"))
        names[number] = name
        taken[name] = number
    for number in sorted(language.entries.keys() - names.keys()):
        problems.append(describe(language.path, language.entries[number].line, number, "the text has no name"))
    return names


def check(languages, problems):
    check_same_numbers(languages, problems)
    check_placeholders(languages, problems)
    for language in languages:
        check_access_keys(language, problems)


def section(language, last_number):
    """The language's section. A number that no text uses has an empty line, so that lines and indexes keep in step."""
    lines = [f"[{language.name}]"]
    for number in range(FIRST_NUMBER, last_number + 1, STEP):
        text = language.entries[number].text if number in language.entries else ""
        lines.append(f'S{number}="{text}"')
    return "".join(line + "\r\n" for line in lines).encode("utf-8")


def head(languages, starts, number_of_lines):
    lines = ["[VBLM]", f"NumLanguages={len(languages)}"]
    for position, (language, start) in enumerate(zip(languages, starts), start=1):
        lines += [f"Language{position}={language.name}", f"Language{position}Start={start}"]
    lines += [f"NumStrings={number_of_lines}", f"StringIndexBase={FIRST_NUMBER}", f"StringIndexStep={STEP}"]
    return "".join(line + "\r\n" for line in lines).encode("ascii")


def database(languages):
    last_number = max(max(language.entries) for language in languages)
    number_of_lines = (last_number - FIRST_NUMBER) // STEP + 1
    sections = [section(language, last_number) for language in languages]

    # The head holds the positions, and its length depends on their digits: repeat until they stand.
    starts = [0] * len(languages)
    while True:
        written_head = head(languages, starts, number_of_lines)
        position = len(written_head) + 1
        found = []
        for written in sections:
            found.append(position)
            position += len(written)
        if found == starts:
            return written_head + b"".join(sections)
        starts = found


def header(languages):
    numbers = sorted(languages[0].entries)
    rows = [numbers[first : first + NUMBERS_A_LINE] for first in range(0, len(numbers), NUMBERS_A_LINE)]
    table = "\n".join("    " + ", ".join(str(number) for number in row) + "," for row in rows)
    return f"""\
// Generated from the source texts by generate_language_file.py. Changes made here are lost.
#pragma once

#include <array>
#include <cstdint>

namespace kel {{

/// The numbers that have a text in the language database, in ascending order.
inline constexpr std::array<std::int32_t, {len(numbers)}> kTextNumbers{{{{
{table}
}}}};

}}  // namespace kel
""".encode("ascii")


def names_header(names):
    constants = "\n".join(f"inline constexpr TextNumber {name}{{{number}}};" for number, name in sorted(names.items()))
    return f"""\
// Generated from the list of names by generate_language_file.py. Changes made here are lost.
#pragma once

#include "strings/TextNumber.h"

/// The texts by their names.
namespace kel::text {{

{constants}

}}  // namespace kel::text
""".encode("ascii")


def write_if_changed(path, content):
    try:
        with open(path, "rb") as file:
            if file.read() == content:
                return
    except FileNotFoundError:
        os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)


def main(arguments=None):
    parser = argparse.ArgumentParser(description="Generates the language database and the header of text numbers.")
    parser.add_argument("--out", required=True, metavar="DATABASE", help="the database to write")
    parser.add_argument("--header", required=True, metavar="HEADER", help="the C++ header to write")
    parser.add_argument("--names", metavar="NAMES", help="the names of the texts")
    parser.add_argument("--names-header", metavar="HEADER", help="the C++ header of the names to write")
    parser.add_argument("files", nargs="+", metavar="FILE", help="the source texts of one language")
    options = parser.parse_args(arguments)
    if bool(options.names) != bool(options.names_header):
        parser.error("--names and --names-header go together")

    problems = []
    languages = load(options.files, problems)
    check(languages, problems)
    names = parse_names(options.names, languages[0], problems) if options.names and languages else {}
    if not problems:
        try:
            write_if_changed(options.out, database(languages))
            write_if_changed(options.header, header(languages))
            if options.names:
                write_if_changed(options.names_header, names_header(names))
        except OSError as error:
            problems.append(describe(error.filename, 0, "-", f"the file can't be written: {error.strerror}"))
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
