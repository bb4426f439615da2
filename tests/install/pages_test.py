#!/usr/bin/env python3
"""Manual pages and completions say what the command says: pages_test.py BUILD SOURCE"""
import gzip
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from installation import all_helps, options, output, subcommands

BUILD = SOURCE = None


def delvio(*words):
    return output(str(BUILD / "bin/delvio"), *words)


def file_managers():
    """The names that `delvio install` lists."""
    return {line.split()[0] for line in delvio("install", "--list").splitlines()}


def completed(*words):
    """What bash completes, in an empty folder, where the last of the words stands."""
    source = SOURCE / "share/completions/delvio.bash"
    line = " ".join(f"'{word}'" for word in words)
    # `compopt` works only while the shell itself completes.
    script = f"""compopt() {{ :; }}; source '{source}'
        COMP_WORDS=('{BUILD}/bin/delvio' {line}); COMP_CWORD={len(words)}
        _delvio; printf '%s\\n' "${{COMPREPLY[@]}}" """
    with tempfile.TemporaryDirectory() as folder:
        return set(output("bash", "-c", script, cwd=folder).split())


class Completions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.helps = all_helps(delvio)
        cls.managers = file_managers()

    def test_the_help_has_commands_and_options(self):
        self.assertGreaterEqual(len(self.helps), 10)
        self.assertIn("--print", options(self.helps[("menu",)]))
        self.assertEqual(len(self.managers), 8)

    def test_bash_completes_the_options_of_each_command(self):
        for words, text in self.helps.items():
            with self.subTest(words=words):
                self.assertEqual(completed(*words, "--"), options(text))

    def test_bash_completes_commands_names_and_settings(self):
        self.assertEqual(completed(""), set(subcommands(self.helps[()])))
        self.assertEqual(completed("settings", ""), set(subcommands(self.helps[("settings",)])))
        self.assertEqual(completed("install", ""), self.managers)
        self.assertEqual(completed("uninstall", "nem"), {"nemo"})
        self.assertIn("sort_order", completed("settings", "get", "so"))
        self.assertEqual(completed("menu", "--modifiers", "sh"), {"shift"})
        self.assertEqual(completed("settings", "add", ""), {"folders"})
        self.assertEqual(completed("settings", "remove", "f"), {"folders"})
        self.assertIn("sort_order=", completed("menu", "--setting", "so"))
        self.assertEqual(completed("menu", ""), set())

    def every_option(self):
        return set().union(*map(options, self.helps.values()))

    def every_command(self):
        return {words[-1] for words in self.helps if words}

    def test_fish_knows_the_same_words(self):
        text = (SOURCE / "share/completions/delvio.fish").read_text()
        named = re.findall(r"^complete .* -l ([a-z-]+)", text, re.M)
        self.assertEqual({"--" + name for name in named}, self.every_option())
        words = set(re.findall(r" -a (\w+) -d", text))
        self.assertEqual(words, self.every_command())
        self.assertEqual(set(re.search(r"set -l managers (.*)", text)[1].split()), self.managers)

    def test_zsh_knows_the_same_words(self):
        text = (SOURCE / "share/completions/delvio.zsh").read_text()
        self.assertEqual(set(re.findall(r"(--[a-z-]+)\[", text)), self.every_option())
        self.assertEqual(set(re.findall(r"^ +'([a-z]+):", text, re.M)), self.every_command())
        self.assertEqual(set(re.search(r"compadd ((?:[a-z-]+ ?)+)$", text, re.M)[1].split()),
                         self.managers)

    def test_the_manual_page_names_every_command_option_and_file_manager(self):
        page = gzip.decompress((BUILD / "share/man/delvio.1.gz").read_bytes()).decode()
        page = page.replace("\\-", "-")
        shown = set(re.findall(r"(--[a-z][a-z-]*)", page))
        self.assertEqual(shown, self.every_option())
        for word in self.every_command() | self.managers:
            self.assertRegex(page, rf"\b{word}\b")

    def test_no_manual_page_confuses_the_formatter(self):
        for section in ("1", "5"):
            page = BUILD / f"share/man/delvio.{section}"
            for line in page.read_text().splitlines():
                self.assertNotRegex(line, r"^\.(?!TH|SH|SS|TP|PP|B |BR |BI |I |nf|fi|br)")


class SettingsPage(unittest.TestCase):
    def test_it_names_every_setting_with_its_meaning_and_bounds(self):
        page = gzip.decompress((BUILD / "share/man/delvio.5.gz").read_bytes()).decode()
        page = page.replace("\\-", "-").replace("\\e", "\\")
        settings = json.loads(delvio("settings", "list", "--json"))
        self.assertGreater(len(settings), 20)
        entries = re.findall(r"\.TP\n\.B (\w+)\n(.*)\.\n\.br\nTakes (.*); by default (.*)\.\n", page)
        wanted = [(setting["key"], setting["meaning"], setting["bounds"],
                   "none" if setting["default"] is None else str(setting["default"]))
                  for setting in settings]
        self.assertEqual(entries, wanted)


if __name__ == "__main__":
    SOURCE = pathlib.Path(sys.argv.pop(2))
    BUILD = pathlib.Path(sys.argv.pop(1))
    unittest.main()
