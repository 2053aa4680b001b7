// Reading and setting system variables.
#include "host/aced/edsysvar.h"

#include "host/aced/edsysvartable.h"
#include "host/base/format_number.h"
#include "host/os/settings_store.h"

#include <cmath>
#include <map>

using Value = resbuf::Value;

static const QString kSettingsKey = QStringLiteral("Software\\QuillnoteHost\\Variables");

// Finding -----------------------------------------------------------------------------------------

namespace
{

/// A variable under the name it was asked by; dimension variables have a row of their own drawing.
struct Found {
    AcEdVariable row;
    QString name;
    AcApDocument *document = nullptr;
};

} // namespace

static std::optional<Found> find(const QString &name)
{
    const QString upper = name.trimmed().toUpper();
    AcApDocument *const document = curDoc();
    if (const AcEdVariable *const row = acedFindVariable(upper)) {
        if (row->needsDocument && !document)
            return std::nullopt;
        return Found{*row, upper, document};
    }
    if (!document)
        return std::nullopt;
    const auto row = acedDimensionVariable(*document->database(), upper);
    return row ? std::optional(Found{*row, upper, document}) : std::nullopt;
}

static std::map<QString, Value> &sessionValues()
{
    static std::map<QString, Value> values;
    return values;
}

static bool isInteger(AcEdVarType type)
{
    return type == AcEdVarType::integer || type == AcEdVarType::longInteger;
}

// Reading -----------------------------------------------------------------------------------------

static Value initial(const AcEdVariable &row)
{
    if (row.type == AcEdVarType::text)
        return QString::fromUtf8(row.text);
    if (isInteger(row.type))
        return std::int64_t(row.number);
    return row.type == AcEdVarType::real ? Value(row.number) : Value(AcGePoint3d());
}

static QByteArray headerName(const Found &variable)
{
    return '$' + variable.name.toLatin1();
}

/// The value in the variable's own type, whatever alternative the file's group has.
static Value inType(const resbuf &group, AcEdVarType type)
{
    switch (type) {
    case AcEdVarType::integer:
    case AcEdVarType::longInteger:
        return group.integer();
    case AcEdVarType::real:
        return group.restype == 50 ? group.real() * kGePi / 180 : group.real();
    case AcEdVarType::text:
        return group.text();
    case AcEdVarType::point2d:
        return AcGePoint2d(group.point().x, group.point().y);
    case AcEdVarType::point3d:
        break;
    }
    return group.point();
}

static Value read(const Found &variable)
{
    const AcEdVariable &row = variable.row;
    switch (row.storage) {
    case AcEdVarStorage::computed:
        return row.get(variable.document);
    case AcEdVarStorage::header: {
        const ResbufList *const groups = variable.document->database()->headerVariable(headerName(variable));
        return groups && !groups->empty() ? inType(groups->front(), row.type) : initial(row);
    }
    case AcEdVarStorage::settings: {
        const auto stored = os::SettingsStore::user().number(kSettingsKey, variable.name);
        return stored ? Value(std::int64_t(std::int32_t(*stored))) : initial(row);
    }
    case AcEdVarStorage::session:
        break;
    }
    const auto known = sessionValues().find(variable.name);
    return known == sessionValues().end() ? initial(row) : known->second;
}

int acedGetVar(const QString &name, resbuf &value)
{
    const auto variable = find(name);
    if (!variable)
        return RTERROR;
    value = resbuf(int(variable->row.type), read(*variable));
    return RTNORM;
}

// Setting -----------------------------------------------------------------------------------------

static bool inRange(const AcEdVariable &row, double number)
{
    return number >= row.low && number <= row.high;
}

/// The value as the variable keeps it; none when type or range does not fit.
static std::optional<Value> accepted(const AcEdVariable &row, const Value &value)
{
    const auto *whole = std::get_if<std::int64_t>(&value);
    const auto *real = std::get_if<double>(&value);
    switch (row.type) {
    case AcEdVarType::integer:
    case AcEdVarType::longInteger:
        return whole && inRange(row, double(*whole)) ? std::optional(value) : std::nullopt;
    case AcEdVarType::real: {
        const double number = whole ? double(*whole) : real ? *real : std::nan("");
        return inRange(row, number) ? std::optional<Value>(number) : std::nullopt;
    }
    case AcEdVarType::text:
        return std::holds_alternative<QString>(value) ? std::optional(value) : std::nullopt;
    case AcEdVarType::point2d:
    case AcEdVarType::point3d:
        break;
    }
    const bool isPoint =
        std::holds_alternative<AcGePoint2d>(value) || std::holds_alternative<AcGePoint3d>(value);
    return isPoint ? std::optional<Value>(resbuf(0, value).point()) : std::nullopt;
}

