"""Small drawings of every DXF version, written by hand from the format, and a reader that takes files apart.

Nothing here shares code with the program. A drawing is a list of groups (code, text); `as_text` and `as_binary`
turn it into a file, `Parts` turns a file back into objects that can be compared.
"""

import struct
from collections import Counter

VERSIONS = {
    "R12": "AC1009", "R13": "AC1012", "R14": "AC1014", "2000": "AC1015", "2004": "AC1018", "2007": "AC1021",
    "2010": "AC1024", "2013": "AC1027", "2018": "AC1032",
}  # fmt: skip
SENTINEL = b"AutoCAD Binary DXF\r\n\x1a\x00"


def encoding_of(version, code_page):
    """Texts are UTF-8 from 2007 on, whatever the code page says."""
    return "utf-8" if VERSIONS[version] >= "AC1021" else {"ANSI_936": "gbk", "ANSI_1252": "cp1252"}[code_page]


# The drawing ---------------------------------------------------------------------------------------


def split(text):
    """ "0 LINE|8 0" becomes groups."""
    return [(int(code), value) for code, _, value in (line.partition(" ") for line in text.split("|"))]


def drawing(version, code_page="ANSI_936"):
    """Groups of a drawing with walls, a door block with an attribute, a title in paper space, things that the
    program knows nothing of, and numbers in spellings that no writer would choose."""
    wall = "墙体" if code_page == "ANSI_936" else "mur ext\u00e9rieur"
    note = "控制室 \\U+2205 %%d" if code_page == "ANSI_936" else "salle \\U+2205 %%d"
    template = R12 if version == "R12" else MODERN
    if VERSIONS[version] < "AC1018":
        template = template.replace("|91 1", "")  # Classes count their instances since then.
    words = {"VERSION": VERSIONS[version], "PAGE": code_page, "NOTE": note}
    words["WALL"] = wall.replace(" ", "_") if version == "R12" else wall
    for word, text in words.items():
        template = template.replace(f"<{word}>", text)
    return split(template)


R12 = (
    "999 kept as it is|0 SECTION|2 HEADER|9 $ACADVER|1 AC1009|9 $DWGCODEPAGE|3 <PAGE>|9 $INSBASE|10 0.0|20 0.0|30 0.0"
    "|9 $EXTMIN|10 0.0|20 0.0|30 0.0|9 $EXTMAX|10 1000.0|20 600.0|30 0.0|9 $HANDLING|70 1|9 $HANDSEED|5 C0|0 ENDSEC"
    "|0 SECTION|2 TABLES|0 TABLE|2 LTYPE|70 1|0 LTYPE|2 CONTINUOUS|70 64|3 Solid line|72 65|73 0|40 0.0|0 ENDTAB"
    "|0 TABLE|2 LAYER|70 2|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 LAYER|2 <WALL>|70 64|62 1|6 CONTINUOUS|0 ENDTAB"
    "|0 TABLE|2 STYLE|70 1|0 STYLE|2 STANDARD|70 0|40 0.0|41 1.0|50 0.0|71 0|42 2.5|3 txt|4 |0 ENDTAB"
    "|0 TABLE|2 APPID|70 1|0 APPID|2 ACAD|70 64|0 ENDTAB|0 ENDSEC"
    "|0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 DOOR|70 2|10 0.0|20 0.0|30 0.0|3 DOOR|1 "
    "|0 LINE|5 A1|8 0|10 0.0|20 0.0|30 0.0|11 90|21 0.0|31 0.0|0 ATTDEF|5 A2|8 0|10 0.0|20 -20.0|30 0.0|40 10.0"
    "|1 D00|3 door|2 NR|70 0|0 ENDBLK|5 A3|8 0|0 ENDSEC"
    "|0 SECTION|2 ENTITIES|0 LINE|5 B1|8 <WALL>|10 0.0|20 0.0|30 0.0|11 1000.00|21 0.0|31 0.0"
    "|0 CIRCLE|5 B2|8 <WALL>|62 3|10 500.0|20 300.0|30 0.0|40 1.50e2"
    "|0 INSERT|5 B3|8 0|66 1|2 DOOR|10 200.0|20 0.0|30 0.0|0 ATTRIB|5 B4|8 0|10 200.0|20 -20.0|30 0.0|40 10.0|1 D01"
    "|2 NR|70 0|0 SEQEND|5 B5|8 0"
    "|0 POLYLINE|5 B6|8 0|66 1|10 0.0|20 0.0|30 0.0|0 VERTEX|5 B7|8 0|10 0.0|20 600.0|30 0.0|0 VERTEX|5 B8|8 0|10 80.0"
    "|20 590.0|30 0.0|0 SEQEND|5 B9|8 0|0 TEXT|5 BA|8 0|10 600.0|20 500.0|30 0.0|40 25.|1 <NOTE>|1001 ACAD|1000 kept"
    "|0 TEXT|5 BB|8 0|10 10.0|20 10.0|30 0.0|40 5.0|1 title|67 1|0 ENDSEC|0 EOF"
)

