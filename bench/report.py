"""Puts the figures of all measurements into one file, and a table of them into another.

    report.py FOLDER FILE TABLE

FOLDER holds a list of records for each measurement, NAME.json; FILE becomes an object with those
lists under their names, and the machine that they were taken on; TABLE is Markdown.
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


def milliseconds(times):
    digits = 2 if times["upper"] < 0.01 else 1
    median, lower, upper = (f"{times[part] * 1e3:.{digits}f}" for part in ("median", "lower", "upper"))
    return f"{median} ({lower} to {upper})"


def times_of(records):
    yield "| Measured | Size | | Processor time, ms | Wall time, ms |"
    yield "|---|---|---|---|---|"
    for record in records:
        if "variant" in record:
            size = f"{record['size']:,}" if record["size"] else ""
            yield (f"| {record['what']} | {size} | {record['variant']} | "
                   f"{milliseconds(record['processor'])} | {milliseconds(record['wall'])} |")


def limits_of(records):
    yield "| Beside its limit | Found | Limit |"
    yield "|---|---|---|"
    for record in records:
        if "limit" not in record:
            continue
        size = f", {record['size']:,}" if record.get("size") else ""
        found = record.get("ratio", record.get("value"))
        unit = f" {record['unit']}" if record.get("unit") else ""
        mark = " (over)" if found > record["limit"] else ""
        yield f"| {record['what']}{size} | {found:.2f}{unit}{mark} | {record['limit']:g}{unit} |"


def main(folder, result, table):
    measurements = {path.stem: json.loads(path.read_text())
                    for path in sorted(pathlib.Path(folder).glob("*.json"))}
    machine = {"processor": processor(), "cores": os.cpu_count(), "kernel": platform.release()}
    text = json.dumps({"machine": machine, "measurements": measurements}, indent=2)
    pathlib.Path(result).write_text(text + "\n")
    records = [record for records in measurements.values() for record in records]
    lines = [*times_of(records), "", *limits_of(records)]
    pathlib.Path(table).write_text("\n".join(lines) + "\n")


main(*sys.argv[1:])
