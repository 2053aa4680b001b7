#!/usr/bin/env python3
"""What is shipped as an example works: the sample drawing is what its program writes, the sample script marks it up,
the report command writes the file that other programs expect."""

import json
import re
import os
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

import drawings
import program

SAMPLES = Path(os.environ["QUILL_ROOT"]) / "samples"
OPINIONS = [
    "双开门净宽 1800 偏小，请按水泵外形尺寸复核运输通道。",
    "控制柜 1AP~3AP 柜前操作通道\n不应小于 1500。",
    "吸水管阀门前应设过滤器。",
    "吸水管阀门前应设过滤器。",
]


class SamplesTest(unittest.TestCase):
    def test_the_drawing_is_what_its_program_writes(self):
        subprocess.run([sys.executable, SAMPLES / "make_plan.py", "made.dxf"], check=True)
        self.assertEqual(Path("made.dxf").read_bytes(), (SAMPLES / "plan.dxf").read_bytes())
        self.assertEqual(program.audit("made.dxf"), [])

    def test_the_script_marks_it_up(self):
        shutil.copy(SAMPLES / "plan.dxf", "plan.dxf")
        program.set_setting("chPwMD5", "0" * 32)  # A password keeps nobody from making marks.
        script = (SAMPLES / "mark-up.qns").read_text(encoding="utf-8")
        program.play(script + "QN3_txt\n", "plan.dxf", "marked.dxf")

        listed = program.marks("marked.dxf")
        self.assertEqual([mark["suggestionContent"] for mark in listed], OPINIONS)
        self.assertEqual([(mark["markNumber"], mark["subNumber"]) for mark in listed], [(1, 0), (2, 0), (3, 0), (3, 2)])
        self.assertEqual(program.audit("marked.dxf"), [])
        before, after = (drawings.Parts(Path(path).read_bytes()) for path in ("plan.dxf", "marked.dxf"))
        lost, _ = drawings.differences(before, after)
        self.assertEqual({each[0][1] for each in lost}, {b"$HANDSEED", b"DICTIONARY"})

        report = "".join(f"第 {n} 个审图意见：\n    {text}\n\n" for n, text in enumerate(OPINIONS, 1))
        self.assertEqual(Path("plan_dxf.txt").read_bytes().decode("gbk"), report.replace("\n", "\r\n"))
        self.assertEqual(program.call("report", "marked.dxf").stdout, report)
        told = [json.loads(line) for line in program.call("report", "marked.dxf", "--json").stdout.splitlines()]
        self.assertEqual([(each["position"], each["suggestionContent"]) for each in told],
                         list(enumerate(OPINIONS, 1)))

    def test_the_designer_answers(self):
        for script, source, target in (("mark-up", SAMPLES / "plan.dxf", "asked.dxf"), ("answer", "asked.dxf", "told.dxf")):
            program.play((SAMPLES / f"{script}.qns").read_text(encoding="utf-8"), source, target)
        statuses = [mark["feedbackType"] for mark in program.marks("told.dxf")]
        self.assertEqual(statuses, [3, 1, 3, 0])
        self.assertEqual(program.marks("told.dxf")[2]["feedbackContent"], "已补过滤器。")

    def test_pages_beside_the_drawing(self):
        shutil.copy(SAMPLES / "plan.dxf", "pages.dxf")
        script = (SAMPLES / "mark-up.qns").read_text(encoding="utf-8")
        run = program.play(script + "QN3_Html\n@ok\nQN3_HtmlN\n", "pages.dxf")
        for name in ("pages_dxf.html", "pages_dxfN.html"):
            page = Path(name).read_bytes()
            self.assertNotRegex(page, rb"[^\r]\n")
            for opinion in OPINIONS:
                self.assertIn(opinion.replace("\n", "\r\n"), page.decode("gbk"))
            # A script opens nothing and says what there is to open.
            self.assertRegex(run.stderr, f"请打开：.*/{name}\n")
        pictures = re.findall(r'src="\s*PNG\\(.*?)"', Path("pages_dxf.html").read_bytes().decode("gbk"))
        self.assertEqual(len(pictures), len(OPINIONS))
        for picture in pictures:
            self.assertTrue(Path("PNG", picture).read_bytes().startswith(b"\x89PNG"), picture)

    def test_no_marks_leave_an_existing_report_alone(self):
        Path("kept.txt").write_text("kept")
        told = program.call("report", SAMPLES / "plan.dxf", "--output", "kept.txt")
        self.assertIn("本图中无评图标签", told.stderr)
        self.assertEqual(Path("kept.txt").read_text(), "kept")


if __name__ == "__main__":
    unittest.main()
