#!/usr/bin/env python3
"""Reports are complete or as they were: a full disk, a program that is killed while it writes them."""

import os
import random
import re
import shutil
import signal
import subprocess
import time
import unittest
from pathlib import Path

import program

ROOT = Path(os.environ["QUILL_ROOT"])
TEMPLATE = Path(program.QUILLNOTE).parents[1] / "share" / "quillnote3" / "templates" / "review-form.html"
# What the commands write beside plan.dxf, as scripts.
COMMANDS = {
    "plan_dxf.txt": "QN3_txt\n",
    "plan_dxfN.html": "QN3_HtmlN\nNo\n",
    "plan_dxf.html": "QN3_Html\n@ok\n",
    "plan_dxf_1.html": "QN3_HtmlN\nYes\n\n@ok\n",  # The web report has the name without number.
    "plan_dxf.xml": "QN8_ToXml\n\n@ok\n@no\n",
    "plan_dxf-review.html": "QN3_Page\n",
}
OPTIONS = {"--page": "page.html", "--xml": "marks.xml", "--csv": "table.csv", "--xlsx": "book.xlsx"}
END = re.compile(rb"(</html>|</opdetail>)\s*$")
KILLS = 12


def marked(folder):
    marks = "".join(program.mark_script(900 * i, 500, 800, 600, f"第 {i} 处 <b>") for i in range(8))
    program.play(marks, ROOT / "samples" / "plan.dxf", folder / "plan.dxf")


class ReportsWholeTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self._testMethodName).absolute()
        self.folder.mkdir()
        program.set_setting("TempleteHTML", str(TEMPLATE))
        marked(self.folder)
        self.before = set(os.listdir(self.folder))

    def left(self):
        return set(os.listdir(self.folder)) - self.before

    def test_a_full_disk_leaves_what_was_there(self):
        """A limit on the size of files stands for a disk that is full."""

        def run(*arguments, text=None):
            command = ["prlimit", "--fsize=64:64", program.QUILLNOTE, *map(str, arguments)]
            return subprocess.run(command, input=text, capture_output=True, text=True, encoding="utf-8", timeout=120,
                                  preexec_fn=lambda: signal.signal(signal.SIGXFSZ, signal.SIG_IGN))  # fmt: skip

        overwritten = ["plan_dxf.txt", "plan_dxfN.html", "plan_dxf-review.html"]
        for name in [*overwritten, *OPTIONS.values()]:
            (self.folder / name).write_text("kept")
        for option, name in OPTIONS.items():
            told = run("report", "-f", option, self.folder / name, self.folder / "plan.dxf")
            self.assertEqual(told.returncode, 2, told.stderr)
            self.assertIn(name, told.stderr)
        for name, script in COMMANDS.items():
            # The message about the file stands before or after the last answer.
            for end in ("@ok\n", ""):
                told = run("run", "-", self.folder / "plan.dxf", text=script.removesuffix("@no\n") + end).stderr
                if "错误。" in told or "失败！" in told:
                    break
            self.assertRegex(told, "(创建文件<|准备写文件< ).*plan_dxf", name)
        for name in [*overwritten, *OPTIONS.values()]:
            self.assertEqual((self.folder / name).read_text(), "kept", name)
        self.assertEqual(self.left() - {"PNG"}, {*overwritten, *OPTIONS.values()}, "nothing else is there")

    def killed(self, command, text=None, longest=1.0):
        """Runs it a few times, each killed at another moment; tells of files with the given ends."""
        chance = random.Random(7)
        seen = set()
        for _ in range(KILLS):
            for name in self.left():
                path = self.folder / name
                shutil.rmtree(path) if path.is_dir() else path.unlink()
            process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL, env={**os.environ, "QUILLNOTE_FIXED_TIME": program.FIXED_TIME})  # fmt: skip
            process.stdin.write((text or "").encode())
            process.stdin.close()
            time.sleep(chance.random() * longest)
            process.send_signal(signal.SIGKILL)
            process.wait()
            for path in self.folder.glob("*"):
                if path.suffix in (".html", ".xml") and not path.name.startswith("."):
                    self.assertRegex(path.read_bytes(), END, path.name)
                    seen.add(path.name)
        return seen

    def test_killed_commands_leave_no_half_report(self):
        drawing = self.folder / "plan.dxf"
        script = "".join(COMMANDS.values()) * 20
        begun = time.monotonic()
        program.play("".join(COMMANDS.values()), drawing)
        self.assertLessEqual(set(COMMANDS), self.left(), "each is written when nobody disturbs")
        once = time.monotonic() - begun
        seen = self.killed([program.QUILLNOTE, "run", "-", str(drawing)], script, 2 * once)
        self.assertTrue(seen, "the kills came while reports were written")

    def test_a_killed_verb_leaves_no_half_report(self):
        options = [word for option in ("--page", "--xml") for word in (option, str(self.folder / OPTIONS[option]))]
        command = [program.QUILLNOTE, "report", "-f", *options, *[str(self.folder / "plan.dxf")] * 4]
        begun = time.monotonic()
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.killed(command, longest=1.1 * (time.monotonic() - begun))


if __name__ == "__main__":
    unittest.main()
