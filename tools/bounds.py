#!/usr/bin/env python3
"""Claims: what a script costs goes with its length, and memory goes with the size of the file.

    tools/bounds.py [--program FILE] [--most N] [--only WORD]

Growth: each work is done at three sizes in processes of their own; the processor time for one item, start-up taken
off, may at the largest size be three times what it is at the smallest. Memory: the largest resident set of the
program for files that are made to need much, over that of the program for an empty drawing, in sizes of the file.
Exit status 1 when a bound is passed.
"""

import argparse
import os
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
GROWTH = 3.0  # Caches of the processor alone cost a factor of about two between these sizes.
MEMORY = 8.0

HEAD = "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|"
END = "0 ENDSEC|0 EOF"
LINE = "0 LINE|8 0|10 0|20 0|30 0|11 90|21 60|31 0|"


def text_of(groups):
    return "".join("%3s\n%s\n" % tuple(group.split(" ", 1)) for group in groups.split("|")).encode()


def with_layers(count):
    layers = "".join(f"0 LAYER|2 layer{i}|70 0|62 {i % 250 + 1}|6 CONTINUOUS|" for i in range(count))
    return (HEAD + f"0 SECTION|2 TABLES|0 TABLE|2 LAYER|70 {count}|" + layers + "0 ENDTAB|0 ENDSEC|0 SECTION|2 ENTITIES|"
            + LINE + END)  # fmt: skip


def with_entities(entities):
    return HEAD + "0 SECTION|2 ENTITIES|" + entities + END


def mark(x, y, width=40, height=30):
    return f'QN3_Quillnote\n{x},{y}\n{x + width},{y + height}\n@set 1003 "x"\n@ok\n'


