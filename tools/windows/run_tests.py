#!/usr/bin/env python3
"""Runs test programs that were built for Windows under Wine, each in several parts at the same time.

Usage: tools/windows/run_tests.py BUILD-FOLDER LIBRARIES PROGRAM...
  LIBRARIES is what tools/windows/libraries.py prints; an empty text for programs that need none
TARN_PLATFORM=windows shows the windows, each part's on a virtual display of its own; otherwise nothing is drawn.
TARN_FILTER chooses tests as --gtest_filter does. Logs lie in BUILD-FOLDER/tests.
"""
import os
import queue
import re
import shutil
import subprocess
import sys
import threading
from pathlib import Path

COMPILER = "x86_64-w64-mingw32-g++-posix"
WINE = shutil.which("wine64") or "/usr/lib/wine/wine64"
JOBS = int(os.environ.get("TARN_JOBS") or os.cpu_count() or 2)
PARTS = 4 * JOBS  # of each program, so that all places are busy nearly to the end
PLATFORM = os.environ.get("TARN_PLATFORM") or "offscreen"
FILTER = os.environ.get("TARN_FILTER") or "*"
LIMIT = 3600  # seconds, for one part
# What Wine itself does otherwise than Windows; packaging/windows/BUILDING.md says of each why.
WINE_FAILS = {"offscreen": [], "windows": []}
LINE = re.compile(r"^\[ *(RUN|OK|SKIPPED|FAILED) *\] ([\w/]+\.[\w/]+)")


def environment(build, libraries, place):
    """Wine keeps Qt's variables from its programs, and gives them what has its own name before theirs."""
    runtime = subprocess.run([COMPILER, "-print-file-name=libstdc++-6.dll"], capture_output=True, text=True, check=True)
    paths = [Path(runtime.stdout.strip()).parent, Path("/usr/x86_64-w64-mingw32/lib")]
    paths += [library / "bin" for library in libraries]
    plugins = [library / "plugins" for library in libraries if (library / "plugins").is_dir()]
    return {**os.environ, "WINEPREFIX": str(build / f"wine-{place}"), "WINEDEBUG": "-all",
            "WINEDLLOVERRIDES": "mscoree,mshtml=", "WINEPATH": ";".join(f"Z:{path}" for path in paths),
            "WINEQT_QPA_PLATFORM": PLATFORM, "WINEQT_QPA_FONTDIR": "Z:/usr/share/fonts/truetype/dejavu",
            "WINEQT_PLUGIN_PATH": ";".join(f"Z:{path}" for path in plugins)}


class Display:
    """A virtual one; none where nothing is drawn."""

    def __init__(self):
        self.server, self.variables = None, {}
        if PLATFORM == "offscreen":
            return
        answer, number = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(number), "-screen", "0", "1280x900x24",
                                        "-nolisten", "tcp"], pass_fds=[number], stderr=subprocess.DEVNULL)
        os.close(number)
        with os.fdopen(answer) as line:
            self.variables = {"DISPLAY": ":" + line.readline().strip()}

    def close(self):
        if self.server is not None:
            self.server.terminate()
            self.server.wait()


class Outcome:
    def __init__(self):
        self.lock = threading.Lock()
        self.counts = {"OK": 0, "SKIPPED": 0, "FAILED": 0}
        self.failed = []

    def read(self, name, log, status):
        """Takes over what a part's log says; what failed is printed with all that it said."""
        running, said, text, failed = None, [], [], []
        counts = dict.fromkeys(self.counts, 0)
        for line in log.read_text(encoding="utf-8", errors="replace").splitlines():
            found = LINE.match(line)
            if found and found[1] == "RUN":
                running, said = found[2], []
            elif found and found[2] == running:
                counts[found[1]] += 1
                if found[1] == "FAILED":
                    failed.append(f"{name}: {running}")
                    text += [*said, line]
                running = None
            said.append(line)
        if running is not None:
            failed.append(f"{name}: {running}, which did not end")
            text += said
        elif status != 0 and not failed:
            failed.append(f"{name} ended with status {status}")
            text += said
        with self.lock:
            for word, count in counts.items():
                self.counts[word] += count
            self.failed += failed
            print("\n".join(text), end="\n" if text else "", flush=True)


def run(build, libraries, place, parts, outcome):
    """Runs parts until none waits, at a place of its own: a system of Wine's and a display."""
    display = Display()
    try:
        while True:
            try:
                program, part = parts.get_nowait()
            except queue.Empty:
                return
            log = build / "tests" / f"{program}-{part}.log"
            variables = {**environment(build, libraries, place), **display.variables,
                         "GTEST_TOTAL_SHARDS": str(PARTS), "GTEST_SHARD_INDEX": str(part)}
            chosen, _, left_out = FILTER.partition("-")
            left_out = ":".join([*WINE_FAILS[PLATFORM], left_out])
            with open(log, "w", encoding="utf-8") as out:
                try:
                    # Tests that describe a screen do so in the current folder.
                    status = subprocess.run(
                        [WINE, str(build / "bin" / f"{program}.exe"), f"--gtest_filter={chosen}-{left_out}"],
                        stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT, cwd=build, env=variables,
                        timeout=LIMIT, check=False).returncode
                except subprocess.TimeoutExpired:
                    status = "late"
            outcome.read(program, log, status)
    finally:
        display.close()


def main(build, libraries, *programs):
    build = Path(build).resolve()
    (build / "tests").mkdir(exist_ok=True)
    libraries = [Path(library) for library in libraries.split(";") if library]
    parts, outcome = queue.Queue(), Outcome()
    for program in programs:
        for part in range(PARTS):
            parts.put((program, part))
    places = [threading.Thread(target=run, args=(build, libraries, place, parts, outcome)) for place in range(JOBS)]
    for place in places:
        place.start()
    for place in places:
        place.join()
    counts = outcome.counts
    print(f"{' '.join(programs)} under Wine: {counts['OK']} pass, {counts['FAILED']} fail, "
          f"{counts['SKIPPED']} are left out.")
    if outcome.failed:
        sys.exit("\n".join(["Failed:", *sorted(outcome.failed)]))


main(*sys.argv[1:])
