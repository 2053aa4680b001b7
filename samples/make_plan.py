#!/usr/bin/env python3
"""Writes plan.dxf, the drawing that the demonstration marks up: the ground floor of a small pump house.

usage: make_plan.py [FILE]

Millimetres, 1:1 in model space, and an A3 sheet with a viewport at 1:50. Plain Python, no clock and no
chance: the same file every time.
"""
import sys
from pathlib import Path

# Layers: name, colour, linetype, line weight in hundredths of a millimetre, plots.
LAYERS = (
    ("0", 7, "Continuous", -3, True),
    ("轴线", 1, "CENTER", 13, True),
    ("墙体", 7, "Continuous", 50, True),
    ("填充", 253, "Continuous", 9, True),
    ("柱", 7, "Continuous", 50, True),
    ("门", 3, "Continuous", 25, True),
    ("窗", 4, "Continuous", 25, True),
    ("设备", 151, "Continuous", 35, True),
    ("管道", 30, "Continuous", 35, True),
    ("地沟", 8, "DASHED", 18, True),
    ("标注", 3, "Continuous", 13, True),
    ("文字", 7, "Continuous", 18, True),
    ("图框", 7, "Continuous", 35, True),
    ("视口", 9, "Continuous", 13, False),
)

# Name, description, then dashes (positive) and gaps (negative).
LINETYPES = (
    ("ByBlock", "", ()),
    ("ByLayer", "", ()),
    ("Continuous", "Solid line", ()),
    ("CENTER", "Center ____ _ ____ _ ____", (31.75, -6.35, 6.35, -6.35)),
    ("DASHED", "Dashed __ __ __ __ __", (12.7, -6.35)),
)

AXES_X = (("1", 0), ("2", 3600), ("3", 8400), ("4", 12000))
AXES_Y = (("A", 0), ("B", 4200), ("C", 7800))
WALL = 240
PARTITION = 120


def number(value):
    """A real as DXF writes it: never without a point."""
    text = format(round(value, 9) + 0.0, ".10g")
    return text if any(c in text for c in ".en") else text + ".0"


def point(code, x, y, z=0.0):
    return [(code, float(x)), (code + 10, float(y)), (code + 20, float(z))]


def flat(code, x, y):
    return point(code, x, y)[:2]


class Drawing:
    """Groups of the file by section, and the next free handle."""

    def __init__(self):
        self.last_handle = 0x1F  # The ones below are for the tables and the root.
        self.tables, self.blocks, self.entities, self.paper, self.objects = [], [], [], [], []
        self.records = {}

    def handle(self):
        self.last_handle += 1
        return format(self.last_handle, "X")

    def text(self):
        groups = [(0, "SECTION"), (2, "HEADER")] + self.header() + [(0, "ENDSEC")]
        groups += [(0, "SECTION"), (2, "CLASSES"), (0, "ENDSEC")]
        for name, content in (
            ("TABLES", self.tables),
            ("BLOCKS", self.blocks),
            ("ENTITIES", self.entities + self.paper),
            ("OBJECTS", self.objects),
        ):
            groups += [(0, "SECTION"), (2, name)] + content + [(0, "ENDSEC")]
        groups.append((0, "EOF"))
        return "".join(
            f"{code:>3}\n{number(value) if isinstance(value, float) else value}\n" for code, value in groups
        )

    def header(self):
        return [
            (9, "$ACADVER"), (1, "AC1032"), (9, "$DWGCODEPAGE"), (3, "ANSI_936"),
            (9, "$HANDSEED"), (5, format(self.last_handle + 1, "X")),
            (9, "$INSBASE"), *point(10, 0, 0), (9, "$EXTMIN"), *point(10, -2700, -3070),
            (9, "$EXTMAX"), *point(10, 14800, 9400), (9, "$LIMMIN"), *flat(10, -3000, -4000),
            (9, "$LIMMAX"), *flat(10, 15000, 11000), (9, "$LTSCALE"), (40, 30.0),
            (9, "$TEXTSTYLE"), (7, "Standard"), (9, "$CLAYER"), (8, "0"), (9, "$CELTYPE"), (6, "ByLayer"),
            (9, "$CECOLOR"), (62, 256), (9, "$LUNITS"), (70, 2), (9, "$LUPREC"), (70, 0),
            (9, "$MEASUREMENT"), (70, 1), (9, "$INSUNITS"), (70, 4), (9, "$PSLTSCALE"), (70, 0),
            (9, "$TILEMODE"), (70, 1), (9, "$DIMSTYLE"), (2, "Standard"),
        ]  # fmt: skip


