#!/usr/bin/env python3
"""The packages are built from a build folder, hold what they must, and their scripts do as they say.

Usage: packages.py BUILD_FOLDER"""
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
from pathlib import Path

import tree

PACKAGING = tree.ROOT / "packaging"
PROGRAM_FILES = ["tarnprep", "tarnreview", "libtarnhelp.so", "libtarnplots.so", "fcdtool", "FCD.new", "fcdname.dat", "TARNPlus.hlp", "Costs"]
PORTABLE_FILES = PROGRAM_FILES + [
    "jetdoctor", "jetdump", "jetsql", "libjetsql.so", "libtarnpdf.so", "translations/tarnprep_en.qm", "share/man/man1/fcdtool.1", "share/bash-completion/completions/fcdtool", "install", "uninstall", "qt.conf", "lib/libQt6Core.so.6",
    "lib/libsqlite3.so.0", "lib/libxcb-icccm.so.4", "lib/libxkbcommon-x11.so.0",
    "lib/libfontconfig.so.1", "lib/libxlsxwriter.so.4", "lib/libQCustomPlotQt6.so.2.1", "LICENSE.charts", "plugins/platforms/libqxcb.so",
    "plugins/printsupport/libcupsprintersupport.so", "fonts/DejaVuSans.ttf"]
BROUGHT = ["FCD.new", "fcdname.dat", "TARNPlus.hlp"]  # into each user's folder
DEB_FILES = ["usr/bin/tarnprep", "usr/bin/jetdoctor", "usr/bin/fcdtool", "usr/lib/tarnprep/FCD.new",
             "usr/bin/jetsql", "usr/bin/jetdump",
             "usr/lib/tarnprep/libjetsql.so", "usr/lib/tarnprep/libtarnpdf.so", "usr/lib/tarnprep/TARNPlus.hlp",
             "usr/lib/tarnprep/translations/tarnprep_en.qm", "usr/share/metainfo/org.tarnprep.tarnprep.metainfo.xml",
             "usr/share/icons/hicolor/48x48/apps/tarnreview.png", "usr/share/doc/tarnprep/copyright",
             "usr/share/applications/tarnprep.desktop", "usr/share/mime/packages/tarnprep.xml",
             "usr/share/man/man1/tarnprep.1.gz",
             "usr/bin/tarnreview", "usr/lib/tarnprep/libtarnplots.so",
             "usr/share/applications/tarnreview.desktop", "usr/share/man/man1/tarnreview.1.gz",
             "usr/share/man/man1/fcdtool.1.gz", "usr/share/man/man1/jetsql.1.gz",
             "usr/share/bash-completion/completions/fcdtool"]

offenders = []


def require(condition, promise):
    if not condition:
        offenders.append(promise)


def run(*command, **environment):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True,
                          check=False, env={**os.environ, **environment})


def build(kind, out):
    done = run(PACKAGING / kind / "build.sh", tree.ROOT, out, "0.0.0")
    require(done.returncode == 0, f"{kind}/build.sh: {done.stderr.strip()[-400:]}")
    return Path(done.stdout.strip().splitlines()[-1]) if done.returncode == 0 else None


def portable(folder, out):
    archive = build("portable", out)
    if archive is None:
        return
    place = folder / "My programs"
    with tarfile.open(archive) as packed:
        packed.extractall(place)
    program = place / "TARNPrep-0.0.0"
    for name in PORTABLE_FILES:
        require((program / name).exists(), f"the portable archive lacks {name}")
    missing = "".join(run("ldd", program / part, LD_LIBRARY_PATH="").stdout
                      for part in ["tarnprep", "tarnreview", "libtarnhelp.so", "libtarnplots.so", "fcdtool"])
    require("not found" not in missing, "the portable program finds all libraries")
    outside = [line for line in missing.splitlines()
               if "libQt6" in line and str(program) not in line]
    require(not outside, f"the portable program takes Qt from elsewhere: {outside}")
    installation(folder, program)


def installation(folder, program):
    data = folder / "data home"
    kept = program / "Costs/kept.fcd"
    kept.write_text("a user's file")
    installed = run(program / "install", XDG_DATA_HOME=str(data), HOME=str(folder))
    require(installed.returncode == 0, f"install: {installed.stderr}")
    entry = data / "applications/tarnprep.desktop"
    text = entry.read_text() if entry.exists() else ""
    require(f'\nExec="{program}/tarnprep" %f\n' in text, "install: the menu entry names the program")
    if entry.exists():
        told = run("desktop-file-validate", entry)
        require(told.returncode == 0, f"install: {told.stdout}")
    icons = list((data / "icons").rglob("*tarn*"))
    require(len(icons) >= 10, "install: icons")
    removed = run(program / "uninstall", XDG_DATA_HOME=str(data), HOME=str(folder))
    require(removed.returncode == 0, f"uninstall: {removed.stderr}")
    left = [path for path in data.rglob("*tarn*") if path.is_file()]
    require(not left, f"uninstall leaves {left}")
    require(kept.exists() and (program / "tarnprep").exists(), "uninstall keeps the folder")