def marks(count):
    """Their sizes differ, so that the picture of each has a view of its own."""
    return "".join(mark(100 * (i % 200), 100 * (i // 200), 30 + i % 31, 20 + i % 29) for i in range(count))


# One run --------------------------------------------------------------------------------------------


class Run:
    """Processor time and largest resident set of the program for one call. A process inherits the largest resident
    set of whoever starts it, so a small one does."""

    LAUNCHER = """
import resource, subprocess, sys
ended = subprocess.run(sys.argv[2:])
used = resource.getrusage(resource.RUSAGE_CHILDREN)
with open(sys.argv[1], "w") as out:
    print(ended.returncode, used.ru_utime + used.ru_stime, used.ru_maxrss * 1024, file=out)
"""

    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.environment = {**os.environ, "XDG_CONFIG_HOME": str(folder), "XDG_DATA_HOME": str(folder)}
        self.environment.pop("DISPLAY", None)

    def __call__(self, *arguments, text=None):
        command = [self.program, *map(str, arguments)]
        measured, log = self.folder / "measured", self.folder / "log"
        with open(log, "wb") as told:
            subprocess.run([sys.executable, "-I", "-S", "-c", self.LAUNCHER, measured, *command],
                           input=text and text.encode(), stdin=None if text else subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL, stderr=told, env=self.environment, check=True)  # fmt: skip
        status, seconds, most = measured.read_text().split()
        if status != "0":
            sys.exit(f"{' '.join(command)} ended with {status}: {log.read_text()[-500:]}")
        return float(seconds), int(most)

    def drawing(self, groups, name="plan.dxf"):
        path = self.folder / name
        path.write_bytes(groups if isinstance(groups, bytes) else text_of(groups))
        return path


# Growth ---------------------------------------------------------------------------------------------


def marks_by_script(run, count):
    return run("run", "-", run.drawing(with_entities(LINE)), text=marks(count))[0], count


def marks_in_layers(run, count):
    """A fixed number of marks: what one of them costs must not go with the layers."""
    drawing = run.drawing(with_layers(count))
    return run("run", "-", drawing, text=marks(200))[0] - run("run", "-", drawing, text=mark(0, 0))[0], 200


def copies_of_marks(run, count):
    """A thousand marks, doubled until there are so many more."""
    marked = run.folder / "marked.dxf"
    run("run", "-", run.drawing(with_entities(LINE)), "-o", marked, "-f", text=marks(1000))
    doublings = (count // 1000).bit_length()
    return run("run", "-", marked, text="COPY\nALL\n\n0,0\n5,5\n\n" * doublings)[0], 1000 * (2**doublings - 1)


def keys(run, count):
    return run("run", "-", run.drawing(with_entities(LINE)), text="@keys Ctrl\nREGEN\n" * count)[0], count


def words(run, count):
    line = "LINE " + "".join(f"{i % 100},{i % 77} " for i in range(count)) + "\n\n"
    return run("run", "-", run.drawing(with_entities(LINE)), text=line)[0], count


GROWING = {
    "marks made by a script": (marks_by_script, (500, 2000, 10000)),
    "a mark among layers": (marks_in_layers, (1000, 10000, 100000)),
    "copies of marks": (copies_of_marks, (1000, 4000, 32000)),
    "lines of @keys": (keys, (1000, 10000, 100000)),
    "words on a line": (words, (5000, 50000, 500000)),
}


def check_growth(run, most, only):
    failed = 0
    idle, _ = run("run", "-", run.drawing(with_entities(LINE)), text=mark(0, 0))
    for name, (work, sizes) in GROWING.items():
        if only not in name:
            continue
        costs = []
        for size in sizes:
            if size > most and costs:
                break
            seconds, items = work(run, size)
            seconds -= 0 if work is marks_in_layers else idle
            costs.append(max(seconds, 0.02) / items)
            print(f"{name:28} {size:8}  {seconds:8.2f} s  {costs[-1] * 1e6:10.1f} us each", flush=True)
        grown = costs[-1] / costs[0]
        failed += grown > GROWTH
        print(f"{name:28} grows {grown:.2f}" + ("  BEYOND" if grown > GROWTH else ""), flush=True)
    return failed


# Memory ---------------------------------------------------------------------------------------------


def bulged_polylines(run):
    vertices = "".join(f"|10 {i}|20 {i % 7}|42 0.7" for i in range(100))
    one = text_of("0 LWPOLYLINE|5 <H>|100 AcDbEntity|8 0|100 AcDbPolyline|90 100|70 0" + vertices)
    body = b"".join(one.replace(b"<H>", b"%X" % (0x100 + i)) for i in range(2500))
    return run.drawing(text_of(HEAD + "0 SECTION|2 ENTITIES") + body + text_of(END)), ("picture", "p.png", "-f")


def long_text(run):
    head = text_of(HEAD + "0 SECTION|2 ENTITIES|0 TEXT|8 0|10 0|20 0|30 0|40 5")
    return run.drawing(head + b"  1\n" + b"word " * 20_000_000 + b"\n" + text_of(END)), ("info",)


def long_text_shown(run):
    return long_text(run)[0], ("picture", "p.png", "-f")


def long_mtext(run):
    head = text_of(HEAD + "0 SECTION|2 ENTITIES|0 MTEXT|5 50|100 AcDbEntity|8 0|100 AcDbMText|10 0|20 0|30 0|40 5|41 500")
    pieces = b"".join(b"  3\n" + b"word " * 50 + b"\n" for _ in range(80_000))
    return run.drawing(head + pieces + b"  1\nend\n" + text_of(END)), ("picture", "p.png", "-f")


def many_layers(run):
    return run.drawing(with_layers(100_000)), ("info",)


def many_repairs(run):
    body = text_of(LINE.rstrip("|").replace("8 0", "5 50|8 0")) * 300_000
    return run.drawing(text_of(HEAD + "0 SECTION|2 ENTITIES") + body + text_of(END)), ("info",)


LARGE = {
    "TEXT of 100 MB, info": long_text,
    "TEXT of 100 MB, picture": long_text_shown,
    "MTEXT of 20 MB, picture": long_mtext,
    "bulged polylines, picture": bulged_polylines,
    "100,000 layers, info": many_layers,
    "300,000 repairs, info": many_repairs,
}


def check_memory(run, only):
    failed = 0
    for name, make in LARGE.items():
        if only not in name:
            continue
        drawing, (verb, *options) = make(run)
        options = [run.folder / each if each.endswith(".png") else each for each in options]
        _, empty = run(verb, run.drawing(with_entities(LINE), "empty.dxf"), *options)
        size = drawing.stat().st_size
        seconds, most = run(verb, drawing, *options)
        share = (most - empty) / size
        failed += share > MEMORY
        print(f"{name:28} {size / 1e6:6.1f} MB  {most / 1e6:7.1f} MB  {share:5.1f} sizes  {seconds:6.1f} s  "
              f"{len((run.folder / 'log').read_bytes())} bytes told" + ("  BEYOND" if share > MEMORY else ""), flush=True)  # fmt: skip
    return failed


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default=str(ROOT / "build/release/bin/quillnote"))
    parser.add_argument("--most", type=int, default=1_000_000, help="sizes above this are left out")
    parser.add_argument("--only", default="", help="works whose name holds this")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        run = Run(options.program, Path(name))
        failed = check_growth(run, options.most, options.only) + check_memory(run, options.only)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
