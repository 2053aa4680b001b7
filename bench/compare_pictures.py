#!/usr/bin/python3
"""Claim: the first picture of a drawing takes a small part of the time and memory that other open programs need.

usage: compare_pictures.py [--limit SECONDS] FILE.dxf...
       (bench/make_drawing.py makes large ones; tools/setup bench installs the peers)

Every program makes a picture of model space, 2000 pixels wide, in a process of its own. LibreCAD converts to PDF and
pdftoppm paints that; ezdxf reads, draws with its add-on on matplotlib, and writes the PNG. A program that is missing,
fails or takes longer than the limit is named and left out.
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
QUILLNOTE = ROOT / "build/release/bin/quillnote"
WIDTH = 2000

EZDXF = """
import sys, time
import matplotlib
matplotlib.use("agg")
import matplotlib.pyplot as plt
from ezdxf import recover
from ezdxf.addons.drawing import Frontend, RenderContext
from ezdxf.addons.drawing.matplotlib import MatplotlibBackend
clock = [time.monotonic()]
drawing, _ = recover.readfile(sys.argv[1])
clock.append(time.monotonic())
figure = plt.figure(figsize=(20, 14))
Frontend(RenderContext(drawing), MatplotlibBackend(figure.add_axes([0, 0, 1, 1]))).draw_layout(drawing.modelspace())
clock.append(time.monotonic())
figure.savefig(sys.argv[2], dpi=%d)
clock.append(time.monotonic())
print("read %%.2f, draw %%.2f, PNG %%.2f" %% tuple(b - a for a, b in zip(clock, clock[1:])))
""" % (WIDTH // 20)


class Failed(Exception):
    pass


def run(limit, *command):
    """Seconds, peak memory in MB, and the last line that the command printed."""
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", HOME=tempfile.gettempdir())
    begin = time.monotonic()
    with tempfile.TemporaryFile() as said:
        process = subprocess.Popen([str(part) for part in command], stdout=said, stderr=subprocess.DEVNULL,
                                   env=environment)
        while True:
            pid, status, usage = os.wait4(process.pid, os.WNOHANG)
            seconds = time.monotonic() - begin
            if pid:
                break
            if seconds > limit:
                process.kill()
                os.wait4(process.pid, 0)
                raise Failed("more than %d s" % limit)
            time.sleep(0.005)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise Failed("status %d" % process.returncode)
        said.seek(0)
        lines = said.read().decode(errors="replace").split("\n")
    return seconds, usage.ru_maxrss / 1024, next((line for line in reversed(lines) if line), "")


def quillnote(limit, drawing, folder):
    seconds, memory, _ = run(limit, QUILLNOTE, "picture", drawing, folder / "own.png", "-f", "--size",
                             "%dx1400" % WIDTH)
    return seconds, memory, ""


def librecad(limit, drawing, folder):
    copy, pdf = folder / "librecad.dxf", folder / "librecad.pdf"  # It writes beside what it reads.
    shutil.copy(drawing, copy)
    converting, memory, _ = run(limit, "librecad", "dxf2pdf", "-a", copy)
    if not pdf.exists():
        raise Failed("no PDF")
    painting, more, _ = run(limit, "pdftoppm", "-png", "-singlefile", "-scale-to", WIDTH, pdf, folder / "librecad")
    return converting + painting, max(memory, more), "read and draw %.2f, PNG %.2f" % (converting, painting)


def ezdxf(limit, drawing, folder):
    return run(limit, "/usr/bin/python3", "-c", EZDXF, drawing, folder / "ezdxf.png")


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("\n\n", 1)[1])
    parser.add_argument("files", nargs="+", type=Path)
    parser.add_argument("--limit", type=float, default=600.0)
    arguments = parser.parse_args()
    if not QUILLNOTE.exists():
        sys.exit("build the program first: tools/build")
    print("%-28s %-10s %8s %9s %7s" % ("drawing", "program", "seconds", "memory MB", "ratio"))
    for drawing in arguments.files:
        own = None
        with tempfile.TemporaryDirectory() as folder:
            for program in (quillnote, librecad, ezdxf):
                try:
                    seconds, memory, phases = program(arguments.limit, drawing.resolve(), Path(folder))
                except (Failed, OSError) as reason:
                    print("%-28s %-10s left out: %s" % (drawing.name, program.__name__, reason), flush=True)
                    continue
                own = own or seconds
                print("%-28s %-10s %8.2f %9.0f %7.1f  %s" % (drawing.name, program.__name__, seconds, memory,
                                                           seconds / own, phases), flush=True)


if __name__ == "__main__":
    main()
