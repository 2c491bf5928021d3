#!/usr/bin/env python3
"""What the fuzz targets reach together, from what "llvm-cov export -format=lcov" prints.

  fuzz/coverage.py TOP EXPORTED OUTPUT

Prints lines of code and functions that are reached, for each room below TOP and all of them, as rows
of a table. OUTPUT gets the same for each file, its functions that are never entered, and its lines
that are never reached in functions that are.
"""

import collections
import os
import re
import subprocess
import sys


def spans(numbers):
    """"3-5, 9" for lines one after another. Lines without code end a span."""
    found = []
    for number in sorted(numbers):
        if found and found[-1][1] == number - 1:
            found[-1][1] = number
        else:
            found.append([number, number])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in found)


def read(path, top):
    """File below top -> the line of each function by its name, calls by name, times by line."""
    files = {}
    with open(path, encoding="utf-8") as lines:
        for text in lines:
            key, _, value = text.rstrip("\n").partition(":")
            if key == "SF":
                name = os.path.relpath(os.path.realpath(value), top)
                here = ({}, collections.Counter(), {})
                if not name.startswith(("../", "fuzz/", "tests/")):
                    files[name] = here
            elif key == "FN":
                line, name = value.split(",", 1)
                here[0][name] = int(line)
            elif key == "FNDA":
                count, name = value.split(",", 1)
                here[1][name] += int(count)
            elif key == "DA":
                line, count = map(int, value.split(",")[:2])
                here[2][line] = max(here[2].get(line, 0), count)
    return files


def plain(names):
    """The names as they stand in the sources."""
    names = [re.sub(r"^[\w.]+[:;](?=_Z)", "", name) for name in names]
    if not names:
        return []
    return subprocess.run(["c++filt", "-p"], input="\n".join(names), capture_output=True, text=True,
                          check=True).stdout.splitlines()


def row(counts):
    lines, all_lines, functions, all_functions = counts
    return (f"{lines:,} of {all_lines:,} ({100 * lines // max(all_lines, 1)} %)",
            f"{functions:,} of {all_functions:,}")


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    files = read(sys.argv[2], os.path.realpath(sys.argv[1]))
    rooms = collections.defaultdict(lambda: [0, 0, 0, 0])
    with open(sys.argv[3], "w", encoding="utf-8") as output:
        for name, (functions, calls, times) in sorted(files.items()):
            # Those of templates and of headers can have several forms of one function.
            entered = {line for function, line in functions.items() if calls[function] > 0}
            missed = {line: function for function, line in functions.items() if line not in entered}
            reached = [line for line, count in times.items() if count > 0]
            counts = [len(reached), len(times), len(entered), len(entered) + len(missed)]
            for room in (os.path.dirname(name), "all"):
                rooms[room] = [a + b for a, b in zip(rooms[room], counts)]
            output.write("{}: {} lines, {} functions\n".format(name, *row(counts)))
            for line, function in zip(sorted(missed), plain([missed[at] for at in sorted(missed)])):
                output.write(f"  {line}: never entered: {function}\n")
            starts = sorted(set(functions.values()))
            left = set()
            for line, count in times.items():
                start = max((at for at in starts if at <= line), default=0)
                if count == 0 and start not in missed:
                    left.add(line)
            if left:
                output.write(f"  lines never reached in others: {spans(left)}\n")
    print("| room | lines | functions |")
    print("|---|---:|---:|")
    for room, counts in sorted(rooms.items(), key=lambda item: (item[0] == "all", item[0])):
        name = room if room == "all" else f"`{room}/`"
        print("| {} | {} | {} |".format(name, *row(counts)))


if __name__ == "__main__":
    main()
