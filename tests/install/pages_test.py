#!/usr/bin/env python3
"""Manual pages and completions say what the command says: pages_test.py BUILD SOURCE"""
import gzip
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

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

    def test_bash_completes_lists_in_every_language(self):
        lists = completed("settings", "add", "")
        self.assertIn("folders", lists)
        with unittest.mock.patch.dict(os.environ, {"LANGUAGE": "de"}):
            self.assertEqual(completed("settings", "add", ""), lists)

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


class Documents(unittest.TestCase):
    """README and docs/ name what the command has, and lead nowhere wrong."""

    @classmethod
    def setUpClass(cls):
        files = [SOURCE / "README.md", SOURCE / "CONTRIBUTING.md", SOURCE / "CHANGELOG.md",
                 *sorted((SOURCE / "docs").glob("*.md"))]
        cls.pages = {file: file.read_text() for file in files}

    def page(self, name):
        return self.pages[SOURCE / "docs" / name]

    def targets(self):
        """Each link of each page to a file of the repository."""
        for file, text in self.pages.items():
            for target in re.findall(r"\]\(([^)\s]+)\)", text):
                if "://" not in target and not target.startswith("#"):
                    yield file, (file.parent / target.split("#")[0]).resolve()

    def test_every_link_leads_to_a_file(self):
        links = list(self.targets())
        self.assertGreater(len(links), 100)
        self.assertEqual([f"{file.name}: {target.name}" for file, target in links
                          if not target.exists()], [])

    def test_every_page_can_be_reached_from_the_readme(self):
        links, reached, new = list(self.targets()), set(), {(SOURCE / "README.md").resolve()}
        while new:
            reached |= new
            new = {target for file, target in links if file.resolve() in reached} - reached
        self.assertEqual({file.name for file in self.pages if file.resolve() not in reached}, set())

    def test_the_readme_is_one_page(self):
        self.assertLessEqual(self.pages[SOURCE / "README.md"].count("\n"), 90)

    def test_every_picture_is_shown(self):
        shown = {target for _, target in self.targets() if target.parent.name == "pictures"}
        self.assertEqual(shown, {file.resolve() for file in (SOURCE / "docs/pictures").iterdir()})

    def test_a_script_makes_the_pictures_of_the_guide(self):
        made = set(re.findall(r"picture (guide-\w+)", (SOURCE / "script/pictures").read_text()))
        self.assertGreater(len(made), 3)
        self.assertEqual({name + ".png" for name in made},
                         set(re.findall(r"pictures/(.*?)\)", self.page("guide.md"))))

    def test_the_page_of_the_command_has_every_option_and_command(self):
        page = self.page("command.md")
        helps = all_helps(delvio)
        wanted = set().union(*map(options, helps.values())) - {"--help", "--version"}
        self.assertEqual(wanted - set(re.findall(r"--[a-z-]+", page)), set())
        for words in helps:
            if words:
                self.assertRegex(page, rf"\b{words[-1]}\b")

    def test_no_page_has_an_option_that_the_command_lacks(self):
        known = set().union(*map(options, all_helps(delvio).values()))
        for file, text in self.pages.items():
            for line in re.findall(r"^.*\bdelvio (?:menu|settings|install|uninstall|undo) .*$", text, re.M):
                after = re.split(r"\bdelvio (?=menu|settings|install|uninstall|undo)", line, maxsplit=1)[1]
                command = re.split(r"[|`#]|  ", after)[0]
                with self.subTest(page=file.name, line=line):
                    self.assertEqual(set(re.findall(r"--[a-z][a-z-]*", command)) - known, set())

    def test_the_page_of_settings_has_every_setting(self):
        settings = json.loads(delvio("settings", "list", "--json"))
        page = self.page("settings.md")
        self.assertEqual([setting["key"] for setting in settings
                          if f"`{setting['key']}`" not in page], [])

    def test_the_page_of_file_managers_has_each_of_them(self):
        headings = re.findall(r"^## (`.*)$", self.page("file-managers.md"), re.M)
        named = set(re.findall(r"`([a-z-]+)`", " ".join(headings)))
        self.assertEqual(named | {"gworkspace"}, file_managers())

    def test_page_manual_and_sources_have_the_same_variables(self):
        variable = r"\bDELVIO_[A-Z_]+\b"
        manual = (BUILD / "share/man/delvio.1").read_text().replace("\\-", "-")
        read = {name for top in ("hosts", "platform") for file in (SOURCE / top).rglob("*.*")
                if file.suffix in (".cpp", ".mm")
                for name in re.findall(rf'getenv\("({variable})"\)', file.read_text())}
        documented = set(re.findall(variable, self.page("command.md")))
        self.assertGreater(len(documented), 4)
        self.assertEqual(set(re.findall(variable, manual)), documented)
        self.assertEqual(read - documented, set())


if __name__ == "__main__":
    SOURCE = pathlib.Path(sys.argv.pop(2))
    BUILD = pathlib.Path(sys.argv.pop(1))
    unittest.main()
