"""A temporary installation of a build, and how its command is run."""
import os
import pathlib
import re
import subprocess
import tempfile


def output(*words, **options):
    """What a program writes on standard output; an error if it fails."""
    return subprocess.run(words, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


class Installation:
    """`prefix` is where the files are; with `is_staged` it is below a DESTDIR."""

    def __init__(self, build, is_staged=False):
        self.folder = tempfile.TemporaryDirectory()
        self.root = pathlib.Path(self.folder.name)
        if is_staged:
            output("cmake", "--install", build, "--prefix", "/usr",
                   env={**os.environ, "DESTDIR": str(self.root / "stage")})
            self.prefix = self.root / "stage/usr"
        else:
            self.prefix = self.root / "prefix"
            output("cmake", "--install", build, "--prefix", str(self.prefix))

    @property
    def command(self):
        return str(self.prefix / "bin/delvio")

    def delvio(self, *words):
        return output(self.command, *words)

    def only(self, pattern):
        """The one file of this pattern."""
        found = list(self.prefix.glob(pattern))
        assert len(found) == 1, f"{pattern}: {found}"
        return found[0]

    def move(self):
        self.prefix = self.prefix.rename(self.root / "moved")

    def remove(self):
        self.folder.cleanup()


def subcommands(help_text):
    """The names below "Subcommands:" in a help text."""
    below = help_text.partition("Subcommands:\n")[2]
    return re.findall(r"^  ([a-z]+) ", below, re.M)


def options(help_text):
    """The long options of a help text."""
    return set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", help_text, re.M))


def all_helps(run):
    """{words: help text} of a command and all its subcommands."""
    helps, waiting = {}, [()]
    while waiting:
        words = waiting.pop()
        helps[words] = run(*words, "--help")
        waiting += [words + (name,) for name in subcommands(helps[words])]
    return helps
