#!/usr/bin/env python3
"""Holds docs/replaced-methods.md to the sources: replaced_methods_test.py REPOSITORY"""
import pathlib
import re
import sys
import unittest

REPOSITORY = None
FOLDERS = ("platform", "plugin", "hosts")
STOCK = re.compile(r"^(NS|GS|XG)[A-Z]")
# Files that replace methods without a table. Code that adds methods to its own classes does not
# count.
BY_HAND = re.compile(r"\b(?:method_exchangeImplementations|method_setImplementation|"
                     r"class_replaceMethod|class_addMethod|MethodSwizzle)\(")
MEANS = {"platform/objc/method_patch.mm", "platform/objc/runtime.mm", "platform/include/objc/runtime.h",
         "plugin/loader/method_swizzle.mm", "plugin/loader/method_swizzle.h"}


def sources(root):
    for folder in FOLDERS:
        for file in sorted((root / folder).rglob("*")):
            if file.suffix in (".h", ".cpp", ".mm"):
                yield str(file.relative_to(root)), file.read_text()


def class_of(expression):
    """A name in quotes as it is; of `class_getName([x class])` the object, as the page writes it."""
    inner = re.fullmatch(r"class_getName\(\[(.+) class\]\)", expression)
    return inner.group(1) if inner else expression.strip('"')


def patched(text):
    """(class, method) of each row of a table of patches."""
    for table in re.findall(r"\bMethodPatch \w+\[\] = \{(.*?)\};", text, re.S):
        for owner, selector, rest in re.findall(
                r'\{\s*("\w+"|class_getName\([^;{}]*?\)), *\s*("[\w:]+"|\w+\.selector),(.*?)\}', table, re.S):
            sign = "+" if re.search(r",\s*true\s*$", rest) else "-"
            names = [selector.strip('"')]
            if not selector.startswith('"'):
                names = re.findall(r'\{"([\w:]+)", &stock', text)
            for name in names:
                yield class_of(owner), sign + name


def exchanged(text):
    """The same of the plug-in's tables."""
    for table in re.findall(r"\bexchange_t \w+\[\] = \{(.*?)\n\};", text, re.S):
        for owner, name, kind in re.findall(
                r'\{\s*("\w+"|\w+), *\s*"([\w:]+)",\s*[^,]+,\s*(\w+)\}', table):
            if not owner.startswith('"'):
                owner = re.search(owner + r' = "(\w+)"', text).group(1)
            yield owner.strip('"'), ("+" if kind == "CLASS_METHODS" else "-") + name


def selector_of(declaration):
    declaration = re.sub(r"^[-+] *\((?:[^()]|\([^()]*\))*\)", "", declaration)
    labels = re.findall(r"(\w+):\s*\(", declaration)
    return "".join(label + ":" for label in labels) or re.match(r"\s*(\w+)", declaration).group(1)


def added(text):
    """(class, method) of each method in a category of a stock class."""
    for owner, body in re.findall(r"^@implementation (\w+) \(\w+\)\n(.*?)^@end", text, re.S | re.M):
        if not STOCK.match(owner):
            continue
        for declaration in re.findall(r"^([-+] *\([^{;]*)\{", body, re.M):
            yield owner, declaration[0] + selector_of(declaration)


def in_sources(root):
    """{(class, method, file)}, and the files that replace methods by hand."""
    found, by_hand = set(), set()
    for file, text in sources(root):
        for search in (patched, exchanged, added):
            found |= {(owner, method, file) for owner, method in search(text)}
        if BY_HAND.search(text) and file not in MEANS:
            by_hand.add(file)
    return found, by_hand


def on_page(page):
    """{(class, method, file)} of the rows `| class | methods | file | why |`."""
    found = set()
    for owner, methods, file, why in re.findall(
            r"^\| `([^|]+)` \| (`[^|]+) \| `([^|`]+)` \| ([^|]+) \|$", page, re.M):
        assert len(why) > 10, f"{methods} of {owner} wants a reason"
        found |= {(owner, method.replace(" ", ""), file) for method in re.findall(r"`([^`]+)`", methods)}
    return found


class Reader(unittest.TestCase):
    """The reading of sources, on small ones."""

    def test_a_table_of_patches_is_read(self):
        text = ('const MethodPatch patches[] = {\n {"NSMenu", "a:b:", reinterpret_cast<IMP>(f), &g},\n'
                ' {class_getName([view class]),\n  "c", reinterpret_cast<IMP>(f), nullptr, true},\n};')
        self.assertEqual(set(patched(text)), {("NSMenu", "-a:b:"), ("view", "+c")})

    def test_a_table_of_exchanges_is_read(self):
        text = ('const char* menu = "TMenu";\nconst exchange_t rows[] = {\n {"NSMenu", "a:",\n  "dvA:", '
                'CLASS_METHODS},\n {menu, "b", other, INSTANCE_METHODS},\n};')
        self.assertEqual(set(exchanged(text)), {("NSMenu", "+a:"), ("TMenu", "-b")})

    def test_a_category_of_a_stock_class_is_read(self):
        text = ("@implementation NSMenu (More)\n- (void)a:(int)x\n    b:(id<P>)y {\n}\n+ (id)c {\n}\n@end\n"
                "@implementation DVMenu (More)\n- (void)d {\n}\n@end\n")
        self.assertEqual(set(added(text)), {("NSMenu", "-a:b:"), ("NSMenu", "+c")})


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        root = pathlib.Path(REPOSITORY)
        cls.root = root
        cls.found, cls.by_hand = in_sources(root)
        cls.page = on_page((root / "docs/replaced-methods.md").read_text())

    def test_the_sources_are_read(self):
        self.assertGreater(len(self.found), 80)
        self.assertGreater(len(self.by_hand), 2)

    def test_the_page_names_every_method_that_a_table_or_a_category_replaces_or_adds(self):
        self.assertEqual(sorted(self.found - self.page), [])

    def test_the_page_names_something_of_every_file_that_replaces_methods_by_hand(self):
        self.assertEqual(sorted(self.by_hand - {file for _, _, file in self.page}), [])

    def test_the_page_names_nothing_that_is_gone(self):
        others = {row for row in self.page - self.found if row[2] not in self.by_hand}
        self.assertEqual(sorted(others), [])
        for _, method, file in sorted(self.page - self.found):
            if file in self.by_hand:
                self.assertIn(method[1:], (self.root / file).read_text(), file)


if __name__ == "__main__":
    REPOSITORY = sys.argv.pop(1)
    unittest.main()
