#include "app/console/output_paths.h"

#include "app/console/console_front_end.h"

#include "host/base/path_name.h"

#include <QDir>
#include <QFileInfo>

namespace console
{

static base::Result<void, QString> checkTarget(const QString &target, Overwrite overwrite)
{
    const bool exists = base::pathExists(target);
    if (exists && !base::isPlainFile(target))
        return base::Failure{QStringLiteral("%1 is no plain file").arg(target)};
    if (exists && overwrite == Overwrite::no)
        return base::Failure{QStringLiteral("%1 exists; -f overwrites it").arg(target)};
    return {};
}

static base::Result<QStringList, QString> intoFolder(const QStringList &files, const QString &folder)
{
    if (base::pathExists(folder) && !base::isFolder(folder))
        return base::Failure{QStringLiteral("%1 is no folder").arg(folder)};
    QStringList targets;
    for (const QString &file : files) {
        const QString target = QDir(folder).filePath(QFileInfo(file).fileName());
        if (targets.contains(target))
            return base::Failure{QStringLiteral("two files would become %1").arg(target)};
        targets.append(target);
    }
    return targets;
}

static base::Result<QStringList, QString> asFile(const QString &target)
{
    const QString folder = QFileInfo(target).path();
    if (!base::isFolder(folder))
        return base::Failure{QStringLiteral("there is no folder %1").arg(folder)};
    return QStringList{target};
}

base::Result<QStringList, QString> planOutputs(const QStringList &files, const QString &output,
                                               Overwrite overwrite)
{
    if (output.isEmpty())
        return QStringList(files.size(), QString());
    const bool isFolder = files.size() > 1 || output.endsWith(u'/') || base::isFolder(output);
    auto targets = isFolder ? intoFolder(files, output) : asFile(output);
    if (!targets)
        return targets;
    for (const QString &target : *targets) {
        if (const auto checked = checkTarget(target, overwrite); !checked)
            return base::Failure{checked.error()};
    }
    return targets;
}

base::Result<void, QString> planOneOutput(const QStringList &files, const QString &output,
                                          Overwrite overwrite)
{
    if (files.size() != 1)
        return base::Failure{
            QStringLiteral("%1 drawings cannot go into the one file %2").arg(files.size()).arg(output)};
    return planSharedOutput(output, overwrite);
}

base::Result<void, QString> planSharedOutput(const QString &output, Overwrite overwrite)
{
    if (const auto target = asFile(output); !target)
        return base::Failure{target.error()};
    return checkTarget(output, overwrite);
}

base::Result<void, QString> prepareOutput(const QString &target, Overwrite overwrite)
{
    const QString folder = QFileInfo(target).path();
    if (!base::isFolder(folder) && !QDir().mkpath(folder))
        return base::Failure{QStringLiteral("the folder of %1 cannot be made").arg(target)};
    return checkTarget(target, overwrite);
}

base::Result<void, QString> saveCopy(AcApDocument *document, const QString &target, Overwrite overwrite)
{
    if (!document)
        return base::Failure{QStringLiteral("the drawing was closed, %1 is not written").arg(target)};
    if (auto prepared = prepareOutput(target, overwrite); !prepared)
        return prepared;
    const auto whatIsThere =
        overwrite == Overwrite::yes ? AcApOverwriteChanged::no : AcApOverwriteChanged::nothing;
    for (const QString &loss : acDocManager()->lossesOfSaving(*document, target))
        printMessageLine(target + QStringLiteral(": ") + loss);
    const auto saved = acDocManager()->saveDocument(document, target, true, whatIsThere);
    if (!saved)
        return base::Failure{saved.error()};
    if (!saved->note.isEmpty())
        printMessageLine(saved->note);
    return {};
}

} // namespace console
