#!/usr/bin/env python3
"""Every form has its help topic, every link leads somewhere, every page is in the contents list."""
import html.parser
import re
import xml.etree.ElementTree as ET

import tree

HELP = tree.ROOT / "help"
# How forms give their help context ids.
CONTEXT = re.compile(r"\bkHelpContextId\s*=\s*(\d+)|\bhelpContextId\s*=\s*(\d+)"
                     r"|\bSetHelpContextId\s*\([^;]*?,\s*(\d+)\s*\)|\"helpContextId\"\s*,\s*(\d+)")
# A name that stands for one and is not recognized above.
NAMED = re.compile(r"\bSetHelpContextId\s*\([^;(]*?,\s*(?!\d|(?:[\w.]+::)*kHelpContextId\b|\w+\.helpContextId\b)([\w:.]+)\s*\)")
PAIRED = {"p", "ul", "ol", "li", "table", "tr", "td", "th", "h1", "h2", "h3", "b", "i", "a", "pre",
          "html", "head", "body", "title"}


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.path, self.offenders, self.open = path, [], []
        self.feed(path.read_text(encoding="utf-8"))
        if self.open:
            self.offend(f"not closed: {self.open}")

    def offend(self, why):
        self.offenders.append(f"{tree.name(self.path)}:{self.getpos()[0]}: {why}")

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        if tag in PAIRED:
            self.open.append(tag)
        link = values.get("href") or values.get("src")
        if link and not (self.path.parent / link.split("#")[0]).is_file():
            self.offend(f"leads nowhere: {link}")
        if tag == "img" and not values.get("alt"):
            self.offend("a picture without a description")

    def handle_endtag(self, tag):
        if tag in PAIRED and (not self.open or self.open.pop() != tag):
            self.offend(f"closes what was not open: {tag}")


def contexts():
    """Every help context id in the code, with the first file that gives it."""
    found = {}
    for path in tree.code_files():
        if not tree.name(path).startswith("tests/"):
            for match in CONTEXT.finditer(path.read_text(encoding="utf-8")):
                number = next(group for group in match.groups() if group)
                found.setdefault(number, tree.name(path))
    return found


def main():
    project = ET.parse(HELP / "TARNPlus.qhp").getroot()
    offenders = []
    pages = {path.relative_to(HELP).as_posix(): path for path in (HELP / "pages").glob("*.html")}
    listed = {section.get("ref") for section in project.iter("section")}
    keywords = list(project.iter("keyword"))
    identifiers = {keyword.get("id") for keyword in keywords}
    offenders += [f"{where}: help/TARNPlus.qhp has no topic context-{number}"
                  for number, where in contexts().items()
                  if f"context-{number}" not in identifiers]
    offenders += [f"{tree.name(path)}: {match[1]}: give the number as kHelpContextId"
                  for path in tree.code_files() if not tree.name(path).startswith(("tests/", "platform/"))
                  for match in NAMED.finditer(path.read_text(encoding="utf-8"))]
    offenders += [f"help/{page}: not in the contents list" for page in pages if page not in listed]
    for ref in listed | {keyword.get("ref") for keyword in keywords}:
        if ref not in pages:
            offenders.append(f"help/TARNPlus.qhp: no page {ref}")
    for path in pages.values():
        offenders += Page(path).offenders
    tree.finish(offenders, "help that is complete and leads somewhere")


main()
