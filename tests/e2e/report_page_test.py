#!/usr/bin/env python3
"""The page to send and the tables of several drawings, from outside: what they hold, that the page runs in a browser
what it brings and nothing else, and when nothing is written."""

import csv
import json
import os
import re
import shutil
import subprocess
import unittest
import zipfile
from pathlib import Path
from xml.etree import ElementTree

import program

SAMPLES = Path(os.environ["QUILL_ROOT"]) / "samples"
CHROMIUM = shutil.which("chromium")
HOSTILE = [
    "<script>document.title='RUN'</script>", "<img src=x onerror=\"document.title='RUN'\">",
    "\"><svg onload=\"document.title='RUN'\">", "</script><script>document.title='RUN'</script>",
    "=HYPERLINK(\"x\")", "长\u201c引号\u201d\n第 2 行 \U0001f600",
]  # fmt: skip
NAMES = ["plan.dxf", "<img src=x onerror=document.title='RUN'>.dxf"]


def without_policy(page):
    return re.sub(r"<meta http-equiv=\"Content-Security-Policy\"[^>]*>", "", page)


def dom(page, name):
    """The page after its scripts have run."""
    path = Path(name).absolute()
    path.write_text(page, encoding="utf-8")
    command = [CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
               "--disable-dev-shm-usage", f"--user-data-dir={Path('browser').absolute()}", "--virtual-time-budget=2000",
               "--dump-dom", path.as_uri()]  # fmt: skip
    done = subprocess.run(command, capture_output=True, text=True, encoding="utf-8", timeout=120)
    if done.returncode:
        raise AssertionError(done.stderr)
    return done.stdout


def title(html):
    return re.search("<title>(.*?)</title>", html).group(1)


class ReportPageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        program.set_setting("name", "王工<b>")
        marks = "".join(program.mark_script(1000 * i, 500, 800, 600, text) for i, text in enumerate(HOSTILE))
        for name in NAMES:
            program.play(marks, SAMPLES / "plan.dxf", name)
        program.call("report", "-f", "--page", "page.html", "--csv", "table.csv", "--xlsx", "table.xlsx", *NAMES)
        cls.page = Path("page.html").read_text(encoding="utf-8")

    def test_the_page_holds_every_mark_with_its_pictures(self):
        self.assertEqual(self.page.count("<article "), len(NAMES) * len(HOSTILE))
        self.assertEqual(self.page.count('class="frame then"'), len(NAMES) * len(HOSTILE))
        self.assertEqual(self.page.count('class="frame now"'), len(NAMES) * len(HOSTILE))
        self.assertEqual(self.page.count('class="place"'), len(NAMES) * len(HOSTILE))
        self.assertNotRegex(self.page, r'(?:src|href)="(?!data:image/png;base64,|#)')
        self.assertIn("&lt;img src=x onerror=document.title='RUN'&gt;.dxf", self.page)

    def test_the_tables_hold_the_same_rows(self):
        with open("table.csv", encoding="utf-8-sig", newline="") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual([row["图纸"] for row in rows], [name for name in NAMES for _ in HOSTILE])
        texts = [row["校审意见"] for row in rows[: len(HOSTILE)]]
        self.assertEqual(texts, [f"'{text}" if text.startswith("=") else text for text in HOSTILE])

        with zipfile.ZipFile("table.xlsx") as book:
            self.assertIsNone(book.testzip())
            strings = ElementTree.fromstring(book.read("xl/sharedStrings.xml"))
            held = {"".join(item.itertext()) for item in strings}
            self.assertLessEqual(set(HOSTILE) | set(NAMES) | {"王工<b>"}, held)
            sheet = book.read("xl/worksheets/sheet1.xml").decode()
            self.assertEqual(sheet.count("<row "), 1 + len(rows))
            self.assertNotIn("<f>", sheet)
            anchors = book.read("xl/drawings/drawing1.xml").decode().count("<xdr:twoCellAnchor")
            self.assertEqual(anchors, 2 * len(rows))

    def test_files_are_complete_or_as_they_were(self):
        Path("kept.html").write_text("kept")
        told = program.call("report", "--page", "kept.html", NAMES[0], status=2)
        self.assertIn("kept.html exists; -f overwrites it", told.stderr)
        Path("broken.dxf").write_text("0\nSECTION\n")
        program.call("report", "-f", "--page", "kept.html", NAMES[0], "missing.dxf", status=2)
        told = program.call("report", "-f", "--page", "kept.html", "--csv", "no.csv", SAMPLES / "plan.dxf")
        self.assertIn("本图中无评图标签", told.stderr)
        self.assertEqual(Path("kept.html").read_text(), "kept")
        self.assertFalse(Path("no.csv").exists())
        told = program.call("report", "--page", "no/such/page.html", NAMES[0], status=2)
        self.assertIn("there is no folder no/such", told.stderr)
        listed = program.call("report", "--json", "--csv", "told.csv", NAMES[0]).stdout.splitlines()
        self.assertEqual(json.loads(listed[-1]), {"written": "told.csv"})
        self.assertEqual(len(listed), len(HOSTILE) + 1)


@unittest.skipUnless(CHROMIUM, "chromium is not installed: nothing is known of the page in a browser")
class BrowserTest(unittest.TestCase):
    setUpClass = classmethod(ReportPageTest.setUpClass.__func__)

    def test_only_the_pages_own_script_runs(self):
        told = dom(self.page, "own.html")
        self.assertEqual(title(told), "评图报告")
        self.assertIn('<html lang="zh-CN" class="js">', told)
        self.assertIn(f'<output id="count">{len(NAMES) * len(HOSTILE)} / {len(NAMES) * len(HOSTILE)}</output>', told)

        # Even markup that got through would not run: the policy stands behind the escaping.
        foreign = "<script>document.title='RUN'</script><img src=x onerror=\"document.title='RUN'\">"
        broken = self.page.replace("<main>", "<main>" + foreign)
        self.assertEqual(title(dom(broken, "broken.html")), "评图报告")
        # And this is what shows that the test could see it run.
        self.assertEqual(title(dom(without_policy(broken), "open.html")), "RUN")

    def test_filters_and_places(self):
        script = """<script>
        const set = (id, value) => { const c = document.getElementById(id); c.value = value;
          c.dispatchEvent(new Event('input', {bubbles: true})); return document.getElementById('count').textContent; };
        const told = [set('words', 'HYPERLINK'), set('words', ''), set('drawing', 'vd2'), set('state', 'v未处理'),
          document.querySelectorAll('.place:not(.out)').length];
        document.querySelector('#m2-3 .number').click();
        told.push(document.querySelector('.place.on').id);
        told.push(document.querySelector('#d2 svg').getAttribute('viewBox') !== '0 0 '
          + document.querySelector('#d2 svg').dataset.size);
        document.querySelector('#p2-4').dispatchEvent(new MouseEvent('click', {bubbles: true, cancelable: true}));
        told.push(document.querySelector('.mark.on').id);
        const range = document.querySelector('#m1-1 input');
        range.value = 20; range.dispatchEvent(new Event('input', {bubbles: true}));
        told.push(range.closest('.frames').style.getPropertyValue('--cut'));
        document.title = told.join(' ');
        </script>"""
        page = without_policy(self.page).replace("</body>", script + "</body>")
        each, total = len(HOSTILE), len(NAMES) * len(HOSTILE)
        self.assertEqual(title(dom(page, "driven.html")),
                         f"2 / {total} {total} / {total} {each} / {total} {each} / {total} {each} p2-3 true m2-4 20%")


if __name__ == "__main__":
    unittest.main()
