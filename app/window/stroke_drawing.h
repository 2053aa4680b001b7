// Drawings of a few strokes, such as icons are made of: text that says where the pen goes on a grid of 16 by
// 16, from the upper left corner.
//
// The text: docs/formats/strokes.md.
#pragma once

#include <QPainterPath>
#include <QString>

#include <optional>

namespace window
{

struct StrokeDrawing {
    QPainterPath lines;
    QPainterPath areas; ///< Filled.
};

/// No value for a text that is not such a drawing; fuzzed.
std::optional<StrokeDrawing> readStrokes(const QString &text);

} // namespace window
