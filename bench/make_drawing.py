#!/usr/bin/env python3
"""Write a drawing of a stated size for the benchmarks: text DXF of 2010, always the same for the same size.

usage: make_drawing.py ENTITIES OUT.dxf

Model space holds LINE 50 %, LWPOLYLINE 15 %, CIRCLE 5 %, ARC 5 %, TEXT 10 %, MTEXT 5 %, INSERT 8 % (of 50 blocks)
and HATCH 2 %, on 20 layers, spread over 100 m by 100 m. Every object has a handle and an owner.
"""
import random
import sys

LAYERS = ["0"] + ["L%02d" % number for number in range(1, 20)]
BLOCKS = ["PART%02d" % number for number in range(50)]
EXTENT = 100000.0
WORDS = ["pump", "valve", "DN80", "level", "door", "EI30", "shaft", "Ø20", "see detail", "±0.00", "図", "axis"]


class Writer:
    """Groups to lines; handles in the order of the calls."""

    def __init__(self, out):
        self.out = out
        self.next_handle = 0x100
        self.random = random.Random(7)

    def groups(self, *pairs):
        self.out.write("".join("%3d\r\n%s\r\n" % pair for pair in pairs))

    def handle(self):
        self.next_handle += 1
        return "%X" % (self.next_handle - 1)

    def coordinate(self, value):
        """Drawn on a grid more often than not, as people draw."""
        return repr(float(round(value))) if self.random.random() < 0.6 else repr(round(value, 9))

    def point(self, code, x, y, z="0.0"):
        return [(code, self.coordinate(x)), (code + 10, self.coordinate(y)), (code + 20, z)]

    def entity(self, kind, owner, layer, *subclasses):
        pairs = [(0, kind), (5, self.handle()), (330, owner), (100, "AcDbEntity"), (8, layer)]
        if self.random.random() < 0.15:
            pairs.append((62, "%6d" % self.random.randint(1, 255)))
        for marker, groups in subclasses:
            pairs.append((100, marker))
            pairs.extend(groups)
        self.groups(*pairs)


def line(w, owner, layer, x, y):
    length = w.random.lognormvariate(6.2, 0.9)
    dx, dy = w.random.choice([(length, 0), (0, length), (length, length / 3)])
    w.entity("LINE", owner, layer, ("AcDbLine", w.point(10, x, y) + w.point(11, x + dx, y + dy)))


def polyline(w, owner, layer, x, y):
    count = w.random.randint(3, 14)
    groups = [(90, "%9d" % count), (70, "%6d" % w.random.randint(0, 1)), (43, "0.0")]
    for _ in range(count):
        groups += w.point(10, x, y)[:2]
        if w.random.random() < 0.1:
            groups.append((42, repr(w.random.uniform(-1, 1))))
        x, y = x + w.random.uniform(-500, 500), y + w.random.uniform(-500, 500)
    w.entity("LWPOLYLINE", owner, layer, ("AcDbPolyline", groups))


def circle(w, owner, layer, x, y):
    w.entity("CIRCLE", owner, layer,
             ("AcDbCircle", w.point(10, x, y) + [(40, repr(round(w.random.uniform(10, 400), 2)))]))


def arc(w, owner, layer, x, y):
    w.entity("ARC", owner, layer,
             ("AcDbCircle", w.point(10, x, y) + [(40, repr(round(w.random.uniform(10, 900), 2)))]),
             ("AcDbArc", [(50, "0.0"), (51, repr(w.random.uniform(1, 359)))]))


def words(w, most):
    return " ".join(w.random.choice(WORDS) for _ in range(w.random.randint(1, most)))


def text(w, owner, layer, x, y):
    w.entity("TEXT", owner, layer,
             ("AcDbText", w.point(10, x, y) + [(40, "250.0"), (1, words(w, 3)), (7, "Standard")]), ("AcDbText", []))


def mtext(w, owner, layer, x, y):
    content = "\\P".join(words(w, 6) for _ in range(w.random.randint(1, 4)))
    w.entity("MTEXT", owner, layer,
             ("AcDbMText", w.point(10, x, y) + [(40, "250.0"), (41, "4000.0"), (71, "     1"), (72, "     5"),
                                               (1, content), (7, "Standard"), (73, "     1"), (44, "1.0")]))


def insert(w, owner, layer, x, y):
    groups = [(2, w.random.choice(BLOCKS))] + w.point(10, x, y)
    if w.random.random() < 0.5:
        groups.append((50, w.random.choice(["90.0", "180.0", "270.0", "30.0"])))
    w.entity("INSERT", owner, layer, ("AcDbBlockReference", groups))


def hatch(w, owner, layer, x, y):
    width, depth = w.random.uniform(200, 2500), w.random.uniform(200, 2500)
    corners = [(x, y), (x + width, y), (x + width, y + depth), (x, y + depth)]
    groups = [(10, "0.0"), (20, "0.0"), (30, "0.0"), (210, "0.0"), (220, "0.0"), (230, "1.0"), (2, "SOLID"),
              (70, "     1"), (71, "     0"), (91, "        1"), (92, "        3"), (72, "     0"), (73, "     1"),
              (93, "        4")]
    for corner in corners:
        groups += w.point(10, *corner)[:2]
    groups += [(97, "        0"), (75, "     0"), (76, "     1"), (98, "        0")]
    w.entity("HATCH", owner, layer, ("AcDbHatch", groups))


