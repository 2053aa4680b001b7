#include "host/base/wildcard.h"

#include <algorithm>

namespace base
{

Wildcard::Wildcard(QStringView pattern, Qt::CaseSensitivity caseSensitivity)
    : m_caseSensitivity(caseSensitivity)
{
    m_alternatives.emplace_back();
    bool atStart = true;
    for (qsizetype at = 0; at < pattern.size();) {
        const QChar c = pattern[at];
        if (c == u',') {
            m_alternatives.emplace_back();
            atStart = true;
            ++at;
            continue;
        }
        if (c == u'~' && atStart) {
            m_alternatives.back().negated = true;
            ++at;
        } else {
            at = parseElement(pattern, at, m_alternatives.back().elements);
        }
        atStart = false;
    }
}

char16_t Wildcard::folded(char16_t character) const
{
    return m_caseSensitivity == Qt::CaseInsensitive ? QChar(character).toCaseFolded().unicode() : character;
}

qsizetype Wildcard::parseElement(QStringView pattern, qsizetype at, std::vector<Element> &into) const
{
    Element element;
    const char16_t c = pattern[at].unicode();
    qsizetype next = at + 1;
    switch (c) {
    case u'#':
        element.kind = Kind::digit;
        break;
    case u'@':
        element.kind = Kind::letter;
        break;
    case u'.':
        element.kind = Kind::other;
        break;
    case u'?':
        element.kind = Kind::one;
        break;
    case u'*':
        element.kind = Kind::any;
        if (!into.empty() && into.back().kind == Kind::any)
            return next; // "**" is "*".
        break;
    case u'[':
        next = parseSet(pattern, at, element);
        break;
    case u'`':
        element.character = folded(next < pattern.size() ? pattern[next++].unicode() : c);
        break;
    default:
        element.character = folded(c);
    }
    into.push_back(std::move(element));
    return next;
}

/// Gives the place after the "]"; without one the "[" is an ordinary character.
qsizetype Wildcard::parseSet(QStringView pattern, qsizetype at, Element &element) const
{
    qsizetype next = at + 1;
    const bool negated = next < pattern.size() && pattern[next] == u'~';
    if (negated)
        ++next;
    const auto take = [&] {
        if (pattern[next] == u'`' && next + 1 < pattern.size())
            ++next;
        return folded(pattern[next++].unicode());
    };
    const qsizetype first = next; // A "]" here belongs to the set.
    while (next < pattern.size() && (pattern[next] != u']' || next == first)) {
        const char16_t low = take();
        char16_t high = low;
        if (next + 1 < pattern.size() && pattern[next] == u'-' && pattern[next + 1] != u']') {
            ++next;
            high = take();
        }
        element.ranges.push_back({std::min(low, high), std::max(low, high)});
    }
    if (next >= pattern.size()) {
        element = {Kind::literal, u'[', {}};
        return at + 1;
    }
    element.kind = negated ? Kind::notInSet : Kind::set;
    return next + 1;
}

bool Wildcard::matchesOne(const Element &element, char16_t character) const
{
    const auto inSet = [&] {
        return std::any_of(element.ranges.begin(), element.ranges.end(), [&](const Range &range) {
            return range.first <= character && character <= range.last;
        });
    };
    switch (element.kind) {
    case Kind::literal:
        return element.character == character;
    case Kind::digit:
        return character >= u'0' && character <= u'9';
    case Kind::letter:
        return QChar(character).isLetter();
    case Kind::other:
        return !QChar(character).isLetterOrNumber();
    case Kind::set:
        return inSet();
    case Kind::notInSet:
        return !inSet();
    case Kind::one:
    case Kind::any:
        break;
    }
    return true;
}

/// When something does not fit, only the last "*" takes in one more character: what stood before it has
/// matched as early as possible, so trying that again could not help.
bool Wildcard::matchesAll(const std::vector<Element> &elements, QStringView text) const
{
    const std::size_t none = elements.size();
    std::size_t element = 0;
    std::size_t lastStar = none;
    qsizetype at = 0;
    qsizetype starEnd = 0;
    while (at < text.size()) {
        if (element < elements.size() && elements[element].kind == Kind::any) {
            lastStar = element++;
            starEnd = at;
        } else if (element < elements.size() && matchesOne(elements[element], folded(text[at].unicode()))) {
            ++element;
            ++at;
        } else if (lastStar != none) {
            element = lastStar + 1;
            at = ++starEnd;
        } else {
            return false;
        }
    }
    if (element < elements.size() && elements[element].kind == Kind::any)
        ++element;
    return element == elements.size();
}

bool Wildcard::matches(QStringView text) const
{
    return std::any_of(m_alternatives.begin(), m_alternatives.end(), [&](const Alternative &alternative) {
        return matchesAll(alternative.elements, text) != alternative.negated;
    });
}

} // namespace base
