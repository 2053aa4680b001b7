#!/usr/bin/env python3
"""DWG drawings of other programs: they open, draw, are saved with a mark, and become DXF; with a DXF twin they hold the
same.

QUILLNOTE_REAL_DRAWINGS names a folder with DWG files; without it there is nothing to do. One line is printed for each
file. A twin is a DXF file of the same name, saved from the same drawing, often by a later program: KNOWN lists what
differs for that reason.
"""

import os
import re
import subprocess
import unittest
from collections import Counter
from pathlib import Path

import program

FOLDER = os.environ.get("QUILLNOTE_REAL_DRAWINGS")
OPINION = "意见 opinion é"
TOOLS = Path(program.QUILLNOTE).parent.parent / "tests"
TWINS = TOOLS / "dwg_twins"
REPACK = TOOLS / "dwg_repack"
# What a mark touches of the objects that are there: its block, its layer's neighbours, dictionaries, heads of tables.
MOST_TOUCHED = 12
GATE = TOOLS / "dwg_gate"

# Kind and group (or the whole line), as regular expressions, and why they may differ.
KNOWN = [
    (r"SPLINE (10|40|42|43|72|73)", "control points of a spline through points are computed when DXF is written"),
    (r"(VPORT|VIEW) .*", "the view of the session that wrote the DXF file"),
    (r"TABLE (70|71|100|360|1\d\d\d)", "how many records were counted; what the later session noted"),
    (r"\w+ (3|350|360)", "dictionaries that the later session made or left out"),
    (r"(DICTIONARY|LAYER|LAYOUT|TEXT|DIMENSION|LWPOLYLINE|POLYLINE|ARC|LINE|MTEXT|BLOCK|BLOCK_RECORD|DIMSTYLE) 1\d\d\d",
     "extended data that the later session added or dropped"),
    (r"\w+ (92|310)", "graphics for programs without the class, drawn anew when DXF is written"),
    (r"(ARC_DIMENSION|BLOCK|BLOCK_RECORD|DIMENSION|INSERT) [23]", "numbers of anonymous blocks"),
    (r"(BLOCK|ENDBLK|VIEWPORT) (1|67|370)", "sheets that are not the current one"),
    (r"(LINE|LWPOLYLINE) 370", "the usual lineweight, which some writers leave out"),
    (r"VIEWPORT (68|69)", "the number of a viewport on a sheet that is not shown"),
    (r"OLE2FRAME .*", "embedded objects are stored anew"),
    (r"SORTENTSTABLE .*", "entries of erased entities"),
    (r"(DICTIONARYVAR|XRECORD|MLEADERSTYLE) .*", "values that the later session changed"),
    (r"(LAYOUT|VIEWPORT) (12|40|41|45|143|147|331)", "numbers rounded to single precision by the DXF writer"),
    (r"DIMSTYLE .*", "defaults that R14 writes and later versions leave out"),
    (r"LTYPE 3", "blanks at the end"),
    (r"(3DSOLID|REGION) 1", "the program and the time that the text of a solid names"),
    (r"VERTEX 7[234]", "zeros that R14 writes"),
    (r"ACAD_PROXY_OBJECT .*", "a proxy whose data are groups"),
    (r"MTEXT (11|42|43|70|101)", "columns that belong to every text in a file of 2018, left out by the DXF writer"),
    (r"MTEXT (10|40|41|71): [^:]*: 2 in DWG, 1 in DXF", "those columns again"),
    (r"APPID (2|360)", "names cut to 31 characters by R14"),
]
# Saved down to these versions, newer kinds became something else.
OLD = ("AC1012", "AC1014")


def difference_is_known(line):
    return any(re.fullmatch(pattern, part) for pattern, _ in KNOWN for part in (line, line.split(":")[0]))


