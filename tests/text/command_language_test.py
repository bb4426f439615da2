#!/usr/bin/env python3
"""The command speaks the user's language to people, and one language to programs:
command_language_test.py BUILD"""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

BUILD = None


def delvio(language, *words):
    environment = dict(os.environ, LANGUAGE=language, LC_ALL="C.UTF-8")
    return subprocess.run([BUILD / "bin/delvio", *words], env=environment, capture_output=True,
                          text=True, check=False)


class People(unittest.TestCase):
    def test_errors_are_in_the_users_language(self):
        for language, text in (("de", "ist nicht zu finden"), ("fr", "impossible de trouver"),
                               ("es", "no se puede encontrar"), ("ja", "が見つかりません"),
                               ("ar", "لا يمكن العثور على")):
            result = delvio(language, "menu", "--print", "/nowhere")
            with self.subTest(language=language):
                self.assertEqual(result.returncode, 1)
                self.assertIn(text, result.stderr)
                self.assertIn('"/nowhere"', result.stderr)

    def test_wrong_arguments_are_told_in_the_users_language(self):
        self.assertIn("Der Wert x liegt nicht zwischen 0 und",
                      delvio("de", "menu", "--depth", "x", "/").stderr)
        self.assertIn("Dieses Argument wurde nicht erwartet: nonsense",
                      delvio("de", "nonsense").stderr)

    def test_help_is_in_the_users_language_and_names_the_same_options(self):
        english, german = (delvio(language, "menu", "--help").stdout for language in ("en", "de"))
        self.assertIn("Aufruf: delvio menu", german)
        self.assertNotIn("Options:", german)
        for word in english.split():
            if word.startswith("--") and word[2:].isalpha():
                self.assertIn(word, german)

    def test_settings_are_explained_in_the_users_language(self):
        self.assertIn("Seitenlänge einer Vorschau in Pixeln", delvio("de", "settings", "list").stdout)

    def test_another_language_is_english(self):
        self.assertIn("cannot find", delvio("tlh", "menu", "--print", "/nowhere").stderr)


class Programs(unittest.TestCase):
    def same(self, *words):
        english, german = (delvio(language, *words) for language in ("en", "de"))
        self.assertEqual(english.returncode, 0, english.stderr)
        self.assertNotEqual(english.stdout, "")
        self.assertEqual(german.stdout, english.stdout)

    def test_what_programs_read_is_the_same_in_every_language(self):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "a.txt").touch()
            self.same("menu", "--print", folder)
            self.same("menu", "--json", folder)
        self.same("settings", "list", "--json")
        self.same("settings", "get", "preview_size")
        self.same("install", "--list")


if __name__ == "__main__":
    BUILD = pathlib.Path(sys.argv.pop(1))
    unittest.main()
