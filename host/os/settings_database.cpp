#include "host/os/settings_database.h"

#include "host/base/path_name.h"
#include "host/base/terminal_text.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>

#include <sys/stat.h>

namespace os
{

// A rollback journal, not a write-ahead log: home folders lie on network drives and settings are read
// from folders that cannot be written to; a write-ahead log works in neither place.
static constexpr char kOpenSql[] = "PRAGMA synchronous=NORMAL;";
static constexpr char kSchema[] = "PRAGMA encoding='UTF-16le';"
                                  "BEGIN IMMEDIATE;"
                                  "CREATE TABLE IF NOT EXISTS setting ("
                                  " folded_key TEXT NOT NULL, folded_name TEXT NOT NULL,"
                                  " key TEXT NOT NULL, name TEXT NOT NULL, value NOT NULL,"
                                  " PRIMARY KEY (folded_key, folded_name)) WITHOUT ROWID;"
                                  "PRAGMA user_version=1;"
                                  "COMMIT;";
static constexpr int kSchemaVersion = 1;
static constexpr int kNewerVersion = SQLITE_SCHEMA; // SQLite itself recovers from this one.
static constexpr int kBusyMilliseconds = 5000;      // Longer than any write of another program takes.

static SettingsStore::MessageHandler &messageHandler()
{
    static SettingsStore::MessageHandler handler = [](const QString &message) {
        std::fprintf(stderr, "%s\n", base::terminalText(message).toUtf8().constData());
    };
    return handler;
}

void SettingsStore::setMessageHandler(MessageHandler handler)
{
    messageHandler() = std::move(handler);
}

namespace
{

/// A prepared statement during one use of it.
class Statement
{
public:
    explicit Statement(sqlite3_stmt *statement) : m_statement(statement) {}
    ~Statement()
    {
        sqlite3_reset(m_statement);
        sqlite3_clear_bindings(m_statement);
    }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    /// SQLite takes a mark of byte order away from the front of a text and turns the bytes by it; so one is
    /// put before every text.
    void bind(int place, QStringView text)
    {
        const QString marked = QChar(QChar::ByteOrderMark) + text.toString();
        sqlite3_bind_text16(m_statement, place, marked.utf16(), static_cast<int>(marked.size() * 2),
                            SQLITE_TRANSIENT);
    }
    void bind(int place, std::uint32_t number) { sqlite3_bind_int64(m_statement, place, number); }
    int step() { return sqlite3_step(m_statement); }

    QString text(int column) const
    {
        const auto *units = static_cast<const QChar *>(sqlite3_column_text16(m_statement, column));
        return QString(units, sqlite3_column_bytes16(m_statement, column) / 2);
    }
    std::optional<SettingsDatabase::Value> value(int column) const
    {
        if (sqlite3_column_type(m_statement, column) == SQLITE_INTEGER)
            return SettingsDatabase::Value(
                static_cast<std::uint32_t>(sqlite3_column_int64(m_statement, column)));
        if (sqlite3_column_type(m_statement, column) == SQLITE_TEXT)
            return SettingsDatabase::Value(text(column));
        return std::nullopt; // Not ours.
    }
    qint64 integer(int column) const { return sqlite3_column_int64(m_statement, column); }

private:
    sqlite3_stmt *m_statement;
};

} // namespace

static std::pair<QString, QString> folded(QStringView key, QStringView name)
{
    return {key.toString().toCaseFolded(), name.toString().toCaseFolded()};
}

static bool isUsableName(QStringView name)
{
    return std::none_of(name.begin(), name.end(), [](QChar c) { return c.unicode() < 0x20; });
}

static QStringView upToZero(QStringView text)
{
    const qsizetype zero = text.indexOf(QChar(u'\0'));
    return zero < 0 ? text : text.first(zero);
}

static bool isDamage(int result)
{
    return (result & 0xFF) == SQLITE_NOTADB || (result & 0xFF) == SQLITE_CORRUPT;
}

static ino_t inodeOf(const QString &file)
{
    struct stat status;
    return ::stat(base::encodePath(file).constData(), &status) == 0 ? status.st_ino : 0;
}

void SettingsDatabase::report(const QString &what) const
{
    if (messageHandler())
        messageHandler()(QStringLiteral("Settings file %1: %2").arg(QDir::toNativeSeparators(m_file), what));
}

void SettingsDatabase::reportOnce(int result)
{
    if (result == m_lastReported)
        return;
    m_lastReported = result;
    report(result == kNewerVersion ? QStringLiteral("written by a newer version of this program")
                                   : QString::fromUtf8(sqlite3_errstr(result)));
}

/// No statement may be in use: damage ends them all.
bool SettingsDatabase::check(int result)
{
    if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE)
        return true;
    if (isDamage(result))
        settle(result);
    else
        reportOnce(result);
    return false;
}

