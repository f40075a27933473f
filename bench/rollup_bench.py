#!/usr/bin/env python3
"""Measures the roll-up: files and rows a second, memory, growth with the number of files, and beside it
the bare loading of the same rows, into SQLite by .import and into PostgreSQL by COPY.

Usage: rollup_bench.py BUILD_FOLDER [--files N] [--jobs N] [--in FOLDER] [--only PART,...]

The parts are csv (which makes the rows for bare loading as well), sqlite, postgres and check, each
with a tenth of the files before all of them. What is in FOLDER is kept and used by the next call, so
that the parts can be measured one by one. A server of its own is started where PostgreSQL 15 is
installed. Times are wall-clock seconds of one run, files in the system's cache."""
import argparse
import gzip
import math
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


class Bench:
    def __init__(self, arguments, folder):
        self.tool = Path(arguments.build) / "bin/fcdtool"
        self.maker = Path(arguments.build) / "bin/rollup_files"
        self.jobs = ["--jobs", arguments.jobs] if arguments.jobs else []
        self.count, self.folder = arguments.files, folder

    def files(self, count):
        source = self.folder / f"files {count}"
        if not source.exists():
            subprocess.run([self.maker, source, str(count)], check=True)
        return source

    def new(self, name):
        """A place for what is measured; what an earlier call left there goes."""
        place = self.folder / name
        if place.is_dir():
            shutil.rmtree(place)
        place.unlink(missing_ok=True)
        return place

    def rows(self):
        return int((self.folder / "rows").read_text())

    def roll(self, count, to):
        for file in self.files(count).rglob("*.*"):
            if file.is_file():
                file.read_bytes()  # into the system's cache
        return measured([self.tool, "rollup", self.files(count), "--to", to, *self.jobs],
                        stderr=subprocess.DEVNULL)

    def first_and_again(self, what, few, to, bare=None):
        """A tenth of the files to `few`, all of them to `to`, and these again."""
        tenth = self.count // 10
        small, memory = self.roll(tenth, few)
        shown(f"{what}, a tenth", small, tenth, self.rows() / 10, memory)
        first, memory = self.roll(self.count, to)
        shown(what, first, self.count, self.rows(), memory, bare)
        again, memory = self.roll(self.count, to)
        shown(f"{what} again", again, self.count, self.rows(), memory)
        print(f"{what}: grows as files^{math.log(first / small, self.count / tenth):.2f}, again "
              f"{first / again:.0f} times as fast", flush=True)

    def csv(self):
        (self.folder / "rows").write_text("0")
        self.first_and_again("CSV", f"csv:{self.new('few csv')}", f"csv:{self.new('csv')}")
        rows = plain_csv(self.folder, self.folder / "csv")
        (self.folder / "rows").write_text(str(rows))
        print(f"{rows} rows", flush=True)

    def sqlite(self):
        self.new("bare.sqlite")
        bare = bare_sqlite(self.folder, self.folder / "csv")
        shown(".import", bare, self.count, self.rows(), 0)
        self.first_and_again("SQLite", f"sqlite:{self.new('few.sqlite')}",
                             f"sqlite:{self.new('it.sqlite')}", bare)

    def postgres(self):
        if not (PROGRAMS / "initdb").exists():
            return
        self.new("server")
        server = Server(self.folder)
        try:
            server.run("createdb", "-h", server.folder, "-U", "tester", "few")
            bare = bare_postgres(self.folder, self.folder / "csv", server)
            shown("COPY", bare, self.count, self.rows(), 0)
            self.first_and_again("PostgreSQL", f"postgresql:{server.connection('few')}",
                                 f"postgresql:{server.connection('postgres')}", bare)
        finally:
            server.stop()

    def check(self):
        file = next(self.files(self.count).glob("*/*24.fcd"))
        for to in (f"sqlite:{self.folder / 'it.sqlite'}", f"csv:{self.folder / 'csv'}"):
            seconds, memory = measured([self.tool, "check", file, "--against", to])
            shown(f"check --against {to[:6]}", seconds, self.count, self.rows(), memory)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--files", type=int, default=1500)
    parser.add_argument("--jobs")
    parser.add_argument("--in", dest="where")
    parser.add_argument("--only", default="csv,sqlite,postgres,check")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="rollup bench ") as name:
        folder = Path(arguments.where or name)
        folder.mkdir(exist_ok=True)
        folder.chmod(0o755)
        bench = Bench(arguments, folder)
        print(f"{arguments.files} files", flush=True)
        for part in arguments.only.split(","):
            getattr(bench, part)()


main()
