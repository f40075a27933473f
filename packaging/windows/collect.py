#!/usr/bin/env python3
"""Brings the libraries that programs for Windows need, and their licenses, into their folder.

Usage: collect.py FOLDER LIBRARIES    where LIBRARIES is what tools/windows/libraries.py prints
"""
import re
import shutil
import subprocess
import sys
from pathlib import Path

# Loaded by name, so that no program says that it needs them: the screen, work without one, and the system's own look.
PLUGINS = ["platforms/qwindows.dll", "platforms/qoffscreen.dll", "styles/qwindowsvistastyle.dll"]
COMPILER = "x86_64-w64-mingw32"
# What Windows brings along, as Wine has it too, and names that it has for parts of itself and no files.
SYSTEM = [Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")]
SYSTEM_PARTS = ("api-ms-win-", "ext-ms-win-")
NEEDED = re.compile(r"^\s*DLL Name: (\S+)$", re.M)
FONTS = Path("/usr/share/fonts/truetype/dejavu")
LICENSES = Path("/usr/share/common-licenses")


def runtime_folders():
    library = subprocess.run([f"{COMPILER}-g++-posix", "-print-file-name=libstdc++-6.dll"],
                             capture_output=True, text=True, check=True).stdout.strip()
    return [Path(library).parent, Path(f"/usr/{COMPILER}/lib"), Path(f"/usr/{COMPILER}/bin")]


def find(name, folders):
    for folder in folders:
        for path in folder.iterdir() if folder.is_dir() else ():
            if path.name.lower() == name.lower():
                return path
    return None


def bring_libraries(folder, prefixes):
    places = [prefix / "bin" for prefix in prefixes] + runtime_folders()
    waiting = [path for path in folder.rglob("*") if path.suffix in (".exe", ".dll")]
    while waiting:
        listing = subprocess.run([f"{COMPILER}-objdump", "-p", waiting.pop()], capture_output=True, text=True,
                                 check=True).stdout
        for name in NEEDED.findall(listing):
            if name.lower().startswith(SYSTEM_PARTS) or find(name, [folder]):
                continue
            found = find(name, places)
            if found:
                waiting.append(Path(shutil.copy(found, folder)))
            elif SYSTEM[0].is_dir() and not find(name, SYSTEM):
                sys.exit(f"{name} is needed and lies nowhere")
    brought = [path for path in folder.rglob("*.dll")]
    subprocess.run([f"{COMPILER}-strip", "--strip-unneeded", *brought], check=True)


def bring_plugins(folder, prefixes):
    for plugin in PLUGINS:
        found = [prefix / "plugins" / plugin for prefix in prefixes if (prefix / "plugins" / plugin).exists()]
        if not found:
            sys.exit(f"Qt's plug-in {plugin} was not built")
        target = folder / "plugins" / plugin
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(found[0], target)
    (folder / "qt.conf").write_text("[Paths]\nPrefix = .\nPlugins = plugins\n", encoding="utf-8")


def bring_fonts(folder):
    """Without a screen, Qt knows none of the system's; reports as PDF are made so."""
    fonts = folder / "fonts"
    fonts.mkdir(exist_ok=True)
    for name in ["DejaVuSans.ttf", "DejaVuSans-Bold.ttf"]:
        shutil.copy(FONTS / name, fonts)
    shutil.copy("/usr/share/doc/fonts-dejavu-core/copyright", fonts / "LICENSE.txt")


def bring_licenses(folder, prefixes):
    licenses = folder / "licenses"
    licenses.mkdir(exist_ok=True)
    for prefix in prefixes:
        name = prefix.name.rsplit("-", 2)[0]
        shutil.copy(prefix / "copyright", licenses / f"{name}.txt")
    for name in ["LGPL-3", "GPL-3"]:
        shutil.copy(LICENSES / name, licenses / f"{name}.txt")
    for package in ["gcc-mingw-w64-x86-64-posix-runtime", "mingw-w64-x86-64-dev", "libz-mingw-w64-dev"]:
        text = Path("/usr/share/doc") / package / "copyright"
        if text.exists():
            shutil.copy(text, licenses / f"{package}.txt")


def main(folder, libraries):
    prefixes = [Path(path) for path in libraries.split(";")]
    bring_plugins(Path(folder), prefixes)
    bring_libraries(Path(folder), prefixes)
    bring_fonts(Path(folder))
    bring_licenses(Path(folder), prefixes)


main(*sys.argv[1:])
