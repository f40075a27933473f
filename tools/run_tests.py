#!/usr/bin/env python3
"""Builds everything twice and runs all tests: optimized with gcc, and with clang under the address
and undefined-behavior sanitizers. Where the cross compiler is installed (make windows), the engine
and its tools are compiled for Windows too. The long run adds the thread
sanitizer, a minute of each fuzz target and the hard tests with many more tries. The last line of the output is the summary."""
import argparse
import os
import shutil
import subprocess
import sys
import time
import xml.etree.ElementTree as ET
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
WINDOWS_ZLIB = Path("/usr/x86_64-w64-mingw32/lib/libz.a")
FUZZ_TARGETS = sorted(path.name.removesuffix("_fuzz.cpp")
                      for path in (ROOT / "fuzz").glob("*_fuzz.cpp"))
FUZZ_SECONDS = 60
# Changed bytes for each sample file, kills for each test, and every failing call.
HARD_TESTS = [
    ("jet_tests", "Damage.*:Process.Killed*"),
    ("import_tests", "ImportCrash.*"),
    ("gui_tests", "*FailingDisk.*"),
    ("worksheets_tests", "ListsWalk.*"),
]
MANY_TRIES = {"TARN_DAMAGE": "3000", "TARN_KILLS": "100", "TARN_CUTS": "0",
              "TARN_STEPS": "5000", "QT_QPA_PLATFORM": "offscreen"}
JOBS = os.environ.get("TARN_JOBS", str(os.cpu_count() or 2))


class Summary:
    def __init__(self):
        self.passed = self.failed = self.skipped = 0
        self.offenders = []

    def add_failure(self, name):
        self.failed += 1
        self.offenders.append(name)

    def add_report(self, path, prefix):
        """Counts a JUnit report; False when there is none."""
        try:
            cases = list(ET.parse(path).getroot().iter("testcase"))
        except (OSError, ET.ParseError):
            return False
        for case in cases:
            status = case.get("status")
            if status == "run":
                self.passed += 1
            elif status == "fail":
                self.add_failure(prefix + case.get("name"))
            else:
                self.skipped += 1
        return True


def build(folder, *options):
    command = [str(ROOT / "tools/build.sh"), str(ROOT / folder), "all", *options]
    return subprocess.run(command, check=False).returncode == 0


def run_tests(folder, label, summary, only, environment=None):
    report = ROOT / folder / "report.xml"
    report.unlink(missing_ok=True)
    command = ["ctest", "--test-dir", str(ROOT / folder), "-j", JOBS, "--output-on-failure",
               "--no-tests=error", "--output-junit", str(report)]
    if only:
        command += ["-R", only]
    log = ROOT / folder / "test.log"
    with open(log, "w", encoding="utf-8") as out:
        code = subprocess.run(command, stdout=out, stderr=subprocess.STDOUT, check=False,
                              env={**os.environ, **(environment or {})}).returncode
    before = summary.failed
    if not summary.add_report(report, label) or (code != 0 and summary.failed == before):
        if not only:
            summary.add_failure(label + "running the tests")
    if summary.failed > before:
        print_failures(log)


def print_failures(log):
    """What the failed tests wrote, without the long list of those that passed."""
    for line in log.read_text(encoding="utf-8", errors="replace").splitlines():
        if not (line.lstrip()[:1].isdigit() and (" Passed " in line or "Start " in line)):
            if not line.lstrip().startswith("Start "):
                print(line)


def optimized(summary, only):
    print("== gcc, optimized", flush=True)
    # The benchmarks are compiled, so that they stay whole; make bench runs them.
    if not build("build", "-DTARN_BENCH=ON"):
        summary.add_failure("gcc: build")
        return
    run_tests("build", "gcc: ", summary, only)


def sanitized(summary, only):
    print("== clang, address and undefined-behavior sanitizers", flush=True)
    folder = "build-sanitize"
    # Everything is compiled, so that clang's warnings count for every file.
    if not build(folder, "--preset=sanitize"):
        summary.add_failure("clang: build")
        return
    run_tests(folder, "sanitizers: ", summary, only,
              {"ASAN_OPTIONS": "detect_leaks=0:abort_on_error=0",
               "UBSAN_OPTIONS": "print_stacktrace=1"})


def for_windows(summary):
    print("== mingw-w64, compiled only", flush=True)
    if not shutil.which("x86_64-w64-mingw32-g++-posix") or not WINDOWS_ZLIB.exists():
        print("The cross compiler is not installed; make windows installs it.")
        summary.skipped += 1
    elif build("build-windows", "-DTARN_ENGINE_ONLY=ON", "-DTARN_TESTS=OFF",
               f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/tools/windows/mingw-w64.cmake"):
        summary.passed += 1
    else:
        summary.add_failure("mingw-w64: build")


def fuzzed(summary):
    print("== fuzzing", flush=True)
    for name in FUZZ_TARGETS:
        code = subprocess.run([str(ROOT / "tools/fuzz.sh"), str(FUZZ_SECONDS), name],
                              check=False).returncode
        if code == 0:
            summary.passed += 1
        else:
            summary.add_failure(f"fuzz: {name}")


def tried_hard(summary):
    print("== hard tests with many tries", flush=True)
    for program, tests in HARD_TESTS:
        command = [str(ROOT / "build/bin" / program), "--gtest_filter=" + tests, "--gtest_brief=1"]
        code = subprocess.run(command, check=False, env={**os.environ, **MANY_TRIES}).returncode
        if code == 0:
            summary.passed += 1
        else:
            summary.add_failure(f"many tries: {program} {tests}")


def on_threads(summary):
    print("== clang, thread sanitizer, the engine alone", flush=True)
    folder = "build-threads"
    command = [str(ROOT / "tools/build.sh"), str(ROOT / folder), "jet_tests",
               "-DCMAKE_CXX_COMPILER=clang++", "-DTARN_THREAD_SANITIZE=ON", "-DTARN_ENGINE_ONLY=ON",
               "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g"]
    if subprocess.run(command, check=False).returncode != 0:
        summary.add_failure("threads: build")
        return
    tests = [str(ROOT / folder / "bin/jet_tests"), "--gtest_filter=Threads.*", "--gtest_brief=1"]
    if subprocess.run(tests, check=False).returncode == 0:
        summary.passed += 1
    else:
        summary.add_failure("threads: databases at once")


def main():
    parser = argparse.ArgumentParser(prog="./test", description=__doc__)
    parser.add_argument("--quick", action="store_true", help="the optimized build only")
    parser.add_argument("--long", action="store_true",
                        help="fuzzing and many more tries of the hard tests, too")
    parser.add_argument("--only", metavar="REGEX", help="only the tests whose names match")
    options = parser.parse_args()

    started = time.time()
    summary = Summary()
    optimized(summary, options.only)
    if not options.quick:
        sanitized(summary, options.only)
        if not options.only:
            for_windows(summary)
    if options.long:
        tried_hard(summary)
        on_threads(summary)
        fuzzed(summary)

    if summary.offenders:
        print("\nFailed:")
        for name in summary.offenders:
            print("  " + name)
    print(f"\nTook {time.time() - started:.0f} s.")
    print(f"{summary.passed} passed, {summary.failed} failed, {summary.skipped} skipped")
    return 1 if summary.failed or not summary.passed else 0


if __name__ == "__main__":
    sys.exit(main())
