#!/usr/bin/env python3
"""ARCHITECTURE.md speaks of the tree as it is: its layers are those of the layer gate, each folder has
its line, each file and class that it names exists, and each layer includes the one that it follows."""
import re

import layers
import tree

PAGE = tree.ROOT / "ARCHITECTURE.md"
# Who owns the values that are edited.
TABLE_OBJECTS = ("c34NVCTable", "c35AACTable", "ZoneList", "ResourceList", "GoalList", "NVCGridTable",
                 "CostGridTable")
# What is no part of the program.
UNNAMED = {".ci", ".git", "build"}


def chains(text):
    """The lines of layers, each from the bottom up; the folders that stand at one place together."""
    block = text.split("## The layers", 1)[1].split("A layer may use", 1)[0]
    for line in block.splitlines():
        if "<-" in line:
            yield [tuple(re.split(r",\s*", place.strip())) for place in line.split("<-")]


def wrong_order(text):
    for chain in chains(text):
        steps = [layer for place in chain for layer in place]
        for place, above in zip(chain, chain[1:]):
            for lower in place:
                for upper in above:
                    if upper in layers.FREE or not (tree.ROOT / upper).is_dir():
                        continue
                    if not any(lower in order and upper in order
                               and order.index(lower) < order.index(upper)
                               for order in layers.ORDERS):
                        yield f"{lower} <- {upper}: the layer gate does not know it"
        yield from (f"{layer}: no such folder" for layer in steps
                    if not (tree.ROOT / layer).is_dir() and not (tree.ROOT / "tools" / layer).is_dir())
    shown = {layer for chain in chains(text) for place in chain for layer in place}
    for order in layers.ORDERS:
        yield from (f"{layer}: a layer that the page does not show" for layer in order
                    if layer not in shown)


def folders_without_line(text):
    named = set(re.findall(r"`([\w]+)/`", text))
    for path in sorted(tree.ROOT.iterdir()):
        if (path.is_dir() and not path.name.startswith(("build", "."))
                and path.name not in named | UNNAMED):
            yield f"{path.name}/: a folder without a line"


def exists(name, sources):
    """A path of the tree, with or without an ending, a folder of worksheets, or a word of the sources."""
    if "/" in name.rstrip("/") or name.endswith("/"):
        path = tree.ROOT / name.rstrip("/")
        return (path.exists() or any(path.parent.glob(path.name + ".*"))
                or "/" not in name.rstrip("/") and any((tree.ROOT / "worksheets").glob(name)))
    if name.endswith(".so"):
        name = name.removeprefix("lib").removesuffix(".so")
    return re.search(rf"\b{re.escape(name.split('(')[0].split('::')[-1])}\b", sources) is not None


def names_of_nothing(text):
    sources = "\n".join(path.read_text(encoding="utf-8") for path in tree.code_files()
                        if not tree.name(path).startswith("tests/"))
    sources += "\n".join(path.read_text(encoding="utf-8")
                         for path in tree.text_files() if path.name in ("CMakeLists.txt", "Makefile"))
    for name in sorted(set(re.findall(r"`([A-Za-z_][\w./:-]*)`", text))):
        if name.startswith(("build/", "roots/")):
            continue
        if not exists(name.rstrip("/") + ("/" if name.endswith("/") else ""), sources):
            yield f"`{name}` is nowhere"


def broken_flow():
    """From the form down, each step of the example that the page gives names the next one."""
    steps = [("worksheets/cost/frm6SuppressAcre.h", "CostGridTable"),
             ("worksheets/cost/CostGridTable.h", "c35AACTable"),
             ("worksheets/cost/c35AACTable.cpp", "tblSuppressionPerAcreCost"),
             ("datafile/PrepDatatables.h", "dao/Recordset.h"),
             ("platform/dao/Recordset.cpp", "jet/recordset.h")]
    for file, next_step in steps:
        path = tree.ROOT / file
        if not path.is_file() or next_step not in path.read_text(encoding="utf-8"):
            yield f"{file} does not lead to {next_step}"
    for name in TABLE_OBJECTS:
        for path in (tree.ROOT / "worksheets").rglob(name + ".*"):
            if re.search(r"#include (<Q(Widget|TableView|Dialog|Apply|Message)|.*vsFlexGrid\.h|.*/frm)",
                         path.read_text(encoding="utf-8")):
                yield f"{tree.name(path)}: a table object that knows a widget"
    for path in sorted((tree.ROOT / "worksheets").rglob("frm*.cpp")):
        if re.search(r"dao::Recordset|PrepDatatables::tbl", path.read_text(encoding="utf-8")):
            yield f"{tree.name(path)}: a form that reads a record set"


def main():
    text = PAGE.read_text(encoding="utf-8")
    offenders = [f"ARCHITECTURE.md: {what}" for what in
                 (*wrong_order(text), *folders_without_line(text), *names_of_nothing(text))]
    tree.finish(offenders + list(broken_flow()), "ARCHITECTURE.md is true")


if __name__ == "__main__":
    main()
