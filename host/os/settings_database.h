// The file behind a settings store: opening it, setting it aside when it is damaged, reading through a cache.
#pragma once

#include "host/os/settings_store.h"

#include <QHash>

#include <utility>

#include <sqlite3.h>
#include <sys/types.h>

namespace os
{

/// The open file. Its cache answers reads while the file has not changed: SQLite's data version tells
/// whether another program has written, and the own writes empty the cache.
class SettingsDatabase
{
public:
    using Entry = SettingsStore::Entry;
    using Value = decltype(Entry::value);

    explicit SettingsDatabase(const QString &file) : m_file(file) { settle(tryOpen()); }
    ~SettingsDatabase() { close(); }
    SettingsDatabase(const SettingsDatabase &) = delete;
    SettingsDatabase &operator=(const SettingsDatabase &) = delete;

    bool isOpen() const { return m_handle != nullptr; }
    std::optional<Value> read(QStringView key, QStringView name);
    std::vector<Entry> list(QStringView key);
    bool store(const Entry &entry);
    bool storeAll(const std::vector<Entry> &entries);
    bool erase(QStringView key, QStringView name);

private:
    using FoldedName = std::pair<QString, QString>;

    void settle(int result);
    int tryOpen();
    int createOrCheck();
    int prepareAll();
    void close();
    bool setAside();
    bool check(int result);
    void reportOnce(int result);
    void report(const QString &what) const;
    bool refreshCache();

    QString m_file;
    sqlite3 *m_handle = nullptr;
    sqlite3_stmt *m_select = nullptr;
    sqlite3_stmt *m_upsert = nullptr;
    sqlite3_stmt *m_erase = nullptr;
    sqlite3_stmt *m_list = nullptr;
    sqlite3_stmt *m_dataVersion = nullptr;
    ino_t m_inode = 0; ///< Of the file that was opened.
    int m_lastReported = SQLITE_OK;
    qint64 m_cachedVersion = -1;
    QHash<FoldedName, std::optional<Value>> m_cache;
};

} // namespace os
