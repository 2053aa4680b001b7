#!/usr/bin/env python3
"""Polygon and spline marks from outside: drawn by a script, given vertices and leaders, aligned, saved and listed again."""

import os
import shutil
import unittest
from pathlib import Path

import program

PLAN = Path(os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"

DRAW = """ZOOM
C
5000,2500
6000
QN3_PolygonMarkJig
4300,1800
5700,1800
5700,3200
5000,3500
4300,3200
4300,3200

7000,4200
@set 1003 "阀门间距不足，请核对"
@ok
QN3_SplineMarkJig
1500,1500
2500,1200
3000,2200
2000,2600


QN3_addVertext
5000,1800
PolygonMark2
7200,1200
8200,1200
8200,2000

9000,2600
@set 1003 "第二处"
@ok
addAleadLine
L
7400,3000
6800,1500

"""


class PolygonMarksTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        program.set_setting("name", "张工")
        program.set_setting("textHeight", "150")
        program.set_setting("style", "5")
        program.set_setting("viewFlag", "1")
        program.remove_setting("chPwMD5")

    def setUp(self):
        shutil.copy(PLAN, "plan.dxf")
        program.play(DRAW, "plan.dxf", "drawn.dxf")

    def test_outlines_texts_vertices_and_leaders(self):
        polygon, spline, second = program.marks("drawn.dxf")
        self.assertEqual([mark["markNumber"] for mark in (polygon, spline, second)], [1, 2, 3])
        self.assertEqual([mark["targetStyle"] for mark in (polygon, spline, second)], [51, 52, 51])
        self.assertEqual([mark["leaderMode"] for mark in (polygon, spline, second)], [1, 0, 1])
        self.assertEqual(polygon["suggestionContent"], "阀门间距不足，请核对")
        self.assertEqual((spline["suggestionContent"], spline["suggestionName"]), ("", "张工"))
        self.assertEqual(polygon["vertices"][: polygon["vertexCount"]],
                         [[4300, 1800, 0], [5000, 1800, 0], [5700, 1800, 0], [5700, 3200, 0], [5000, 3500, 0],
                          [4300, 3200, 0]])  # fmt: skip
        self.assertEqual((polygon["targetCorner1"], polygon["targetCorner2"]), ([4300, 1800, 0], [5700, 3500, 0]))
        used = [end for end, is_used in second["leaders"] if is_used]
        self.assertEqual(used[1:], [[7400, 3000, 0], [6800, 1500, 0]])
        for mark in (polygon, spline, second):
            self.assertGreater(mark["snapImage"]["size"], 100)
        self.assertRegex(polygon["snapChecksum"], r"^SUM=-?\d+$")
        self.assertEqual(program.audit("drawn.dxf"), program.audit("plan.dxf"))

    def test_boxes_are_aligned(self):
        before = program.marks("drawn.dxf")
        reference = before[2]["handle"]
        program.play(f"qn8_align1\nhandle {reference}\nALL\n\n", "drawn.dxf", "aligned.dxf")
        first, spline, second = program.marks("aligned.dxf")
        self.assertAlmostEqual(first["textBoxCorner1"][0], before[2]["textBoxCorner1"][0], places=6)
        self.assertAlmostEqual(first["textBoxCorner1"][1], before[0]["textBoxCorner1"][1], places=6)
        self.assertEqual(spline["targetCorner1"], before[1]["targetCorner1"])
        self.assertEqual(second["textBoxCorner1"], before[2]["textBoxCorner1"])

    def test_undo_takes_back_one_mark_at_a_time(self):
        program.play(DRAW + "U\nU\n", "plan.dxf", "undone.dxf")
        self.assertEqual([mark["markNumber"] for mark in program.marks("undone.dxf")], [1, 2])


if __name__ == "__main__":
    unittest.main()
