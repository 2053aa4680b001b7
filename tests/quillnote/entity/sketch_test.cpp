// Sketches: bytes written by hand, damaged ones, the place of strokes in the target, what is drawn.
#include "quillnote/entity/sketch.h"

#include "tests/support/files.h"
#include "tests/support/recorder.h"

#include <gtest/gtest.h>

#include <QDir>

static QByteArray numbers(std::initializer_list<std::int32_t> values)
{
    QByteArray bytes;
    for (const std::int32_t value : values) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.append(char(std::uint32_t(value) >> shift));
    }
    return bytes;
}

static QStringList drawn(const sketch::Sketch &sketch, const sketch::Placement &placement)
{
    tests::Recorder recorder;
    recorder.withPen = true;
    recorder.subEntityTraits().setColor(3);
    sketch::draw(sketch, placement, AcGiCommonDraw(recorder, kAcGiStandardDisplay));
    EXPECT_EQ(recorder.subEntityTraits().traits().color.colorIndex(), 3) << "the pen is given back";
    return recorder.lines;
}

TEST(Sketch, ReadsStrokes)
{
    const QByteArray bytes = numbers({200, -1, 2, 2, 1, 2, -3, 4, 0x00332211, 3, 99, 0, 0, 0, 0, 0, 0});
    const auto sketch = sketch::decode(bytes + "tail");
    ASSERT_TRUE(sketch);
    EXPECT_EQ(sketch.value().width, 200);
    EXPECT_EQ(sketch.value().height, 1) << "canvas sizes that are none count as 1";
    ASSERT_EQ(sketch.value().strokes.size(), 2u);
    const sketch::Stroke line{
        .kind = sketch::kLine, .from = {1, 2}, .to = {-3, 4}, .rgb = 0x112233, .penWidth = 3};
    EXPECT_EQ(sketch.value().strokes[0], line);
    EXPECT_FALSE(sketch.value().strokes[1].isDrawn());
    for (qsizetype size = 0; size < bytes.size(); ++size) {
        const auto cut = sketch::decode(bytes.first(size));
        ASSERT_FALSE(cut) << size;
        EXPECT_EQ(cut.error(), size < 12 ? sketch::Error::shortHeader : sketch::Error::shortStrokes);
    }
}

TEST(Sketch, RefusesCountsThatTheBytesDoNotHold)
{
    EXPECT_EQ(sketch::decode(numbers({1, 1, 0x7FFFFFFF})).error(), sketch::Error::shortStrokes);
    EXPECT_EQ(sketch::decode(numbers({1, 1, -1})).error(), sketch::Error::negativeCount);
    const QDir corpus(tests::testDataPath(QStringLiteral("corpus/sketch")));
    const QStringList names = corpus.entryList(QDir::Files);
    EXPECT_GE(names.size(), 4);
    for (const QString &name : names)
        EXPECT_EQ(bool(sketch::decode(tests::readFile(corpus.filePath(name)))),
                  !name.contains(QStringLiteral("refused")))
            << qPrintable(name);
}

TEST(Sketch, LiesInTheTargetAsSeen)
{
    const sketch::Sketch sketch{.width = 100,
                                .height = 50,
                                .strokes = {{.kind = sketch::kLine, .from = {0, 0}, .to = {50, 50}},
                                            {.kind = 6, .from = {-900, 0}, .to = {900, 0}}}};
    const sketch::Placement plain(sketch, {10, 20, 0}, {30, 10, 0}, {});
    EXPECT_EQ(drawn(sketch, plain), QStringList{"#000000 polyline (10 20) (20 10)"});
    const AcDbExtents box = sketch::extents(sketch, plain);
    EXPECT_EQ(box.minPoint(), AcGePoint3d(10, 10, 0)) << "strokes that are not drawn have no extents";
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(20, 20, 0));

    // A quarter turn: the upper left corner as seen is the world's upper right one.
    const sketch::Placement turned(sketch, {10, 20, 0}, {30, 10, 0},
                                   AcGeMatrix3d::rotation(kGePi / 2, AcGeVector3d::kZAxis));
    EXPECT_EQ(drawn(sketch, turned), QStringList{"#000000 polyline (30 20) (10 15)"});
}

TEST(Sketch, DrawsEveryKind)
{
    using namespace sketch;
    Sketch all{.width = 120, .height = 120};
    for (const std::int32_t kind : {3, 4, 5, 7, 8, 9})
        all.strokes.push_back({.kind = kind, .from = {120, 0}, .to = {0, 60}, .rgb = 0xFF0000});
    const Placement placement(all, {0, 0, 0}, {120, 120, 0}, {});
    const QStringList lines = drawn(all, placement);
    ASSERT_EQ(lines.size(), 6);
    EXPECT_EQ(lines[0], u"#ff0000 polyline (0 60) (120 60) (120 120) (0 120) (0 60)");
    EXPECT_EQ(lines[3], u"#ff0000 fill [(0 60)(120 60)(120 120)(0 120)]");
    // Radius 10: a corner starts on the right side, ends on the upper one, and the turn closes.
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("#ff0000 polyline (120 110) ")));
    EXPECT_TRUE(lines[1].contains(QStringLiteral(" (10 120) "))) << qPrintable(lines[1]);
    EXPECT_TRUE(lines[1].endsWith(QStringLiteral(" (120 110)")));
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("#ff0000 polyline (120 90) ")));
    EXPECT_TRUE(lines[2].contains(QStringLiteral(" (60 60) ")));
    for (const int i : {1, 2})
        EXPECT_EQ(lines[i].count(u'('), 49) << qPrintable(lines[i]);
    for (const int i : {4, 5})
        EXPECT_EQ(lines[i].count(u'('), 48) << qPrintable(lines[i]);
    for (const auto &[width, weight] : {std::pair(-5, 20), {1, 20}, {2, 35}, {3, 50}, {4, 70}, {99, 70}})
        EXPECT_EQ(Stroke{.penWidth = width}.lineWeight(), weight) << width;
}
