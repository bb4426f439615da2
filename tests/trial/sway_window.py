# Finds a window whose title matches in sway's tree of windows, which comes by the standard input, and
# prints its left, top, width and height, and whether it has the keyboard.
#   sway_window.py PATTERN
import json
import re
import sys


def windows(node):
    if node.get("pid") and node.get("visible"):
        yield node
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        yield from windows(child)


for each in windows(json.load(sys.stdin)):
    if re.search(sys.argv[1], each["name"] or ""):
        outer, inner = each["rect"], each["window_rect"]
        print(outer["x"] + inner["x"], outer["y"] + inner["y"], inner["width"], inner["height"],
              "yes" if each["focused"] else "no")
        break
