#!/usr/bin/env python3
"""Builds the libraries that the programs need on Windows, each once, from the distribution's own source packages.

They lie in a cache outside the tree, one folder for each library, version and way of building; where one of these
changes, the library is built anew. The versions are those that this machine compiles its own programs with: the tools
of Qt that run here and the libraries that run there have to be of one version.

Prints the folders as CMake wants a list, and nothing else on standard output.
"""
import hashlib
import os
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOOLCHAIN = HERE / "mingw-w64.cmake"
COMPILER = "x86_64-w64-mingw32-g++-posix"
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "tarnprep" / "windows"
JOBS = os.environ.get("TARN_JOBS", str(os.cpu_count() or 2))


@dataclass
class Library:
    source: str  # the source package
    installed_as: str  # a package of it on this machine, which says the version
    options: list  # for CMake
    recipe: str = ""  # a folder here that says how it is built; without one its own does
    first: tuple = ()  # commands that have to run in its source
    upon: tuple = ()  # the libraries above it in the list that it is built upon


# What the programs use of Qt, and what cannot be built or told from what lies on this machine, left out.
QT_WITHOUT = ["dbus", "network", "sql", "xml", "concurrent", "system_zlib", "pkg_config", "vulkan", "tabletevent",
              "direct2d", "androiddeployqt", "gif", "jpeg"]
LIBRARIES = [
    Library("qt6-base", "qt6-base-dev",
            ["-DQT_HOST_PATH=/usr", "-DQT_BUILD_TESTS=OFF", "-DQT_BUILD_EXAMPLES=OFF", "-DINPUT_opengl=no"]
            + [f"-DFEATURE_{name}=OFF" for name in QT_WITHOUT],
            # These ask for a part of drawing text that is built with Direct2D only.
            first=(["sed", "-i", "-E", r"s/QT_CONFIG\(directwrite3?\)/QT_CONFIG(direct2d)/",
                    "src/printsupport/platform/windows/qprintengine_win.cpp",
                    "src/plugins/platforms/windows/qwindowsintegration.cpp"],)),
    Library("qcustomplot", "libqcustomplot-dev", [], recipe="qcustomplot", upon=("qt6-base",)),
    # Its release is made of many files by a script, which this system's compiler is enough for.
    Library("sqlite3", "libsqlite3-dev", [], recipe="sqlite",
            first=(["./configure", "--quiet"], ["make", "--silent", "sqlite3.c"])),
    Library("minizip", "libminizip-dev", [], recipe="minizip"),
    Library("libxlsxwriter", "libxlsxwriter-dev", ["-DBUILD_SHARED_LIBS=OFF", "-DUSE_SYSTEM_MINIZIP=ON"],
            # It reads zlib's version from a header that it looks for beside minizip's.
            first=(["sed", "-i", "s/{MINIZIP_INCLUDE_DIRS}.zlib.h/{ZLIB_INCLUDE_DIRS}\\/zlib.h/",
                    "cmake/FindMINIZIP.cmake"],), upon=("minizip",)),
]


class Trouble(Exception):
    pass


def run(command, log, folder=None, environment=None):
    log.write(f"\n$ {' '.join(map(str, command))}\n")
    log.flush()
    code = subprocess.run(command, cwd=folder, stdout=log, stderr=subprocess.STDOUT, check=False,
                          env={**os.environ, **(environment or {})}).returncode
    if code != 0:
        raise Trouble(f"{command[0]} failed; its output is in {log.name}")


def output_of(*command):
    answer = subprocess.run(command, capture_output=True, text=True, check=False)
    return answer.stdout if answer.returncode == 0 else ""


def version_of(library):
    version = output_of("dpkg-query", "-W", "-f", "${source:Version}", library.installed_as)
    if not version:
        raise Trouble(f"the package {library.installed_as} is not installed, so there is no telling which version "
                      f"of {library.source} is wanted")
    return version


def folder_of(library, version, below):
    """The name holds all that the outcome depends on; `below` are the folders of what it is built upon."""
    seen = hashlib.sha256()
    recipe = sorted((HERE / library.recipe).iterdir()) if library.recipe else []
    for text in [output_of(COMPILER, "-dumpfullversion"), repr(library.options), repr(library.first), repr(below),
                 *(path.read_text(encoding="utf-8") for path in [TOOLCHAIN, *recipe])]:
        seen.update(text.encode() + b"\0")
    plain = version.split(":")[-1]
    return CACHE / f"{library.source}-{plain}-{seen.hexdigest()[:12]}"


