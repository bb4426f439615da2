#!/usr/bin/env python3
"""Says which tests docs/security.md names that are nowhere in tests/: security_page.py REPOSITORY"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
named = set(re.findall(r"`(\w+\.[A-Z]\w+)`", (root / "docs/security.md").read_text()))
there = set()
for file in (root / "tests").rglob("*"):
    if file.suffix in (".cpp", ".mm"):
        for suite, name in re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", file.read_text(), re.M):
            there.add(f"{suite}.{name}")
missing = sorted(named - there)
for name in missing:
    print(f"docs/security.md names a test that is not there: {name}")
if len(named) < 50:
    print(f"docs/security.md names {len(named)} tests: the page or this check is broken")
    sys.exit(1)
sys.exit(1 if missing else 0)
