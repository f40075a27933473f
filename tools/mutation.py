#!/usr/bin/env python3
"""Plants small mistakes in the source and names those that no test notices.

A copy of the tree is built into build-mutation with all chosen mistakes in it, each behind a switch:
TARN_MISTAKE=17 in the environment turns the seventeenth on. So one build serves them all. A first run
without a mistake writes down which test comes by which switch, and each mistake is then tried with those
tests only, until one fails. What cannot stand behind a switch (a constant that the compiler needs, a
declaration) is left out of the choice.

The mistakes that no test can notice, since the program does the same with them, are listed in
tools/mutation.list with the reason; they are not counted.

Usage: tools/mutation.py [--count N] [--seed N] [--wrap COMMAND] [--again FILE] FOLDER...
  FOLDER  datafile, import, worksheets, shell: where mistakes are made
  --count how many, as many in each folder (200)
  --seed  another choice of them (1)
  --wrap  a command before each build and each run, such as "nice"
  --again the output of an earlier run: only what it calls UNNOTICED is planted, found by its text
Exit status 1 when 5 percent or more went unnoticed."""
import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time
from itertools import zip_longest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / "build-mutation"
TREE = COPY / "tree"
BUILD = TREE / "build"
OUTPUT = COPY / "output"
REACHED = COPY / "reached"
EQUAL = ROOT / "tools/mutation.list"
MOST_UNNOTICED = 5.0
# The test programs that can notice a mistake in a folder, the quickest first.
NOTICED_BY = {"datafile": ("datafile", "import", "gui", "worksheets"),
              "import": ("import", "gui", "worksheets"),
              "worksheets": ("worksheets", "gui"),
              "shell": ("base", "shell", "gui", "datafile")}
# What of the shell lies below the data file counts with it.
PARTS = {"shell": ("shell", "base")}
# Where things stand in a window is judged by its picture.
LOOKS = ("Layout.cpp", "Scenery.cpp", "frm0Start.cpp")
LOOKS_LINE = re.compile(r"setContentsMargins|[sS]pacing\(|[sS]tretch\(|addWidget\(")
# Hard tests that run long and notice nothing that the others would not.
LEFT_OUT = ["ImportCrash.*", "*FailingDisk*", "*RandomUse*", "Fonts/*", "*Walk.*"]

# "a == Compared{17} << b" reads as "a == (Compared{17} << b)", whatever a and b are, so the
# operands need not be found in the text.
SWITCHES = """#pragma once
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wparentheses"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wextra"
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <gtest/gtest.h>
// Programs that are no tests come by the switches as well, and are linked without the framework.
extern "C" testing::UnitTest* TarnTests()
    __asm__("_ZN7testing8UnitTest11GetInstanceEv") __attribute__((weak));
extern "C" const testing::TestInfo* TarnTest(const testing::UnitTest*)
    __asm__("_ZNK7testing8UnitTest17current_test_infoEv") __attribute__((weak));
inline void WriteReached(const char* path, int number) {
    static std::mutex mutex;
    static std::set<std::pair<std::string, int>> written;
    const std::lock_guard lock(mutex);
    const testing::TestInfo* test = TarnTests != nullptr ? TarnTest(TarnTests()) : nullptr;
    const std::string name =
        test != nullptr ? std::string(test->test_suite_name()) + "." + test->name() : "-";
    if (written.emplace(name, number).second) {
        if (std::FILE* file = std::fopen(path, "ae")) {
            std::fprintf(file, "%s %d\\n", name.c_str(), number);
            std::fclose(file);
        }
    }
}
inline int Mistake(int number) {
    static const int planted = std::getenv("TARN_MISTAKE") ? std::atoi(std::getenv("TARN_MISTAKE")) : 0;
    static const char* const reached = std::getenv("TARN_REACHED");
    if (reached != nullptr) {
        WriteReached(reached, number);
    }
    return number == planted ? 1 : 0;
}
template <class Right> struct ComparedTo { const Right& right; bool planted; };
struct Compared { int number; };
template <class Right> ComparedTo<Right> operator<<(Compared compared, const Right& right) {
    return {right, Mistake(compared.number) != 0};
}
#define TARN_COMPARED(OP, OTHER)                                             \\
    template <class Left, class Right>                                       \\
    bool operator OP(const Left& left, const ComparedTo<Right>& compared) {  \\
        return compared.planted ? left OTHER compared.right : left OP compared.right; \\
    }
TARN_COMPARED(==, !=) TARN_COMPARED(!=, ==) TARN_COMPARED(<, <=)
TARN_COMPARED(<=, <) TARN_COMPARED(>, >=) TARN_COMPARED(>=, >)
"""

NEIGHBORS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||",
             "||": "&&"}
