#!/usr/bin/env python3
"""The catalogues are complete, and the sources have no text that they miss:
catalogues_test.py REPOSITORY"""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

REPOSITORY = None
LANGUAGES = {"ar", "de", "es", "fr", "ja"}
# The keys of one panel, which must differ.
CONFLICT_KEYS = {"_Skip", "_Keep Both", "_Replace", "_Apply to all"}


def unquoted(lines):
    text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', lines))
    return text.replace(r"\"", '"').replace(r"\n", "\n").replace("\\\\", "\\")


class Entry:
    def __init__(self, block):
        def field(name):
            found = re.search(rf'^{name} ((?:".*"\n?)+)', block, re.M)
            return unquoted(found[1]) if found else None
        self.english, self.plural = field("msgid"), field("msgid_plural")
        self.fuzzy = re.search(r"^#,.*fuzzy", block, re.M) is not None
        forms = re.findall(r'^msgstr(?:\[\d\])? ((?:".*"\n?)+)', block, re.M)
        self.forms = [unquoted(form) for form in forms]


def entries(text):
    found = [Entry(block) for block in re.split(r"\n\n+", text) if re.search("^msgid ", block, re.M)]
    return {entry.english: entry for entry in found if not entry.english == ""}


def header(text):
    return Entry(re.split(r"\n\n+", text)[0]).forms[0]


def directives(text):
    """The words that a format takes: {1, 2} for "%s of %s"."""
    places, next_place = set(), 1
    for number in re.findall(r"%(?:(\d+)\$)?s", text.replace("%%", "")):
        next_place = int(number) if number else next_place
        places.add(next_place)
        next_place += 1
    return places


def access_key(title):
    return title[title.index("_") + 1].lower() if "_" in title else None


def problems_of(entry, translation, count_of_forms):
    """What is wrong with one translated text."""
    if translation is None or not translation.forms or not all(translation.forms):
        return ["has no translation"]
    wrong = ["is fuzzy"] if translation.fuzzy else []
    if entry.plural and len(translation.forms) != count_of_forms:
        wrong.append(f"has {len(translation.forms)} forms and not {count_of_forms}")
    wanted = directives(entry.plural or entry.english)
    least = directives(entry.english) if entry.plural else wanted
    for form in translation.forms:
        if not (least <= directives(form) <= wanted):
            wrong.append(f"has other places for words: {form}")
        if len(re.findall("_", form)) != len(re.findall("_", entry.english)):
            wrong.append(f"has another access key: {form}")
        if any(mark in form for mark in "\u200e\u200f\u202a\u202b\u202c\u202d\u202e"):
            wrong.append("has a mark of direction, which messages show as an escape")
    if entry.english.startswith(" ") != translation.forms[0].startswith(" "):
        wrong.append("begins with another blank")
    return wrong


class Checker(unittest.TestCase):
    """The check itself."""

    def wrong(self, english, translation, plural=None, forms=1, fuzzy=False):
        lines = "".join(f'msgstr[{i}] "{t}"\n' for i, t in enumerate(translation)) if plural else \
            f'msgstr "{translation[0]}"\n'
        more = f'msgid_plural "{plural}"\n' if plural else ""
        mark = "#, fuzzy\n" if fuzzy else ""
        entry = Entry(f'{mark}msgid "{english}"\n{more}{lines}')
        return problems_of(entry, entry, forms)

    def test_a_good_translation_is_right(self):
        self.assertEqual(self.wrong("cannot read %s: %s", ["%2$s: %1$s"]), [])
        self.assertEqual(self.wrong("One.", ["Eins.", "%s."], plural="%s.", forms=2), [])

    def test_what_is_wrong_is_found(self):
        self.assertTrue(self.wrong("cannot read %s: %s", ["%s"]))
        self.assertTrue(self.wrong("cannot read %s", [""]))
        self.assertTrue(self.wrong("cannot read %s", ["%s"], fuzzy=True))
        self.assertTrue(self.wrong("_Skip", ["Weg"]))
        self.assertTrue(self.wrong("%s item", ["%s"], plural="%s items", forms=2))


