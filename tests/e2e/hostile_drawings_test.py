#!/usr/bin/env python3
"""A small share of tools/hostile_drawings.py: damaged drawings, commands on them, nothing lost in silence."""

import os
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(os.environ["QUILL_ROOT"]) / "tools"))
import hostile_drawings  # noqa: E402

COUNTS = {"rewired": 50, "deep": 6, "cut": 500, "bytes": 500}


class HostileDrawingsTest(unittest.TestCase):
    def test_a_share_of_each_kind(self):
        for kind, count in COUNTS.items():
            with self.subTest(kind):
                self.assertEqual(hostile_drawings.campaign("1", count, [kind]), [])


if __name__ == "__main__":
    unittest.main()