class Space:
    """Entities of one block or layout; knows their owner and where the groups go."""

    def __init__(self, drawing, owner, groups, paper=False):
        self.drawing, self.owner, self.groups, self.paper = drawing, owner, groups, paper

    def add(self, kind, layer, *subclasses, extra=()):
        """`subclasses` are (marker, groups) in order; returns the entity's handle."""
        handle = self.drawing.handle()
        self.groups += [(0, kind), (5, handle), (330, self.owner), (100, "AcDbEntity")]
        self.groups += [(67, 1)] if self.paper else []
        self.groups += [(8, layer), *extra]
        for marker, groups in subclasses:
            self.groups += [(100, marker), *groups]
        return handle

    def line(self, layer, x1, y1, x2, y2, **more):
        self.add("LINE", layer, ("AcDbLine", point(10, x1, y1) + point(11, x2, y2)), **more)

    def circle(self, layer, x, y, radius):
        self.add("CIRCLE", layer, ("AcDbCircle", point(10, x, y) + [(40, float(radius))]))

    def arc(self, layer, x, y, radius, start, end):
        self.add("ARC", layer, ("AcDbCircle", point(10, x, y) + [(40, float(radius))]),
                 ("AcDbArc", [(50, float(start)), (51, float(end))]))  # fmt: skip

    def polyline(self, layer, points, closed=False, width=0):
        vertices = [group for x, y in points for group in flat(10, x, y)]
        self.add("LWPOLYLINE", layer, ("AcDbPolyline", [(90, len(points)), (70, int(closed)),
                 (43, float(width)), *vertices]))  # fmt: skip

    def rectangle(self, layer, x1, y1, x2, y2, **more):
        self.polyline(layer, [(x1, y1), (x2, y1), (x2, y2), (x1, y2)], closed=True, **more)

    def fill(self, layer, points):
        """A solid hatch."""
        edge = [group for x, y in points for group in flat(10, x, y)]
        self.add("HATCH", layer, ("AcDbHatch", [*point(10, 0, 0), *point(210, 0, 0, 1), (2, "SOLID"),
                 (70, 1), (71, 0), (91, 1), (92, 3), (72, 0), (73, 1), (93, len(points)), *edge, (97, 0),
                 (75, 1), (76, 1), (98, 0)]))  # fmt: skip

    def label(self, layer, text, x, y, height, across=0, up=0, turn=0, style="Standard"):
        """TEXT; across: 0 left, 1 centre, 2 right; up: 0 baseline, 2 middle."""
        groups = point(10, x, y) + [(40, float(height)), (1, text), (50, float(turn)), (7, style)]
        if across or up:
            groups += [(72, across), *point(11, x, y)]
        self.add("TEXT", layer, ("AcDbText", groups), ("AcDbText", [(73, up)] if up else []))

    def paragraph(self, layer, text, x, y, height, width, attachment=5):
        self.add("MTEXT", layer, ("AcDbMText", point(10, x, y) + [(40, float(height)), (41, float(width)),
                 (71, attachment), (72, 1), (1, text), (7, "Standard")]))  # fmt: skip

    def insert(self, layer, name, x, y, turn=0, scale=(1, 1), attributes=()):
        """`attributes` are (tag, value, x, y, height), places in the drawing."""
        groups = [(66, 1)] if attributes else []
        groups += [(2, name), *point(10, x, y), (41, float(scale[0])), (42, float(scale[1])), (50, float(turn))]
        handle = self.add("INSERT", layer, ("AcDbBlockReference", groups))
        for tag, value, ax, ay, height in attributes:
            self.groups += [(0, "ATTRIB"), (5, self.drawing.handle()), (330, handle), (100, "AcDbEntity"), (8, layer),
                            (100, "AcDbText"), *point(10, ax, ay), (40, float(height)), (1, value), (7, "Standard"),
                            (72, 1), *point(11, ax, ay), (100, "AcDbAttribute"), (2, tag), (70, 0), (74, 2)]  # fmt: skip
        if attributes:
            self.groups += [(0, "SEQEND"), (5, self.drawing.handle()), (330, handle), (100, "AcDbEntity"), (8, layer)]


