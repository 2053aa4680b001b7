// Values of the small LISP: bounds and printing.
#include "host/aced/edlisp_value.h"

#include "host/base/assert.h"

#include <algorithm>

namespace lisp
{

ListPointer makeList(std::vector<Value> items, qsizetype position)
{
    QUILL_ASSERT(!items.empty());
    auto list = std::make_shared<List>();
    list->position = position;
    for (const Value &item : items) {
        ++list->weight;
        if (const auto *text = std::get_if<QString>(&item))
            list->weight += std::size_t(text->size());
        if (const auto *inner = std::get_if<ListPointer>(&item)) {
            list->weight += (*inner)->weight;
            list->depth = std::max(list->depth, (*inner)->depth + 1);
        }
    }
    if (list->depth > kMaxDepth || list->weight > kMaxWeight)
        return nullptr;
    list->items = std::move(items);
    return list;
}

static QString quotedText(const QString &text)
{
    QString result(QLatin1Char('"'));
    for (const QChar character : text) {
        switch (character.unicode()) {
        case '"':
        case '\\':
            result += QLatin1Char('\\') + QString(character);
            break;
        case '\n':
            result += QLatin1String("\\n");
            break;
        case '\r':
            result += QLatin1String("\\r");
            break;
        case '\t':
            result += QLatin1String("\\t");
            break;
        case 27:
            result += QLatin1String("\\e");
            break;
        default:
            result += character;
        }
    }
    return result + QLatin1Char('"');
}

/// Six digits, and always recognisable as a real.
static QString printedReal(double number)
{
    QString text = QString::number(number, 'g', 6);
    const qsizetype exponent = text.indexOf(QLatin1Char('e'));
    if (std::ranges::all_of(text, [](QChar c) { return c.isDigit() || c == QLatin1Char('-'); }))
        text += QLatin1String(".0");
    else if (exponent > 0 && !text.contains(QLatin1Char('.')))
        text.insert(exponent, QLatin1String(".0"));
    return text;
}

static QString printedList(const List &list, bool quoted)
{
    QString text(QLatin1Char('('));
    for (const Value &item : list.items) {
        if (text.size() > 1)
            text += QLatin1Char(' ');
        text += printed(item, quoted);
    }
    return text + QLatin1Char(')');
}

QString printed(const Value &value, bool quoted)
{
    struct Printer {
        bool quoted;
        QString operator()(Nil) const { return QStringLiteral("nil"); }
        QString operator()(Quiet) const { return {}; }
        QString operator()(std::int32_t number) const { return QString::number(number); }
        QString operator()(double number) const { return printedReal(number); }
        QString operator()(const QString &text) const { return quoted ? quotedText(text) : text; }
        QString operator()(const Symbol &symbol) const { return symbol.name; }
        QString operator()(const ListPointer &list) const { return printedList(*list, quoted); }
    };
    return std::visit(Printer{quoted}, value);
}

} // namespace lisp
