#!/usr/bin/env python3
"""One picture of marks of every outline and frame, to look at: in plain, twisted, turned and mirrored views, on white and
on black, and plotted at A3.

    tools/mark_montage.py [--program FILE] [OUT.png]

Rows are drawings: marks as they are made; marks made in a view that is twisted; the plain ones after ROTATE and after
MIRROR. Columns are the picture on white, on black, and the A3 plot at 110 dots an inch. Needs PIL and pdftoppm. Your
settings are left alone: the program gets some of its own.
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from PIL import Image, ImageDraw

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/e2e"))
os.environ.setdefault("QUILLNOTE", str(ROOT / "build/release/bin/quillnote"))
import program  # noqa: E402

OPINION = "门宽不足 900"
CELL = (1500, 1060)  # About the shape of A3.
SETTINGS = {"viewFlag": "1", "autoFlagSize": "1", "autoTargetTxtH": "1", "TextStyle": "1", "color1": "1", "color2": "150"}
OUTLINES = range(1, 7)
FRAMES = range(100, 106)
PITCH = 1600
VIEW = "ZOOM\nC\n5000,2700\n6400\n"
TWISTED = "DVIEW\n\nTW\n30\n\n"
ROWS = {  # How the view is turned, and what happens to the marks at the end.
    "plain": ("", ""),
    "made and seen in a twisted view": (TWISTED, ""),
    "after ROTATE": ("", "ROTATE\nALL\n\n5000,2700\n30\n"),
    "after MIRROR": ("", "MIRROR\nALL\n\n5000,0\n5000,100\nY\n"),
}
LOOK = """ZOOM
E
(setvar "BACKGROUNDCOLOR" 16777215)
-PNGOUT
white.png

(setvar "BACKGROUNDCOLOR" 0)
-PNGOUT
black.png

-PLOT
Model
PDF
A3
Millimeters
Landscape
Display
Fit
Center
Yes
.
plot.pdf
Yes
"""


def outline_marks(style):
    """A rectangle of an outline, and in the thin and the thick one a polygon and a spline."""
    x = (style - 1) * PITCH
    yield program.mark_script(x, 4200, 1000, 700, f"{style}: {OPINION}")
    if style in (2, 6):
        for row, command in ((2900, "QN3_PolygonMarkJig"), (1600, "QN3_SplineMarkJig")):
            corners = ((0, 0), (1100, 100), (1300, 600), (600, 900), (100, 700))
            points = "".join(f"{x + px - 1000},{row + py}\n" for px, py in corners)
            yield f'{command}\n{points}\n{x + 500},{row + 900}\n@set 1003 "{OPINION}"\n@ok\n'


def frame_mark(frame):
    x, y = 3300 * ((frame - FRAMES[0]) // 2), 100 + 700 * (frame % 2)
    return f'QN3_QuillnoteLeader\n{x},{y}\n{x + 300},{y + 400}\n@set 1003 "{frame}: {OPINION}，请核对"\n@ok\n'


def make_drawing(view, change):
    """Each setting counts from the next start of the program on, so every style is a run of its own. Views go with
    a run and are not saved. Returns the pictures on white and on black, and the plot."""
    steps = [({}, "ERASE\nALL\n\n")]
    steps += [({"style": style}, "".join(outline_marks(style))) for style in OUTLINES]
    steps += [({"BKstyle": frame}, frame_mark(frame)) for frame in FRAMES]
    steps.append(({}, change + LOOK))
    drawing = ROOT / "samples/plan.dxf"
    for number, (settings, script) in enumerate(steps):
        for setting, value in settings.items():
            program.set_setting(setting, str(value))
        program.play(view + VIEW + script, drawing, f"{number}.dxf")
        drawing = f"{number}.dxf"
    subprocess.run(["pdftoppm", "-r", "110", "-png", "-singlefile", "plot.pdf", "plot"], check=True)
    pictures = [Image.open(name).convert("RGB") for name in ("white.png", "black.png", "plot.png")]
    for name in ("white.png", "black.png", "plot.pdf"):
        Path(name).unlink()
    return pictures


def montage():
    sheet = Image.new("RGB", (CELL[0] * 3, CELL[1] * len(ROWS)), "grey")
    pen = ImageDraw.Draw(sheet)
    for row, (name, (view, change)) in enumerate(ROWS.items()):
        for column, cell in enumerate(make_drawing(view, change)):
            cell.thumbnail(CELL)
            sheet.paste(cell, (column * CELL[0], row * CELL[1]))
        pen.text((8, row * CELL[1] + 4), name, fill="magenta")
    return sheet


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("out", nargs="?", default="marks.png", metavar="OUT.png")
    parser.add_argument("--program", help="the program to run")
    arguments = parser.parse_args()
    if arguments.program:
        program.QUILLNOTE = str(Path(arguments.program).resolve())
    out = Path(arguments.out).resolve()
    if not shutil.which("pdftoppm"):
        sys.exit("mark_montage: pdftoppm is missing")
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        os.environ.update(XDG_CONFIG_HOME=f"{folder}/config", XDG_DATA_HOME=f"{folder}/data", QT_QPA_PLATFORM="offscreen")
        for name, value in SETTINGS.items():
            program.set_setting(name, value)
        montage().save(out)
    print(out)


if __name__ == "__main__":
    main()
