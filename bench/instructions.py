#!/usr/bin/env python3
"""Counts the instructions of the timed part of each task, for each row: a figure that no other
program on the machine can disturb.

    bench/instructions.py BUILD [ROWS]      default: 20000 rows; needs valgrind
"""
import pathlib
import re
import subprocess
import sys
import tempfile

TASKS = ["scan", "seek_random", "insert_ordered", "insert_random", "update_one_field", "delete",
         "scan_texts", "seek_texts", "insert_texts", "update_texts", "update_memos", "delete_texts",
         "whole_insert_ordered", "whole_insert_random", "whole_update_one_field", "whole_delete",
         "whole_insert_texts", "whole_insert_random_texts", "whole_update_texts",
         "whole_update_memos", "whole_delete_texts"]


def count(program, task, peer, rows):
    """Instructions of the timed part, and the rows that it handled."""
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/%p",
             "--toggle-collect=bench::Timed*", str(program), "--task", task, "--peer", peer,
             str(rows)], check=True, capture_output=True, text=True)
        total = 0
        for counts in pathlib.Path(folder).iterdir():
            found = re.search(r"^(?:totals|summary): (\d+)", counts.read_text(), re.MULTILINE)
            total += int(found.group(1)) if found else 0
    fields = done.stdout.splitlines()[-1].split(",")
    return total, max(1, round(float(fields[3]) * float(fields[4])))


def main():
    program = pathlib.Path(sys.argv[1]) / "bin" / "jet_bench_csv"
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 20000
    print("| Task | Jet 4 | Jet 3 |\n|---|---|---|")
    for task in TASKS:
        cells = []
        for peer in ("jet4", "jet3"):
            # The difference leaves out what is paid once, such as opening the table.
            fewer, more = (count(program, task, peer, n) for n in (rows, 3 * rows))
            cells.append(f"{(more[0] - fewer[0]) / (more[1] - fewer[1]):,.0f}")
        print(f"| {task} | {' | '.join(cells)} |", flush=True)


if __name__ == "__main__":
    main()
