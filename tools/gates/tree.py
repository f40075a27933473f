"""What the gates have in common: the source files of the tree and the way offenders are named."""
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
FOLDERS = sorted(path.name for path in ROOT.iterdir()
                 if path.is_dir() and not path.name.startswith(("build", ".")))
CODE = {".h", ".cpp"}


def code_files():
    found = []
    for folder in FOLDERS:
        found += [path for path in (ROOT / folder).rglob("*") if path.suffix in CODE]
    return sorted(found)


def text_files():
    """Every tracked or new text file, build folders and ignored files left out."""
    if shutil.which("git"):
        listing = subprocess.run(["git", "-C", str(ROOT), "ls-files", "-co", "--exclude-standard"],
                                 capture_output=True, text=True, check=False)
        if listing.returncode == 0 and listing.stdout:
            return [ROOT / line for line in listing.stdout.splitlines() if (ROOT / line).is_file()]
    return [path for path in ROOT.rglob("*")
            if path.is_file() and not path.relative_to(ROOT).parts[0].startswith(("build", "."))]


def name(path):
    return path.relative_to(ROOT).as_posix()


def finish(offenders, promise):
    """Prints the offenders and ends the gate."""
    for offender in offenders:
        print(offender)
    if offenders:
        print(f"{len(offenders)} offenders against: {promise}")
        sys.exit(1)
    print(f"kept: {promise}")
