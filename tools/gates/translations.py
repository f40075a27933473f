#!/usr/bin/env python3
"""The list of texts that translators get has each text under the name that the program asks for it by."""
import re
import shutil
import subprocess
import tempfile
import xml.etree.ElementTree as ET
from pathlib import Path

import tree

FOLDERS = ["platform", "base", "datafile", "import", "worksheets", "shell", "plots", "reportpdf", "tarnreview"]
LUPDATE = shutil.which("lupdate", path="/usr/lib/qt6/bin:/usr/bin")


def open_namespaces(text):
    """The namespaces that are open at the end of a text, each with its colons behind it."""
    opened = []
    code = re.sub(r'//[^\n]*|"(?:\\.|[^"\\\n])*"', "", text)
    for found in re.finditer(r"(?:namespace ([\w:]+) )?\{|\}", code):
        if found[0] == "}":
            opened.pop()
        else:
            opened.append(found[1] + "::" if found[1] else "")
    return "".join(opened)


def names_in_use(texts):
    """What a text is looked up under: a class of the toolkit's kind, or a name that the source gives."""
    names = set()
    for text in texts.values():
        for found in re.finditer(r"^(?:class|struct)\s+(\w+)[^;{]*\{\s*Q_OBJECT", text, re.M):
            names.add(open_namespaces(text[:found.start()]) + found[1])
        names |= set(re.findall(r"Q_DECLARE_TR_FUNCTIONS\(([\w:]+)\)", text))
        names |= set(re.findall(r"(?:translate|QT_TRANSLATE_NOOP)\(\s*\"(\w+)\"", text))
        names |= set(re.findall(r"\b(Q[A-Z]\w+)::tr\(", text))
    return names


def listed(folder):
    if LUPDATE is None:
        return None
    out = Path(folder) / "texts.ts"
    present = [str(tree.ROOT / name) for name in FOLDERS if (tree.ROOT / name).is_dir()]
    subprocess.run([LUPDATE, "-silent", "-I", str(tree.ROOT), *present, "-ts", str(out)],
                   capture_output=True, check=True)
    return ET.parse(out)


def main():
    texts = {tree.name(path): path.read_text(encoding="utf-8") for path in tree.code_files()
             if tree.name(path).split("/")[0] in FOLDERS}
    offenders = []
    for name, text in texts.items():
        for found in re.finditer(r"translate\(\s*\"(\w+)\",\s*(\w+)\)", text):
            if f'QT_TRANSLATE_NOOP("{found[1]}"' not in text:
                offenders.append(f"{name}: {found[0]}: a translator does not get what {found[2]} is")
    with tempfile.TemporaryDirectory() as folder:
        tree_of_texts = listed(folder)
    if tree_of_texts is None:
        print("lupdate is not installed; the names in its list are not looked at")
    else:
        known = names_in_use(texts)
        for context in tree_of_texts.getroot().iter("context"):
            name = context.find("name").text
            if name not in known and not name.startswith("Q"):
                first = context.find("message/source").text
                offenders.append(f"\"{first}\" is listed under {name}, which nothing asks for")
    tree.finish(offenders, "texts that translators get under their names")


main()