# Tables and blocks ---------------------------------------------------------------------------------


def table(drawing, name, handle, records):
    """`records` are lists of groups behind the record's marker, by marker and handle."""
    kind_code = 105 if name == "DIMSTYLE" else 5
    drawing.tables += [(0, "TABLE"), (2, name), (5, handle), (330, "0"), (100, "AcDbSymbolTable"), (70, len(records))]
    drawing.tables += [(100, "AcDbDimStyleTable"), (71, 0)] if name == "DIMSTYLE" else []
    for marker, own_handle, groups in records:
        drawing.tables += [(0, name), (kind_code, own_handle), (330, handle), (100, "AcDbSymbolTableRecord"),
                           (100, marker), *groups]  # fmt: skip
    drawing.tables.append((0, "ENDTAB"))


def layer_record(drawing, name, color, linetype, weight, plots):
    groups = [(2, name), (70, 0), (62, color), (6, linetype)]
    groups += [] if plots else [(290, 0)]
    return "AcDbLayerTableRecord", drawing.handle(), groups + [(370, weight), (390, "F")]


def linetype_record(drawing, name, description, dashes):
    groups = [(2, name), (70, 0), (3, description), (72, 65), (73, len(dashes))]
    groups.append((40, float(sum(map(abs, dashes)))))
    for dash in dashes:
        groups += [(49, float(dash)), (74, 0)]
    return "AcDbLinetypeTableRecord", drawing.handle(), groups


def viewport_record(drawing):
    groups = [(2, "*Active"), (70, 0), *flat(10, 0, 0), *flat(11, 1, 1), *flat(12, 6050, 3200), *flat(13, 0, 0),
              *flat(14, 10, 10), *flat(15, 10, 10), *point(16, 0, 0, 1), *point(17, 0, 0, 0), (40, 13000.0),
              (41, 1.5), (42, 50.0), (43, 0.0), (44, 0.0), (50, 0.0), (51, 0.0), (71, 0), (72, 1000), (73, 1),
              (74, 3), (75, 0), (76, 0), (77, 0), (78, 0)]  # fmt: skip
    return "AcDbViewportTableRecord", drawing.handle(), groups


def add_tables(drawing, block_records):
    style = [(2, "Standard"), (70, 0), (40, 0.0), (41, 0.8), (50, 0.0), (71, 0), (42, 2.5), (3, "txt.shx"),
             (4, "gbcbig.shx")]  # fmt: skip
    title = [(2, "标题"), (70, 0), (40, 0.0), (41, 1.0), (50, 0.0), (71, 0), (42, 5.0), (3, "simhei.ttf"), (4, "")]
    dimstyle = [(2, "Standard"), (70, 0), (40, 50.0), (41, 2.5), (42, 2.0), (44, 2.0), (140, 2.5), (77, 1),
                (271, 0), (340, "11")]  # fmt: skip
    table(drawing, "VPORT", "8", [viewport_record(drawing)])
    table(drawing, "LTYPE", "5", [linetype_record(drawing, *row) for row in LINETYPES])
    table(drawing, "LAYER", "2", [layer_record(drawing, *row) for row in LAYERS])
    table(drawing, "STYLE", "3", [("AcDbTextStyleTableRecord", "11", style),
                                  ("AcDbTextStyleTableRecord", "12", title)])  # fmt: skip
    table(drawing, "VIEW", "6", [])
    table(drawing, "UCS", "7", [])
    table(drawing, "APPID", "9", [("AcDbRegAppTableRecord", drawing.handle(), [(2, "ACAD"), (70, 0)])])
    table(drawing, "DIMSTYLE", "A", [("AcDbDimStyleTableRecord", drawing.handle(), dimstyle)])
    table(drawing, "BLOCK_RECORD", "1", block_records)


