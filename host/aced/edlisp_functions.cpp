// Functions on numbers, texts and lists.
#include "host/aced/edlisp_functions.h"

#include "host/aced/edsysvar.h"
#include "host/base/format_number.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace lisp
{

/// A whole number when it fits into 32 bits.
static Value wholeOrReal(double number)
{
    const bool fits = number >= std::numeric_limits<std::int32_t>::min() &&
                      number <= std::numeric_limits<std::int32_t>::max();
    return fits ? Value(std::int32_t(number)) : Value(number);
}

static bool anyReal(const Call &call)
{
    return std::ranges::any_of(call.arguments(),
                               [](const Value &value) { return std::holds_alternative<double>(value); });
}

template <class Combine>
static Value arithmetic(Call &call, double start, Combine combine)
{
    const bool real = anyReal(call);
    double result = call.size() > 0 ? call.number(0) : start;
    for (std::size_t i = 1; i < call.size(); ++i)
        result = combine(result, call.number(i));
    if (!std::isfinite(result))
        return call.fail(QStringLiteral("number out of range: %1").arg(call.name()));
    return real ? Value(result) : wholeOrReal(result);
}

static Value add(Call &call)
{
    return arithmetic(call, 0.0, std::plus<double>());
}

static Value subtract(Call &call)
{
    if (call.size() == 1)
        return call.isReal(0) ? Value(-call.number(0)) : wholeOrReal(-call.number(0));
    return arithmetic(call, 0.0, std::minus<double>());
}

static Value multiply(Call &call)
{
    return arithmetic(call, call.size() == 0 ? 0.0 : 1.0, std::multiplies<double>());
}

static Value divide(Call &call)
{
    for (std::size_t i = 1; i < call.size(); ++i) {
        if (call.number(i) == 0.0)
            return call.fail(QStringLiteral("divide by zero"));
    }
    const bool real = anyReal(call);
    return arithmetic(call, 0.0, [real](double a, double b) { return real ? a / b : std::trunc(a / b); });
}

/// Less than 0, 0, greater than 0. Numbers with numbers, texts with texts.
static double compared(Call &call, std::size_t left, std::size_t right)
{
    if (std::holds_alternative<QString>(call.at(left)))
        return QString::compare(call.text(left), call.text(right));
    return call.number(left) - call.number(right);
}

template <class Holds>
static Value eachPair(Call &call, Holds holds)
{
    bool result = true;
    for (std::size_t i = 0; i + 1 < call.size(); ++i)
        result = holds(compared(call, i, i + 1)) && result;
    return truth(result);
}

static bool sameAtom(const Value &a, const Value &b)
{
    const auto number = [](const Value &value) -> std::optional<double> {
        if (const auto *whole = std::get_if<std::int32_t>(&value))
            return *whole;
        if (const auto *real = std::get_if<double>(&value))
            return *real;
        return std::nullopt;
    };
    const auto left = number(a);
    return left ? left == number(b) : a == b;
}

static Value equal(Call &call)
{
    bool same = true;
    for (std::size_t i = 0; i + 1 < call.size(); ++i)
        same = same && sameAtom(call.at(i), call.at(i + 1));
    return truth(same);
}

static Value notEqual(Call &call)
{
    bool different = true;
    for (std::size_t i = 0; i + 1 < call.size(); ++i)
        different = different && !sameAtom(call.at(i), call.at(i + 1));
    return truth(different);
}

static Value isNilFunction(Call &call)
{
    return truth(isNil(call.at(0)));
}

// Texts ------------------------------------------------------------------------------------------------

static Value strcat(Call &call)
{
    QString joined;
    for (std::size_t i = 0; i < call.size(); ++i) {
        joined += call.text(i);
        if (joined.size() > qsizetype(kMaxWeight))
            return call.fail(QStringLiteral("the text is too long: STRCAT"));
    }
    return joined;
}

static Value strcase(Call &call)
{
    return isNil(call.at(1)) ? call.text(0).toUpper() : call.text(0).toLower();
}

static Value itoa(Call &call)
{
    return QString::number(call.integer(0));
}

/// The longest beginning of the text that is a number; what follows is ignored.
static double leadingNumber(const QString &text, bool whole)
{
    const QByteArray ascii = text.trimmed().left(64).toLatin1();
    for (qsizetype length = ascii.size(); length > 0; --length) {
        const std::string_view part(ascii.constData(), std::size_t(length));
        if (whole) {
            if (const auto number = base::parseInteger(part))
                return double(*number);
        } else if (const auto real = base::parseReal(part)) {
            return *real;
        }
    }
    return 0.0;
}

static Value atoi(Call &call)
{
    return wholeOrReal(leadingNumber(call.text(0), true));
}

static Value atof(Call &call)
{
    return leadingNumber(call.text(0), false);
}

/// (rtos number [mode [precision]]); without them as the drawing's LUNITS and LUPREC say.
static Value rtos(Call &call)
{
    const double number = call.number(0);
    const int mode = call.size() > 1 ? call.integer(1) : 2;
    const int precision = call.size() > 2 ? call.integer(2) : acedIntVar(QStringLiteral("LUPREC"), 4);
    if (mode != 1 && mode != 2)
        return call.fail(QStringLiteral("RTOS knows modes 1 (scientific) and 2 (decimal)"));
    QString text = QString::number(number, mode == 1 ? 'E' : 'f', std::clamp(precision, 0, 15));
    // Trailing zeros go unless DIMZIN's bit 8 is clear, as in dimensions.
    if (mode == 2 && (acedIntVar(QStringLiteral("DIMZIN"), 8) & 8) && text.contains(u'.')) {
        while (text.endsWith(u'0'))
            text.chop(1);
        if (text.endsWith(u'.'))
            text.chop(1);
    }
    return text;
}

// Lists ------------------------------------------------------------------------------------------------

static Value listFunction(Call &call)
{
    return call.madeList(call.arguments());
}

static Value itemAt(Call &call, const std::vector<Value> &items, std::size_t index)
{
    return !call.failed() && index < items.size() ? items[index] : Value(Nil{});
}

static Value car(Call &call)
{
    return itemAt(call, call.list(0), 0);
}

static Value cadr(Call &call)
{
    return itemAt(call, call.list(0), 1);
}

static Value cdr(Call &call)
{
    std::vector<Value> items = call.list(0);
    if (!items.empty())
        items.erase(items.begin());
    return call.madeList(std::move(items));
}

static Value nth(Call &call)
{
    const std::int32_t index = call.integer(0);
    return index < 0 ? call.badArgument(0) : itemAt(call, call.list(1), std::size_t(index));
}

static Value length(Call &call)
{
    return std::int32_t(call.list(0).size());
}

std::span<const Function> pureFunctions()
{
    static constexpr std::array functions{
        Function{"NOT", 1, 1, isNilFunction},
        Function{"NULL", 1, 1, isNilFunction},
        Function{"=", 1, kAny, equal},
        Function{"/=", 1, kAny, notEqual},
        Function{"<", 1, kAny, [](Call &call) { return eachPair(call, [](double d) { return d < 0; }); }},
        Function{">", 1, kAny, [](Call &call) { return eachPair(call, [](double d) { return d > 0; }); }},
        Function{"<=", 1, kAny, [](Call &call) { return eachPair(call, [](double d) { return d <= 0; }); }},
        Function{">=", 1, kAny, [](Call &call) { return eachPair(call, [](double d) { return d >= 0; }); }},
        Function{"+", 0, kAny, add},
        Function{"-", 0, kAny, subtract},
        Function{"*", 0, kAny, multiply},
        Function{"/", 1, kAny, divide},
        Function{"STRCAT", 0, kAny, strcat},
        Function{"STRCASE", 1, 2, strcase},
        Function{"ITOA", 1, 1, itoa},
        Function{"ATOI", 1, 1, atoi},
        Function{"RTOS", 1, 3, rtos},
        Function{"ATOF", 1, 1, atof},
        Function{"LIST", 0, kAny, listFunction},
        Function{"CAR", 1, 1, car},
        Function{"CDR", 1, 1, cdr},
        Function{"CADR", 1, 1, cadr},
        Function{"NTH", 2, 2, nth},
        Function{"LENGTH", 1, 1, length},
    };
    return functions;
}

const Function *findFunction(const QString &name)
{
    for (const std::span<const Function> table : {pureFunctions(), hostFunctions()}) {
        const auto found = std::ranges::find_if(
            table, [&name](const Function &function) { return name == QLatin1String(function.name); });
        if (found != table.end())
            return &*found;
    }
    return nullptr;
}

} // namespace lisp