class Catalogues(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            template = pathlib.Path(folder) / "all.pot"
            subprocess.run([REPOSITORY / "script/catalogues", "--template", template], check=True)
            cls.texts = entries(template.read_text())
        files = (REPOSITORY / "po").glob("*.po")
        cls.catalogues = {file.stem: file.read_text() for file in files}

    def test_the_sources_have_many_texts(self):
        self.assertGreater(len(self.texts), 250)
        self.assertIn("_Skip", self.texts)

    def test_there_is_a_catalogue_for_each_language(self):
        self.assertEqual(set(self.catalogues), LANGUAGES)

    def test_every_text_has_a_complete_translation(self):
        for language, text in self.catalogues.items():
            known = entries(text)
            forms = int(re.search(r"nplurals=(\d)", header(text))[1])
            wrong = [f"{language}: {english!r} {problem}"
                     for english, entry in self.texts.items()
                     for problem in problems_of(entry, known.get(english), forms)]
            self.assertEqual(wrong, [])

    def test_no_catalogue_has_texts_that_nobody_uses(self):
        for language, text in self.catalogues.items():
            with self.subTest(language=language):
                self.assertEqual(set(entries(text)) - set(self.texts), set())

    def test_the_compiler_of_catalogues_finds_no_fault(self):
        for language in self.catalogues:
            with self.subTest(language=language):
                subprocess.run(["msgfmt", "--check-format", "--check-domain", "-o", "/dev/null",
                                REPOSITORY / f"po/{language}.po"], check=True)

    def test_the_keys_of_a_panel_differ(self):
        for language, text in self.catalogues.items():
            known = entries(text)
            keys = {access_key(known[title].forms[0]) for title in CONFLICT_KEYS}
            with self.subTest(language=language):
                self.assertEqual(len(keys), len(CONFLICT_KEYS))
                self.assertNotIn(None, keys)

    def test_only_arabic_runs_from_right_to_left(self):
        directions = {language: entries(text)["left-to-right"].forms[0]
                      for language, text in self.catalogues.items()}
        self.assertEqual(directions.pop("ar"), "right-to-left")
        self.assertEqual(set(directions.values()), {"left-to-right"})


# Calls whose texts are not for people's eyes, or not in their language: the log of the host, the
# types and methods of other programs.
UNTRANSLATED_CALLS = {"translated", "translated_count", "to_translate", "log_line", "g_variant_new",
                      "fopen", "__attribute__", "no_sanitize", "static_assert", "title_of"}


def code_of(text):
    """The source without comments and raw strings; literals that follow each other are one."""
    text = re.sub(r'R"(\w*)\(.*?\)\1"', '""', text, flags=re.S)
    text = re.sub(r'("(?:[^"\\\n]|\\.)*")|//[^\n]*|/\*.*?\*/',
                  lambda found: found[1] or "", text, flags=re.S)
    text = re.sub(r"^\s*#.*$", "", text, flags=re.M)
    return re.sub(r'"\s*\n?\s*"', "", re.sub(r'"\s+@?"', '""', text))


def is_sentence(literal):
    """Whether a person would read it: two words of letters with a blank between them."""
    return re.search(r"[A-Za-z]{2,},? (?:[a-z]{2,}|[A-Z][a-z]+)", literal) is not None


def call_around(code, place):
    """The name of the innermost call whose arguments hold the place."""
    depth = 0
    for at in range(place - 1, max(0, place - 2000), -1):
        if code[at] == ")":
            depth += 1
        elif code[at] == "(":
            if depth == 0:
                found = re.search(r"(\w+)\s*$", code[:at])
                return found[1] if found else ""
            depth -= 1
        elif code[at] in "{;" and depth == 0 and code[at] == ";":
            return ""
    return ""


def unmarked(text):
    code = code_of(text)
    without_literals = re.sub(r'"(?:[^"\\\n]|\\.)*"', lambda found: '"' * len(found[0]), code)
    for found in re.finditer(r'"((?:[^"\\\n]|\\.)*)"', code):
        if is_sentence(found[1]) and call_around(without_literals, found.start()) not in UNTRANSLATED_CALLS:
            yield found[1].strip()


class Literals(unittest.TestCase):
    def test_the_check_finds_a_sentence_that_is_not_marked(self):
        self.assertEqual(list(unmarked('return "cannot read it";')), ["cannot read it"])
        self.assertEqual(list(unmarked('f(translated("cannot read it"));')), [])
        self.assertEqual(list(unmarked('// "cannot read it"\nlog_line("cannot read it");')), [])

    def test_every_sentence_of_hosts_and_platform_is_marked_or_listed(self):
        listed = set((REPOSITORY / "tests/text/not_translated.txt").read_text().splitlines())
        found, left = set(), set()
        for top in ("hosts", "platform"):
            for file in sorted((REPOSITORY / top).rglob("*")):
                if file.suffix in (".cpp", ".mm", ".h"):
                    for literal in unmarked(file.read_text()):
                        found.add(literal)
                        if literal not in listed:
                            left.add(f"{file.relative_to(REPOSITORY)}: {literal}")
        self.assertEqual(left, set(), "mark them with translated(), or list them")
        self.assertEqual({line for line in listed if not line.startswith("#")} - found, set())


if __name__ == "__main__":
    REPOSITORY = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
