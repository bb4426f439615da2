#!/usr/bin/env python3
"""Reads ctest's list of tests, and prints the build targets of their programs: test_programs.py BUILD"""

import json
import os
import sys

programs = set()
for test in json.load(sys.stdin)["tests"]:
    for word in test.get("command", []):
        if word.startswith(sys.argv[1] + "/bin/"):
            programs.add(os.path.relpath(word, sys.argv[1]))
print(*sorted(programs), sep="\n")
