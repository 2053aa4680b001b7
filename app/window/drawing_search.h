// Finding text in a drawing.
#pragma once

#include "host/acap/docman.h"

namespace window
{

struct FoundText {
    AcDbObjectId entity; ///< What is picked: of an attribute the block reference that carries it.
    AcDbObjectId shown;  ///< What carries the text.
    QString text;        ///< Without codes, on one line.
};

/// Texts of the current space that hold `wanted`, whatever the letter case: TEXT, MTEXT and attributes, in
/// the order of the drawing. Nothing for an empty `wanted`.
std::vector<FoundText> findTexts(const AcApDocument &document, const QString &wanted);

/// The text of a multi-line text without its codes.
QString plainText(const QString &coded);

} // namespace window
