#!/usr/bin/env python3
"""Every connection in the program's own folders runs under the last trap, so that no error reaches
Qt. Forms use base::Handle, which gives a handler its trap, its name and its trace entry. A connection
whose receiver is a slot of Qt's own class needs no trap: Qt's slots throw nothing. What is called later
by a timer, or by an action or a shortcut that is made with its slot, counts as connected."""
import re

import tree

FOLDERS = ("base/", "shell/", "datafile/", "import/", "worksheets/", "tarnreview/")
TRAPS = re.compile(r"\b(Trapped|EventTrap::Run)\s*\(|\bRunHandler\s*<")
CONNECT = re.compile(r"\b(connect|singleShot|callOnTimeout|invokeMethod|addAction|QShortcut)\s*\(")
BY_NAME = re.compile(r"\bconnectSlotsByName\b")  # Qt's own way, which gives no trap
# A call of it under another name could not be followed.
ALIAS = re.compile(r"\b(connect|singleShot|callOnTimeout|invokeMethod)\b(?!\s*\()")
NO_CODE = re.compile(r'"(\\.|[^"\\\n])*"|//[^\n]*')
ALWAYS_CALLS = ("connect", "singleShot", "callOnTimeout", "invokeMethod")
SLOT = re.compile(r"&\s*\w+::\w+|\[[^\]]*\]\s*[({]|\bSLOT\s*\(")
QTS_SLOT = re.compile(r"(qOverload<[^()]*>\()?&\s*Q\w+::\w+\)?")


def connections(text):
    """Line, name and arguments of each call that connects something."""
    for match in BY_NAME.finditer(text):
        yield text.count("\n", 0, match.start()) + 1, "connect", ["this", match[0]]
    plain = NO_CODE.sub(lambda match: " " * len(match[0]), text)
    for match in ALIAS.finditer(plain):
        yield text.count("\n", 0, match.start()) + 1, "connect", ["this", match[0]]
    for match in CONNECT.finditer(text):
        depth, arguments, begin = 0, [], match.end()
        for end in range(match.end() - 1, len(text)):
            depth += {"(": 1, "[": 1, "{": 1, ")": -1, "]": -1, "}": -1}.get(text[end], 0)
            if depth == 0 or (depth == 1 and text[end] == ","):
                arguments.append(text[begin:end].strip())
                begin = end + 1
            if depth == 0:
                break
        yield text.count("\n", 0, match.start()) + 1, match[1], arguments


def is_safe(arguments):
    return (any(TRAPS.search(argument) for argument in arguments)
            or any(QTS_SLOT.fullmatch(argument) for argument in arguments[2:]))


def main():
    offenders = []
    for path in tree.code_files():
        name = tree.name(path)
        if not name.startswith(FOLDERS):
            continue
        for number, call, arguments in connections(path.read_text(encoding="utf-8")):
            connects = call in ALWAYS_CALLS or any(SLOT.match(argument) for argument in arguments)
            whole = len(arguments) > 1 or any(argument.endswith("...") for argument in arguments)
            if connects and whole and not is_safe(arguments):
                offenders.append(f"{name}:{number}: a handler that does not run under the trap")
    tree.finish(offenders, "handlers run under the last trap")


main()
