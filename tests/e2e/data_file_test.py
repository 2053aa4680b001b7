#!/usr/bin/env python3
"""Mark data files on the console: out of one copy of a drawing, into another."""

import json
import os
import shutil
import tempfile
import unittest
from pathlib import Path

import program

SAMPLE = Path(os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
SCRIPT = program.mark_script(1000, 1000, 1500, 1500, "门宽不足") + program.mark_script(4400, 1900, 900, 900, "阀门")


def texts(drawing):
    return sorted((mark["markNumber"], mark["suggestionContent"], mark["GUID"]) for mark in program.marks(drawing))


class DataFileTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.marked = self.folder / "plan.dxf"
        program.play(SCRIPT, SAMPLE, self.marked)

    def export(self, *options, **how):
        return program.call("data", "export", self.marked, *options, **how)

    def bring(self, data, out, *options, into=SAMPLE, **how):
        return program.call("data", "import", into, data, "-o", self.folder / out, *options, **how)

    def test_marks_reach_a_copy_once_however_often_they_are_imported(self):
        self.export("-o", self.folder / "sent")
        data = self.folder / "sent" / "plan.Quillnote"
        self.bring(data, "copy.dxf")
        self.assertEqual(texts(self.folder / "copy.dxf"), texts(self.marked))
        self.assertEqual(len(texts(self.marked)), 2)
        self.bring(data, "again.dxf", into=self.folder / "copy.dxf")
        self.assertEqual(texts(self.folder / "again.dxf"), texts(self.marked))
        self.assertTrue(data.exists())

    def test_nothing_is_overwritten_and_two_drawings_do_not_share_a_file(self):
        printed = self.export("--json").stdout
        self.assertEqual(json.loads(printed)["marks"], 2)
        before = (self.folder / "plan.Quillnote").read_bytes()
        self.export(status=2)
        self.export("-f")
        self.assertEqual((self.folder / "plan.Quillnote").read_bytes(), before)
        (self.folder / "b").mkdir()
        shutil.copy(self.marked, self.folder / "b")
        out = self.folder / "both"
        program.call("data", "export", self.marked, self.folder / "b" / "plan.dxf", "-o", out, "-f", status=2)

    def test_foreign_and_damaged_files_want_force_and_give_what_is_whole(self):
        self.export()
        data = self.folder / "plan.Quillnote"
        whole = data.read_bytes()
        for name, damaged in {"cut": whole[:-1], "wrong sum": whole[:-1] + bytes([whole[-1] ^ 1])}.items():
            with self.subTest(name):
                data.write_bytes(damaged)
                self.bring(data, f"{name}.dxf", status=2)
                self.assertFalse((self.folder / f"{name}.dxf").exists())
                self.bring(data, f"{name}.dxf", "--force", status=1 if name == "cut" else 0)
                self.assertEqual(len(texts(self.folder / f"{name}.dxf")), 1 if name == "cut" else 2)
        data.write_bytes(whole[:32] + b"{SOME-OTHER}".ljust(48, b"\0") + whole[80:])
        self.bring(data, "foreign.dxf", status=2)
        self.bring(data, "foreign.dxf", "--force")
        self.bring(SAMPLE, "none.dxf", "--force", status=2)

    def test_the_twin_in_another_format_takes_them_alike(self):
        for dwg in sorted((SAMPLE.parent.parent / "tests" / "corpus" / "dwg").glob("*.dwg")):
            with self.subTest(dwg.name):
                twin = self.folder / f"{dwg.stem}.dxf"
                program.play("", dwg, twin)
                program.play(SCRIPT, dwg, self.marked)
                self.export("-f")
                brought = {}
                for copy in (dwg, twin):
                    out = self.folder / f"into{copy.suffix}.dxf"
                    self.bring(self.folder / "plan.Quillnote", out.name, "-f", into=copy)
                    brought[copy.suffix] = [{**mark, "file": None} for mark in program.marks(out)]
                    self.assertEqual(texts(out), texts(self.marked))
                self.assertEqual(brought[".dwg"], brought[".dxf"])


if __name__ == "__main__":
    unittest.main()
