#!/usr/bin/env python3
"""Holds the folders to the order that docs/architecture.md draws: include_order_test.py REPOSITORY"""
import pathlib
import re
import sys
import tempfile
import unittest

REPOSITORY = None
SOURCES = (".h", ".cpp", ".mm", ".c")
MOST_FILES, MOST_LINES = 40, 3500
ROOMS_FOR_HOSTS = {"corefoundation", "x11", "look", "menus", "panels"}
MACS = {"include"}


def drawn_order(page):
    """{"plugin": ["support", ...], ...} from the tables under the headings of the three folders."""
    order, top = {}, None
    for line in page.splitlines():
        heading = re.match(r"##+ (?:`(\w+)/`)?", line)
        if heading:
            top = heading.group(1)
        row = re.match(r"\| `(\w+)` \|", line)
        if row and top:
            order.setdefault(top, []).append(row.group(1))
    return order


class House:
    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.order = drawn_order((self.root / "docs/architecture.md").read_text())

    def files(self, top):
        for file in sorted((self.root / top).rglob("*")):
            if file.suffix in SOURCES and file.parent != self.root / top:
                yield file

    def place(self, file):
        """The top folder and the drawn folder of a file."""
        parts = file.relative_to(self.root).parts
        return parts[0], parts[1]

    def target(self, name):
        """Where an included name leads to, or None for a header of the system's."""
        for top in self.order:
            if (self.root / top / name).is_file():
                return top, pathlib.PurePath(name).parts[0]
        for folder in ("include", "host_include"):
            if (self.root / "platform" / folder / name).is_file():
                return "platform", folder
        return None

    def is_allowed(self, place, target):
        (top, folder), (to_top, to_folder) = place, target
        if to_folder not in self.order[to_top] or folder not in self.order[top]:
            return False
        if top == to_top:
            order = self.order[top]
            return order.index(to_folder) <= order.index(folder)
        if to_top != "platform":
            return False
        allowed = MACS if top == "plugin" else MACS | {"host_include"} | ROOMS_FOR_HOSTS
        return to_folder in allowed

    def wrong_arrows(self):
        for top in self.order:
            for file in self.files(top):
                for name in re.findall(r'^\s*#\s*(?:include|import)\s+[<"]([^>"]+)[>"]',
                                       file.read_text(), re.M):
                    target = self.target(name)
                    if target and not self.is_allowed(self.place(file), target):
                        yield f"{file.relative_to(self.root)} includes {name}"

    def folders(self):
        for top in self.order:
            seen = {}
            for file in self.files(top):
                seen.setdefault(file.parent, []).append(file)
            yield from seen.items()

    def undrawn_folders(self):
        return [str(folder.relative_to(self.root)) for folder, _ in self.folders()
                if self.place(folder / "x")[1] not in self.order[self.place(folder / "x")[0]]]

    def crowded_folders(self):
        for folder, files in self.folders():
            lines = sum(file.read_text().count("\n") for file in files)
            if len(files) > MOST_FILES or lines > MOST_LINES:
                yield f"{folder.relative_to(self.root)}: {len(files)} files, {lines} lines"


PAGE = """## `plugin/`
| `low` | x |
| `high` | x |
## `platform/`
| `include` | x |
| `host_include` | x |
| `x11` | x |
| `carbon` | x |
## `hosts/`
| `popup` | x |
"""


class Checker(unittest.TestCase):
    """The check itself, on small houses."""

    def wrong(self, **files):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            everywhere = {"docs/architecture.md": PAGE, "plugin/low/low.h": "", "plugin/high/high.h": "",
                          "platform/include/Carbon/Carbon.h": "", "platform/host_include/host/it.h": "",
                          "platform/x11/x.h": "", "platform/carbon/c.h": "", "hosts/popup/p.h": ""}
            for name, text in {**everywhere, **files["files"]}.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            return list(House(root).wrong_arrows())

    def test_an_arrow_downward_is_right(self):
        self.assertEqual(self.wrong(files={"plugin/high/a.mm": '#include "low/low.h"\n'}), [])

    def test_an_arrow_upward_is_found(self):
        self.assertEqual(self.wrong(files={"plugin/low/a.mm": '#import "high/high.h"\n'}),
                         ["plugin/low/a.mm includes high/high.h"])

    def test_the_plug_in_sees_the_macs_headers_only(self):
        self.assertEqual(self.wrong(files={"plugin/low/a.h": "#include <Carbon/Carbon.h>\n"}), [])
        self.assertEqual(len(self.wrong(files={"plugin/low/a.h": "#include <host/it.h>\n"})), 1)
        self.assertEqual(len(self.wrong(files={"plugin/low/a.h": '#include "carbon/c.h"\n'})), 1)

    def test_the_platform_knows_neither_host_nor_plug_in(self):
        self.assertEqual(len(self.wrong(files={"platform/x11/a.cpp": '#include "popup/p.h"\n'})), 1)
        self.assertEqual(len(self.wrong(files={"platform/x11/b.cpp": '#include "low/low.h"\n'})), 1)

    def test_hosts_see_some_rooms(self):
        self.assertEqual(self.wrong(files={"hosts/popup/a.mm": '#include "x11/x.h"\n'}), [])
        self.assertEqual(len(self.wrong(files={"hosts/popup/a.mm": '#include "carbon/c.h"\n'})), 1)


class Repository(unittest.TestCase):
    def setUp(self):
        self.house = House(REPOSITORY)

    def test_the_page_draws_all_three_top_folders(self):
        self.assertEqual(set(self.house.order), {"plugin", "platform", "hosts"})
        self.assertGreater(sum(map(len, self.house.order.values())), 20)

    def test_no_arrow_runs_upward(self):
        self.assertEqual(list(self.house.wrong_arrows()), [])

    def test_every_folder_is_drawn(self):
        self.assertEqual(self.house.undrawn_folders(), [])

    def test_no_folder_is_crowded(self):
        self.assertEqual(list(self.house.crowded_folders()), [])


if __name__ == "__main__":
    REPOSITORY = sys.argv.pop(1)
    unittest.main()
