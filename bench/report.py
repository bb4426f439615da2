"""Puts the figures of all measurements into one file: report.py FOLDER FILE

FOLDER holds a list of records for each measurement, NAME.json; FILE becomes an object with those
lists under their names, and the machine that they were taken on.
"""
import json
import os
import pathlib
import platform
import sys


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def main(folder, result):
    measurements = {path.stem: json.loads(path.read_text())
                    for path in sorted(pathlib.Path(folder).glob("*.json"))}
    machine = {"processor": processor(), "cores": os.cpu_count(), "kernel": platform.release()}
    text = json.dumps({"machine": machine, "measurements": measurements}, indent=2)
    pathlib.Path(result).write_text(text + "\n")


main(*sys.argv[1:])