COMPARISON = re.compile(r"(?<= )(==|!=|<=|>=|<|>)(?= )")
JUNCTION = re.compile(r" (&&|\|\|) ")
ONE_MORE = re.compile(r"(?<= [+-] )1\b")
STEP = re.compile(r"(?<!\w)(\+\+|--)([A-Za-z_][\w.>-]*)")
TRUTH = re.compile(r"\b(true|false)\b")
CONDITION = re.compile(r"^(\s*(?:\} else )?(?:if|while) \()(?!const |auto )(.*)(\) \{)$")
NUMBER = re.compile(r"(?<![\w.\"'])(\d+)(?![\w.\"'])")
FIELD = re.compile(r"FieldNames::(k\w+)")
STATEMENT = re.compile(r"^(\s+)((?!return\b|throw\b|case\b|using\b|const\b|auto\b|delete\b|#)"
                       r"[A-Za-z_][\w:.>()\-*]*(?:->|\.|::|\()?.*\);|[a-z]\w*_?(?:->\w+|\.\w+)? ="
                       r" .*;|(?:\+\+|--)\w+;)$")
# A guard that lives to the end of its block, or a variable: it cannot be left out behind a switch.
DECLARATION = re.compile(r"^\s+static |^\s+[\w:]+(?:<.*>)?[&*]? [\w]+(?:[({;]| =)")
COMMENT = re.compile(r"^\s*//|^\s*#|static_assert|EXPECT|constexpr|^\s*case |template|noexcept")


class Mistake:
    """A place in a line, its text behind a switch, and how the line would be with the mistake."""

    def __init__(self, kind, place, switched, shown):
        self.kind, self.place, self.switched, self.shown = kind, place, switched, shown
        self.folder = self.path = self.number = self.line = None

    def __str__(self):
        name = self.path.relative_to(TREE)
        return f"{name}:{self.number + 1}: {self.kind}: {self.line.strip()} | {self.shown.strip()}"

    def key(self):
        """What names it whatever lines were added before it."""
        return re.sub(r":\d+: ", ": ", str(self), count=1)


def in_text(line, at):
    """Whether the place lies in a text or a comment."""
    return line[:at].replace('\\"', "").count('"') % 2 == 1 or "//" in line[:at]


def operand_end(line, at, step, stops):
    """Where an operand ends that begins at a place and goes on in a direction, or None beyond the line."""
    depth, opens, closes = 0, "([{", ")]}"
    if step < 0:
        opens, closes = closes, opens
    while 0 <= at < len(line):
        if line[at] in opens:
            depth += 1
        elif line[at] in closes and depth == 0:
            return at
        elif line[at] in closes:
            depth -= 1
        elif depth == 0 and (line[at] in ",;?" or line[at:at + 2] in stops
                             or line[at:at + 3] == " = "):
            return at
        at += step
    return None


def junctions(line):
    """Conditions joined by and, or: both operands have to stand on the line."""
    for found in JUNCTION.finditer(line):
        stops = ("||",) if found[1] == "&&" else ()
        left = operand_end(line, found.start() - 1, -1, stops)
        right = operand_end(line, found.end(), 1, stops)
        start = line.find("return ", 0, found.start()) + 7 if left is None else left + 1
        if right is None or (left is None and start < 7) or in_text(line, found.start()):
            continue
        if left is not None and line[left] in " |":
            start = left + 3 if line[left] == " " else left + 2
        a, b = line[start:found.start()].strip(), line[found.end():right].strip()
        other = NEIGHBORS[found[1]]
        yield "neighbor", (start, right), f"(Mistake(@) ? ({a}) {other} ({b}) : ({a}) {found[1]} ({b}))", \
            f"{line[:found.start()]} {other} {line[found.end():]}"


def other_truth(found):
    return ("(!Mistake(@))", "false") if found[1] == "true" else ("(Mistake(@) != 0)", "true")


def exchanged(line):
    """What one pattern finds and one text replaces."""
    for pattern, kind, texts in (
            (COMPARISON, "neighbor", lambda f: (f"{f[1]} Compared{{@}} <<", NEIGHBORS[f[1]])),
            (ONE_MORE, "off by one", lambda f: ("(1 + Mistake(@))", "2")),
            (STEP, "neighbor", lambda f: (f"(Mistake(@) ? {'++' if f[1] == '--' else '--'}{f[2]} : {f[0]})",
                                          f"{'++' if f[1] == '--' else '--'}{f[2]}")),
            (TRUTH, "neighbor", other_truth),
            (NUMBER, "off by one", lambda f: (f"({f[1]} + Mistake(@))", str(int(f[1]) + 1)))):
        for found in pattern.finditer(line):
            if pattern is NUMBER and re.search(r" [+-] $", line[:found.start()]) and found[1] == "1":
                continue
            if not in_text(line, found.start()):
                switched, shown = texts(found)
                yield kind, found.span(), switched, line[:found.start()] + shown + line[found.end():]


