#!/usr/bin/env python3
"""Tests wait for conditions: none sleeps, and none looks at a clock. A Python test that watches
another process polls, in its one function `wait_for`. The time of day, and the clock in a Python test,
may be read where a comment above says why."""
import ast
import re

import tree

SLEEP = re.compile(r"\bsleep\s*\(|\b(usleep|nanosleep|msleep|sleep_for|sleep_until|qSleep|qWait)\b"
                   r"|\bsingleShot\s*\(\s*[1-9]|\"sleep \d|(?<!\w)::(poll|select|ppoll)\s*\(\s*(0|nullptr)")
CLOCK = re.compile(r"\b(\w+_clock|QElapsedTimer|QDeadlineTimer|currentMSecsSinceEpoch|clock_gettime"
                   r"|gettimeofday)\b")
TIME_OF_DAY = re.compile(r"\b(QTime::currentTime|QDateTime::currentDateTime(Utc)?|currentSecsSinceEpoch|std::time"
                         r"|localtime(_r|_s)?|gmtime(_r|_s)?)\b|(?<![\w.>:])(::)?time\s*\(\s*(nullptr|NULL|0|&\w+)\s*\)")
WHY = 2  # lines above, in one of which the comment is
PYTHON_CLOCKS = {"monotonic", "monotonic_ns", "perf_counter", "perf_counter_ns", "process_time", "time_ns"}
WAITERS = {"Event", "Condition", "Semaphore", "BoundedSemaphore", "Barrier", "Lock", "RLock"}
WAITS = {"wait", "wait_for", "acquire"}
SIGNALS = {"set", "notify", "notify_all", "release"}


def says_why(lines, number, mark):
    return any(line.lstrip().startswith(mark) for line in lines[max(number - 1 - WHY, 0):number - 1])


def in_code(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    for number, line in enumerate(lines, 1):
        plain = line.split("//")[0]
        if SLEEP.search(plain):
            yield f"{tree.name(path)}:{number}: sleeps: {line.strip()[:80]}"
        if CLOCK.search(plain):
            yield f"{tree.name(path)}:{number}: looks at a clock: {line.strip()[:80]}"
        if TIME_OF_DAY.search(plain) and not says_why(lines, number, "//"):
            yield f"{tree.name(path)}:{number}: looks at a clock and does not say why: {line.strip()[:80]}"


def called(node):
    """The last name of what a call calls; empty for all else."""
    function = node.func if isinstance(node, ast.Call) else None
    return getattr(function, "attr", getattr(function, "id", ""))


def vain_waits(module):
    """Waits for what nobody signals, and other calls that end by their time only."""
    nodes = list(ast.walk(module))
    signaled = {ast.unparse(node.value) for node in nodes
                if isinstance(node, ast.Attribute) and node.attr in SIGNALS}
    waiters = {ast.unparse(target) for node in nodes if isinstance(node, ast.Assign) and called(node.value) in WAITERS
               for target in node.targets}
    for node in nodes:
        if not isinstance(node, ast.Call):
            continue
        of = node.func.value if isinstance(node.func, ast.Attribute) else None
        if called(node) in WAITS and (called(of) in WAITERS
                                      or of is not None and ast.unparse(of) in waiters - signaled):
            yield node
        if called(node) == "select" and [ast.unparse(argument) for argument in node.args[:3]] == ["[]"] * 3:
            yield node
        if called(node) in {"Timer", "sigtimedwait"}:
            yield node
        words = [word.value for word in ast.walk(node)
                 if isinstance(word, ast.Constant) and isinstance(word.value, str)]
        if any(re.match(r"sleep$|sleep \S|.*[;&|] *sleep \S", word) for word in words):
            yield node


def in_script(path):
    text = path.read_text(encoding="utf-8")
    module, lines = ast.parse(text), text.splitlines()
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
        if (id(node) not in allowed and isinstance(node, ast.Attribute)
                and (node.attr in PYTHON_CLOCKS or ast.unparse(node) == "time.time")
                and not says_why(lines, node.lineno, "#")):
            yield f"{tree.name(path)}:{node.lineno}: looks at a clock and does not say why"
    for node in vain_waits(module):
        if id(node) not in allowed:
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
