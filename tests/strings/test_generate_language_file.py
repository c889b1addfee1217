# SPDX-License-Identifier: MIT
"""Tests of the generator of the language database, and of the source texts themselves."""

import contextlib
import importlib.util
import io
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GENERATOR = ROOT / "strings" / "generate_language_file.py"
TEXTS = ROOT / "strings" / "texts"
LANGUAGES = ("English", "German", "French", "Spanish")
SOURCES = [str(TEXTS / f"{name}.txt") for name in LANGUAGES]

# Every number that the component asks for.
NUMBERS = [number for number in range(102, 692, 2) if number not in (178, 180, 504, 658)]

sys.dont_write_bytecode = True
module = importlib.util.spec_from_file_location("generate_language_file", GENERATOR)
generator = importlib.util.module_from_spec(module)
module.loader.exec_module(generator)


def read_head(data):
    head = {}
    lines = data.decode("utf-8").split("\r\n")
    assert lines[0] == "[VBLM]"
    for line in lines[1:]:
        if line.startswith("["):
            return head
        key, value = line.split("=", 1)
        head[key] = value
    return head


def read_table(data, language):
    """Loads one language as the component does: a table of fixed size, and exactly NumStrings lines."""
    head = read_head(data)
    base, step, count = (int(head[key]) for key in ("StringIndexBase", "StringIndexStep", "NumStrings"))
    table = [""] * (base + count * step + 1)
    start = int(head[f"Language{language}Start"]) - 1
    lines = data[start:].decode("utf-8").split("\r\n")
    assert lines[0] == "[" + head[f"Language{language}"] + "]"
    for line in lines[1 : 1 + count]:
        before, text = line.split("=", 1)
        text = text.removeprefix('"').removesuffix('"')
        table[int(before[1:])] = text.replace("~~", "\r\n")
    return table


def real_texts():
    problems = []
    languages = generator.load(SOURCES, problems)
    assert not problems, problems
    return {language.name: {number: entry.text for number, entry in language.entries.items()} for language in languages}