/// Ends an attempt to open the file, and the use of a file that turns out to be damaged.
void SettingsDatabase::settle(int result)
{
    if (isDamage(result) && setAside())
        result = tryOpen();
    if (result == SQLITE_OK)
        return;
    close();
    reportOnce(result);
}

int SettingsDatabase::tryOpen()
{
    QDir().mkpath(QFileInfo(m_file).absolutePath());
    const QByteArray path = base::encodePath(m_file);
    int result =
        sqlite3_open_v2(path.constData(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (result != SQLITE_OK)
        return result;
    sqlite3_busy_timeout(m_handle, kBusyMilliseconds);
    m_inode = inodeOf(m_file);

    result = createOrCheck();
    if (result == SQLITE_OK)
        result = sqlite3_exec(m_handle, kOpenSql, nullptr, nullptr, nullptr);
    return result == SQLITE_OK ? prepareAll() : result;
}

int SettingsDatabase::createOrCheck()
{
    sqlite3_stmt *version = nullptr;
    int result = sqlite3_prepare_v2(m_handle, "PRAGMA user_version", -1, &version, nullptr);
    int found = 0;
    if (result == SQLITE_OK) {
        result = sqlite3_step(version);
        found = sqlite3_column_int(version, 0);
    }
    sqlite3_finalize(version);
    if (result != SQLITE_ROW)
        return result;
    if (found > kSchemaVersion)
        return kNewerVersion;
    return found == kSchemaVersion ? SQLITE_OK : sqlite3_exec(m_handle, kSchema, nullptr, nullptr, nullptr);
}

int SettingsDatabase::prepareAll()
{
    const std::pair<sqlite3_stmt **, const char *> all[] = {
        {&m_select, "SELECT value FROM setting WHERE folded_key=?1 AND folded_name=?2"},
        // A key keeps its first spelling for the values that join it later, a value keeps its own.
        {&m_upsert, "INSERT INTO setting VALUES (?1, ?2,"
                    " coalesce((SELECT key FROM setting WHERE folded_key=?1 LIMIT 1), ?3), ?4, ?5)"
                    " ON CONFLICT DO UPDATE SET value=excluded.value"},
        {&m_erase, "DELETE FROM setting WHERE folded_key=?1 AND folded_name=?2"},
        // "]" follows "\" in the order of characters.
        {&m_list,
         "SELECT key, name, value FROM setting WHERE ?1='' OR folded_key=?1"
         " OR (folded_key > ?1 || '\\' AND folded_key < ?1 || ']') ORDER BY folded_key, folded_name"},
        {&m_dataVersion, "PRAGMA data_version"},
    };
    for (const auto &[statement, sql] : all) {
        const int result =
            sqlite3_prepare_v3(m_handle, sql, -1, SQLITE_PREPARE_PERSISTENT, statement, nullptr);
        if (result != SQLITE_OK)
            return result;
    }
    return SQLITE_OK;
}

void SettingsDatabase::close()
{
    for (sqlite3_stmt **statement : {&m_select, &m_upsert, &m_erase, &m_list, &m_dataVersion})
        sqlite3_finalize(std::exchange(*statement, nullptr));
    sqlite3_close_v2(std::exchange(m_handle, nullptr));
    m_cache.clear();
    m_cachedVersion = -1;
}

/// Renames the damaged file, unless another program has put a fresh one in its place already.
bool SettingsDatabase::setAside()
{
    close();
    if (inodeOf(m_file) != m_inode)
        return true;
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmsszzz"));
    const QString aside = m_file + QStringLiteral(".damaged-") + stamp;
    if (!QFile::rename(m_file, aside))
        return false;
    // A journal left beside it belongs to the old file and would be played back into the new one.
    QFile::rename(m_file + QStringLiteral("-journal"), aside + QStringLiteral("-journal"));
    report(
        QStringLiteral("the file is damaged; it was renamed to %1 and the settings start empty").arg(aside));
    return true;
}

bool SettingsDatabase::refreshCache()
{
    qint64 version = 0;
    int result;
    {
        Statement statement(m_dataVersion);
        result = statement.step();
        version = statement.integer(0);
    }
    if (!check(result))
        return false;
    if (version != m_cachedVersion) {
        m_cache.clear();
        m_cachedVersion = version;
    }
    return true;
}

std::optional<SettingsDatabase::Value> SettingsDatabase::read(QStringView key, QStringView name)
{
    if (!m_handle || !refreshCache())
        return std::nullopt;
    const FoldedName wanted = folded(key, name);
    if (const auto known = m_cache.constFind(wanted); known != m_cache.constEnd())
        return *known;
    std::optional<Value> value;
    int result;
    {
        Statement statement(m_select);
        statement.bind(1, wanted.first);
        statement.bind(2, wanted.second);
        result = statement.step();
        if (result == SQLITE_ROW)
            value = statement.value(0);
    }
    if (!check(result))
        return std::nullopt;
    m_cache.insert(wanted, value);
    return value;
}

bool SettingsDatabase::store(const Entry &entry)
{
    if (!m_handle || !isUsableName(entry.key) || !isUsableName(entry.name))
        return false;
    const FoldedName target = folded(entry.key, entry.name);
    int result;
    {
        Statement statement(m_upsert);
        statement.bind(1, target.first);
        statement.bind(2, target.second);
        statement.bind(3, QStringView(entry.key));
        statement.bind(4, QStringView(entry.name));
        if (const auto *text = std::get_if<QString>(&entry.value))
            statement.bind(5, upToZero(*text));
        else
            statement.bind(5, std::get<std::uint32_t>(entry.value));
        result = statement.step();
    }
    m_cache.clear();
    return check(result);
}

bool SettingsDatabase::erase(QStringView key, QStringView name)
{
    if (!m_handle)
        return false;
    const FoldedName target = folded(key, name);
    int result;
    {
        Statement statement(m_erase);
        statement.bind(1, target.first);
        statement.bind(2, target.second);
        result = statement.step();
    }
    m_cache.clear();
    return check(result);
}

std::vector<SettingsStore::Entry> SettingsDatabase::list(QStringView key)
{
    std::vector<Entry> found;
    if (!m_handle)
        return found;
    const QString wanted = key.toString().toCaseFolded();
    int result;
    {
        Statement statement(m_list);
        statement.bind(1, QStringView(wanted));
        while ((result = statement.step()) == SQLITE_ROW) {
            if (auto value = statement.value(2))
                found.push_back({statement.text(0), statement.text(1), std::move(*value)});
        }
    }
    if (!check(result))
        return {};
    return found;
}

bool SettingsDatabase::storeAll(const std::vector<Entry> &entries)
{
    const auto run = [&](const char *sql) {
        return m_handle && check(sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr));
    };
    if (!run("BEGIN IMMEDIATE"))
        return false;
    const bool stored =
        std::all_of(entries.begin(), entries.end(), [&](const Entry &entry) { return store(entry); });
    if (stored && run("COMMIT"))
        return true;
    if (m_handle)
        sqlite3_exec(m_handle, "ROLLBACK", nullptr, nullptr, nullptr); // Damage may have ended it already.
    m_cache.clear();
    return false;
}

} // namespace os
