#!/usr/bin/env python3
"""The XML document from outside: readers that are not ours find every mark in it."""

import json
import os
import shutil
import subprocess
import time
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import program
import screen

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

    @unittest.skipIf(screen.missing(), "the window needs tools that are not here")
    def test_in_the_window(self):
        """Marks chosen with the mouse, the project's name typed into the dialog."""
        drawing = Path("window.dxf").absolute()
        program.play("".join(program.mark_script(1500 * at + 500, 1000, 900, 700, "x") for at in range(4)), PLAN, drawing)
        with screen.Screen() as desk:
            window = desk.start(drawing)
            window.show((4000, 2000), 9000)
            window.command("QN8_ToXml")
            window.click((5000, 3000))
            window.click((300, 500))
            window.keys("Return")
            time.sleep(1.0)
            window.type("pump house")
            window.keys("Return")
            time.sleep(1.0)
            window.keys("n")
            document = drawing.with_name("window_dxf.xml")
            screen.wait_for("the document", document.exists)
        records = ElementTree.parse(document).getroot().findall("oneRecord")
        self.assertEqual([record.findtext("idNumber") for record in records], ["1.0", "2.0", "3.0"])
        self.assertEqual({record.findtext("projectName") for record in records}, {"pump house"})


if __name__ == "__main__":
    unittest.main()
