"""Checks that the libraries that each start loads are light.

    libraries_are_light.py LIBRARY...

Addresses that only move with their library must be packed, and an object file must hold only the
protocols that its source uses: all others would be relocated in each process.
"""
import re
import subprocess
import sys

MOST_PROTOCOLS = 45  # of one object file; all that the toolkit declares are about 100


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def problems_of(library):
    dynamic = output_of("readelf", "--dynamic", "--wide", library)
    if "(RELACOUNT)" in dynamic or "(RELRSZ)" not in dynamic:
        yield "its relative relocations are not packed"
    symbols = output_of("nm", library)
    sources = len(re.findall(r" \.objc_load_function(?:\.\d+)?$", symbols, re.M))
    protocols = len(re.findall(r" \.objc_protocol(?:\.\d+)?$", symbols, re.M))
    if sources == 0:
        yield "it has no Objective-C sources, so this check looks at nothing"
    elif protocols / sources > MOST_PROTOCOLS:
        yield f"it has {protocols} protocols of {sources} Objective-C sources"


problems = [f"{library}: {problem}" for library in sys.argv[1:] for problem in problems_of(library)]
print("\n".join(problems) or "all are light")
sys.exit(1 if problems else 0)
