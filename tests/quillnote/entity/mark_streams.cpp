#include "tests/quillnote/entity/mark_streams.h"

#include "tests/support/memory_drawing.h"

namespace tests
{

// A line of the drawing that the streams belong to.
static constexpr std::uint64_t kNeighbour = 0x1F;

// clang-format off
static const char kFirst[] =
    "00" // erasable: no
    "ffff" // displayMode -1
    "0c00 0300" // markNumber 12, subNumber 3
    "03000000 99580a009a53" // suggestionContent
    "02000000 f25d3965" // feedbackContent
    "000000000000f03f 0000000000000040 0000000000000840" // targetCorner1 (1 2 3)
    "0000000000001040 0000000000001440 0000000000001840"; // targetCorner2 (4 5 6)

static const char kColors[] =
    "0900 0300 fa00"; // reservedShort 9, color1 3, color2 250

static const char kVersion7[] =
    "0000000000000000 0000000000000000 000000000000f03f" // normal
    "0000000000000000 000000000000f03f 0000000000000000" // xDirection
    "0000000000001c40 0000000000002040 0000000000002240" // targetCorner3 (7 8 9)
    "0000000000002440 0000000000002640 0000000000002840" // targetCorner4 (10 11 12)
    "0000000000003540 0000000000003f40 0000000000804440" // textBoxCorner1 (21 31 41)
    "0000000000003640 0000000000004040 0000000000004540" // textBoxCorner2 (22 32 42)
    "0000000000003740 0000000000804040 0000000000804540" // textBoxCorner3 (23 33 43)
    "0000000000003840 0000000000004140 0000000000004640" // textBoxCorner4 (24 34 44)
    "6800 0100 feff" // flagStyle 104, leaderMode 1, reservedShort2 -2
    "01" // cornersValid: yes
    "0000000000004940 0000000000804940 0000000000004a40" // flagPoint (50 51 52)
    "0300" // vertexCount 3
    "0000000000004e40 0000000000805140 0000000000000000" // vertices[0] (60 70 0)
    "0000000000804e40 0000000000c05140 0000000000000000" // vertices[1] (61 71 0)
    "0000000000004f40 0000000000005240 0000000000000000" // vertices[2] (62 72 0)
    "000000000000e03f" // reservedDouble 0.5
    "02000000 d37e8467" // bigCategory
    "01000000 8168" // smallCategory
    "0a00"; // weight 10

static const char kNames[] =
    "02000000 205f094e" // suggestionName
    "02000000 4e67db56" // feedbackName
    "20000000" // chPwMD5, 32 digits
    "35006600340064006300630033006200350061006100370036003500640036003100"
    "640038003300320037006400650062003800380032006300660039003900"
    "00000020b0c44241" // createTime 2460000.25
    "000000c0b0c44241" // feedbackTime 2460001.5
    "04000000 7b00300041007d00" // GUID "{0A}"
    "05000000 0102030405"; // sketchData, 5 bytes

static const char kVersion4[] =
    "0000000000000440" // textHeight 2.5
    "0000000000005940 0000000000006940 0000000000000000 01" // leader 0: (100 200 0), used
    "0000000000405940 0000000000206940 0000000000000000 00" // leader 1: (101 201 0), free
    "0000000000805940 0000000000406940 0000000000000000 00" // leader 2: (102 202 0), free
    "0000000000c05940 0000000000606940 0000000000000000 01" // leader 3: (103 203 0), used
    "0000000000005a40 0000000000806940 0000000000000000 00" // leader 4: (104 204 0), free
    "0000000000405a40 0000000000a06940 0000000000000000 00" // leader 5: (105 205 0), free
    "0000000000805a40 0000000000c06940 0000000000000000 01" // leader 6: (106 206 0), used
    "0000000000c05a40 0000000000e06940 0000000000000000 00" // leader 7: (107 207 0), free
    "0000000000005b40 0000000000006a40 0000000000000000 00" // leader 8: (108 208 0), free
    "0000000000405b40 0000000000206a40 0000000000000000 01" // leader 9: (109 209 0), used
    "0000000000805b40 0000000000406a40 0000000000000000 00" // leader 10: (110 210 0), free
    "0000000000c05b40 0000000000606a40 0000000000000000 00" // leader 11: (111 211 0), free
    "0000000000005c40 0000000000806a40 0000000000000000 01" // leader 12: (112 212 0), used
    "0000000000405c40 0000000000a06a40 0000000000000000 00" // leader 13: (113 213 0), free
    "0000000000805c40 0000000000c06a40 0000000000000000 00" // leader 14: (114 214 0), free
    "0000000000c05c40 0000000000e06a40 0000000000000000 01" // leader 15: (115 215 0), used
    "ff00" // editVersion 255
    "fdff 0400" // reservedShortA -3, reservedShortB 4
    "000000000000d03f 000000000000e83f 000000000000f83f" // reservedDoubleA 0.25, B 0.75, C 1.5
    "0000000000405440 0000000000805440 0000000000c05440" // reservedPointA (81 82 83)
    "0000000000005540 0000000000405540 0000000000805540" // reservedPointB (84 85 86)
    "0000000000c05540 0000000000005640 0000000000405640" // reservedPointC (87 88 89)
    "01 00 01"; // autoTextHeight: yes, reservedBoolA: no, reservedBoolB: yes

static const char kVersion6[] =
    "02000000" // two ids
    "1f00000000000000" // handle 1F
    "0000000000000000" // a null id
    "00000000" // snapNote
    "06000000 530055004d003d0037003700" // snapChecksum
    "03000000 89504e" // snapImage, 3 bytes
    "02000000 8950"; // fullImage, 2 bytes

// clang-format on

static QByteArray fromHex(const QByteArray &hex)
{
    return QByteArray::fromHex(hex);
}

QByteArray version7Stream()
{
    return fromHex(QByteArray("0700") + kFirst + "ffff 3300" + kColors + kVersion7 + kNames + kVersion4 +
                   kVersion6);
}

QByteArray version6Stream(std::int16_t targetStyle)
{
    const QByteArray style = QByteArray::number(quint16(targetStyle), 16).rightJustified(4, '0');
    const QByteArray littleEndian = style.right(2) + style.left(2);
    return fromHex(QByteArray("0600") + kFirst + "ffff" + littleEndian + kColors + kNames + kVersion4 +
                   kVersion6);
}

QByteArray version4Stream()
{
    return fromHex(QByteArray("0400") + kFirst + "ffff 0200" + kColors + kNames + kVersion4);
}

QByteArray version3Stream()
{
    return fromHex(QByteArray("0300") + kFirst + "ffff 0200" + kColors + kNames);
}

std::unique_ptr<AcDbDatabase> drawingOfStreams()
{
    MemoryDrawing drawing;
    while (drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 1, 0)}}) < kNeighbour)
        ;
    return drawing.open();
}