SHARES = [(0.50, line), (0.65, polyline), (0.70, circle), (0.75, arc), (0.85, text), (0.90, mtext), (0.98, insert),
          (1.00, hatch)]


def record(w, kind, table, marker, name, *groups):
    handle = w.handle()
    w.groups((0, kind), (105 if kind == "DIMSTYLE" else 5, handle), (330, table), (100, "AcDbSymbolTableRecord"),
             (100, marker), (2, name), *groups)
    return handle


def table(w, name, handle, count):
    w.groups((0, "TABLE"), (2, name), (5, handle), (330, "0"), (100, "AcDbSymbolTable"), (70, "%6d" % count))
    if name == "DIMSTYLE":
        w.groups((100, "AcDbDimStyleTable"))


def tables(w):
    """The block records' handles by name."""
    w.groups((0, "SECTION"), (2, "TABLES"))
    table(w, "VPORT", "8", 0)
    w.groups((0, "ENDTAB"))
    table(w, "LTYPE", "5", 3)
    for name in ("ByBlock", "ByLayer", "Continuous"):
        record(w, "LTYPE", "5", "AcDbLinetypeTableRecord", name, (70, "     0"), (3, ""), (72, "    65"), (73, "     0"),
               (40, "0.0"))
    w.groups((0, "ENDTAB"))
    table(w, "LAYER", "2", len(LAYERS))
    for number, name in enumerate(LAYERS):
        record(w, "LAYER", "2", "AcDbLayerTableRecord", name, (70, "     0"), (62, "%6d" % (number * 12 + 7)),
               (6, "Continuous"))
    w.groups((0, "ENDTAB"))
    table(w, "STYLE", "3", 1)
    record(w, "STYLE", "3", "AcDbTextStyleTableRecord", "Standard", (70, "     0"), (40, "0.0"), (41, "1.0"), (50, "0.0"),
           (71, "     0"), (42, "2.5"), (3, "txt"), (4, ""))
    w.groups((0, "ENDTAB"))
    for name, handle in (("VIEW", "6"), ("UCS", "7")):
        table(w, name, handle, 0)
        w.groups((0, "ENDTAB"))
    table(w, "APPID", "9", 1)
    record(w, "APPID", "9", "AcDbRegAppTableRecord", "ACAD", (70, "     0"))
    w.groups((0, "ENDTAB"))
    table(w, "DIMSTYLE", "A", 1)
    record(w, "DIMSTYLE", "A", "AcDbDimStyleTableRecord", "Standard", (70, "     0"))
    w.groups((0, "ENDTAB"))
    names = ["*Model_Space", "*Paper_Space"] + BLOCKS
    table(w, "BLOCK_RECORD", "1", len(names))
    handles = {name: record(w, "BLOCK_RECORD", "1", "AcDbBlockTableRecord", name, (340, "0")) for name in names}
    w.groups((0, "ENDTAB"), (0, "ENDSEC"))
    return handles


def blocks(w, records):
    w.groups((0, "SECTION"), (2, "BLOCKS"))
    for name, owner in records.items():
        w.entity("BLOCK", owner, "0", ("AcDbBlockBegin", [(2, name), (70, "     0"), (10, "0.0"), (20, "0.0"),
                                                          (30, "0.0"), (3, name), (1, "")]))
        for _ in range(w.random.randint(5, 25) if name in BLOCKS else 0):
            draw = w.random.choice([line, line, polyline, circle, arc])
            draw(w, owner, "0", w.random.uniform(-300, 300), w.random.uniform(-300, 300))
        w.entity("ENDBLK", owner, "0", ("AcDbBlockEnd", []))
    w.groups((0, "ENDSEC"))


def main():
    if len(sys.argv) != 3 or not sys.argv[1].isdigit():
        sys.exit(__doc__)
    count = int(sys.argv[1])
    with open(sys.argv[2], "w", encoding="utf-8", newline="") as out:
        w = Writer(out)
        # More than any handle that the counts below can give.
        seed = "%X" % (0x10000 + count + 100 * len(BLOCKS))
        w.groups((0, "SECTION"), (2, "HEADER"), (9, "$ACADVER"), (1, "AC1024"), (9, "$DWGCODEPAGE"), (3, "ANSI_1252"),
                 (9, "$EXTMIN"), (10, "0.0"), (20, "0.0"), (30, "0.0"), (9, "$EXTMAX"), (10, str(EXTENT)),
                 (20, str(EXTENT)), (30, "0.0"), (9, "$HANDSEED"), (5, seed), (0, "ENDSEC"))
        w.groups((0, "SECTION"), (2, "CLASSES"), (0, "ENDSEC"))
        records = tables(w)
        blocks(w, records)
        w.groups((0, "SECTION"), (2, "ENTITIES"))
        for _ in range(count):
            share = w.random.random()
            draw = next(maker for limit, maker in SHARES if share < limit)
            draw(w, records["*Model_Space"], w.random.choice(LAYERS), w.random.uniform(0, EXTENT),
                 w.random.uniform(0, EXTENT))
        w.groups((0, "ENDSEC"), (0, "SECTION"), (2, "OBJECTS"))
        w.groups((0, "DICTIONARY"), (5, "C"), (330, "0"), (100, "AcDbDictionary"), (281, "     1"), (3, "ACAD_GROUP"),
                 (350, "D"))
        w.groups((0, "DICTIONARY"), (5, "D"), (330, "C"), (100, "AcDbDictionary"), (281, "     1"))
        w.groups((0, "ENDSEC"), (0, "EOF"))


main()
