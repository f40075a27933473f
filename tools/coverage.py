#!/usr/bin/env python3
"""Line and branch coverage of the engine and of the rule code, by folder and file.

Builds into build-coverage, runs the tests without windows of their own, and reads what gcov counted.
Branches that only an exception takes are left out, and so are lines that say "// unreachable:".
Exit status 1 when a folder has less than the promised share of its branches."""
import collections
import concurrent.futures
import json
import os
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build-coverage"
LEAST = 95.0
TESTS = "jet|datafile|import|worksheets|platform|shell"
# What is measured; forms, which the whole-program tests drive, are not rule code.
MEASURED = ("jet/src/", "jet/include/", "platform/text/", "platform/dao/", "datafile/", "import/",
            "worksheets/")
WINDOWS = ("frm", "UnitBox", "ImportProgressBox")


def measured(name):
    return name.startswith(MEASURED) and not Path(name).name.startswith(WINDOWS)


def build_and_run():
    subprocess.run([ROOT / "tools/build.sh", BUILD, "all", "-DCMAKE_BUILD_TYPE=Debug",
                    "-DCMAKE_CXX_FLAGS=--coverage -O0", "-DTARN_GATES=OFF"], check=True)
    for old in BUILD.rglob("*.gcda"):
        old.unlink()
    subprocess.run(["ctest", "--test-dir", BUILD, "-j", str(os.cpu_count()), "-R", f"^({TESTS})\\.",
                    "--output-on-failure"], stdout=subprocess.DEVNULL, check=False)


def counts_of(gcda):
    run = subprocess.run(["gcov", "--stdout", "--json-format", "--branch-probabilities", str(gcda)],
                         capture_output=True, check=False, cwd=BUILD)
    found = []
    for document in run.stdout.splitlines():
        try:
            found += json.loads(document)["files"]
        except (ValueError, KeyError):
            continue
    return found


def collect():
    """File to line to (hits, branches); the same header counts once, whoever includes it."""
    lines = collections.defaultdict(dict)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for files in pool.map(counts_of, BUILD.rglob("*.gcda")):
            for file in files:
                path = Path(os.path.normpath(BUILD / file["file"]))
                if not path.is_relative_to(ROOT) or not measured(str(path.relative_to(ROOT))):
                    continue
                known = lines[path]
                for line in file["lines"]:
                    add(known, line)
    return lines


def add(known, line):
    branches = [branch["count"] for branch in line["branches"] if not branch["throw"]]
    hits, former = known.get(line["line_number"], (0, []))
    # Each instance of a template has branches of its own; each way is taken when any took it.
    if len(former) == len(branches):
        branches = [a + b for a, b in zip(former, branches)]
    elif len(former) > len(branches):
        branches = former
    known[line["line_number"]] = (hits + line["count"], branches)


def totals(path, known):
    source = path.read_text(encoding="utf-8").splitlines()
    lines = taken_lines = branches = taken = 0
    missed = []
    for number, (hits, ways) in sorted(known.items()):
        if number <= len(source) and "unreachable:" in "".join(source[max(0, number - 2):number]):
            continue
        lines += 1
        taken_lines += hits > 0
        branches += len(ways)
        taken += sum(way > 0 for way in ways)
        if hits == 0 or any(way == 0 for way in ways):
            missed.append(str(number))
    return [lines, taken_lines, branches, taken], missed


def share(part, whole):
    return 100.0 * part / whole if whole else 100.0


def main():
    if "--only-report" not in sys.argv:
        build_and_run()
    folders = collections.defaultdict(lambda: [0, 0, 0, 0])
    print(f"{'file':50} {'lines':>7} {'branches':>9}  not covered")
    for path, known in sorted(collect().items()):
        name = str(path.relative_to(ROOT))
        counts, missed = totals(path, known)
        for position, count in enumerate(counts):
            folders[name.split("/")[0]][position] += count
        print(f"{name:50} {share(counts[1], counts[0]):6.1f}% {share(counts[3], counts[2]):8.1f}%"
              f"  {' '.join(missed[:12])}{' ...' if len(missed) > 12 else ''}")
    print()
    short = False
    for folder, counts in sorted(folders.items()):
        branches = share(counts[3], counts[2])
        short |= branches < LEAST
        print(f"{folder:50} {share(counts[1], counts[0]):6.1f}% {branches:8.1f}%")
    sys.exit(1 if short else 0)


main()
