#!/usr/bin/env python3
"""shellcheck has nothing to say about the shell scripts, and Python can read its own."""
import re
import shutil
import subprocess

import tree


def is_script(path):
    # What bash reads in has no first line of that kind.
    if path.parent.name == "completion":
        return True
    with open(path, "rb") as file:
        return file.read(9) == b"#!/bin/sh"


def without_first_line(paths):
    """A script says which shell runs it, or is one that another script reads in."""
    texts = {path: path.read_text(encoding="utf-8") for path in paths if path.suffix == ".sh" or is_script(path)}
    for path, text in texts.items():
        read_in = re.compile(rf"^\s*(\.|source)\s.*\b{re.escape(path.name)}\b", re.M)
        if not text.startswith("#!/bin/sh\n") and path.suffix == ".sh" and not any(
                read_in.search(other) for at, other in texts.items() if at != path):
            yield f"{tree.name(path)}:1: a script without its first line, #!/bin/sh"


def mistakes(scripts):
    run = subprocess.run(["shellcheck", "--severity=warning", "--external-sources",
                          "--check-sourced", "--format=gcc", *scripts],
                         cwd=tree.ROOT, capture_output=True, text=True, check=False)
    return sorted(set((run.stdout + run.stderr).splitlines()))


def unreadable():
    for path in tree.text_files():
        if path.suffix == ".py":
            try:
                compile(path.read_text(encoding="utf-8"), tree.name(path), "exec")
            except SyntaxError as error:
                yield f"{tree.name(path)}:{error.lineno}: {error.msg}"


def main():
    if not shutil.which("shellcheck"):
        tree.finish(["shellcheck is not installed; tools/setup.sh test does it"], "shell scripts")
    # What a script sources is looked at with it.
    scripts = [tree.name(path) for path in tree.text_files() if is_script(path)]
    offenders = mistakes(scripts) if scripts else []
    offenders += without_first_line(tree.text_files())
    tree.finish(offenders + list(unreadable()), "scripts without mistakes")


main()
