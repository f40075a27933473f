"""A PostgreSQL server of a test's own, on a socket in its own folder."""
import os
import shutil
import subprocess
from pathlib import Path

PROGRAMS = Path("/usr/lib/postgresql/15/bin")
# A server refuses to be run by the superuser.
AS_SERVER = ["setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups"] if os.getuid() == 0 else []


class PostgresServer:
    @staticmethod
    def is_there():
        """Whether this user can run one."""
        return (PROGRAMS / "initdb").exists() and (
            not AS_SERVER or subprocess.run([*AS_SERVER, "true"], capture_output=True,
                                            check=False).returncode == 0)

    def __init__(self, folder, settings=()):
        """Makes a new one in a folder that is not there, and waits until it answers."""
        self.folder = folder
        folder.mkdir(exist_ok=True)
        if AS_SERVER:
            shutil.chown(folder, "postgres", "postgres")
        self.run("initdb", "-D", folder, "-A", "trust", "-U", "tester", "--no-sync", "-E", "UTF8",
                 "--locale", "C.UTF-8", "--wal-segsize=1")
        with open(folder / "postgresql.conf", "a", encoding="utf-8") as file:
            file.write("\n".join(["listen_addresses = ''", "fsync = off", "min_wal_size = 2MB",
                                  f"unix_socket_directories = '{folder}'", *settings, ""]))
        self.start()

    def run(self, program, *words):
        subprocess.run([*AS_SERVER, PROGRAMS / program, *words], check=True, cwd="/",
                       stdout=subprocess.DEVNULL)

    def start(self):
        self.run("pg_ctl", "-D", self.folder, "-w", "-l", self.folder / "log", "start")

    def stop(self):
        """As a power cut does."""
        self.run("pg_ctl", "-D", self.folder, "-w", "-m", "immediate", "stop")

    def connection(self, database="postgres"):
        return f"host='{self.folder}' user=tester dbname={database}"

    def ask(self, sql, database="postgres"):
        """What psql prints: a row a line, fields divided by bars; nothing where the server says no."""
        return subprocess.run([PROGRAMS / "psql", "-q", "-X", "-A", "-t", "-d", self.connection(database),
                               "-c", sql], capture_output=True, text=True, check=False).stdout