def add_block(drawing, name, draw, layout="0", paper=False, attributes=False):
    """Defines a block from `draw(space)`; its record is kept for the table."""
    record, start, end = drawing.handle(), drawing.handle(), drawing.handle()
    drawing.records[name] = ("AcDbBlockTableRecord", record, [(2, name), (340, layout), (70, 0), (280, 1), (281, 0)])
    head = [(330, record), (100, "AcDbEntity"), *([(67, 1)] if paper else []), (8, "0")]
    content = []
    draw(Space(drawing, record, content))
    drawing.blocks += [(0, "BLOCK"), (5, start), *head, (100, "AcDbBlockBegin"), (2, name),
                       (70, 2 if attributes else 1 if name.startswith("*D") else 0), *point(10, 0, 0), (3, name), (1, ""),
                       *content, (0, "ENDBLK"), (5, end), *head, (100, "AcDbBlockEnd")]  # fmt: skip
    return record


def nothing(_space):
    pass


def single_door(space):
    """900 wide, hinge at the origin, opening upwards."""
    space.rectangle("0", 0, 0, 40, 900)
    space.arc("0", 0, 0, 900, 0, 90)


def double_door(space):
    """1800 wide from the origin to the right."""
    space.rectangle("0", 0, 0, 40, 900)
    space.rectangle("0", 1760, 0, 1800, 900)
    space.arc("0", 0, 0, 900, 0, 90)
    space.arc("0", 1800, 0, 900, 90, 180)


def window(space):
    """1000 wide around the origin in a 240 wall; stretched along X where it is put."""
    for y in (-120, -40, 40, 120):
        space.line("0", -500, y, 500, y)
    for x in (-500, 500):
        space.line("0", x, -120, x, 120)


def pump(space):
    """On a base of 1200 by 500, flow upwards; the number is an attribute."""
    space.rectangle("0", -600, -250, 600, 250)
    space.circle("0", -300, 0, 190)
    space.polyline("0", [(-465, -95), (-135, -95), (-300, 190)], closed=True)
    space.rectangle("0", -40, -150, 460, 150)
    for x in (60, 160, 260, 360):
        space.line("0", x, -150, x, 150)
    space.rectangle("0", 460, -60, 540, 60)
    space.add("ATTDEF", "0", ("AcDbText", point(10, 0, -420) + [(40, 150.0), (1, "P-00"), (7, "Standard"), (72, 1)]
              + point(11, 0, -420)), ("AcDbAttributeDefinition", [(3, "编号"), (2, "TAG"), (70, 0), (74, 2)]))  # fmt: skip


def valve(space):
    """A bow tie along Y, 240 long."""
    space.polyline("0", [(-70, -120), (70, -120), (-70, 120), (70, 120)], closed=True)
    space.line("0", 0, 0, 110, 0)
    space.line("0", 110, -60, 110, 60)


def north(space):
    space.circle("0", 0, 0, 600)
    space.fill("0", [(-150, -580), (0, 600), (0, -400)])
    space.polyline("0", [(0, 600), (150, -580), (0, -400)])
    space.label("0", "北", 0, 680, 300, across=1)


# The building --------------------------------------------------------------------------------------


def wall(model, start, end, thickness, openings=(), horizontal=True, at=0):
    """A straight wall around its centre line; `openings` are (from, to) along it."""
    half = thickness / 2
    edges = [start] + [edge for opening in openings for edge in opening] + [end]
    for low, high in zip(edges[0::2], edges[1::2]):
        box = [(low, at - half), (high, at - half), (high, at + half), (low, at + half)]
        if not horizontal:
            box = [(y, x) for x, y in box]
        model.fill("填充", box)
        model.polyline("墙体", box, closed=True)


def axes(model):
    low_x, high_x, low_y, high_y = -1900, 12700, -2200, 9100
    for name, x in AXES_X:
        model.line("轴线", x, low_y + 800, x, high_y - 500)
        for y in (low_y + 400, high_y - 100):
            model.circle("标注", x, y, 400)
            model.label("标注", name, x, y, 400, across=1, up=2)
    for name, y in AXES_Y:
        model.line("轴线", low_x, y, high_x, y)
        model.circle("标注", low_x - 400, y, 400)
        model.label("标注", name, low_x - 400, y, 400, across=1, up=2)


def columns(model):
    for _, x in AXES_X:
        for _, y in AXES_Y:
            box = [(x - 200, y - 200), (x + 200, y - 200), (x + 200, y + 200), (x - 200, y + 200)]
            if (x, y) == (8400, 4200):
                continue  # The hall has no column in its middle.
            model.fill("柱", box)
            model.polyline("柱", box, closed=True)


