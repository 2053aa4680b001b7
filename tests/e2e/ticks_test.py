#!/usr/bin/env python3
"""Tick symbols and INSERT from outside: scripts place, erase and resize, and other programs find in the drawing what
was put there."""

import json
import os
import re
import unittest
from pathlib import Path

import program

ROOT = Path(os.environ["QUILL_ROOT"])
PLAN = ROOT / "samples" / "plan.dxf"
TICK = "QN3_Yes\n"


def inserts(drawing, block=None):
    """(block, point, scale) of the references in model space that ezdxf finds; all when no block is named."""
    space = program.ezdxf.readfile(str(drawing)).modelspace()
    found = [(e.dxf.name, tuple(round(c, 6) for c in e.dxf.insert)[:2], e.dxf.xscale) for e in space.query("INSERT")]
    return [each for each in found if block is None or each[0] == block]


def ticks(drawing):
    return [each for each in inserts(drawing) if each[0].startswith("Quillnote")]


def variables(script):
    """OSMODE and its kin after the script."""
    names = ("OSMODE", "HIGHLIGHT", "CMDECHO", "INSUNITSDEFSOURCE", "INSUNITSDEFTARGET", "CLAYER")
    told = program.play(script + "".join(f'(princ (list "{name}" (getvar "{name}")))\n' for name in names), PLAN).stderr
    return {name: value.strip() for name, value in re.findall(r"\((\w+) ([^()]*)\)", told) if name in names}


@unittest.skipUnless(program.ezdxf, "ezdxf is not installed")
class TicksTest(unittest.TestCase):
    def setUp(self):
        for name in ("YesTickHeight", "defaultGreen", "useLayer"):
            program.set_setting(name, "0")

    def test_keys_choose_the_symbol(self):
        script = TICK + "0,0\n@keys Ctrl\n10,0\n@keys Shift\n20,0\n@keys Ctrl Shift\n30,0\n40,0\n\n"
        program.play(script, PLAN, "ticked.dxf")
        self.assertEqual(
            [(block.removeprefix("Quillnote"), point[0], scale) for block, point, scale in ticks("ticked.dxf")],
            [("YesRed", 0, 100), ("ErrRed", 10, 100), ("QRed", 20, 100), ("ErrRed", 30, 100), ("YesRed", 40, 100)])
        self.assertEqual(program.audit("ticked.dxf"), program.audit(PLAN))
        program.set_setting("defaultGreen", "1")
        program.set_setting("useLayer", "1")
        program.play("QN3_TickHeight\n37.9\n" + TICK + "0,0\n50,0\n@keys Alt\n0,12\nU\n\n", PLAN, "green.dxf")
        self.assertEqual(len(ticks("green.dxf")), 2, "erased and taken back")
        program.play(TICK + "0,0\n50,0\n@keys Alt\n0,12\n\n", PLAN, "green.dxf")
        self.assertEqual(ticks("green.dxf"), [("QuillnoteYesGreen", (50, 0), 37)])
        tick = program.ezdxf.readfile("green.dxf").modelspace().query("INSERT")[-1]
        self.assertEqual(tick.dxf.layer, "评图标签")
        program.play("QN3_TickHeight\n0.5\n", PLAN)
        program.play(TICK + "0,0\n\nU\n" + TICK + "5,5\n\n", PLAN, "undone.dxf")
        self.assertEqual(ticks("undone.dxf"), [("QuillnoteYesGreen", (5, 5), 100)])

    def test_erasing_and_resizing(self):
        place = TICK + "".join(f"{500 * i},0\n" for i in range(6)) + "\n"
        program.play(place + "QN3_TickBIG\nQN3_TickBIG\n@keys Shift\nQN3_TickBIG\n@keys Ctrl\nQN3_TickSmall\n", PLAN, "big.dxf")
        self.assertEqual({scale for _, _, scale in ticks("big.dxf")}, {100 * 1.5**3 * 0.75})
        program.play("QN3_TickErase\nC\n-10,-10\n1010,10\n\n", "big.dxf", "fewer.dxf")
        self.assertEqual([point[0] for _, point, _ in ticks("fewer.dxf")], [1500, 2000, 2500])
        others = len(inserts(PLAN))
        program.play("QN3_TickErase\nALL\n\n", "fewer.dxf", "none.dxf")
        self.assertEqual((len(ticks("none.dxf")), len(inserts("none.dxf"))), (0, others))

    def test_nothing_else_is_left_changed(self):
        program.set_setting("useLayer", "1")
        before = variables("OSMODE 37\n")
        self.assertEqual((len(before), before["OSMODE"]), (6, "37"))
        for script in (TICK + "0,0\n\n", TICK + "0,0\n^C\n", TICK + "^C\n", TICK + "0,0\n1,1\nU\n^C\n"):
            self.assertEqual(variables("OSMODE 37\n" + script), before, script)

    def test_a_missing_symbol_file_is_named(self):
        program.call("settings", "set", program.SETTINGS, "Location", str(Path("empty").absolute()), "--text")
        told = program.play(TICK + "@ok\n", PLAN).stderr
        program.remove_setting("Location")
        self.assertRegex(told, "文件<.*QuillnoteYesRed.dwg>没有找到！")

    def test_ticks_travel_with_the_marks(self):
        program.play(program.mark_script(0, 0, 500, 500, "x") + TICK + "7,8\n\n", PLAN, "from.dxf")
        program.play("QN3_DataFileOut\n@ok\n", "from.dxf")
        script = f'QN3_DataFileIn\n@file "{Path("from.Quillnote").absolute()}"\n'
        for answer in ("", "@yes\n"):  # It asks about drawings that it does not take for the same.
            if not program.call("run", "-", PLAN, "-o", "to.dxf", "-f", text=script + answer, status=None).returncode:
                break
        self.assertEqual(ticks("to.dxf"), [("QuillnoteYesRed", (7, 8), 100)])


