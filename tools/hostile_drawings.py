#!/usr/bin/env python3
"""Drawings that were made to break something, and whether anything did.

    tools/hostile_drawings.py [--program FILE] [--seed N] [--first N] [--count N] [--kind rewired|deep|cut|bytes]
                              [--keep FOLDER]

Each case is a small drawing with marks that is damaged by chance, then worked on by some twenty commands in the
console, saved and opened again. Every case comes from the seed and its number alone, so what is printed for a
failure repeats it. Checked: no crash, no hang, and nothing lost in silence: what the commands do not concern stands
in the saved file as it did before, or saving was refused.

Kinds: references, handles and owners rewired; structures that are deep or lead back to themselves; files cut
at every byte in turn; single bytes changed. The last two come in four forms, text and binary of R12 and 2000; one
command draws on most of them and a mark on each tenth. A program works on many cases at a time; where it fails, each
is tried by itself.
"""

import argparse
import os
import random
import resource
import shutil
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/e2e"))
os.environ.setdefault("QUILLNOTE", str(ROOT / "build/release/bin/quillnote"))
import drawings  # noqa: E402
import program  # noqa: E402

SECONDS = 20  # Of the processor; a small drawing takes a fraction of one.
MARK = program.mark_script(100, 50, 200, 100, "opinion")
LEADER = "QN3_QuillnoteLeader\n100,100\n400,300\n@set 1003 leader\n@ok\n"
# Commands that add, or move entities; none of them erases anything.
STEPS = [
    MARK, LEADER, "LINE\n0,0\n50,60\n90,10\n\n", "CIRCLE\n300,300\n25\n", "TEXT\n10,10\n20\n0\ntext\n\n",
    "QN3_PolygonMark\n0,0\n100,0\n100,100\n\n", "MOVE\nL\n\n0,0\n10,20\n", "MOVE\nALL\n\n0,0\n1,1\n",
    "COPY\nL\n\n0,0\n500,0\n0,500\n\n", "ROTATE\nL\n\n0,0\n30\n", "MIRROR\nL\n\n0,0\n0,10\n\n",
    "SCALE\nL\n\n0,0\n2\n", "LAYER\nM\nnew\n\n", "QN3_allMarksShrink\n", "QN3_allMarksShow\n", "UNDO\n1\nREDO\n",
    "ZOOM\nE\n", "QN3_reNumber\nYES\n",
]  # fmt: skip
DOUBLING = ["COPY\nALL\n\n0,0\n5,5\n\n", "MIRROR\nALL\n\n0,0\n0,10\nN\n"]  # At most twice a case.
OURS = {b"QUILLNOTE3", b"TABLE", b"CLASS", b"LAYER", b"APPID"}
OUR_KEYS = {b"QN_DICT", b"XREC1", b"XREC2", b"DWG_FIELDS"}
RULER = b"*" * 28  # In the records of the drawing's last number and of the palette's place.
HANDLE = (5, 105)


class Failure(Exception):
    pass


def run(*arguments, text=None, seconds=None):
    """Exit status; a signal, or more processor time than that, is a failure. Waiting may be up to the machine."""
    seconds = seconds or SECONDS
    try:
        done = subprocess.run([os.environ["QUILLNOTE"], *map(str, arguments)], input=text and text.encode(),
                              capture_output=True, timeout=20 * seconds,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds)))  # fmt: skip
    except subprocess.TimeoutExpired:
        raise Failure(f"{arguments[0]} waits for more than {20 * seconds} s") from None
    if done.returncode not in (0, 1, 2):
        raise Failure(f"{arguments[0]} ended with {done.returncode}: {done.stderr[-300:].decode(errors='replace')}")
    return done.returncode


# What stands in a file ------------------------------------------------------------------------------


