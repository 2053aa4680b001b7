// Sketches as values: steps that are undone and done again, the bytes of the file.
#include "helpers/ink_relay/ink_document.h"

#include <gtest/gtest.h>

using namespace ink;

static Shape line(double x)
{
    return {.kind = Kind::line, .points = {{x, 0}, {x, 10}}};
}

static std::vector<double> seen(const Document &document)
{
    std::vector<double> places;
    for (const Shape &shape : document.shapes())
        places.push_back(shape.points.front().x());
    return places;
}

TEST(InkDocument, StepsAreUndoneAndDoneAgain)
{
    using Places = std::vector<double>;
    Document document(QSize(100, 50));
    document.clear();
    EXPECT_FALSE(document.canUndo()) << "clearing nothing is no step";
    document.add(line(1));
    document.add(line(2));
    document.clear();
    document.add(line(3));
    EXPECT_EQ(seen(document), Places{3});
    document.undo();
    EXPECT_TRUE(document.isEmpty());
    document.undo();
    EXPECT_EQ(seen(document), (Places{1, 2})) << "what was cleared comes back";
    document.redo();
    document.redo();
    EXPECT_EQ(seen(document), Places{3});
    EXPECT_FALSE(document.canRedo());
    document.undo();
    document.undo();
    document.undo();
    document.add(line(4));
    EXPECT_EQ(seen(document), (Places{1, 4}));
    EXPECT_FALSE(document.canRedo()) << "what was undone is gone";
    for (int i = 0; i < 5; ++i)
        document.undo();
    EXPECT_TRUE(document.isEmpty());
    EXPECT_FALSE(document.canUndo());
}

// By hand from docs/formats/sketch.md: 8 units to the pixel.
TEST(InkDocument, WritesTheFormat)
{
    Document document(QSize(100, 50));
    EXPECT_EQ(document.bytes().toHex(), "2003000090010000"
                                        "00000000");
    document.add(
        {.kind = Kind::filledEllipse, .points = {{1, 2}, {0.5, 4}}, .color = 0xFF332211, .penWidth = 3});
    document.add(
        {.kind = Kind::line, .points = {{0, 0}, {1, 0}, {1, 1}}, .color = 0xFFFF0000, .penWidth = 1});
    document.add({.kind = Kind::line, .points = {{2, 2}}, .color = 0xFF0000FF, .penWidth = 4});
    EXPECT_EQ(document.bytes().toHex(), "2003000090010000"
                                        "04000000"
                                        "09000000"
                                        "0800000010000000"
                                        "0400000020000000"
                                        "33221100"
                                        "03000000"
                                        "02000000"
                                        "0000000000000000"
                                        "0800000000000000"
                                        "ff000000"
                                        "01000000"
                                        "02000000"
                                        "0800000000000000"
                                        "0800000008000000"
                                        "ff000000"
                                        "01000000"
                                        "02000000"
                                        "1000000010000000"
                                        "1800000010000000"
                                        "0000ff00"
                                        "04000000");
}