static int writeHeader(const Found &variable, const Value &value)
{
    AcDbDatabase &database = *variable.document->database();
    if (variable.row.check && !variable.row.check(database, value))
        return RTREJ;
    const QByteArray name = headerName(variable);
    const ResbufList *const present = database.headerVariable(name);
    const int code = present && !present->empty() ? present->front().restype : variable.row.code;
    const bool degrees = code == 50 && variable.row.type == AcEdVarType::real;
    database.setHeaderVariable(name,
                               {{code, degrees ? Value(std::get<double>(value) * 180 / kGePi) : value}});
    return RTNORM;
}

static int write(const Found &variable, const Value &value)
{
    switch (variable.row.storage) {
    case AcEdVarStorage::computed:
        return variable.row.set(variable.document, value) ? RTNORM : RTREJ;
    case AcEdVarStorage::header:
        return writeHeader(variable, value);
    case AcEdVarStorage::settings: {
        const auto number = std::uint32_t(std::get<std::int64_t>(value));
        return os::SettingsStore::user().setNumber(kSettingsKey, variable.name, number) ? RTNORM : RTERROR;
    }
    case AcEdVarStorage::session:
        break;
    }
    sessionValues()[variable.name] = value;
    return RTNORM;
}

int acedSetVar(const QString &name, const resbuf &value)
{
    const auto variable = find(name);
    if (!variable || variable->row.readOnly)
        return RTERROR;
    const auto fitting = accepted(variable->row, value.resval);
    return fitting ? write(*variable, *fitting) : int(RTREJ);
}

static std::optional<double> number(QStringView text)
{
    const QByteArray bytes = text.toLatin1();
    return base::parseReal({bytes.constData(), std::size_t(bytes.size())});
}

static std::optional<Value> typedPoint(const QString &typed)
{
    const QList<QStringView> parts = QStringView(typed).split(u',');
    if (parts.size() < 2 || parts.size() > 3)
        return std::nullopt;
    double values[3] = {};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const auto value = number(parts[i]);
        if (!value)
            return std::nullopt;
        values[i] = *value;
    }
    return AcGePoint3d(values[0], values[1], values[2]);
}

static std::optional<Value> typedValue(AcEdVarType type, const QString &typed)
{
    if (type == AcEdVarType::text)
        return typed;
    if (type == AcEdVarType::point2d || type == AcEdVarType::point3d)
        return typedPoint(typed);
    const auto value = number(typed);
    if (!value)
        return std::nullopt;
    if (!isInteger(type))
        return *value;
    const bool whole = *value == std::floor(*value) && std::abs(*value) < 1e15;
    return whole ? std::optional<Value>(std::int64_t(*value)) : std::nullopt;
}

int acedSetVarText(const QString &name, const QString &typed)
{
    const auto variable = find(name);
    if (!variable)
        return RTERROR;
    const auto value = typedValue(variable->row.type, typed);
    return value ? acedSetVar(name, resbuf(int(variable->row.type), *value)) : int(RTREJ);
}

// Convenience -------------------------------------------------------------------------------------

QStringList acedVarNames()
{
    QStringList names;
    for (const AcEdVariable &row : acedVariables())
        names.append(QString::fromLatin1(row.name));
    names.sort();
    return names;
}

int acedIntVar(const QString &name, int fallback)
{
    resbuf value;
    return acedGetVar(name, value) == RTNORM ? int(value.integer()) : fallback;
}

double acedRealVar(const QString &name, double fallback)
{
    resbuf value;
    return acedGetVar(name, value) == RTNORM ? value.real() : fallback;
}

QString acedTextVar(const QString &name, const QString &fallback)
{
    resbuf value;
    return acedGetVar(name, value) == RTNORM ? value.text() : fallback;
}

void acedSetIntVar(const QString &name, int value)
{
    acedSetVar(name, resbuf(int(AcEdVarType::integer), std::int64_t(value)));
}
