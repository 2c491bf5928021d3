#!/usr/bin/env python3
"""Which files can be compiled together, in one translation unit that includes them.

  cmake/units.py BYTES FILE...   prints "NUMBER FILE" for each: files of one number go together

Most of what compiling a file costs is reading the headers, so units of some files each are done in a
fraction of the time. Files that have a name of their own twice, in their unnamed namespaces, as
statics or as macros, are put into different ones. A unit holds up to BYTES of sources (one file may
be larger), so that no core waits for a large one at the end.

CMake builds by it with GROMLIT_UNITS (cmake/Gromlit.cmake), scripts/tidy looks at files by it.
"""

import os
import re
import sys

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'|'
                   r'^[ \t]*#(?:\\\n|[^\n])*|[A-Za-z_]\w*|::|[{}()\[\];=:]', re.S | re.M)
NO_NAMES = {"static_assert", "struct", "class", "enum", "union", "const", "nullptr", "void"}


def own_names(text):
    """The names that a file has for itself: what stands in its unnamed namespace, and its statics."""
    names, braces, round_ones = set(), [], 0
    statement = []
    for token in TOKEN.findall(text):
        if token[0] in "/\"'R" and not token.isidentifier():
            continue
        if token.lstrip().startswith("#"):
            define = re.match(r"\s*#\s*define\s+(\w+)", token)
            if define:
                names.add(define.group(1))
            continue
        outside = all(brace != "other" for brace in braces)
        own = "unnamed" in braces or "static" in statement
        if outside and own and round_ones == 0 and token in "({=[;:" and statement:
            if (statement[-1].isidentifier() and statement[-1] not in NO_NAMES and
                    statement[0] != "namespace" and "::" not in statement[-2:]):
                names.add(statement[-1])
        if token == "(" and statement[-1:] == ["main"]:
            names.add("main")
        if token in "()":
            round_ones += 1 if token == "(" else -1
        elif token == "{":
            if statement[:1] == ["namespace"]:
                braces.append("unnamed" if len(statement) == 1 else "named")
            else:
                braces.append("other")
            statement = []
            continue
        elif token == "}":
            if braces:
                braces.pop()
            statement = []
            continue
        elif token == ";" and round_ones == 0:
            statement = []
            continue
        if round_ones == 0 and token != ")":
            statement.append(token)
    return names


def split(items, path_of, limit, weight_of):
    """Lists of items in the order given. In none of them do the files have a name of their own twice,
    or more weight together than limit, unless it is one file's."""
    units = []
    for item in items:
        with open(path_of(item), encoding="utf-8") as file:
            names = own_names(file.read())
        weight = weight_of(item)
        for unit in units:
            if unit[2] + weight <= limit and not names & unit[1]:
                unit[0].append(item)
                unit[1] |= names
                unit[2] += weight
                break
        else:
            units.append([[item], names, weight])
    return [unit[0] for unit in units]


def main():
    if len(sys.argv) < 3 or not sys.argv[1].isdigit():
        sys.exit(__doc__)
    most, files = int(sys.argv[1]), sorted(sys.argv[2:])
    # Units of about the same size, not full ones and a rest.
    total = sum(map(os.path.getsize, files))
    largest = max(map(os.path.getsize, files))
    limit = min(most, total // -(-total // most) + largest)
    for number, unit in enumerate(split(files, str, limit, os.path.getsize)):
        for path in unit:
            print(number, path)


if __name__ == "__main__":
    main()
