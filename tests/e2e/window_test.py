#!/usr/bin/env python3
"""The window, worked with mouse and keys: mark, edit, drag, undo, save, open again; and the same by script."""

import math
import shutil
import signal
import time
import unittest
from pathlib import Path

import program
import screen

SAMPLE = Path(program.os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
# Fields that no two marks share, and pictures, which have the pixels of the view.
OWN_FIELDS = {"GUID", "file", "snapImage", "snapImageSize"}


def near(a, b, tolerance):
    """Equal but for places that a mouse points at."""
    if isinstance(a, float) or isinstance(b, float):
        return math.isclose(a, b, abs_tol=tolerance)
    if isinstance(a, list) and isinstance(b, list):
        return len(a) == len(b) and all(near(x, y, tolerance) for x, y in zip(a, b))
    return a == b


@unittest.skipIf(screen.missing(), f"without {screen.missing()}")
class WindowTest(unittest.TestCase):
    def setUp(self):
        for name, value in {"style": 2, "viewFlag": 1, "TextStyle": 1, "autoTargetTxtH": 0, "textHeight": 200}.items():
            program.set_setting(name, value)
        program.set_setting("name", "checker")
        self.drawing = Path(f"{self.id().rsplit('.', 1)[-1]}.dxf").absolute()
        shutil.copy(SAMPLE, self.drawing)

    def draw_mark(self, window, corner, opposite, opinion):
        window.command("QN3_Quillnote")
        window.click(corner)
        window.click(opposite)
        time.sleep(1.0)
        window.type(opinion)
        window.keys("ctrl+Return")
        time.sleep(0.7)

    def save_and_leave(self, window):
        window.keys("ctrl+s")
        time.sleep(0.7)
        window.keys("ctrl+q")
        self.assertEqual(window.wait_closed(), 0)

    def compare(self, drawing, script, tolerance):
        """The drawing's marks against those that a script makes in a fresh copy."""
        expected = drawing.with_suffix(".expected.dxf")
        program.play(script, SAMPLE, expected)
        by_hand, by_script = program.marks(drawing), program.marks(expected)
        self.assertEqual(len(by_hand), len(by_script))
        for mark, wanted in zip(by_hand, by_script):
            self.assertEqual(mark.keys(), wanted.keys())
            self.assertGreater(mark["snapImage"]["size"], 0)
            for name in mark.keys() - OWN_FIELDS:
                self.assertTrue(near(mark[name], wanted[name], tolerance), f"{name}: {mark[name]} {wanted[name]}")

    def test_marks_by_hand_are_those_of_a_script(self):
        with screen.Screen() as desk:
            window = desk.start(self.drawing)
            window.show((6000, 3000), 8000)
            self.draw_mark(window, (4500, 2000), (5400, 2900), "check the valve")
            self.draw_mark(window, (7500, 4000), (6900, 3200), "second")
            desk.picture("marks.png")
            pixel = window.unit()
            self.save_and_leave(window)
        script = "ZOOM\nC\n6000,3000\n8000\n" + program.mark_script(4500, 2000, 900, 900, "check the valve")
        script += program.mark_script(6900, 3200, 600, 800, "second")
        self.compare(self.drawing, script, 1.5 * pixel)
        self.assertEqual(program.audit(self.drawing), program.audit(SAMPLE))

    def test_undo_and_redo_by_keys(self):
        with screen.Screen() as desk:
            window = desk.start(self.drawing)
            window.show((6000, 3000), 8000)
            self.draw_mark(window, (4500, 2000), (5400, 2900), "one")
            window.command("CIRCLE", "6000,3000", "500")
            window.keys("ctrl+z", "ctrl+z")
            window.keys("ctrl+s")
            time.sleep(0.7)
            self.assertEqual(screen.read(self.drawing), screen.read(SAMPLE))
            window.keys("ctrl+y")
            desk.picture("redone.png")
            self.save_and_leave(window)
        self.assertEqual([mark["suggestionContent"] for mark in program.marks(self.drawing)], ["one"])

    def test_grips_and_erasing(self):
        with screen.Screen() as desk:
            window = desk.start(self.drawing)
            window.show((6000, 3000), 8000)
            self.draw_mark(window, (4500, 2000), (5400, 2900), "drag me")
            self.draw_mark(window, (6900, 3200), (7500, 4000), "erase me")
            pixel = window.unit()
            window.click((6900, 3500))
            window.keys("Delete")
            window.click((4500, 2300))
            desk.picture("grips.png")
            window.drag((5400, 2900), (6000, 3500))
            window.keys("Escape")
            desk.picture("dragged.png")
            self.save_and_leave(window)
        (mark,) = program.marks(self.drawing)
        self.assertTrue(near(mark["targetCorner2"], [6000.0, 3500.0, 0.0], 2 * pixel), mark["targetCorner2"])
        self.assertTrue(near(mark["targetCorner1"], [4500.0, 2000.0, 0.0], 2 * pixel), mark["targetCorner1"])

    def test_selection_windows(self):
        with screen.Screen() as desk:
            window = desk.start(self.drawing)
            window.command("CIRCLE", "30000,0", "100", "CIRCLE", "31000,0", "100")
            window.show((30500, 0), 3000)
            # From the left only what lies inside is chosen, from the right also what is crossed.
            window.drag((29800, -300), (31000, 300))
            window.keys("Delete")
            window.drag((31000, 300), (30800, -300))
            desk.picture("crossing.png")
            window.command("MOVE", "0,0", "0,1000")
            self.save_and_leave(window)
        circles = program.play("LIST\nL\n\n", self.drawing).stderr
        self.assertIn("1000", circles)

    def test_leaving_asks_for_unsaved_changes(self):
        with screen.Screen() as desk:
            window = desk.start(self.drawing)
            window.command("CIRCLE", "6000,3000", "500")
            window.keys("ctrl+q")
            time.sleep(1.0)
            desk.picture("asking.png")
            window.keys("Escape")
            time.sleep(0.5)
            self.assertTrue(window.is_running())
            self.assertEqual(screen.read(self.drawing), screen.read(SAMPLE))

    def test_ended_from_outside_it_keeps_changes_and_gives_back_the_lock(self):
        data = Path("ended").absolute()
        lock = self.drawing.with_name(f".{self.drawing.name}.quill-lock")
        for kind in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            shutil.rmtree(data, ignore_errors=True)
            with screen.Screen() as desk:
                desk.environment["XDG_DATA_HOME"] = str(data)
                window = desk.start(self.drawing)
                window.command("CIRCLE", "6000,3000", "543.21", "LINE", "0,0")  # One command done, one begun.
                self.assertTrue(lock.exists())
                window.process.send_signal(kind)
                self.assertEqual(window.wait_closed(), -kind)
            (copy,) = data.glob("*/recovery/*.dxf")
            self.assertIn(b"543.21", screen.read(copy))
            self.assertFalse(lock.exists())
            self.assertEqual(screen.read(self.drawing), screen.read(SAMPLE))


if __name__ == "__main__":
    unittest.main()
