// An SQLite file. Everything that fails throws Trouble, which whoever stands above catches once.
#pragma once

#include <QString>
#include <QVariant>

#include <stdexcept>

#include <sqlite3.h>

namespace sql
{

/// Says in the user's language what could not be done.
class Trouble : public std::runtime_error
{
public:
    explicit Trouble(const QString &what) : std::runtime_error(what.toStdString()) {}
};

/// What a new file gets. A file of a higher version is refused.
struct Schema {
    const char *statements; ///< Without those that make it all or nothing.
    int version = 1;        ///< Above 0; a schema that changes gets the next one.
};

class Database
{
public:
    /// Opens or creates the file and its folder. ":memory:" is a file that nobody keeps.
    Database(const QString &path, const Schema &schema);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// Nothing was in the file before.
    bool isNew() const { return m_isNew; }
    void run(const char *statements);
    int changes() const { return sqlite3_changes(m_handle); }
    sqlite3 *handle() const { return m_handle; }
    [[noreturn]] void fail() const;

private:
    void createTables(const Schema &schema);

    sqlite3 *m_handle = nullptr;
    bool m_isNew = false;
};

/// All or nothing: rolled back unless commit() was called.
class Transaction
{
public:
    explicit Transaction(Database &database) : m_database(database) { m_database.run("BEGIN IMMEDIATE"); }
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    void commit();

private:
    Database &m_database;
    bool m_isOpen = true;
};

/// One statement with its values: Query(database, "SELECT ...", {a, b}); while (query.next()) query.text(0);
class Query
{
public:
    Query(const Database &database, const QString &sql, const QVariantList &values = {});
    ~Query();
    Query(const Query &) = delete;
    Query &operator=(const Query &) = delete;

    /// False behind the last row.
    bool next();
    QString text(int column) const;
    QByteArray bytes(int column) const;
    qint64 number(int column) const { return sqlite3_column_int64(m_statement, column); }

private:
    const Database &m_database;
    sqlite3_stmt *m_statement = nullptr;
};
/// For statements without rows.
void execute(const Database &database, const QString &sql, const QVariantList &values = {});

} // namespace sql
