#!/usr/bin/env python3
"""Ticks stamped in the window, as fast as somebody clicks, and erased where a window manager keeps
clicks with Alt for itself."""

import os
import shutil
import time
import unittest
from pathlib import Path

import program
import screen

ROOT = Path(os.environ["QUILL_ROOT"])
CLICKS = int(os.environ.get("QUILLNOTE_TICK_CLICKS", "60"))


def ticks(drawing):
    space = program.ezdxf.readfile(str(drawing)).modelspace()
    return [e for e in space.query("INSERT") if e.dxf.name.startswith("Quillnote")]


@unittest.skipIf(screen.missing() or not program.ezdxf, "no screen, or no ezdxf")
class TickClicksTest(unittest.TestCase):
    def setUp(self):
        program.set_setting("YesTickHeight", "10")
        program.set_setting("defaultGreen", "0")
        shutil.copy(ROOT / "samples" / "plan.dxf", "clicked.dxf")

    def saved(self, window, expected):
        window.keys("ctrl+s")
        return screen.wait_for("the saved ticks", lambda: len(ticks("clicked.dxf")) == expected)

    def test_every_click_is_a_tick(self):
        with screen.Screen() as desk:
            window = desk.start("clicked.dxf")
            window.show((0, 0), 4000)
            window.command("QN3_Yes")
            columns = 25
            words = []
            for i in range(CLICKS):
                x, y = window.pixel((-1200 + 100 * (i % columns), -1000 + 100 * (i // columns)))
                words += ["mousemove", x, y, "click", 1, "sleep", 0.03]
            started = time.monotonic()
            desk.xdotool(*words)
            print(f"{CLICKS} clicks in {time.monotonic() - started:.1f} s")
            window.command("U", "U", "")
            desk.picture("clicked.png")
            self.saved(window, CLICKS - 2)

    def test_e_erases(self):
        with screen.Screen() as desk:
            window = desk.start("clicked.dxf")
            window.show((0, 0), 400)
            window.command("QN3_Yes")
            for x in (-60, 0, 60):
                window.click((x, 0))
            window.command("E")
            window.click((0, 0))
            window.command("")
            desk.picture("erased.png")
            self.saved(window, 2)


if __name__ == "__main__":
    unittest.main()
