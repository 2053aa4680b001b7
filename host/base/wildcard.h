// CAD wildcard patterns, as selection filters and symbol lists use them.
#pragma once

#include <QString>

#include <vector>

namespace base
{

/// A pattern, prepared once for many texts. It always matches the whole text.
///
///     #  one digit             *  any text              [...]   one of these characters
///     @  one letter            ?  one character         [~...]  one character that is none of these
///     .  one character that    ~  first in the pattern: [a-c]   a range, inside brackets
///        is neither               everything but it     `       the next character stands for itself
///     ,  either pattern
///
/// A "[" without its "]" stands for itself. Matching takes at most pattern length x text length steps.
class Wildcard
{
public:
    explicit Wildcard(QStringView pattern, Qt::CaseSensitivity caseSensitivity = Qt::CaseInsensitive);
    bool matches(QStringView text) const;

private:
    enum class Kind { literal, digit, letter, other, one, any, set, notInSet };
    struct Range {
        char16_t first;
        char16_t last;
    };
    struct Element {
        Kind kind = Kind::literal;
        char16_t character = 0;
        std::vector<Range> ranges;
    };
    struct Alternative {
        bool negated = false;
        std::vector<Element> elements;
    };

    qsizetype parseElement(QStringView pattern, qsizetype at, std::vector<Element> &into) const;
    qsizetype parseSet(QStringView pattern, qsizetype at, Element &element) const;
    bool matchesOne(const Element &element, char16_t character) const;
    bool matchesAll(const std::vector<Element> &elements, QStringView text) const;
    char16_t folded(char16_t character) const;

    std::vector<Alternative> m_alternatives;
    Qt::CaseSensitivity m_caseSensitivity;
};

} // namespace base
