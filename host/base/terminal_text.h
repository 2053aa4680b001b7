// Everything that a terminal gets to see passes here: texts of drawings, lock files and settings may hold
// signs that steer the terminal or turn the direction of what follows, and so show something else than what
// is there.
#pragma once

#include <QString>

namespace base
{

/// Control characters but for tabs and line ends, signs that turn or end a direction of writing, the
/// separators of lines and paragraphs, halves of pairs.
bool isUnsafeOnTerminal(QStringView text, qsizetype at);

/// The text with each such sign written out as "\u202e" (a form that JSON reads back), and a byte of a file
/// name that is no UTF-8 as "\xb2". A line end of two signs becomes one.
QString terminalText(QString text);

} // namespace base
