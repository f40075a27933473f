#!/usr/bin/env python3
"""Tests wait for conditions: none sleeps, and none looks at a clock."""
import re

import tree

SLEEP = re.compile(r"\b(sleep|usleep|nanosleep|msleep|sleep_for|sleep_until|qSleep)\s*\(")
CLOCK = re.compile(r"\b(\w+_clock|QElapsedTimer|clock_gettime|gettimeofday)\b")


def main():
    offenders = []
    for path in tree.code_files():
        name = tree.name(path)
        if not name.startswith("tests/"):
            continue
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            plain = line.split("//")[0]
            if SLEEP.search(plain):
                offenders.append(f"{name}:{number}: sleeps: {line.strip()[:80]}")
            if CLOCK.search(plain):
                offenders.append(f"{name}:{number}: looks at a clock: {line.strip()[:80]}")
    tree.finish(offenders, "tests that wait for conditions only")


main()