def deb(out):
    if not (shutil.which("dpkg-deb") and shutil.which("fakeroot") and
            shutil.which("dpkg-shlibdeps")):
        print("skipped: the Debian package, whose tools are not installed")
        return
    package = build("deb", out)
    if package is None:
        return
    names = run("dpkg-deb", "--contents", package).stdout
    for name in DEB_FILES:
        require(re.search(rf" \./{re.escape(name)}$", names, re.M), f"the package lacks {name}")
    control = run("dpkg-deb", "--field", package, "Depends").stdout
    for name in ["libqt6widgets6", "libsqlite3-0", "libxlsxwriter4", "libqcustomplot2.1-qt6"]:
        require(name in control, f"the package does not depend on {name}")


class Launcher:
    """The Debian launcher with a pattern folder whose program only says what it was given."""

    def __init__(self, folder):
        self.pattern = folder / "lib/tarnprep"
        (folder / "bin").mkdir()
        (self.pattern / "Costs").mkdir(parents=True)
        (self.pattern / "Costs/Sample.fcd").write_text("sample")
        for name in ["libtarnhelp.so", "tarnreview", "fcdtool", *BROUGHT]:
            (self.pattern / name).write_text(name)
        (self.pattern / "tarnreview").write_text('#!/bin/sh\necho "review|$*"\n')
        (self.pattern / "tarnreview").chmod(0o755)
        self.release("1")
        self.script = folder / "bin/tarnprep"
        shutil.copy(PACKAGING / "launcher", self.script)
        self.home = folder / "a home"

    def release(self, version):
        program = self.pattern / "tarnprep"
        program.write_text(f'#!/bin/sh\necho "{version}|$*|$TARNPREP_HOME"\n')
        program.chmod(0o755)
        (self.pattern / "VERSION").write_text(version)
        for name in BROUGHT:
            (self.pattern / name).write_text(f"{name} of {version}")

    def start(self, *arguments, **environment):
        # Without the desktop's tools, whose message windows would wait for somebody.
        here = {"HOME": str(self.home), "TARNPREP_HOME": "", "DISPLAY": "", "WAYLAND_DISPLAY": ""}
        return run("sh", self.script, *arguments, **{**here, **environment})


def after_earlier_release(started, program):
    """A folder from the time when the program ran in it and no account was kept."""
    (program / ".installed").unlink(missing_ok=True)
    for name in ["tarnprep", "libtarnhelp.so", "fcdname.dat"]:
        (program / name).write_text("earlier")
        (program / name).chmod(0o755 if name != "fcdname.dat" else 0o644)
    started.start()
    require(not (program / "tarnprep").exists(), "launcher: the earlier program is taken away")
    require((program / "fcdname.dat.old").read_text() == "earlier",
            "launcher: a file of unknown origin is kept beside the new one")


def launcher(folder):
    started = Launcher(folder)
    program = started.home / "TARNPrep"
    first = started.start("My  unit.fcd")
    require(first.stdout == f"1|My  unit.fcd|{program}\n", f"launcher: first start: {first}")
    require((program / "Costs/Sample.fcd").exists(), "launcher: the samples come along")
    (program / "Costs/Sample.fcd").unlink(missing_ok=True)
    (program / "Costs/Mine.fcd").write_text("mine")
    (program / "FCD.new").write_text("with names of our own")
    started.release("2")
    second = started.start()
    require(second.stdout == f"2||{program}\n", f"launcher: after an upgrade: {second}")
    require((program / "Costs/Mine.fcd").exists(), "launcher: an upgrade keeps the user's files")
    require(not (program / "Costs/Sample.fcd").exists(), "launcher: deleted samples stay deleted")
    require((program / "FCD.new").read_text() == "with names of our own",
            "launcher: an upgrade keeps a file that the user has changed")
    require((program / "fcdname.dat").read_text() == "fcdname.dat of 2",
            "launcher: an upgrade brings what the user has not changed")
    after_earlier_release(started, program)
    runnable = [path for path in program.rglob("*") if path.is_file() and os.access(path, os.X_OK)]
    require(not runnable, f"launcher: executables in the user's folder: {runnable}")
    review = started.script.with_name("tarnreview")
    review.symlink_to(started.script)
    started.script = review
    third = started.start("One.fcd")
    require(third.stdout == "review|One.fcd\n", f"launcher: the other program: {third}")
    refused = started.start(TARNPREP_HOME="/dev/null/folder")
    require(refused.returncode == 1 and "cannot be written" in refused.stderr,
            f"launcher: says why it cannot start: {refused}")


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        launcher(folder)
        out = folder / "out"
        out.mkdir()
        (out / "build").symlink_to(Path(sys.argv[1]).resolve())
        if all((out / "build/TARNPrep" / part).exists() for part in PROGRAM_FILES):
            portable(folder, out)
            deb(out)
        else:
            print("skipped: the packages, since the program is not built")
    tree.finish(offenders, "packages that hold what they must")


main()
