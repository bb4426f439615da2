#!/usr/bin/env python3
"""Changes one line of plugin/ at a time and sees whether the tests of its folder notice.

  mutate.py [--sample N] [--seed S] [--folder NAME] [--file NAME]   a sampled run
  mutate.py --replace FILE OLD NEW [--nth K]                        one change of your own
  mutate.py --list                                                  every change it knows, untried

It works in a copy of the tree (--copy, by default a folder in the temporary folder that is kept for
the next run), with a build of its own, so that the working tree is never touched. For each change
it builds the folder's test programs one after the other and runs each until one fails: the change
is killed then, by a failing test, a crash, or a test that does not end in time. What survives is
printed at the end, and goes to the file named by --report as it is found; what a report calls killed
is not tried again, so that a run can go on where it was stopped, or after a test was added. A change that does not
compile counts as none. The exit status is 1 when something survived."""

import argparse
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parents[2]
BUILD = "build/mutation"
TEST_TIMEOUT = 150

# Most of the compile time goes into the toolkit's headers.
PRECOMPILED = b"""
foreach(part dv_tree dv_finder)
  target_precompile_headers(${part} PRIVATE <Carbon/Carbon.h>)
endforeach()
foreach(part dv_controller dv_items dv_preview dv_menus dv_input dv_loader)
  target_precompile_headers(${part} PRIVATE
    "$<$<COMPILE_LANGUAGE:OBJCXX>:<AppKit/AppKit.h$<ANGLE-R>>")
endforeach()
"""

# The tests of each folder of plugin/, starting with those that fail soonest; a leading * means that
# the test needs a display.
TESTS = {
    "support": ["test_support_library"],
    "tree": ["test_tree", "*plugin_roots_test"],
    "finder": ["test_finder", "finder_file_op_test", "*finder_is_front_test"],
    "preview": ["*plugin_preview_text_test", "*plugin_preview_test"],
    "menus": ["*plugin_items_test", "*plugin_population_test", "*plugin_menu_item_test",
              "*plugin_open_with_test", "*plugin_move_copy_test", "*plugin_selection_test",
              "*plugin_roots_test", "*plugin_proxy_test", "*plugin_preview_test"],
    "items": ["*plugin_menu_item_test", "*plugin_labels_test", "*plugin_disc_test",
              "*plugin_items_test"],
    "controller": ["*plugin_controller_test", "*plugin_record_test", "*plugin_popup_test"],
    "input": ["*plugin_dragging_test", "*plugin_record_test", "*plugin_control_free_popup_test"],
    "loader": ["*plugin_popup_test", "*plugin_popup_paths_test", "*plugin_controller_test",
               "*plugin_proxy_test", "*plugin_method_swizzle_test", "*plugin_record_test",
               "*plugin_no_context_menu_class_test", "*plugin_not_the_finder_test",
               "*plugin_bundle_test"],
}

