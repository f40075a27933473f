#!/usr/bin/env python3
"""Every connection to a form's handler runs under the last trap, so that no error reaches Qt."""
import re

import tree

FOLDERS = ("shell/", "datafile/", "import/", "worksheets/", "tarnreview/")
# Handlers have the names of what they handle: cmdAdd_Click, MDIForm_Resize.
HANDLER = re.compile(r"\b[A-Za-z]\w*_[A-Z]\w*\s*\(")
TRAPS = ("Trapped(", "EventTrap::Run(")


def connections(text):
    """Line and text of each call of connect."""
    for match in re.finditer(r"\bconnect\(", text):
        depth = 0
        for end in range(match.end() - 1, len(text)):
            depth += {"(": 1, ")": -1}.get(text[end], 0)
            if depth == 0:
                break
        yield text.count("\n", 0, match.start()) + 1, text[match.start():end + 1]


def main():
    offenders = []
    for path in tree.code_files():
        name = tree.name(path)
        if not name.startswith(FOLDERS):
            continue
        for number, call in connections(path.read_text(encoding="utf-8")):
            if HANDLER.search(call) and not any(trap in call for trap in TRAPS):
                offenders.append(f"{name}:{number}: a handler that does not run under the trap")
    tree.finish(offenders, "handlers run under the last trap")


main()