def walls(model):
    wall(model, 200, 11800, WALL, [(1200, 2700), (4600, 6400), (9400, 10900)], at=0)
    wall(model, 200, 11800, WALL, [(1050, 2550), (4800, 7200), (9300, 11100)], at=7800)
    wall(model, 200, 7600, WALL, [(1200, 2700), (5400, 6600)], horizontal=False, at=0)
    wall(model, 200, 7600, WALL, [(1500, 3300), (5100, 6900)], horizontal=False, at=12000)
    wall(model, 200, 7600, PARTITION, [(2600, 3500), (4700, 5600)], horizontal=False, at=3600)
    wall(model, 200, 3400, PARTITION, [(1500, 2400)], at=4200)


def openings(model):
    model.insert("门", "双开门1800", 4600, 0, turn=0, scale=(1, 1))
    model.insert("门", "单开门900", 3600, 2600, turn=90, scale=(1, 1))
    model.insert("门", "单开门900", 3600, 5600, turn=90, scale=(-1, 1))
    model.insert("门", "单开门900", 2400, 4200, turn=0, scale=(-1, 1))
    for x, width, y in ((1950, 1500, 0), (10150, 1500, 0), (1800, 1500, 7800), (6000, 2400, 7800), (10200, 1800, 7800)):
        model.insert("窗", "窗1000", x, y, scale=(width / 1000, 1))
    for x, y, width in ((0, 1950, 1500), (0, 6000, 1200), (12000, 2400, 1800), (12000, 6000, 1800)):
        model.insert("窗", "窗1000", x, y, turn=90, scale=(width / 1000, 1))


def pumps(model):
    """Three pumps between the suction header in the south and the discharge header in the north."""
    places = (5200, 7500, 9800)
    for index, x in enumerate(places, 1):
        tag = f"P-{index:02}"
        model.rectangle("设备", x - 700, 3250, x + 700, 3950)
        model.insert("设备", "水泵", x, 3600, attributes=[("TAG", tag, x + 150, 3020, 180)])
        for low, middle, high in ((1900, 2450, 3410), (3790, 4650, 5600)):
            model.polyline("管道", [(x - 300, low), (x - 300, middle - 120)], width=60)
            model.insert("管道", "阀门", x - 300, middle)
            model.polyline("管道", [(x - 300, middle + 120), (x - 300, high)], width=60)
    model.polyline("管道", [(4300, 1900), (11350, 1900), (11350, -900)], width=100)
    model.polyline("管道", [(4300, 5600), (11450, 5600), (11450, 8700)], width=100)
    model.label("管道", "DN300 吸水管", 6300, 1560, 200)
    model.label("管道", "DN250 出水管", 6300, 5740, 200)
    model.line("地沟", 4000, 1100, 11600, 1100)
    model.line("地沟", 4000, 1400, 11600, 1400)
    model.label("文字", "排水沟 300×400", 7000, 810, 180)


def furniture(model):
    for y in (500, 1300, 2100):
        model.rectangle("设备", 320, y, 920, y + 700)
        model.line("设备", 320, y, 920, y + 700)
        model.label("文字", f"{1 + (y - 500) // 800}AP", 620, y + 350, 180, across=1, up=2)
    model.rectangle("设备", 1100, 3100, 2500, 3700)
    model.circle("设备", 1800, 2850, 180)
    for x in (400, 1300):
        model.rectangle("设备", x, 7000, x + 800, 7500)
        model.line("设备", x + 400, 7000, x + 400, 7500)
    model.rectangle("设备", 300, 4400, 1300, 4900)
    for x in (633, 967):
        model.line("设备", x, 4400, x, 4900)


def names(model):
    model.paragraph("文字", "{\\H1.4x;泵房}\\PPUMP ROOM", 9000, 6850, 260, 3600)
    model.paragraph("文字", "{\\H1.4x;控制室}\\PCONTROL ROOM", 2250, 1750, 220, 3200)
    model.paragraph("文字", "{\\H1.4x;备件库}\\PSPARE PARTS", 1750, 6000, 220, 2600)
    for x, y, level in ((8900, 6050, "%%p0.000"), (2250, 900, "+0.150"), (1750, 5150, "%%p0.000")):
        model.polyline("标注", [(x - 500, y), (x - 360, y - 140), (x - 220, y), (x - 500, y)])
        model.line("标注", x - 220, y, x + 620, y)
        model.label("标注", level, x - 150, y + 40, 200)
    model.label("文字", "一层平面图 GROUND FLOOR PLAN", 6000, -2900, 450, across=1, style="标题")
    model.label("文字", "1:50", 11200, -2900, 300)
    model.polyline("文字", [(1500, -3040), (10900, -3040)], width=60)
    model.insert("文字", "指北针", 14200, 8300)


