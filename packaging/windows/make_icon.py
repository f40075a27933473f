#!/usr/bin/env python3
"""Makes a Windows icon of a drawing, in the sizes that desktops ask for.
Usage: make_icon.py DRAWING.svg ICON.ico"""
import struct
import subprocess
import sys
from pathlib import Path

SIDES = [16, 20, 24, 32, 40, 48, 64, 128, 256]
HEADER, ENTRY = struct.Struct("<HHH"), struct.Struct("<BBBBHHII")


def main(drawing, icon):
    pictures = [subprocess.run(["rsvg-convert", "-w", str(side), "-h", str(side), drawing],
                               capture_output=True, check=True).stdout for side in SIDES]
    place = HEADER.size + ENTRY.size * len(SIDES)
    entries = b""
    for side, picture in zip(SIDES, pictures):
        # 0 stands for 256.
        entries += ENTRY.pack(side % 256, side % 256, 0, 0, 1, 32, len(picture), place)
        place += len(picture)
    Path(icon).write_bytes(HEADER.pack(0, 1, len(SIDES)) + entries + b"".join(pictures))


main(*sys.argv[1:])
