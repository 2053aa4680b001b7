// Finding text in a drawing.
#pragma once

#include "host/acap/docman.h"

namespace window
{

struct FoundText {
    AcDbObjectId space;  ///< Block record of the layout that it stands in.
    AcDbObjectId entity; ///< What is picked: of an attribute the block reference that carries it.
    AcDbObjectId shown;  ///< What carries the text.
    QString text;        ///< Without codes, on one line.
};

/// Texts that hold `wanted`, whatever the letter case, in the order of the drawing: TEXT, MTEXT, attributes,
/// dimensions, multileaders, and what custom entities carry (the opinions and answers of marks). Those of the
/// current space first, then of the other layouts. Nothing for an empty `wanted`.
std::vector<FoundText> findTexts(const AcApDocument &document, const QString &wanted);

/// The text of a multi-line text without its codes.
QString plainText(const QString &coded);

} // namespace window
