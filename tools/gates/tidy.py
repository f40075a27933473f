#!/usr/bin/env python3
"""clang-tidy over every source file. What was found clean is remembered by content in the user's
cache folder, for all clones, so that only files that changed, or whose headers did, are looked at
again. Tests are left out: the macros of GoogleTest cost more time than they are worth here.

Usage: tidy.py BUILD_FOLDER [FILE...]"""
import concurrent.futures
import hashlib
import json
import os
import re
import subprocess
import sys
from pathlib import Path

import tree


def remembered():
    cache = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache")
    folder = cache / "tarnprep" / "tidy-clean"
    folder.mkdir(parents=True, exist_ok=True)
    return folder


def headers_of(build):
    """Object file to the headers of the tree that its compilation read, as ninja recorded them."""
    listing = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True,
                             text=True, check=False).stdout
    found, current = {}, None
    for line in listing.splitlines():
        if line and not line[0].isspace():
            current = line.split(":")[0]
            found[current] = []
        elif line.strip():
            path = (build / line.strip()).resolve()  # the roots are links
            if path.is_relative_to(tree.ROOT) and not path.is_relative_to(build):
                found[current].append(path)
    return found


def commands(build, wanted):
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = Path(entry["file"])
        if path.is_relative_to(build) or not path.is_relative_to(tree.ROOT):
            continue
        if tree.name(path).startswith("tests/") and not wanted:
            continue
        if wanted and path.resolve() not in wanted:
            continue
        yield path, re.search(r" -o (\S+)", entry["command"])[1], entry["command"]


def version():
    return subprocess.run(["clang-tidy", "--version"], capture_output=True, check=False).stdout


def fingerprint(path, command, headers, judge):
    digest = hashlib.sha256(judge)
    digest.update((tree.ROOT / ".clang-tidy").read_bytes())
    # How far the compiler optimizes changes nothing for clang-tidy, nor where the clone is.
    told = [word for word in command.replace(str(tree.ROOT), "").split()
            if not word.startswith(("-O", "-g")) and word != "-DNDEBUG"]
    digest.update(" ".join(told).encode())
    for part in sorted({path, *headers}):
        digest.update(tree.name(part).encode() + part.read_bytes())
    return digest.hexdigest()


def examine(build, path, known, key):
    run = subprocess.run(["clang-tidy", "--quiet", "-p", str(build), str(path)],
                         capture_output=True, text=True, check=False)
    if run.returncode == 0 and "warning:" not in run.stdout:
        (known / key).touch()
        return None
    return run.stdout + ("" if run.stdout.strip() else run.stderr)


def main():
    build = Path(sys.argv[1]).resolve()
    wanted = {Path(name).resolve() for name in sys.argv[2:]}
    known = remembered()
    judge = version()
    headers = headers_of(build)
    work, seen, total = [], set(), 0
    for path, output, command in commands(build, wanted):
        if path in seen:
            continue
        seen.add(path)
        total += 1
        key = fingerprint(path, command, headers.get(output, []), judge)
        if not (known / key).exists():
            work.append((path, key))
    offenders = []
    jobs = int(os.environ.get("TARN_JOBS", os.cpu_count()))
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for result in pool.map(lambda item: examine(build, item[0], known, item[1]), work):
            if result:
                offenders.append(result)
    print(f"{len(work)} of {total} files examined")
    tree.finish(offenders, "nothing for clang-tidy to say")


main()
