#!/usr/bin/env python3
"""A mark with a password is erased and edited only by who knows it."""

import hashlib
import unittest

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

    def test_a_run_without_an_answer_ends(self):
        result = program.play("ERASE\nL\n\n", "marked.dxf", "never.dxf", status=2)
        self.assertIn("finds no answer", result.stderr)

    def test_undo_of_making_a_protected_mark_asks_nobody(self):
        self.assertEqual(self.left(MARK + "UNDO\n1\n", "plan.dxf")[0], [])


if __name__ == "__main__":
    unittest.main()
