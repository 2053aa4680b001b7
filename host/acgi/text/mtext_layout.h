// Multi-line text, laid out: which piece of text stands where.
#pragma once

#include "host/acgi/text/mtext_reader.h"

namespace acgi
{

/// A run of one format, or a stack, on a line.
struct MTextPiece {
    QString text;
    QString lower; ///< Of a stack.
    QChar divider; ///< Of a stack; null for a run.
    bool isStack = false;
    bool isBlank = false;     ///< Blanks between words of a justified line.
    std::uint32_t format = 0; ///< In MTextLayout::formats.
    double x = 0.0;           ///< From the left edge of the column.
    double width = 0.0;
};

struct MTextLine {
    std::vector<MTextPiece> pieces;
    double x = 0.0;      ///< Where its first piece begins.
    double end = 0.0;    ///< Where its last one ends.
    double height = 0.0; ///< Of the highest letters.
    double ascent = 0.0; ///< Of the highest piece; stacks rise above the letters.
    double descent = 0.0;
    double y = 0.0; ///< Base line, from the attachment point.
    int column = 0;
    std::uint32_t paragraph = 0;
    bool endsParagraph = false;
    bool endsColumn = false;
};

/// In the directions of the text, from its attachment point. Vertical text is laid out as if it ran to the
/// right, and stands turned by a quarter.
struct MTextLayout {
    std::vector<MTextLine> lines;
    std::vector<MTextFormat> formats;
    MTextBox box;   ///< What the lines cover.
    MTextBox frame; ///< The same with the whole wrap width.
    double columnStep = 0.0;
    double left = 0.0; ///< Of the first column.
};

MTextLayout layOutMText(const MText &text);

/// The parts of a stack, from its lower left end on the base line; sizes as drawn.
struct MTextStack {
    double height; ///< Of its letters.
    double upperX, upperY, upperWidth;
    double lowerX, lowerY, lowerWidth;
    double width, top, bottom;
    std::optional<std::pair<AcGePoint2d, AcGePoint2d>> bar;
};
MTextStack layOutStack(const MTextPiece &stack, const MTextFormat &format);

/// Length of a run as drawn.
double runWidth(QStringView text, const MTextFormat &format, bool vertical);

} // namespace acgi
