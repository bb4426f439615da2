"""Holds the instruction counts of the scan, of a menu's level and of the start to those of a file.

    count.py BUILD_FOLDER COUNTS [--renew]

Instructions are counted by valgrind and do not depend on how busy the machine is. A stage that takes
5 % more than the file says, or 5 % less, fails; --renew writes the file anew. Runs with a display.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

TOLERANCE = 0.05
ENTRIES = 1000
KINDS = [".txt", ".pdf", ".jpg", "", ".tar.gz", ".c"]
WORDS = ["report", "Photo", "IMG_", "caf\u00e9", "Draft ", "\u5199\u771f", "notes.", "backup-"]
COLUMNS = "{:32} {:>12} {:>12} {:>8}"


def run(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **options)


def copy_stripped(build, to):
    """The programs and libraries without their debug information, which valgrind cannot read."""
    shutil.copytree(build / "lib", to / "lib", symlinks=True)
    (to / "bin").mkdir()
    for program in ["count_scan", "count_menu"]:
        shutil.copy2(build / "bin" / program, to / "bin" / program)
    (to / "libexec/delvio").mkdir(parents=True)
    host = pathlib.Path("libexec/delvio/delvio-host")
    shutil.copy2(build / host, to / host)
    for path in [path for path in to.rglob("*") if path.is_file()]:
        with open(path, "rb") as file:
            if file.read(4) != b"\x7fELF":
                continue
        run("strip", "--strip-debug", path)


def make_folder(path):
    """The same entries on every machine: files, every seventh a folder, every fourteenth a link."""
    path.mkdir(parents=True)
    for index in range(ENTRIES):
        word = WORDS[index % len(WORDS)]
        entry = path / f"{word}{WORDS[index * 7 % 5]}{index * 37 % 1009}{KINDS[index % len(KINDS)]}"
        if index % 14 == 0:
            entry.symlink_to("/usr")
        elif index % 7 == 0:
            entry.mkdir()
        else:
            entry.touch()


def make_desktop(folder):
    """Kinds of files, icons and fonts of one package each, whatever else is installed."""
    packages = folder / "mime" / "packages"
    packages.mkdir(parents=True)
    shutil.copy("/usr/share/mime/packages/freedesktop.org.xml", packages)
    run("update-mime-database", folder / "mime", stderr=subprocess.DEVNULL)
    (folder / "icons").mkdir()
    (folder / "icons" / "Adwaita").symlink_to("/usr/share/icons/Adwaita")
    fonts = folder / "fonts.conf"
    fonts.write_text(f"""<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir><cachedir>{folder}/fonts</cachedir></fontconfig>
""")
    return {"XDG_DATA_DIRS": str(folder), "FONTCONFIG_FILE": str(fonts)}


def callgrind(out):
    return ["valgrind", "--tool=callgrind", f"--callgrind-out-file={out}", "--quiet"]


def stages_of(folder):
    """The least count of each stage in the parts that a run has left."""
    stages = {}
    for part in sorted(folder.iterdir(), key=lambda path: int(path.suffix[1:] or 0)):
        text = part.read_text(errors="replace")
        name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
        total = re.search(r"^totals: (\d+)$", text, re.M)
        if name and total and name[1] != "-":
            stages.setdefault(name[1], []).append(int(total[1]))
    return {name: min(counts) for name, counts in stages.items()}


def count_parts(work, environment, *command):
    parts = pathlib.Path(tempfile.mkdtemp(dir=work))
    run(*callgrind(parts / "part"), *command, env=environment)
    return stages_of(parts)


def is_menu_shown(environment):
    # The root window has no name, so a search by name does not find it.
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "."], env=environment,
                           capture_output=True, text=True)
    return found.stdout.strip() != ""


def show_until_escape(environment, *command):
    """Runs the command, waits for its menu, and has Escape close it."""
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL)
    while process.poll() is None and not is_menu_shown(environment):
        time.sleep(0.1)
    while process.poll() is None:
        run("xdotool", "key", "Escape", env=environment)
        try:
            process.wait(timeout=5)
        except subprocess.TimeoutExpired:
            pass
    if process.returncode != 0:
        raise SystemExit(f"{command[-3]} ended with status {process.returncode}")


def count_start(work, environment, *command):
    show_until_escape(environment, *command)  # fills the caches
    out = work / "start.out"
    show_until_escape(environment, *callgrind(out), *command)
    return int(re.search(r"^(?:totals|summary): (\d+)", out.read_text(errors="replace"), re.M)[1])


def count_all(build):
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)
        copies = work / "copies"
        copy_stripped(build, copies)
        holder = work / "holder"
        make_folder(holder / "entries")
        environment = dict(os.environ, LD_LIBRARY_PATH=str(copies / "lib"),
                           **make_desktop(work / "desktop"))
        counts = count_parts(work, environment, copies / "bin/count_scan", holder / "entries")
        counts["start, from delvio menu to Escape"] = count_start(
            work, environment, copies / "libexec/delvio/delvio-host", "menu", holder)
        environment["COUNT_PLUG_IN"] = str(copies / "lib/Delvio.bundle")
        environment["COUNT_FOLDER"] = str(holder)
        counts.update(count_parts(work, environment, copies / "bin/count_menu"))
        return counts


def read_counts(path):
    lines = [line.rsplit(":", 1) for line in path.read_text().splitlines() if line[:1] != "#"]
    return {name: int(count) for name, count in lines}


def write_counts(path, counts):
    head = ("# Instructions of each stage, for a folder of 1,000 entries.\n"
            "# Written by script/count-instructions.\n")
    path.write_text(head + "".join(f"{name}: {count}\n" for name, count in counts.items()))


def compare(kept, counts):
    """Prints each stage beside what was kept; whether all are close."""
    print(COLUMNS.format("stage", "kept", "now", "change"))
    close = set(kept) == set(counts)
    for name in dict.fromkeys([*kept, *counts]):
        if name not in kept or name not in counts:
            print(COLUMNS.format(name, kept.get(name, "none"), counts.get(name, "none"), ""))
            continue
        change = counts[name] / kept[name] - 1
        is_close = abs(change) <= TOLERANCE
        close = close and is_close
        mark = "" if is_close else "  beyond 5 %"
        print(COLUMNS.format(name, kept[name], counts[name], f"{change:+.1%}") + mark)
    return close


def main(build, path, *options):
    path = pathlib.Path(path)
    counts = count_all(pathlib.Path(build))
    kept = read_counts(path) if path.exists() else {}
    close = compare(kept, counts)
    if "--renew" in options:
        write_counts(path, counts)
    elif not close:
        print("Where this is meant, renew the counts: ./script/count-instructions")
        sys.exit(1)


main(*sys.argv[1:])
