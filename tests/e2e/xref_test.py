#!/usr/bin/env python3
"""External references and clips from outside: a drawing shows another one as if it held it, and holds nothing of it."""

import os
import shutil
import unittest
from pathlib import Path

import program

ROOT = Path(os.environ["QUILL_ROOT"])
PLAN = ROOT / "samples" / "plan.dxf"
WINDOWS = ("-10,-10,170,110", "20,20,26,24")


def content(document, layer_of=lambda name: name):
    """Draws the same things on layers of the names that the drawing has for them."""
    space = document.modelspace()
    for name, color in (("WALL", 1), ("DOOR", 3)):
        document.layers.add(layer_of(name), color=color)
    space.add_lwpolyline([(0, 0), (100, 0), (100, 60), (0, 60)], close=True, dxfattribs={"layer": layer_of("WALL")})
    space.add_circle((30, 30), 15, dxfattribs={"layer": layer_of("DOOR")})
    space.add_line((0, 0), (100, 60), dxfattribs={"layer": "0"})
    hatch = space.add_hatch(color=5, dxfattribs={"layer": layer_of("DOOR")})
    hatch.paths.add_polyline_path([(60, 10), (90, 10), (90, 40)], is_closed=True)
    for i in range(2500):  # As many as make a block a large one.
        x, y = i * 37 % 100, i * 53 % 60
        space.add_line((x, y), (x + i % 7 - 3, y + i % 5 - 2), dxfattribs={"layer": layer_of("WALL")})


def save(name, draw=lambda document: None):
    document = program.ezdxf.new("R2013")
    draw(document)
    document.saveas(name)


def picture(drawing):
    """From afar and from near, and what could not be shown."""
    pixels, told = b"", ""
    for window in WINDOWS:
        told += program.call("picture", drawing, "shown.png", "--size", "900x600", "--window", window, "-f").stderr
        pixels += Path("shown.png").read_bytes()
    return pixels, told


def attach(path, point="0,0", option="A"):
    return f"-XREF\n{option}\n{path}\n{point}\n1\n1\n0\n"


