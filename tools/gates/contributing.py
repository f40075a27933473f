#!/usr/bin/env python3
"""CONTRIBUTING.md and tests/README.md speak of the tree as it is: the commands are those of the Makefile,
the gates those that run, each preset, file and name exists, and each folder of tests has its line."""
import json
import re

import architecture
import tree

PAGES = ("CONTRIBUTING.md", "tests/README.md")
# Words in the pages that stand for what the reader puts in their place, or for other programs' words.
NO_NAMES = re.compile(r"[A-Z]{2,}\b|CamelCase$|^build[\w-]*/|^\.\./|context-N$|^_|^(shared|corpus|programs)/?$"
                      r"|^tools/jetcheck\.py$")
NO_FOLDER_OF_TESTS = {"support", "faults"}


def rows(text, heading):
    """The first cells of the table under a heading."""
    part = text.split(f"## {heading}", 1)[-1].split("\n## ", 1)[0]
    return [match[1] for match in re.finditer(r"^\| `([^`]+)`", part, re.M)]


def differences(said, there, what):
    yield from (f"{name}: the page names a {what} that is not there" for name in said if name not in there)
    yield from (f"{name}: a {what} that the page does not name" for name in there if name not in said)


def wrong_commands(text):
    makefile = (tree.ROOT / "Makefile").read_text(encoding="utf-8")
    there = set(re.findall(r"^([\w-]+):", makefile, re.M)) - {"clean"}
    said = [name.removeprefix("make ") for name in rows(text, "One-word commands")]
    yield from differences(said, there, "command")
    yield from (f"make {name}: no such command" for name in re.findall(r"`make ([\w-]+)`", text) if name not in there)


def wrong_presets(text):
    presets = json.loads((tree.ROOT / "CMakePresets.json").read_text(encoding="utf-8"))
    there = [preset["name"] for preset in presets["workflowPresets"]]
    sentence = re.search(r"--workflow --preset ((?:\w|`|,|\s)*?)\n?configures", text)
    said = [name for name in re.findall(r"\w+", sentence[1]) if name != "or"] if sentence else []
    yield from differences(said, there, "preset")


def wrong_gates(text):
    listed = (tree.ROOT / "tools/gates/CMakeLists.txt").read_text(encoding="utf-8")
    yield from differences(rows(text, "What the gates ask"), re.findall(r"^tarn_gate\((\w+)", listed, re.M), "gate")


def wrong_folders(text):
    said = [name for row in re.findall(r"^\| (`[^|]+) \|", text.split("\n## ")[0], re.M)
            for name in re.findall(r"`(\w+)`", row)]
    there = sorted(path.name for path in (tree.ROOT / "tests").iterdir()
                   if path.is_dir() and path.name not in NO_FOLDER_OF_TESTS and not path.name.startswith(("_", ".")))
    yield from differences(said, there, "folder of tests")


def there(name, sources):
    """A name of the tree, or of its folder of tests."""
    if "*" in name:
        return any(tree.ROOT.glob(name))
    if name.endswith("_test"):
        return any((tree.ROOT / "tests").rglob(name + ".*"))
    return any(architecture.exists(place + name, sources) for place in ("", "tests/")
               if "/" in name or not place)


def names_of_nothing(text, sources):
    for name in sorted(set(re.findall(r"`([A-Za-z_.][\w./:*-]*)`", text))):
        if not NO_NAMES.search(name) and not there(name, sources):
            yield f"`{name}` is nowhere"


def main():
    contributing, tests = ((tree.ROOT / page).read_text(encoding="utf-8") for page in PAGES)
    sources = "\n".join(path.read_text(encoding="utf-8", errors="replace") for path in tree.text_files()
                        if path.suffix in tree.CODE | {".py", ".txt", ".cmake", ".sh", ".qhp", ""})
    offenders = [f"{PAGES[0]}: {what}" for what in
                 (*wrong_commands(contributing), *wrong_presets(contributing), *wrong_gates(contributing),
                  *names_of_nothing(contributing, sources))]
    offenders += [f"{PAGES[1]}: {what}" for what in (*wrong_folders(tests), *names_of_nothing(tests, sources))]
    tree.finish(offenders, "CONTRIBUTING.md and tests/README.md are true")


if __name__ == "__main__":
    main()