def objects(data):
    """Section and groups of every object, header variables left out; kept objects of R12 as well."""
    groups = drawings.read_binary(data) if data.startswith(drawings.SENTINEL) else drawings.read_text(data)
    kept = [value[1:] for code, value in groups if code == 999 and value.startswith(b"|")]
    groups += [(int(code), value) for code, value in zip(kept[0::2], kept[1::2])]
    found, section = [], b""
    for code, value in groups:
        if code == 0:
            found.append((section, []))
        if code == 2 and found and found[-1][1] == [(0, b"SECTION")]:
            section = value
        if found and code != 999:
            found[-1][1].append((code, value))
    parts = (b"SECTION", b"ENDSEC", b"EOF")
    return [(section, tuple(each)) for section, each in found if each[0][1] not in parts]


def nameless(groups):
    """Without the handle, which is replaced where it was another's too."""
    return tuple(group for group in groups if group[0] not in HANDLE)


def without_our_keys(groups):
    left, skip = [], False
    for code, value in groups:
        if skip and code in (350, 360):
            skip = False
            continue
        skip = code == 3 and value in OUR_KEYS
        if not skip:
            left.append((code, value))
    return tuple(left)


def is_ours(groups):
    texts = [value for code, value in groups if code == 1]
    return groups[0][1] in OURS or RULER in texts or any(text.startswith(b"QuillnoteObj3") for text in texts)


def check_nothing_lost(before, after):
    old, new = objects(before), objects(after)
    entities = lambda found: Counter(g[0][1] for section, g in found if section in (b"ENTITIES", b"BLOCKS"))  # noqa: E731
    if lost := entities(old) - entities(new):
        raise Failure(f"entities are lost: {dict(lost)}")
    others = lambda found: Counter(without_our_keys(nameless(g)) for section, g in found  # noqa: E731
                                   if section not in (b"ENTITIES", b"BLOCKS", b"HEADER") and not is_ours(g))  # fmt: skip
    if lost := others(old) - others(new):
        raise Failure(f"objects are lost or overwritten: {[list(each)[:6] for each in lost][:3]}")


def check_lines(before, after, changed=16):
    """For files that need not be readable: nearly every line of the file stands in the other one. In binary files
    zeros part the texts and most numbers."""
    part = b"\0" if before.startswith(drawings.SENTINEL[:8]) else b"\n"
    lost = Counter(before.split(part)) - Counter(after.split(part))
    if lost.total() > changed:
        raise Failure(f"{lost.total()} lines are lost: {list(lost)[:8]}")


# Drawings -------------------------------------------------------------------------------------------


def base_drawings(folder):
    """Small drawings that hold marks already, kept objects of R12 included: those to be rewired, and those to be cut
    and changed."""
    made = {}
    for version in ("R12", "R13", "2000", "2013"):
        for form in (drawings.as_text, drawings.as_binary):
            source, marked = folder / "base.dxf", folder / "marked.dxf"
            source.write_bytes(form(drawings.drawing(version), drawings.encoding_of(version, "ANSI_936")))
            if run("run", "-", source, "-o", marked, "-f", text=MARK + MARK + LEADER) != 0:
                raise Failure(f"the {version} drawing takes no marks")
            made[version, form] = marked.read_bytes()
    texts = [data for (_, form), data in made.items() if form is drawings.as_text]
    return texts, [data for (version, _), data in made.items() if version in ("R12", "2000")]


def groups_of(data):
    return [[code, value] for code, value in drawings.read_text(data)]


def text_of(groups):
    return b"".join(b"%3d\r\n%s\r\n" % (code, value) for code, value in groups)


def is_reference(code):
    return code in HANDLE or 320 <= code <= 369 or code == 1005


def rewired(chance, base):
    groups = groups_of(base)
    handles = [value for code, value in groups if code in HANDLE] + [b"0", b"FFFFFFFFFFFFFFFF", b"nothing"]
    names = [value for (code, value), before in zip(groups[1:], groups) if code == 2 and before[0] != 9]
    places = [each for each in groups if is_reference(each[0])]
    for _ in range(chance.randint(1, 6)):
        kind = chance.randrange(8)
        if kind < 5:
            chance.choice(places)[1] = chance.choice(handles)
        elif kind == 5:
            chance.choice([each for each in groups if each[0] == 2])[1] = chance.choice(names)
        else:
            begins = [i for i, each in enumerate(groups) if each[0] == 0]
            first = chance.randrange(len(begins) - 1)
            part = [list(each) for each in groups[begins[first] : begins[first + 1]]]
            if part[0][1] in (b"SECTION", b"ENDSEC", b"TABLE", b"ENDTAB", b"BLOCK", b"ENDBLK", b"EOF"):
                continue
            if kind == 6:
                groups[begins[first] : begins[first]] = part
            else:
                place = part.index(chance.choice([each for each in part if each[0] != 0]))
                groups[begins[first] + place][1] = chance.choice(handles)
    return text_of(groups)


