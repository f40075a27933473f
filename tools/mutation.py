#!/usr/bin/env python3
"""Plants small mistakes in the source, one at a time, and names those that no test notices.

A copy of the tree is built into build-mutation. Each mistake (a negated condition, a neighboring
comparison, another field, a number off by one, a dropped statement, ...) is made in it alone, the
test programs are built anew, and those of the layers that can notice it are run until one fails.

Usage: tools/mutation.py [--count N] [--seed N] [--wrap COMMAND] [--most MINUTES] FOLDER...
  FOLDER  datafile, import, worksheets, shell: where mistakes are made
  --count how many, spread over the folders' lines (200)
  --seed  another choice of them (1)
  --wrap  a command before each build and each run, such as "nice"
  --most  stops after so many minutes
Exit status 1 when 5 percent or more went unnoticed."""
import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / "build-mutation"
TREE = COPY / "tree"
BUILD = TREE / "build"
MOST_UNNOTICED = 5.0
# The test programs that can notice a mistake in a folder, the quickest first.
NOTICED_BY = {"base": ("base", "datafile", "shell", "gui"),
              "datafile": ("datafile", "import", "worksheets", "gui"),
              "import": ("import", "worksheets", "gui"),
              "worksheets": ("worksheets", "gui"),
              "shell": ("shell", "datafile", "gui")}
# Where things stand in a window is judged by its picture.
LOOKS = ("Layout.cpp", "Scenery.cpp", "frm0Start.cpp")
# Hard tests that run long and notice nothing that the others would not.
LEFT_OUT = "-*Crash*:*FailingDisk*:*RandomUse*:*random*:*Random*:*Fonts*"

NEIGHBORS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||",
             "||": "&&", " + 1": " + 2", " - 1": " - 2", "++": "--", "true": "false",
             "false": "true"}
COMPARISON = re.compile(r"(?<= )(==|!=|<=|>=|<|>|&&|\|\|)(?= )")
OTHERS = re.compile(r" \+ 1\b| - 1\b|\+\+(?=\w)|\btrue\b|\bfalse\b")
CONDITION = re.compile(r"^(\s*(?:\} else )?(?:if|while) \()(?!const |auto )(.*)(\) \{)$")
NUMBER = re.compile(r"(?<![\w.\"'])(\d+)(?![\w.\"'])")
FIELD = re.compile(r"FieldNames::(k\w+)")
STATEMENT = re.compile(r"^\s+(?!return\b|throw\b|case\b|using\b|const\b|auto\b|delete\b|#)"
                       r"[A-Za-z_][\w:.>()\-*]*(?:->|\.|::|\()?.*\);$|^\s+[a-z]\w*_?(?:->\w+|\.\w+)? ="
                       r" .*;$|^\s+(?:\+\+|--)\w+;$")
COMMENT = re.compile(r"^\s*//|^\s*#|static_assert|EXPECT")


class Mistake:
    """One line of a file, as it is and as it would be."""

    def __init__(self, path, number, lines, kind):
        self.path, self.number, self.kind = path, number, kind
        self.original, self.line = lines

    def __str__(self):
        shown = self.original if self.kind == "dropped" else self.line
        return f"{self.path.relative_to(TREE)}:{self.number + 1}: {self.kind}: {shown.strip()}"


def in_text(line, at):
    """Whether the place lies in a text or a comment."""
    return line[:at].count('"') % 2 == 1 or "//" in line[:at]


def replaced(line, found, text):
    return line[:found.start()] + text + line[found.end():]


def mistakes_in_line(line, fields):
    """Each as (kind, line)."""
    if found := CONDITION.match(line):
        yield "negated", f"{found[1]}!({found[2]}){found[3]}"
    for pattern in (COMPARISON, OTHERS):
        for found in pattern.finditer(line):
            if not in_text(line, found.start()) and "template" not in line:
                yield "neighbor", replaced(line, found, NEIGHBORS[found[0]])
    for found in NUMBER.finditer(line):
        if not in_text(line, found.start()):
            yield "off by one", replaced(line, found, str(int(found[1]) + 1))
    for found in FIELD.finditer(line):
        for other in sorted(fields - {found[1]})[:1]:
            yield "other field", replaced(line, found, f"FieldNames::{other}")
    if STATEMENT.match(line) and line.count("(") == line.count(")"):
        yield "dropped", re.match(r"\s*", line)[0] + ";"