RECORD = "|100 AcDbSymbolTableRecord|100 AcDb"
ENTITY = "|100 AcDbEntity"
MODERN = (
    "0 SECTION|2 HEADER|9 $ACADVER|1 <VERSION>|9 $DWGCODEPAGE|3 <PAGE>|9 $INSBASE|10 0.0|20 0.0|30 0.0"
    "|9 $EXTMIN|10 0.0|20 0.0|30 0.0|9 $EXTMAX|10 1000.0|20 600.0|30 0.0|9 $CLAYER|8 0|9 $HANDSEED|5 C0|0 ENDSEC"
    "|0 SECTION|2 CLASSES|0 CLASS|1 SPECIAL|2 AcDbSpecial|3 Some Maker|90 0|91 1|280 0|281 1|0 ENDSEC"
    "|0 SECTION|2 TABLES"
    "|0 TABLE|2 VPORT|5 8|330 0|100 AcDbSymbolTable|70 1|0 VPORT|5 60|330 8" + RECORD + "ViewportTableRecord|2 *ACTIVE"
    "|70 0|10 0.0|20 0.0|11 1.0|21 1.0|12 500.0|22 300.0|13 0.0|23 0.0|14 10.0|24 10.0|15 10.0|25 10.0|16 0.0|26 0.0"
    "|36 1.0|17 0.0|27 0.0|37 0.0|40 700.0|41 1.6|42 50.0|43 0.0|44 0.0|50 0.0|51 0.0|71 0|72 1000|73 1|74 3|75 0"
    "|76 0|77 0|78 0|0 ENDTAB"
    "|0 TABLE|2 LTYPE|5 5|330 0|100 AcDbSymbolTable|70 3|0 LTYPE|5 61|330 5" + RECORD + "LinetypeTableRecord|2 BYBLOCK"
    "|70 0|3 |72 65|73 0|40 0.0|0 LTYPE|5 62|330 5" + RECORD + "LinetypeTableRecord|2 BYLAYER|70 0|3 |72 65|73 0|40 0.0"
    "|0 LTYPE|5 63|330 5" + RECORD + "LinetypeTableRecord|2 CONTINUOUS|70 0|3 Solid|72 65|73 0|40 0.0|0 ENDTAB"
    "|0 TABLE|2 LAYER|5 2|330 0|100 AcDbSymbolTable|70 2|0 LAYER|5 64|330 2" + RECORD + "LayerTableRecord|2 0|70 0|62 7"
    "|6 CONTINUOUS|0 LAYER|5 65|330 2" + RECORD + "LayerTableRecord|2 <WALL>|70 0|62 1|6 CONTINUOUS|0 ENDTAB"
    "|0 TABLE|2 STYLE|5 3|330 0|100 AcDbSymbolTable|70 1|0 STYLE|5 66|330 3" + RECORD + "TextStyleTableRecord|2 STANDARD"
    "|70 0|40 0.0|41 1.0|50 0.0|71 0|42 2.5|3 txt|4 |0 ENDTAB"
    "|0 TABLE|2 VIEW|5 6|330 0|100 AcDbSymbolTable|70 0|0 ENDTAB|0 TABLE|2 UCS|5 7|330 0|100 AcDbSymbolTable|70 0|0 ENDTAB"
    "|0 TABLE|2 APPID|5 9|330 0|100 AcDbSymbolTable|70 1|0 APPID|5 67|330 9" + RECORD + "RegAppTableRecord|2 ACAD|70 0"
    "|0 ENDTAB|0 TABLE|2 DIMSTYLE|5 A|330 0|100 AcDbSymbolTable|70 1|100 AcDbDimStyleTable|0 DIMSTYLE|105 68|330 A"
    + RECORD + "DimStyleTableRecord|2 STANDARD|70 0|0 ENDTAB"
    "|0 TABLE|2 BLOCK_RECORD|5 1|330 0|100 AcDbSymbolTable|70 3"
    "|0 BLOCK_RECORD|5 20|330 1" + RECORD + "BlockTableRecord|2 *MODEL_SPACE|340 52"
    "|0 BLOCK_RECORD|5 23|330 1" + RECORD + "BlockTableRecord|2 *PAPER_SPACE|340 53"
    "|0 BLOCK_RECORD|5 26|330 1" + RECORD + "BlockTableRecord|2 DOOR|340 0|0 ENDTAB|0 ENDSEC"
    "|0 SECTION|2 BLOCKS"
    "|0 BLOCK|5 21|330 20" + ENTITY + "|8 0|100 AcDbBlockBegin|2 *MODEL_SPACE|70 0|10 0.0|20 0.0|30 0.0|3 *MODEL_SPACE|1 "
    "|0 ENDBLK|5 22|330 20" + ENTITY + "|8 0|100 AcDbBlockEnd"
    "|0 BLOCK|5 24|330 23" + ENTITY + "|67 1|8 0|100 AcDbBlockBegin|2 *PAPER_SPACE|70 0|10 0.0|20 0.0|30 0.0"
    "|3 *PAPER_SPACE|1 |0 ENDBLK|5 25|330 23" + ENTITY + "|67 1|8 0|100 AcDbBlockEnd"
    "|0 BLOCK|5 27|330 26" + ENTITY + "|8 0|100 AcDbBlockBegin|2 DOOR|70 2|10 0.0|20 0.0|30 0.0|3 DOOR|1 "
    "|0 LINE|5 28|330 26" + ENTITY + "|8 0|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 90|21 0.0|31 0.0"
    "|0 ATTDEF|5 29|330 26" + ENTITY + "|8 0|100 AcDbText|10 0.0|20 -20.0|30 0.0|40 10.0|1 D00"
    "|100 AcDbAttributeDefinition|3 door|2 NR|70 0|0 ENDBLK|5 2A|330 26" + ENTITY + "|8 0|100 AcDbBlockEnd|0 ENDSEC"
    "|0 SECTION|2 ENTITIES"
    "|0 LINE|5 30|330 20" + ENTITY + "|8 <WALL>|100 AcDbLine|10 0.0|20 0.0|30 0.0|11 1000.00|21 0.0|31 0.0"
    "|0 CIRCLE|5 31|330 20" + ENTITY + "|8 <WALL>|62 3|100 AcDbCircle|10 500.0|20 300.0|30 0.0|40 1.50e2"
    "|0 INSERT|5 32|102 {ACAD_XDICTIONARY|360 54|102 }|330 20" + ENTITY + "|8 0|100 AcDbBlockReference|66 1|2 DOOR"
    "|10 200.0|20 0.0|30 0.0|0 ATTRIB|5 33|330 32" + ENTITY + "|8 0|100 AcDbText|10 200.0|20 -20.0|30 0.0|40 10.0"
    "|1 D01|100 AcDbAttribute|2 NR|70 0|0 SEQEND|5 34|330 32" + ENTITY + "|8 0"
    "|0 SPECIAL|5 35|330 20" + ENTITY + "|8 0|100 AcDbSpecial|90 2|310 00FF7F|1 nobody knows this|340 31"
    "|0 TEXT|5 36|330 20" + ENTITY + "|8 0|100 AcDbText|10 600.0|20 500.0|30 0.0|40 25.|1 <NOTE>|100 AcDbText"
    "|1001 ACAD|1000 kept"
    "|0 TEXT|5 37|330 23" + ENTITY + "|67 1|8 0|100 AcDbText|10 10.0|20 10.0|30 0.0|40 5.0|1 title|100 AcDbText|0 ENDSEC"
    "|0 SECTION|2 OBJECTS"
    "|0 DICTIONARY|5 40|330 0|100 AcDbDictionary|3 ACAD_GROUP|350 41|3 ACAD_LAYOUT|350 51|3 SOMEBODY|350 56"
    "|0 DICTIONARY|5 41|102 {ACAD_REACTORS|330 40|102 }|330 40|100 AcDbDictionary"
    "|0 DICTIONARY|5 51|330 40|100 AcDbDictionary|3 Layout1|350 53|3 Model|350 52"
    "|0 LAYOUT|5 52|330 51|100 AcDbPlotSettings|1 |70 1024|100 AcDbLayout|1 Model|70 1|71 0|10 0.0|20 0.0|11 12.0"
    "|21 9.0|12 0.0|22 0.0|32 0.0|14 0.0|24 0.0|34 0.0|15 0.0|25 0.0|35 0.0|146 0.0|13 0.0|23 0.0|33 0.0|16 1.0|26 0.0"
    "|36 0.0|17 0.0|27 1.0|37 0.0|76 0|330 20"
    "|0 LAYOUT|5 53|330 51|100 AcDbPlotSettings|1 |70 0|100 AcDbLayout|1 Layout1|70 1|71 1|10 0.0|20 0.0|11 420.0"
    "|21 297.0|12 0.0|22 0.0|32 0.0|14 0.0|24 0.0|34 0.0|15 0.0|25 0.0|35 0.0|146 0.0|13 0.0|23 0.0|33 0.0|16 1.0"
    "|26 0.0|36 0.0|17 0.0|27 1.0|37 0.0|76 0|330 23"
    "|0 DICTIONARY|5 54|330 32|100 AcDbDictionary|3 NOTE|360 55"
    "|0 XRECORD|5 55|330 54|100 AcDbXrecord|1 kept|102 plain data|310 00FF10|40 .5"
    "|0 DICTIONARY|5 56|330 40|100 AcDbDictionary|0 ENDSEC|0 EOF"
)


