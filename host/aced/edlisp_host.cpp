// LISP functions that reach the host: commands, menus, system variables, files, printing.
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edlisp_functions.h"
#include "host/aced/edmenu.h"
#include "host/aced/edsysvar.h"

#include <QFileInfo>

#include <array>
#include <limits>

namespace lisp
{

std::optional<AcGePoint3d> asPoint(const Value &value)
{
    const auto *list = std::get_if<ListPointer>(&value);
    if (!list || (*list)->items.size() < 2 || (*list)->items.size() > 3)
        return std::nullopt;
    std::array<double, 3> coordinates{};
    for (std::size_t i = 0; i < (*list)->items.size(); ++i) {
        const Value &item = (*list)->items[i];
        if (const auto *whole = std::get_if<std::int32_t>(&item))
            coordinates[i] = *whole;
        else if (const auto *real = std::get_if<double>(&item))
            coordinates[i] = *real;
        else
            return std::nullopt;
    }
    return AcGePoint3d(coordinates[0], coordinates[1], coordinates[2]);
}

void appendGroups(ResbufList &groups, const Value &value)
{
    struct Appender {
        ResbufList &groups;
        const Value &value;
        void operator()(Nil) const { groups.emplace_back(kNil, std::monostate()); }
        void operator()(Quiet) const { groups.emplace_back(kNil, std::monostate()); }
        void operator()(std::int32_t number) const
        {
            const bool isShort = number == std::int16_t(number);
            groups.emplace_back(isShort ? kShort : kLong, std::int64_t(number));
        }
        void operator()(double number) const { groups.emplace_back(kReal, number); }
        void operator()(const QString &text) const { groups.emplace_back(kText, text); }
        void operator()(const Symbol &symbol) const
        {
            if (symbol.name == QLatin1String("T"))
                groups.emplace_back(kTrue, std::monostate());
            else
                groups.emplace_back(kText, symbol.name);
        }
        void operator()(const ListPointer &list) const
        {
            if (const auto point = asPoint(value)) {
                groups.emplace_back(list->items.size() == 2 ? kPoint : kPoint3d, *point);
                return;
            }
            groups.emplace_back(kListBegin, std::monostate());
            for (const Value &item : list->items)
                appendGroups(groups, item);
            groups.emplace_back(kListEnd, std::monostate());
        }
    };
    std::visit(Appender{groups, value}, value);
}

Value fromGroup(const resbuf &group)
{
    switch (group.restype) {
    case kReal:
        return group.real();
    case kShort:
    case kLong:
        return std::int32_t(group.integer());
    case kText:
        return group.text();
    case kPoint:
        return makeList({group.point().x, group.point().y});
    case kPoint3d:
        return makeList({group.point().x, group.point().y, group.point().z});
    case kTrue:
        return truth(true);
    default:
        return Nil{};
    }
}

static Value getvar(Call &call)
{
    resbuf value;
    const QString name = call.text(0);
    return !call.failed() && acedGetVar(name, value) == RTNORM ? fromGroup(value) : Value(Nil{});
}

/// The value in the type that the variable has: LISP's 1 is good for a real variable.
static resbuf typedLike(const resbuf &model, const Value &value)
{
    const auto *whole = std::get_if<std::int32_t>(&value);
    if (whole && model.restype == kReal)
        return {kReal, double(*whole)};
    if (whole && (model.restype == kShort || model.restype == kLong))
        return {model.restype, std::int64_t(*whole)};
    const auto point = asPoint(value);
    if (point && (model.restype == kPoint || model.restype == kPoint3d))
        return {model.restype, *point};
    ResbufList groups;
    appendGroups(groups, value);
    return groups.front();
}

static Value setvar(Call &call)
{
    const QString name = call.text(0);
    if (call.failed())
        return Nil{};
    resbuf present;
    if (acedGetVar(name, present) != RTNORM)
        return call.fail(QStringLiteral("unknown system variable: %1").arg(name));
    switch (acedSetVar(name, typedLike(present, call.at(1)))) {
    case RTNORM:
        return call.at(1);
    case RTREJ:
        return call.fail(
            QStringLiteral("system variable %1 does not take %2").arg(name, printed(call.at(1))));
    default:
        return call.fail(QStringLiteral("system variable %1 cannot be set").arg(name));
    }
}

static std::optional<AcEdToken> asToken(const Value &value)
{
    if (const auto *text = std::get_if<QString>(&value))
        return *text == QLatin1String("\\") ? AcEdToken(PAUSE) : AcEdToken(*text);
    if (const auto *whole = std::get_if<std::int32_t>(&value))
        return AcEdToken(int(*whole));
    if (const auto *real = std::get_if<double>(&value))
        return AcEdToken(*real);
    if (const auto point = asPoint(value))
        return AcEdToken(*point);
    return std::nullopt;
}

static Value command(Call &call)
{
    std::vector<AcEdToken> tokens;
    for (std::size_t i = 0; i < call.size(); ++i) {
        const auto token = asToken(call.at(i));
        if (!token)
            return call.badArgument(i);
        tokens.push_back(*token);
    }
    if (!tokens.empty())
        acedCommandTokens(tokens);
    return Nil{};
}

static Value menucmd(Call &call)
{
    const QString text = call.text(0);
    if (!call.failed())
        acedMenus().menuCommand(text);
    return Nil{};
}

static Value menugroup(Call &call)
{
    const QString name = call.text(0);
    return !call.failed() && acedIsMenuGroupLoaded(name) ? Value(name) : Value(Nil{});
}

static Value findfile(Call &call)
{
    const QFileInfo file(call.text(0));
    return !call.failed() && file.exists() ? Value(file.absoluteFilePath()) : Value(Nil{});
}

static Value princ(Call &call)
{
    if (call.size() == 0)
        return Quiet{};
    acutPrintf(printed(call.at(0), false));
    return call.at(0);
}

static Value print(Call &call)
{
    if (call.size() == 0)
        return Quiet{};
    acutPrintf(QLatin1Char('\n') + printed(call.at(0)) + QLatin1Char(' '));
    return call.at(0);
}

std::span<const Function> hostFunctions()
{
    static constexpr std::array functions{
        Function{"COMMAND", 0, kAny, command},  Function{"MENUCMD", 1, 1, menucmd},
        Function{"MENUGROUP", 1, 1, menugroup}, Function{"GETVAR", 1, 1, getvar},
        Function{"SETVAR", 2, 2, setvar},       Function{"FINDFILE", 1, 1, findfile},
        Function{"PRINC", 0, 1, princ},         Function{"PRINT", 0, 1, print},
    };
    return functions;
}

} // namespace lisp
