#!/usr/bin/env python3
"""The XML document from outside: readers that are not ours find every mark in it."""

import json
import os
import shutil
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import program

PLAN = Path(os.environ["QUILL_ROOT"]) / "samples" / "plan.dxf"
HOSTILE = [
    "<script>alert('x')</script> & \"q\"", "]]> <!-- --> <![CDATA[ &#x0; &#65; &lt;", "第一行\n第二行\t尾", "😀 m² Ø ½",
    "long " * 13000,
]  # fmt: skip


def script():
    lines = "".join(program.mark_script(1000 * at, 1000, 500, 500, text) for at, text in enumerate(HOSTILE))
    return lines + "QN3_leader\n100,100\n900,900\n@set 1003 \"引线\"\n@ok\n"


class XmlReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        program.play(script(), PLAN, "marked.dxf")
        shutil.copy("marked.dxf", "second.dxf")

    def test_other_readers_find_every_mark(self):
        Path("out.xml").unlink(missing_ok=True)
        program.call("report", "--xml", "out.xml", "marked.dxf", "second.dxf")
        marks = program.marks("marked.dxf") + program.marks("second.dxf")
        if shutil.which("xmllint"):
            subprocess.run(["xmllint", "--noout", "out.xml"], check=True)
        root = ElementTree.parse("out.xml").getroot()
        self.assertEqual(root.tag, "opdetail")
        records = root.findall("oneRecord")
        self.assertEqual({len(record) for record in records}, {36})

        def column(name):
            return [record.findtext(name) for record in records]

        self.assertEqual(column("suggestionContent"), [mark["suggestionContent"] for mark in marks])
        self.assertEqual(column("idNumber"), [f"{mark['markNumber']}.{mark['subNumber']}" for mark in marks])
        self.assertEqual(column("GUID"), [mark["GUID"] for mark in marks])
        self.assertEqual(column("createTime"), ["2024-05-06 07:08:09"] * len(marks))
        self.assertEqual(set(column("fileName")), {"marked.dxf", "second.dxf"})

    def test_an_existing_file_stays_unless_told(self):
        Path("there.xml").write_text("mine")
        program.call("report", "--xml", "there.xml", "marked.dxf", status=2)
        self.assertEqual(Path("there.xml").read_text(), "mine")
        printed = program.call("report", "--xml", "there.xml", "-f", "--json", "marked.dxf").stdout.splitlines()
        self.assertEqual(json.loads(printed[-1]), {"written": "there.xml"})
        ElementTree.parse("there.xml")
        program.call("report", "--xml", "none.xml", PLAN)
        self.assertFalse(Path("none.xml").exists(), "a drawing without marks has no document")
        program.call("report", "--xml", "nowhere/none.xml", "marked.dxf", status=2)


if __name__ == "__main__":
    unittest.main()
