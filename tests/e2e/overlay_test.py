#!/usr/bin/env python3
"""Two versions of a drawing on each other: the picture, the list of places, and marks around them."""

import json
import os
import unittest
from pathlib import Path

import program

try:
    from PIL import Image
except ImportError:
    Image = None


def version(name, *lines):
    document = program.ezdxf.new("R2010")
    space = document.modelspace()
    space.add_lwpolyline([(0, 0), (400, 0), (400, 300), (0, 300)], close=True)
    space.add_circle((300, 220), 25)
    for start, end in lines:
        space.add_line(start, end)
    document.saveas(name)


def colours(path):
    """How many pixels are red, green and grey."""
    picture = Image.open(path).convert("RGB")
    counts = {"red": 0, "green": 0, "grey": 0}
    for number, (red, green, blue) in picture.getcolors(1 << 24):
        if red > 180 and green < 60 and blue < 60:
            counts["red"] += number
        elif red < 60 and green > 110 and blue < 60:
            counts["green"] += number
        elif red == green == blue and 150 < red < 200:
            counts["grey"] += number
    return counts


@unittest.skipUnless(program.ezdxf and Image, "ezdxf or PIL is not installed")
class OverlayTest(unittest.TestCase):
    def setUp(self):
        version("old.dxf", ((50, 50), (100, 50)), ((200, 100), (250, 100)))
        version("new.dxf", ((50, 50), (100, 60)), ((200, 100.02), (250, 100)))

    def test_what_differs_is_coloured_listed_and_marked(self):
        result = program.call("overlay", "old.dxf", "new.dxf", "both.png", "-f", "--json", status=1)
        places = [json.loads(line) for line in result.stdout.splitlines()]
        self.assertEqual([(place["removed"], place["added"]) for place in places], [(1, 1), (1, 1)])
        self.assertEqual(places[1]["box"], [50, 50, 100, 60])
        self.assertTrue(all(number > 100 for number in colours("both.png").values()), colours("both.png"))
        result = program.call("overlay", "old.dxf", "new.dxf", "tolerant.png", "-f", "--tolerance", "0.1",
                              "--marks", "marked.dxf", status=1)  # fmt: skip
        self.assertRegex(result.stdout, r"^1: 50,50 to 100,60: 1 removed, 1 added\n$")
        marks = program.marks("marked.dxf")
        self.assertEqual([mark["suggestionContent"] for mark in marks], ["与旧图不同：删除 1，新增 1。"])
        self.assertEqual(program.audit("marked.dxf"), [])

    def test_equal_drawings_and_refusals(self):
        self.assertEqual(program.call("overlay", "old.dxf", "old.dxf", "same.png", "-f").stdout, "")
        counts = colours("same.png")
        self.assertEqual((counts["red"], counts["green"]), (0, 0))
        self.assertIn("-f overwrites", program.call("overlay", "old.dxf", "new.dxf", "same.png", status=2).stderr)
        for wrong in (["x.txt"], ["x.png", "--tolerance", "far"], ["x.png", "--layout", "Nowhere"], [], ["a.png", "b.png"]):
            program.call("overlay", "old.dxf", "new.dxf", *wrong, status=2)
        program.call("overlay", "old.dxf", "missing.dxf", "x.png", status=2)
        self.assertFalse(os.path.exists("x.png"))

    def test_pdf_pages_hold_lines(self):
        program.call("overlay", "old.dxf", "new.dxf", "both.pdf", "-f", status=1)
        data = Path("both.pdf").read_bytes()
        self.assertTrue(data.startswith(b"%PDF"))
        self.assertNotIn(b"/Subtype /Image", data)


if __name__ == "__main__":
    unittest.main()
