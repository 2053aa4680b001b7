#include "app/window/recent_files.h"

#include "host/os/settings_store.h"

#include <QFileInfo>

namespace window
{

static const QString kKey = QStringLiteral("Software\\Quillnote\\Window");
static const QString kRecent = QStringLiteral("Recent%1");
static constexpr int kMost = 10;

QStringList RecentFiles::list()
{
    QStringList files;
    for (int i = 0; i < kMost; ++i) {
        if (const auto file = os::SettingsStore::user().text(kKey, kRecent.arg(i)); file && !file->isEmpty())
            files += *file;
    }
    return files;
}

static void store(const QStringList &files)
{
    for (int i = 0; i < kMost; ++i) {
        if (i >= files.size())
            os::SettingsStore::user().remove(kKey, kRecent.arg(i));
        else if (os::SettingsStore::user().text(kKey, kRecent.arg(i)) != files[i])
            os::SettingsStore::user().setText(kKey, kRecent.arg(i), files[i]);
    }
}

void RecentFiles::add(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList files = list();
    if (!files.isEmpty() && files.constFirst() == absolute)
        return;
    files.removeAll(absolute);
    files.prepend(absolute);
    store(files.mid(0, kMost));
}

void RecentFiles::remove(const QString &path)
{
    QStringList files = list();
    files.removeAll(path);
    store(files);
}

QByteArray keptState(const QString &name)
{
    return QByteArray::fromBase64(os::SettingsStore::user().text(kKey, name).value_or(QString()).toLatin1());
}

void keepState(const QString &name, const QByteArray &state)
{
    os::SettingsStore::user().setText(kKey, name, QString::fromLatin1(state.toBase64()));
}

} // namespace window
