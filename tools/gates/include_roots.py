#!/usr/bin/env python3
"""Each target sees the headers of its own folder and of the layers below it, and no other: what the
layer gate reads in the sources, the compiler would refuse as well.

Usage: include_roots.py BUILD_FOLDER"""
import json
import shlex
import subprocess
import sys
from pathlib import Path

import tree

# Folders from the bottom up, each with a header of it that others may include.
LAYERS = {"jet": "jet/database.h", "platform": "platform/EventTrap.h", "base": "base/u91Trace.h",
          "datafile": "datafile/ZoneKeys.h", "import": "import/mImport.h",
          "worksheets": "worksheets/Worksheet.h", "shell": "shell/a1Prep.h"}
BESIDE = {"season": "season/season.h", "review": "review/check.h", "tests": "support/Answers.h",
          "tools": "tools/TableText.h"}


def command(build, folder):
    """How the first source file of a folder is compiled, as a preprocessor's command line."""
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        if Path(entry["file"]).is_relative_to(tree.ROOT / folder):
            words = shlex.split(entry["command"])
            words = [word for word in words if word != "-c" and not word.endswith("ccache")]
            at = words.index("-o")
            del words[at:at + 2]
            words.remove(entry["file"])
            return entry["directory"], words
    return None


def seen(build, folder):
    """The headers that a file of the folder could include."""
    directory, words = command(build, folder)
    everything = {**LAYERS, **BESIDE}
    question = "".join(f'#if __has_include("{header}")\nsees_{other}\n#endif\n'
                       for other, header in everything.items())
    run = subprocess.run([*words, "-w", "-E", "-P", "-x", "c++", "-"], cwd=directory, input=question,
                         capture_output=True, text=True, check=True)
    return {line.removeprefix("sees_") for line in run.stdout.split() if line.startswith("sees_")}


def main():
    build = Path(sys.argv[1]).resolve()
    offenders = []
    for header in [*LAYERS.values(), *BESIDE.values()]:
        if not any((tree.ROOT / root / header).is_file() for root in ("", "jet/include", "tests")):
            offenders.append(f"{header} is not there")
    below = {"jet": set()}  # the engine sees its own headers, from folders of its own
    order = [folder for folder in LAYERS if folder != "jet"]
    for position, folder in enumerate(order):
        below[folder] = set(order[:position + 1]) | ({"jet"} if folder == "platform" else set())
    below["season"] = {"season", "jet"}
    below["review"] = {"review", "season", "jet"}  # a season's face speaks in the engine's values
    for folder, wanted in below.items():
        found = seen(build, folder) - ({"jet"} if folder == "jet" else set())
        offenders += [f"{folder} sees {other}" for other in sorted(found - wanted)]
        offenders += [f"{folder} does not see {other}" for other in sorted(wanted - found)]
    tree.finish(offenders, "a target sees the layers below it and no other")


main()
