#!/usr/bin/env python3
"""Makes the corpora of the fuzz targets from the starter library, each in its target's own format.

  fuzz/make_corpora.py SKELETON OUTPUT

SKELETON is the packed library (build/release/share/gromlit); the documents that it is packed from
and the pictures come from the source tree. OUTPUT/NAME gets the seeds of NAME_fuzz.

The targets read their input with libFuzzer's FuzzedDataProvider: texts from the front, numbers from
the back. Input writes what that reads; the functions below follow the order in which the targets
ask.
"""

import json
import os
import re
import sys

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

MAX_POINTS, MAX_ACTIONS, MAX_COMMANDS, MAX_KEYS = 64, 128, 128, 8
HEADER, PLUGIN, SYMBOL, ACTION, COMMAND = 13, 1164, 428, 1012, 56


class Input:
    def __init__(self):
        self.front = bytearray()
        self.back = bytearray()

    def text(self, text, limit):
        """ConsumeRandomLengthString(limit)."""
        if isinstance(text, str):
            text = text.encode("utf-8")
        text = text[:limit]
        self.front += text.replace(b"\\", b"\\\\")
        if len(text) < limit:
            self.front += b"\\\n"
        return self

    def number(self, value, low, high):
        """ConsumeIntegralInRange(low, high), and ConsumeIntegral with the limits of its type."""
        size = ((high - low).bit_length() + 7) // 8
        self.back += (value - low).to_bytes(size, "big")
        return self

    def yes(self, value):
        return self.number(int(value), 0, 1)

    def rest(self, text):
        self.front += text if isinstance(text, bytes) else text.encode("utf-8")
        return self

    def bytes(self):
        return bytes(self.front) + bytes(reversed(self.back))


def symbol(out, name, points):
    out.text(name, 36).number(len(points), 0, MAX_POINTS).yes(True)
    for x, y in points:
        out.number(x, 0, 31).number(y, 0, 31)
    out.yes(False).number(0, 0, 255)


