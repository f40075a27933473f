#!/usr/bin/env python3
"""Measures the roll-up: files and rows a second, memory, growth, and beside it the bare loading of the
same rows, into SQLite by .import and into PostgreSQL by COPY.

Usage: rollup_bench.py BUILD_FOLDER [--files N] [--jobs N] [--in FOLDER]

A server of its own is started where PostgreSQL 15 is installed. Times are wall-clock seconds of one
run, files in the system's cache."""
import argparse
import gzip
import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

TABLES = ["files", "properties", "goals", "resources", "zones", "costs", "nvc_resources", "nvc"]
PROGRAMS = Path("/usr/lib/postgresql/15/bin")
AS_SERVER = ["setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups"] if os.getuid() == 0 else []


def measured(command, may_end=(0, 1), **options):
    """Seconds, and the most memory in MB."""
    begun = time.monotonic()
    process = subprocess.Popen([str(part) for part in command], stdout=subprocess.DEVNULL, **options)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.monotonic() - begun
    if os.waitstatus_to_exitcode(status) not in may_end:
        raise SystemExit(f"{command}: ended with {status}")
    return seconds, usage.ru_maxrss / 1024


class Server:
    def __init__(self, folder):
        self.folder = folder / "server"
        self.folder.mkdir()
        if AS_SERVER:
            shutil.chown(self.folder, "postgres", "postgres")
        self.run("initdb", "-D", self.folder, "-A", "trust", "-U", "tester", "--no-sync", "-E", "UTF8",
                 "--locale", "C.UTF-8")
        with open(self.folder / "postgresql.conf", "a", encoding="utf-8") as settings:
            settings.write(f"listen_addresses = ''\nunix_socket_directories = '{self.folder}'\n"
                           "max_wal_size = 4GB\n")
        self.run("pg_ctl", "-D", self.folder, "-w", "-l", self.folder / "log", "start")

    def run(self, program, *words):
        subprocess.run([*AS_SERVER, PROGRAMS / program, *words], check=True, cwd="/",
                       stdout=subprocess.DEVNULL)

    def connection(self, database):
        return f"host='{self.folder}' user=tester dbname={database}"

    def stop(self):
        self.run("pg_ctl", "-D", self.folder, "-w", "-m", "fast", "stop")


def psql(connection, sql, **options):
    return [PROGRAMS / "psql", "-q", "-X", "-v", "ON_ERROR_STOP=1", "-d", connection, "-c", sql]


def plain_csv(folder, csv):
    """Each table of a CSV roll-up as one file with its year, for the bare loaders."""
    rows = 0
    for table in TABLES:
        with open(folder / f"{table}.csv", "wb") as to:
            for file in sorted(csv.glob(f"{table}/year=*/*.csv.gz")):
                year = file.parent.name.removeprefix("year=").replace("unknown", "")
                for number, line in enumerate(gzip.open(file)):
                    if number > 0:
                        to.write(year.encode() + b"," + line)
                        rows += 1
    return rows


def columns(csv, table):
    with gzip.open(next(csv.glob(f"{table}/year=*/*.csv.gz")), "rt") as file:
        return ["year", *file.readline().strip().split(",")]


def bare_sqlite(folder, csv):
    lines = ["PRAGMA journal_mode = WAL;", "PRAGMA synchronous = NORMAL;", ".mode csv"]
    for table in TABLES:
        names = ", ".join(name + (" REAL" if name.startswith("fil") and name[3:].isdigit() else "")
                          for name in columns(csv, table))
        lines += [f"CREATE TABLE {table} ({names});", f".import '{folder / table}.csv' {table}"]
    script = folder / "import.sql"
    script.write_text("\n".join(lines))
    with open(script, encoding="utf-8") as commands:
        return measured(["sqlite3", folder / "bare.sqlite"], stdin=commands)[0]


def bare_postgres(folder, csv, server):
    server.run("createdb", "-h", server.folder, "-U", "tester", "bare")
    connection = server.connection("bare")
    seconds = 0.0
    for table in TABLES:
        names = columns(csv, table)
        types = ", ".join(name + (" double precision" if name in ("cost", "top_size") or
                                  name.startswith("fil") and name[3:].isdigit() else " text")
                          for name in names)
        subprocess.run(psql(connection, f"CREATE TABLE {table} ({types})"), check=True)
        seconds += measured(psql(connection, f"\\copy {table} FROM '{folder / table}.csv' CSV"),
                            may_end=(0,))[0]
    return seconds


def shown(what, seconds, files, rows, memory, bare=None):
    ratio = "" if bare is None else f"  {seconds / bare:5.2f} x bare"
    print(f"{what:24} {seconds:8.2f} s {files / seconds:8.0f} files/s {rows / seconds:10.0f} rows/s "
          f"{memory:6.0f} MB{ratio}", flush=True)


def question(arguments, folder, source, files):
    tool = Path(arguments.build) / "bin/fcdtool"
    jobs = ["--jobs", arguments.jobs] if arguments.jobs else []

    def roll(to):
        return measured([tool, "rollup", source, "--to", to, *jobs], stderr=subprocess.DEVNULL)

    csv = folder / "csv"
    seconds, memory = roll(f"csv:{csv}")
    rows = plain_csv(folder, csv)
    shown("CSV", seconds, files, rows, memory)
    shown("CSV again", *roll(f"csv:{csv}")[:1], files, rows, roll(f"csv:{csv}")[1])
    bare = bare_sqlite(folder, csv)
    shown(".import", bare, files, rows, 0)
    for what in ("SQLite", "SQLite again"):
        seconds, memory = roll(f"sqlite:{folder / 'it.sqlite'}")
        shown(what, seconds, files, rows, memory, bare)
    if (PROGRAMS / "initdb").exists():
        server = Server(folder)
        try:
            bare = bare_postgres(folder, csv, server)
            shown("COPY", bare, files, rows, 0)
            for what in ("PostgreSQL", "PostgreSQL again"):
                seconds, memory = roll(f"postgresql:{server.connection('postgres')}")
                shown(what, seconds, files, rows, memory, bare)
        finally:
            server.stop()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--files", type=int, default=1500)
    parser.add_argument("--jobs")
    parser.add_argument("--in", dest="where")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="rollup bench ", dir=arguments.where) as name:
        folder = Path(name)
        folder.chmod(0o755)
        source = folder / "files"
        subprocess.run([Path(arguments.build) / "bin/rollup_files", source, str(arguments.files)],
                       check=True)
        print(f"{arguments.files} files", flush=True)
        question(arguments, folder, source, arguments.files)


main()
