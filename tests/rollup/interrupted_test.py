#!/usr/bin/env python3
"""Runs of the roll-up that are killed, stopped, doubled, out of disk or without their server leave whole
files, and the next one goes on.

Usage: interrupted_test.py FCDTOOL ROLLUP_FILES [FAULTS_LIBRARY]"""
import gzip
import json
import os
import pty
import re
import signal
import sqlite3
import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from postgres_server import PostgresServer

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


class Sqlite:
    """One kind of destination: how to name one, how many files it has, and all that it has."""
    kind = "sqlite"

    def to(self, place):
        return f"sqlite:{place}"

    def count(self, place):
        try:
            connection = sqlite3.connect(f"file:{place}?mode=ro", uri=True)
            try:
                return connection.execute("SELECT count(*) FROM files").fetchone()[0]
            finally:
                connection.close()
        except sqlite3.Error:
            return 0

    def dump(self, place):
        connection = sqlite3.connect(place)
        try:
            require(connection.execute("PRAGMA integrity_check").fetchone()[0] == "ok", "a sound file")
            return {table: sorted(map(repr, connection.execute(f"SELECT * FROM {table}")))
                    for table in TABLES}
        finally:
            connection.close()


class Csv:
    kind = "csv"

    def to(self, place):
        return f"csv:{place}"

    def count(self, place):
        return len(list(place.glob("files/year=*/*.csv.gz")))

    def dump(self, place):
        return {table: {str(file.relative_to(place)): gzip.decompress(file.read_bytes())
                        for file in place.glob(f"{table}/year=*/*.csv.gz")} for table in TABLES}


class Postgres:
    """A place is a database of the server here."""
    kind = "postgresql"

    def __init__(self, server):
        self.server = server

    def to(self, place):
        name = place.name.replace(" ", "_")
        self.server.ask(f"CREATE DATABASE {name}")
        return f"postgresql:{self.server.connection(name)}"

    def ask(self, place, sql):
        return self.server.ask(sql, place.name.replace(" ", "_"))

    def count(self, place):
        return int(self.ask(place, "SELECT count(*) FROM files") or 0)

    def dump(self, place):
        return {table: sorted(self.ask(place, f"COPY (SELECT * FROM {table}) TO STDOUT").splitlines())
                for table in TABLES}


class Runs:
    def __init__(self, tool, source, folder):
        self.tool, self.source, self.folder = tool, source, folder
        self.made = 0

    def new(self):
        self.made += 1
        return self.folder / f"destination {self.made}"

    def start(self, destination, place, **options):
        return subprocess.Popen([self.tool, "rollup", self.source, "--to", destination.to(place)],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)

    def whole(self, destination, place):
        process = self.start(destination, place)
        words = process.communicate()[0]
        require(process.returncode == 1,
                f"{destination.kind}: a run ends with the refused files: {words}")
        return words


def goes_on(runs, destination, place, wanted, what):
    again = runs.whole(destination, place)
    require("unchanged" in again, f"{destination.kind}: it goes on where it was, {what}: {again}")
    require(destination.dump(place) == wanted, f"{destination.kind}: the same rows, {what}")


def interrupted(runs, destination, wanted):
    kind = destination.kind
    for number in (2, FILES // 2):
        for end in (signal.SIGKILL, signal.SIGINT):
            place = runs.new()
            process = runs.start(destination, place)
            held = wait_for(lambda at=place, n=number: destination.count(at) >= n, process)
            process.send_signal(end)
            words = process.communicate()[0]
            if held and end == signal.SIGINT and process.returncode != 1:
                require(process.returncode == 2 and "Stopped." in words, f"{kind}: stopped: {words}")
            goes_on(runs, destination, place, wanted, f"after {end.name} at {number}")


def doubled(runs, destination, wanted):
    place = runs.new()
    both = [runs.start(destination, place), runs.start(destination, place)]
    for process in both:
        words = process.communicate()[0]
        require(process.returncode == 1, f"{destination.kind}: two runs at once: {words}")
    require(destination.dump(place) == wanted, f"{destination.kind}: two runs at once do not mix")


def disk_full(runs, destination, wanted):
    """In a name space of its own, a disk of a megabyte."""
    place = runs.new()
    place.mkdir()
    line = ('mount -t tmpfs -o size=1m none "$1" || exit 77; "$2" rollup "$3" --to "$4:$1/it"; '
            'echo "status $?"; mount -o remount,size=100m "$1"; '
            '"$2" rollup "$3" --to "$4:$1/it"; echo "status $?"; cp -r "$1/it" "$5"')
    kept = runs.new()
    done = subprocess.run(["unshare", "-m", "sh", "-c", line, "sh", place, runs.tool, runs.source,
                           destination.kind, kept], capture_output=True, text=True, check=False)
    if "status" not in done.stdout:
        print("skipped: a full disk, since this user may mount none")
        return
    require("status 2" in done.stdout and "status 1" in done.stdout,
            f"{destination.kind}: a full disk ends the run, and the next one goes on: {done}")
    require(destination.dump(kept) == wanted, f"{destination.kind}: the same rows after a full disk")


def on_a_terminal(runs):
    """How far it is stands there once it takes noticeably long; Ctrl+C ends it with a sentence."""
    destination, place = Sqlite(), runs.new()
    # It says how far it is only after half a second of its own clock.
    begun = time.monotonic()
    pid, terminal = pty.fork()
    if pid == 0:
        os.execv(runs.tool, [runs.tool, "rollup", runs.source, "--to", destination.to(place)])
    while destination.count(place) < 2 and os.waitpid(pid, os.WNOHANG) == (0, 0):
        pass
    os.kill(pid, signal.SIGSTOP)
    # Nothing but that clock changes now.
    while time.monotonic() < begun + 1:
        pass
    os.kill(pid, signal.SIGCONT)
    words = ""
    try:
        while part := os.read(terminal, 4096):
            words += part.decode(errors="replace")
            if " left" in words and "\x03" not in words:
                os.write(terminal, b"\x03")
                words += "\x03"
    except OSError:
        pass  # the terminal's other end is closed
    status = os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])
    require(re.search(rf"\d+ of {FILES} files, \d+ rows a second, \d+ s left", words),
            f"a terminal shows how far it is: {words!r}")
    require(status == 1 or status == 2 and "Stopped." in words, f"Ctrl+C ends it: {status} {words!r}")


