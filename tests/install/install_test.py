#!/usr/bin/env python3
"""What `cmake --install` installs, and that it works: install_test.py BUILD"""
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest

from installation import Installation, output

BUILD = None


def wait_for(find, what):
    """What `find` returns once it is not empty."""
    end = time.monotonic() + 120
    while time.monotonic() < end:
        found = find()
        if found:
            return found
        time.sleep(0.05)
    raise AssertionError(f"{what} did not come")


def shown_windows():
    """The windows of the screen that are shown and larger than a dot."""
    tree = output("xwininfo", "-root", "-children").splitlines()
    windows = [line.split()[0] for line in tree if line.strip().startswith("0x")]
    shown = []
    for window in windows:
        state = subprocess.run(["xwininfo", "-id", window], capture_output=True, text=True).stdout
        if "Map State: IsViewable" in state and "Width: 1\n" not in state:
            shown.append(window)
    return shown


class Trees(unittest.TestCase):
    """The command runs wherever its tree is."""

    def setUp(self):
        self.files = tempfile.TemporaryDirectory()
        self.addCleanup(self.files.cleanup)
        self.folder = pathlib.Path(self.files.name) / "Papers"
        self.folder.mkdir()
        (self.folder / "letter.txt").write_text("Dear reader\n")

    def check(self, tree):
        self.assertIn("Usage: delvio", tree.delvio("--help"))
        self.assertIn("letter.txt", tree.delvio("menu", "--print", "--depth", "1", str(self.folder)))

    def test_a_prefix_works_and_may_be_moved(self):
        tree = Installation(BUILD)
        self.addCleanup(tree.remove)
        self.check(tree)
        tree.move()
        self.check(tree)

    def test_a_staged_tree_works_and_has_the_folders_of_its_prefix(self):
        tree = Installation(BUILD, is_staged=True)
        self.addCleanup(tree.remove)
        self.check(tree)
        tree.only("share/zsh/vendor-completions/_delvio")


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = Installation(BUILD)

    @classmethod
    def tearDownClass(cls):
        cls.tree.remove()

    def test_the_menu_is_shown_and_closes_by_a_key(self):
        before = set(shown_windows())
        with tempfile.TemporaryDirectory() as folder:
            words = [self.tree.command, "menu", "--at", "200,150", folder]
            with subprocess.Popen(words, stderr=subprocess.PIPE, text=True) as menu:
                try:
                    wait_for(lambda: set(shown_windows()) - before, "the menu")
                    # A key that comes before the menu has the keyboard is lost.
                    def is_closed():
                        subprocess.run(["xdotool", "key", "Escape"], check=True)
                        return menu.poll() is not None
                    wait_for(is_closed, "the end of the menu")
                finally:
                    menu.kill()
                self.assertEqual(menu.wait(), 0, menu.stderr.read())

    def test_previews_are_decoded_by_the_installed_programs(self):
        helper = self.tree.only("libexec/delvio/delvio-thumbnailer")
        away = helper.rename(helper.with_suffix(".away"))
        called = self.tree.root / "called"
        helper.write_text(f"#!/bin/sh\necho >> '{called}'\n")
        helper.chmod(0o755)
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(self.tree.only("share/icons/hicolor/512x512/apps/*.png"), folder)
            self.tree.delvio("menu", "--print", "--depth", "2", "--modifiers", "option", folder)
        away.rename(helper)
        self.assertTrue(called.exists())

    def test_file_managers_get_installed_paths(self):
        self.tree.delvio("install", "thunar")
        listed = self.tree.delvio("install", "gworkspace")
        self.assertIn(str(self.tree.only("lib/**/DelvioGWorkspace.bundle")), listed)
        entry = pathlib.Path(self.tree.delvio("install", "nemo").splitlines()[1].strip()).read_text()
        self.assertIn(f"Exec={self.tree.command} menu", entry)
        self.assertIn("Icon-Name=org.delvio.Delvio\n", entry)
        for name in ("thunar", "gworkspace", "nemo"):
            self.tree.delvio("uninstall", name)

    def test_the_bus_starts_the_installed_command(self):
        service = self.tree.only("share/dbus-1/services/*.service").read_text()
        self.assertIn("Name=org.delvio.Delvio\n", service)
        self.assertIn(f"Exec={self.tree.command} --own-bus-name\n", service)

    def test_programs_look_for_libraries_in_the_tree_alone(self):
        programs = [self.tree.only("bin/delvio"), *self.tree.prefix.glob("libexec/delvio/*"),
                    *self.tree.prefix.glob("lib/**/*.so"), *self.tree.prefix.glob("lib/**/*.bundle/D*")]
        self.assertGreater(len(programs), 8)
        for program in programs:
            paths = [line for line in output("readelf", "-d", str(program)).splitlines()
                     if "RUNPATH" in line or "RPATH" in line]
            self.assertEqual(len(paths), 1, program)
            self.assertRegex(paths[0], r"\[\$ORIGIN[^:]*\]", program)

    def test_the_icon_has_each_size(self):
        for size in (16, 22, 24, 32, 48, 64, 96, 128, 256, 512):
            icon = self.tree.only(f"share/icons/hicolor/{size}x{size}/apps/org.delvio.Delvio.png")
            self.assertEqual(struct.unpack(">II", icon.read_bytes()[16:24]), (size, size))
        self.tree.only("share/icons/hicolor/scalable/apps/org.delvio.Delvio.svg")

    def test_the_desktops_entry_is_valid(self):
        for name in ("org.delvio.Delvio", "org.delvio.Delvio.Settings"):
            output("desktop-file-validate", str(self.tree.only(f"share/applications/{name}.desktop")))

    def test_the_description_for_software_centres_is_valid(self):
        output("appstreamcli", "validate", "--no-net",
               str(self.tree.only("share/metainfo/*.metainfo.xml")))


if __name__ == "__main__":
    BUILD = sys.argv.pop(1)
    unittest.main()