# Files ---------------------------------------------------------------------------------------------


def as_text(groups, encoding, line_end=b"\r\n", width=3):
    return b"".join(
        str(code).rjust(width).encode() + line_end + value.encode(encoding) + line_end for code, value in groups
    )


def packing(code):
    """How a binary file holds the value of a code: a format of struct, "hex" or "text"."""
    for low, high, form in (
        (10, 59, "<d"), (60, 79, "<h"), (90, 99, "<i"), (110, 149, "<d"), (160, 169, "<q"), (170, 179, "<h"),
        (210, 239, "<d"), (270, 289, "<h"), (290, 299, "<B"), (310, 319, "hex"), (370, 389, "<h"), (400, 409, "<h"),
        (420, 429, "<i"), (440, 449, "<i"), (450, 459, "<i"), (460, 469, "<d"), (1004, 1004, "hex"),
        (1010, 1059, "<d"), (1060, 1070, "<h"), (1071, 1071, "<i"),
    ):  # fmt: skip
        if low <= code <= high:
            return form
    return "text"


def as_binary(groups, encoding):
    short_codes = ("1", "AC1009") in [(str(code), value) for code, value in groups]
    data = SENTINEL
    for code, value in groups:
        if code == 999:
            continue  # Comments stand in text files only.
        if not short_codes:
            data += struct.pack("<h", code)
        else:
            data += bytes([code]) if code < 255 else b"\xff" + struct.pack("<h", code)
        form = packing(code)
        if form == "text":
            data += value.encode(encoding) + b"\x00"
        elif form == "hex":
            data += bytes([len(value) // 2]) + bytes.fromhex(value)
        else:
            data += struct.pack(form, float(value) if form == "<d" else int(value))
    return data


def read_text(data):
    lines = data.split(b"\n")
    lines = [line[:-1] if line.endswith(b"\r") else line for line in lines]
    return [(int(code), value) for code, value in zip(lines[0::2], lines[1::2])]


def read_binary(data):
    """Values as they stand in the file."""
    groups, at = [], len(SENTINEL)
    short_codes = data[at + 1 : at + 9] == b"SECTION\x00"
    while at < len(data):
        if not short_codes:
            code, at = struct.unpack_from("<h", data, at)[0], at + 2
        elif data[at] < 255:
            code, at = data[at], at + 1
        else:
            code, at = struct.unpack_from("<h", data, at + 1)[0], at + 3
        form = packing(code)
        if form == "text":
            end = data.index(b"\x00", at)
            value, at = data[at:end], end + 1
        else:
            size = 1 + data[at] if form == "hex" else struct.calcsize(form)
            value, at = data[at : at + size], at + size
        groups.append((code, value))
    return groups


class Parts:
    """A file as objects: tuples of groups from one 0 to the next, and header variables from one 9 to the next.
    Comments stand apart."""

    def __init__(self, data):
        groups = read_binary(data) if data.startswith(SENTINEL) else read_text(data)
        self.comments = [value for code, value in groups if code == 999]
        self.objects, current = [], []
        in_header = False
        for code, value in groups:
            if code == 999:
                continue
            starts = code == 0 or in_header and code == 9
            if starts and current:
                self.objects.append(tuple(current))
                current = []
            current.append((code, value))
            if code == 2 and current[0] == (0, b"SECTION"):
                in_header = value == b"HEADER"
        self.objects.append(tuple(current))

    def named(self, name):
        return [each for each in self.objects if each[0][1] == name.encode()]


def differences(before, after):
    """What an edit lost and what it added: lists of objects. The order of what stayed is checked too."""
    left, right = Counter(before.objects), Counter(after.objects)
    stayed, rest = left & right, iter(after.objects)
    for each in before.objects:
        if stayed[each] > 0:
            stayed[each] -= 1
            assert each in rest, f"moved: {each[:3]}"
    assert grew_only(before.comments, after.comments), "comments are lost"
    return list((left - right).elements()), list((right - left).elements())


def grew_only(before, after):
    """True when `after` is `before` with groups put in between."""
    rest = iter(after)
    return all(group in rest for group in before)
