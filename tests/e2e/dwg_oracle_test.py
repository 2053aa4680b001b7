#!/usr/bin/env python3
"""DWG drawings that the program saved, read by programs that are not ours: they count the same objects as before.

Needs QUILLNOTE_REAL_DRAWINGS, a folder with DWG files, and one of the readers: a package of Node that reads every
version, fetched once into the user's cache by npm, or GDAL's ogrinfo, which reads AC1015. Without them there is
nothing to do.
"""

import os
import re
import shutil
import subprocess
import unittest
from collections import Counter
from pathlib import Path

import program

FOLDER = os.environ.get("QUILLNOTE_REAL_DRAWINGS")
PACKAGE = "@mlightcad/libredwg-web"
VERSION = "0.7.14"
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "quillnote-oracles"

# One file for each process: the reader keeps its memory. Objects that it cannot read are counted by it as well.
COUNT = """
import { readFileSync } from 'node:fs';
const { LibreDwg, Dwg_File_Type } = await import(process.argv[2] + '/dist/libredwg-web.js');
const reader = await LibreDwg.create(process.argv[2] + '/wasm/');
const bytes = readFileSync(process.argv[3]);
const data = reader.dwg_read_data(bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length),
                                  Dwg_File_Type.DWG);
const counts = {};
const count = reader.dwg_get_num_objects(data);
for (let i = 0; i < count; ++i) {
  const kind = reader.dwg_object_get_fixedtype(reader.dwg_get_object(data, i));
  counts[kind] = (counts[kind] || 0) + 1;
}
console.log('COUNTS ' + JSON.stringify(counts));
process.exit(0);
"""


def node_reader():
    """The folder of the package; None when it is not there and cannot be fetched."""
    if not shutil.which("node") or not shutil.which("npm"):
        return None
    folder = CACHE / "node_modules" / PACKAGE
    known = folder / "package.json"
    if not known.exists() or f'"version": "{VERSION}"' not in known.read_text():
        CACHE.mkdir(parents=True, exist_ok=True)
        fetched = subprocess.run(["npm", "install", "--prefix", CACHE, "--no-save", f"{PACKAGE}@{VERSION}"],
                                 capture_output=True, timeout=120)  # fmt: skip
        if fetched.returncode != 0:
            return None
    return folder


def counted_by_node(folder, drawing):
    Path("count.mjs").write_text(COUNT)
    result = subprocess.run(["node", "count.mjs", folder, drawing], capture_output=True, text=True, timeout=120)
    found = re.search(r"^COUNTS (.*)$", result.stdout, re.M)
    return Counter(program.json.loads(found[1])) if found else None


def counted_by_gdal(drawing):
    result = subprocess.run(["ogrinfo", "-al", "-q", drawing], capture_output=True, text=True, timeout=120)
    return Counter(re.findall(r"^  (POINT|LINESTRING|POLYGON|CIRCULARSTRING|MULTI\w+)", result.stdout, re.M))


@unittest.skipUnless(FOLDER, "QUILLNOTE_REAL_DRAWINGS names no folder")
class DwgOracleTest(unittest.TestCase):
    def test_saved_drawings_hold_what_they_held(self):
        node = node_reader()
        gdal = shutil.which("ogrinfo")
        if not node and not gdal:
            self.skipTest("neither node with its package nor ogrinfo is there")
        checked = 0
        for path in sorted(path for path in Path(FOLDER).rglob("*") if path.suffix.lower() == ".dwg"):
            version = path.read_bytes()[:6]
            if version < b"AC1015":
                continue
            with self.subTest(path.name):
                saved = Path("saved.dwg").absolute()
                program.play(program.mark_script(0, 0, 10, 10, "oracle"), path, saved)
                readers = [("node", lambda file: counted_by_node(node, file))] if node else []
                readers += [("gdal", counted_by_gdal)] if gdal and version == b"AC1015" else []
                for name, count in readers:
                    before, after = count(path), count(saved)
                    if before is None:
                        continue  # It cannot read the original.
                    self.assertIsNotNone(after, f"{name} cannot read what was saved")
                    self.assertEqual(before - after, Counter(), f"{name} misses objects")
                    print(f"ok     {path.name}: {name} counts {sum(before.values())}, saved {sum(after.values())}",
                          flush=True)
                    checked += 1
        self.assertGreater(checked, 0)


if __name__ == "__main__":
    unittest.main()
