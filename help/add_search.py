#!/usr/bin/env python3
"""Adds to a help file what its full-text search looks words up in, made from the same pages.
Usage: add_search.py HELP-FILE PAGES-FOLDER"""
import html.parser
import sqlite3
import sys
from pathlib import Path

# What ends a word, although no blank stands there.
BLOCKS = {"p", "li", "td", "th", "tr", "h1", "h2", "h3", "pre", "br", "title"}


class Page(html.parser.HTMLParser):
    """The title of a page, and what its reader sees of it as plain text."""

    def __init__(self, path):
        super().__init__()
        self.title, self.text, self.in_title = "", "", False
        self.feed(path.read_text(encoding="utf-8"))
        self.close()
        self.title, self.text = (" ".join(text.split()) for text in (self.title, self.text))

    def handle_starttag(self, tag, attrs):
        self.in_title = tag == "title"
        if tag in BLOCKS:
            self.text += " "

    def handle_endtag(self, tag):
        self.in_title = False
        if tag in BLOCKS:
            self.text += " "

    def handle_data(self, data):
        if self.in_title:
            self.title += data
        else:
            self.text += data


def main(help_file, folder):
    database = sqlite3.connect(help_file)
    with database:
        # Words are found in each of their forms: "printing" by "print".
        database.execute("CREATE VIRTUAL TABLE Search USING fts5(Name UNINDEXED, Title, Text,"
                         " tokenize = 'porter unicode61 remove_diacritics 2')")
        for path in sorted(Path(folder).glob("*.html")):
            page = Page(path)
            database.execute("INSERT INTO Search VALUES (?, ?, ?)",
                             (f"{Path(folder).name}/{path.name}", page.title, page.text))
    database.close()


main(*sys.argv[1:])
