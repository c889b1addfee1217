# SPDX-License-Identifier: MIT
"""Tests that the samples of the documents are true: C++ compiles, and commands print what stands there.

The environment variables CXX and KELREADER name the compiler and the command.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "scripts"))

import reader_facts

DOCUMENTS = ("README.md", "docs/hosts.md")
# What a sample without a program of its own may use: the component's headers, and what the page's programs show.
FRONT = """
#include <KELReader81U/KELReader81U.h>

#include <csignal>
#include <iostream>
"""


def samples(document):
    """The C++ samples of a document with the line in which each begins."""
    text = (ROOT / document).read_text(encoding="utf-8")
    for sample in re.finditer(r"^```cpp\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
        yield 2 + text.count("\n", 0, sample.start()), sample[1]


def programs_of(document):
    """Whole programs as they are, with the includes that they show; all other samples in one, each as the body of a
    function with a reader."""
    parts = [FRONT]
    for number, (line, sample) in enumerate(samples(document)):
        if "int main(" in sample:
            yield f'#line {line} "{document}"\n{sample}'
        else:
            place = f'#line {line} "{document}"'
            parts.append(f"void sample{number}([[maybe_unused]] kel::clsKELReader& reader)\n{{\n{place}\n{sample}}}")
    yield "\n".join(parts)


class SamplesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.include = folder.name
        headers = re.findall(r"^    (\w+/\w+\.h)$", (ROOT / "cmake/PublicHeaders.cmake").read_text(), re.MULTILINE)
        subprocess.run([sys.executable, "cmake/public_headers.py", folder.name, *headers], cwd=ROOT, check=True)

    def compile(self, program):
        compiler = os.environ.get("CXX", "c++")
        with tempfile.NamedTemporaryFile("w", suffix=".cpp", encoding="utf-8") as file:
            file.write(program)
            file.flush()
            return subprocess.run(
                [compiler, "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wno-return-type", "-I", self.include, file.name],
                capture_output=True,
                text=True,
            )

    def test_every_sample_compiles(self):
        for document in DOCUMENTS:
            with self.subTest(document):
                self.assertTrue(list(samples(document)))
                for program in programs_of(document):
                    self.assertEqual(self.compile(program).stderr, "")

    def test_commands_print_what_stands_there(self):
        sample = re.search(r"^```console\n(.*?)^```$", (ROOT / "README.md").read_text(encoding="utf-8"), re.M | re.S)[1]
        program = Path(os.environ.get("KELREADER") or reader_facts.usual_program(ROOT)).resolve()
        commands = "".join(re.findall(r"^\$ (.*\n)", sample, re.MULTILINE))
        with tempfile.TemporaryDirectory() as folder:
            told = subprocess.run(
                ["sh", "-e"],
                input=f'kelreader() {{ "{program}" "$@"; }}\n{commands}',
                env={**os.environ, "KELREADER_REGISTRY_DIR": folder},
                cwd=folder,
                capture_output=True,
                text=True,
            )
        self.assertEqual(told.stdout.rstrip() + "\n", re.sub(r"^\$ .*\n", "", sample, flags=re.MULTILINE))


if __name__ == "__main__":
    unittest.main()
