#!/usr/bin/env python3
"""Drawings of other programs: saved untouched they stay the same bytes, and a mark leaves everything else alone.

QUILLNOTE_REAL_DRAWINGS names a folder with DXF files; without it there is nothing to do. One line is printed for
each file.
"""

import os
import sys
import unittest
from collections import Counter
from pathlib import Path

import drawings
import program

FOLDER = os.environ.get("QUILLNOTE_REAL_DRAWINGS")
OPINION = "意见 opinion é"


def worse(before, after):
    """Faults that the auditor finds more often in the second list."""
    return sorted((Counter(after) - Counter(before)).elements())


def changed_objects(original, marked):
    """What a mark changed besides what it must: the next handle and the root dictionary."""
    lost, added = drawings.differences(drawings.Parts(original.read_bytes()), drawings.Parts(marked.read_bytes()))
    faults = []
    for each in lost:
        name = each[0][1].strip().decode("latin-1")
        if name == "$HANDSEED":
            continue
        if name == "DICTIONARY" and any(drawings.grew_only(each, other) for other in added):
            continue
        faults.append(name)
    return faults


def extents(path):
    """Two corners in the drawing, from its own extents."""
    box = program.json.loads(program.call("info", path, "--json").stdout)["extents"]
    return (box["min"], box["max"]) if box else ([0, 0, 0], [1, 1, 0])


@unittest.skipUnless(FOLDER, "QUILLNOTE_REAL_DRAWINGS names no folder")
class RealDrawingsTest(unittest.TestCase):
    def test_every_file(self):
        files = sorted(path for path in Path(FOLDER).rglob("*") if path.suffix.lower() == ".dxf")
        self.assertTrue(files)
        for path in files:
            name = path.relative_to(FOLDER)
            with self.subTest(str(name)):
                try:
                    note = self.check(path)
                except AssertionError as error:
                    print(f"FAILED {name}: {str(error)[:600]}")
                    raise
                print(f"ok     {name}{': ' if note else ''}{note}")
                sys.stdout.flush()

    def check(self, path):
        repairs = program.json.loads(program.call("info", path, "--json").stdout)["repairs"]
        saved, marked, twice = Path("saved.dxf"), Path("marked.dxf"), Path("twice.dxf")
        for old in (saved, marked, twice):
            old.unlink(missing_ok=True)
        program.play("ZOOM\nE\n", path, saved)
        self.assertEqual(saved.read_bytes() == path.read_bytes(), True, "saved untouched, but not the same bytes")

        low, high = extents(path)
        script = program.mark_script(low[0], low[1], high[0] - low[0] or 1, high[1] - low[1] or 1, OPINION)
        before = len(program.marks(path))
        program.play(script, path, marked)
        program.play(script, marked, twice)
        for count, file in ((1, marked), (2, twice)):
            listed = program.marks(file)[before:]
            self.assertEqual([mark["suggestionContent"] for mark in listed], [OPINION] * count)
        undone = "MOVE\nALL\n\n0,0\n5,5\nCOPY\nALL\n\n0,0\n5,5\n\nROTATE\nALL\n\n0,0\n30\nERASE\nALL\n\nUNDO\n1000\n"
        program.play(script + undone, path, saved)
        self.assertEqual(saved.read_bytes() == path.read_bytes(), True, "everything undone, but not the same bytes")
        faults = changed_objects(path, marked)
        if not repairs:
            self.assertEqual(faults, [], "objects that are not the mark's were changed")
        notes = [f"{len(repairs)} repairs ({repairs[0]})"] if repairs else []
        notes += [f"{len(faults)} objects changed with them: {sorted(set(faults))}"] if faults else []
        try:
            found = program.audit(path)
        except Exception as error:  # The original is beyond what the auditor reads.
            return "; ".join([*notes, f"not audited: {error}"])
        self.assertEqual(worse(found, program.audit(twice)), [], "the auditor finds more")
        return "; ".join(notes)


if __name__ == "__main__":
    unittest.main()