static void setText(QuillnoteObj3 &mark)
{
    mark.suggestionContent = QStringLiteral("墙\n厚");
    mark.feedbackContent = QStringLiteral("已改");
    mark.bigCategory = QStringLiteral("结构");
    mark.smallCategory = QStringLiteral("梁");
    mark.suggestionName = QStringLiteral("张三");
    mark.feedbackName = QStringLiteral("李四");
    mark.chPwMD5 = QStringLiteral("5f4dcc3b5aa765d61d8327deb882cf99");
    mark.GUID = QStringLiteral("{0A}");
    mark.snapNote.clear();
    mark.snapChecksum = QStringLiteral("SUM=77");
}

static void setNumbers(QuillnoteObj3 &mark)
{
    mark.erasable = false;
    mark.displayMode = -1;
    mark.markNumber = 12;
    mark.subNumber = 3;
    mark.feedbackType = -1;
    mark.targetStyle = 51;
    mark.reservedShort = 9;
    mark.color1 = 3;
    mark.color2 = 250;
    mark.flagStyle = 104;
    mark.leaderMode = 1;
    mark.reservedShort2 = -2;
    mark.cornersValid = true;
    mark.vertexCount = 3;
    mark.reservedDouble = 0.5;
    mark.weight = 10;
    mark.createTime = 2460000.25;
    mark.feedbackTime = 2460001.5;
    mark.textHeight = 2.5;
    mark.editVersion = 255;
    mark.reservedShortA = -3;
    mark.reservedShortB = 4;
    mark.reservedDoubleA = 0.25;
    mark.reservedDoubleB = 0.75;
    mark.reservedDoubleC = 1.5;
    mark.autoTextHeight = true;
    mark.reservedBoolA = false;
    mark.reservedBoolB = true;
}

