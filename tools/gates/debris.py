#!/usr/bin/env python3
"""Comments give reasons, not numbers or leftovers."""
import re

import tree

TEXT = {".h", ".cpp", ".py", ".sh", ".md", ".txt", ".cmake", ".html", ".qhp", ".xml", ""}
CODE = {".h", ".cpp"}
PICTURES = {".png", ".jpg", ".jpeg", ".gif", ".bmp"}
# What only code looks like: whole statements, the openings and ends of blocks, declarations.
NAME = r"[\w.:>\[\]-]+"
STATEMENT = re.compile(
    r"(if|for|while|switch) \(.*\)( \{)?|(\} )?else( if \(.*\))?( \{)?|[{}];?|try \{|case [\w:]+:|default:"
    rf"|(return|throw|emit|delete|co_return)\b.*;|(break|continue);|[+-]{{2}}{NAME};|{NAME}[+-]{{2}};"
    rf"|{NAME}\(.*\)( const)?( \{{|;)|[\w:<>*&,. >\[\]()-]+ [-+*/|&]?= .*;|#(include|define|ifn?def|endif)\b.*"
    r"|(const |static |auto[*&]? |unsigned )+[\w:<>*& ]+[;({].*|(std::|Q[A-Z])[\w:]+(<.*>)?[*&]* \w+(;|[({=].*;)"
    rf"|{NAME}\([^()]*(\([^()]*\)[^()]*)*\)|{NAME} [-+*/|&]= .*"
    r"|(bool|int|long|char|double|float|short)[*&]* \w+(\[\d*\])?;|using \w+ = .*;|template <.*>")
BLOCK = re.compile(r"/\*(.*)\*/")
# One word for one thing: an error is reported, shown or signaled.
TELLING = re.compile(r"\bTell[A-Z]\w*\(|\bTell\((?!\w*\s*==)|TEST\w*\(\w+, \w*(IsTold|AreTold|AndTold|Tells)")
# One spelling, the American one. Other programs' words are theirs.
BRITISH = re.compile(r"(?i)behaviour|colour|neighbour|favour|honour|licence|catalogue(?!-)|centre|\bgrey\b|defence"
                     r"|artefact|judgement|labelled(?!_?by)|modell(ed|ing)|(recogn|optim|initial|normal|serial|minim"
                     r"|maxim|summar|organ|synchron|general|special)is(e|ing|ation)|\banalys(e|ed|ing)\b")
RULES = [
    (TELLING, "an error is reported or shown, not told"),
    (BRITISH, "one spelling: the American one"),
    (re.compile(r"^\s*#\s*if\s+(0|false)\b|^\s*#\s*ifdef\s+NEVER\b"), "code that is switched off"),
    (re.compile(r"(?i)\b(TODO|FIXME|XXX|HACK)\b"), "unfinished work is not left in the tree"),
    (re.compile(r"NOLINT(NEXTLINE|BEGIN|END)?(?!\w|\()"), "name the check that is switched off"),
    (re.compile(r"(?i)\b(see|per|by|in|of) (part|issue|decision|section) \d"),
     "give the reason itself, not a number"),
    (re.compile(r"[\"' (]/(home|root|Users)/"),
     "no path of one person's machine"),
    (re.compile(r"^(<<<<<<< |>>>>>>> )"), "a merge that was not finished"),
    (re.compile(r"[ \t]+$"), "blanks at the end of a line"),
]


def commented_out(line):
    """Whether a comment of the line holds code."""
    comment = line.partition("//")[2] or "".join(BLOCK.findall(line))
    return STATEMENT.fullmatch(comment.partition("//")[0].strip().removeprefix("/").strip()) is not None


def in_blocks(text):
    """Number and text of each line of code within a comment of several lines."""
    for block in re.finditer(r"/\*(.*?)\*/", text, re.S):
        first = text.count("\n", 0, block.start()) + 1
        lines = block[1].split("\n")
        for number, line in enumerate(lines if len(lines) > 1 else [], first):
            if STATEMENT.fullmatch(line.strip()):
                yield number, line


def stray(path):
    """What speaks against a file by its name alone: pictures of a screen are easily committed with the rest."""
    if " " in path.name:
        yield "a file's name has no blanks"
    if path.suffix in PICTURES and path.parent.name not in ("pictures", "icons"):
        yield "a picture lies in a folder of pictures or icons"


def main():
    offenders = []
    for path in tree.text_files():
        offenders += [f"{tree.name(path)}: {why}" for why in stray(path)]
        if path.suffix not in TEXT or path.name == "debris.py" or path.name == "LICENSE":
            continue
        try:
            text = path.read_text(encoding="utf-8")
        except UnicodeDecodeError:
            continue
        lines = text.splitlines()
        offenders += [f"{tree.name(path)}:{number}: code that is commented out: {line.strip()[:80]}"
                      for number, line in in_blocks(text) if path.suffix in CODE]
        for number, line in enumerate(lines, 1):
            example = path.suffix == ".h" and line.startswith("//   ")
            if path.suffix in CODE and not example and commented_out(line):
                offenders.append(f"{tree.name(path)}:{number}: code that is commented out: {line.strip()[:80]}")
            for pattern, why in RULES:
                if pattern.search(line):
                    offenders.append(f"{tree.name(path)}:{number}: {why}: {line.strip()[:80]}")
    tree.finish(offenders, "no debris in the tree")


main()
