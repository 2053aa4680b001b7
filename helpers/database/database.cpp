#include "helpers/database/database.h"

#include "host/base/host_text.h"

#include <QDir>
#include <QFileInfo>

namespace sql
{

static constexpr int kBusyMilliseconds = 5000;

Database::Database(const QString &path, const Schema &schema)
{
    if (path != u":memory:")
        QDir().mkpath(QFileInfo(path).absolutePath());
    if (sqlite3_open_v2(path.toUtf8().constData(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        const QString reason = QString::fromUtf8(sqlite3_errmsg(m_handle));
        sqlite3_close(m_handle);
        throw Trouble(Host::tr("数据库文件 %1 不能打开：%2").arg(path, reason));
    }
    try {
        sqlite3_busy_timeout(m_handle, kBusyMilliseconds);
        run("PRAGMA foreign_keys = ON");
        createTables(schema);
    } catch (...) {
        sqlite3_close(m_handle);
        throw;
    }
}

Database::~Database()
{
    sqlite3_close(m_handle);
}

static qint64 versionOf(const Database &database)
{
    Query query(database, QStringLiteral("PRAGMA user_version"));
    return query.next() ? query.number(0) : 0;
}

void Database::createTables(const Schema &schema)
{
    const qint64 version = versionOf(*this);
    if (version > schema.version)
        throw Trouble(Host::tr("数据库文件是更新版本的程序写的。"));
    if (version == schema.version)
        return;
    try {
        Transaction all(*this);
        run(schema.statements);
        run(QStringLiteral("PRAGMA user_version = %1").arg(schema.version).toUtf8().constData());
        all.commit();
        m_isNew = true;
    } catch (const Trouble &) {
        // Another program may have made them at the same moment.
        if (versionOf(*this) != schema.version)
            throw;
    }
}

void Database::fail() const
{
    throw Trouble(Host::tr("数据库不能读写：%1").arg(QString::fromUtf8(sqlite3_errmsg(m_handle))));
}

void Database::run(const char *statements)
{
    if (sqlite3_exec(m_handle, statements, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

Transaction::~Transaction()
{
    if (m_isOpen)
        sqlite3_exec(m_database.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    m_database.run("COMMIT");
    m_isOpen = false;
}

Query::Query(const Database &database, const QString &sql, const QVariantList &values) : m_database(database)
{
    const QByteArray utf8 = sql.toUtf8();
    if (sqlite3_prepare_v2(database.handle(), utf8.constData(), int(utf8.size()), &m_statement, nullptr) !=
        SQLITE_OK)
        database.fail();
    for (int i = 0; i < values.size(); ++i) {
        if (values[i].typeId() == QMetaType::QString) {
            const QByteArray text = values[i].toString().toUtf8();
            sqlite3_bind_text(m_statement, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
        } else if (values[i].typeId() == QMetaType::QByteArray) {
            const QByteArray bytes = values[i].toByteArray();
            sqlite3_bind_blob64(m_statement, i + 1, bytes.constData(), sqlite3_uint64(bytes.size()),
                                SQLITE_TRANSIENT);
        } else {
            sqlite3_bind_int64(m_statement, i + 1, values[i].toLongLong());
        }
    }
}

Query::~Query()
{
    sqlite3_finalize(m_statement);
}

bool Query::next()
{
    const int result = sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        m_database.fail();
    return result == SQLITE_ROW;
}

QString Query::text(int column) const
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column)),
                             sqlite3_column_bytes(m_statement, column));
}

QByteArray Query::bytes(int column) const
{
    return {static_cast<const char *>(sqlite3_column_blob(m_statement, column)),
            sqlite3_column_bytes(m_statement, column)};
}

void execute(const Database &database, const QString &sql, const QVariantList &values)
{
    Query query(database, sql, values);
    while (query.next()) {
    }
}

} // namespace sql