class GeneratorCase(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = Path(directory.name)
        self.out = self.directory / "LKELReader81.txt"
        self.header = self.directory / "TextNumbers.h"

    def generate(self, *files):
        """Runs the generator. Returns the exit status and the lines of its complaint."""
        complaint = io.StringIO()
        with contextlib.redirect_stderr(complaint):
            status = generator.main(["--out", str(self.out), "--header", str(self.header), *map(str, files)])
        return status, complaint.getvalue().splitlines()

    def source(self, name, text):
        path = self.directory / f"{name}.txt"
        path.write_text(text, encoding="utf-8")
        return path


class NamesTest(GeneratorCase):
    NAMES = "102 = kFirst\n104 = kSecond\n"

    def generate_names(self, names):
        listed = self.directory / "texts.names"
        listed.write_text(names, encoding="utf-8")
        self.names_header = self.directory / "TextNames.h"
        texts = self.source("English", "102 = One\n104 = Two")
        return self.generate("--names", listed, "--names-header", self.names_header, texts)

    def test_each_number_becomes_a_constant(self):
        self.assertEqual(self.generate_names("# Two texts.\n\n" + self.NAMES), (0, []))
        header = self.names_header.read_text(encoding="utf-8")
        constants = re.findall(r"inline constexpr TextNumber (\w+)\{(\d+)\};", header)
        self.assertEqual(constants, [("kFirst", "102"), ("kSecond", "104")])

    def test_what_is_wrong_with_the_names_is_said(self):
        for names, problem in (
            ("102 = kFirst\n", "English.txt:2: 104: the text has no name"),
            (self.NAMES + "106 = kThird\n", "texts.names:3: 106: English has no text for this number"),
            (self.NAMES + "102 = kThird\n", "texts.names:3: 102: the number has a name already"),
            ("102 = kFirst\n104 = kFirst\n", "texts.names:2: 104: kFirst is the name of 102 already"),
            (self.NAMES + "106 kThird\n", "texts.names:3: -: this is no entry of the form"),
            ("102 = First\n104 = kSecond\n", "texts.names:1: -: this is no entry of the form"),
        ):
            with self.subTest(names):
                status, complaint = self.generate_names(names)
                self.assertEqual(status, 1)
                self.assertIn(problem, "\n".join(complaint))
                self.assertFalse(self.names_header.exists())

    def test_the_real_names_cover_the_real_texts(self):
        header = self.directory / "TextNames.h"
        names = ROOT / "strings" / "texts.names"
        self.assertEqual(self.generate("--names", names, "--names-header", header, *SOURCES), (0, []))
        self.assertEqual(len(re.findall("TextNumber k", header.read_text(encoding="utf-8"))), len(NUMBERS))


class DatabaseTest(GeneratorCase):
    def test_each_start_is_the_position_of_the_section(self):
        self.assertEqual(self.generate(*SOURCES), (0, []))
        data = self.out.read_bytes()
        head = read_head(data)
        self.assertEqual(head["NumLanguages"], "4")
        for position, name in enumerate(LANGUAGES, start=1):
            self.assertEqual(head[f"Language{position}"], name)
            start = int(head[f"Language{position}Start"])
            self.assertTrue(data[start - 1 :].startswith(f"[{name}]\r\n".encode()), name)

    def test_the_positions_count_bytes_and_stand_when_they_gain_a_digit(self):
        for length in range(1, 140):
            first = self.source("First", "102 = " + "ü" * length)
            second = self.source("Second", "102 = b")
            third = self.source("Third", "102 = c")
            self.assertEqual(self.generate(first, second, third), (0, []))
            data = self.out.read_bytes()
            head = read_head(data)
            for position, name in enumerate(("First", "Second", "Third"), start=1):
                start = int(head[f"Language{position}Start"])
                self.assertTrue(data[start - 1 :].startswith(f"[{name}]\r\n".encode()))

    def test_the_texts_arrive_as_they_stand_in_the_sources(self):
        self.assertEqual(self.generate(*SOURCES), (0, []))
        data = self.out.read_bytes()
        for position, (name, texts) in enumerate(real_texts().items(), start=1):
            table = read_table(data, position)
            for number, text in texts.items():
                self.assertEqual(table[number], text.replace("~~", "\r\n"), f"{name} {number}")
            for number in set(range(len(table))) - set(texts):
                self.assertEqual(table[number], "", f"{name} {number}")

    def test_the_table_holds_every_number(self):
        self.assertEqual(self.generate(*SOURCES), (0, []))
        head = read_head(self.out.read_bytes())
        base, step, count = (int(head[key]) for key in ("StringIndexBase", "StringIndexStep", "NumStrings"))
        self.assertEqual((base, step), (min(NUMBERS), 2))
        self.assertGreaterEqual(base + count * step, max(NUMBERS))
        self.assertEqual(base + (count - 1) * step, max(NUMBERS))

    def test_every_line_is_one_that_the_component_reads(self):
        self.assertEqual(self.generate(*SOURCES), (0, []))
        data = self.out.read_bytes()
        self.assertFalse(data.startswith(b"\xef\xbb\xbf"))
        self.assertEqual(data.count(b"\n"), data.count(b"\r\n"))
        self.assertEqual(data.count(b"\r"), data.count(b"\r\n"))
        count = int(read_head(data)["NumStrings"])
        sections = re.split(r"^\[(\w+)\]\r\n", data.decode("utf-8"), flags=re.MULTILINE)
        self.assertEqual(sections[1::2], ["VBLM", *LANGUAGES])
        for body in sections[4::2]:
            lines = body.removesuffix("\r\n").split("\r\n")
            self.assertEqual(len(lines), count)
            for line in lines:
                self.assertRegex(line, r'^[^\[][0-9]+=".*"$')

    def test_quotes_inside_a_text_stay(self):
        path = self.source("Only", '102 = say "yes"\n104 = ""yes" and "no""\n106 = " blank "\n')
        self.assertEqual(self.generate(path), (0, []))
        table = read_table(self.out.read_bytes(), 1)
        self.assertEqual(table[102], 'say "yes"')
        self.assertEqual(table[104], '"yes" and "no"')
        self.assertEqual(table[106], " blank ")

    def test_an_equals_sign_and_a_line_end_in_a_text(self):
        path = self.source("Only", "102 = a = b~~c\n")
        self.assertEqual(self.generate(path), (0, []))
        self.assertEqual(read_table(self.out.read_bytes(), 1)[102], "a = b\r\nc")

    def test_an_unused_number_has_an_empty_line(self):
        path = self.source("Only", "102 = a\n108 = b\n")
        self.assertEqual(self.generate(path), (0, []))
        self.assertTrue(self.out.read_bytes().endswith(b'[Only]\r\nS102="a"\r\nS104=""\r\nS106=""\r\nS108="b"\r\n'))
        self.assertIn(b"NumStrings=4\r\n", self.out.read_bytes())

    def test_a_source_may_have_a_byte_order_mark_and_windows_line_ends(self):
        path = self.directory / "Only.txt"
        path.write_bytes(b"\xef\xbb\xbf# comment\r\n102 = a\r\n")
        self.assertEqual(self.generate(path), (0, []))
        self.assertEqual(read_table(self.out.read_bytes(), 1)[102], "a")


class HeaderTest(GeneratorCase):
    def test_the_header_lists_the_numbers_in_ascending_order(self):
        self.assertEqual(self.generate(*SOURCES), (0, []))
        text = self.header.read_text(encoding="ascii")
        self.assertIn("namespace kel {", text)
        pattern = r"inline constexpr std::array<std::int32_t, (\d+)> kTextNumbers\{\{(.*?)\}\};"
        match = re.search(pattern, text, re.DOTALL)
        listed = [int(number) for number in re.findall(r"\d+", match[2])]
        self.assertEqual(listed, NUMBERS)
        self.assertEqual(int(match[1]), len(NUMBERS))

    def test_the_order_of_the_source_does_not_matter(self):
        path = self.source("Only", "110 = b\n102 = a\n")
        self.assertEqual(self.generate(path), (0, []))
        self.assertIn("    102, 110,\n", self.header.read_text(encoding="ascii"))


class OutputTest(GeneratorCase):
    def test_the_output_is_the_same_each_time(self):
        self.assertEqual(self.generate(*SOURCES), (0, []))
        first = self.out.read_bytes(), self.header.read_bytes()
        self.out.unlink()
        self.header.unlink()
        for seed in ("1", "2"):
            command = [sys.executable, str(GENERATOR), "--out", str(self.out), "--header", str(self.header), *SOURCES]
            subprocess.run(command, check=True, env={**os.environ, "PYTHONHASHSEED": seed})
            self.assertEqual((self.out.read_bytes(), self.header.read_bytes()), first)

    def test_files_are_rewritten_only_when_they_change(self):
        path = self.source("Only", "102 = a\n")
        self.assertEqual(self.generate(path), (0, []))
        for file in (self.out, self.header):
            os.utime(file, (1000, 1000))
        self.assertEqual(self.generate(path), (0, []))
        self.assertEqual([int(file.stat().st_mtime) for file in (self.out, self.header)], [1000, 1000])
        self.source("Only", "102 = b\n")
        self.assertEqual(self.generate(path), (0, []))
        self.assertNotEqual(int(self.out.stat().st_mtime), 1000)
        self.assertEqual(int(self.header.stat().st_mtime), 1000)

    def test_missing_folders_are_made(self):
        self.out = self.directory / "build" / "texts" / "LKELReader81.txt"
        self.assertEqual(self.generate(self.source("Only", "102 = a\n")), (0, []))
        self.assertTrue(self.out.exists())

    def test_the_exit_status_of_the_command_is_1_on_a_problem(self):
        path = self.source("Only", "102 = a\n103 = b\n")
        command = [sys.executable, str(GENERATOR), "--out", str(self.out), "--header", str(self.header), str(path)]
        result = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "")
        self.assertEqual(len(result.stderr.splitlines()), 1)


