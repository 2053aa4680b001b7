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

    def refused(self, script):
        """What was said; a command that is refused ends the script."""
        said = program.play(script, "marked.dxf", "refused.dxf", status=2).stderr
        self.assertFalse(Path("refused.dxf").exists())
        return said

    def test_erasing_asks_for_the_password(self):
        for answer, message in ((typed("guess"), "密码错误"), (typed("  "), "密码不能为空"), ("@cancel\n", "")):
            with self.subTest(answer):
                said = self.refused("ERASE\nL\n\n" + answer)
                self.assertIn(message, said)
                self.assertNotIn("锁定", said, "no layer is locked")
        self.assertEqual(self.left("ERASE\nL\n\n" + typed(PASSWORD))[0], [])

    def test_the_right_one_counts_for_the_rest_of_the_run(self):
        script = "QN3_Edit\nL\n" + typed(PASSWORD) + '@set 1003 "新意见"\n@ok\nERASE\nL\n\n'
        self.assertEqual(self.left(script)[0], [])

    def test_editing_asks_too(self):
        self.assertIn("密码错误", self.refused("QN3_Edit\nL\n" + typed("guess")))

    def test_marks_of_a_newer_program_stay_as_they_are(self):
        data = Path("marked.dxf").read_bytes()
        program.write("newer.dxf", re.sub(rb"(QuillnoteObj3\r?\n *70\r?\n *)7", rb"\g<1>8", data))
        [listed] = program.marks("newer.dxf")
        self.assertEqual(len(listed["unreadable"]), 1)
        script = "MOVE\nALL\n\n0,0\n10,10\nCOPY\nALL\n\n0,0\n5,5\n\nERASE\nALL\n\n"
        said = program.play(script, "newer.dxf", "kept.dxf").stderr
        self.assertEqual(said.count("请安装更高版本评图标签软件"), 1)
        self.assertEqual(said.count("个对象不允许这样改动"), 3)
        [newer, kept] = (drawings.Parts(Path(name).read_bytes()) for name in ("newer.dxf", "kept.dxf"))
        self.assertEqual([o for o in drawings.differences(newer, kept)[0] if o[0][1] == b"QUILLNOTE3"], [])

    def test_a_run_without_an_answer_ends(self):
        result = program.play("ERASE\nL\n\n", "marked.dxf", "never.dxf", status=2)
        self.assertIn("finds no answer", result.stderr)

    def test_undo_of_making_a_protected_mark_asks_nobody(self):
        self.assertEqual(self.left(MARK + "UNDO\n1\n", "plan.dxf")[0], [])


if __name__ == "__main__":
    unittest.main()
