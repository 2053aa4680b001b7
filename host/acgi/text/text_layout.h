// One-line text as it is seen: control codes resolved, and the lines that they draw along it.
#pragma once

#include <QString>

#include <vector>

namespace acgi
{

enum class CharacterCode : std::uint8_t { none, character, underline, overline, strikeThrough };

/// Resolves the code at `at` (%%d %%p %%c %%nnn, \U+nnnn, \M+nnnnn; %%u %%o %%k switch a line) and moves
/// behind it; what it shows is appended. `none` and unmoved when there is no code.
CharacterCode takeCharacterCode(QStringView text, qsizetype &at, QString &out);

/// So much of a text is shown. Nobody reads more of one, and a letter that is laid out takes many times its
/// bytes.
inline constexpr qsizetype kMostShownCharacters = 65'536;

/// A line along a part of a text.
struct TextRule {
    CharacterCode kind;
    qsizetype from; ///< Characters of the plain text.
    qsizetype to;
};

/// Height of the line above the base line, where a capital letter is 1 high.
double ruleHeight(CharacterCode kind);

/// The text without its codes.
QString plainText(const QString &coded);
/// The same with the lines along it.
QString plainText(const QString &coded, std::vector<TextRule> &rules);

/// Characters of vertical text stand this much below each other, where a capital letter is 1 high.
inline constexpr double kVerticalAdvance = 4.0 / 3.0;

/// Characters, surrogate pairs counted once.
qsizetype characterCount(QStringView text);
/// UTF-16 units of the character at `at`: 1 or 2.
qsizetype characterLength(QStringView text, qsizetype at);

} // namespace acgi
