#!/usr/bin/env python3
"""Tests are found by name: in the folders that mirror a layer of the program, a test file begins with
the name of the source file that it tests. What plays a user or a language through several of them is
a walk and says so."""
import tree

MIRRORS = ("base", "datafile", "import", "platform", "plots", "season", "shell", "tarnreview", "worksheets")


def main():
    offenders = []
    for layer in MIRRORS:
        stems = {path.stem.lower() for path in (tree.ROOT / layer).rglob("*") if path.suffix in tree.CODE}
        for path in sorted((tree.ROOT / "tests" / layer).glob("*_test.cpp")):
            subject = path.stem.removesuffix("_test").lower()
            if not subject.endswith("_walk") and not any(subject.startswith(stem) for stem in stems):
                offenders.append(f"{tree.name(path)}: named after no file of {layer}/")
    tree.finish(offenders, "tests are found by name")


main()
