#!/usr/bin/env python3
"""Finds an #include that only the precompiled headers make up for: precompiled_headers_test.py REPOSITORY"""
import functools
import pathlib
import re
import sys
import tempfile
import unittest

REPOSITORY = None
FOLDERS = ("platform", "hosts")
PATHS = ("platform", "hosts", "plugin", "platform/include", "platform/host_include")
SOURCES = (".h", ".cpp", ".mm")
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s+[<"]([^>"]+)[>"]', re.M)

# What stands in each precompiled header, and the other headers that bring it along.
NAMES = {
    "algorithm": r"std::(?:sort|stable_sort|find|find_if|find_if_not|any_of|all_of|none_of|remove_if|count_if"
                 r"|clamp|transform|reverse|lower_bound|upper_bound|replace|unique|partition|rotate|search)\(",
    "filesystem": r"std::filesystem\b",
    "fstream": r"std::[io]?fstream\b",
    "functional": r"std::function\b",
    "map": r"std::(?:multi)?map\b",
    "memory": r"std::(?:unique_ptr|shared_ptr|weak_ptr|make_unique|make_shared)\b",
    "optional": r"std::(?:optional|nullopt)\b",
    "sstream": r"std::[io]?stringstream\b",
    "string": r"std::(?:string|to_string)\b",
    "vector": r"std::vector\b",
    "AppKit/AppKit.h": r"\bNS(?:Menu|MenuItem|Window|View|Image|Event|Application|Font|Color|Panel|Cell)\b",
}
BROUGHT_ALONG = {
    "algorithm": {"functional", "regex", "random"},
    "memory": {"functional", "future"},
    "string": {"filesystem", "fstream", "sstream", "iostream", "istream", "ostream", "string_view", "stdexcept",
               "system_error", "regex", "random", "thread", "mutex", "set", "map"},
    "vector": {"functional", "regex", "random"},
    "sstream": {"regex", "complex", "iomanip"},
}
COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.S)


class House:
    def __init__(self, root):
        self.root = pathlib.Path(root)

    def target(self, name):
        for folder in PATHS:
            file = self.root / folder / name
            if file.is_file():
                return file
        return None

    @functools.lru_cache(None)
    def included(self, file):
        """What a file includes, through this house's headers too, and the classes declared there."""
        names, seen, waiting = set(), {file}, [file]
        while waiting:
            text = waiting.pop().read_text()
            names.update(re.findall(r"\w+", " ".join(re.findall(r"^@class ([^;]*);", text, re.M))))
            for name in INCLUDE.findall(text):
                target = self.target(name)
                names.add(name)
                if target and target not in seen:
                    seen.add(target)
                    waiting.append(target)
        return names

    def missing(self):
        for top in FOLDERS:
            for file in sorted((self.root / top).rglob("*")):
                of_appkit = file.parent == self.root / "platform/include/AppKit"  # included by AppKit's own
                if file.suffix in SOURCES and not of_appkit:
                    yield from self.missing_in(file)

    def missing_in(self, file):
        text = "\n".join(line for line in file.read_text().splitlines() if not line.lstrip().startswith("#"))
        text = COMMENT_OR_TEXT.sub("", text)
        included = self.included(file)
        for header, names in NAMES.items():
            enough = {header} | BROUGHT_ALONG.get(header, set())
            if set(re.findall(names, text)) - included and not included & enough:
                yield f"{file.relative_to(self.root)} does not include <{header}>"


class Checker(unittest.TestCase):
    """The check itself, on small houses."""

    def missing(self, **files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = pathlib.Path(folder, "hosts/a", name.replace("_", "."))
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            return list(House(folder).missing())

    def test_a_name_without_its_header_is_found(self):
        self.assertEqual(self.missing(a_cpp="std::vector<int> x;\n"), ["hosts/a/a.cpp does not include <vector>"])

    def test_a_header_of_the_file_itself_is_enough(self):
        self.assertEqual(self.missing(a_cpp="#include <vector>\nstd::vector<int> x;\n"), [])

    def test_a_header_that_an_included_file_includes_is_enough(self):
        self.assertEqual(self.missing(a_cpp='#include "a/b.h"\nstd::vector<int> x;\n', b_h="#include <vector>\n"), [])

    def test_comments_and_texts_do_not_count(self):
        self.assertEqual(self.missing(a_cpp='// std::vector\nconst char* x = "std::vector";\n'), [])


class Repository(unittest.TestCase):
    def test_every_precompiled_header_is_looked_at(self):
        rule = (pathlib.Path(REPOSITORY) / "cmake/DelvioPrecompiled.cmake").read_text()
        listed = re.search(r"target_precompile_headers\(precompiled_headers PRIVATE(.*?)\)", rule, re.S).group(1)
        headers = set(re.findall(r"<([\w/.]+)(?:>|\$<ANGLE-R>)", listed)) - {"COMPILE_LANGUAGE:OBJCXX"}
        self.assertEqual(headers, set(NAMES))

    def test_no_include_is_missing(self):
        self.assertEqual(list(House(REPOSITORY).missing()), [])


if __name__ == "__main__":
    REPOSITORY = sys.argv.pop(1)
    unittest.main()
