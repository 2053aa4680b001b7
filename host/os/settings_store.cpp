#include "host/os/settings_store.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

#include <algorithm>
#include <cstdio>
#include <utility>

#include <sqlite3.h>
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
static constexpr int kBusyMilliseconds = 5000; // Longer than any write of another program takes.

static SettingsStore::MessageHandler &messageHandler()
{
    static SettingsStore::MessageHandler handler = [](const QString &message) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
    };
    return handler;
}

void SettingsStore::setMessageHandler(MessageHandler handler)
{
    messageHandler() = std::move(handler);
}

using Value = std::variant<std::uint32_t, QString>;

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

    /// The text must live until the statement has run.
    void bind(int place, QStringView text)
    {
        static constexpr char16_t kEmpty[] = u""; // A null pointer would bind NULL.
        sqlite3_bind_text16(m_statement, place, text.isEmpty() ? kEmpty : text.utf16(),
                            static_cast<int>(text.size() * 2), SQLITE_STATIC);
    }
    void bind(int place, std::uint32_t number) { sqlite3_bind_int64(m_statement, place, number); }
    int step() { return sqlite3_step(m_statement); }

    QString text(int column) const
    {
        const auto *units = static_cast<const QChar *>(sqlite3_column_text16(m_statement, column));
        return QString(units, sqlite3_column_bytes16(m_statement, column) / 2);
    }
    std::optional<Value> value(int column) const
    {
        if (sqlite3_column_type(m_statement, column) == SQLITE_INTEGER)
            return Value(static_cast<std::uint32_t>(sqlite3_column_int64(m_statement, column)));
        if (sqlite3_column_type(m_statement, column) == SQLITE_TEXT)
            return Value(text(column));
        return std::nullopt; // Not ours.
    }
    qint64 integer(int column) const { return sqlite3_column_int64(m_statement, column); }

private:
    sqlite3_stmt *m_statement;
};

using FoldedName = std::pair<QString, QString>;

} // namespace

static FoldedName folded(QStringView key, QStringView name)
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

/// The open file. Its cache answers reads while the file has not changed; SQLite's data version tells
/// whether another program has written, the own writes empty the cache.
struct SettingsStore::Database {
    explicit Database(const QString &path) : file(path) { open(); }
    ~Database() { close(); }
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    void open();
    int tryOpen();
    int prepareAll();
    void close();
    bool setAside();
    bool execute(const char *sql);
    bool check(int result);
    void report(const QString &what);
    bool cacheIsCurrent();
    std::optional<Value> read(QStringView key, QStringView name);
    bool store(const Entry &entry);

    QString file;
    sqlite3 *handle = nullptr;
    sqlite3_stmt *select = nullptr;
    sqlite3_stmt *upsert = nullptr;
    sqlite3_stmt *erase = nullptr;
    sqlite3_stmt *list = nullptr;
    sqlite3_stmt *dataVersion = nullptr;
    ino_t inode = 0;
    int lastReported = SQLITE_OK;
    qint64 cachedVersion = -1;
    QHash<FoldedName, std::optional<Value>> cache;
};

static bool isDamage(int result)
{
    return (result & 0xFF) == SQLITE_NOTADB || (result & 0xFF) == SQLITE_CORRUPT;
}

static ino_t inodeOf(const QString &file)
{
    struct stat status;
    return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? status.st_ino : 0;
}

void SettingsStore::Database::report(const QString &what)
{
    if (messageHandler())
        messageHandler()(QStringLiteral("Settings file %1: %2").arg(QDir::toNativeSeparators(file), what));
}

/// One report for a trouble that repeats. Damage ends the use of the file: no statement may be in use.
bool SettingsStore::Database::check(int result)
{
    if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE)
        return true;
    if (isDamage(result)) {
        open();
    } else if (result != lastReported) {
        lastReported = result;
        report(QString::fromUtf8(sqlite3_errstr(result)));
    }
    return false;
}

void SettingsStore::Database::open()
{
    const bool wasOpen = handle != nullptr;
    int result = wasOpen ? SQLITE_CORRUPT : tryOpen();
    if (isDamage(result) && setAside())
        result = tryOpen();
    if (result == SQLITE_OK)
        return;
    close();
    lastReported = result;
    report(QString::fromUtf8(sqlite3_errstr(result)));
}

