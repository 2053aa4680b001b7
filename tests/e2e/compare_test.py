#!/usr/bin/env python3
"""Comparing from outside: which marked places changed is checked against which entities this test touched. It edits the
drawing's text itself, with a seed, so that nothing but the file stands between the two.

With QUILLNOTE_REAL_DRAWINGS drawings of other programs are edited as well.
"""

import hashlib
import json
import os
import random
import unittest
from pathlib import Path

import program

SAMPLES = Path(os.environ["QUILL_ROOT"]) / "samples"
REAL = os.environ.get("QUILLNOTE_REAL_DRAWINGS")
SEED = int(os.environ.get("QUILLNOTE_SEED", "7"))
MARKS, EDITS, ROUNDS = 12, 5, 4
PLACED = {b"LINE": (10, 11), b"CIRCLE": (10,), b"ARC": (10,), b"POINT": (10,), b"TEXT": (10, 11)}
WORDED = (b"TEXT", b"MTEXT")
WHOLE = (*PLACED, b"MTEXT", b"LWPOLYLINE", b"ELLIPSE", b"SPLINE", b"SOLID")
VALVES = program.mark_script(4400, 1900, 1100, 1100, "阀门") + program.mark_script(1000, 1000, 1500, 1500, "墙")


class Text:
    """A text DXF as entities whose groups can be changed."""

    def __init__(self, data):
        lines = data.split(b"\n")
        pairs = [[int(lines[i]), lines[i + 1].strip(b"\r")] for i in range(0, len(lines) - 1, 2)]
        begin = next(i for i, pair in enumerate(pairs) if pair == [2, b"ENTITIES"]) + 1
        end = next(i for i in range(begin, len(pairs)) if pairs[i] == [0, b"ENDSEC"])
        self.head, self.tail, self.entities = pairs[:begin], pairs[end:], []
        for pair in pairs[begin:end]:
            if pair[0] == 0:
                self.entities.append([])
            self.entities[-1].append(pair)

    def bytes(self):
        pairs = self.head + [pair for entity in self.entities for pair in entity] + self.tail
        return b"".join(b"%3d\r\n%s\r\n" % (code, value) for code, value in pairs)

    def entity(self, handle):
        return next((each for each in self.entities if value(each, 5) == handle), None)


def value(entity, code):
    return next((text for at, text in entity if at == code), b"")


def kind(entity):
    return entity[0][1]


# Edits: each returns True when it was done ----------------------------------------------------------


def move(_, entity, far):
    if kind(entity) not in PLACED:
        return False
    for pair in entity:
        if pair[0] in PLACED[kind(entity)]:
            pair[1] = repr(float(pair[1]) + far).encode()
    return True


def delete(text, entity, _):
    if kind(entity) not in WHOLE:
        return False
    text.entities.remove(entity)
    return True


def retype(_, entity, __):
    if kind(entity) not in WORDED:
        return False
    next(pair for pair in entity if pair[0] == 1)[1] += b"?"
    return True


def recolour(_, entity, __):
    layer = next(at for at, pair in enumerate(entity) if pair[0] == 8)
    color = next((pair for pair in entity if pair[0] == 62), None)
    if color is None:
        color = [62, b""]
        entity.insert(layer + 1, color)
    color[1] = b"%6d" % (31 if color[1].strip() != b"31" else 41)
    return True


def add_line(text, like, begin, end, handle):
    """Like another entity as far as space and layer go."""
    common = [pair[:] for pair in like[: next(i for i, pair in enumerate(like) if pair[0] == 8) + 1]]
    common[0][1] = b"LINE"
    common[1:] = [pair for pair in common[1:] if pair[0] in (330, 67, 410, 8, 100)]
    line = [common[0], [5, b"%X" % handle], *common[1:]]
    if value(like, 100):
        line.append([100, b"AcDbLine"])
    for code, point in ((10, begin), (11, end)):
        line += [[code, repr(point[0]).encode()], [code + 10, repr(point[1]).encode()], [code + 20, b"0.0"]]
    text.entities.append(line)


# The test -------------------------------------------------------------------------------------------


def results(*arguments):
    """Status and objects of "compare --json"."""
    for status in (0, 1):
        try:
            found = program.call("compare", *arguments, "--json", status=status)
        except program.Trouble:
            if status == 1:
                raise
            continue
        return status, [json.loads(line) for line in found.stdout.splitlines()]


