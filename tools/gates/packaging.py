#!/usr/bin/env python3
"""Desktop entry, MIME type, metainfo and man pages pass their validators."""
import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

import tree

PACKAGING = tree.ROOT / "packaging"


def complaints(*command, **environment):
    run = subprocess.run([str(part) for part in command], capture_output=True, text=True,
                         check=False, env={**os.environ, **environment})
    told = (run.stdout + run.stderr).strip()
    return told or f"{command[0]} failed" if run.returncode else ""


def man_page(path):
    run = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", str(path)],
                         capture_output=True, text=True, check=False,
                         env={**os.environ, "LC_ALL": "C.UTF-8", "MANROFFSEQ": "", "MANWIDTH": "80"})
    return run.stderr.strip()


def mime_type(path):
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "mime/packages").mkdir(parents=True)
        shutil.copy(path, Path(folder) / "mime/packages")
        return complaints("update-mime-database", Path(folder) / "mime", XDG_DATA_HOME=folder)


def versions():
    """The version stands in several files; they must agree."""
    project = re.search(r"VERSION (\d+\.\d+\.\d+)",
                        (tree.ROOT / "CMakeLists.txt").read_text(encoding="utf-8").split("project", 1)[1])
    for path in [PACKAGING / "tarnprep.metainfo.xml", tree.ROOT / "CHANGELOG.md",
                 *(PACKAGING / "man").glob("*.1")]:
        if project[1] not in path.read_text(encoding="utf-8"):
            yield f"{tree.name(path)}: does not name version {project[1]}"


def main():
    found = {
        "packaging/tarnprep.desktop":
            complaints("desktop-file-validate", PACKAGING / "tarnprep.desktop"),
        "packaging/tarnreview.desktop":
            complaints("desktop-file-validate", PACKAGING / "tarnreview.desktop"),
        "packaging/tarnprep.metainfo.xml":
            complaints("appstreamcli", "validate", "--no-net", PACKAGING / "tarnprep.metainfo.xml"),
        "packaging/tarnprep-mime.xml": mime_type(PACKAGING / "tarnprep-mime.xml"),
    }
    for path in sorted((PACKAGING / "man").glob("*.1")):
        found[tree.name(path)] = man_page(path)
    offenders = [f"{name}: {told}" for name, told in found.items() if told]
    tree.finish(offenders + list(versions()), "package files that their validators accept")


main()
