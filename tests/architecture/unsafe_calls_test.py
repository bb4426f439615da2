#!/usr/bin/env python3
"""Fails on calls that must not stand in product code, and on handlers of C++ exceptions in
Objective-C++, which never run: unsafe_calls_test.py REPOSITORY"""
import pathlib
import re
import sys
import unittest

REPOSITORY = None
FOLDERS = ("hosts", "platform", "plugin")
SOURCES = (".h", ".cpp", ".mm", ".c", ".in")

# Each name of a call, and the reason why product code does not call it.
BANNED = {
    "runs a command line through a shell, where a file's name can become a command":
        "system popen wordexp g_spawn_command_line_sync g_spawn_command_line_async",
    "writes without knowing how much room there is":
        "gets strcpy strcat stpcpy wcscpy wcscat sprintf vsprintf getwd",
    "may leave a text without its end": "strncpy strncat stpncpy",
    "reads without bounds, or wrong numbers without a word": "scanf fscanf sscanf vsscanf atoi atol atoll atof",
    "makes a name that another program can take before the file is made":
        "mktemp tmpnam tempnam tmpfile",
    "takes as much of the stack as a file's content may ask for": "alloca __builtin_alloca",
    "shares its result with every thread":
        "strtok asctime ctime gmtime localtime getpwnam getpwuid getgrgid getgrnam readdir_r ttyname",
    "leaves destructors out": "setjmp _setjmp sigsetjmp longjmp _longjmp siglongjmp",
    "looks programs up in folders that a user can write, and answers to relative folders of PATH":
        "execlp execvp execvpe",
    "shares memory with its parent until it runs another program": "vfork",
    "changes the environment while other threads may read it": "setenv unsetenv putenv clearenv",
    "changes the folder of every thread": "chdir fchdir",
    "follows links, so that the file may be another one than was looked at": "chown chmod",
    "is no source of chance": "rand srand random srandom drand48",
    "starts a thread that nobody waits for": "pthread_detach",
    "ends a thread in the middle of its work": "pthread_cancel pthread_kill",
}

# (file, call): why it may stand there.
ALLOWED = {
    ("hosts/command/home_folder.cpp", "setenv"): "At the start of a program, before any thread.",
    ("hosts/command/private_display.cpp", "setenv"): "Before the toolkit starts, and so before any thread.",
    ("hosts/command/private_display.cpp", "execlp"): "Debian has Xvfb in /usr/bin; who sets PATH chooses.",
    ("hosts/file_steps/lone_process.cpp", "chdir"): "In a process of its own, so that it keeps no disk busy.",
    ("hosts/popup/clipboard.cpp", "chdir"): "In a process of its own, so that it keeps no disk busy.",
    ("hosts/offers/detached_program.cpp", "chdir"): "In a process of its own, so that it keeps no disk busy.",
    ("hosts/resident/host_start.cpp", "chdir"): "In the new host's process, which has one thread.",
    ("hosts/service/surroundings.cpp", "chdir"): "At the start of the host, before any thread.",
    ("hosts/command/home_folder.cpp", "getpwuid"): "At the start of a program, before any thread.",
    ("hosts/popup/menu_walker.mm", "fscanf"): "Reads two numbers of the kernel's.",
    ("hosts/service/surroundings.cpp", "fchdir"): "The caller's folder; the host's menus run one by one.",
    ("platform/carbon/attributes_ahead.cpp", "chdir"): "After unshare: the folder of this thread alone.",
    ("platform/desktop/program_launch.cpp", "chdir"): "In the child, between fork and exec.",
    ("platform/desktop/desktop_settings.cpp", "sscanf"): "Three numbers, each held to a byte's values.",
    ("platform/quicklook/decoder/read_input.cpp", "strncpy"): "Into zeros, of which the last one stays.",
    ("platform/quicklook/decoder/sheet.cpp", "strncpy"): "Into zeros, of which the last one stays.",
    ("platform/quicklook/decoder/run_thumbnailer.cpp", "setenv"): "A caged program with one thread.",
    ("platform/quicklook/decoder/thumbnailer.cpp", "execvp"): "The cage, found as the user's PATH says.",
}


