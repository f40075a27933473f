#!/usr/bin/env python3
"""Comments give reasons, not numbers or leftovers."""
import re

import tree

TEXT = {".h", ".cpp", ".py", ".sh", ".md", ".txt", ".cmake", ".html", ".qhp", ".xml", ""}
RULES = [
    (re.compile(r"\b(TODO|FIXME|XXX|HACK)\b"), "unfinished work is not left in the tree"),
    (re.compile(r"NOLINT(NEXTLINE|BEGIN|END)?(?!\w|\()"), "name the check that is switched off"),
    (re.compile(r"(?i)\b(see|per|by|in|of) (part|issue|decision|section) \d"),
     "give the reason itself, not a number"),
    (re.compile(r"[\"' (]/(home|root|Users)/"),
     "no path of one person's machine"),
    (re.compile(r"^(<<<<<<< |>>>>>>> )"), "a merge that was not finished"),
    (re.compile(r"^\s*//\s*(if \(.*\{|for \(.*\{|while \(.*\{|\} else.*\{|return\b.*;"
                r"|[\w.:>-]+\(.*\);|[\w:<>*&,. >\[\]()-]+ [-+*/|&]?= .*;|(break|continue);|#include\b.*"
                r"|delete \w+;|(const |static |auto[*&]? )[\w:<>*& ]+[;({].*)\s*$"),
     "code that is commented out"),
    (re.compile(r"[ \t]+$"), "blanks at the end of a line"),
]


def main():
    offenders = []
    for path in tree.text_files():
        if path.suffix not in TEXT or path.name == "debris.py" or path.name == "LICENSE":
            continue
        try:
            lines = path.read_text(encoding="utf-8").splitlines()
        except UnicodeDecodeError:
            continue
        for number, line in enumerate(lines, 1):
            for pattern, why in RULES:
                if pattern.search(line):
                    offenders.append(f"{tree.name(path)}:{number}: {why}: {line.strip()[:80]}")
    tree.finish(offenders, "no debris in the tree")


main()