def source_lists():
    """Where this machine has its packages from, as entries for their sources, in files of their own."""
    lines = set()
    listing = output_of("apt-get", "indextargets", "--format", "$(ORIGIN)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)",
                        "Identifier: Packages")
    for line in listing.splitlines():
        origin, *entry = line.split("|")
        if origin == "Debian":
            lines.add("deb-src " + " ".join(entry))
    if not lines:
        raise Trouble("the source packages come from Debian, and this machine has no list of Debian's packages "
                      "(apt-get update makes it)")
    apt = CACHE / "apt"
    for folder in ["lists/partial", "cache/archives/partial"]:
        (apt / folder).mkdir(parents=True, exist_ok=True)
    (apt / "sources.list").write_text("\n".join(sorted(lines)) + "\n", encoding="utf-8")
    settings = apt / "apt.conf"
    settings.write_text(f'Dir::Etc::SourceList "{apt}/sources.list";\nDir::Etc::SourceParts "/dev/null";\n'
                        f'Dir::State::Lists "{apt}/lists";\nDir::Cache "{apt}/cache";\n'
                        f'APT::Sandbox::User "";\n', encoding="utf-8")
    return {"APT_CONFIG": str(settings)}


def unpacked_source(library, version, work, log):
    name = f"{library.source}_{version.split(':')[-1]}"
    archives = CACHE / "sources" / name
    if not archives.exists():
        # A download that was interrupted leaves nothing under the name of a whole one.
        arriving = work / "archives"
        arriving.mkdir()
        environment = source_lists()
        run(["apt-get", "-q", "update"], log, arriving, environment)
        run(["apt-get", "-q", "source", "--download-only", f"{library.source}={version}"], log, arriving, environment)
        archives.parent.mkdir(exist_ok=True)
        arriving.rename(archives)
    run(["dpkg-source", "--no-check", "-x", str(archives / f"{name}.dsc"), str(work / "source")], log)
    return work / "source"


def configure(library, version, prefix, below, work, log):
    source = unpacked_source(library, version, work, log)
    for command in library.first:
        run(command, log, source)
    project = HERE / library.recipe if library.recipe else source
    command = ["cmake", "-G", "Ninja", "-S", str(project), "-B", str(work / "build"), "-DCMAKE_BUILD_TYPE=Release",
               f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}", f"-DCMAKE_INSTALL_PREFIX={prefix}", f"-DSOURCE={source}",
               "-DTARN_WINDOWS_LIBRARIES=" + ";".join(map(str, below)), *library.options]
    run(command, log)
    (work / "configured").touch()


def build(library, version, prefix, below):
    print(f"Building {library.source} {version} for Windows; this happens once ...", file=sys.stderr, flush=True)
    started = time.monotonic()
    work = CACHE / "work" / prefix.name
    shutil.rmtree(prefix, ignore_errors=True)
    with open(CACHE / f"{prefix.name}.log", "a", encoding="utf-8") as log:
        # What was interrupted goes on where it stopped.
        if not (work / "configured").exists():
            shutil.rmtree(work, ignore_errors=True)
            work.mkdir(parents=True)
            configure(library, version, prefix, below, work, log)
        run(["ninja", "-C", str(work / "build"), "-j", JOBS], log)
        run(["ninja", "-C", str(work / "build"), "install"], log)
        shutil.copy(work / "source/debian/copyright", prefix)
        (prefix / "complete").write_text(version + "\n", encoding="utf-8")
    shutil.rmtree(work)
    print(f"Built in {time.monotonic() - started:.0f} s.", file=sys.stderr, flush=True)


def forget_others(wanted):
    """What other versions and ways of building left behind; it would fill the disk in time."""
    names = tuple(library.source + "-" for library in LIBRARIES)
    for entry in CACHE.iterdir():
        stem = entry.name.removesuffix(".log")
        if stem.startswith(names) and CACHE / stem not in wanted:
            shutil.rmtree(entry) if entry.is_dir() else entry.unlink()


def main():
    if not shutil.which(COMPILER):
        raise Trouble(f"{COMPILER} is not installed")
    CACHE.mkdir(parents=True, exist_ok=True)
    built = {}
    for library in LIBRARIES:
        version = version_of(library)
        below = [built[name] for name in library.upon]
        prefix = folder_of(library, version, [folder.name for folder in below])
        if not (prefix / "complete").exists():
            build(library, version, prefix, below)
        built[library.source] = prefix
    forget_others(built.values())
    print(";".join(map(str, built.values())))


try:
    main()
except Trouble as trouble:
    sys.exit(f"The libraries for Windows could not be built: {trouble}.")
