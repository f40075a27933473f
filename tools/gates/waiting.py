#!/usr/bin/env python3
"""Tests wait for conditions: none sleeps, and none looks at a clock. A Python test that watches
another process polls, in its one function `wait_for`."""
import ast
import re

import tree

SLEEP = re.compile(r"\bsleep\s*\(|\b(usleep|nanosleep|msleep|sleep_for|sleep_until|qSleep|qWait)\b"
                   r"|\bsingleShot\s*\(\s*[1-9]|\"sleep \d|(?<!\w)::(poll|select|ppoll)\s*\(\s*(0|nullptr)")
CLOCK = re.compile(r"\b(\w+_clock|QElapsedTimer|QDeadlineTimer|currentMSecsSinceEpoch|clock_gettime"
                   r"|gettimeofday)\b")


def in_code(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        plain = line.split("//")[0]
        if SLEEP.search(plain):
            yield f"{tree.name(path)}:{number}: sleeps: {line.strip()[:80]}"
        if CLOCK.search(plain):
            yield f"{tree.name(path)}:{number}: looks at a clock: {line.strip()[:80]}"


def in_script(path):
    module = ast.parse(path.read_text(encoding="utf-8"))
    sleeps = {"sleep"} | {alias.asname for node in ast.walk(module) if isinstance(node, ast.ImportFrom)
                          for alias in node.names if alias.name == "sleep"}
    allowed = {id(node) for function in ast.walk(module)
               if isinstance(function, ast.FunctionDef) and function.name == "wait_for"
               for node in ast.walk(function)}
    for node in ast.walk(module):
        # By whatever name it is called: who mentions `time.sleep` wants it.
        if id(node) not in allowed and (isinstance(node, ast.Attribute) and node.attr == "sleep"
                                        or isinstance(node, ast.Name) and node.id in sleeps):
            yield f"{tree.name(path)}:{node.lineno}: sleeps"


def main():
    offenders = []
    for path in tree.code_files():
        if tree.name(path).startswith("tests/"):
            offenders += in_code(path)
    for path in sorted((tree.ROOT / "tests").rglob("*.py")):
        offenders += in_script(path)
    tree.finish(offenders, "tests that wait for conditions only")


main()