@unittest.skipUnless(program.ezdxf, "ezdxf is not installed")
class XrefTest(unittest.TestCase):
    def setUp(self):
        save("base.dxf", content)
        save("host.dxf")

    def test_shows_another_drawing_as_if_it_held_it(self):
        base = Path("base.dxf").read_bytes()
        save("inline.dxf", lambda document: content(document, lambda name: "base|" + name))
        program.play(attach("base.dxf"), "host.dxf", "out.dxf")
        self.assertEqual(picture("out.dxf")[0], picture("inline.dxf")[0])
        self.assertEqual(Path("base.dxf").read_bytes(), base)
        self.assertEqual(program.audit("out.dxf"), [])
        saved = program.ezdxf.readfile("out.dxf")
        block = saved.blocks.get("base")
        self.assertEqual((len(block), block.block.dxf.flags & 4), (0, 4))
        self.assertEqual(block.block.dxf.xref_path, str(Path("base.dxf").resolve()))
        self.assertEqual(saved.layers.get("base|DOOR").dxf.flags & 16, 16)

        # Its layers are switched in the drawing that shows it, and stay so.
        program.play("-LAYER\nOFF\nbase|DOOR\n\n", "out.dxf", "off.dxf")
        self.assertNotEqual(picture("off.dxf")[0], picture("out.dxf")[0])
        program.play("-XREF\nR\n*\n", "off.dxf", "reloaded.dxf")
        self.assertEqual(picture("off.dxf")[0], picture("reloaded.dxf")[0])

        # A moved folder is found; an unloaded reference, a lost one and one that was detached show nothing.
        os.makedirs("moved/there", exist_ok=True)
        for name in ("out.dxf", "base.dxf"):
            shutil.move(name, f"moved/there/{name}")
        self.assertEqual(picture("moved/there/out.dxf")[0], picture("inline.dxf")[0])
        program.play("-XREF\nU\nbase\n", "moved/there/out.dxf", "unloaded.dxf")
        program.play("-XREF\nD\nbase\n", "moved/there/out.dxf", "detached.dxf")
        self.assertEqual(picture("unloaded.dxf"), picture("host.dxf"))
        self.assertEqual(picture("detached.dxf"), picture("host.dxf"))
        self.assertEqual([each.dxf.name for each in program.ezdxf.readfile("detached.dxf").layers if "|" in each.dxf.name],
                         [])
        shutil.rmtree("moved")
        self.assertIn("base.dxf not found", picture(shutil.copy("reloaded.dxf", "lost.dxf"))[1])

    def test_refuses_what_is_no_drawing(self):
        Path("text.dxf").write_text("hello")
        if not Path("pipe.dxf").exists():
            os.mkfifo("pipe.dxf")
        shutil.copy("base.dxf", "used.dxf")
        program.play(attach("used.dxf"), "host.dxf", "second.dxf")
        shutil.copy("second.dxf", "host2.dxf")
        for path, reason in (("pipe.dxf", "pipe.dxf: not a plain file"), ("/dev/zero", "/dev/zero: not a plain file"),
                             ("nowhere.dxf", "nowhere.dxf"), ("text.dxf", "text.dxf"), ("host2.dxf", "图形不能参照它自己")):
            told = program.play(attach(path), "host2.dxf", "never.dxf", status=2).stderr
            self.assertIn(reason, told, path)
        self.assertFalse(Path("never.dxf").exists())
        # Given up at the point: nothing is left.
        program.play("-XREF\nA\nbase.dxf\n^C\n", "host.dxf", "cancelled.dxf")
        self.assertNotIn("base", [block.name for block in program.ezdxf.readfile("cancelled.dxf").blocks])

    def test_binds(self):
        program.play(attach("base.dxf", "10,5"), "host.dxf", "out.dxf")
        program.play("-XREF\nB\nbase\n", "out.dxf", "bound.dxf")
        shown = picture("out.dxf")[0]
        os.remove("base.dxf")
        self.assertEqual(picture("bound.dxf")[0], shown)
        bound = program.ezdxf.readfile("bound.dxf")
        self.assertEqual(sorted(layer.dxf.name for layer in bound.layers if "$" in layer.dxf.name),
                         ["base$0$DOOR", "base$0$WALL"])
        self.assertEqual((bound.blocks.get("base").block.dxf.flags & 4, len(bound.blocks.get("base"))), (0, 2504))
        self.assertEqual(program.audit("bound.dxf"), [])

    def test_clips(self):
        program.play(attach("base.dxf"), "host.dxf", "out.dxf")
        insert = "handle " + program.ezdxf.readfile("out.dxf").modelspace().query("INSERT")[0].dxf.handle
        whole = picture("out.dxf")[0]
        program.play(f"XCLIP\n{insert}\n\nN\nR\n20,20\n80,50\n", "out.dxf", "clipped.dxf")
        self.assertNotEqual(picture("clipped.dxf")[0], whole)
        self.assertEqual(program.audit("clipped.dxf"), [])
        reference = program.ezdxf.readfile("clipped.dxf").modelspace().query("INSERT")[0]
        filters = reference.get_extension_dict().dictionary["ACAD_FILTER"]["SPATIAL"]
        groups = [(tag.code, tag.value) for tag in filters.xtags.subclasses[2]]
        self.assertEqual([tuple(value) for code, value in groups if code == 10], [(20, 20), (80, 50)])
        self.assertEqual(len([code for code, _ in groups if code == 40]), 24)
        told = program.call("info", "clipped.dxf").stdout
        self.assertRegex(told, r"\(20, 20, 0\) to \(80, 50, 0\)")

        # Off and on, another boundary in place of this one, inverted, deleted.
        program.play(f"XCLIP\n{insert}\n\nOFF\n", "clipped.dxf", "off.dxf")
        self.assertEqual(picture("off.dxf")[0], whole)
        program.play(f"XCLIP\n{insert}\n\nON\n", "off.dxf", "on.dxf")
        self.assertEqual(picture("on.dxf")[0], picture("clipped.dxf")[0])
        program.play(f"XCLIP\n{insert}\n\nN\nY\nI\nP\n-5,-5\n105,-5\n105,65\n-5,65\n\n", "on.dxf", "none.dxf")
        self.assertEqual(picture("none.dxf")[0], picture("host.dxf")[0])
        self.assertEqual(program.audit("none.dxf"), [])
        program.play(f"XCLIP\n{insert}\n\nD\n", "none.dxf", "deleted.dxf")
        self.assertEqual(picture("deleted.dxf")[0], whole)
        self.assertFalse(program.ezdxf.readfile("deleted.dxf").modelspace().query("INSERT")[0].has_extension_dict)


if __name__ == "__main__":
    unittest.main()