def digest(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


class CompareTest(unittest.TestCase):
    def mark_places(self, source, chance):
        """Marks around entities of model space, here and there, of sizes that people draw."""
        text = Text(Path(source).read_bytes())
        places = [(float(value(each, 10)), float(value(each, 20))) for each in text.entities
                  if kind(each) in PLACED and value(each, 67).strip() in (b"", b"0")]  # fmt: skip
        if not places:
            return 0
        spread = [sorted(place[axis] for place in places) for axis in (0, 1)]
        size = max(each[len(each) * 9 // 10] - each[len(each) // 10] for each in spread) or 1.0
        script = "MODEL\n"
        for number in range(MARKS):
            x, y = chance.choice(places)
            width, height = (size * chance.uniform(0.01, 0.06) for _ in range(2))
            script += program.mark_script(x - width * chance.random(), y - height * chance.random(), width, height,
                                          f"{number}")  # fmt: skip
        program.play(script, source, "marked.dxf")
        return size * 1000

    def edit(self, marks, far, chance):
        """Edits a few entities under marks; returns the text and the handles that were touched and recoloured."""
        text = Text(Path("marked.dxf").read_bytes())
        under = sorted({handle for mark in marks for handle in mark["snapEntityIds"]})
        touched, coloured, done = set(), set(), []
        added_to = set()
        for number in range(EDITS * 4):
            if len(done) == EDITS:
                break
            handle = chance.choice(under)
            entity = text.entity(handle.encode())
            if entity is None or handle in touched:
                continue
            change = chance.choice((move, delete, retype, recolour, "add", "beside"))
            if change in ("add", "beside"):
                mark = chance.choice([each for each in marks if handle in each["snapEntityIds"]])
                (x1, y1, _), (x2, y2, _) = mark["targetCorner1"], mark["targetCorner2"]
                width, height = x2 - x1, y2 - y1
                begin = (x1 + width / 4, y1 + height / 4) if change == "add" else (x1 + far, y1)
                end = (begin[0] + width / 3, begin[1] + height / 3)
                add_line(text, entity, begin, end, 0xF00000 + number)
                if change == "add":
                    added_to |= {each["GUID"] for each in marks if meets(each, begin, end)}
            elif not change(text, entity, far):
                continue
            else:
                (coloured if change is recolour else touched).add(handle)
            done.append(change if isinstance(change, str) else change.__name__)
        return text, touched, coloured, added_to, done

    def check(self, source, chance):
        far = self.mark_places(source, chance)
        if not far:
            return "nothing to mark"
        marks = [mark for mark in program.marks("marked.dxf") if mark["layout"] == "Model"]
        self.assertEqual(results("marked.dxf")[1], [], "nothing was edited")
        if not any(mark["snapEntityIds"] for mark in marks):
            return "nothing under the marks"
        all_done = []
        for _ in range(ROUNDS):
            text, touched, coloured, added_to, done = self.edit(marks, far, chance)
            Path("edited.dxf").write_bytes(text.bytes())

            def holding(handles):
                return {mark["handle"] for mark in marks if handles & set(mark["snapEntityIds"])}

            expected = holding(touched) | {mark["handle"] for mark in marks if mark["GUID"] in added_to}
            status, found = results("edited.dxf")
            self.assertEqual({each["handle"] for each in found}, expected, done)
            self.assertEqual(status, 1 if expected else 0)
            status, found = results("edited.dxf", "--with", "marked.dxf")
            differing = {each["handle"] for each in found if each["differs"]}
            self.assertEqual(differing, expected | holding(coloured), done)
            self.assertEqual(status, 1 if differing else 0)
            all_done += done
        return ", ".join(sorted(set(all_done)))

    def test_answers_agree_with_what_was_touched(self):
        for seed in range(SEED, SEED + 2):
            for sample in sorted(SAMPLES.glob("*.dxf")):
                with self.subTest(f"{sample.name}, seed {seed}"):
                    self.check(sample, random.Random(seed))

    @unittest.skipUnless(REAL, "QUILLNOTE_REAL_DRAWINGS names no folder")
    def test_answers_in_drawings_of_other_programs(self):
        for path in sorted(path for path in Path(REAL).rglob("*") if path.suffix.lower() == ".dxf"):
            if not self.is_plain(path):
                continue
            with self.subTest(str(path)):
                try:
                    note = self.check(path, random.Random(SEED))
                except AssertionError as error:
                    print(f"FAILED {path}: {str(error)[:600]}")
                    raise
                print(f"ok     {path}: {note}", flush=True)

    def is_plain(self, path):
        """Text whose entities have handles."""
        data = path.read_bytes()
        try:
            return not data.startswith(b"AutoCAD Binary") and any(value(each, 5) for each in Text(data).entities)
        except (ValueError, StopIteration, IndexError):
            return False

    def test_lines_and_exit_status(self):
        program.play(VALVES, SAMPLES / "plan.dxf", "marked.dxf")
        self.assertEqual(program.call("compare", "marked.dxf").stdout, "")
        program.play("LINE\n4500,2000\n5200,2700\n\n", "marked.dxf", "edited.dxf")
        before = digest("edited.dxf")
        lines = program.call("compare", "edited.dxf", status=1).stdout
        self.assertRegex(lines, r"^1 \S+: (\d+) entities before, \d+ now; 0 gone, 1 new\n$")
        both = program.call("compare", "marked.dxf", "edited.dxf", status=1).stdout
        self.assertEqual(both, f"marked.dxf:\nedited.dxf:\n{lines}")
        self.assertEqual(digest("edited.dxf"), before, "comparing changes no file")
        program.call("compare", "edited.dxf", "-o", "told.dxf", "-f", status=1)
        self.assertEqual([mark["feedbackType"] for mark in program.marks("told.dxf")], [3, 0])
        program.call("compare", "edited.dxf", "-o", "told.dxf", status=2)
        program.call("compare", "nowhere.dxf", status=2)
        program.call("compare", "edited.dxf", "--with", "nowhere.dxf", status=2)

        # The corrected drawing came back without marks: the old one's are taken.
        program.play("LINE\n1100,1100\n1200,1200\n\n", SAMPLES / "plan.dxf", "new.dxf")
        lines = program.call("compare", "new.dxf", "--with", "marked.dxf", status=1).stdout.splitlines()
        self.assertEqual([line.partition(": ")[2] for line in lines],
                         ["the same", "differs: 0 removed, 1 added, 0 changed"])  # fmt: skip

    def test_then_and_now_side_by_side(self):
        program.play(VALVES, SAMPLES / "plan.dxf", "marked.dxf")
        program.play("LINE\n4500,2000\n5200,2700\n\n", "marked.dxf", "edited.dxf")
        program.call("compare", "edited.dxf", "--pictures", "since", "-f", status=1)
        self.assertEqual(os.listdir("since"), ["mark-0001-compared.png"])
        program.call("compare", "edited.dxf", "--with", "marked.dxf", "--pictures", "between", "-f", status=1)
        self.assertEqual(sorted(os.listdir("between")), ["mark-0001-compared.png", "mark-0002-compared.png"])
        program.call("compare", "edited.dxf", "--pictures", "since", status=2)

    def test_refreshing_and_deleting_pictures(self):
        program.play(VALVES, SAMPLES / "plan.dxf", "marked.dxf")
        program.play("LINE\n4500,2000\n5200,2700\n\n", "marked.dxf", "edited.dxf")
        program.call("refresh", "edited.dxf", status=2)
        program.call("refresh", "edited.dxf", "-o", "fresh.dxf", "-f")
        self.assertEqual(results("fresh.dxf"), (0, []))
        for mark in program.marks("fresh.dxf"):
            self.assertTrue(mark["snapImage"]["size"] and mark["fullImage"]["size"], mark)
        commands = "QN3_delSnapBitmap\n@ok\nyes\nQN3_cmpSnap\n@ok\n"
        said = program.play(commands, "edited.dxf", "small.dxf").stderr
        self.assertIn("本图中总共有2个评图标签，以下序号的靶区范围内已修改：\n  1", said)
        for mark in program.marks("small.dxf"):
            self.assertEqual((mark["snapImage"]["size"], mark["fullImage"]["size"]), (0, 0))
        self.assertEqual([mark["feedbackType"] for mark in program.marks("small.dxf")], [3, 0])


def meets(mark, begin, end):
    """A rising line crosses a target, by clipping it."""
    (x1, y1, _), (x2, y2, _) = mark["targetCorner1"], mark["targetCorner2"]
    low, high = 0.0, 1.0
    for start, stop, least, most in ((begin[0], end[0], x1, x2), (begin[1], end[1], y1, y2)):
        low = max(low, (least - start) / (stop - start))
        high = min(high, (most - start) / (stop - start))
    return low <= high


if __name__ == "__main__":
    unittest.main()
