#!/usr/bin/env python3
"""What marks add to a drawing: few bytes, and a picture that other programs read as it was meant."""

import os
import unittest
from pathlib import Path

import drawings
import program

SAMPLE = Path(os.environ["QUILL_ROOT"]) / "samples/plan.dxf"
MOST_GRAPHICS = 2100  # Bytes; twice as many in the file, beside the fields.


def grid_of_marks(count):
    lines = []
    for i in range(count):
        x, y = i % 5 * 1500 + 100, i // 5 * 900
        lines.append(program.mark_script(x, y, 1300, 700, f"第 {i + 1} 处门宽不足，请核对运输通道。"))
    return "".join(lines)


def polygon_script(command):
    corners = "".join(f"{100 + 60 * i},{50 + (i % 2) * 40 + i * i}\n" for i in range(16))
    return f"{command}\n{corners}\n\n"


class MarkSizeTest(unittest.TestCase):
    def setUp(self):
        program.set_setting("viewFlag", "1")

    def tearDown(self):
        for name in ("style", "viewFlag"):
            program.remove_setting(name)

    def test_marks_of_every_style_are_small_and_seen_right(self):
        scripts = {style: program.mark_script(100, 50, 400, 300, "门宽不足") for style in range(1, 7)}
        for style, script in scripts.items():
            with self.subTest(style=style):
                program.set_setting("style", str(style))
                self.check(f"style{style}", script)
        for style in (2, 6):  # Thin and thick outlines.
            program.set_setting("style", str(style))
            for command in ("QN3_PolygonMarkJig", "QN3_SplineMarkJig", "QN3_PolygonMark"):
                with self.subTest(style=style, command=command):
                    self.check(f"{command}{style}", polygon_script(command))

    def check(self, name, script):
        empty = program.write(f"{name}.dxf", drawings.as_text(drawings.drawing("2013"), "utf-8"))
        drawing = f"{name}-marked.dxf"
        program.play(script + script, empty, drawing)
        if program.ezdxf is None:
            return
        document = program.ezdxf.readfile(drawing)
        marks = document.modelspace().query("QUILLNOTE3")
        self.assertEqual(len(marks), 2)
        for mark in marks:
            graphics = mark.proxy_graphic
            self.assertLess(len(graphics), MOST_GRAPHICS)
            parts = list(program.ezdxf.proxygraphic.ProxyGraphic(graphics, document).virtual_entities())
            arcs = [part for part in parts if part.dxftype() == "ARC"]
            self.assertIn(len(arcs), range(4, 17))
            self.assertTrue(any(part.dxftype() == "HATCH" for part in parts), "the flag")
            self.assertTrue(any(part.dxftype() == "TEXT" and part.dxf.text in "12" for part in parts), "its number")

    def test_what_is_seen_near_does_not_depend_on_what_was_seen_from_afar(self):
        drawing = program.write("views.dxf", drawings.as_text(drawings.drawing("2013"), "utf-8"))
        corners = []
        for style in range(1, 7):
            program.set_setting("style", str(style))
            program.play(program.mark_script(1000 * style, 2000, 400, 300, "门宽不足"), drawing, drawing)
            corners += [(1000 * style, 2000), (1000 * style + 400, 2300)]
        looks = []
        for number, (x, y) in enumerate(corners):
            # What bulges out of the corner, and what hangs beside it.
            for dx, dy in ((-60, -60), (5, 5)):
                looks.append(f"ZOOM\nW\n{x + dx},{y + dy}\n{x + dx + 50},{y + dy + 50}\nPNGOUT\n%s{number}{dx}.png\n\n")
        program.play("ZOOM\nE\nPNGOUT\nfar.png\n\n" + "".join(look % "after" for look in looks), drawing)
        for look in looks:
            program.play(look % "alone", drawing)
        for alone in sorted(Path().glob("alone*.png")):
            after = Path(alone.name.replace("alone", "after"))
            self.assertEqual(after.read_bytes(), alone.read_bytes(), alone.name)

    def test_twenty_marks_on_the_sample(self):
        program.set_setting("style", "2")
        result = program.play(grid_of_marks(20), SAMPLE, "twenty.dxf")
        self.assertNotIn("本图中无评图标签", result.stdout + result.stderr)  # Nobody asked.
        self.assertEqual(len(program.marks("twenty.dxf")), 20)
        self.assertLess(Path("twenty.dxf").stat().st_size, 300_000)


if __name__ == "__main__":
    unittest.main()