def stroke(out, points):
    """Steps of a hand along the points, a step of at most 100 each way."""
    steps = []
    for (x1, y1), (x2, y2) in zip(points, points[1:]):
        for i in range(4):
            steps.append([((b - a) * 8 * (i + 1) // 4) - ((b - a) * 8 * i // 4)
                          for a, b in ((x1, x2), (y1, y2))])
    steps = steps[:256]
    out.number(len(steps), 0, 256).number(0, 0, 2)
    for step in steps:
        for value in step:
            out.number(max(-127, min(127, value)), -128, 127)


def options(out, url="browser %s", sound="play %s", delivery=0):
    for value in (3, 4, 3, 1, 1, delivery, 7, 0, 0):
        out.yes(True).number(value, -1, 8)
    out.text(url, 132).text(sound, 68).text("", 64)


def command(out, kind, text, checked=0, keys=()):
    out.yes(True).number(kind, 0, 6).number(checked, 0, 2).number(len(keys), 0, 10)
    for code, state in keys:
        out.number(code, 0, 65535).number(state, 0, 65535)
    out.number(0, -1, 1).text(text, 300)


def plugin(out, name, classname, actions):
    """actions: (name, points, commands), a command: (kind, text, checked, keys)."""
    out.text(name, 68).text(classname, 68).number(0, 0, 255).number(0, -128, 127).yes(False)
    out.number(len(actions), 0, MAX_ACTIONS)
    for action, points, commands in actions:
        symbol(out, action, points)
        out.text(action, 68).yes(True).number(len(commands), 0, MAX_COMMANDS)
        for one in commands:
            command(out, *one)


def read_symbols(skeleton):
    found = []
    directory = os.path.join(skeleton, "symbols")
    for name in sorted(os.listdir(directory)):
        with open(os.path.join(directory, name), "rb") as file:
            image = file.read()[HEADER:]
        count = image[32]
        cells = []
        for i in range(1, count + 1):
            x = int.from_bytes(image[34 + 2 * i:36 + 2 * i], "little")
            y = int.from_bytes(image[162 + 2 * i:164 + 2 * i], "little")
            cells.append(((x - 16) // 8, (y - 16) // 8))
        found.append((name, image, cells))
    return found


def cut_plugin(data, keep):
    """The file of a plug-in's first actions."""
    end = HEADER + PLUGIN
    for _ in range(min(keep, data[HEADER + 650])):
        commands = int.from_bytes(data[end + 496:end + 500], "little")
        end += ACTION
        for _ in range(commands):
            end += COMMAND + int.from_bytes(data[end + 48:end + 52], "little")
    cut = bytearray(data[:end])
    cut[HEADER + 650] = min(keep, data[HEADER + 650])
    return bytes(cut)


def some_actions(symbols, n):
    commands = [(0, "Control-a", 0, [(38, 4)]), (2, "text", 0, ()), (2, "typed", 1, ()),
                (3, "bell.wav", 0, ()), (4, "xterm -e top", 0, ()), (4, "system:wait", 0, ()),
                (4, "system:minimize", 0, ()), (5, "example.org", 0, ()),
                (5, "http://example.org/a%20b", 1, ())]
    return [(name[:-4], cells, [commands[i % len(commands)], commands[(i + 3) % len(commands)]])
            for i, (name, _, cells) in enumerate(symbols[:n])]


def plugins_seeds(skeleton, symbols):
    directory = os.path.join(skeleton, "plugins")
    for i, name in enumerate(sorted(os.listdir(directory))):
        with open(os.path.join(directory, name), "rb") as file:
            data = file.read()
        out = Input()
        options(out)
        out.number(1, 0, 4).text(name, 255).number(5, 0, 9).number(0, 0, 3)
        out.text(cut_plugin(data, 1 + i % 4), 100000)
        stroke(out, symbols[i][2])
        out.number(4, 0, 8)
        for step in (1, 0, 2, i % 7):
            out.yes(False).number(step, 0, 6)
            if step == 2:
                out.yes(True)
        yield out.bytes()
    for n in (1, 3, 8):
        out = Input()
        options(out)
        out.number(2, 0, 4)
        for name in ("A.sla", "B.b_2.sla"):
            out.text(name, 255).number(5, 0, 9).number(2, 0, 3)
            plugin(out, "Terminal", "XTerm.xterm", some_actions(symbols, n))
            out.yes(False)
        stroke(out, symbols[n][2])
        out.number(3, 0, 8)
        for step in (1, 0, 3):
            out.yes(False).number(step, 0, 6)
        yield out.bytes()
    # Several files of one class; its plug-in is deleted, made anew and saved.
    out = Input()
    options(out)
    out.number(4, 0, 4)
    for name in ("XTerm.xterm.sla", "XTerm.xterm_2.sla", "C.sla", "B.sla"):
        out.text(name, 255).number(5, 0, 9).number(2, 0, 3)
        plugin(out, "Terminal", "XTerm.xterm", some_actions(symbols, 1))
        out.yes(False)
    stroke(out, symbols[0][2])
    out.number(4, 0, 8)
    for step in (3, 4, 0, 6):
        out.yes(False).number(step, 0, 6)
        if step == 4:
            out.text("XTerm.xterm", 200).text("XTerm.xterm", 80)
    yield out.bytes()


def library_seeds(_, symbols):
    for i in range(0, len(symbols), 6):
        out = Input()
        out.number(2, 0, 6)
        for name, image, _cells in symbols[i:i + 2]:
            out.text(name, 255).number(5, 0, 9).yes(True).yes(True)
            out.text(image.rstrip(b"\0"), SYMBOL).yes(False).yes(False)
        out.yes(False)
        stroke(out, symbols[i][2])
        out.number(1, 0, 4)
        symbol(out, "Stored", symbols[i][2])
        out.text("Stored", 255).yes(True).number(0, 0, 2)
        yield out.bytes()


def documents_seeds(skeleton, _):
    texts = []
    for folder in ("symbols", "plugins"):
        directory = os.path.join(TOP, "share", folder)
        names = sorted(os.listdir(directory))
        for name in names[::6] if folder == "symbols" else names[:6]:
            with open(os.path.join(directory, name), encoding="utf-8") as file:
                document = json.load(file)
            if "actions" in document:
                document["actions"] = document["actions"][:3]
            texts.append(document)
    both = {"kind": "collection", "symbols": [], "plugins": [], "options": {"button": 2}}
    for document in texts[:3] + texts[-2:]:
        kind = "plugins" if document.get("kind") == "plugin" else "symbols"
        both[kind].append({k: v for k, v in document.items() if k != "kind"})
    texts += [both, {"kind": "options", "button": 2, "urlcmd": "xdg-open %s"}]
    for i, document in enumerate(texts):
        text = json.dumps(document, indent=1)
        # Imported behind it: for a plug-in another action of the same class.
        second = {k: v for k, v in document.items() if k in ("kind", "name", "classname", "button")}
        if "classname" in second:
            second["actions"] = [{"name": "Added", "symbol": {"points": [[16, 16], [264, 264]]}}]
        for existing in range(3) if "classname" in second else [i % 3]:
            out = Input()
            out.number(existing, 0, 2).yes(True).number(0, 0, 3)
            out.text(json.dumps(second), 1000).rest(text)
            yield out.bytes()


def signatures_seeds(_, symbols):
    for i in range(0, len(symbols), 8):
        some = symbols[i:i + 8]
        out = Input()
        out.number(len(some), 0, MAX_ACTIONS)
        for name, _image, cells in some:
            symbol(out, name, cells)
        out.number(2, 1, 4)
        stroke(out, some[0][2])
        stroke(out, some[-1][2])
        out.text("acbd", 40).text("cabd", 40)
        for value in (0, 3, 31, 17):
            out.number(value, 0, 31)
        yield out.bytes()


def shapes_seeds(_, symbols):
    for i in range(0, len(symbols), 8):
        some = symbols[i:i + 8]
        out = Input()
        out.number(len(some), 0, 12)
        for name, _image, cells in some:
            symbol(out, name, cells)
        out.number(2, 1, 4)
        stroke(out, some[0][2])
        stroke(out, some[-1][2])
        yield out.bytes()


def commands_seeds(_, symbols):
    for delivery, url in ((0, "firefox %s"), (1, "xdg-open"), (1, "sh -c %% %s %s")):
        out = Input()
        options(out, url, delivery=delivery)
        out.text(url, 200).text("http://example.org/?a='b c\"", 200)
        out.text("typed text, with letters: \u00e4\u20ac\n", 40000)
        plugin(out, "Some", "Some Class.with`blanks", some_actions(symbols, 9))
        out.yes(True).yes(False).yes(False).yes(True).yes(False)
        yield out.bytes()


def clients_seeds(_, __):
    names = (b"xterm\0XTerm\0", b"Navigator\0firefox\0", b"a/../b\nc\0\x1b[31m\0", b"x" * 110, b"")
    for name in names:
        out = Input()
        out.number(150, 0, 600).number(150, 0, 600)
        out.number(3, 1, 40)
        for i in range(3):
            out.number(10, -100, 300).number(10, -100, 300)
            out.number(400, 1, 500).number(400, 1, 500).number(1, 0, 3)
            out.number(4, 0, 4).number(4, 0, 4).yes(i == 1)
            if i == 1:
                out.number(2, 0, 4).number(2, 0, 2).text(b"\1\0\0\0\0\0\0\0", 400)
                out.number(5, 0, 30)
            out.number(0 if i == 2 else 5, 0, 5)
            if i == 2:
                out.text(name, 120)
            if i > 0:
                out.number(0, 0, min(i, 5))
        out.text(name.replace(b"\0", b"."), 200).number(50, 0, 99)
        out.text("Xft.dpi:\t192\n", 300)
        out.yes(True)
        for _ in range(16):
            out.yes(False)
        out.yes(True)
        yield out.bytes()


def messages_seeds(_, __):
    def begin(windows):
        out = Input()
        out.number(windows, 0, 3)
        for _ in range(windows):
            pass
        return out.yes(False).yes(False)

    # A selection is owned, and asked for by another client in two forms.
    out = begin(2)
    out.number(3, 0, 24)
    out.number(0, 0, 7).yes(True).text("selected t\u00e4xt", 2000).number(5, 0, 2**32 - 1)
    for target in (6, 2):
        out.number(6, 0, 7).number(0, 0, 12).number(1, 0, 3)
        # None, one that is not there, root, two clients, the remote's and the selections' windows.
        out.number(6, 0, 6).number(3, 0, 6).number(0, 0, 21).number(target, 0, 21)
        out.number(10, 0, 21).number(0, 0, 2**32 - 1)
    yield out.bytes()
    # A selection is asked for, and handed over whole.
    for text in ("taken text", "line\nline\tend\n", "\u00e4\u20ac" * 30, "a\\b"):
        out = begin(0)
        out.number(2, 0, 24)
        out.number(1, 0, 7).yes(True)
        out.number(2, 0, 7).number(0, 0, 3)
        out.number(6, 0, 21).number(0, 0, 2).text(text, 6000)
        out.yes(True).yes(True).yes(True).yes(True).yes(True)
        yield out.bytes()


def texts_seeds(_, symbols):
    def text(what, number, rest):
        return Input().number(what, 0, 4).number(number, 0, 255).rest(rest).bytes()

    for _name, _image, cells in symbols[::8]:
        lines = [f"{100 + 8 * x} {200 + 8 * y}" for x, y in cells]
        yield text(0, 0, "\n".join(lines) + "\n\n" + "\n".join(reversed(lines)))
        fields = ["2026-01-31T12:00:00.007Z", "XTerm.xterm", "abcd", "shape", "Copy", "0.98", "0.91",
                  "400", " ".join(lines)]
        yield text(1, 0, "\t".join(fields) + "\n")
    pictures = os.path.join(TOP, "images")
    for name in sorted(os.listdir(pictures)):
        if not name.endswith(".xpm"):
            continue
        with open(os.path.join(pictures, name), encoding="latin-1") as file:
            lines = re.findall(r'"((?:[^"\\]|\\.)*)"', file.read())
        yield text(2, 1, "\n".join(lines))
    yield text(2, 0, "2 2 2 1\n. c #ffffff\nX c #000000\nX.\n.X\n")
    yield text(3, 20, "Gr\u00f6\u00dfe \u20ac \U0001f600 plain \x1b[31m")
    out = Input().number(4, 0, 4).number(6, 0, 40)
    for _ in range(6):
        out.number(5, 0, 5).number(0, 0, 63).number(6, 0, 7).text("word w\u00f6rd", 30)
    yield out.bytes()


TARGETS = {
    "plugins": plugins_seeds, "library": library_seeds, "documents": documents_seeds,
    "signatures": signatures_seeds, "shapes": shapes_seeds, "commands": commands_seeds,
    "clients": clients_seeds, "messages": messages_seeds, "texts": texts_seeds,
}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    skeleton, output = sys.argv[1:]
    symbols = read_symbols(skeleton)
    for target, seeds in TARGETS.items():
        directory = os.path.join(output, target)
        os.makedirs(directory, exist_ok=True)
        for i, seed in enumerate(seeds(skeleton, symbols)):
            with open(os.path.join(directory, f"seed-{i:03}"), "wb") as file:
                file.write(seed)


if __name__ == "__main__":
    main()
