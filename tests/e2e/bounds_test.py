#!/usr/bin/env python3
"""A share of tools/bounds.py: memory goes with the size of the file. What only time shows is left to the tool."""

import os
import sys
import unittest
from pathlib import Path

import program

sys.path.insert(0, str(Path(os.environ["QUILL_ROOT"]) / "tools"))
import bounds  # noqa: E402


@unittest.skipIf("/asan/" in program.QUILLNOTE, "sanitizers take memory of their own")
class BoundsTest(unittest.TestCase):
    def test_memory_goes_with_the_size_of_the_file(self):
        for name in ("MTEXT of 20 MB, picture", "bulged polylines, picture", "100,000 layers, info"):
            with self.subTest(name):
                self.assertEqual(bounds.check_memory(bounds.Run(program.QUILLNOTE, Path.cwd()), name), 0)


if __name__ == "__main__":
    unittest.main()