static void setPoints(QuillnoteObj3 &mark)
{
    mark.targetCorner1 = {1, 2, 3};
    mark.targetCorner2 = {4, 5, 6};
    mark.normal = {0, 0, 1};
    mark.xDirection = {0, 1, 0};
    mark.targetCorner3 = {7, 8, 9};
    mark.targetCorner4 = {10, 11, 12};
    mark.textBoxCorner1 = {21, 31, 41};
    mark.textBoxCorner2 = {22, 32, 42};
    mark.textBoxCorner3 = {23, 33, 43};
    mark.textBoxCorner4 = {24, 34, 44};
    mark.flagPoint = {50, 51, 52};
    mark.reservedPointA = {81, 82, 83};
    mark.reservedPointB = {84, 85, 86};
    mark.reservedPointC = {87, 88, 89};
    for (int i = 0; i < 3; ++i)
        mark.vertices[std::size_t(i)] = {60.0 + i, 70.0 + i, 0};
    for (int i = 0; i < 16; ++i) {
        mark.leaderEnds[std::size_t(i)] = {100.0 + i, 200.0 + i, 0};
        mark.leaderUsed[std::size_t(i)] = i % 3 == 0;
    }
}

void setFullMark(QuillnoteObj3 &mark, AcDbDatabase &database)
{
    setText(mark);
    setNumbers(mark);
    setPoints(mark);
    mark.sketchData = QByteArray::fromHex("0102030405");
    mark.snapEntityIds = {database.getAcDbObjectId({kNeighbour}), AcDbObjectId()};
    mark.snapImage = "\x89PN";
    mark.fullImage = "\x89P";
}

ResbufList dxfGroups()
{
    const auto number = [](int code, int value) { return resbuf(code, std::int64_t(value)); };
    const auto text = [](int code, const char16_t *value) { return resbuf(code, QString::fromUtf16(value)); };
    ResbufList groups{
        text(100, u"QuillnoteObj3"),
        number(70, 7),
        {210, AcGePoint3d(0, 0, 1)},
        {211, AcGePoint3d(0, 1, 0)},
        number(290, 0),
        number(171, -1),
        number(172, 12),
        number(173, 3),
        text(301, u"墙\n厚"),
        text(302, u"已改"),
        {11, AcGePoint3d(1, 2, 3)},
        {11, AcGePoint3d(4, 5, 6)},
        number(174, -1),
        number(175, 51),
        number(176, 9),
        number(63, 3),
        number(64, 250),
        {11, AcGePoint3d(7, 8, 9)},
        {11, AcGePoint3d(10, 11, 12)},
        {12, AcGePoint3d(21, 31, 41)},
        {12, AcGePoint3d(22, 32, 42)},
        {12, AcGePoint3d(23, 33, 43)},
        {12, AcGePoint3d(24, 34, 44)},
        number(177, 104),
        number(178, 1),
        number(179, -2),
        number(291, 1),
        {13, AcGePoint3d(50, 51, 52)},
        number(270, 3),
        {14, AcGePoint3d(60, 70, 0)},
        {14, AcGePoint3d(61, 71, 0)},
        {14, AcGePoint3d(62, 72, 0)},
        text(303, u"张三"),
        text(304, u"李四"),
        text(305, u"结构"),
        text(306, u"梁"),
        number(71, 10),
        {42, 2460000.25},
        {43, 2460001.5},
        {40, 2.5},
        {41, 0.5},
    };
    for (int i = 0; i < 16; ++i) {
        groups.emplace_back(15, AcGePoint3d(100.0 + i, 200.0 + i, 0));
        groups.push_back(number(292, i % 3 == 0));
    }
    return groups;
}

} // namespace tests
