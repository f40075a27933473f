#!/usr/bin/env python3
"""Takes the display away from the running program: what was typed is in the file, and the program ends in order.

Usage: display_gone.py PROGRAM_FOLDER JETSQL"""
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from screen import PATIENCE, SKIPPED, Screen, keyboard_to, press, wait_for

LOST_DISPLAY = 1  # the exit status by which Qt ends a program without a display
WORKSHEETS_TO_COSTS = 5  # from the introduction, by Ctrl+PageDown


def costs(jetsql, path):
    return subprocess.run([jetsql, path, "SELECT * FROM SuppressionPerAcreCost"], capture_output=True, text=True,
                          check=True).stdout


def start(folder, path):
    trace = folder / "TARN.LOG"
    trace.unlink(missing_ok=True)
    program = subprocess.Popen([folder / "tarnprep", path], stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def wait_until_logged(entry):
        wait_for(lambda: trace.exists() and entry in trace.read_text(encoding="latin-1"), entry)

    wait_until_logged("Finished Loading TARN Prep")
    keyboard_to(program)
    return program, wait_until_logged


def typed_and_gone(folder, jetsql, typed, keys, last_entry):
    """`keys` are pressed after the typing; the last of them is logged by `last_entry`."""
    path = folder / "Costs" / "UMFOR26.FCD"
    assert typed not in costs(jetsql, path)
    with Screen():
        program, wait_until_logged = start(folder, path)
        press(*["ctrl+Next"] * WORKSHEETS_TO_COSTS, "Tab", "Right", "Right", *typed, *keys)
        wait_until_logged(last_entry)
    status = program.wait(PATIENCE)
    assert status == LOST_DISPLAY, f"the program ended with {status}: {program.stderr.read().decode()}"
    assert typed in costs(jetsql, path), "what was typed is not in the file"


def main():
    for tool in ("Xvfb", "xdotool"):
        if shutil.which(tool) is None:
            print(f"skipped: {tool} is not installed")
            sys.exit(SKIPPED)
    with tempfile.TemporaryDirectory(prefix="TARN test ") as home:
        os.environ.update(HOME=home, XDG_CONFIG_HOME=home + "/config", XDG_RUNTIME_DIR=home)
        folder = Path(home) / "program folder"
        shutil.copytree(sys.argv[1], folder)
        jetsql = sys.argv[2]
        typed_and_gone(folder, jetsql, "4711", ["ctrl+c"], "mnuEdit_Click SCA 3")  # the cell is open
        typed_and_gone(folder, jetsql, "5822", ["Return", "alt+h", "Up", "Return"], "mnuHelp_Click 9")  # a box waits


main()
