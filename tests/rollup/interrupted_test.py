#!/usr/bin/env python3
"""Runs of the roll-up that are killed, stopped, doubled or out of disk leave whole files, and the
next one goes on.

Usage: interrupted_test.py FCDTOOL ROLLUP_FILES"""
import gzip
import os
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TABLES = ["files", "properties", "goals", "resources", "zones", "costs", "nvc_resources", "nvc"]
FILES = 60
failures = []


def require(condition, promise):
    if not condition:
        failures.append(promise)


def wait_for(condition, process):
    """Until the condition holds, or the process has ended; whether it held."""
    while process.poll() is None:
        if condition():
            return True
        time.sleep(0.002)
    return False


def files_in_sqlite(path):
    try:
        connection = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
        try:
            return connection.execute("SELECT count(*) FROM files").fetchone()[0]
        finally:
            connection.close()
    except sqlite3.Error:
        return 0


def dump_sqlite(path):
    connection = sqlite3.connect(path)
    try:
        require(connection.execute("PRAGMA integrity_check").fetchone()[0] == "ok", "a sound file")
        return {table: sorted(map(repr, connection.execute(f"SELECT * FROM {table}")))
                for table in TABLES}
    finally:
        connection.close()


def files_in_csv(path):
    return len(list(path.glob("files/year=*/*.csv.gz")))


def dump_csv(path):
    return {table: {str(file.relative_to(path)): gzip.decompress(file.read_bytes())
                    for file in path.glob(f"{table}/year=*/*.csv.gz")} for table in TABLES}


DESTINATIONS = [("sqlite", files_in_sqlite, dump_sqlite), ("csv", files_in_csv, dump_csv)]


class Runs:
    def __init__(self, tool, source, folder):
        self.tool, self.source, self.folder = tool, source, folder
        self.made = 0

    def new(self):
        self.made += 1
        return self.folder / f"destination {self.made}"

    def start(self, kind, to, **options):
        return subprocess.Popen([self.tool, "rollup", self.source, "--to", f"{kind}:{to}"],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)

    def whole(self, kind, to):
        process = self.start(kind, to)
        words = process.communicate()[0]
        require(process.returncode == 1, f"{kind}: a run ends with the refused files: {words}")
        return words


def interrupted(runs, kind, count, dump, wanted):
    for number in (2, FILES // 2):
        for end in (signal.SIGKILL, signal.SIGINT):
            to = runs.new()
            process = runs.start(kind, to)
            held = wait_for(lambda at=to, n=number: count(at) >= n, process)
            process.send_signal(end)
            words = process.communicate()[0]
            if held and end == signal.SIGINT and process.returncode != 1:
                require(process.returncode == 2 and "Stopped." in words, f"{kind}: stopped: {words}")
            again = runs.whole(kind, to)
            require("unchanged" in again, f"{kind}: it goes on where it was: {again}")
            require(dump(to) == wanted, f"{kind}: the same rows after {end.name} at {number}")


def doubled(runs, kind, dump, wanted):
    to = runs.new()
    both = [runs.start(kind, to), runs.start(kind, to)]
    for process in both:
        words = process.communicate()[0]
        require(process.returncode == 1, f"{kind}: two runs at once: {words}")
    require(dump(to) == wanted, f"{kind}: two runs at once do not mix")


def disk_full(runs, kind, count):
    """In a name space of its own, a disk of a megabyte."""
    to = runs.new()
    to.mkdir()
    line = ('mount -t tmpfs -o size=1m none "$1" || exit 77; "$2" rollup "$3" --to "$4:$1/it"; '
            'echo "status $?"; mount -o remount,size=100m "$1"; '
            '"$2" rollup "$3" --to "$4:$1/it"; echo "status $?"; cp -r "$1/it" "$5"')
    kept = runs.new()
    done = subprocess.run(["unshare", "-m", "sh", "-c", line, "sh", to, runs.tool, runs.source, kind,
                           kept], capture_output=True, text=True, check=False)
    if "status" not in done.stdout:
        print("skipped: a full disk, since this user may mount none")
        return None
    require("status 2" in done.stdout and "status 1" in done.stdout,
            f"{kind}: a full disk ends the run, and the next one goes on: {done}")
    require(count(kept) == FILES, f"{kind}: all files are there after a full disk")
    return kept


def main():
    tool, maker = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="tarn test ") as name:
        folder = Path(name)
        source = folder / "files"
        subprocess.run([maker, source, str(FILES), "--small"], check=True)
        runs = Runs(tool, source, folder)
        for kind, count, dump in DESTINATIONS:
            to = runs.new()
            runs.whole(kind, to)
            wanted = dump(to)
            require(count(to) == FILES, f"{kind}: each file has a row")
            interrupted(runs, kind, count, dump, wanted)
            doubled(runs, kind, dump, wanted)
            kept = disk_full(runs, kind, count)
            require(kept is None or dump(kept) == wanted, f"{kind}: the same rows after a full disk")
    for failure in failures:
        print(failure)
    print("kept: interrupted roll-ups go on" if not failures else f"{len(failures)} broken promises")
    return 1 if failures else 0


sys.exit(main())