def without_comments_and_texts(text):
    """The code alone; a comment or a text leaves its line breaks, so that lines keep their numbers."""
    pattern = r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\''
    return re.sub(pattern, lambda found: '""' + "\n" * found.group().count("\n"), text, flags=re.S)


def calls(text):
    """(line, name) of each call of a banned name. Members of that name are other functions."""
    names = "|".join(name for group in BANNED.values() for name in group.split())
    # A call, or the function's address.
    pattern = rf"(?<![\w.:>])(?:std\s*::\s*|::\s*|&)?\b({names})\s*\("
    code = without_comments_and_texts(text)
    for found in re.finditer(pattern, code):
        yield code.count("\n", 0, found.start(1)) + 1, found.group(1)


def handlers(text):
    """The lines of C++ handlers. With GNU's Objective-C run time a function in Objective-C++ catches
    no exception of C++: the process ends."""
    code = without_comments_and_texts(text)
    return [code.count("\n", 0, found.start()) + 1 for found in re.finditer(r"(?<!@)\bcatch\s*\(", code)]


def in_repository(root):
    for folder in FOLDERS:
        for file in sorted((root / folder).rglob("*")):
            if file.suffix in SOURCES:
                for line, name in calls(file.read_text()):
                    yield str(file.relative_to(root)), line, name


class Reader(unittest.TestCase):
    """The reading of sources, on small ones."""

    def names(self, text):
        return [name for _, name in calls(text)]

    def test_each_way_to_write_a_call_is_found(self):
        for text in ("system(x);", "std::system (x);", "::system(x);", "return system(x);", "if(system\n(x))"):
            self.assertEqual(self.names(text), ["system"], text)

    def test_every_banned_name_is_found(self):
        for group in BANNED.values():
            for name in group.split():
                self.assertEqual(self.names(f"  {name}(a);"), [name])

    def test_the_line_is_that_of_the_call(self):
        self.assertEqual(list(calls('/* a\n b */\nf(R"(x\ny)");\nstrcpy(a, b);')), [(5, "strcpy")])

    def test_comments_texts_members_and_longer_names_are_no_calls(self):
        self.assertEqual(self.names('// system(x)\n/* popen(x) */ f("gets(x)"); a.access(b); a->random(); '
                                    "T::system(x); file_system(x); snprintf(a, b); system_of(x); '('; "), [])

    def test_a_handler_is_one_of_cpp(self):
        self.assertEqual(handlers("@try {\n} @catch (id) {\n}\ntry {\n} catch (const E&) {\n} // catch ()"), [5])

    def test_a_call_behind_a_text_is_found(self):
        self.assertEqual(self.names("f('\"'); system(x); g('\"');"), ["system"])


class Repository(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.found = list(in_repository(pathlib.Path(REPOSITORY)))

    def test_no_banned_call_stands_outside_the_allowed_places(self):
        reasons = {name: reason for reason, group in BANNED.items() for name in group.split()}
        wrong = [f"{file}:{line}: {name} {reasons[name]}" for file, line, name in self.found
                 if (file, name) not in ALLOWED]
        self.assertEqual(wrong, [])

    def test_no_handler_of_cpp_stands_in_objective_cpp(self):
        root = pathlib.Path(REPOSITORY)
        wrong = [f"{file.relative_to(root)}:{line}" for folder in FOLDERS
                 for file in sorted((root / folder).rglob("*.mm")) for line in handlers(file.read_text())]
        self.assertEqual(wrong, [])

    def test_every_allowed_place_is_still_in_use(self):
        self.assertEqual(sorted(set(ALLOWED) - {(file, name) for file, _, name in self.found}), [])


if __name__ == "__main__":
    REPOSITORY = sys.argv.pop(1)
    unittest.main()
