#!/usr/bin/env python3
"""Hot links from outside: a pair over two drawings that other programs read, and a person who follows one with a double
click, in the window."""

import shutil
import unittest
from pathlib import Path

import program
import screen


def drawings():
    """Two drawings in folders of their own, linked with each other."""
    for folder in ("work/plans", "work/details"):
        Path(folder).mkdir(parents=True, exist_ok=True)
    for name in ("work/plans/plan.dxf", "work/details/detail.dxf"):
        Path(name).unlink(missing_ok=True)
        program.ezdxf.new("R2010").saveas(name)
    script = "qn8_drawlink\n0,0\n60,45\n^C\n_OPEN\nwork/details/detail.dxf\nqn8_drawlink\n1000,1000\n1100,1060\n_QSAVE\n"
    program.play(script, "work/plans/plan.dxf", "work/plans/plan.dxf")


@unittest.skipUnless(program.ezdxf, "ezdxf is not installed")
class LinksTest(unittest.TestCase):
    def setUp(self):
        shutil.rmtree("work", ignore_errors=True)
        shutil.rmtree("elsewhere", ignore_errors=True)
        drawings()

    def test_other_programs_read_both_drawings(self):
        handles = []
        for name in ("work/plans/plan.dxf", "work/details/detail.dxf"):
            self.assertEqual(program.audit(name), [])
            document = program.ezdxf.readfile(name)
            link = document.modelspace().query("QUILLLINK")[0]
            handles.append(link.dxf.handle)
            self.assertIn("QuillLinkObj", {each.dxf.cpp_class_name for each in document.classes})
            self.assertLess(Path(name).stat().st_size, 40_000)
        told = program.play("LIST\nAll\n\n", "work/plans/plan.dxf").stderr
        self.assertIn(f"热点链接[1][{Path('work/details/detail.dxf').resolve()}]", told)

    def test_what_is_gone_or_moved_is_said(self):
        jump = "qn8_LinkDblClick\n30,0\n(princ (getvar \"DWGNAME\"))\n"
        self.assertIn("detail.dxf", program.play(jump, "work/plans/plan.dxf").stderr)
        Path("work").rename("elsewhere")
        told = program.play(jump, "elsewhere/plans/plan.dxf").stderr
        self.assertRegex(told, "不在原处，改用 .*elsewhere/details/detail.dxf")
        Path("elsewhere/details/detail.dxf").unlink()
        self.assertIn("没有找到热点链接另一端所在的图形", program.play(jump, "elsewhere/plans/plan.dxf").stderr)

    @unittest.skipIf(screen.missing(), f"without {', '.join(screen.missing())}")
    def test_a_double_click_follows_it(self):
        with screen.Screen() as desk:
            window = desk.start("work/plans/plan.dxf")
            window.show((30, 22), 100)
            window.double_click((0, 0))
            title = screen.wait_for("the other drawing", lambda: "detail" in window.title() and window.title())
            self.assertIn("detail.dxf", title)
            desk.picture("detail.png")
            window.show((1050, 1030), 100)
            window.double_click((1000, 1000))
            screen.wait_for("the first drawing", lambda: "plan.dxf" in window.title())
            desk.picture("plan.png")


if __name__ == "__main__":
    unittest.main()