@unittest.skipUnless(FOLDER, "QUILLNOTE_REAL_DRAWINGS names no folder")
class RealDwgTest(unittest.TestCase):
    def test_every_file(self):
        files = sorted(path for path in Path(FOLDER).rglob("*") if path.suffix.lower() == ".dwg")
        self.assertTrue(files)
        for path in files:
            with self.subTest(path.name):
                print(f"ok     {path.name}: {self.check(path)}", flush=True)

    def test_what_reviewers_do(self):
        """In the smallest file of each version: ticks on a new layer, plain entities, colours, an answer, and as DXF."""
        smallest = {}
        for path in sorted(Path(FOLDER).rglob("*.dwg"), key=lambda path: -path.stat().st_size):
            smallest[path.read_bytes()[:6].decode()] = path
        mark = program.mark_script(0, 0, 30, 20, OPINION)
        answer = "QN3_QuillnoteAsk\n\n@in CMarkWnd2 set 1004 已改\n@in CMarkWnd2 keys Alt+1\n@in CMarkWnd2 click 1\n"
        program.set_setting("useLayer", "1")
        self.addCleanup(program.set_setting, "useLayer", "0")
        for version, path in smallest.items():
            if version in OLD:
                continue
            with self.subTest(path.name):
                self.gains(path, mark + "QN3_Yes\n0,0\n10,10\n\n", INSERT=2, POLYLINE=1, VERTEX=12, SEQEND=1, QUILLNOTE3=1)
                self.gains(path, mark + "QN8_ToNativeEnt\n", INSERT=1, MTEXT=1)
                self.gains(path, "QN3_whiteAll\n")
                self.gains("saved.dwg", "QN3_restoreColorAll\nU\nREDO\n")
                self.gains(path, mark, QUILLNOTE3=1)
                for suffix in ("dwg", "dxf"):
                    program.play(answer, "saved.dwg", f"answered.{suffix}")
                rows = [program.marks(f"answered.{suffix}") for suffix in ("dwg", "dxf")]
                for row in rows[0] + rows[1]:
                    row.pop("file")
                self.assertEqual(*rows)
                self.assertEqual((rows[0][-1]["feedbackContent"], rows[0][-1]["layer"]), ("已改", "评图标签"))
                for suffix in ("dwg", "dxf"):
                    program.call("picture", f"answered.{suffix}", f"{suffix}.png", "-f")
                self.assertEqual(Path("dwg.png").read_bytes(), Path("dxf.png").read_bytes())

    def gains(self, source, script, **kinds):
        """Saves what the script makes of the drawing as saved.dwg, which has these entities more."""
        before = Counter(program.json.loads(program.call("info", source, "--json").stdout)["entities"])
        program.play(script, source, "gains.dwg")
        info = program.json.loads(program.call("info", "gains.dwg", "--json").stdout)
        self.assertEqual((info["repairs"], Counter(info["entities"]) - before), ([], Counter(kinds)))
        Path("gains.dwg").replace("saved.dwg")

    def test_kinds_that_may_be_encoded(self):
        files = [path for path in Path(FOLDER).rglob("*") if path.suffix.lower() == ".dwg"]
        newer = [path for path in files if path.read_bytes()[:6].decode() not in OLD]
        done = subprocess.run([GATE, *newer], capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        print(done.stdout.splitlines()[-1])

    def check(self, path):
        info = program.json.loads(program.call("info", path, "--json").stdout)
        self.assertEqual(info["repairs"], [])
        picture = Path("picture.png").absolute()
        picture.unlink(missing_ok=True)
        program.call("picture", path, picture)
        self.assertGreater(picture.stat().st_size, 1000)
        saved = Path("saved.dxf").absolute()
        box = info["extents"] or {"min": [0, 0, 0], "max": [1, 1, 0]}
        low, high = box["min"], box["max"]
        before = len(program.marks(path))
        script = program.mark_script(low[0], low[1], high[0] - low[0] or 1, high[1] - low[1] or 1, OPINION)
        kept = self.save(path, script, info)
        program.play(script, path, saved)
        self.assertEqual([mark["suggestionContent"] for mark in program.marks(saved)[before:]], [OPINION])
        again = program.json.loads(program.call("info", saved, "--json").stdout)
        self.assertEqual(again["repairs"], [])
        self.assertEqual(sum(again["entities"].values()), sum(info["entities"].values()) - self.left_out(info) + 1)
        twin = path.with_suffix(".dxf")
        return f"{sum(info['entities'].values())} entities; {kept}" + (self.compare(path, twin) if twin.exists() else "")

    def save(self, path, script, info):
        """As DWG: with nothing changed, with a mark, and with another one."""
        saved = Path("saved.dwg").absolute()
        if path.read_bytes().startswith(tuple(version.encode() for version in OLD)):
            refused = program.call("run", "-", path, "-o", saved, "-f", text=script, status=2)
            self.assertIn("SAVEAS", refused.stderr)
            return "not saved as DWG"
        packed = subprocess.run([REPACK, path, Path("packed.dwg")], capture_output=True, text=True)
        self.assertEqual((packed.returncode, packed.stderr), (0, ""))
        self.assertIn("gives the same bytes", packed.stdout)
        before = len(program.marks(path))
        source = path
        for count in (1, 2):
            program.play(script, source, saved)
            marks = program.marks(saved)[before:]
            self.assertEqual([mark["suggestionContent"] for mark in marks], [OPINION] * count)
            again = program.json.loads(program.call("info", saved, "--json").stdout)
            self.assertEqual((again["repairs"], again["versionNumber"]), ([], info["versionNumber"]))
            self.assertEqual(sum(again["entities"].values()), sum(info["entities"].values()) + count)
            source = Path("once.dwg").absolute()
            if count == 1:
                source.write_bytes(saved.read_bytes())
        compared = subprocess.run([REPACK, "--compare", path, source], capture_output=True, text=True, check=True)
        objects, same = (int(number) for number in re.findall(r"\d+", compared.stdout)[:2])
        self.assertLessEqual(objects - same, MOST_TOUCHED, compared.stdout)
        return compared.stdout.strip()

    @staticmethod
    def left_out(info):
        solids = ("3DSOLID", "REGION", "BODY") if info["versionNumber"] >= "AC1018" else ()
        in_dictionary = ("LAYOUTPRINTCONFIG",)
        return sum(info["entities"].get(kind, 0) for kind in (*solids, *in_dictionary, "SHAPE", "OLEFRAME"))

    def compare(self, path, twin):
        result = subprocess.run([TWINS, path, twin], capture_output=True, text=True, check=True)
        *lines, summary = result.stdout.splitlines()
        unknown = [line for line in lines if not line.startswith("only in") and not difference_is_known(line)]
        if not path.read_bytes().startswith(tuple(version.encode() for version in OLD)):
            self.assertEqual(unknown, [], "differences that nobody has explained")
        audited = Counter(program.audit(Path("saved.dxf"))) - Counter(program.audit(twin))
        return f"; {summary}; the auditor finds {dict(audited) or 'nothing more than in the twin'}"


if __name__ == "__main__":
    unittest.main()
