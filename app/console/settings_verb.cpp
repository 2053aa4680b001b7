#include "app/console/settings_verb.h"

#include "app/console/console_front_end.h"
#include "app/console/documents.h"
#include "host/aced/edverbs.h"
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/base/path_name.h"
#include "host/base/result.h"
#include "host/os/settings_store.h"

#include <QFile>

#include <cstdio>
#include <limits>

namespace console
{

using Value = std::variant<std::uint32_t, QString>;

static int trouble(const QString &reason)
{
    printMessageLine(reason);
    return kTrouble;
}

static QString valueText(const Value &value)
{
    const auto *number = std::get_if<std::uint32_t>(&value);
    return number ? QString::number(*number) : std::get<QString>(value);
}

static QJsonValue valueJson(const Value &value)
{
    const auto *number = std::get_if<std::uint32_t>(&value);
    return number ? QJsonValue(qint64(*number)) : QJsonValue(std::get<QString>(value));
}

static QString oneLine(QString text)
{
    return text.replace(u'\\', QStringLiteral("\\\\")).replace(u'\n', QStringLiteral("\\n"));
}

static void printJson(const QString &key, const QString &name, const Value &value)
{
    acedPrintResult(QJsonObject{{QStringLiteral("key"), key},
                                {QStringLiteral("name"), name},
                                {QStringLiteral("value"), valueJson(value)}});
}

int listSettings(const QString &key, bool json)
{
    for (const os::SettingsStore::Entry &entry : os::SettingsStore::user().entries(key)) {
        const bool isText = std::holds_alternative<QString>(entry.value);
        if (json)
            printJson(entry.key, entry.name, entry.value);
        else
            acedPrintResult(QStringLiteral("%1\t%2\t%3\t%4\n")
                                .arg(entry.key, entry.name,
                                     isText ? QStringLiteral("text") : QStringLiteral("number"),
                                     oneLine(valueText(entry.value))));
    }
    return kDone;
}

int getSetting(const QString &key, const QString &name, bool json)
{
    const os::SettingsStore &store = os::SettingsStore::user();
    std::optional<Value> value;
    if (const auto number = store.number(key, name))
        value = *number;
    else if (const auto text = store.text(key, name))
        value = *text;
    if (!value)
        return trouble(QStringLiteral("there is no setting %1 under %2").arg(name, key));
    if (json)
        printJson(key, name, *value);
    else
        acedPrintResult(valueText(*value) + u'\n');
    return kDone;
}

static std::optional<std::uint32_t> numberOf(const QString &value)
{
    bool isNumber = false;
    const qlonglong number = value.toLongLong(&isNumber);
    if (!isNumber || number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

/// What is stored: as the owner reads it, else as the caller says, else by the look of the value.
static base::Result<Value, QString> valueOf(const QString &value, SettingType type,
                                            std::optional<os::SettingsStore::Type> declared)
{
    using Declared = os::SettingsStore::Type;
    if (declared && ((type == SettingType::number && *declared == Declared::text) ||
                     (type == SettingType::text && *declared == Declared::number)))
        return base::Failure{*declared == Declared::text ? QStringLiteral("this setting is a text")
                                                         : QStringLiteral("this setting is a number")};
    if (type == SettingType::text || declared == Declared::text)
        return Value(value);
    if (const auto number = numberOf(value))
        return Value(*number);
    if (type == SettingType::number || declared)
        return base::Failure{QStringLiteral("\"%1\" is no number from -2147483648 to 4294967295").arg(value)};
    return Value(value);
}

int setSetting(const QString &key, const QString &name, const QString &value, SettingType type, bool foreign)
{
    os::SettingsStore &store = os::SettingsStore::user();
    const auto declared = store.declaredType(key, name);
    if (!declared && !foreign)
        return trouble(QStringLiteral("nothing reads a setting %1 under %2; --force stores it all the same")
                           .arg(name, key));
    const auto typed = valueOf(value, type, declared);
    if (!typed)
        return trouble(QStringLiteral("%1 under %2: %3").arg(name, key, typed.error()));
    return store.setEntries({{key, name, *typed}})
               ? kDone
               : trouble(QStringLiteral("%1 under %2 could not be stored").arg(name, key));
}

int removeSetting(const QString &key, const QString &name)
{
    return os::SettingsStore::user().remove(key, name)
               ? kDone
               : trouble(QStringLiteral("%1 under %2 could not be removed").arg(name, key));
}

int exportSettingsTo(const QString &file, bool overwrite)
{
    const QByteArray text = os::exportSettings(os::SettingsStore::user());
    if (file == u"-") {
        acedPrintResult(QString::fromUtf8(text));
        return kDone;
    }
    if (base::pathExists(file) && !overwrite)
        return trouble(QStringLiteral("%1 exists; -f overwrites it").arg(file));
    const auto written = base::writeFileAtomically(file, text);
    return written ? kDone : trouble(written.error().text());
}

static base::Result<QByteArray, QString> readInput(const QString &file)
{
    if (file == u"-") {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly))
            return base::Failure{QStringLiteral("standard input cannot be read")};
        return input.readAll();
    }
    const auto bytes = base::readFileBytes(file, base::Pipes::read);
    if (!bytes)
        return base::Failure{bytes.error().text()};
    return QByteArray(bytes->view().data(), qsizetype(bytes->view().size()));
}

int importSettingsFrom(const QString &file, const QStringList &wanted)
{
    const auto text = readInput(file);
    if (!text)
        return trouble(text.error());
    const auto imported = os::importSettings(os::SettingsStore::user(), *text, wanted);
    if (!imported)
        return trouble(
            QStringLiteral("%1:%2: %3").arg(file).arg(imported.error().line).arg(imported.error().reason));
    for (const QString &each : imported->leftOut)
        printMessageLine(
            QStringLiteral("left out, because it makes the program load or run something: %1 (--with %2 "
                           "takes it)")
                .arg(each, each.section(u'\\', -1)));
    printMessageLine(QStringLiteral("%1 settings imported").arg(imported->count));
    return kDone;
}

} // namespace console
