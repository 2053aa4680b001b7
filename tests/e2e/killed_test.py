#!/usr/bin/env python3
"""A program that is killed while it saves leaves the old file or the new one, never half of one."""

import hashlib
import os
import random
import signal
import subprocess
import time
import unittest
from pathlib import Path

import drawings
import program

SAVES = 4000
KILLS = 25


def digest(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


class KilledTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path("killed")
        self.folder.mkdir()
        # Some size, so that writing takes its time.
        circle = "|0 CIRCLE|8 0|5 F%04X|330 20|100 AcDbEntity|8 0|100 AcDbCircle|10 1.0|20 2.0|30 0.0|40 3.0"
        groups = drawings.drawing("2013")
        end = next(at for at, group in enumerate(groups) if group == (0, "ENDSEC") and groups[at + 2] == (2, "OBJECTS"))
        groups[end:end] = [group for number in range(3000) for group in drawings.split((circle % number)[1:])]
        self.original = drawings.as_text(groups, "utf-8")

    def test_the_file_is_always_whole(self):
        drawing = program.write("killed/expected.dxf", self.original)
        program.play("CIRCLE\n0,0\n5\n", drawing, "killed/changed.dxf")
        states = [digest(drawing), digest("killed/changed.dxf")]
        script = program.write(
            "killed/save.qns", b"CIRCLE\n0,0\n5\nQSAVE\n" + b"U\nQSAVE\nREDO\nQSAVE\n" * (SAVES // 2)
        )
        target = self.folder / "work" / "plan.dxf"
        chance = random.Random(7)
        found = []
        for _ in range(KILLS):
            program.write(target, self.original)
            process = subprocess.Popen([program.QUILLNOTE, "run", script, target], stderr=subprocess.DEVNULL)
            self.wait_for_first_save(target, process)
            time.sleep(chance.random() * 0.3)
            self.assertIsNone(process.poll(), "killed while it works")
            process.send_signal(signal.SIGKILL)
            process.wait()
            self.assertIn(digest(target), states)
            found.append(digest(target))
        self.assertEqual(set(found), set(states), "the kills came at different moments")
        left = set(os.listdir(target.parent)) - {target.name}
        self.assertLessEqual(len(left), KILLS, "at most one temporary file a kill")

    def wait_for_first_save(self, target, process):
        deadline = time.monotonic() + 30
        while target.read_bytes() == self.original and process.poll() is None and time.monotonic() < deadline:
            time.sleep(0.002)


if __name__ == "__main__":
    unittest.main()
