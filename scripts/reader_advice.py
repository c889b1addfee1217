# SPDX-License-Identifier: MIT
"""The advice that is written by hand: what each message of a reader means and what to do about it."""

import re
from typing import NamedTuple

from reader_facts import literals_in, numbers_in

EXCUSES = "Texts that are no messages"

FIELD = re.compile(r"^(When|Cause|Do): (.*?)(?=^(?:When|Cause|Do): |\Z)", re.MULTILINE | re.DOTALL)


class Message(NamedTuple):
    """The advice for some texts or failures."""

    line: int
    texts: tuple  # numbers, or literal texts
    parts: tuple
    titles: tuple
    failures: tuple
    when: str
    cause: str
    do: str


class Section(NamedTuple):
    heading: str
    prose: str
    messages: tuple


class Advice(NamedTuple):
    path: str
    title: str
    about: str
    sections: tuple
    excuses: dict  # file name -> numbers

    def messages(self):
        return [message for section in self.sections for message in section.messages]

    def numbers(self):
        return {
            number
            for message in self.messages()
            for number in message.texts + message.parts + message.titles
            if isinstance(number, int)
        }

    def literals(self):
        return {
            text
            for message in self.messages()
            for text in message.texts + message.parts + message.titles
            if isinstance(text, str)
        }

    def literals_of_texts(self):
        return {text for message in self.messages() for text in message.texts if isinstance(text, str)}

    def failures(self):
        return {number for message in self.messages() for number in message.failures}


def heading_of(path, line, heading, problems):
    """Texts, parts, titles and failures of a message's heading."""
    names, _, titles = heading.partition("|")
    names, _, parts = names.partition("+")
    failure = names.startswith("failure ")
    result = []
    for text in (names.removeprefix("failure "), parts, titles):
        found = re.findall(r'"([^"]*)"|(\d+)|(\S+)', text)
        result.append(tuple(words or int(number) for words, number, _ in found if words or number))
        if any(other for *_, other in found):
            problems.append(f"{path}:{line}: '{heading}' is no heading of a message")
    texts, parts, titles = result
    return ((), parts, titles, texts) if failure else (texts, parts, titles, ())


def parse_advice(path, content, problems):
    title = about = ""
    sections = []
    excuses = {}
    blocks = re.split(r"^(?=#{1,2} )", content, flags=re.MULTILINE)
    line = 1 + blocks[0].count("\n")
    for block in blocks[1:]:
        heading, _, body = block.partition("\n")
        if heading.startswith("# ") and not title:
            title, about = heading[2:], body.strip()
        elif heading == f"# {EXCUSES}":
            for name, numbers in re.findall(r"^- (\S+) ([\d ]+)$", body, re.MULTILINE):
                excuses[name] = {int(number) for number in numbers.split()}
        elif heading.startswith("# "):
            sections.append(Section(heading[2:], body.strip("\n"), ()))
        else:
            fields = dict(FIELD.findall(body))
            if set(fields) != {"When", "Cause", "Do"} or not sections:
                problems.append(f"{path}:{line}: the advice does not say When, Cause and Do within a section")
            else:
                told = {name.lower(): " ".join(text.split()) for name, text in fields.items()}
                texts, parts, titles, failures = heading_of(path, line, heading[3:], problems)
                message = Message(line, texts, parts, titles, failures, **told)
                sections[-1] = sections[-1]._replace(messages=sections[-1].messages + (message,))
        line += block.count("\n")
    if not title:
        problems.append(f"{path}:1: the title is missing")
    return Advice(path, title, about, tuple(sections), excuses)


def check_sources(advice, sources, names, texts, problems):
    """Whether the advice and what the sources report are about the same."""
    reported = set()
    literal = set()
    for path in sources:
        source = path.read_text(encoding="utf-8")
        numbers = numbers_in(source, names) & texts.keys()
        excused = advice.excuses.get(path.name, set())
        for number in sorted(excused - numbers):
            problems.append(f"{advice.path}: {path.name} does not name text {number}, which need not be excused")
        for number in sorted(numbers - excused - advice.numbers()):
            problems.append(f"{path}: text {number} has no advice in {advice.path}")
        reported |= numbers
        for text in sorted(literals_in(source) - advice.literals()):
            problems.append(f'{path}: the text "{text}" has no advice in {advice.path}')
        literal |= literals_in(source)
    for number in sorted(advice.numbers() - texts.keys()):
        problems.append(f"{advice.path}: there is no text {number}")
    for number in sorted((advice.numbers() & texts.keys()) - reported):
        problems.append(f"{advice.path}: text {number} is not reported any more")
    for text in sorted(advice.literals() - literal):
        problems.append(f'{advice.path}: the text "{text}" is not reported any more')