# Dimensions ----------------------------------------------------------------------------------------


def dimension(drawing, model, start, end, at, horizontal=True):
    """A linear dimension with its picture: extension lines, ticks, the measured length."""
    name = f"*D{sum(1 for known in drawing.records if known.startswith('*D')) + 1}"
    middle = (start + end) / 2
    place = (lambda along, off: (along, off)) if horizontal else (lambda along, off: (off, along))

    def picture(space):
        for along in (start, end):
            x, y = place(along, at)
            space.line("标注", *place(along, at - 260), *place(along, at + 120))
            space.polyline("标注", [(x - 70, y - 70), (x + 70, y + 70)], width=30)
        space.line("标注", *place(start, at), *place(end, at))
        space.label("标注", str(end - start), *place(middle, at + 60 if horizontal else at - 60), 200,
                    across=1, turn=0 if horizontal else 90)  # fmt: skip

    add_block(drawing, name, picture)
    foot = at - 300 if at > 5000 else at + 300
    model.add("DIMENSION", "标注",
              ("AcDbDimension", [(2, name), *point(10, *place(end, at)), *point(11, *place(middle, at + 160)),
                                 (70, 32), (71, 5), (42, float(end - start)), (3, "Standard")]),
              ("AcDbAlignedDimension", [*point(13, *place(start, foot)), *point(14, *place(end, foot)),
                                        (50, 0.0 if horizontal else 90.0)]),
              ("AcDbRotatedDimension", []))  # fmt: skip


def dimensions(drawing, model):
    xs, ys = [x for _, x in AXES_X], [y for _, y in AXES_Y]
    for start, end in list(zip(xs, xs[1:])) + [(xs[0], xs[-1])]:
        dimension(drawing, model, start, end, -1200 if end - start == 12000 else -800)
    details = (0, 1200, 2700, 3600, 4600, 6400, 8400, 9400, 10900, 12000)
    for start, end in zip(details, details[1:]):
        dimension(drawing, model, start, end, -400)
    for start, end in list(zip(ys, ys[1:])) + [(ys[0], ys[-1])]:
        dimension(drawing, model, start, end, -1200 if end - start == 7800 else -800, horizontal=False)


# The sheet -----------------------------------------------------------------------------------------


def sheet(paper):
    viewport(paper, 1, 210, 148.5, 420, 297, (210, 148.5), 297)
    viewport(paper, 2, 220, 165, 380, 252, (6050, 3200), 252 * 50)
    paper.rectangle("图框", 0, 0, 420, 297)
    paper.rectangle("图框", 25, 5, 415, 292, width=0.7)
    left, bottom, right = 235, 5, 415
    for y in (13, 21, 29, 37):
        paper.line("图框", left, y, right, y)
    for x in (260, 295, 320, 355, 380):
        paper.line("图框", x, bottom, x, 37 if x < 355 else 29)
    paper.line("图框", left, bottom, left, 37)
    cells = (
        ("设计", 237, 7), ("李明", 264, 7), ("图号", 322, 7), ("PH-01", 358, 7),
        ("校核", 237, 15), ("王芳", 264, 15), ("比例", 322, 15), ("1:50", 358, 15),
        ("审定", 237, 23), ("赵强", 264, 23), ("日期", 322, 23), ("2024-05", 358, 23),
        ("专业", 237, 31), ("给排水", 264, 31), ("一层平面图 Ground floor plan", 322, 31),
    )  # fmt: skip
    for text, x, y in cells:
        paper.label("图框", text, x, y, 3.5)
    paper.label("图框", "青溪泵站 Qingxi Pump House", 145, 19, 5, style="标题")
    notes = ("说明：", "1. 图中尺寸以毫米计，标高以米计。", "2. 室内地坪标高%%p0.000。", "3. 管道穿墙处设防水套管。")
    for index, note in enumerate(notes):
        paper.label("文字", note, 30, 29 - index * 6.5, 3)