class ProblemTest(GeneratorCase):
    def refuses(self, files, *expected):
        status, complaint = self.generate(*files)
        self.assertEqual(status, 1)
        self.assertEqual(len(complaint), len(expected), complaint)
        for line, (place, words) in zip(complaint, expected):
            self.assertTrue(line.startswith(f"{self.directory}{os.sep}{place}: "), line)
            self.assertIn(words, line)
        self.assertFalse(self.out.exists())
        self.assertFalse(self.header.exists())

    def test_a_number_without_a_text_in_another_language(self):
        first = self.source("First", "102 = a\n\n106 = c\n")
        second = self.source("Second", "102 = a\n# none\n104 = b\n")
        self.refuses(
            [first, second],
            ("Second.txt:3: 104", "First has no text"),
            ("First.txt:3: 106", "Second has no text"),
        )

    def test_a_number_that_stands_twice(self):
        self.refuses([self.source("Only", "102 = a\n104 = b\n102 = c\n")], ("Only.txt:3: 102", "line 1 already"))

    def test_malformed_entries(self):
        for entry in ("hello", "= a", "abc = a", "104 a", "-104 = a", "0104 = a", "10 4 = a"):
            with self.subTest(entry):
                self.refuses([self.source("Only", f"102 = a\n{entry}\n")], ("Only.txt:2: -", "no entry"))

    def test_malformed_texts(self):
        for text, words in (
            ("", "empty"),
            ('""', "empty"),
            ('"', "closing quote"),
            ('"abc', "closing quote"),
            ('"abc" d', "closing quote"),
            ("?", '"?" alone'),
            ('" ? "', '"?" alone'),
            ("[English]", 'begins with "["'),
            ("a\tb", "U+0009"),
            ("a\u2028b", "U+2028"),
            ("a~b", "stands alone"),
            ("a~~~b", "stands alone"),
        ):
            with self.subTest(text):
                self.refuses([self.source("Only", f"102 = {text}\n")], ("Only.txt:1: 102", words))

    def test_numbers_outside_the_table(self):
        for number, words in ((103, "multiple of 2"), (100, "not in 102 to 998"), (3540, "not in 102 to 998")):
            with self.subTest(number):
                self.refuses([self.source("Only", f"102 = a\n{number} = b\n")], (f"Only.txt:2: {number}", words))

    def test_a_placeholder_that_another_language_lacks(self):
        first = self.source("First", "102 = port %1\n104 = a\n")
        second = self.source("Second", "102 = port\n104 = %2\n")
        self.refuses([first, second], ("First.txt:2: 104", '"%2"'), ("Second.txt:1: 102", '"%1"'))

    def test_a_doubled_access_key(self):
        self.refuses([self.source("Only", "110 = &Feeder\n112 = Re&fer\n")], ("Only.txt:2: 112", '"F" is that of 110'))

    def test_an_access_key_doubled_with_a_later_caption_of_the_same_control(self):
        self.refuses([self.source("Only", "118 = &Goat\n170 = &Grade\n")], ("Only.txt:2: 170", '"G" is that of 118'))

    def test_captions_of_one_control_may_share_an_access_key(self):
        path = self.source("Only", "116 = &Grade\n168 = Mark &grade\n170 = &Grade\n")
        self.assertEqual(self.generate(path), (0, []))

    def test_a_doubled_ampersand_is_no_access_key(self):
        path = self.source("Only", "110 = Fast && &Fine\n112 = Fish && Chips\n")
        self.assertEqual(self.generate(path), (0, []))

    def test_an_ampersand_in_a_message_is_no_access_key(self):
        path = self.source("Only", "110 = &Feeder\n190 = A&F\n192 = B&F\n")
        self.assertEqual(self.generate(path), (0, []))

    def test_access_keys_that_cannot_be(self):
        for number, caption, words in (
            (110, "Feeder &", "no letter or digit"),
            (110, "Feeder & more", "no letter or digit"),
            (110, "&Sheet &feeder", "more than one"),
            (102, "&Settings", "title too"),
            (108, "&Options", "title too"),
        ):
            with self.subTest(caption):
                self.refuses([self.source("Only", f"{number} = {caption}\n")], (f"Only.txt:1: {number}", words))

    def test_files_that_cannot_be_used(self):
        good = self.source("Good", "102 = a\n")
        self.refuses([good, self.directory / "None.txt"], ("None.txt:0: -", "can't be read"))
        bad = self.directory / "Bad.txt"
        bad.write_bytes(b"102 = a\n104 = \xfc\n")
        self.refuses([bad], ("Bad.txt:2: -", "not UTF-8"))
        self.refuses([self.source("Empty", "# nothing\n")], ("Empty.txt:1: -", "no entries"))

    def test_language_names(self):
        for name in ("VBLM", "a]b", "German=", " German"):
            with self.subTest(name):
                self.refuses([self.source(name, "102 = a\n")], (f"{name}.txt:0: -", "no name for a language"))
        self.refuses([self.source("L" * 64, "102 = a\n")], (f"{'L' * 64}.txt:0: -", "longer than 63"))
        first = self.source("German", "102 = a\n")
        self.refuses([first, self.source("german", "102 = a\n")], ("german.txt:0: -", "given twice"))

    def test_each_problem_has_its_line(self):
        path = self.source("Only", "102 = a\n103 = b\nnonsense\n104 = ?\n")
        self.refuses(
            [path],
            ("Only.txt:2: 103", "multiple"),
            ("Only.txt:3: -", "no entry"),
            ("Only.txt:4: 104", "alone"),
        )