def block(name, contents):
    return f"0 BLOCK|8 0|2 {name}|70 0|10 0|20 0|30 0|3 {name}|1 |{contents}0 ENDBLK|8 0|"


def insert(name):
    return f"0 INSERT|8 0|2 {name}|10 0|20 0|30 0|"


def dimension(name):
    return f"0 DIMENSION|8 0|2 {name}|10 0|20 0|30 0|11 1|21 1|31 0|70 0|13 0|23 0|33 0|14 9|24 0|34 0|"


def deep(chance, _base):
    """Blocks that show blocks, and dimensions whose pictures hold dimensions: chains, rings and trees."""
    count, wide = chance.choice(((3, 3), (12, 2), (70, 1), (3300, 1), (30000, 1), (40, 2)))
    show = chance.choice((insert, dimension))
    sign = "*D" if show is dimension else "B"
    ring = chance.random() < 0.5
    line = "0 LINE|8 0|10 0|20 0|30 0|11 1|21 1|31 0|"
    blocks = []
    for i in range(count):
        below = (0 if ring else None) if i + 1 == count else i + 1
        shown = "" if below is None else show(f"{sign}{below}") * wide
        blocks.append(block(f"{sign}{i}", line + shown))
    text = ("0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|0 ENDSEC|0 SECTION|2 BLOCKS|" + "".join(blocks)
            + "0 ENDSEC|0 SECTION|2 ENTITIES|" + show(f"{sign}0") * 2 + line + "0 ENDSEC|0 EOF")  # fmt: skip
    return drawings.as_text(drawings.split(text), "ascii")


def one_byte(chance, base):
    at = chance.randrange(len(base))
    if chance.random() < 0.4 and b"QUILLNOTE SECTIONS" in base:
        at = chance.randrange(base.index(b"QUILLNOTE SECTIONS") - 8, len(base))
    return base[:at] + bytes([chance.randrange(256)]) + base[at + 1 :]


KINDS = ("rewired", "deep", "cut", "bytes")