def mistakes_in_line(line, fields, starts):
    """Each as (kind, place, text behind the switch, changed line)."""
    if found := CONDITION.match(line):
        yield "negated", found.span(2), f"Mistake(@) != static_cast<int>(static_cast<bool>({found[2]}))", \
            f"{found[1]}!({found[2]}){found[3]}"
    yield from exchanged(line)
    yield from junctions(line)
    for found in FIELD.finditer(line):
        for other in sorted(fields - {found[1]})[:1]:
            yield "other field", found.span(), f"(Mistake(@) ? FieldNames::{other} : {found[0]})", \
                line[:found.start()] + f"FieldNames::{other}" + line[found.end():]
    found = STATEMENT.match(line)
    if found and starts and not DECLARATION.match(line) and line.count("(") == line.count(")"):
        yield "dropped", found.span(2), f"if (!Mistake(@)) {{ {found[2]} }}", found[1] + ";"


def all_mistakes(folders):
    for folder in folders:
        for path in sorted(path for part in PARTS.get(folder, (folder,))
                           for path in (ROOT / part).rglob("*.cpp")):
            if path.name.endswith(LOOKS):
                continue
            lines = path.read_text(encoding="utf-8").split("\n")
            fields = set(FIELD.findall("\n".join(lines)))
            for number, line in enumerate(lines):
                # A statement begins where the one before has ended.
                starts = number > 0 and re.search(r"[;{}:]\s*$|^\s*$|^\s*//", lines[number - 1])
                if COMMENT.search(line) or LOOKS_LINE.search(line):
                    continue
                for parts in mistakes_in_line(line, fields, starts):
                    mistake = Mistake(*parts)
                    mistake.folder, mistake.number, mistake.line = folder, number, line
                    mistake.path = TREE / path.relative_to(ROOT)
                    yield mistake


def run(command, wrap, **options):
    with open(OUTPUT, "w", encoding="utf-8") as output:
        return subprocess.run(wrap + command, check=False, stdout=output, stderr=output,
                              **options).returncode


def put(target, text):
    """An untouched file keeps its time, so that the next build is short."""
    if not target.exists() or target.read_bytes() != text:
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(text)


def copy_tree(planted):
    """All files of the tree, the planted ones with their mistakes."""
    files = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True,
                           text=True).stdout.split("\n")
    for path in TREE.rglob("*.*"):
        if path.is_file() and BUILD not in path.parents and str(path.relative_to(TREE)) not in files:
            path.unlink()  # moved or gone since the last copy
    for name in filter(None, files):
        put(TREE / name, planted.get(TREE / name) or (ROOT / name).read_bytes())
        shutil.copymode(ROOT / name, TREE / name)
    put(COPY / "switches.h", SWITCHES.encode())


def plant(chosen):
    """The mistakes that stand side by side, and the texts of their files."""
    taken, planted = {}, []
    for mistake in chosen:
        places = taken.setdefault((mistake.path, mistake.number), [])
        if all(mistake.place[1] <= start or end <= mistake.place[0] for start, end in places):
            places.append(mistake.place)
            planted.append(mistake)
    lines_of = {}
    for number, mistake in sorted(enumerate(planted, 1), key=lambda p: -p[1].place[0]):
        if mistake.path not in lines_of:
            source = ROOT / mistake.path.relative_to(TREE)
            lines_of[mistake.path] = source.read_text(encoding="utf-8").split("\n")
        lines = lines_of[mistake.path]
        line, (start, end) = lines[mistake.number], mistake.place
        lines[mistake.number] = line[:start] + mistake.switched.replace("@", str(number)) + line[end:]
    switches = f'#include "{COPY / "switches.h"}"\n'
    return planted, {path: (switches + "\n".join(lines)).encode()
                     for path, lines in lines_of.items()}


def build(programs, wrap):
    return run(["ninja", "-k", "0", "-C", str(BUILD)] + [f"{name}_tests" for name in programs], wrap)


def refused_lines():
    """The lines that the compiler could not take, as (path, number)."""
    found = re.findall(r"^([^:\s]+\.cpp):(\d+):\d+: (?:fatal )?error",
                       OUTPUT.read_text(encoding="utf-8"), re.M)
    return {((BUILD / path).resolve(), int(number) - 2) for path, number in found}


def configure(wrap):
    if run(["cmake", "-S", str(TREE), "-B", str(BUILD), "-G", "Ninja", "-DTARN_GATES=OFF",
            "-DCMAKE_BUILD_TYPE=None"], wrap):
        sys.exit(f"{BUILD} cannot be configured, see {OUTPUT}")