def never_flushed(runs, library, wanted):
    """What a disk has not taken counts as not written."""
    destination = Csv()
    board = runs.folder / "faults"
    for nth in (1, 100, 135, 150):
        for_good, flushes, io_error = 3, 2, 5
        board.write_bytes(struct.pack("6i232s", for_good, flushes, io_error, nth, 0, 0, b""))
        place = runs.new()
        process = runs.start(destination, place,
                             env={**os.environ, "LD_PRELOAD": library, "TARN_FAULTS": str(board)})
        words = process.communicate()[0]
        require(process.returncode == 2 and "disk" in words, f"a disk that fails ends the run: {words}")
        require(destination.count(place) == 0 or nth > 140, f"no file is named before flush {nth}")
        runs.whole(destination, place)
        require(destination.dump(place) == wanted, f"the same rows after flush {nth} failed")


def server_lost(runs, server, wanted):
    destination = Postgres(server)
    end_backend = ("SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                   "WHERE query LIKE 'COPY%' OR query LIKE 'COMMIT%'")
    for what, end, start in (
            ("after its connection was ended", lambda at: destination.ask(at, end_backend), None),
            ("after the server was killed", lambda at: server.stop(), server.start)):
        place = runs.new()
        process = runs.start(destination, place)
        wait_for(lambda at=place: destination.count(at) >= FILES // 3, process)
        while process.poll() is None:
            end(place)
            if start:
                break
        words = process.communicate()[0]
        require(process.returncode in (1, 2), f"postgresql: {what}: {process.returncode} {words}")
        require(process.returncode == 1 or "PostgreSQL reports: " in words, f"a sentence {what}: {words}")
        if start:
            start()
        goes_on(runs, destination, place, wanted, what)


def server_full(runs, wanted):
    """The same script again, in a name space of its own where it may mount a small disk."""
    report = runs.folder / "report"
    folder = runs.new()
    folder.mkdir()
    subprocess.run(["unshare", "-m", sys.executable, "-B", __file__, "on a small disk", runs.tool,
                    runs.source, folder, report], check=False)
    if not report.exists():
        print("skipped: a full disk of the server, since this user may mount none")
        return
    told = json.loads(report.read_text(encoding="utf-8"))
    require(told["first"][0] == 2 and "PostgreSQL reports: could not" in told["first"][1],
            f"postgresql: a full disk ends the run with a sentence: {told['first']}")
    require(told["then"][0] == 1, f"postgresql: with room it goes on: {told['then']}")
    require(told["rows"] == wanted, "postgresql: the same rows after a full disk")


def on_a_small_disk(tool, source, folder, report):
    mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=300m", "none", folder], check=False)
    if mounted.returncode != 0:
        return
    server = PostgresServer(Path(folder) / "server")
    try:
        destination = Postgres(server)
        runs = Runs(tool, source, Path(folder))
        place = runs.new()
        destination.to(place)
        used = int(subprocess.run(["du", "-sk", folder], capture_output=True, text=True,
                                  check=True).stdout.split()[0])

        def run(size):
            subprocess.run(["mount", "-o", f"remount,size={size}k", folder], check=True)
            process = runs.start(destination, place)
            words = process.communicate()[0]
            return process.returncode, words

        first = run(used + 1500)
        told = {"first": first, "then": run(300000), "rows": destination.dump(place)}
        Path(report).write_text(json.dumps(told), encoding="utf-8")
    finally:
        server.stop()


def every_kind(runs, library):
    for destination in (Sqlite(), Csv()):
        place = runs.new()
        runs.whole(destination, place)
        wanted = destination.dump(place)
        require(destination.count(place) == FILES, f"{destination.kind}: each file has a row")
        interrupted(runs, destination, wanted)
        doubled(runs, destination, wanted)
        disk_full(runs, destination, wanted)
    if library:
        never_flushed(runs, library[0], wanted)
    on_a_terminal(runs)


def with_server(runs):
    if not PostgresServer.is_there():
        print("skipped: PostgreSQL, which is not installed or cannot be run by this user")
        return
    server = PostgresServer(runs.folder / "server")
    try:
        destination = Postgres(server)
        place = runs.new()
        runs.whole(destination, place)
        wanted = destination.dump(place)
        require(destination.count(place) == FILES, "postgresql: each file has a row")
        interrupted(runs, destination, wanted)
        doubled(runs, destination, wanted)
        server_lost(runs, server, wanted)
    finally:
        server.stop()
    server_full(runs, wanted)


def main():
    if sys.argv[1] == "on a small disk":
        on_a_small_disk(*sys.argv[2:])
        return 0
    tool, maker, *library = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="tarn test ") as name:
        folder = Path(name)
        folder.chmod(0o755)
        source = folder / "files"
        subprocess.run([maker, source, str(FILES), "--small"], check=True)
        runs = Runs(tool, source, folder)
        every_kind(runs, library)
        with_server(runs)
    for failure in failures:
        print(failure)
    print("kept: interrupted roll-ups go on" if not failures else f"{len(failures)} broken promises")
    return 1 if failures else 0


sys.exit(main())
