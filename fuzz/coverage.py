#!/usr/bin/env python3
"""What the fuzz targets reach together, from what each prints with -print_coverage=1.

  fuzz/coverage.py TOP LIST PRINTED...

Prints a line for each source file below TOP: branches (edges of the control flow, as the compiler
has marked them) that some target takes, and functions that some target enters. LIST gets the
functions that none enters, and the lines with branches that none takes.
"""

import collections
import os
import re
import sys

FUNCTION = re.compile(r"^(UN)?COVERED_FUNC: hits: \d+ edges: (\d+)/(\d+) (.*) (\S+):(\d+)$")
BRANCH = re.compile(r"^ *UNCOVERED_PC: (\S+):(\d+)")


def read(path, top, functions):
    """Adds to functions: (file, name, line) -> [branches, lines of those that nobody takes]."""
    missed, here = None, None
    found = {}
    with open(path, encoding="utf-8", errors="replace") as lines:
        for text in lines:
            if match := FUNCTION.match(text):
                _, taken, count, name, file, line = match.groups()
                here = (os.path.relpath(os.path.realpath(file), top), name, int(line))
                missed = found.setdefault(here, [int(count), collections.Counter(), int(taken) > 0])
            elif here is not None and (match := BRANCH.match(text)):
                missed[1][(os.path.basename(match[1]), int(match[2]))] += 1
    for key, (count, lines, entered) in found.items():
        if not entered:
            lines = None
        if key not in functions:
            functions[key] = [count, lines]
        elif lines is not None:
            known = functions[key][1]
            functions[key][1] = lines if known is None else known & lines


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    top, output, printed = os.path.realpath(sys.argv[1]), sys.argv[2], sys.argv[3:]
    functions = {}
    for path in printed:
        read(path, top, functions)
    rooms = collections.defaultdict(lambda: [0, 0, 0, 0])
    with open(output, "w", encoding="utf-8") as out:
        for (file, name, line), (count, lines) in sorted(functions.items()):
            if file.startswith(("..", "fuzz/", "tests/", "/")):
                continue
            row = rooms[file]
            row[1] += count
            row[3] += 1
            if lines is None:
                out.write(f"{file}:{line}: never entered: {name}\n")
                continue
            row[0] += max(0, count - sum(lines.values()))
            row[2] += 1
            for where, missing in sorted(lines):
                out.write(f"{file}:{line}: not taken: {where}:{missing}\n")
    total = [sum(column) for column in zip(*rooms.values())]
    for file, row in [*sorted(rooms.items()), ("all of them", total)]:
        taken, count, entered, all_functions = row
        print(f"  {100 * taken // max(count, 1):3} %  {taken:5} of {count:5} branches,"
              f" {entered:3} of {all_functions:3} functions  {file}")


if __name__ == "__main__":
    main()
