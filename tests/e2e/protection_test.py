#!/usr/bin/env python3
"""A mark with a password is erased and edited only by who knows it."""

import hashlib
import re
import unittest
from pathlib import Path

import drawings
import program

PASSWORD = "审图2024"
MARK = program.mark_script(100, 50, 200, 100, "受保护的意见")


def typed(password):
    return f"@set 1032 {program.quoted(password)}\n@ok\n"


class ProtectionTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        program.set_setting("ChineseVersion", "1")
        program.set_setting("chPwMD5", hashlib.md5(PASSWORD.encode("gbk")).hexdigest())
        program.write("plan.dxf", drawings.as_text(drawings.drawing("2013"), "utf-8"))
        program.play(MARK, "plan.dxf", "marked.dxf")

    def left(self, script, drawing="marked.dxf", **options):
        """The marks that are there after the script, and what was said meanwhile."""
        result = program.play(script, drawing, "protected.dxf", **options)
        return program.marks("protected.dxf"), result.stderr

    def test_erasing_asks_for_the_password(self):
        cases = (
            ("wrong", typed("guess"), 1, "密码错误"),
            ("nothing", typed("  "), 1, "密码不能为空"),
            ("left", "@cancel\n", 1, ""),
            ("right", typed(PASSWORD), 0, ""),
        )
        for name, answer, count, message in cases:
            with self.subTest(name):
                marks, said = self.left("ERASE\nL\n\n" + answer)
                self.assertEqual(len(marks), count)
                self.assertIn(message, said)
                self.assertNotIn("锁定", said, "no layer is locked")

    def test_a_wrong_password_does_not_unlock(self):
        marks, _ = self.left("ERASE\nL\n\n" + typed("guess") + "ERASE\nL\n\n" + typed("guess2"))
        self.assertEqual(len(marks), 1)

    def test_the_right_one_counts_for_the_rest_of_the_run(self):
        script = "QN3_Edit\nL\n" + typed(PASSWORD) + '@set 1003 "新意见"\n@ok\nERASE\nL\n\n'
        self.assertEqual(self.left(script)[0], [])

    def test_editing_asks_too(self):
        marks, said = self.left("QN3_Edit\nL\n" + typed("guess"))
        self.assertEqual((marks[0]["suggestionContent"], marks[0]["editVersion"]), ("受保护的意见", 1))
        self.assertIn("密码错误", said)

    def test_marks_of_a_newer_program_stay_as_they_are(self):
        data = Path("marked.dxf").read_bytes()
        program.write("newer.dxf", re.sub(rb"(QuillnoteObj3\r?\n *70\r?\n *)7", rb"\g<1>8", data))
        [listed] = program.marks("newer.dxf")
        self.assertEqual(len(listed["unreadable"]), 1)
        script = "ERASE\nL\n\nMOVE\nL\n\n0,0\n10,10\nCOPY\nL\n\n"
        said = program.play(script, "newer.dxf", "kept.dxf").stderr
        self.assertEqual(said.count("请安装更高版本评图标签软件"), 1)
        self.assertEqual(said.count("1 个对象不允许这样改动"), 3)
        [newer, kept] = (drawings.Parts(Path(name).read_bytes()) for name in ("newer.dxf", "kept.dxf"))
        self.assertEqual([o for o in drawings.differences(newer, kept)[0] if o[0][1] == b"QUILLNOTE3"], [])

    def test_a_run_without_an_answer_ends(self):
        result = program.play("ERASE\nL\n\n", "marked.dxf", "never.dxf", status=2)
        self.assertIn("finds no answer", result.stderr)

    def test_undo_of_making_a_protected_mark_asks_nobody(self):
        self.assertEqual(self.left(MARK + "UNDO\n1\n", "plan.dxf")[0], [])


if __name__ == "__main__":
    unittest.main()