FLIPS = [(r"==", "!="), (r"!=", "=="), (r"(?<![<\-])<=", "<"), (r">=", ">"),
         (r"(?<= )<(?= )", "<="), (r"(?<= )>(?= )", ">="), (r"&&", "||"), (r"\|\|", "&&"),
         (r"\|=", "&="), (r"\+\+", "--"), (r"(?<!-)--(?!-)", "++"), (r"(?<= )\+(?= )", "-"),
         (r"(?<=[\w)\]] )-(?= )", "+"), (r"(?<= )\*(?= )", "/"), (r"\bYES\b", "NO"),
         (r"\bNO\b", "YES"), (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
         (r"(?<= )~(?=\w)", ""), (r"(?<=[ (])!(?=[\w(\[*])", "")]
NUMBER = re.compile(r"(?<![\w.\"'%])(0x[0-9A-Fa-f]+|\d+\.\d+f?|\d+)(?![\w.\"'])")
STRING = re.compile(r'@?"((?:[^"\\]|\\.)*)"')
CONDITION = re.compile(r"\b(if|while) \((?!.*=.*;)(.+)\)( .*;| \{)?$")
CALL = re.compile(r"^\s+(?!return|delete|throw)(?:\[.+\]|[\w:.>\-]+\(.*\));$")
PAIR = re.compile(r"(\w+)\(([^(),]+), ([^(),]+)")


class Change:
    def __init__(self, path, line, old, new, what):
        self.path, self.line, self.old, self.new, self.what = path, line, old, new, what

    def __str__(self):
        return (f"{self.path}:{self.line + 1} {self.what}\n    - {self.old.strip()}\n"
                f"    + {self.new.strip() or '(nothing)'}")


def spans_of_strings(line):
    return [match.span() for match in STRING.finditer(line)]


def changes_of_line(line):
    """(new line, what) for every change of one line."""
    strings = spans_of_strings(line)
    code_end = line.find("//")
    code_end = len(line) if code_end < 0 else code_end

    def in_code(at):
        return at < code_end and not any(start <= at < end for start, end in strings)

    def replaced(match, text):
        return line[:match.start()] + text + line[match.end():]

    for pattern, text in FLIPS:
        for match in re.finditer(pattern, line):
            if in_code(match.start()):
                yield replaced(match, text), f"{match.group() or pattern} becomes {text or 'none'}"
    for match in NUMBER.finditer(line):
        if not in_code(match.start()):
            continue
        text = match.group()
        if "." in text:
            suffix = "f" if text.endswith("f") else ""
            value = float(text.rstrip("f"))
            others = [f"{value + 1}{suffix}", f"{value * 0.9}{suffix}"]
        else:
            value = int(text, 0)
            others = [str(value + 1)] + ([str(value - 1)] if value else [])
        for other in others:
            yield replaced(match, other), f"{text} becomes {other}"
    for match in STRING.finditer(line):
        if match.start() < code_end and match.group(1):
            body = match.group(1)
            other = body[:-1] + ("x" if body[-1] != "x" else "y") if body[-2:-1] != "\\" else "x" + body
            yield line[:match.start(1)] + other + line[match.end(1):], "another text"
    match = CONDITION.search(line)
    if match:
        start, end = match.span(2)
        depth = 0
        for at in range(start, len(line)):
            depth += {"(": 1, ")": -1}.get(line[at], 0)
            if depth < 0:
                end = at
                break
        condition = line[start:end]
        if not re.search(r"\w [*&]?\w+ = ", condition):
            yield line[:start] + f"!({condition})" + line[end:], "condition negated"
    if CALL.match(line):
        yield re.match(r"\s*", line).group() + ";", "call removed"
    for match in PAIR.finditer(line):
        declares = any(re.search(r"\w [*&]?\w", match.group(group)) for group in (2, 3))
        if in_code(match.start()) and match.group(2) != match.group(3) and not declares:
            text = f"{match.group(1)}({match.group(3)}, {match.group(2)}"
            yield replaced(match, text), "arguments swapped"


def changes_of_file(path):
    result = []
    for number, line in enumerate((TOP / path).read_text().split("\n")):
        stripped = line.strip()
        if not stripped or stripped.startswith(("#", "//", "@", "- (", "+ (", "namespace", "struct",
                                                "constexpr const char* ")):
            continue
        for new, what in changes_of_line(line):
            if new != line:
                result.append(Change(path, number, line, new, what))
    return result


def all_changes(folder, name):
    by_folder = {}
    for path in sorted((TOP / "plugin").rglob("*")):
        relative = path.relative_to(TOP)
        if path.suffix not in (".cpp", ".mm") or len(relative.parts) != 3:
            continue
        if folder and relative.parts[1] != folder or name and relative.name != name:
            continue
        by_folder.setdefault(relative.parts[1], []).extend(changes_of_file(str(relative)))
    return by_folder


def sampled(by_folder, count, seed):
    """Spread over the folders by the square root of what each offers, no two of one line if it can."""
    generator = random.Random(seed)
    weights = {name: len(changes) ** 0.5 for name, changes in by_folder.items()}
    total = sum(weights.values())
    chosen = []
    for name, changes in sorted(by_folder.items()):
        changes = changes[:]
        generator.shuffle(changes)
        seen, first, rest = set(), [], []
        for change in changes:
            place = (change.path, change.line)
            (rest if place in seen else first).append(change)
            seen.add(place)
        chosen += (first + rest)[:max(1, round(count * weights[name] / total))]
    generator.shuffle(chosen)
    return chosen


class Copy:
    """The tree in which the changes are made and built."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.killers = {}  # of each file the tests that noticed a change, the last one last

    def prepare(self):
        names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=TOP,
                               capture_output=True, text=True, check=True).stdout.split("\n")
        for name in filter(None, names):
            source, target = TOP / name, self.folder / name
            if not source.is_file():
                continue
            data = source.read_bytes()
            if name.endswith(".cmake"):
                # A change may leave something unused; that alone is not an error.
                data = data.replace(b" -Werror", b"")
            if name == "plugin/CMakeLists.txt":
                data += PRECOMPILED
            if target.exists() and target.read_bytes() == data:
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(data)
            shutil.copymode(source, target)
        for path in (self.folder / "plugin").rglob("*"):
            if path.is_file() and not (TOP / path.relative_to(self.folder)).exists():
                path.unlink()
        linker = "-fuse-ld=lld" if shutil.which("ld.lld") else ""
        kinds = ("EXE", "SHARED", "MODULE")
        subprocess.run(["cmake", "--preset", "release", "-B", BUILD, "-DCMAKE_BUILD_TYPE=None",
                        "-DDELVIO_BENCH=OFF", "-DCMAKE_CXX_FLAGS=-O0", "-DCMAKE_OBJCXX_FLAGS=-O0"]
                       + [f"-DCMAKE_{kind}_LINKER_FLAGS={linker}" for kind in kinds],
                       cwd=self.folder, check=True, stdout=subprocess.DEVNULL)

    def build(self, target):
        return subprocess.run(["ninja", "-C", BUILD, "-j1", target], cwd=self.folder,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def has(self, target):
        return subprocess.run(["ninja", "-C", BUILD, "-n", target], cwd=self.folder,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def passes(self, test):
        command = ["tests/support/run_isolated"]
        if test.startswith("*"):
            command.append("--display")
        command += [f"{BUILD}/bin/{test.lstrip('*')}", "--gtest_fail_fast"]
        process = subprocess.Popen(command, cwd=self.folder, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, start_new_session=True)
        try:
            return process.wait(TEST_TIMEOUT) == 0
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGTERM)
            process.wait()
            return False

    def tests_of(self, path):
        """The folder's tests, those first whose names have words of the file's."""
        folder = path.split("/")[1]
        stem = re.sub(r"([a-z])([A-Z])", r"\1_\2", pathlib.Path(path).stem).lower()
        words = set(re.split(r"[\W_]+", stem)) - {"dv", "dvdelvio", "test"}
        tests = [test for test in TESTS[folder] if self.has(test.lstrip("*"))]
        killers = self.killers.get(path, [])

        def rank(test):
            known = killers.index(test) if test in killers else -1
            return (-known, -len(words & set(test.strip("*").split("_"))))

        return sorted(tests, key=rank)

    def verdict(self, change):
        """killed, survived, or no change (it does not compile)."""
        path = self.folder / change.path
        original = path.read_text()
        lines = original.split("\n")
        assert lines[change.line] == change.old, change
        lines[change.line] = change.new
        try:
            path.write_text("\n".join(lines))
            for test in self.tests_of(change.path):
                if not self.build(test.lstrip("*")):
                    return "no change"
                if not self.passes(test):
                    killers = self.killers.setdefault(change.path, [])
                    killers[:] = [other for other in killers if other != test] + [test]
                    return f"killed by {test.lstrip('*')}"
            return "survived"
        finally:
            path.write_text(original)


def changes_in(report, verdict):
    """The changes on which an earlier run with this report has come to the verdict, as text."""
    if not report or not os.path.exists(report):
        return set()
    text = open(report).read()
    return set(re.findall(rf"^{verdict}: (.*\n    - .*\n    \+ .*)$", text, re.M))


def own_change(path, old, new, nth):
    path = str(pathlib.Path(path).resolve().relative_to(TOP)) if os.path.exists(path) else path
    lines = (TOP / path).read_text().split("\n")
    places = [number for number, line in enumerate(lines) if old in line]
    if not places:
        sys.exit(f"mutate: {path} has no line with {old!r}")
    line = places[min(nth, len(places)) - 1]
    return Change(path, line, lines[line], lines[line].replace(old, new, 1), "as asked")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sample", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folder")
    parser.add_argument("--file")
    parser.add_argument("--copy", default=os.path.join(tempfile.gettempdir(), "delvio-mutation"))
    parser.add_argument("--report")
    parser.add_argument("--keep", action="store_true",
                        help="take the copy as it is, without what has changed since")
    parser.add_argument("--survivors", action="store_true",
                        help="only what the report calls survived")
    parser.add_argument("--unchecked", action="store_true",
                        help="do not run the tests on the unchanged tree first")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--replace", nargs=3, metavar=("FILE", "OLD", "NEW"), action="append")
    parser.add_argument("--nth", type=int, default=1)
    arguments = parser.parse_args()
    # So that the line that is changed just then is put back.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))

    if arguments.replace:
        changes = [own_change(*replace, arguments.nth) for replace in arguments.replace]
    else:
        by_folder = all_changes(arguments.folder, arguments.file)
        changes = sampled(by_folder, arguments.sample, arguments.seed)
        if arguments.list:
            for known in by_folder.values():
                print("\n".join(map(str, known)))
            return 0

    copy = Copy(arguments.copy)
    if not arguments.keep:
        copy.prepare()
    for folder in sorted({change.path.split("/")[1] for change in changes}):
        for test in () if arguments.unchecked else TESTS[folder]:
            name = test.lstrip("*")
            if copy.has(name) and not (copy.build(name) and copy.passes(test)):
                sys.exit(f"mutate: {name} fails without any change")

    known = changes_in(arguments.report, r"killed by \S+")
    if arguments.survivors:
        survived = changes_in(arguments.report, "survived")
        every = [change for some in all_changes(None, None).values() for change in some]
        changes = [change for change in every if str(change) in survived]
    report = open(arguments.report, "a") if arguments.report else None
    survivors, killed = [], 0
    for change in changes:
        if str(change) in known:
            killed += 1
            continue
        verdict = copy.verdict(change)
        print(f"{verdict}: {change}", flush=True)
        if report:
            print(f"{verdict}: {change}", file=report, flush=True)
        killed += verdict.startswith("killed")
        if verdict == "survived":
            survivors.append(change)
    tried = killed + len(survivors)
    print(f"\n{killed} of {tried} killed. Survivors:")
    print("\n".join(map(str, survivors)) or "none")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
