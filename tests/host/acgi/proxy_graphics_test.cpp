// Proxy graphics: bytes written by hand are drawn, what is drawn comes back from what was written, and broken
// bytes end the drawing without harm.
#include "host/acgi/proxy/proxy_graphics.h"

#include "host/acdb/dbsymtb.h"
#include "host/acgi/text/font.h"
#include "host/acgi/world_draw.h"
#include "host/base/byte_stream.h"

#include "tests/support/memory_drawing.h"
#include "tests/support/recorder.h"

#include <gtest/gtest.h>

namespace
{

/// Something of a kind that only this test knows.
class Figure : public AcDbEntity
{
public:
    Figure() : AcDbEntity("FIGURE") {}
    void saveAs(AcGiWorldDraw *context) const override { draw(*context); }
    void (*draw)(AcGiWorldDraw &context) = nullptr;
};

class ProxyGraphics : public testing::Test
{
protected:
    QStringList played(const QByteArray &graphics, bool expectWhole = true)
    {
        tests::Recorder recorder;
        recorder.withPen = true;
        const Figure entity;
        EXPECT_EQ(acgi::drawProxyGraphics(base::asBytes(graphics), entity, recorder), expectWhole);
        return recorder.lines;
    }
};

} // namespace

static QByteArray longs(std::initializer_list<std::uint32_t> values)
{
    base::ByteWriter writer;
    for (const std::uint32_t value : values)
        writer.put<std::uint32_t>(value);
    return writer.take();
}

static QByteArray reals(std::initializer_list<double> values)
{
    base::ByteWriter writer;
    for (const double value : values)
        writer.put<double>(value);
    return writer.take();
}

TEST_F(ProxyGraphics, BytesByHandAreDrawn)
{
    const QByteArray graphics = longs({0, 8}) +       //
                                longs({12, 14, 1}) +  // red
                                longs({12, 999, 7}) + // a kind of tomorrow
                                longs({60, 6, 2}) + reals({0, 0, 0, 4, 3, 0}) +
                                longs({12, 22, 0xC2102030}) +                                        //
                                longs({64, 2}) + reals({5, 5, 0, 2, 0, 0, 1}) + longs({12, 20, 1}) + //
                                longs({84, 7, 3}) + reals({0, 0, 0, 1, 0, 0, 1, 1, 0});
    EXPECT_EQ(played(graphics),
              QStringList({"1 polyline (0 0) (4 3)", "#102030 arc (5 5) from (7 5) to (7 5) through (3 5)",
                           "#102030 fill [(0 0)(1 0)(1 1)]"}));
}

TEST_F(ProxyGraphics, MatricesNestAndEnd)
{
    const QByteArray move = reals({1, 0, 0, 10, 0, 1, 0, 20, 0, 0, 1, 0, 0, 0, 0, 1});
    const QByteArray dot = longs({36, 6, 1}) + reals({1, 1, 0});
    const QByteArray graphics = longs({0, 0}) + longs({136, 29}) + move + dot + longs({136, 29}) + move +
                                dot + longs({8, 31}) + longs({8, 31}) + longs({8, 31}) + dot;
    EXPECT_EQ(played(graphics), QStringList({"polyline (11 21)", "polyline (21 41)", "polyline (1 1)"}));
}

TEST_F(ProxyGraphics, WhatIsWrittenIsDrawnAgain)
{
    Figure figure;
    figure.draw = [](AcGiWorldDraw &context) {
        AcGiGeometry &geometry = context.geometry();
        const AcGePoint3d corners[] = {{0, 0, 0}, {3, 0, 0}, {3, 2, 0}};
        context.subEntityTraits().setColor(3);
        context.subEntityTraits().setFillType(kAcGiFillAlways);
        geometry.polygon(3, corners);
        context.subEntityTraits().setFillType(kAcGiFillNever);
        geometry.polygon(3, corners);
        geometry.circularArc({1, 0, 0}, {0, 1, 0}, {-1, 0, 0});
        acgi::TextLine line;
        line.text = QStringLiteral("甲7");
        line.position = {1, 2, 0};
        line.direction = {0, 2, 0};
        line.up = {-4, 0, 0};
        geometry.text(line);
    };
    EXPECT_EQ(played(acgi::makeProxyGraphics(figure)),
              QStringList({"3 fill [(0 0)(3 0)(3 2)]", "3 polyline (0 0) (3 0) (3 2) (0 0)",
                           "3 arc (0 0) from (1 0) to (-1 0) through (0 1)",
                           "3 text \"甲7\" at (1 2) along (0 2) up (-4 0)"}));
}

TEST_F(ProxyGraphics, NothingDrawnIsNothingWritten)
{
    Figure figure;
    figure.draw = [](AcGiWorldDraw &) {};
    EXPECT_TRUE(acgi::makeProxyGraphics(figure).isEmpty());
}

TEST_F(ProxyGraphics, BrokenBytesEndTheDrawing)
{
    const QByteArray dot = longs({36, 6, 1}) + reals({1, 1, 0});
    const QByteArray broken[] = {
        longs({0, 0}) + dot + longs({36, 6, 0xFFFFFFFF}) + reals({1, 1, 0}), // more points than bytes
        longs({0, 0}) + dot + longs({4, 6}),                                 // a chunk without a head
        longs({0, 0}) + dot + longs({4000, 6, 1}),                           // longer than what is there
        longs({0, 0}) + dot + longs({24, 8, 0xFFFFFFFF, 0xFFFFFFFF, 0, 0}),  // a mesh of 2^64 points
        longs({0, 0}) + dot + longs({28, 9, 0, 3, 2, 5, 6}),                 // vertices that do not exist
    };
    for (const QByteArray &graphics : broken)
        EXPECT_EQ(played(graphics, false), QStringList("polyline (1 1)"));
}
