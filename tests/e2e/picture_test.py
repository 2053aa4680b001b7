"""Pictures and plots from outside: what lands in the files, and what is refused."""

import json
import os
import shutil
import struct
import subprocess
from pathlib import Path

from program import Trouble, call, play

PLAN = Path(os.environ["QUILL_ROOT"], "samples", "plan.dxf")


def check(condition, what):
    if not condition:
        raise Trouble(what)


def png_size(path):
    data = Path(path).read_bytes()
    check(data.startswith(b"\x89PNG\r\n\x1a\n"), f"{path} is no PNG file")
    return struct.unpack(">II", data[16:24])


def tool(*command):
    """Output of a PDF tool; none when it is not installed."""
    if shutil.which(command[0]) is None:
        return None
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def pictures():
    told = json.loads(call("picture", PLAN, "plan.png", "--size", "800x500", "--json").stdout)
    check(png_size("plan.png") == (800, 500), "the picture has another size than asked for")
    check(told["drawn"] > 50 and told["undrawn"] == {}, f"the plan is not drawn: {told}")
    before = Path("plan.png").read_bytes()
    check("-f" in call("picture", PLAN, "plan.png", status=2).stderr, "overwriting is not refused in words")
    check(Path("plan.png").read_bytes() == before, "a refused picture was written")
    call("picture", PLAN, "plan.png", "--window", "0,0,1000,1000", "--background", "black", "-f")
    check(Path("plan.png").read_bytes() != before, "-f does not overwrite")
    for wrong in (["--size", "0x7"], ["--window", "1,2,3"], ["--background", "smoke"], ["--layout", "None"]):
        call("picture", PLAN, "never.png", *wrong, status=2)
    call("picture", PLAN, "no/such/folder.png", status=2)
    Path("empty.dxf").write_text("0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n")
    result = call("picture", "empty.dxf", "empty.png", "--json")
    check(json.loads(result.stdout)["drawn"] == 0, "something was drawn from nothing")
    check("nothing to show" in result.stderr and png_size("empty.png") == (1600, 1000), "an empty drawing is not told")
    check(not Path("never.png").exists(), "a wrong option still made a picture")


def plots():
    told = json.loads(call("plot", PLAN, "plan.pdf", "--paper", "A3", "--json").stdout)
    check(told["drawn"] > 50 and len(told["pages"]) == 1, f"the plan is not plotted: {told}")
    check({told["pages"][0]["width"], told["pages"][0]["height"]} == {297, 420}, "that is no A3")
    information = tool("pdfinfo", "plan.pdf")
    check(information is None or "A3" in information or "841.8" in information, f"no A3 page: {information}")
    text = tool("pdftotext", "-raw", "plan.pdf", "-")
    if text is not None:
        words = ("泵房", "PUMP ROOM", "控制室", "一层平面图 GROUND FLOOR PLAN")
        check(all(each in text for each in words), f"the plan's text cannot be found in the plot: {text}")
        fonts = [line.split() for line in tool("pdffonts", "plan.pdf").splitlines()[2:]]
        # From the right: object (two numbers), unicode map, subset, embedded.
        check(fonts and all(font[-5] == "yes" for font in fonts), f"fonts are not embedded: {fonts}")
    call("plot", PLAN, "plan.pdf", status=2)
    call("plot", PLAN, "never.pdf", "--paper", "A99", status=2)
    check(not Path("never.pdf").exists(), "a refused plot was written")


def commands():
    play("PNGOUT\nscreen.png\n\n-PLOT\n\n\nA4\n\n\nE\nF\nC\n\n.\ncommand.pdf\n\n", PLAN)
    check(png_size("screen.png") == (1600, 1000), "PNGOUT does not write the view's raster")
    check(Path("command.pdf").read_bytes().startswith(b"%PDF"), "-PLOT wrote no PDF")
    call("run", "-", PLAN, text="-PLOT\nNo such layout\n", status=2)
    call("run", "-", PLAN, text="NO_SUCH_COMMAND\n", status=2)


def one_output():
    result = call("report", PLAN, PLAN, "--output", "both.txt", status=2)
    check("one drawing" in result.stderr and not Path("both.txt").exists(), "one report replaced the other")


pictures()
plots()
commands()
one_output()
