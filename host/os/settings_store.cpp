#include "host/os/settings_store.h"

#include "host/os/settings_database.h"

#include <QStandardPaths>

namespace os
{

SettingsStore::SettingsStore(const QString &file) : m_database(std::make_unique<SettingsDatabase>(file)) {}

SettingsStore::~SettingsStore() = default;

QString SettingsStore::userFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/quillnote/settings.sqlite");
}

SettingsStore &SettingsStore::user()
{
    static SettingsStore store(userFile());
    return store;
}

bool SettingsStore::isOpen() const
{
    return m_database->isOpen();
}

std::optional<std::uint32_t> SettingsStore::number(QStringView key, QStringView name) const
{
    const auto value = m_database->read(key, name);
    const auto *found = value ? std::get_if<std::uint32_t>(&*value) : nullptr;
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<QString> SettingsStore::text(QStringView key, QStringView name) const
{
    const auto value = m_database->read(key, name);
    const auto *found = value ? std::get_if<QString>(&*value) : nullptr;
    return found ? std::optional(*found) : std::nullopt;
}

bool SettingsStore::setNumber(QStringView key, QStringView name, std::uint32_t value)
{
    return m_database->store({key.toString(), name.toString(), value});
}

bool SettingsStore::setText(QStringView key, QStringView name, QStringView value)
{
    return m_database->store({key.toString(), name.toString(), value.toString()});
}

bool SettingsStore::remove(QStringView key, QStringView name)
{
    return m_database->erase(key, name);
}

std::vector<SettingsStore::Entry> SettingsStore::entries(QStringView key) const
{
    return m_database->list(key);
}

QStringList SettingsStore::keys() const
{
    QStringList keys;
    for (const Entry &entry : entries()) {
        if (keys.isEmpty() || keys.last().compare(entry.key, Qt::CaseInsensitive) != 0)
            keys << entry.key;
    }
    return keys;
}

bool SettingsStore::setEntries(const std::vector<Entry> &entries)
{
    return m_database->storeAll(entries);
}

static std::pair<QString, QString> folded(QStringView key, QStringView name)
{
    return {key.toString().toCaseFolded(), name.toString().toCaseFolded()};
}

void SettingsStore::declare(const Declaration &value)
{
    const QString number = QStringLiteral("%d");
    for (int i = value.first; i <= value.last; ++i)
        m_types[folded(value.key, QString(value.name).replace(number, QString::number(i)))] = value.type;
}

std::optional<SettingsStore::Type> SettingsStore::declaredType(QStringView key, QStringView name) const
{
    const auto known = m_types.find(folded(key, name));
    return known == m_types.end() ? std::nullopt : std::optional(known->second);
}

} // namespace os
