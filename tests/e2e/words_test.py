#!/usr/bin/env python3
"""Words from phrase files, the phrase bank and the settings dialog, worked by scripts as a user would work them."""

import json
import unittest
from pathlib import Path

import drawings
import program


def setting(name):
    result = program.call("settings", "list", "--json").stdout
    for line in result.splitlines():
        entry = json.loads(line)
        if entry["name"] == name:
            return entry["value"]
    return None


def mark(lines, drawing, output):
    script = "QN3_Quillnote\n100,50\n300,150\n" + "".join(f"@{line}\n" for line in lines)
    result = program.play(script, drawing, output)
    return program.marks(output)[-1], result


class WordsTest(unittest.TestCase):
    def setUp(self):
        self.plan = program.write("plan.dxf", drawings.as_text(drawings.drawing("2013"), "utf-8"))
        program.set_setting("textHeight", "25")
        program.set_setting("CYZSLocation", "")

    def test_the_shipped_phrases(self):
        chosen, _ = mark(["click 5000", "ok"], self.plan, "shipped.dxf")
        self.assertEqual(chosen["bigCategory"], "常用知识")
        self.assertEqual(chosen["smallCategory"], "制图")
        self.assertTrue(chosen["suggestionContent"])
        again, _ = mark(["set 1055 1", "click 5950"], self.plan, "recent.dxf")
        self.assertEqual(again["suggestionContent"], chosen["suggestionContent"])
        program.set_setting("derectDraw", "0")

    def test_plus_keeps_the_encoding(self):
        folder = Path("library").resolve()
        for name, encoding in (("a936", "gbk"), ("b8", "utf-8")):
            program.write(f"library/{name}.txt", "门净宽不足\r\n".encode(encoding))
        program.set_setting("CYZSLocation", folder)
        mark(['set 1003 "窗台过低"', "click 5900", "click 5901", "click 5002", "ok"], self.plan, "plus.dxf")
        for name, encoding in (("a936", "gbk"), ("b8", "utf-8")):
            self.assertEqual((folder / f"{name}.txt").read_bytes().decode(encoding), "门净宽不足\r\n窗台过低\r\n")

    def test_the_phrase_bank(self):
        stored, result = mark(['set 1003 "自己的意见"', "click 1037", "ok", 'set 1003 ""', "click 1036", 'set 1001 "自己"', "ok",
                               "ok"], self.plan, "bank.dxf")  # fmt: skip
        self.assertEqual(stored["suggestionContent"], "自己的意见")
        self.assertIn("成功入库.", result.stdout + result.stderr)

    def test_settings(self):
        script = ('QN3_Setup\n@set 1003 "赵工"\n@set 1012 1\n@set 1056 7\n@click 1005\n@set 10 5\n@ok\n@ok\n')
        program.play(script, self.plan)
        self.assertEqual([setting(name) for name in ("name", "style", "textHeightPS", "color1")], ["赵工", 3, 7, 5])
        drawn, _ = mark(['set 1003 "x"', "ok"], self.plan, "style.dxf")
        self.assertEqual([drawn["suggestionName"], drawn["targetStyle"], drawn["color1"]], ["赵工", 3, 5])


if __name__ == "__main__":
    unittest.main()
