#!/usr/bin/env python3
"""Every value of a roll-up, in each kind of destination, is the one that other programs read from the
data files: mdb-export the tables, the standard library the hashes.

Usage: independent_test.py FCDTOOL ROLLUP_FILES [COUNT [FOLDER]]

With COUNT so many files of usual size are looked at, else 60 small ones; they lie in FOLDER where it
has files already."""
import gzip
import hashlib
import re
import shutil
import sqlite3
import struct
import subprocess
import sys
import tempfile
from collections import Counter
from functools import lru_cache
from pathlib import Path

from postgres_server import PostgresServer

FIRST_YEAR = 17  # of the made files' names
TABLES = {
    "properties": "Properties", "goals": "ManagementGoals", "resources": "SRMasterList",
    "zones": "FMZList", "costs": "SuppressionPerAcreCost", "nvc_resources": "NVCResources",
    "nvc": "NVCPerAcre"}
COLUMNS = {
    "files": "file_id path sha256 bytes format jet unit state year unit_name status",
    "properties": "property value", "goals": "number area explanation",
    "resources": "sequence long_name short_name units unit_type cost", "zones": "zone name rl_count",
    "costs": "zone class top_size cost", "nvc_resources": "resource name",
    "nvc": "zone location resource fil1 fil2 fil3 fil4 fil5 fil6 live"}
NUMBERS = {"cost", "top_size", "fil1", "fil2", "fil3", "fil4", "fil5", "fil6"}
NAME = re.compile(r"(...)([A-Za-z]{2})(\d\d)")


@lru_cache(maxsize=1 << 16)
def number(text):
    """As mdb-export writes it, eight digits; a number that is no single stays unlike any of these."""
    value = float(text)
    single = struct.unpack("f", struct.pack("f", value))[0]
    return f"{value:.8g}" if single == value else f"{value!r}, which is no single"


FIELD = re.compile(r'(?:"((?:[^"]|"")*)"|([^,\n]*))([,\n])')


def records(text):
    """The rows of CSV: None for nothing, a text for what stands in quotes or is something."""
    row = []
    for quoted, plain, end in (field.groups() for field in FIELD.finditer(text)):
        row.append(plain or None if quoted is None else quoted.replace('""', '"'))
        if end == "\n":
            yield row
            row = []


def normal(columns, row):
    return tuple(value if value is None else number(value) if column in NUMBERS
                 else "true" if value == "t" else "false" if value == "f" else str(value)
                 for column, value in zip(columns, row, strict=True))


def exported(file, table):
    text = subprocess.run(["mdb-export", file, table], capture_output=True, check=True).stdout.decode()
    heading, *rows = records(text)
    return [dict(zip(heading, row, strict=True)) for row in rows]


@lru_cache(maxsize=1 << 16)
def single(text):
    """mdb-export rounds to eight digits, so the nearest single is meant."""
    return text if text is None else number(struct.unpack("f", struct.pack("f", float(text)))[0])


class DataFile:
    """A data file as other programs read it."""

    def __init__(self, path):
        self.path = path
        content = path.read_bytes()
        self.sha256 = hashlib.sha256(content).hexdigest()
        self.file_id, self.bytes = self.sha256[:16], len(content)
        self.unit, self.state, year = NAME.fullmatch(path.stem).groups()
        self.year = 2000 + int(year)
        unit = (ord(self.unit[0]) - ord("A")) * 100 + int(self.unit[1:])
        self.is_cut = (unit * 10 + int(year) - FIRST_YEAR) % 100 in (13, 55)

    def rows(self):
        """Of each table but `files`."""
        tables = {ours: exported(self.path, theirs) for ours, theirs in TABLES.items()}
        live = {row["Key"]: min(int(row["RLCount"] or 0), 99) for row in tables["zones"]}
        rows = {"nvc": []}
        for row in tables["nvc"]:
            zone, location = divmod(int(row["FMZRLKey"]), 100)
            rows["nvc"].append((str(zone), str(location), row["ResourceNumber"],
                                *(single(row[f"FIL{fil}"]) for fil in range(1, 7)),
                                str(location <= live.get(str(zone), 0)).lower()))
        rows["costs"] = [(row["FMZKey"], row["Sequence"], single(row["TopSize"]), single(row["Cost"]))
                         for row in tables["costs"]]
        rows["resources"] = [(row["Sequence"], row["LongName"], row["ShortName"], row["Units"],
                              row["UnitType"], single(row["Cost"])) for row in tables["resources"]]
        for ours in ("properties", "goals", "zones", "nvc_resources"):
            rows[ours] = [tuple(row.values()) for row in tables[ours]]
        return rows

    def row(self, properties, status):
        jet = subprocess.run(["mdb-ver", self.path], capture_output=True, text=True,
                             check=False).stdout.strip()[-1:]
        known = dict(properties)
        return (self.file_id, str(self.path), self.sha256, str(self.bytes), known.get("DataFormatID"),
                jet if properties else None, self.unit, self.state, str(self.year),
                known.get("UnitName"), status)


