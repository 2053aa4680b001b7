#include "quillnote/exchange/exchange_files.h"

#include "quillnote/frame/settings/settings.h"

#include "host/aced/edmessage.h"
#include "host/os/clock.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

static constexpr settings::Text kFolderSetting = u"synFileUploadPath";
static constexpr int kMostComplaints = 5;

static QString withSlash(QString folder)
{
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

static QString usableFolder(const QString &wanted)
{
    if (wanted.isEmpty())
        return withSlash(QDir::tempPath());
    if (QDir().mkpath(wanted))
        return withSlash(wanted);
    acedAlert(QStringLiteral("创建文件夹 %1 失败.").arg(wanted));
    return withSlash(QDir::tempPath());
}

// Milliseconds taken for seconds make digits that differ from one moment to the next.
static QString digitsOfTheMoment()
{
    return QDateTime::fromSecsSinceEpoch(os::milliseconds()).toString(QStringLiteral("HHmmss"));
}

QString unusedFileName(QString folder, const QString &prefix, const QString &ending)
{
    folder = usableFolder(folder);
    const QString dotted = ending.isEmpty() || ending.startsWith(u'.') ? ending : u'.' + ending;
    const QString begin = folder + prefix + digitsOfTheMoment();
    for (int counter = 1;; ++counter) {
        const QString path = begin + QString::number(counter) + dotted;
        if (!QFile::exists(path))
            return path;
    }
}

static void complain(const QString &folder)
{
    acedAlert(
        QStringLiteral("创建同步用临时读写文件夹<%1>失败, 请手工创建一个可以读写的文件夹并指定给同步使用。")
            .arg(folder));
}

/// A folder of the user's own data; empty when it cannot be made.
static QString ownFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
                           QStringLiteral("/synFileUploadPath/");
    if (!QDir().mkpath(folder))
        return {};
    settings::setText(kFolderSetting, folder);
    return folder;
}

static bool takesFiles(const QString &folder)
{
    if (!QDir().mkpath(folder))
        return false;
    QFile file(unusedFileName(folder, QStringLiteral("test_"), {}));
    const bool written = file.open(QIODevice::NewOnly) && file.write("test") == 4;
    file.close();
    return written && file.remove();
}

/// Forgets the folder and says so, until it has been said often enough.
static void giveUp(const QString &folder)
{
    static int complaints = 0;
    if (complaints >= kMostComplaints)
        return;
    ++complaints;
    settings::setText(kFolderSetting, {});
    complain(folder);
}

QString synchronisationFolder(FolderTest test)
{
    QString folder = settings::text(kFolderSetting).trimmed();
    if (folder.isEmpty())
        folder = ownFolder();
    if (folder.isEmpty()) {
        complain({});
        return {};
    }
    folder = withSlash(folder);
    if (test == FolderTest::write && !takesFiles(folder)) {
        giveUp(folder);
        return {};
    }
    return folder;
}