def build_with(chosen, count, programs, wrap):
    """Plants the first of the choice that compile, and builds."""
    refused = set()
    for _ in range(12):
        planted, texts = plant([each for each in chosen
                                if (each.path, each.number) not in refused][:count])
        copy_tree(texts)
        configure(wrap)
        if not build(programs, wrap):
            return planted
        more = refused_lines()
        if not more - refused:
            break
        refused |= more
    sys.exit(f"{BUILD} cannot be built, see {OUTPUT}")


def test(name, number, wrap, only="", options=("--gtest_fail_fast",), seconds=1200):
    """Whether a test of the program fails; one that waits for good fails too."""
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "TARN_DAMAGE": "1",
                   "TARN_KILLS": "1", "TARN_CUTS": "1", "TARN_MISTAKE": str(number)}
    if not number:
        environment["TARN_REACHED"] = str(REACHED)
    try:
        return run([str(BUILD / f"bin/{name}_tests"), "--gtest_brief=1", *options,
                    f"--gtest_filter={only}-" + ":".join(LEFT_OUT)], wrap, env=environment,
                   timeout=seconds)
    except subprocess.TimeoutExpired:
        return 1


def reaching_tests(name, wrap):
    """Runs a program without a mistake: the tests by the number of each switch that they come by, and
    how long all took. A test that fails then cannot notice anything."""
    REACHED.unlink(missing_ok=True)
    began = time.monotonic()
    if test(name, 0, wrap, options=()):
        text = OUTPUT.read_text(encoding="utf-8", errors="replace")
        failing = set(re.findall(r"^\[  FAILED  \] ([\w./]+)", text, re.M))
        if not failing:
            sys.exit(f"{name}_tests end or hang without a mistake, see {OUTPUT}")
        print(f"left out, since they fail without a mistake: {' '.join(sorted(failing))}", flush=True)
        LEFT_OUT.extend(sorted(failing))
    tests = {}
    for line in REACHED.read_text(encoding="utf-8").splitlines() if REACHED.exists() else ():
        reached_by, number = line.rsplit(" ", 1)
        tests.setdefault(int(number), {})[reached_by] = None
    return tests, time.monotonic() - began


def outcome(folder, number, tests, wrap):
    """What becomes of the mistake of that number."""
    tries = []
    for program in NOTICED_BY[folder]:
        names = tests[program][0].get(number, {})
        inside = ":".join(name for name in names if name != "-")
        tries += [(program, inside)] if inside else []
    # Outside of a test: in a program that a test starts, or before the first one.
    tries += [(program, "") for program in NOTICED_BY[folder] if "-" in tests[program][0].get(number, {})]
    for program, only in tries:
        if test(program, number, wrap, only, seconds=60 + 4 * tests[program][1]):
            failed = re.search(r"\[  FAILED  \] ([\w./]+)",
                               OUTPUT.read_text(encoding="utf-8", errors="replace"))
            return f"noticed by {program}, {failed[1] if failed else 'which ended or hung'}"
    return "UNNOTICED"


def equal_in_effect():
    """The mistakes of the list, each without its reason."""
    lines = EQUAL.read_text(encoding="utf-8").splitlines() if EQUAL.exists() else ()
    return {line for line in lines if line and not line.startswith((" ", "#"))}


def choice(arguments):
    """The mistakes in the order in which they are tried."""
    equal = equal_in_effect()
    found = [mistake for mistake in all_mistakes(arguments.folders) if mistake.key() not in equal]
    if arguments.again:
        text = Path(arguments.again).read_text(encoding="utf-8")
        wanted = {re.sub(r":\d+: ", ": ", line.removeprefix("UNNOTICED: "), count=1)
                  for line in text.split("\n") if line.startswith("UNNOTICED: ")}
        return [mistake for mistake in found if mistake.key() in wanted]
    random.Random(arguments.seed).shuffle(found)
    turns = [[each for each in found if each.folder == folder] for folder in arguments.folders]
    return [each for turn in zip_longest(*turns) for each in turn if each]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("folders", nargs="+", choices=sorted(NOTICED_BY))
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--wrap", default="")
    parser.add_argument("--again")
    arguments = parser.parse_args()
    wrap = arguments.wrap.split()
    programs = sorted({name for folder in arguments.folders for name in NOTICED_BY[folder]})
    TREE.mkdir(parents=True, exist_ok=True)
    planted = build_with(choice(arguments), arguments.count, programs, wrap)
    tests = {name: reaching_tests(name, wrap) for name in programs}
    unnoticed = 0
    for number, mistake in enumerate(planted, 1):
        result = outcome(mistake.folder, number, tests, wrap)
        unnoticed += result == "UNNOTICED"
        print(f"{result}: {mistake}", flush=True)
    share = 100 * unnoticed / max(len(planted), 1)
    print(f"{unnoticed} of {len(planted)} mistakes unnoticed ({share:.1f} percent)")
    return 1 if share >= MOST_UNNOTICED else 0


if __name__ == "__main__":
    sys.exit(main())
