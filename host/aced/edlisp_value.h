// Values of the small LISP, and how they print.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

namespace lisp
{

/// Bounds for everything that is read or made: no expression can use up the stack or the memory.
inline constexpr int kMaxDepth = 200;              ///< Lists within lists.
inline constexpr std::size_t kMaxWeight = 1 << 20; ///< Items and characters of one value.

struct Nil {
    friend bool operator==(Nil, Nil) = default;
};
/// What (princ) gives: a value that prints as nothing.
struct Quiet {
    friend bool operator==(Quiet, Quiet) = default;
};
struct Symbol {
    QString name; ///< Upper case.
    friend bool operator==(const Symbol &, const Symbol &) = default;
};
struct List;
using ListPointer = std::shared_ptr<const List>;
using Value = std::variant<Nil, std::int32_t, double, QString, Symbol, ListPointer, Quiet>;

/// Never empty: the empty list is nil.
struct List {
    std::vector<Value> items;
    int depth = 1;
    std::size_t weight = 1;
    qsizetype position =
        -1; ///< Of the opening parenthesis in the expression; -1 for lists made by functions.
};

/// Null when the list would break a bound. `items` must not be empty.
ListPointer makeList(std::vector<Value> items, qsizetype position = -1);

inline Value truth(bool value)
{
    return value ? Value(Symbol{QStringLiteral("T")}) : Value(Nil{});
}
inline bool isNil(const Value &value)
{
    return std::holds_alternative<Nil>(value);
}

/// As LISP prints it: texts in quotes with backslash escapes, or as they are when not `quoted`.
QString printed(const Value &value, bool quoted = true);

/// What is wrong, and where in the expression; -1: as a whole.
struct Fault {
    QString text;
    qsizetype position = -1;
};

} // namespace lisp