def all_mistakes(folders):
    for folder in folders:
        for path in sorted((TREE / folder).rglob("*.cpp")):
            if path.name.endswith(LOOKS):
                continue
            lines = path.read_text(encoding="utf-8").split("\n")
            fields = set(FIELD.findall("\n".join(lines)))
            for number, line in enumerate(lines):
                # A statement begins where the one before has ended.
                starts = number > 0 and re.search(r"[;{}:]\s*$|^\s*$|^\s*//", lines[number - 1])
                if COMMENT.search(line):
                    continue
                for kind, changed in mistakes_in_line(line, fields):
                    if kind != "dropped" or starts:
                        yield folder, Mistake(path, number, (line, changed), kind)


def run(command, wrap, **options):
    return subprocess.run(wrap + command, check=False, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, **options).returncode


def copy_tree():
    files = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True,
                           text=True).stdout.split("\n")
    for name in filter(None, files):
        target = TREE / name
        text = (ROOT / name).read_bytes()
        # Untouched files keep their time, so that the next build is short.
        if not target.exists() or target.read_bytes() != text:
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)


def build(programs, wrap):
    return run(["ninja", "-C", str(BUILD)] + [f"{name}_tests" for name in programs], wrap)


def prepare(programs, wrap):
    copy_tree()
    status = run(["cmake", "-S", str(TREE), "-B", str(BUILD), "-G", "Ninja", "-DTARN_GATES=OFF",
                  "-DCMAKE_BUILD_TYPE=None"], wrap)
    if status or build(programs, wrap):
        sys.exit(f"{BUILD} cannot be built")
    for name in programs:
        if test(name, wrap):
            sys.exit(f"{name}_tests fail as they are")


def test(name, wrap):
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "TARN_DAMAGE": "1",
                   "TARN_KILLS": "1", "TARN_CUTS": "1"}
    try:
        return run([str(BUILD / f"bin/{name}_tests"), "--gtest_brief=1", "--gtest_fail_fast",
                    f"--gtest_filter={LEFT_OUT}"], wrap, env=environment, timeout=600)
    except subprocess.TimeoutExpired:
        return 1  # it hangs, which is noticed


def outcome(folder, wrap):
    """What becomes of the mistake that is in the tree now."""
    for program in NOTICED_BY[folder]:
        if build([program], wrap):
            return "noticed by the compiler"
        if test(program, wrap):
            return f"noticed by {program}"
    return "UNNOTICED"


def try_mistake(folder, mistake, wrap):
    text = mistake.path.read_text(encoding="utf-8")
    lines = text.split("\n")
    lines[mistake.number] = mistake.line
    mistake.path.write_text("\n".join(lines), encoding="utf-8")
    try:
        return outcome(folder, wrap)
    finally:
        mistake.path.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("folders", nargs="+", choices=sorted(NOTICED_BY))
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--wrap", default="")
    parser.add_argument("--most", type=float, default=1e9)
    arguments = parser.parse_args()
    wrap = arguments.wrap.split()
    programs = sorted({name for folder in arguments.folders for name in NOTICED_BY[folder]})
    prepare(programs, wrap)
    end = time.monotonic() + 60 * arguments.most
    found = list(all_mistakes(arguments.folders))
    random.Random(arguments.seed).shuffle(found)
    tried = unnoticed = 0
    for folder, mistake in found:
        if tried == arguments.count or time.monotonic() > end:
            break
        result = try_mistake(folder, mistake, wrap)
        tried += 1
        unnoticed += result == "UNNOTICED"
        print(f"{result}: {mistake}", flush=True)
    share = 100 * unnoticed / max(tried, 1)
    print(f"{unnoticed} of {tried} mistakes unnoticed ({share:.1f} percent)")
    return 1 if share >= MOST_UNNOTICED else 0


if __name__ == "__main__":
    sys.exit(main())