def viewport(paper, index, x, y, width, height, centre, view_height):
    paper.add("VIEWPORT", "视口", ("AcDbViewport", [*point(10, x, y), (40, float(width)), (41, float(height)),
              (68, index), (69, index), *flat(12, *centre), *flat(13, 0, 0), *flat(14, 10, 10), *flat(15, 10, 10),
              *point(16, 0, 0, 1), *point(17, 0, 0), (42, 50.0), (43, 0.0), (44, 0.0), (45, float(view_height)),
              (50, 0.0), (51, 0.0), (72, 1000), (90, 0), (1, ""), (281, 0), (71, 1), (74, 0), *point(110, 0, 0),
              *point(111, 1, 0), *point(112, 0, 1), (79, 0), (146, 0.0)]))  # fmt: skip


# Objects -------------------------------------------------------------------------------------------


def dictionary(handle, owner, entries):
    groups = [(0, "DICTIONARY"), (5, handle), (330, owner), (100, "AcDbDictionary"), (281, 1)]
    return groups + [group for name, target in entries for group in ((3, name), (350, target))]


def layout(handle, owner, name, order, block, size, extents):
    return [
        (0, "LAYOUT"), (5, handle), (330, owner), (100, "AcDbPlotSettings"), (1, ""), (2, "none_device"),
        (4, "A3"), (6, ""), (40, 5.0), (41, 5.0), (42, 5.0), (43, 5.0), (44, 420.0), (45, 297.0), (46, 0.0),
        (47, 0.0), (48, 0.0), (49, 0.0), (140, 0.0), (141, 0.0), (142, 1.0), (143, 1.0),
        (70, 1152 if order == 0 else 128), (72, 1), (73, 0), (74, 5), (7, ""), (75, 16), (147, 1.0),
        (148, 0.0), (149, 0.0), (100, "AcDbLayout"), (1, name), (70, 1), (71, order), *flat(10, 0, 0),
        *flat(11, *size), *point(12, 0, 0), *point(14, *extents[0]), *point(15, *extents[1]), (146, 0.0),
        *point(13, 0, 0), *point(16, 1, 0), *point(17, 0, 1), (76, 0), (330, block),
    ]  # fmt: skip


def add_objects(drawing, model, paper):
    drawing.objects += dictionary("C", "0", [("ACAD_GROUP", "D"), ("ACAD_LAYOUT", "1A"), ("ACAD_PLOTSTYLENAME", "E")])
    drawing.objects += dictionary("D", "C", [])
    drawing.objects += [(0, "ACDBDICTIONARYWDFLT"), (5, "E"), (330, "C"), (100, "AcDbDictionary"), (281, 1),
                        (3, "Normal"), (350, "F"), (100, "AcDbDictionaryWithDefault"), (340, "F")]  # fmt: skip
    drawing.objects += [(0, "ACDBPLACEHOLDER"), (5, "F"), (330, "E")]
    drawing.objects += dictionary("1A", "C", [("A3 平面图", "1C"), ("Model", "1B")])
    drawing.objects += layout("1B", "1A", "Model", 0, model, (420, 297), ((-2700, -3070), (14800, 9400)))
    drawing.objects += layout("1C", "1A", "A3 平面图", 1, paper, (420, 297), ((0, 0), (420, 297)))


def plan():
    drawing = Drawing()
    model_record = add_block(drawing, "*Model_Space", nothing, layout="1B")
    paper_record = add_block(drawing, "*Paper_Space", nothing, layout="1C", paper=True)
    for name, draw in (("单开门900", single_door), ("双开门1800", double_door), ("窗1000", window),
                       ("水泵", pump), ("阀门", valve), ("指北针", north)):  # fmt: skip
        add_block(drawing, name, draw, attributes=name == "水泵")

    model = Space(drawing, model_record, drawing.entities)
    for part in (axes, walls, columns, openings, pumps, furniture, names):
        part(model)
    dimensions(drawing, model)
    sheet(Space(drawing, paper_record, drawing.paper, paper=True))

    add_tables(drawing, list(drawing.records.values()))
    add_objects(drawing, model_record, paper_record)
    return drawing.text()


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name("plan.dxf")
    path.write_bytes(plan().encode("utf-8"))


if __name__ == "__main__":
    main()