class TextTest(unittest.TestCase):
    """What must hold for the texts that the component is delivered with."""

    @classmethod
    def setUpClass(cls):
        cls.texts = real_texts()

    def test_every_language_has_every_number_in_the_same_order(self):
        self.assertEqual(list(self.texts), list(LANGUAGES))
        for name, texts in self.texts.items():
            self.assertEqual(list(texts), NUMBERS, name)

    def test_every_language_has_the_same_placeholders(self):
        filled = {368: 1, 558: 1, 584: 1, 586: 2, 588: 1, 590: 2, 592: 1, 598: 1, 650: 3, 656: 3, 664: 1, 674: 2, 676: 1,
                  678: 1, 684: 1}
        for name, texts in self.texts.items():
            for number, text in texts.items():
                wanted = {f"%{value}" for value in range(1, filled.get(number, 0) + 1)}
                self.assertEqual(set(re.findall("%.?", text)), wanted, f"{name} {number}")

    def test_the_texts_are_parted_alike_in_every_language(self):
        edge = re.compile(r"^[\s~,.]*|[\s~]*$")
        for number in NUMBERS:
            edges = {name: edge.findall(texts[number])[:2] for name, texts in self.texts.items()}
            self.assertEqual(len({tuple(found) for found in edges.values()}), 1, f"{number}: {edges}")

    def test_every_control_that_takes_input_has_an_access_key(self):
        captions = [104, *range(110, 134, 2), 136, *range(142, 154, 2), 158, 168, 170]
        for name, texts in self.texts.items():
            for number in captions:
                key, problem = generator.access_key(texts[number])
                self.assertTrue(key and not problem, f"{name} {number}")

    def test_messages_and_titles_have_no_ampersand(self):
        for name, texts in self.texts.items():
            marked = {number for number, text in texts.items() if "&" in text}
            self.assertLessEqual(marked, set(generator.DIALOG_CAPTIONS), name)

    def test_titles_are_short(self):
        titles = [102, 108, 162, 166, 176, 184, 188, 194, 196, 238, 250, 260, 264, 268, 272, 282, 288, 292, 350, 356]
        titles += [370, 376, 432, 464, 470, 474, 492, 556, 646]
        for name, texts in self.texts.items():
            for number in titles:
                self.assertLessEqual(len(texts[number]), 45, f"{name} {number}")
                self.assertFalse(texts[number].endswith("."), f"{name} {number}")

    def test_the_words_of_the_dialog_are_those_of_the_messages(self):
        for name, texts in self.texts.items():
            self.assertEqual(texts[366].rstrip(" "), texts[130].replace("&", ""), name)
            self.assertIn(texts[136].replace("&", ""), texts[164], name)
            for advice, buttons in {574: (580,), 576: (582,), 578: (580,), 656: (154,)}.items():
                for button in buttons:
                    self.assertIn(texts[button], texts[advice], f"{name} {advice}")
            self.assertEqual(texts[116], texts[170], name)

    def test_the_texts_can_be_shown_in_the_western_code_page(self):
        for name, texts in self.texts.items():
            for number, text in texts.items():
                self.assertEqual(text.encode("cp1252", errors="replace").decode("cp1252"), text, f"{name} {number}")

    def test_no_blanks_are_doubled(self):
        for name, texts in self.texts.items():
            for number, text in texts.items():
                self.assertNotRegex(text, r"  |\s[,.]|\u00a0[ ,.]", f"{name} {number}")

    def test_french_punctuation_has_no_break_blanks(self):
        for number, text in self.texts["French"].items():
            self.assertNotRegex(text, r"[^\u00a0~][:;?!»]|«[^\u00a0]", f"French {number}")

    def test_joined_messages_read_well(self):
        expected = {
            "English": "Error 8002: Text\r\n\r\nSource: basRead.ReaderInit, line 40",
            "German": "Fehler 8002: Text\r\n\r\nQuelle: basRead.ReaderInit, Zeile 40",
            "French": "Erreur 8002: Text\r\n\r\nSource\u00a0: basRead.ReaderInit, ligne 40",
            "Spanish": "Error 8002: Text\r\n\r\nOrigen: basRead.ReaderInit, línea 40",
        }
        for name, texts in self.texts.items():
            shown = {number: text.replace("~~", "\r\n") for number, text in texts.items()}
            source = "basRead.ReaderInit" + shown[244] + "40"
            self.assertEqual(shown[246] + "8002" + ": " + "Text" + shown[248] + source, expected[name])
            self.assertRegex(shown[160] + "3", r"\w\u00a0?: 3$")
            self.assertRegex(shown[340] + "1", r"\w\u00a0?: 1$")
            self.assertRegex(shown[462] + "50", r"\w\u00a0?: 50$")
            self.assertRegex(shown[364] + "\r\n\r\n\t" + shown[366] + "50", r":\r\n\r\n\t\S.* \(ms\)\u00a0?: 50$")
            self.assertRegex(shown[418] + "119" + shown[420], r"\w 119\. \w")
            self.assertRegex(shown[252] + "(#5) Text", r"\. \(#5\) Text$")
            self.assertRegex("Text\r\n" + shown[254] + shown[246], r"^Text\r\n\r\n\S.*:\r\n\w+ $")
            rows = shown[276] + "\r\n\r\n" + shown[278] + "47" + "\r\n" + shown[280] + "12"
            self.assertRegex(rows, r"\.\r\n\r\n\w.*: 47\r\n\w.*: 12$")
            form = shown[438] + "\r\n\r\n" + shown[440] + "1\r\n" + shown[442] + "\r\n" + shown[444] + "3"
            self.assertRegex(form, r"\.\r\n\r\n\w.*: 1\r\n\w+\u00a0?: 1\r\n\w.*: 3$")


if __name__ == "__main__":
    unittest.main()
