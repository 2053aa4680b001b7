#!/usr/bin/env python3
"""Leader marks and the commands over all marks, from outside: played by scripts, saved, listed again."""

import unittest
from pathlib import Path

import program

EMPTY = "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n"


def leader(command, start, end, opinion):
    return f"{command}\n{start}\n{end}\n@set 1003 {program.quoted(opinion)}\n@ok\n"


LEADERS = leader("QN3_QuillnoteLeader", "3000,1500", "8000,3500", "净高不足") + leader(
    "QN3_leader", "500,2500", "-1500,4000", "门宽"
)


def marks_after(*scripts):
    """The marks of an empty drawing after the scripts, each played on what the one before has saved."""
    drawing = Path("0.dxf")
    drawing.write_text(EMPTY, encoding="utf-8")
    for number, script in enumerate(scripts, start=1):
        program.play(script, drawing, saved := Path(f"{number}.dxf"))
        drawing = saved
    return program.marks(drawing)


class MarkSetTest(unittest.TestCase):
    def test_leader_marks_stand_on_both_sides_of_their_targets(self):
        right, left = marks_after(LEADERS)
        self.assertEqual((right["leaderMode"], left["leaderMode"]), (1, 1))
        self.assertEqual(right["leaders"][0], [[3000, 1500, 0], True])
        self.assertAlmostEqual(right["textBoxCorner1"][0], 8000)
        self.assertLess(left["textBoxCorner1"][0], -1500)

    def test_display_and_numbers_outlive_saving(self):
        shrunk = marks_after(LEADERS, "QN3_Hide\nQN3_Shrink\n")
        self.assertEqual([mark["displayMode"] for mark in shrunk], [1, 1])
        numbered = marks_after(LEADERS, "QN8_editNumber\nL\n20\n", "QN3_reNumber\nyes\n" + LEADERS)
        self.assertEqual([mark["markNumber"] for mark in numbered], [1, 2, 3, 4])
        continued = marks_after(LEADERS, "QN8_editNumber\nL\n20\n" + LEADERS)
        self.assertEqual([mark["markNumber"] for mark in continued], [1, 20, 21, 22])

    def test_undo_takes_one_command_back(self):
        self.assertEqual([mark["displayMode"] for mark in marks_after(LEADERS, "QN3_Hide\nU\n")], [0, 0])


if __name__ == "__main__":
    unittest.main()
