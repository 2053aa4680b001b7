#!/usr/bin/env python3
"""Drawings that were made to break something, and whether anything did.

    tools/hostile_drawings.py [--program FILE] [--seed N] [--count N] [--kind rewired|deep|cut|bytes] [--keep FOLDER]

Each case is a small drawing with marks that is damaged by chance, then worked on by some twenty commands in the
console, saved and opened again. Every case comes from the seed and its number alone, so what is printed for a
failure repeats it. Checked: no crash, no hang, and nothing lost in silence: what the commands do not concern stands
in the saved file as it did before, or saving was refused.

Kinds: references, handles and owners rewired; structures that are deep or lead back to themselves; files cut
anywhere; single bytes changed.
"""

import argparse
import os
import random
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

SECONDS = 20  # A small drawing takes a fraction of one.
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
HANDLE = (5, 105)


class Failure(Exception):
    pass


def run(*arguments, text=None):
    """Exit status and messages; a signal or too much time is a failure."""
    try:
        done = subprocess.run([os.environ["QUILLNOTE"], *map(str, arguments)], input=text and text.encode(),
                              capture_output=True, timeout=SECONDS)  # fmt: skip
    except subprocess.TimeoutExpired:
        raise Failure(f"{arguments[0]} takes more than {SECONDS} s") from None
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
    return groups[0][1] in OURS or any(code == 1 and value.startswith(b"QuillnoteObj3") for code, value in groups)


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
    """For files that need not be readable: nearly every line of the file stands in the other one."""
    lost = Counter(before.split(b"\n")) - Counter(after.split(b"\n"))
    if lost.total() > changed:
        raise Failure(f"{lost.total()} lines are lost: {list(lost)[:8]}")


# Drawings -------------------------------------------------------------------------------------------


def base_drawings(folder):
    """Groups and form of small drawings that hold marks already, kept objects of R12 included."""
    made = {}
    for version in ("R12", "R13", "2000", "2013"):
        encoding = drawings.encoding_of(version, "ANSI_936")
        source, marked = folder / "base.dxf", folder / "marked.dxf"
        source.write_bytes(drawings.as_text(drawings.drawing(version), encoding))
        if run("run", "-", source, "-o", marked, "-f", text=MARK + MARK + LEADER) != 0:
            raise Failure(f"the {version} drawing takes no marks")
        made[version] = marked.read_bytes()
    return made


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


def cut(chance, base):
    return base[: chance.randrange(len(base))]


def one_byte(chance, base):
    at = chance.randrange(len(base))
    if chance.random() < 0.4 and b"QUILLNOTE SECTIONS" in base:
        at = chance.randrange(base.index(b"QUILLNOTE SECTIONS") - 8, len(base))
    return base[:at] + bytes([chance.randrange(256)]) + base[at + 1 :]


KINDS = {"rewired": rewired, "deep": deep, "cut": cut, "bytes": one_byte}


# Cases ----------------------------------------------------------------------------------------------


def script_of(chance, kind):
    if kind in ("cut", "bytes"):
        return MARK
    steps = [chance.choice(STEPS) for _ in range(20)]
    for _ in range(2):
        steps[chance.randrange(20)] = chance.choice(DOUBLING)
    return steps[0] if chance.random() < 0.3 else STEPS[2] + "".join(steps)


def play(number, seed, kind, bases, folder):
    chance = random.Random(f"{seed} {kind} {number}")
    base = bases[chance.choice(list(bases))]
    data = KINDS[kind](chance, base)
    drawing, saved = folder / "hostile.dxf", folder / "saved.dxf"
    drawing.write_bytes(data)
    saved.unlink(missing_ok=True)
    script = script_of(chance, kind)
    (folder / "hostile.qns").write_text(script)
    status = run("run", "-", drawing, "-o", saved, "-f", text=script)
    if status != 0 and script != MARK:
        (folder / "hostile.qns").write_text(MARK)
        status = run("run", "-", drawing, "-o", saved, "-f", text=MARK)
    if chance.random() < 0.3:
        run(chance.choice(("info", "report", "marks")), drawing)
    if status != 0:
        return "refused"
    if kind in ("cut", "bytes"):
        check_lines(data, saved.read_bytes())
    else:
        check_nothing_lost(data, saved.read_bytes())
    if run("marks", saved) == 2:
        raise Failure("what was saved cannot be opened")
    return "saved"


def campaign(seed, count, kinds, keep=None):
    """Runs `count` cases of each kind; gives the sentences of those that failed."""
    failures, results = [], Counter()
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for place in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"):
            os.environ[place] = name  # Nobody's settings change.
        bases = base_drawings(folder)
        for kind in kinds:
            for number in range(count):
                try:
                    results[kind, play(number, seed, kind, bases, folder)] += 1
                except Failure as failure:
                    failures.append(f"--seed {seed} --kind {kind}, case {number}: {failure}")
                    print(failures[-1], flush=True)
                    if keep:
                        keep.mkdir(parents=True, exist_ok=True)
                        for part in ("hostile.dxf", "hostile.qns"):
                            shutil.copy(folder / part, keep / f"{kind}-{seed}-{number}{Path(part).suffix}")
    for (kind, result), cases in sorted(results.items()):
        print(f"{kind}: {cases} {result}")
    return failures


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", type=Path, help="the program to try")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--count", type=int, default=100, help="cases of each kind")
    parser.add_argument("--kind", choices=KINDS, action="append")
    parser.add_argument("--keep", type=Path, help="where drawings and scripts of failures go")
    options = parser.parse_args()
    if options.program:
        os.environ["QUILLNOTE"] = str(options.program.resolve())
    failures = campaign(options.seed, options.count, options.kind or list(KINDS), options.keep)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