def damaged(kind, number, seed, bases):
    chance = random.Random(f"{seed} {kind} {number}")
    texts, forms = bases
    if kind == "cut":  # Every length of every form, in an order that goes everywhere soon.
        base = forms[number % len(forms)]
        return base[: number // len(forms) * 7919 % len(base)]
    if kind == "bytes":
        return one_byte(chance, forms[number % len(forms)])
    return (rewired if kind == "rewired" else deep)(chance, chance.choice(texts))


# Cases ----------------------------------------------------------------------------------------------


BATCH = {"rewired": 25, "deep": 1, "cut": 250, "bytes": 250}


def script_of(chance, kind):
    if kind in ("cut", "bytes"):
        return MARK if chance.random() < 0.1 else STEPS[2]
    steps = [chance.choice(STEPS) for _ in range(20)]
    for _ in range(2):
        steps[chance.randrange(20)] = chance.choice(DOUBLING)
    return steps[0] if chance.random() < 0.3 else STEPS[2] + "".join(steps)


class Batch:
    """Some cases of one kind, their drawings in a folder, and what became of them."""

    def __init__(self, kind, numbers, seed, bases, folder):
        self.kind, self.folder = kind, folder
        self.chance = random.Random(f"{seed} {kind} batch {numbers[0] // BATCH[kind]}")
        self.script = script_of(self.chance, kind)
        self.failures = {}
        shutil.rmtree(folder, ignore_errors=True)
        (folder / "saved").mkdir(parents=True)
        self.data = {}
        for number in numbers:
            self.data[number] = damaged(kind, number, seed, bases)
            self.drawing(number).write_bytes(self.data[number])

    def drawing(self, number):
        return self.folder / f"{number:06}.dxf"

    def saved(self, number):
        return self.folder / "saved" / f"{number:06}.dxf"

    def each(self, numbers, *arguments, text=None, of=None):
        """Runs the program once for all; when that goes wrong, once for each."""
        of = of or self.drawing
        call = lambda some, seconds: run(arguments[0], *arguments[1:2], *map(of, some), *arguments[2:], text=text,  # noqa: E731
                                         seconds=seconds)  # fmt: skip
        try:
            return call(numbers, SECONDS + len(numbers))
        except Failure as failure:
            if len(numbers) == 1:
                self.failures[numbers[0]] = str(failure)
                return 2
        for number in numbers:
            self.each([number], *arguments, text=text, of=of)
        return 2

    def play(self):
        numbers = list(self.data)
        unsaved = numbers
        for script in dict.fromkeys((self.script, MARK)):
            if unsaved:
                self.each(unsaved, "run", "-", "-o", f"{self.folder}/saved/", "-f", text=script)
            unsaved = [number for number in numbers if not self.saved(number).exists()]
        if self.chance.random() < 0.3:
            self.each(numbers, self.chance.choice(("info", "report", "marks")), *())
        done = [number for number in numbers if self.saved(number).exists()]
        for number in done:
            try:
                check = check_lines if self.kind in ("cut", "bytes") else check_nothing_lost
                check(self.data[number], self.saved(number).read_bytes())
            except Failure as failure:
                self.failures.setdefault(number, str(failure))
        if done and self.each(done, "marks", of=self.saved) == 2:
            for number in done:
                if run("marks", self.saved(number)) == 2:
                    self.failures.setdefault(number, "what was saved cannot be opened")
        return Counter({"saved": len(done), "refused": len(numbers) - len(done)})

    def keep(self, number, place):
        place.mkdir(parents=True, exist_ok=True)
        shutil.copy(self.drawing(number), place / f"{self.kind}-{number}.dxf")
        (place / f"{self.kind}-{number}.qns").write_text(self.script)


def batches(kind, first, count):
    start = first // BATCH[kind] * BATCH[kind]
    for begin in range(start, start + count, BATCH[kind]):
        yield list(range(begin, min(begin + BATCH[kind], start + count)))


def campaign(seed, count, kinds, keep=None, first=0):
    """Runs `count` cases of each kind, from a number that begins a batch; gives the sentences of those that failed.
    Ctrl+C ends it with what was found so far."""
    failures, results = [], Counter()
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for place in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"):
            os.environ[place] = name  # Nobody's settings change.
        os.environ.pop("DISPLAY", None)
        bases = base_drawings(folder)
        try:
            for kind, numbers in ((kind, numbers) for kind in kinds for numbers in batches(kind, first, count)):
                batch = Batch(kind, numbers, seed, bases, folder / "cases")
                for result, cases in batch.play().items():
                    results[kind, result] += cases
                for number, failure in batch.failures.items():
                    failures.append(f"--seed {seed} --kind {kind}, case {number}: {failure}")
                    print(failures[-1], flush=True)
                    if keep:
                        batch.keep(number, keep)
        except KeyboardInterrupt:
            print("stopped")
    for (kind, result), cases in sorted(results.items()):
        print(f"{kind}: {cases} {result}")
    return failures


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", type=Path, help="the program to try")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--count", type=int, default=100, help="cases of each kind")
    parser.add_argument("--first", type=int, default=0, help="number of the first case, rounded to a batch")
    parser.add_argument("--kind", choices=KINDS, action="append")
    parser.add_argument("--keep", type=Path, help="where drawings and scripts of failures go")
    options = parser.parse_args()
    if options.program:
        os.environ["QUILLNOTE"] = str(options.program.resolve())
    failures = campaign(options.seed, options.count, options.kind or list(KINDS), options.keep, options.first)
    print(f"{len(failures)} failures, seed {options.seed}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