def part(units=0):
    """A drawing with what an insert has to bring along: layer, linetype, style, dimension, nested block, attribute."""
    document = program.ezdxf.new("R2010", setup=True)
    document.units = units
    document.layers.add("PIPES", color=3, linetype="DASHED")
    inner = document.blocks.new("INNER")
    inner.add_circle((0, 0), 1, dxfattribs={"layer": "PIPES"})
    space = document.modelspace()
    space.add_line((0, 0), (10, 0), dxfattribs={"layer": "PIPES", "linetype": "DASHDOT"})
    space.add_text("pump", dxfattribs={"style": "OpenSans", "height": 2})
    space.add_blockref("INNER", (5, 5))
    space.add_linear_dim((0, 3), (0, 0), (10, 0)).render()
    space.add_attdef("NUMBER", (1, 1), "P-00", dxfattribs={"prompt": "Pump number"})
    document.saveas("part.dxf")


@unittest.skipUnless(program.ezdxf, "ezdxf is not installed")
class InsertTest(unittest.TestCase):
    def test_a_file_comes_with_what_it_uses(self):
        part()
        program.play("INSERT\npart.dxf\n100,200\n2\n\n90\nP-07\n", PLAN, "one.dxf")
        self.assertEqual(program.audit("one.dxf"), program.audit(PLAN))
        document = program.ezdxf.readfile("one.dxf")
        placed = document.modelspace().query('INSERT[name=="part"]')[0]
        self.assertEqual((tuple(placed.dxf.insert)[:2], placed.dxf.xscale, placed.dxf.yscale, placed.dxf.rotation),
                         ((100, 200), 2, 2, 90))
        self.assertEqual([(each.dxf.tag, each.dxf.text) for each in placed.attribs], [("NUMBER", "P-07")])
        self.assertEqual(tuple(round(c, 6) for c in tuple(placed.attribs[0].dxf.insert)[:2]), (98, 202))
        self.assertEqual(document.layers.get("PIPES").dxf.color, 3)
        self.assertIn("DASHDOT", document.linetypes)
        self.assertIn("OpenSans", document.styles)
        kinds = sorted(each.dxftype() for each in document.blocks.get("part"))
        self.assertEqual(kinds, ["ATTDEF", "DIMENSION", "INSERT", "LINE", "TEXT"])
        dimension = document.blocks.get("part").query("DIMENSION")[0]
        self.assertGreater(len(list(dimension.virtual_entities())), 3)

    def test_again_redefined_and_as_entities(self):
        part()
        again = "INSERT\npart\n0,0\n1\n\n0\n\n"
        first = "INSERT\npart.dxf\n0,0\n1\n\n0\n\n"
        program.play(first + again, PLAN, "two.dxf")
        self.assertEqual(len(inserts("two.dxf", "part")), 2)
        other = program.ezdxf.new("R2010")
        other.modelspace().add_circle((0, 0), 3)
        other.saveas("other.dxf")
        for answer, kinds in (("N", 5), ("Y", 1)):
            program.play(f"INSERT\npart=other.dxf\n{answer}\n9,9\n1\n\n0\n" + ("\n" if answer == "N" else ""), "two.dxf", "redefined.dxf")
            self.assertEqual(len(program.ezdxf.readfile("redefined.dxf").blocks.get("part")), kinds)
            self.assertEqual(len(inserts("redefined.dxf", "part")), 3)
        before = len(program.ezdxf.readfile(str(PLAN)).modelspace())
        program.play("INSERT\n*part.dxf\n5,5\n3\n0\n", PLAN, "loose.dxf")
        space = program.ezdxf.readfile("loose.dxf").modelspace()
        self.assertEqual(len(space), before + 4)
        self.assertEqual(tuple(space.query('LINE[layer=="PIPES"]')[-1].dxf.end)[:2], (35, 5))
        self.assertEqual(program.audit("loose.dxf"), program.audit(PLAN))

    def test_units_and_refusals(self):
        part(units=1)  # Inches into millimetres.
        units = json.loads(program.call("info", "--json", PLAN).stdout.splitlines()[0]).get("units")
        program.play('(setvar "INSUNITS" 4)\nINSERT\npart.dxf\n0,0\n1\n\n0\n\n', PLAN, "inch.dxf")
        self.assertEqual(inserts("inch.dxf", "part")[0][2], 25.4, units)
        program.play("INSERT\nnowhere.dxf\n", PLAN, status=2)
        program.play("INSERT\n/dev/zero.dxf\n", PLAN, status=2)
        looped = program.ezdxf.new("R2010")
        looped.blocks.new("loop").add_line((0, 0), (1, 1))
        looped.modelspace().add_blockref("loop", (0, 0))
        looped.saveas("loop.dxf")
        self.assertIn("会包含它自己", program.play("INSERT\nloop.dxf\n", PLAN, status=2).stderr)
        Path("broken.dxf").write_text("0\nSECTION\n")
        program.play("INSERT\nbroken.dxf\n", PLAN, status=2)


if __name__ == "__main__":
    unittest.main()
