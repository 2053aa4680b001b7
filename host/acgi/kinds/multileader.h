// What a MULTILEADER says: its groups sorted by the braces that they stand in.
#pragma once

#include "host/acgi/kinds/draw_tools.h"

namespace acgi
{

struct MultileaderLine {
    enum Override : std::int64_t {
        kType = 1,
        kColor = 2,
        kLinetype = 4,
        kWeight = 8,
        kSize = 16,
        kArrow = 32
    };
    Loop points; ///< From the arrowhead on.
    std::int64_t index = 0;
    std::int64_t overrides = 0; ///< Which of the following count.
    std::int64_t type = 1;
    std::int64_t color = 0;
    AcDbHandle linetype;
    std::int64_t weight = -2;
    double arrowSize = 0.0;
    AcDbHandle arrow;
};

/// Lines that end in one landing.
struct MultileaderRoot {
    AcGePoint3d landing;
    AcGeVector3d dogleg;
    double doglegLength = 0.0;
    bool isVertical = false; ///< Attached above or below the text: no dogleg.
    std::vector<MultileaderLine> lines;
};

struct MultileaderText {
    QString coded;
    AcDbHandle style;
    AcGePoint3d position;
    AcGeVector3d along = AcGeVector3d::kXAxis;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double height = 0.0;
    double width = 0.0;
    double spacing = 1.0;
    std::int64_t spacingStyle = 1;
    std::int64_t alignment = 1; ///< 1 left, 2 centre, 3 right.
    std::int64_t direction = 1; ///< Of the flow: 3 is from top to bottom.
    std::int64_t color = 0;
    bool masked = false;
    bool maskIsWindow = false;
    double maskFactor = 0.0;
    std::int64_t maskColor = 0;
};

struct MultileaderBlock {
    AcDbHandle record;
    AcGePoint3d position;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d scale{1.0, 1.0, 1.0};
    double rotation = 0.0; ///< Radians.
    std::int64_t color = 0;
};

struct MultileaderAttribute {
    AcDbHandle definition;
    QString text;
};

struct Multileader {
    explicit Multileader(const AcDbEntity &entity);

    // The content as it stands in the drawing.
    double scale = 1.0;
    double arrowSize = 0.0;
    double gap = 0.0;
    bool hasText = false;
    bool hasBlock = false;
    MultileaderText text;
    MultileaderBlock block;
    std::vector<MultileaderRoot> roots;

    // What holds for all of it.
    std::int64_t type = 1; ///< 0 no lines, 1 straight, 2 spline.
    std::int64_t color = 0;
    AcDbHandle linetype;
    std::int64_t weight = -2;
    bool hasDogleg = true;
    bool hasFrame = false;
    AcDbHandle arrow;
    std::int64_t leftAttachment = 0;
    std::int64_t rightAttachment = 0;
    std::vector<std::pair<std::int64_t, AcDbHandle>> arrows; ///< By index of the line.
    std::vector<MultileaderAttribute> attributes;

private:
    void readContent(const resbuf &group);
    void readText(const resbuf &group);
    void readBlock(const resbuf &group);
    void readRoot(const resbuf &group);
    void readLine(const resbuf &group);
    void readOverall(const resbuf &group);
};

} // namespace acgi
