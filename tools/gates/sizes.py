#!/usr/bin/env python3
"""Files, classes and functions keep to a size that one reader can hold. A class counts with all of
its member functions, in whatever files they are."""
import collections
import re

import tree

MOST_LINES = 800
MOST_TEST_LINES = 1200
MOST_CLASS_LINES = 800
USUAL_LINES = 400
LONG_FUNCTION = 60
USUAL_FUNCTION = 35
# The class of a member function that is defined outside it: the outermost one, without namespaces.
MEMBER = re.compile(r"[^(=]*?\b(?:[a-z_]+::)*(\w+)(::~?\w+)*::(~?\w+|operator\W+)\s*\(")
# Lines at the left margin that open something other than a function.
OTHER = re.compile(r"^(namespace|class|struct|enum|union|extern|public|protected|private|#|//|}|using|template\s*<[^>]*>\s*"
                   r"(class|struct))")


LAMBDA = re.compile(r"(?<![\w\]])\[[^\]]*\]\s*(\(.*\)\s*)?((mutable|constexpr|noexcept)\s*)*(->[^{]*)?\{$")


def ends_function(lines, begin, number):
    """Whether this line at the left margin ends a function, or a lambda that a name is given to."""
    return lines[number] == "}" or lines[number].startswith("}") and any(
        LAMBDA.search(line) for line in lines[begin:number])


def functions(lines):
    """Begin and length of every function at the left margin, as the formatter lays it out."""
    begin = None
    for number, line in enumerate(lines):
        if begin is not None and ends_function(lines, begin, number):
            yield begin, number - begin + 1
            begin = None
        elif line and not line[0].isspace() and line[0] not in "}{/" and begin is None:
            if not OTHER.match(line):
                begin = number
        elif line.startswith(("}", "class ", "struct ")):
            begin = None
        if begin is not None and line.rstrip().endswith(";") and not line[:1].isspace():
            begin = None
        elif begin is not None and line.endswith(";") and "{" not in "".join(lines[begin:number]):
            begin = None


def members(lines):
    """The same of every function that stands inside a class at the left margin."""
    inside, begin = False, None
    for number, line in enumerate(lines):
        if re.match(r"(class|struct)\b[^;]*$", line):
            inside = True
        elif line == "};":
            inside, begin = False, None
        elif inside and begin is None and re.match(r"    [^\s/].*\(", line):
            begin = number
        if begin is not None and line == "    }":
            yield begin, number - begin + 1
            begin = None
        elif begin is not None and re.match(r"    \S.*[;}]$", line):
            begin = None


def class_parts(lines):
    """Class and length of its body and of each member function outside it. Classes inside another one
    count for that one, so that what is private to a class counts for it wherever it is."""
    begin, name = None, None
    for number, line in enumerate(lines):
        opened = re.match(r"(?:class|struct)\s+(\w+)(?:::\w+)*(?: final)?\s*(?::[^:]|\{|$)", line)
        if opened and not line.endswith(";"):
            begin, name = number, opened[1]
        elif line == "};" and name is not None:
            yield name, number - begin + 1
            name = None
    for begin, length in functions(lines):
        opening = " ".join(lines[begin:begin + length]).split("{")[0]
        member = MEMBER.match(opening)
        if member:
            yield member[1], length


def says_why(lines, begin):
    return begin > 0 and lines[begin - 1].lstrip().startswith("//")


def main():
    offenders, files, lengths = [], [], []
    classes = collections.Counter()
    for path in tree.code_files():
        lines = path.read_text(encoding="utf-8").splitlines()
        where = tree.name(path)
        test = where.startswith("tests/")
        if len(lines) > (MOST_TEST_LINES if test else MOST_LINES):
            offenders.append(f"{where}: {len(lines)} lines")
        if not test:
            files.append((len(lines), where))
            for name, length in class_parts(lines):
                classes[where.split("/")[0], name] += length
        for begin, length in () if test else (*functions(lines), *members(lines)):
            lengths.append((length, f"{where}:{begin + 1}"))
            if length > LONG_FUNCTION and not says_why(lines, begin):
                offenders.append(f"{where}:{begin + 1}: a function of {length} lines that does"
                                 " not say why")
    offenders += [f"{folder}: the class {name} has {length} lines in all"
                  for (folder, name), length in classes.items() if length > MOST_CLASS_LINES]
    offenders += band(files, USUAL_LINES, 10, "files")
    offenders += band(lengths, USUAL_FUNCTION, 10, "functions")
    offenders += band(lengths, LONG_FUNCTION, 30, "functions")
    tree.finish(offenders, "sizes of files, classes and functions")


def band(sizes, limit, one_in, what):
    over = sorted((entry for entry in sizes if entry[0] > limit), reverse=True)
    if len(over) * one_in <= len(sizes):
        return []
    return [f"{len(over)} of {len(sizes)} {what} over {limit} lines, more than one in {one_in}:"] + [
        f"  {where}: {size} lines" for size, where in over]


main()
