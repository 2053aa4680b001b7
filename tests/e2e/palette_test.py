#!/usr/bin/env python3
"""Answering a review: thirty marks of three reviewers, by script on the console and with keys in the window."""

import shutil
import time
import unittest
from pathlib import Path

import program
import screen

SAMPLE = Path(program.os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
REVIEWERS = ("Li", "Wang", "Zhao")
MARKS = 30
ANSWERED = ("feedbackContent", "feedbackType")
# Radio buttons in their order, and what they store.
STATUSES = {1009: 3, 1010: 2, 1011: 1, 1012: 0, 1013: -1}


def marked(name):
    """The sample with ten marks of each reviewer."""
    drawing = Path(name).absolute()
    shutil.copy(SAMPLE, drawing)
    for turn, reviewer in enumerate(REVIEWERS):
        program.set_setting("name", reviewer)
        script = "".join(program.mark_script(300 + 350 * i, 300 + 900 * turn, 250, 400, f"{reviewer} asks {i}")
                         for i in range(MARKS // len(REVIEWERS)))  # fmt: skip
        program.play(script, drawing, more := drawing.with_suffix(".more.dxf"))
        shutil.move(more, drawing)
    return drawing


def answer(place):
    """What the designer writes to the mark at a place; every seventh he leaves alone."""
    if place % 7 == 6:
        return "", 1012
    return f"answer {place}", list(STATUSES)[place % len(STATUSES)]


def panel(*lines):
    return "".join(f"@in CMarkWnd2 {line}\n" for line in lines)


def answering_script():
    script = "QN3_QuillnoteAsk\n\n"
    for place in range(MARKS):
        text, control = answer(place)
        if text:
            script += panel(f"set 1004 {program.quoted(text)}", f"click {control}")
        script += panel("keys Alt+Down")
    return script + panel("click 1")


class PaletteTest(unittest.TestCase):
    def setUp(self):
        for name, value in {"style": 2, "viewFlag": 1, "TextStyle": 1, "autoTargetTxtH": 0, "textHeight": 200}.items():
            program.set_setting(name, value)
        program.remove_setting("DockControlBarWidth")

    def check_answers(self, before, drawing):
        after = program.marks(drawing)
        self.assertEqual(len(after), MARKS)
        for place, (old, new) in enumerate(zip(before, after)):
            text, control = answer(place)
            wanted = {**old, "feedbackContent": text, "feedbackType": STATUSES[control]}
            self.assertEqual({**new, "file": old["file"]}, wanted, place)

    def test_answers_by_script(self):
        drawing = marked("script.dxf")
        before = program.marks(drawing)
        program.play(answering_script(), drawing, answered := drawing.with_name("answered.dxf"))
        self.check_answers(before, answered)
        self.assertEqual(program.audit(answered), program.audit(drawing))
        # The palette comes back to where it was, and walking alone changes no mark.
        walk = "QN3_QuillnoteAsk\n\n" + panel("keys Alt+Up", "set 1021 1", "click 1005", "click 1005")
        program.play(walk, answered, walked := drawing.with_name("walked.dxf"))
        self.check_answers(before, walked)
        # Undo takes back one answer at a time.
        program.play(answering_script() + "U\n", drawing, undone := drawing.with_name("undone.dxf"))
        last = program.marks(undone)[-1]
        self.assertEqual([last[name] for name in ANSWERED], ["", 0])
        self.assertEqual(program.marks(undone)[-2]["feedbackContent"], answer(MARKS - 2)[0])

    def test_a_drawing_without_marks(self):
        shutil.copy(SAMPLE, "empty.dxf")
        result = program.play("QN3_QuillnoteAsk\n\n" + panel("set 1007 1", "click 1008"), "empty.dxf", "same.dxf")
        self.assertIn("本图中无评图标签。", result.stderr)
        self.assertEqual(screen.read("same.dxf"), screen.read("empty.dxf"))

    def test_marks_of_one_reviewer(self):
        drawing = marked("names.dxf")
        program.play("QN3_ViewByName\n@doubleclick 1063 Wang\n", drawing, only := drawing.with_name("only.dxf"))
        modes = {mark["suggestionName"]: mark["displayMode"] for mark in program.marks(only)}
        self.assertEqual(modes, {"Li": -1, "Wang": 0, "Zhao": -1})

    @unittest.skipIf(screen.missing(), f"without {screen.missing()}")
    def test_answers_by_keys(self):
        drawing = marked("keys.dxf")
        before = program.marks(drawing)
        with screen.Screen() as desk:
            window = desk.start(drawing)
            window.command("QN3_QuillnoteAsk", "")
            time.sleep(1.0)
            desk.picture("palette.png")
            window.type("taken back")
            window.keys("Return", "ctrl+z")
            time.sleep(0.5)
            for place in range(MARKS):
                text, control = answer(place)
                if text:
                    window.type(text)
                    window.keys(f"alt+{control - 1008}")
                window.keys("alt+Down")
            # The last answer is stored by saving the drawing.
            window.keys("ctrl+s")
            time.sleep(1.0)
            desk.picture("answered.png")
            window.keys("ctrl+q")
            self.assertEqual(window.wait_closed(), 0)
        self.check_answers(before, drawing)
        program.play(answering_script(), marked("compared.dxf"), "by-script.dxf")
        by_keys, by_script = program.marks(drawing), program.marks("by-script.dxf")
        self.assertEqual([[mark[name] for name in ANSWERED] for mark in by_keys],
                         [[mark[name] for name in ANSWERED] for mark in by_script])  # fmt: skip


if __name__ == "__main__":
    unittest.main()
