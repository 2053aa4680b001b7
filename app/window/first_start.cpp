#include "app/window/first_start.h"

#include "host/aced/edfrontend.h"
#include "host/base/file_bytes.h"

#include <QCoreApplication>
#include <QDir>

namespace window
{

static void take(os::SettingsStore &store, const QString &path)
{
    const auto bytes = base::readFileBytes(path);
    if (!bytes)
        return;
    const std::string_view text = bytes->view();
    const auto imported = os::importSettings(store, QByteArrayView(text.data(), qsizetype(text.size())));
    if (!imported)
        acutPrintf(
            QStringLiteral("\n%1:%2: %3").arg(path).arg(imported.error().line).arg(imported.error().reason));
}

void takeFirstSettings(os::SettingsStore &store, const QString &language)
{
    if (!store.isOpen() || !store.entries().empty())
        return;
    const QDir share(QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share")));
    for (const QString &folder : share.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        take(store, share.filePath(folder + QStringLiteral("/first-settings.txt")));
        take(store, share.filePath(folder + QStringLiteral("/first-settings_%1.txt").arg(language)));
    }
}

} // namespace window
