// Text as it is seen: control codes resolved, lines broken, widths measured.
#pragma once

#include <QString>

#include <vector>

namespace acgi
{

/// Resolves the codes of one-line text: %%d %%p %%c, %%nnn, \U+nnnn; drops %%u %%o %%k.
QString plainText(const QString &coded);

/// Estimated length of a line of plain text at height 1 and width factor 1.
double textWidth(const QString &plain);

struct MTextLine {
    QString text;
    double width = 0.0;  ///< Drawing units.
    double height = 0.0; ///< The highest text in the line, drawing units.
};

/// The lines of a multi-line text with its inline codes, broken at `wrapWidth` (0: only where the text
/// says so). `height` and `widthFactor` are those that the text starts with.
std::vector<MTextLine> layOutMText(const QString &coded, double height, double widthFactor, double wrapWidth);

} // namespace acgi
