// Multi-line text: laid out and drawn in one go, for MTEXT and whatever else carries such text.
#pragma once

#include "host/acgi/geometry.h"
#include "host/acgi/text/text_style.h"

namespace acgi
{

/// Where a multi-line text hangs and how it starts out.
struct MText {
    QString coded; ///< With its inline codes.
    AcGiTextStyle style;
    double height = 1.0; ///< Of a capital letter.
    AcGePoint3d position;
    AcGeVector3d along = AcGeVector3d::kXAxis; ///< Direction of the lines, length 1.
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    int attachment = 1;         ///< In rows from the upper left: 1 top left ... 9 bottom right.
    double wrapWidth = 0.0;     ///< 0: lines end only where the text says so.
    double spacingFactor = 1.0; ///< Of the line distance, which is 5/3 of the height.
    bool exactSpacing = false;  ///< False: high characters push their line down.
    bool vertical = false;
    /// Columns: their number, width, gap and heights (one height for all, or one for each).
    int columns = 1;
    double columnWidth = 0.0;
    double columnGap = 0.0;
    std::vector<double> columnHeights;
    /// Background mask: the box of the text enlarged by (factor - 1) times the height is covered first.
    double maskFactor = 0.0; ///< 0: none.
    AcCmEntityColor maskColor = AcCmEntityColor::background();
    bool hasFrame = false; ///< A line along the edge of the mask.
};

/// The area that the text covers, along its own directions from `position`.
struct MTextBox {
    AcGePoint2d low;
    AcGePoint2d high;
};

/// Nothing at all when the height is not positive.
MTextBox mtextBox(const MText &text);
void drawMText(const MText &text, AcGiGeometry &sink);

} // namespace acgi
