// Drawings in short, for pictures: a line is an object, its groups stand between bars, points in one group.
//
//     # What the picture shows.
//     view 0 0 240 160          lower left corner, width and height in pixels, perhaps pixels to a unit
//     space *Paper_Space        model space without this line
//     lineweights               lines as thick as they plot
//     $PDMODE | 70 2            header variables stand before the first section
//     section ENTITIES          sections and tables are as in a DXF file
//     LINE | 62 1 | 10 20,20 | 11 220,20
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/acgi/viewport.h"

namespace tests
{

struct DrawingText {
    std::unique_ptr<AcDbDatabase> database; ///< None when the text is wrong; the running test fails then.
    AcGiViewport view;
    QString space;
    bool lineWeights = false;
};
DrawingText readDrawingText(const QByteArray &text);

} // namespace tests
