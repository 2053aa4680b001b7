#!/usr/bin/env python3
"""A small share of tools/save_campaign.py: programs that save into one folder and are killed lose nothing.

QUILL_KILLS says how many are killed.
"""

import os
import subprocess
import sys
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import program

ROOT = Path(os.environ["QUILL_ROOT"])
sys.path.insert(0, str(ROOT / "tools"))
import save_campaign  # noqa: E402


class SaveCampaignTest(unittest.TestCase):
    def test_nothing_that_was_reported_is_lost(self):
        kills = int(os.environ.get("QUILL_KILLS", "12"))
        counts, faults = save_campaign.campaign(
            program.QUILLNOTE, Path("campaign").absolute(), kills, 3, ROOT / "samples/plan.dxf"
        )
        self.assertEqual(faults, [])
        self.assertGreaterEqual(counts["kills"], kills)
        self.assertGreater(counts["reported"], 0, "some saved")

    def test_of_those_who_meet_only_the_first_saves(self):
        drawing = program.write("meeting/plan.dxf", (ROOT / "samples/plan.dxf").read_bytes())

        def draw(number):
            script = program.mark_script(1000 * number, 1000, 200, 200, f"mark {number}") + "QSAVE\n"
            command = [program.QUILLNOTE, "run", "-", str(drawing)]
            return subprocess.run(command, input=script, capture_output=True, encoding="utf-8", timeout=120)

        with ThreadPoolExecutor(6) as pool:
            results = list(pool.map(draw, range(1, 7)))
        saved = {f"mark {number}" for number, result in enumerate(results, 1) if result.returncode == 0}
        self.assertEqual({mark["suggestionContent"] for mark in program.marks(drawing)}, saved)
        self.assertTrue(saved)
        for result in results:
            if result.returncode != 0:
                self.assertIn(save_campaign.ADVICE, result.stderr)


if __name__ == "__main__":
    unittest.main()
