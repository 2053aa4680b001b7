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

} // namespace os
