#!/usr/bin/env python3
"""shellcheck has nothing to say about the shell scripts, and Python can read its own."""
import shutil
import subprocess

import tree


def is_script(path):
    # What bash reads in has no first line of that kind.
    if path.parent.name == "completion":
        return True
    with open(path, "rb") as file:
        return file.read(9) == b"#!/bin/sh"


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
    tree.finish(offenders + list(unreadable()), "scripts without mistakes")


main()
