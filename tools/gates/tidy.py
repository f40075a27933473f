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
import tempfile
from collections import defaultdict
from pathlib import Path

import tree

# Files of a folder are examined together, as most of the time goes to the headers that all of them read.
TOGETHER = 10
# No other code includes files like these; what is found in them counts wherever they lie.
OF_TOGETHER = ("--checks=-bugprone-suspicious-include", f"--header-filter=^{re.escape(str(tree.ROOT))}/")


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


class Source:
    """A file and how it is compiled; a file of several targets counts with the first of them."""

    def __init__(self, entry):
        self.path = Path(entry["file"])
        self.command = entry["command"]
        self.folder = entry["directory"]
        self.output = re.search(r" -o (\S+)", self.command)[1]

    def options(self):
        """What files have in common that can be examined together."""
        return re.sub(r" -o \S+| -c \S+", "", self.command), self.path.parent


def sources(build, wanted):
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = Path(entry["file"])
        if path.is_relative_to(build) or not path.is_relative_to(tree.ROOT):
            continue
        if tree.name(path).startswith("tests/") and not wanted:
            continue
        if wanted and path.resolve() not in wanted:
            continue
        found.setdefault(path, Source(entry))
    return list(found.values())


def version():
    return subprocess.run(["clang-tidy", "--version"], capture_output=True, check=False).stdout


def fingerprint(source, headers, judge):
    digest = hashlib.sha256(judge)
    digest.update((tree.ROOT / ".clang-tidy").read_bytes())
    # How far the compiler optimizes changes nothing for clang-tidy, nor where the clone is.
    told = [word for word in source.command.replace(str(tree.ROOT), "").split()
            if not word.startswith(("-O", "-g")) and word != "-DNDEBUG"]
    digest.update(" ".join(told).encode())
    for part in sorted({source.path, *headers}):
        digest.update(tree.name(part).encode() + part.read_bytes())
    return digest.hexdigest()


def judged(path, entry, *options):
    """What clang-tidy says of a file that is compiled as the entry says; None where that is nothing."""
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
        run = subprocess.run(["clang-tidy", "--quiet", "-p", folder, f"--config-file={tree.ROOT}/.clang-tidy",
                              *options, str(path)], capture_output=True, text=True, check=False)
    if run.returncode == 0 and "warning:" not in run.stdout:
        return None
    return run.stdout + ("" if run.stdout.strip() else run.stderr)


def examined(group):
    """The findings in files of one folder. Those that cannot be read as one, because names that each keeps
    to itself are the same, and those with a finding, are examined in halves, in the end each alone."""
    first = group[0]
    if len(group) == 1:
        found = judged(first.path, {"file": str(first.path), "command": first.command,
                                    "directory": first.folder})
        return [found] if found else []
    with tempfile.NamedTemporaryFile("w", suffix=".cpp", encoding="utf-8") as whole:
        whole.write("".join(f'#include "{source.path}"\n' for source in group))
        whole.flush()
        command = first.command.replace(f" -c {first.path}", f" -c {whole.name}")
        if not judged(whole.name, {"file": whole.name, "command": command, "directory": first.folder},
                      *OF_TOGETHER):
            return []
    half = len(group) // 2
    return examined(group[:half]) + examined(group[half:])


def groups(work):
    alike = defaultdict(list)
    for source in sorted(work, key=lambda source: source.path):
        alike[source.options()].append(source)
    for members in alike.values():
        parts = -(-len(members) // TOGETHER)
        size = -(-len(members) // parts)
        yield from (members[start:start + size] for start in range(0, len(members), size))


def main():
    build = Path(sys.argv[1]).resolve()
    wanted = {Path(name).resolve() for name in sys.argv[2:]}
    known = remembered()
    judge = version()
    headers = headers_of(build)
    listed = sources(build, wanted)
    keys = {source: fingerprint(source, headers.get(source.output, []), judge) for source in listed}
    work = [source for source in listed if not (known / keys[source]).exists()]
    offenders = []

    def look(group):
        found = examined(group)
        if not found:
            for source in group:
                (known / keys[source]).touch()
        return found

    jobs = int(os.environ.get("TARN_JOBS", os.cpu_count()))
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for found in pool.map(look, sorted(groups(work), key=len, reverse=True)):
            offenders += found
    print(f"{len(work)} of {len(listed)} files examined")
    tree.finish(offenders, "nothing for clang-tidy to say")


main()
