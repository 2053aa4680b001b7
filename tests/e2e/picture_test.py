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


def drawing(*groups):
    """A drawing of version 2000 with two sheets; `groups` are sections behind its tables."""
    records = "".join(f"0\nBLOCK_RECORD\n5\n{handle}\n2\n{name}\n340\n{layout}\n" for handle, name, layout in
                      (("20", "*Model_Space", "30"), ("23", "*Paper_Space", "33"), ("24", "*Paper_Space0", "34")))
    layouts = "".join(f"0\nLAYOUT\n5\n{handle}\n330\nD\n100\nAcDbPlotSettings\n100\nAcDbLayout\n1\n{name}\n71\n{place}\n"
                      for handle, name, place in (("30", "Model", 0), ("33", "Empty", 1), ("34", "Full", 2)))
    return ("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$TILEMODE\n70\n1\n9\n$HANDSEED\n5\n100\n0\nENDSEC\n"
            f"0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nBLOCK_RECORD\n5\n1\n70\n3\n{records}0\nENDTAB\n0\nENDSEC\n"
            "0\nSECTION\n2\nENTITIES\n0\nLINE\n5\n50\n330\n24\n100\nAcDbEntity\n67\n1\n8\n0\n100\nAcDbLine\n10\n0\n20\n0\n11\n9\n21\n9\n"
            f"{groups[0] if groups else ''}0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary\n281\n1\n"
            "3\nACAD_LAYOUT\n350\nD\n0\nDICTIONARY\n5\nD\n330\nC\n100\nAcDbDictionary\n281\n1\n3\nEmpty\n350\n33\n3\nFull\n350\n34\n3\nModel\n350\n30\n"
            f"{layouts}{''.join(groups[1:])}0\nENDSEC\n0\nEOF\n")


def layouts():
    Path("sheets.dxf").write_text(drawing())
    result = call("plot", "sheets.dxf", "sheets.pdf", "--all", "--json")
    pages = [page["layout"] for page in json.loads(result.stdout)["pages"]]
    check(pages == ["Full"] and "Empty" in result.stderr, f"an empty layout stops the others: {pages}, {result.stderr}")
    for name in ("Full", "Empty", "Model", "Full"):
        play(f'(setvar "CTAB" "{name}")\n', "sheets.dxf", "shown.dxf")
        shown = play('(princ (strcat "shown " (getvar "CTAB")))\n', "shown.dxf")
        check(f"shown {name}" in shown.stdout + shown.stderr, f"{name} is not shown again: {shown}")


def images():
    image = ("0\nIMAGE\n5\n51\n330\n20\n100\nAcDbEntity\n8\n0\n100\nAcDbRasterImage\n10\n0\n20\n0\n30\n0\n11\n1\n21\n0\n31\n0\n"
             "12\n0\n22\n1\n32\n0\n13\n8\n23\n5\n340\n60\n70\n1\n")
    Path("beside").mkdir()
    shutil.copy("plan.png", "beside/scan.png")
    Path("beside/scan.dxf").write_text(drawing(image, "0\nIMAGEDEF\n5\n60\n330\nC\n100\nAcDbRasterImageDef\n1\n.\\scan.png\n"))
    for output in ("picture", "plot"):
        target = "scan.png" if output == "picture" else "scan.pdf"
        told = json.loads(call(output, "beside/scan.dxf", target, "--json").stdout)
        check(told["undrawn"] == {}, f"{output}: the image beside the drawing is not found: {told}")


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
layouts()
images()
commands()
one_output()
