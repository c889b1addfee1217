# SPDX-License-Identifier: MIT
"""Tests that the sources are laid out as .clang-format says, and that what is changed here passes .clang-tidy.

Changed is what is not committed, or differs from the upstream branch. A file takes clang-tidy up to a minute, so many
changed files are left to scripts/check-release.sh, which sets KEL_TIDY=all to look at all of them.

KEL_BUILDS names the build folders, separated by colons, whose compile_commands.json say how a source is compiled: this
system's, and those of the Windows editions if there are any. A source that none of them compiles is passed over: what
belongs to a module that was left out.
"""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
MOST_CHANGED = 12
ALL = os.environ.get("KEL_TIDY") == "all"
BUILDS = [Path(folder) for folder in os.environ.get("KEL_BUILDS", "").split(":") if folder]

COMPILER = re.compile(r"(.*/)?(?P<target>\w+-w64-mingw32-)?(c|g|clang)\+\+(-[\w.]+)?")


def git(*words, check=True):
    """The lines that git writes, whoever the checkout belongs to. A git that refuses is an error, or has nothing to tell."""
    command = ["git", "-c", f"safe.directory={ROOT}", *words]
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True)
    if check and done.returncode != 0:
        raise RuntimeError(f"{' '.join(command)}: {done.stderr}")
    return done.stdout.splitlines() if done.returncode == 0 else []


def sources():
    """The sources in C++ that git knows or would take."""
    return [path for path in git("ls-files", "--cached", "--others", "--exclude-standard", "*.h", "*.cpp")
            if (ROOT / path).is_file()]


def compiled_for(header, units):
    """The source by which a header is looked at: the one of its name, or the first one that includes it."""
    own = str(Path(header).with_suffix(".cpp"))
    if own in units:
        return own
    include = re.compile(rf'^\s*#\s*include\s+"({re.escape(header)}|{re.escape(Path(header).name)})"', re.MULTILINE)
    return next((unit for unit in units if include.search((ROOT / unit).read_text(encoding="utf-8"))), None)


def changed():
    """The sources to look at, those of changed headers among them."""
    files = sources()
    units = [path for path in files if path.endswith(".cpp")]
    if ALL:
        return units
    upstream = git("merge-base", "HEAD", "@{upstream}", check=False) or git("rev-parse", "HEAD")
    new = set(git("diff", "--name-only", *upstream))
    new.update(git("ls-files", "--others", "--exclude-standard"))
    looked_at = {path if path.endswith(".cpp") else compiled_for(path, units) for path in files if path in new}
    return sorted(looked_at - {None})


def library_folders(compiler):
    """Where a compiler for another system has the headers of its own C++ library, which clang does not find."""
    done = subprocess.run([compiler, "-E", "-v", "-x", "c++", os.devnull], capture_output=True, text=True, check=True)
    searched = done.stderr.split("search starts here:\n")[-1].split("End of search list")[0]
    return [folder for folder in map(str.strip, searched.splitlines()) if "/c++" in folder]


def for_clang(command):
    """What clang needs of a compiler's command: neither the warnings nor the precompiled header of another compiler."""
    words = iter(shlex.split(command))
    compiler = next(word for word in words if COMPILER.fullmatch(word))
    target = COMPILER.fullmatch(compiler)["target"]
    kept = ["clang++"]
    if target:
        kept.append(f"--target={target.removesuffix('-')}")
        kept += [word for folder in library_folders(compiler) for word in ("-isystem", folder)]
    for word in words:
        if word in ("-isystem", "-I", "-D", "-U"):
            kept += [word, next(words)]
        elif word.startswith(("-I", "-D", "-U", "-std=")):
            kept.append(word)
    return kept


def joined(path):
    """The sources that a file of the build joins; the file alone if it joins none."""
    if not path.name.startswith("unity_"):
        return [path]
    included = re.findall(r'^#include "(.*)"$', path.read_text(encoding="utf-8"), re.MULTILINE)
    return [source for file in included for source in joined(Path(file))]


def commands():
    """How each source is compiled, by the first build that does."""
    found = {}
    for build in BUILDS:
        for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
            for path in joined(Path(entry["directory"], entry["file"])):
                if path.suffix == ".cpp" and path.is_relative_to(ROOT):
                    found.setdefault(str(path.relative_to(ROOT)), entry)
    return found


def tidied(files, known):
    """What clang-tidy says of the files; nothing if all is well."""
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        database = [{"directory": known[file]["directory"], "file": str(ROOT / file),
                     "arguments": [*for_clang(known[file]["command"]), "-c", str(ROOT / file)]} for file in files]
        Path(folder, "compile_commands.json").write_text(json.dumps(database), encoding="utf-8")
        look = lambda file: subprocess.run(["clang-tidy", "--quiet", "-p", folder, file], cwd=ROOT, capture_output=True, text=True)
        return "".join(done.stdout or done.stderr for done in pool.map(look, files) if done.returncode != 0)


@unittest.skipUnless((ROOT / ".git").exists(), "this is no checkout of git")
class StyleTest(unittest.TestCase):
    maxDiff = None

    def test_layout(self):
        checked = subprocess.run(["clang-format", "--dry-run", "--Werror", *sources()], cwd=ROOT, capture_output=True, text=True)
        wrong = sorted({line.split(":")[0] for line in checked.stderr.splitlines() if "error: code should" in line})
        self.assertEqual(checked.returncode, 0, "clang-format -i " + " ".join(wrong))

    def test_what_was_changed(self):
        files = changed()
        if not files:
            self.skipTest("nothing is changed")
        if len(files) > MOST_CHANGED and not ALL:
            self.skipTest(f"{len(files)} files are changed; 'scripts/check-release.sh tidy' checks them")
        self.assertTrue(BUILDS, "KEL_BUILDS names no build")
        known = commands()
        passed_over = [file for file in files if file not in known]
        if passed_over:
            print("compiled by no build here:", *passed_over)
        self.assertEqual(tidied([file for file in files if file in known], known), "")

    def test_a_header_is_looked_at_through_a_source(self):
        units = ["failure/basError.cpp", "reader/ReaderSession.cpp", "reader/clsKELReader.cpp"]
        self.assertEqual(compiled_for("reader/clsKELReader.h", units), "reader/clsKELReader.cpp")
        self.assertEqual(compiled_for("failure/guarded.h", units), "failure/basError.cpp")
        self.assertIsNone(compiled_for("failure/guarded.h", []))

    def test_clang_gets_what_is_for_every_compiler(self):
        command = "env A=b ccache /usr/bin/c++ -I/x -isystem /y -DZ=1 -O0 -Werror -include p.hxx -fpch-preprocess -std=c++20 -o o -c f.cpp"
        self.assertEqual(for_clang(command), ["clang++", "-I/x", "-isystem", "/y", "-DZ=1", "-std=c++20"])


if __name__ == "__main__":
    unittest.main()
