// Multi-line text with its inline codes, read into a flat list of runs, spaces, stacks and breaks.
#pragma once

#include "host/acgi/text/mtext.h"

#include <optional>

namespace acgi
{

/// What the codes change from character to character.
struct MTextFormat {
    const Font *font = nullptr;
    double height = 1.0;
    double widthFactor = 1.0;
    double oblique = 0.0; ///< Radians.
    double tracking = 1.0;
    int alignment = 0;                    ///< Within the line: 0 base line, 1 centred, 2 top.
    std::optional<AcCmEntityColor> color; ///< Nothing: that of the entity.
    bool underline = false;
    bool overline = false;
    bool strikeThrough = false;
    friend bool operator==(const MTextFormat &, const MTextFormat &) = default;
};

struct MTextTab {
    double at = 0.0;
    QChar kind =
        u'l'; ///< What stands at the stop: the beginning of the text (l), its middle (c), its end (r).
};

/// What the codes change from paragraph to paragraph. Lengths are in text heights.
struct MTextParagraph {
    double indent = 0.0; ///< Of the first line, from the left edge of the others.
    double left = 0.0;
    double right = 0.0;
    QChar justification;  ///< l c r j d; null: as the text is attached.
    double spacing = 0.0; ///< Line spacing factor; 0: that of the text.
    bool exactSpacing = false;
    std::vector<MTextTab> tabs;
};

struct MTextItem {
    enum Kind : std::uint8_t { run, space, tab, stack, endParagraph, endColumn } kind = run;
    QString text;                ///< Of a run without blanks; the upper part of a stack.
    QString lower;               ///< Of a stack.
    QChar divider;               ///< Of a stack: '/', '#' or '^'.
    std::uint32_t format = 0;    ///< In MTextContent::formats.
    std::uint32_t paragraph = 0; ///< In MTextContent::paragraphs.
};

struct MTextContent {
    std::vector<MTextItem> items; ///< The last one ends a paragraph.
    std::vector<MTextFormat> formats;
    std::vector<MTextParagraph> paragraphs;
};

/// Accepts anything: damaged codes show as text or are left out. Linear in the length of the text.
MTextContent readMText(const QString &coded, const MTextFormat &start);

} // namespace acgi
