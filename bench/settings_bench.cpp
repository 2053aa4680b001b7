// Claim: a setting is read in microseconds, so that commands may read settings at the moment of use. The peer
// is SQLite answering the same question with a prepared statement and no cache.
//
// usage: bench_settings
#include "bench/stopwatch.h"
#include "host/os/settings_store.h"

#include <QTemporaryDir>

#include <cstdio>
#include <sqlite3.h>

static constexpr int kReads = 200'000;
static constexpr int kValues = 60;

static double peerSeconds(const QString &path)
{
    sqlite3 *database = nullptr;
    sqlite3_stmt *query = nullptr;
    if (sqlite3_open(path.toUtf8().constData(), &database) != SQLITE_OK ||
        sqlite3_prepare_v2(database, "SELECT 1 FROM sqlite_schema WHERE name = ?", -1, &query, nullptr) !=
            SQLITE_OK)
        return 0.0;
    const double taken = bench::seconds([&] {
        for (int i = 0; i < kReads; ++i) {
            sqlite3_bind_text(query, 1, "none", -1, SQLITE_STATIC);
            sqlite3_step(query);
            sqlite3_reset(query);
        }
    });
    sqlite3_finalize(query);
    sqlite3_close(database);
    return taken;
}

int main()
{
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    const QString key = QStringLiteral("Software\\Bench");
    os::SettingsStore &store = os::SettingsStore::user();
    std::vector<QString> names;
    for (int i = 0; i < kValues; ++i) {
        names.push_back(QStringLiteral("value%1").arg(i));
        store.setNumber(key, names.back(), std::uint32_t(i));
    }
    std::uint64_t sum = 0;
    const double own = bench::seconds([&] {
        for (int i = 0; i < kReads; ++i)
            sum += store.number(key, names[std::size_t(i % kValues)]).value_or(0);
    });
    const double peer = peerSeconds(folder.filePath(QStringLiteral("quillnote/settings.sqlite")));
    std::printf(
        "%.0f settings reads a second; a prepared statement of its own: %.0f; ratio %.2f (sum %llu)\n",
        kReads / own, kReads / peer, own / peer, static_cast<unsigned long long>(sum));
}
