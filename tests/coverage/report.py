#!/usr/bin/env python3
"""Prints which lines and branches the tests reached: report.py LLVM_COV BUILD LEFT_OUT

Compares what was not reached with the file LEFT_OUT, whose form is told at its top. The status is 1
when the two differ.
"""

import collections
import json
import os
import re
import subprocess
import sys

FOLDERS = ("plugin/", "hosts/operations/", "hosts/file_steps/")


class File:
    """One source: its text, how often each line and each side of each branch was reached."""

    def __init__(self, path):
        self.text = open(path, encoding="utf-8").read().split("\n")
        self.lines = {}
        self.branches = collections.defaultdict(lambda: [0, 0])

    def line(self, number):
        return " ".join(self.text[number - 1].split())

    def lines_of_text(self):
        return {self.line(number) for number in range(1, len(self.text) + 1)}

    def condition(self, place):
        first, column, last, end = place
        if first == last:
            return " ".join(self.text[first - 1][column - 1:end - 1].split())
        lines = [self.text[first - 1][column - 1:], *self.text[first:last - 1], self.text[last - 1][:end - 1]]
        return " ".join(" ".join(lines).split())


def objects(build):
    commands = json.load(open(os.path.join(build, "compile_commands.json"), encoding="utf-8"))
    for command in commands:
        if command["file"].startswith(tuple(os.path.join(os.getcwd(), folder) for folder in FOLDERS)):
            path = os.path.join(command["directory"], re.search(r" -o (\S+)", command["command"])[1])
            if os.path.exists(path):
                yield path


def run(tool, arguments, build):
    paths = list(objects(build))
    arguments = [tool, *arguments, paths[0], *(word for path in paths[1:] for word in ("-object", path)),
                 "-instr-profile", os.path.join(build, "counts.profdata")]
    return subprocess.run(arguments, capture_output=True, check=True, text=True).stdout


def constant_conditions(tool, build):
    """Conditions whose value the compiler knows: they have no two sides."""
    found, path = set(), None
    for line in run(tool, ["show", "-show-branches=count"], build).split("\n"):
        if re.fullmatch(r"/.*:", line):
            path = os.path.relpath(line[:-1])
        elif place := re.search(r"\|  Branch \((\d+):(\d+)\): \[Folded", line):
            found.add((path, int(place[1]), int(place[2])))
    return found


def count_lines(file, segments):
    """A line is reached as often as the part of it that is reached most (as the tool itself counts)."""
    wrapping = None
    by_line = collections.defaultdict(list)
    for segment in segments:
        by_line[segment[0]].append(segment)
    for number in range(1, len(file.text) + 1):
        here = by_line.get(number, [])
        starts = [s for s in here if s[3] and s[4] and not s[5]]
        starts_gap = bool(here) and not here[0][3] and here[0][4]
        # The rest of a statement after a macro, and what stands between statements, is no code.
        wraps = wrapping is not None and wrapping[3] and not wrapping[5]
        if not starts_gap and (wraps or starts):
            file.lines[number] = max([s[2] for s in starts] + ([wrapping[2]] if wraps else []))
        if here:
            wrapping = here[-1]


def read(tool, build):
    constant = constant_conditions(tool, build)
    files = {}
    for entry in json.loads(run(tool, ["export"], build))["data"][0]["files"]:
        path = os.path.relpath(entry["filename"])
        if not path.startswith(FOLDERS):
            continue
        file = files.setdefault(path, File(path))
        count_lines(file, entry["segments"])
        for first, column, last, end, taken, refused, *_ in entry["branches"]:
            if (path, first, column) not in constant:
                counts = file.branches[first, column, last, end]
                counts[0] += taken
                counts[1] += refused
    return files


def missed(files):
    """What was not reached: (file, description) -> the lines where it is."""
    found = collections.defaultdict(list)
    for path, file in sorted(files.items()):
        for number, count in file.lines.items():
            if not count:
                found[path, f"not reached: {file.line(number)}"].append(number)
        for place, counts in sorted(file.branches.items()):
            for side, count in zip(("true", "false"), counts):
                if not count:
                    condition = file.condition(place)
                    text = f"never {side}: {condition}"
                    if file.line(place[0]) != condition:
                        text += f"   in: {file.line(place[0])}"
                    found[path, text].append(place[0])
    return found


def is_there(entry):
    """Whether the text of an entry stands in its file."""
    path, text = entry
    condition, _, line = text.partition("   in: ")
    return os.path.exists(path) and (line or condition.partition(": ")[2]) in File(path).lines_of_text()


def left_out(path):
    """The entries of the kept file; each one stands for one place. Those of the second kind are
    reached in some runs only."""
    entries, now_and_then = collections.Counter(), collections.Counter()
    faults, file, entry, reason = [], None, None, True
    for number, line in enumerate(open(path, encoding="utf-8"), 1):
        line = line.rstrip("\n")
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith("    "):
            reason = True
            continue
        if line.startswith("  "):
            text = line.strip()
            is_reached_sometimes = text.startswith("sometimes ")
            entry = (file, text.removeprefix("sometimes "))
            (now_and_then if is_reached_sometimes else entries)[entry] += 1
            reason = False
            continue
        file = line.strip().rstrip(":")
    if not reason:
        faults.append(f"{path}: the last entry has no reason")
    faults += [f"{path}: {entry[0]}: is no longer there: {entry[1]}" for entry in now_and_then
               if not is_there(entry)]
    return entries, now_and_then, faults


def percent(reached, whole):
    return 100.0 * reached / whole if whole else 100.0


def print_table(files):
    print(f"{'':56}{'lines':>18}{'branches':>20}")
    sums = [0, 0, 0, 0]
    for path, file in sorted(files.items()):
        sides = [count for counts in file.branches.values() for count in counts]
        numbers = [sum(map(bool, file.lines.values())), len(file.lines), sum(map(bool, sides)), len(sides)]
        sums = [a + b for a, b in zip(sums, numbers)]
        print_row(path, numbers)
    print_row("all", sums)


def print_row(name, numbers):
    columns = [f"{a:5}/{b:<5} {percent(a, b):6.1f}%" for a, b in (numbers[:2], numbers[2:])]
    print(f"{name:56}{columns[0]:>18}  {columns[1]:>18}")


def main():
    tool, build, kept = sys.argv[1:]
    files = read(tool, build)
    print_table(files)
    entries, now_and_then, faults = left_out(kept)
    not_reached = missed(files)
    for (path, text), lines in not_reached.items():
        named = entries.pop((path, text), 0)
        for number in lines[named + now_and_then[path, text]:]:
            faults.append(f"{path}:{number}: {text}")
        if named > len(lines):
            faults.append(f"{kept}: {path}: is named {named} times, and missed {len(lines)} times: {text}")
    faults += [f"{kept}: {path}: is reached, or no longer there: {text}" for path, text in entries]
    print(f"\n{sum(map(len, not_reached.values()))} sides of branches and lines are not reached.")
    print(*faults, sep="\n")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
