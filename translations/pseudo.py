#!/usr/bin/env python3
"""Translates a list of texts into a language that nobody speaks: accented letters, words that are
longer by a third, brackets around each text. So a test sees what is not translated, and what is cut.

Usage: pseudo.py FROM.ts TO.ts"""
import re
import sys
import xml.etree.ElementTree as ET

ACCENTED = str.maketrans("aeiouAEIOUcnsy", "åéîöüÅÉÎÖÜçñšÿ")
VOWELS = "aeiouAEIOU"
# What stays as it is: places of values, marks of the formatted label and of file filters, keys.
FIXED = re.compile(r"%\d|%n|\||BEFORE:\d+(?=\|)|CR(?=\|)|\(?\*\.[\w*]+\)?|&.|\n|\r| {3,}|\bCtrl\+\w\b|\bF1\b")
# The toolkit's own texts that the programs show.
OF_THE_TOOLKIT = {"QPlatformTheme": ["OK", "Cancel", "&Yes", "&No", "Show Details...", "Hide Details..."],
                  "QMessageBox": ["Show Details...", "Hide Details..."],
                  "QTabBar": ["Scroll Left", "Scroll Right"]}


def longer(word):
    """Every third letter stands for two, a vowel where there is one."""
    wanted = max(1, len(word) // 3)
    letters = []
    for letter in word:
        letters.append(letter)
        if wanted and letter in VOWELS:
            letters.append(letter.lower())
            wanted -= 1
    return "".join(letters).translate(ACCENTED)


def words(text):
    return re.sub(r"[A-Za-z']+", lambda found: longer(found[0]), text)


def translated(text):
    """The text with brackets around what has letters; the parts of a list each for itself."""
    result = []
    for part in re.split(r"(\|)", text):
        plain = FIXED.sub("", part)
        if not re.search("[A-Za-z]", plain) or re.fullmatch(r"CR|BEFORE:\d+", part):
            result.append(part)
            continue
        done, end = "", 0
        for fixed in FIXED.finditer(part):
            done += words(part[end:fixed.start()]) + fixed[0]
            end = fixed.end()
        done += words(part[end:])
        before = re.match(r"\s*", done)[0]
        after = re.search(r"\s*$", done)[0]
        result.append(f"{before}[{done.strip()}]{after}")
    return "".join(result)


def main():
    tree = ET.parse(sys.argv[1])
    root = tree.getroot()
    root.set("language", "eo")
    for name, sources in OF_THE_TOOLKIT.items():
        context = ET.SubElement(root, "context")
        ET.SubElement(context, "name").text = name
        for source in sources:
            message = ET.SubElement(context, "message")
            ET.SubElement(message, "source").text = source
            ET.SubElement(message, "translation")
    for message in root.iter("message"):
        translation = message.find("translation")
        translation.attrib.clear()
        translation.text = translated(message.find("source").text)
    tree.write(sys.argv[2], encoding="utf-8", xml_declaration=True)


if __name__ == "__main__":
    main()
