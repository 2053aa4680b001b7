#!/usr/bin/env python3
"""Snapshots from outside: a mark drawn by a script keeps a picture of its target and a fingerprint that tells changes of
the drawing but not of its colours."""

import os
import shutil
import struct
import unittest
import zlib
from pathlib import Path

import program

PLAN = Path(os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
CORNER = (4400, 1900)
SIZE = (1100, 1100)
MARK = program.mark_script(*CORNER, *SIZE, "阀门")


def pixels(png):
    """Width, height and the rows of a PNG with eight bits a channel; every checksum is looked at."""
    if png[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("no PNG")
    place, data, header = 8, b"", None
    while place < len(png):
        length, kind = struct.unpack(">I4s", png[place : place + 8])
        body = png[place + 8 : place + 8 + length]
        (checksum,) = struct.unpack(">I", png[place + 8 + length : place + 12 + length])
        if zlib.crc32(kind + body) != checksum:
            raise ValueError(f"bad checksum of {kind}")
        if kind == b"IHDR":
            header = struct.unpack(">IIBB", body[:10])
        if kind == b"IDAT":
            data += body
        place += 12 + length
    width, height, depth, kind = header
    channels = {2: 3, 6: 4}[kind]
    if depth != 8:
        raise ValueError("other depth")
    rows = zlib.decompress(data)
    stride = width * channels + 1
    if len(rows) != stride * height:
        raise ValueError("rows are missing")
    return width, height, [rows[i * stride + 1 : (i + 1) * stride] for i in range(height)]




class SnapshotTest(unittest.TestCase):
    def setUp(self):
        shutil.copy(PLAN, "plan.dxf")

    def test_a_mark_keeps_picture_and_fingerprint(self):
        program.play(f"ZOOM\nC\n5000,2500\n2000\n{MARK}", "plan.dxf", "marked.dxf")
        [mark] = program.marks("marked.dxf")
        self.assertRegex(mark["snapChecksum"], r"^SUM=-?\d+$")
        self.assertGreater(len(mark["snapEntityIds"]), 0)

        shutil.rmtree("pictures", ignore_errors=True)
        program.call("marks", "marked.dxf", "--pictures", "pictures")
        self.assertEqual(os.listdir("pictures"), ["mark-0001-target.png"])
        picture = Path("pictures/mark-0001-target.png")
        width, height, rows = pixels(picture.read_bytes())
        # 1000 pixels show 2000 units.
        self.assertEqual((width, height), (550, 550))
        self.assertGreater(len(set(rows)), 10, "the picture shows the valves")

        picture.write_bytes(b"mine")
        refused = program.call("marks", "marked.dxf", "--pictures", "pictures", status=2)
        self.assertIn("-f", refused.stderr)
        self.assertEqual(picture.read_bytes(), b"mine")
        program.call("marks", "marked.dxf", "--pictures", "pictures", "-f")
        self.assertEqual(pixels(picture.read_bytes())[0], 550)

    def test_the_whole_view_is_kept_when_wanted(self):
        program.play(f"QN3_FullSnapView\n\n{MARK}", "plan.dxf", "marked.dxf")
        shutil.rmtree("views", ignore_errors=True)
        program.call("marks", "marked.dxf", "--pictures", "views")
        self.assertEqual(sorted(os.listdir("views")), ["mark-0001-full.png", "mark-0001-target.png"])
        self.assertEqual(pixels(Path("views/mark-0001-full.png").read_bytes())[:2], (1600, 1000))
        program.play("QN3_FullSnapView\nNo\n", "plan.dxf")

    def checksum(self, change):
        program.play(change + MARK, "plan.dxf", "changed.dxf")
        return program.marks("changed.dxf")[-1]["snapChecksum"]

    def test_the_fingerprint_tells_changes_but_of_colour(self):
        before = self.checksum("")
        handle = program.marks("changed.dxf")[0]["snapEntityIds"][0]
        self.assertEqual(self.checksum("LINE\n0,20000\n10,20000\n\n"), before, "a change elsewhere")
        self.assertNotEqual(self.checksum("LINE\n4500,2000\n4600,2000\n\n"), before)
        self.assertNotEqual(self.checksum(f"MOVE\nhandle {handle}\n\n0,0\n1,0\n"), before)

        lines = Path("plan.dxf").read_bytes().split(b"\n")
        at = next(i for i in range(0, len(lines), 2) if lines[i].strip() == b"5" and lines[i + 1] == handle.encode())
        layer = next(i for i in range(at, len(lines), 2) if lines[i].strip() == b"8")
        self.assertNotEqual(lines[layer + 2].strip(), b"62")
        lines[layer + 2 : layer + 2] = [b" 62", b"     3"]
        Path("plan.dxf").write_bytes(b"\n".join(lines))
        self.assertEqual(self.checksum(""), before, "a colour")


if __name__ == "__main__":
    unittest.main()
