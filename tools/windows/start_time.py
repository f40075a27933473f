#!/usr/bin/env python3
"""Measures under Wine how long a program takes from its start to the first picture on the screen.

Usage: tools/windows/start_time.py [--runs N] PROGRAM.exe...
Each is started once to warm up; the programs take turns. Prints the best and the middle time in milliseconds. The
screen is a virtual one whose memory is looked at: the picture is there when the middle of it is no longer empty.
"""
import argparse
import mmap
import os
import shutil
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

SIDE = 1000
WINE = shutil.which("wine64") or "/usr/lib/wine/wine64"
SERVER = shutil.which("wineserver") or "/usr/lib/wine/wineserver"
PATIENCE = 60  # seconds


class Screen:
    def __init__(self, folder):
        answer, number = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(number), "-screen", "0", f"{SIDE}x{SIDE}x24", "-nolisten", "tcp", "-fbdir", folder],
            pass_fds=[number], stderr=subprocess.DEVNULL)
        os.close(number)
        with os.fdopen(answer) as line:
            self.name = ":" + line.readline().strip()
        with open(Path(folder) / "Xvfb_screen0", "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)

    def is_empty(self):
        """Nothing but one color in a line of points below the top third, where both programs have their windows."""
        size = len(self.memory) // SIDE
        line = self.memory[size * SIDE // 3:size * SIDE // 3 + size // 2]
        return len(set(line[:4000:4])) <= 1 and line[:4] == self.memory[-size:-size + 4]

    def close(self):
        self.process.terminate()
        self.process.wait()


def milliseconds(program, screen, environment):
    while not screen.is_empty():
        time.sleep(0.01)
    started = time.monotonic()
    process = subprocess.Popen([WINE, str(program)], env=environment, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        while screen.is_empty():
            if process.poll() is not None or time.monotonic() - started > PATIENCE:
                raise SystemExit(f"{program} showed nothing")
            time.sleep(0.001)
        return (time.monotonic() - started) * 1000
    finally:
        process.kill()
        process.wait()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--runs", type=int, default=10)
    parser.add_argument("programs", nargs="+", type=Path)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        screen = Screen(folder)
        environment = {**os.environ, "DISPLAY": screen.name, "WINEPREFIX": folder + "/wine", "WINEDEBUG": "-all",
                       "WINEDLLOVERRIDES": "mscoree,mshtml=", "WINEQT_QPA_PLATFORM": "windows"}
        try:
            subprocess.run([WINE, "wineboot"], env=environment, check=True, stderr=subprocess.DEVNULL)
            subprocess.run([SERVER, "--persistent"], env=environment, check=False)
            times = {program: [] for program in arguments.programs}
            for run in range(arguments.runs + 1):
                for program, seen in times.items():
                    taken = milliseconds(program, screen, environment)
                    if run > 0:
                        seen.append(taken)
            for program, seen in times.items():
                print(f"{program.name}: best {min(seen):.0f} ms, middle {statistics.median(seen):.0f} ms")
        finally:
            subprocess.run([SERVER, "--kill"], env=environment, check=False)
            screen.close()


main()