int SettingsStore::Database::tryOpen()
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    const QByteArray path = QFile::encodeName(file);
    int result =
        sqlite3_open_v2(path.constData(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (result != SQLITE_OK)
        return result;
    sqlite3_busy_timeout(handle, kBusyMilliseconds);
    inode = inodeOf(file);

    sqlite3_stmt *version = nullptr;
    result = sqlite3_prepare_v2(handle, "PRAGMA user_version", -1, &version, nullptr);
    int found = 0;
    if (result == SQLITE_OK) {
        result = sqlite3_step(version);
        found = sqlite3_column_int(version, 0);
    }
    sqlite3_finalize(version);
    if (result != SQLITE_ROW)
        return result;
    if (found > kSchemaVersion) {
        report(QStringLiteral("written by a newer version of this program"));
        return SQLITE_SCHEMA;
    }
    if (found < kSchemaVersion) {
        result = sqlite3_exec(handle, kSchema, nullptr, nullptr, nullptr);
        if (result != SQLITE_OK)
            return result;
    }
    result = sqlite3_exec(handle, kOpenSql, nullptr, nullptr, nullptr);
    return result == SQLITE_OK ? prepareAll() : result;
}

int SettingsStore::Database::prepareAll()
{
    const std::pair<sqlite3_stmt **, const char *> all[] = {
        {&select, "SELECT value FROM setting WHERE folded_key=?1 AND folded_name=?2"},
        // A key keeps its first spelling for the values that join it later, a value keeps its own.
        {&upsert, "INSERT INTO setting VALUES (?1, ?2,"
                  " coalesce((SELECT key FROM setting WHERE folded_key=?1 LIMIT 1), ?3), ?4, ?5)"
                  " ON CONFLICT DO UPDATE SET value=excluded.value"},
        {&erase, "DELETE FROM setting WHERE folded_key=?1 AND folded_name=?2"},
        // "]" follows "\" in the order of characters.
        {&list, "SELECT key, name, value FROM setting WHERE ?1='' OR folded_key=?1"
                " OR (folded_key > ?1 || '\\' AND folded_key < ?1 || ']') ORDER BY folded_key, folded_name"},
        {&dataVersion, "PRAGMA data_version"},
    };
    for (const auto &[statement, sql] : all) {
        const int result = sqlite3_prepare_v3(handle, sql, -1, SQLITE_PREPARE_PERSISTENT, statement, nullptr);
        if (result != SQLITE_OK)
            return result;
    }
    return SQLITE_OK;
}

void SettingsStore::Database::close()
{
    for (sqlite3_stmt **statement : {&select, &upsert, &erase, &list, &dataVersion})
        sqlite3_finalize(std::exchange(*statement, nullptr));
    sqlite3_close_v2(std::exchange(handle, nullptr));
    cache.clear();
    cachedVersion = -1;
}

/// Renames the damaged file, unless another program has put a fresh one in its place already.
bool SettingsStore::Database::setAside()
{
    close();
    if (inodeOf(file) != inode)
        return true;
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmsszzz"));
    const QString aside = file + QStringLiteral(".damaged-") + stamp;
    if (!QFile::rename(file, aside)) {
        report(QStringLiteral("the file is damaged and cannot be renamed"));
        return false;
    }
    // A journal left beside it belongs to the old file and would be played back into the new one.
    QFile::rename(file + QStringLiteral("-journal"), aside + QStringLiteral("-journal"));
    report(
        QStringLiteral("the file is damaged; it was renamed to %1 and the settings start empty").arg(aside));
    return true;
}

bool SettingsStore::Database::execute(const char *sql)
{
    return handle && check(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr));
}

bool SettingsStore::Database::cacheIsCurrent()
{
    qint64 version = 0;
    int result;
    {
        Statement statement(dataVersion);
        result = statement.step();
        version = statement.integer(0);
    }
    if (!check(result))
        return false;
    if (version != cachedVersion) {
        cache.clear();
        cachedVersion = version;
    }
    return true;
}

std::optional<Value> SettingsStore::Database::read(QStringView key, QStringView name)
{
    if (!handle || !cacheIsCurrent())
        return std::nullopt;
    FoldedName wanted = folded(key, name);
    if (const auto known = cache.constFind(wanted); known != cache.constEnd())
        return *known;
    std::optional<Value> value;
    int result;
    {
        Statement statement(select);
        statement.bind(1, wanted.first);
        statement.bind(2, wanted.second);
        result = statement.step();
        if (result == SQLITE_ROW)
            value = statement.value(0);
    }
    if (!check(result))
        return std::nullopt;
    cache.insert(std::move(wanted), value);
    return value;
}

bool SettingsStore::Database::store(const Entry &entry)
{
    if (!handle || !isUsableName(entry.key) || !isUsableName(entry.name))
        return false;
    const FoldedName target = folded(entry.key, entry.name);
    int result;
    {
        Statement statement(upsert);
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
    cache.clear();
    return check(result);
}

SettingsStore::SettingsStore(const QString &file) : m_database(std::make_unique<Database>(file)) {}

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
    return m_database->handle != nullptr;
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
    Database &database = *m_database;
    if (!database.handle)
        return false;
    const FoldedName target = folded(key, name);
    int result;
    {
        Statement statement(database.erase);
        statement.bind(1, target.first);
        statement.bind(2, target.second);
        result = statement.step();
    }
    database.cache.clear();
    return database.check(result);
}

std::vector<SettingsStore::Entry> SettingsStore::entries(QStringView key) const
{
    Database &database = *m_database;
    std::vector<Entry> found;
    if (!database.handle)
        return found;
    const QString wanted = key.toString().toCaseFolded();
    int result;
    {
        Statement statement(database.list);
        statement.bind(1, QStringView(wanted));
        while ((result = statement.step()) == SQLITE_ROW) {
            if (auto value = statement.value(2))
                found.push_back({statement.text(0), statement.text(1), std::move(*value)});
        }
    }
    if (!database.check(result))
        return {};
    return found;
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
    Database &database = *m_database;
    if (!database.execute("BEGIN IMMEDIATE"))
        return false;
    const bool stored = std::all_of(entries.begin(), entries.end(),
                                    [&](const Entry &entry) { return database.store(entry); });
    if (stored && database.execute("COMMIT"))
        return true;
    if (database.handle)
        sqlite3_exec(database.handle, "ROLLBACK", nullptr, nullptr, nullptr);
    database.cache.clear();
    return false;
}

} // namespace os
