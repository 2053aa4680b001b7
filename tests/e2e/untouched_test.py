#!/usr/bin/env python3
"""A drawing that nobody changes is saved byte for byte, and undoing everything brings its bytes back."""

import random
import unittest
from pathlib import Path

import drawings
import program
from mark_road_test import cases

MARK = program.mark_script(100, 50, 200, 100, "第一条意见")
LEADER = "QN3_QuillnoteLeader\n100,50\n400,300\n@set 1003 引线\n@ok\n"
# Each is a whole command that changes something, whatever was done before.
STEPS = {
    "mark": MARK,
    "line": "LINE\n0,0\n50,60\n90,10\n\n",
    "circle": "CIRCLE\n300,300\n25\n",
    "text": "TEXT\n10,10\n20\n0\n文字 text\n\n",
    "edit": MARK + "QN3_Edit\nL\n@set 1003 改过的\n@ok\n",
    "copy of all": "COPY\nALL\n\n0,0\n5,5\n\n",
    "copy of the last": "COPY\nL\n\n0,0\n500,0\n0,500\n\n",
    "move": "MOVE\nL\n\n0,0\n10,20\n",
    "move all": "MOVE\nALL\n\n0,0\n1,1\n",
    "erase": "ERASE\nL\n\n",
    "erase and back": "ERASE\nL\n\nOOPS\n",
    "rotate": "ROTATE\nL\n\n0,0\n30\n",
    "mirror": "MIRROR\nL\n\n0,0\n0,10\n\n",
    "scale": "SCALE\nL\n\n0,0\n2\n",
    "layer": "LAYER\nM\n新层\nC\n3\n\nLT\nCONTINUOUS\n\n\n",
    "layer 0 green": "LAYER\nC\n3\n0\n\n",
    "leader mark": LEADER,
    "polygon mark": "QN3_PolygonMark\n0,0\n100,0\n100,100\n\n",
    "polygon mark with a text": "QN3_PolygonMarkJig\n0,0\n100,0\n100,100\n\n500,500\n@set 1003 文字\n@ok\n",
    "spline mark": "QN3_SplineMarkJig\n0,0\n100,0\n100,100\n\n\n",
    "vertex": MARK + "QN3_addVertext\n200,50\n",
    "leader": LEADER + "QN3_addAleadLine\nL\n900,900\n\n",
    "number": MARK + "QN8_editNumber\nL\n50\n",
    "numbers": MARK + "QN3_reNumber\nYES\n",
    "shrunk": MARK + "QN3_allMarksShrink\n",
    "hidden and shown": MARK + "QN3_allMarksHide\nQN3_allMarksShow\n",
    "grip": "LINE\n900,100\n950,100\n\nGRIP\nL\n\n900,100\n900,200\n",
    "plain": MARK + "QN8_ToNativeEnt\n",
    "group": "UNDO\nBE\nCIRCLE\n0,0\n5\n" + MARK + "UNDO\nE\n",
}


def redo_all(steps):
    return "REDO\n" * steps


class UntouchedTest(unittest.TestCase):
    def test_saving_without_a_change(self):
        for name, data in cases():
            with self.subTest(name):
                drawing = program.write(f"same-{name}.dxf", data)
                saved = Path(f"same-{name}-out.dxf")
                program.play("ZOOM\nE\n", drawing, saved)
                self.assertEqual(saved.read_bytes(), data)


class UndoTest(unittest.TestCase):
    def check(self, name, data, steps):
        """Runs the steps, undoes them, does them again; saves at each end."""
        drawing = program.write(f"{name}.dxf", data)
        paths = {end: Path(f"{name}-{end}.dxf") for end in ("done", "undone", "redone")}
        script = "".join(steps)
        script += f"SAVE\n{paths['done']}\nUNDO\n1000\nSAVE\n{paths['undone']}\n"
        script += redo_all(3 * len(steps) + 3) + f"SAVE\n{paths['redone']}\n"
        program.play(script, drawing)
        self.assertEqual(paths["undone"].read_bytes(), data)
        self.assertEqual(paths["redone"].read_bytes(), paths["done"].read_bytes())
        self.assertNotEqual(paths["done"].read_bytes(), data)

    def test_each_step_in_every_kind_of_file(self):
        """One run a file, so that what one command leaves behind meets the next."""
        for name, data in cases():
            with self.subTest(name):
                self.check(f"steps-{name}", data, list(STEPS.values()))

    def test_random_sequences(self):
        versions = list(drawings.VERSIONS)
        for seed in range(24):
            chance = random.Random(seed)
            version = versions[seed % len(versions)]
            # A vertex is picked by its place, where other steps may have left something else.
            names = [chance.choice([each for each in STEPS if each != "vertex"]) for _ in range(chance.randint(2, 12))]
            # The first step draws, so that there is a last entity.
            steps = [STEPS["line"]] + [STEPS[each] for each in names if not each.startswith("copy of all")]
            with self.subTest(seed=seed, steps=names):
                data = drawings.as_text(drawings.drawing(version), drawings.encoding_of(version, "ANSI_936"))
                self.check(f"random-{seed}", data, steps)

    def test_what_is_erased_leaves_nothing_behind(self):
        """A copy takes the dictionary that belongs to it along when it is erased again."""
        for version in drawings.VERSIONS:
            insert = "handle B3" if version == "R12" else "handle 32"
            data = drawings.as_text(drawings.drawing(version), drawings.encoding_of(version, "ANSI_936"))
            drawing = program.write("erased.dxf", data)
            for steps in (f"COPY\n{insert}\n\n0,0\n5,5\n\nERASE\nL\n\n", f"ERASE\n{insert}\n\n", "ERASE\nALL\n\n"):
                with self.subTest(version=version, steps=steps):
                    program.play(steps, drawing, "erased-out.dxf")
                    _, added = drawings.differences(*(drawings.Parts(Path(path).read_bytes())
                                                      for path in ("erased.dxf", "erased-out.dxf")))  # fmt: skip
                    # The next handle and the classes' counts of instances may differ, nothing else is new.
                    self.assertLessEqual({each[0][1] for each in added}, {b"$HANDSEED", b"CLASS"})
                    self.assertEqual(program.audit("erased-out.dxf"), [])

    def test_undo_half_way_leaves_what_was_done_before(self):
        data = drawings.as_text(drawings.drawing("2013"), "utf-8")
        drawing = program.write("half.dxf", data)
        program.play(STEPS["circle"] + "SAVE\nhalf-expected.dxf\n" + MARK + STEPS["layer"] + "UNDO\n2\n", drawing,
                     "half-out.dxf")  # fmt: skip
        expected, found = (drawings.Parts(Path(path).read_bytes()) for path in ("half-expected.dxf", "half-out.dxf"))
        lost, added = drawings.differences(expected, found)
        # Handles are not given out again, and the class of the marks stays known.
        self.assertEqual([each[0][1] for each in lost], [b"$HANDSEED"])
        self.assertEqual([each[0][1] for each in added if each[0][0] == 0], [b"CLASS"])


if __name__ == "__main__":
    unittest.main()
