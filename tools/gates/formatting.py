#!/usr/bin/env python3
"""All C++ is laid out by clang-format; --fix does it."""
import subprocess
import sys

import tree


def main():
    files = [str(path) for path in tree.code_files()]
    if "--fix" in sys.argv:
        subprocess.run(["clang-format", "-i", *files], check=True)
        return
    run = subprocess.run(["clang-format", "--dry-run", *files], capture_output=True, text=True,
                         check=False)
    offenders = {line.split(":")[0] for line in run.stderr.splitlines() if "warning:" in line}
    if run.returncode != 0 and not offenders:
        offenders = {run.stderr}
    tree.finish(sorted(offender.removeprefix(f"{tree.ROOT}/") for offender in offenders),
                "the layout of clang-format (make format)")


main()
