#!/usr/bin/env python3
"""The road of a mark through every kind of DXF file: drawn by a script, saved, listed again with all its fields,
joined by a second one, while everything else in the file stays as it was."""

import re
import unittest
from pathlib import Path

import drawings
import program

OPINION = '门口净宽"不足"，请核对\n第 2 行：100%%d ^J \\P {\\H2x;大} é 中\U00020000末'
SECOND = "second 第二个"
HASH = "5f4dcc3b5aa765d61d8327deb882cf99"
GUID = re.compile(r"\{?[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\}?$")


def cases():
    """Name and bytes of each drawing."""
    for version in drawings.VERSIONS:
        groups = drawings.drawing(version)
        encoding = drawings.encoding_of(version, "ANSI_936")
        yield f"{version}-text", drawings.as_text(groups, encoding)
        yield f"{version}-binary", drawings.as_binary(groups, encoding)
    for version in ("R12", "2000", "2013"):
        groups = drawings.drawing(version, "ANSI_1252")
        yield f"{version}-western", drawings.as_text(groups, drawings.encoding_of(version, "ANSI_1252"), b"\n", 0)


class MarkRoadTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        program.set_setting("name", "张工")
        program.set_setting("chPwMD5", HASH)
        program.set_setting("textHeight", "25")

    def test_every_kind_of_file(self):
        for name, data in cases():
            with self.subTest(name):
                self.walk(name, data)

    def walk(self, name, data):
        original = program.write(f"{name}.dxf", data)
        first, second = f"{name}-first.dxf", f"{name}-second.dxf"

        program.play(program.mark_script(100, 50, 200, 100, OPINION), original, first)
        [mark] = program.marks(first)
        self.check_fields(mark)
        self.check_rest(original, first, marks=1)

        program.play(program.mark_script(600, 400, 100, 50, SECOND), first, second)
        kept, added = program.marks(second)
        kept["file"] = mark["file"]
        self.assertEqual(kept, mark, "another mark leaves the first alone")
        self.assertEqual((added["markNumber"], added["suggestionContent"]), (2, SECOND))
        self.assertNotEqual(added["GUID"], mark["GUID"])
        self.check_rest(original, second, marks=2)

    def check_fields(self, mark):
        expected = {
            "suggestionContent": OPINION, "suggestionName": "张工", "markNumber": 1, "subNumber": 0,
            "targetCorner1": [100, 50, 0], "targetCorner2": [300, 150, 0], "textHeight": 25, "weight": 5,
            "layout": "Model", "layer": "0",
            # These do not stand in a mark's own DXF groups.
            "chPwMD5": HASH, "editVersion": 1, "autoTextHeight": True,
        }  # fmt: skip
        self.assertEqual({key: mark.get(key) for key in expected}, expected)
        self.assertRegex(mark["GUID"], GUID)
        # The number of the day and the part of it since midnight, as the system variable DATE.
        self.assertAlmostEqual(mark["createTime"], 2460437 + (7 * 3600 + 8 * 60 + 9) / 86400, places=6)

    def check_rest(self, original, saved, marks):
        before, after = (drawings.Parts(Path(path).read_bytes()) for path in (original, saved))
        lost, added = drawings.differences(before, after)
        for each in lost:
            if each[0] == (9, b"$HANDSEED"):
                continue
            self.assertEqual(each[0], (0, b"DICTIONARY"), "only the root dictionary may change")
            self.assertTrue(any(drawings.grew_only(each, other) for other in added), each)
        names = [each[0][1].decode() for each in added if each[0][0] == 0]
        self.assertEqual(names.count("QUILLNOTE3"), marks)
        strange = set(names) - {"QUILLNOTE3", "CLASS", "DICTIONARY", "XRECORD", "SECTION", "ENDSEC"}
        self.assertEqual(strange, set())
        handles = [value for each in after.objects for code, value in each[1:2] if code in (5, 105)]
        self.assertEqual(len(handles), len(set(handles)), "no handle twice")
        self.assertEqual(program.audit(saved), program.audit(original))

    def test_editing_and_copying(self):
        data = drawings.as_text(drawings.drawing("2013"), "utf-8")
        original = program.write("edited.dxf", data)
        program.remove_setting("chPwMD5")
        self.addCleanup(program.set_setting, "chPwMD5", HASH)
        script = (program.mark_script(100, 50, 200, 100, "before") + 'QN3_Edit\nL\n@set 1003 "after 之后"\n@ok\n'
                  "COPY\nL\n\n0,0\n400,300\n\n")  # fmt: skip
        program.play(script, original, "edited-out.dxf")
        edited, copy = program.marks("edited-out.dxf")
        self.assertEqual((edited["suggestionContent"], edited["editVersion"]), ("after 之后", 2))
        self.assertEqual((edited["markNumber"], edited["subNumber"], copy["markNumber"], copy["subNumber"]),
                         (1, 0, 1, 2))  # fmt: skip
        self.assertEqual(copy["targetCorner1"], [500, 350, 0])
        self.assertNotEqual(copy["GUID"], edited["GUID"])
        same = {key for key in edited if edited[key] == copy[key]}
        self.assertLessEqual({"suggestionContent", "suggestionName", "createTime", "editVersion", "color1"}, same)

    def test_two_runs_write_the_same_file(self):
        """But for the marks' GUIDs, which are new each time."""
        original = program.write("twice.dxf", drawings.as_text(drawings.drawing("2010"), "utf-8"))
        written = []
        for name in ("twice-a.dxf", "twice-b.dxf"):
            program.play(program.mark_script(100, 50, 200, 100, OPINION) * 3, original, name)
            listed = program.marks(name)
            guids = {mark.pop("GUID") for mark in listed}
            self.assertEqual(len(guids), 3)
            for mark in listed:
                mark.pop("file")
            parts = drawings.Parts(Path(name).read_bytes())
            # The GUID stands among the fields that are kept as bytes with a checksum.
            written.append((listed, [tuple(g for g in each if g[0] not in (91, 310)) for each in parts.objects]))
        self.assertEqual(written[0], written[1])

    def test_the_mark_layer(self):
        program.set_setting("useLayer", "1")
        self.addCleanup(program.set_setting, "useLayer", "0")
        for version in ("R12", "R13", "2000", "2018"):
            with self.subTest(version):
                encoding = drawings.encoding_of(version, "ANSI_936")
                original = program.write(f"layer-{version}.dxf", drawings.as_text(drawings.drawing(version), encoding))
                saved = f"layer-{version}-out.dxf"
                program.play(program.mark_script(0, 0, 10, 10, "x"), original, saved)
                self.assertEqual(program.marks(saved)[0]["layer"], "评图标签")
                self.assertEqual(program.audit(saved), [])
                info = program.call("info", saved, "--json").stdout
                self.assertIn("墙体", info)


if __name__ == "__main__":
    unittest.main()
