#!/usr/bin/env python3
"""Line and branch coverage of the engine and of the rule code, by folder and file.

Builds with clang into build-coverage, runs the tests, and reads what the instrumented source
counted: each condition of the source has two ways, each case of a switch one; what the compiler
adds for exceptions does not count. A condition that cannot turn out one way is marked on its line,
or on the one before, with "// unreachable:" and the reason.

Usage: tools/coverage.py [--only-report] [--missed]
  --only-report  reads what the last run counted
  --missed       names every way that no test takes
Exit status 1 when a folder has less than the promised share of its branches."""
import collections
import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build-coverage"
PROFILES = BUILD / "profiles"
LEAST = 95.0
TESTS = ("jet", "base", "datafile", "import", "worksheets", "platform", "shell")
# What is measured; forms, which the whole-program tests drive, are not rule code.
MEASURED = ("jet/src/", "jet/include/", "platform/text/", "platform/dao/", "base/", "datafile/",
            "import/", "worksheets/")
WINDOWS = ("frm", "UnitBox", "ImportProgressBox")
MARK = "unreachable:"


def measured(name):
    return name.startswith(MEASURED) and not Path(name).name.startswith(WINDOWS)


def build():
    command = [ROOT / "tools/build.sh", BUILD, "all", "--preset=coverage"]
    if subprocess.run(command, check=False).returncode:
        sys.exit(1)  # it has said why


def run_tests():
    shutil.rmtree(PROFILES, ignore_errors=True)
    PROFILES.mkdir()
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "TARN_DAMAGE": "20",
                   "LLVM_PROFILE_FILE": str(PROFILES / "%m-%p.profraw")}

    def run(name):
        with open(BUILD / f"{name}.log", "w", encoding="utf-8") as log:
            return name, subprocess.run([BUILD / f"bin/{name}_tests", "--gtest_brief=1"], stdout=log,
                                        stderr=log, check=False, cwd=BUILD,
                                        env=environment).returncode

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failed = [name for name, status in pool.map(run, TESTS) if status]
    for name in failed:
        print(f"Tests of {name} failed; see {BUILD / name}.log.")
    return not failed


def exported():
    """What llvm-cov says of the measured files."""
    total = BUILD / "total.profdata"
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", total, *PROFILES.glob("*.profraw")],
                   check=True)
    programs = [BUILD / f"bin/{name}_tests" for name in TESTS]
    objects = [word for program in programs[1:] for word in ("-object", program)]
    run = subprocess.run(["llvm-cov", "export", programs[0], *objects, "-instr-profile", total],
                         check=True, capture_output=True)
    for file in json.loads(run.stdout)["data"][0]["files"]:
        path = (BUILD / file["filename"]).resolve()
        if path.is_file() and path.is_relative_to(ROOT) and measured(str(path.relative_to(ROOT))):
            yield path, file


def decided_by_the_compiler(source, line, column, end):
    """Constant conditions, and the way past a switch without a default: it lists every value, or
    the compiler warns."""
    before = source[line][:column - 1]
    return (re.search(r"(if constexpr|switch) \($", before)
            or source[line][column - 1:end - 1] == "true")


def ways(path, file):
    """Every way of every condition: line, column, which, count. Each instance of a template has
    counts of its own; a way is taken when any instance took it."""
    source = collections.defaultdict(str, enumerate(path.read_text(encoding="utf-8").splitlines(), 1))
    counts = collections.Counter()
    for line, column, _, end, true, false, *_ in file["branches"]:
        marked = MARK in source[line] or MARK in source[line - 1]
        if not marked and not decided_by_the_compiler(source, line, column, end):
            counts[line, column, "true"] += true
            counts[line, column, "false"] += false
    return counts


def share(part, whole):
    return 100.0 * part / whole if whole else 100.0


def report(files, all_missed):
    folders = collections.defaultdict(lambda: [0, 0, 0, 0])
    print(f"{'file':50} {'lines':>7} {'branches':>9}  not taken")
    for path, file in sorted(files, key=lambda entry: entry[0]):
        name = str(path.relative_to(ROOT))
        counts = ways(path, file)
        missed = [place for place, count in sorted(counts.items()) if count == 0]
        lines = file["summary"]["lines"]
        figures = (lines["covered"], lines["count"], len(counts) - len(missed), len(counts))
        for position, figure in enumerate(figures):
            folders[name.split("/")[0]][position] += figure
        numbers = sorted({line for line, _, _ in missed})
        print(f"{name:50} {share(*figures[:2]):6.1f}% {share(*figures[2:]):8.1f}%  "
              f"{' '.join(map(str, numbers[:12]))}{' ...' if len(numbers) > 12 else ''}")
        if all_missed:
            for line, column, way in missed:
                print(f"    {name}:{line}:{column}: never {way}")
    print()
    return folders


def main():
    passed = True
    if "--only-report" not in sys.argv:
        build()
        passed = run_tests()
    short = False
    for folder, figures in sorted(report(exported(), "--missed" in sys.argv).items()):
        branches = share(*figures[2:])
        short |= branches < LEAST
        print(f"{folder:50} {share(*figures[:2]):6.1f}% {branches:8.1f}%")
    sys.exit(1 if short or not passed else 0)


main()
