# SPDX-License-Identifier: MIT
"""What the installed headers declare, as clang reads them."""

import json
import re
import subprocess
import tempfile
from pathlib import Path

FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl"}
TYPES = {"CXXRecordDecl", "EnumDecl"}
# Made by whoever needs them, or named by nobody else: instances of templates, and what a class calls its friend.
PASSED_OVER = {"ClassTemplateDecl", "FunctionTemplateDecl", "FriendDecl"}


class Declarations:
    """Types by their whole names, functions and variables by the compiler's (mangled) names."""

    def __init__(self, include):
        self.types = set()  # all that are complete
        self.outermost = set()  # those of them that lie in no other
        self.declared = set()
        self.defined = set()  # in the headers themselves
        for node in nodes(include):
            self.read(node, ("kel",))

    def needed(self):
        """What a host that calls it has to find in a library."""
        return self.declared - self.defined

    def read(self, node, path):
        kind, name = node["kind"], node.get("name")
        if kind in PASSED_OVER or node.get("isImplicit"):
            return
        inner = node.get("inner", [])
        if kind in TYPES and name and (node.get("completeDefinition") or kind == "EnumDecl"):
            self.types.add("::".join((*path, name)))
            if len(path) == 1:
                self.outermost.add("::".join((*path, name)))
        if kind in TYPES | {"NamespaceDecl"} and name:
            for below in inner:
                self.read(below, (*path, name))
        if kind in FUNCTIONS:
            self.declared.add(node["mangledName"])
            here = node.get("inline") or node.get("constexpr") or node.get("pure")
            body = any(below["kind"] in ("CompoundStmt", "CXXTryStmt") for below in inner)
            if here or body or node.get("explicitlyDefaulted") or node.get("explicitlyDeleted"):
                self.defined.add(node["mangledName"])
        if kind == "VarDecl":
            self.declared.add(node["mangledName"])
            if node.get("inline") or node.get("constexpr"):
                self.defined.add(node["mangledName"])


def nodes(include):
    """The declarations of the namespace, each as clang writes it; std and the system's are left out."""
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder, "all.cpp")
        source.write_text("#include <KELReader81U/KELReader81U.h>\n", encoding="utf-8")
        dump = ["-fsyntax-only", "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=kel::"]
        text = subprocess.run(
            ["clang++", "-std=c++20", "-I", include, *dump, str(source)], check=True, capture_output=True, text=True
        ).stdout
    decoder, place = json.JSONDecoder(), 0
    while found := re.compile(r"\s*(Dumping [^\n]*\n)?\s*(?=\{)").match(text, place):
        node, place = decoder.raw_decode(text, found.end())
        yield node


def exported(library):
    """What a library defines for others: pairs of the compiler's name and its version, which may be empty."""
    listing = subprocess.run(
        ["nm", "--dynamic", "--defined-only", "--with-symbol-versions", library], check=True, capture_output=True, text=True
    ).stdout
    for line in listing.splitlines():
        kind, symbol = line.split()[1:3]
        name, _, version = symbol.partition("@")
        if kind != "A" and not name.startswith("__odr_asan"):  # names of versions; the address sanitizer's own
            yield name, version.lstrip("@")


def readable(names):
    """The names as one writes them; the variants of a constructor have one."""
    names = sorted(names)
    shown = subprocess.run(["c++filt"], input="\n".join(names), check=True, capture_output=True, text=True).stdout
    return set(shown.splitlines()) if names else set()
