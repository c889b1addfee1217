#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Generates the pages about the readers in docs/readers.

    generate_reader_pages.py [--check] [--kelreader PROGRAM] [--root FOLDER]

A page is made of the catalogue (as "kelreader models --format json" prints it), the table of print lines, the English
texts, and advice that is written by hand, one file a family in docs/readers/advice and one for what all readers share.
An advice file is Markdown. Its first heading is the page's title, and what follows it comes before the tables.
Sections come next; in a section

    ## 438 446 + 440 442 | 188
    When: ...
    Cause: ...
    Do: ...

is the advice for the texts 438 and 446, which are continued by 440 and 442 and bear the title 188. A text that is no
number of the language database stands in quotes. "## failure 8002" is about a run-time failure. The section "Texts that
are no messages" excuses texts of a source file that are no messages.

With --check nothing is written, and pages that are not up to date are a problem. Other problems are numbers without
advice and advice without a number. Each problem is one line on standard error, and the exit status is 1.
"""

import argparse
import re
import sys
from pathlib import Path

sys.dont_write_bytecode = True  # the modules lie in the source folder

from reader_advice import check_sources, parse_advice
from reader_facts import (
    catalogue,
    english_texts,
    failure_texts,
    families_of_models,
    need,
    print_lines,
    sources_of,
    text_names,
    usual_program,
)

# Texts of the options dialog that are captions and no messages; they are explained by the dialog itself.
LAST_CAPTION = 158
CAPTIONS = (168, 170)
# What the window of the dialog says around them.
FIRST_AID, LAST_AID = 560, 690

# The settings as the dialog names and explains them: caption, property, explanation.
SETTINGS = (
    (110, "Feeder", 604),
    (112, "Duplex", 606),
    (114, "Rejecter", 608),
    (116, "ReaderGrade", 610),
    (118, "Barcode", 612),
    (120, "Printer.Enabled", 614),
    (122, "Windowing", 616),
    (128, "RecognitionThreshold", 618),
    (124, "MarkDiscrimination", 620),
    (132, "MarkCutOff", 622),
    (126, "Timeout", 624),
    (130, "SleepTime", 626),
    (142, "Port", 628),
    (150, "BaudRate", 630),
    (148, "DataBits", 632),
    (146, "Parity", 634),
    (144, "StopBits", 636),
    (152, "FlowControl", 638),
)
SETTINGS_HERE = "{settings}"

LONG_GROUP = 4

OPTIONS = (
    ("Feeder", "Feeder"),
    ("Duplex", "Both sides"),
    ("Rejecter", "Reject hopper"),
    ("Printer", "Imprinter"),
    ("Barcode", "Barcodes"),
    ("Windowing", "Read windows"),
    ("ReaderGrade", "Grading"),
)
FLOW_CONTROL = ("none", "XON/XOFF", "hardware (RTS/CTS)", "both")
PARITY = {"N": "none", "O": "odd", "E": "even", "M": "mark", "S": "space"}


def is_message(number):
    return number > LAST_CAPTION and number not in CAPTIONS and not FIRST_AID <= number <= LAST_AID


def table(heads, rows):
    lines = ["| " + " | ".join(heads) + " |", "|" + "---|" * len(heads)]
    return "\n".join(lines + ["| " + " | ".join(map(str, row)) + " |" for row in rows])


def is_usb(model):
    return model["InterfaceType"] == 2


def line_table(models):
    serial = [model for model in models if not is_usb(model)]
    if not serial:
        return "USB; no line settings."
    rows = [
        (
            model["ReaderType"],
            model["ReaderName"],
            model["BaudRate"],
            model["DataBits"],
            PARITY[model["Parity"]],
            f"{model['StopBits']:g}",
            FLOW_CONTROL[model["FlowControl"]],
            "yes" if model["BaudRateEnabled"] else "no",
        )
        for model in serial
    ]
    heads = ("No.", "Model", "Baud", "Data bits", "Parity", "Stop bits", "Handshaking", "Can be changed")
    return table(heads, rows)


def option_of(model, option):
    value, enabled = model[option], model[f"{option}Enabled"]
    if enabled:
        return "on*" if value else "off*"
    return "always" if value else "–"


def option_table(models):
    rows = [
        (model["ReaderType"], model["ReaderName"], *(option_of(model, option) for option, _ in OPTIONS))
        for model in models
    ]
    return table(("No.", "Model", *(name for _, name in OPTIONS)), rows)


def threshold_of(model):
    lowest, highest = model["RecognitionThresholdMinimum"], model["RecognitionThresholdMaximum"]
    if lowest == highest == 0:
        return "fixed"
    return f"{model['RecognitionThreshold']} ({lowest} to {highest})"


def discrimination_of(model):
    return model["MarkDiscrimination"] if model["MarkDiscriminationEnabled"] else "–"


def imprinter_of(model, lines):
    if model["ReaderType"] not in lines:
        return "–"
    count, first, last, characters = lines[model["ReaderType"]]
    return f"{count} of {characters} characters, from position {first} to {last}"


def value_table(models, lines):
    rows = [
        (
            model["ReaderType"],
            model["ReaderName"],
            model["MaxCols"],
            threshold_of(model),
            discrimination_of(model),
            imprinter_of(model, lines),
            "yes" if model["LocateEnabled"] else "no",
            "yes" if model["FirmwareEnabled"] else "no",
        )
        for model in models
    ]
    heads = ("No.", "Model", "Columns", "Recognition threshold", "Mark discrimination", "Print lines")
    return table((*heads, "Search on the ports", "Firmware version"), rows)


def settings_table(texts):
    rows = [
        (texts[caption].replace("&", "").rstrip(":"), f"`{name}`", texts[explanation])
        for caption, name, explanation in SETTINGS
    ]
    return table(("In the options dialog", "Property", "What it does"), rows)


def shown(text):
    """A text on one line, N where a value is filled in, and three dots where one follows."""
    open_end = text.endswith(" ")
    words = " ".join(text.replace("~~", " ").replace("&&", "&").replace("%1", "N").split())
    return words + (" …" if open_end else "")


def first_sentence(text):
    return re.match(r".*?[.:](?=\s|$)|.*", shown(text))[0]


def words_of(name, texts):
    return name if isinstance(name, str) else shown(texts[name])


def anchors(numbers):
    return "".join(f'<a id="t{number}"></a>' for number in numbers if isinstance(number, int))


def message_text(message, texts, failures):
    lines = []
    if message.failures:
        for number in message.failures:
            lines.append(f'> <a id="f{number}"></a>**{number} {failures[number]}**')
    else:
        title = " / ".join(f"**{words_of(name, texts)}**" for name in message.titles)
        many = len(message.texts) >= LONG_GROUP
        for name in message.texts:
            words = first_sentence(texts[name]) if many else words_of(name, texts)
            number = f" ({name})" if isinstance(name, int) else ""
            lines.append(f"> {anchors([name])}{title} — {words}{number}")
        if message.parts:
            parts = ", ".join(f'"{words_of(name, texts)}"' for name in message.parts)
            lines.append(f"> {anchors(message.parts)}(with {parts})")
    quoted = "\n>\n".join(lines)
    return f"{quoted}\n\n- **When:** {message.when}\n- **Cause:** {message.cause}\n- **What to do:** {message.do}"


def first_of_all(models):
    """What every page of a family begins with."""
    where = "" if all(map(is_usb, models)) else " --port 1"
    return (
        f"**First, run `kelreader check --model {models[0]['ReaderType']}{where}`.** It says whether the reader can be "
        "used and, if not, what is wrong. [More](common.md#first-of-all)"
    )


def page_text(advice, tables, texts, failures, lead=""):
    parts = [
        f"<!-- Made by scripts/generate_reader_pages.py from the catalogue, the texts and {Path(advice.path).name} in\n"
        "     docs/readers/advice. Change these, and run the script. -->",
        f"# {advice.title}",
        lead,
        advice.about,
        *tables,
    ]
    for section in advice.sections:
        parts.append(f"## {section.heading}")
        prose = section.prose
        if SETTINGS_HERE in prose:
            prose = prose.replace(SETTINGS_HERE, settings_table(texts))
        parts.append(prose)
        parts += [message_text(message, texts, failures) for message in section.messages]
    return "\n\n".join(part for part in parts if part) + "\n"


def family_tables(models, lines):
    legend = (
        "on\\*, off\\*: the model's default, which the user may change. always: the model always has it. –: it does not "
        "have it. [What the settings mean](common.md#what-the-settings-mean)"
    )
    pauses = {(model["SleepTime"], model["Timeout"]) for model in models}
    need(len(pauses) == 1, "the models of a family differ in their system pause or time-out")
    ((pause, timeout),) = pauses
    hidden = not any(model["SleepTimeVisible"] for model in models)
    parts = ["## Line settings", line_table(models)]
    if not all(map(is_usb, models)):
        shown_where = "; neither is shown in the options dialog." if hidden else "."
        parts.append(f"System pause {pause} ms, time-out {timeout} s{shown_where}")
    parts += ["## Options", option_table(models), legend, "## Values", value_table(models, lines)]
    return parts


def page_table(advised, models_of):
    rows = []
    for family in models_of:
        names = ", ".join(f"{model['ReaderName']} ({model['ReaderType']})" for model in models_of[family])
        rows.append((f"[{advised[family].title}]({family}.md)", names))
    return table(("Page", "Models"), sorted(rows))


def models_by_family(models, families):
    result = {}
    for model in models:
        number = model["ReaderType"]
        if number:
            need(number in families, f"model {number} has no driver")
            result.setdefault(families[number], []).append(model)
    told = {model["ReaderType"] for model in models} - {0}
    need(told == set(families), "the catalogue lacks models that have a driver: is the program up to date?")
    return result


def load_advice(root, families, texts, problems):
    """The advice of each page, compared with what its sources report."""
    names = text_names(root)
    advised = {}
    for name in (*sorted(families), "common", "index"):
        path = root / "docs/readers/advice" / f"{name}.md"
        if not path.exists():
            problems.append(f"{path}: the advice for drivers/{name} is missing")
            continue
        advice = parse_advice(str(path), path.read_text(encoding="utf-8"), problems)
        if name in families:
            check_sources(advice, sources_of(root, f"drivers/{name}"), names, texts, problems)
        elif name == "common":
            messages = {number: texts[number] for number in texts if is_message(number) or number in advice.numbers()}
            sources = sources_of(root, "contract", "dispatch", "failure", "options", "profiles", "reader")
            check_sources(advice, sources, names, messages, problems)
        advised[name] = advice
    return advised


def check_completeness(advised, texts, failures, problems):
    """Whether every message and every failure stands on some page."""
    explained = set.union(*(advice.numbers() for advice in advised.values()))
    excused = set.union(*advised["common"].excuses.values())
    for number in sorted(filter(is_message, texts.keys() - explained - excused)):
        problems.append(f"strings/texts/English.txt: text {number} stands on no page")
    told = set.union(*(advice.failures() for advice in advised.values()))
    for number in sorted(failures.keys() - told):
        problems.append(f"types/RuntimeFailure.h: failure {number} has no advice")
    for number in sorted(told - failures.keys()):
        problems.append(f"{advised['common'].path}: there is no failure {number}")


def make_pages(root, models, problems):
    """The text of each page by its name; none when there is a problem."""
    texts = english_texts(root)
    failures = failure_texts(root)
    lines = print_lines(root)
    models_of = models_by_family(models, families_of_models(root))
    advised = load_advice(root, models_of, texts, problems)
    if not problems:
        check_completeness(advised, texts, failures, problems)
    if problems:
        return {}

    pages = {"README.md": page_text(advised.pop("index"), (page_table(advised, models_of),), texts, failures)}
    for name, advice in advised.items():
        models = models_of.get(name, ())
        tables = family_tables(models, lines) if models else ()
        pages[f"{name}.md"] = page_text(advice, tables, texts, failures, first_of_all(models) if models else "")
    problems += broken_links(pages)
    return pages


def broken_links(pages):
    """Links from a page to a place that no page has."""
    places = {"faults.md": {""}}  # the tests make that page
    for name, page in pages.items():
        headings = re.findall(r"^#+ (.*)$", page, re.MULTILINE)
        slugs = {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}
        places[name] = slugs | set(re.findall(r'<a id="(\w+)">', page)) | {""}
    return [
        f"docs/readers/{name}: the link to {target or name}#{place} leads nowhere"
        for name, page in pages.items()
        for target, place in re.findall(r"\]\(([\w.]*)#?([\w-]*)\)", page)
        if place not in places.get(target or name, ())
    ]


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--check", action="store_true", help="write nothing; old pages are a problem")
    parser.add_argument("--kelreader", help="the command; otherwise $KELREADER, or the newest one below build/")
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parents[1], help="folder of the sources")
    options = parser.parse_args(arguments)

    problems = []
    pages = make_pages(options.root, catalogue(options.kelreader or usual_program(options.root)), problems)
    for name, text in pages.items():
        path = options.root / "docs/readers" / name
        if path.exists() and path.read_text(encoding="utf-8") == text:
            continue
        if options.check:
            problems.append(f"docs/readers/{name} is not up to date: run scripts/generate_reader_pages.py")
        elif not problems:
            path.write_text(text, encoding="utf-8")
    for problem in problems:
        print(problem.replace(f"{options.root}/", ""), file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