class Sqlite:
    def __init__(self, folder):
        self.file = folder / "it.sqlite"
        self.to = f"sqlite:{self.file}"

    def open(self):
        self.connection = sqlite3.connect(self.file)

    def rows(self, table, file):
        columns = COLUMNS[table].split()
        key = "path" if table == "files" else "file_id"
        return [normal(columns, [None if v is None else ("f", "t")[v] if c == "live" else v
                                 for c, v in zip(columns, row, strict=True)])
                for row in self.connection.execute(
                    f"SELECT {', '.join(columns)} FROM {table} WHERE {key} = ?",
                    [str(file.path) if table == "files" else file.file_id])]

    def count(self, table):
        return self.connection.execute(f"SELECT count(*) FROM {table}").fetchone()[0]


class Csv:
    def __init__(self, folder):
        self.folder = folder / "csv"
        self.to = f"csv:{self.folder}"

    def open(self):
        pass

    def rows(self, table, file):
        name = hashlib.sha256(str(file.path).encode()).hexdigest()[:16]
        name = name if table == "files" else file.file_id
        found = []
        for place in self.folder.glob(f"{table}/year=*/{name}.csv.gz"):
            heading, *rows = records(gzip.open(place, "rt", newline="", encoding="utf-8").read())
            for row in rows:
                named = dict(zip(heading, row, strict=True))
                named["year"] = place.parent.name.removeprefix("year=")
                found.append(normal(COLUMNS[table].split(), [named[c] for c in COLUMNS[table].split()]))
        return found

    def count(self, table):
        return sum(len(list(records(gzip.open(place, "rt", newline="", encoding="utf-8").read()))) - 1
                   for place in self.folder.glob(f"{table}/year=*/*.csv.gz"))


class Postgres:
    def __init__(self, folder):
        self.server = PostgresServer(folder / "server")
        self.to = f"postgresql:{self.server.connection()}"
        self.tables = {}

    def open(self):
        for table, columns in COLUMNS.items():
            key = "path" if table == "files" else "file_id"
            text = self.server.ask(f"COPY (SELECT {key}, {', '.join(columns.split())} FROM {table}) "
                                   "TO STDOUT (FORMAT csv, FORCE_QUOTE *)")
            self.tables[table] = {}
            for row in records(text):
                self.tables[table].setdefault(row[0], []).append(row[1:])

    def rows(self, table, file):
        key = str(file.path) if table == "files" else file.file_id
        return [normal(COLUMNS[table].split(), row) for row in self.tables[table].get(key, [])]

    def count(self, table):
        return sum(map(len, self.tables[table].values()))


class Comparison:
    def __init__(self, destinations):
        self.destinations = destinations
        self.failures, self.values = [], 0
        self.seen, self.total = {}, Counter()

    def file(self, file):
        first = self.seen.setdefault(file.file_id, file)
        status = "refused" if file.is_cut else "read" if first is file else "duplicate"
        rows = {} if file.is_cut else file.rows()
        wanted = {"files": [file.row(rows.get("properties", ()), status)]}
        if status == "read":
            wanted.update(rows)
        for table, each in wanted.items():
            self.total[table] += len(each)
            for destination in self.destinations:
                found = destination.rows(table, file)
                self.values += sum(map(len, found))
                if Counter(found) != Counter(each):
                    self.fail(destination, f"{table} of {file.path.name}", found, each)

    def fail(self, destination, what, found, wanted):
        more = list((Counter(found) - Counter(wanted)).elements())[:3]
        less = list((Counter(wanted) - Counter(found)).elements())[:3]
        self.failures.append(f"{destination.to}: {what}: {more} in place of {less}")

    def totals(self):
        """Nothing else is there."""
        for destination in self.destinations:
            for table, count in self.total.items():
                if destination.count(table) != count:
                    self.failures.append(f"{destination.to}: {destination.count(table)} rows of {table} "
                                         f"in place of {count}")


def compare(tool, source, folder):
    destinations = [Sqlite(folder), Csv(folder)]
    if PostgresServer.is_there():
        destinations.append(Postgres(folder))
    else:
        print("skipped: PostgreSQL, which is not installed or cannot be run by this user")
    try:
        for destination in destinations:
            done = subprocess.run([tool, "rollup", source, "--to", destination.to], capture_output=True,
                                  text=True, check=False)
            if done.returncode != 1:
                return [f"{destination.to}: {done}"]
            destination.open()
        comparison = Comparison(destinations)
        files = sorted(path for path in source.glob("*/*") if path.suffix.lower() == ".fcd")
        for path in files:
            comparison.file(DataFile(path))
        comparison.totals()
        print(f"{len(files)} files, {comparison.values} values")
        return comparison.failures
    finally:
        for destination in destinations:
            if isinstance(destination, Postgres):
                destination.server.stop()


def main():
    tool, maker, *rest = sys.argv[1:]
    if shutil.which("mdb-export") is None:
        print("skipped: mdbtools is not installed")
        return 77
    with tempfile.TemporaryDirectory(prefix="tarn test ") as name:
        folder = Path(name)
        folder.chmod(0o755)
        source = Path(rest[1]) if len(rest) > 1 else folder / "files"
        if not source.exists():
            subprocess.run([maker, source, *(rest[:1] or ["60", "--small"])], check=True)
        failures = compare(tool, source.resolve(), folder)
    for failure in failures[:20]:
        print(failure)
    print("kept: every value is the one in its file" if not failures
          else f"{len(failures)} differences")
    return 1 if failures else 0


sys.exit(main())
