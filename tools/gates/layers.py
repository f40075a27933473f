#!/usr/bin/env python3
"""Each layer includes only those below it."""
import re

import tree

# Stacks on the engine: entering a season, what is said of it afterwards with its charts and its
# window, and SQL.
ORDERS = [["jet", "platform", "base", "datafile", "import", "worksheets", "shell"],
          ["jet", "season", "review", "reportpdf", "plots", "tarnreview"],
          ["platform", "plots", "tarnreview"],
          ["jet", "season", "rollup"],
          ["jet", "jetsql"]]
WITHOUT_QT = {"jet", "season", "review", "rollup", "jetsql"}
# The folders inside the engine, from the bottom up.
ENGINE = ["os", "page", "values", "record", "index", "table", "catalog", "recordset", "query",
          "database", "check", "capi"]
# A worksheet's folder; what all share lies beside these, and undo/ serves them all.
FORMS = re.compile(r"worksheets/(\w+)/frm\w+\.h$")
FREE = {"tools", "tests", "fuzz", "bench"}
MAY_USE_JET = {"jet", "platform", "season", "rollup", "jetsql"} | FREE
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def layer(path):
    return path.split("/")[0]


def target(path, quote, included):
    """The file of the tree that an include means, or None."""
    if quote == '"' and (path.parent / included).is_file():
        return tree.name((path.parent / included).resolve())
    for base in ("", "jet/include/", "jet/src/", "jet/tools/", "tests/"):
        if (tree.ROOT / (base + included)).is_file():
            return base + included
    return None


def floor(name):
    """The floor of a file of the engine's private side; None for those that are above it."""
    parts = name.split("/")
    if parts[:2] != ["jet", "src"]:
        return None
    return ENGINE.index(parts[2]) if len(parts) > 3 and parts[2] in ENGINE else -1


def engine_offence(own, found):
    """What is wrong with an include from one file of the engine to another, or None."""
    above, below = floor(own), floor(found)
    if -1 in (above, below):
        return "a file or folder of the engine that has no place in its order"
    if above is None:
        return None
    if found.startswith("jet/src/") and (below is None or below > above):
        return "a folder of the engine includes only those below it"
    return None


def offence(path, quote, included):
    own = layer(tree.name(path))
    if included.endswith(".moc"):
        return None
    if ".." in included.split("/"):
        return "a path through the folder above, which the compiler does not check"
    if own in WITHOUT_QT and re.match(r"Q[A-Z]|Qt", included):
        return f"{own} knows no Qt"
    found = target(path, quote, included)
    if found is None:
        return "includes a file that is not there" if quote == '"' else None
    other = layer(found)
    form = FORMS.match(found)
    if form and own == "worksheets" and not tree.name(path).startswith(f"worksheets/{form[1]}/"):
        return "worksheets do not know each other's forms"
    if other == "jet" and own not in MAY_USE_JET:
        return "only platform, season, rollup, jetsql, tools and tests include the engine"
    if own != "jet" and found.startswith("jet/src/") and own not in FREE:
        return "the engine's private side"
    if own == other == "jet":
        return engine_offence(tree.name(path), found)
    if own in FREE:
        return None
    for order in ORDERS:
        if own in order and other in order and order.index(other) <= order.index(own):
            return None
    return f"{own} may not know {other}"


def main():
    offenders = []
    for path in tree.code_files():
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            if match:
                why = offence(path, match[1], match[2])
                if why:
                    offenders.append(f"{tree.name(path)}:{number}: {match[2]}: {why}")
    tree.finish(offenders, "a layer includes only those below it")


if __name__ == "__main__":
    main()
