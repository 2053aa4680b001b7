#include "quillnote/exchange/data_verbs.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/exchange/export_marks.h"
#include "quillnote/exchange/import_marks.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/base/atomic_file.h"
#include "host/base/path_name.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <set>

static const QString kFolder = QStringLiteral("-o");
static const QString kOverwrite = QStringLiteral("-f");
static const QString kForce = QStringLiteral("--force");

static int trouble(const QString &reason)
{
    acutPrintf(u'\n' + reason);
    return 2;
}

// Export -------------------------------------------------------------------------------------------------

/// "plan.Quillnote" beside the drawing, or in the folder of "-o".
static QString targetOf(const AcEdVerbCall &call)
{
    const QFileInfo drawing(curDoc()->fileName());
    const QString folder = call.has(kFolder) ? call.options.at(kFolder) : drawing.absolutePath();
    return QDir(folder).filePath(drawing.completeBaseName() + QStringLiteral(".Quillnote"));
}

static void tellExported(const AcEdVerbCall &call, const QString &target, const MarkData &data)
{
    if (call.json)
        acedPrintResult(QJsonObject{{QStringLiteral("file"), curDoc()->fileName()},
                                    {QStringLiteral("written"), target},
                                    {QStringLiteral("marks"), qint64(data.marks.size())},
                                    {QStringLiteral("ticks"), qint64(data.ticks.size())}});
    else
        acedPrintResult(QStringLiteral("%1: %2 marks, %3 ticks\n")
                            .arg(target)
                            .arg(data.marks.size())
                            .arg(data.ticks.size()));
}

static int exportMarks(const AcEdVerbCall &call, std::set<QString> &written)
{
    const MarkData data = marksOf(*acdbCurDwg());
    if (data.marks.empty() && data.ticks.empty()) {
        acutPrintf(QStringLiteral("\n%1 has no marks: nothing is written").arg(curDoc()->fileName()));
        return 0;
    }
    if (!fitsIntoFile(data))
        return 2;
    const QString target = targetOf(call);
    if (!written.insert(target).second)
        return trouble(QStringLiteral("%1 would hold the marks of two drawings").arg(target));
    if (base::pathExists(target) && !call.has(kOverwrite))
        return trouble(QStringLiteral("%1 exists already; -f overwrites it").arg(target));
    if (call.has(kFolder) && !QDir().mkpath(call.options.at(kFolder)))
        return trouble(QStringLiteral("the folder %1 cannot be made").arg(call.options.at(kFolder)));
    if (const auto done = base::writeFileAtomically(target, encodeMarkData(data)); !done)
        return trouble(done.error().text());
    tellExported(call, target, data);
    return 0;
}

AcEdVerb dataExportVerb()
{
    AcEdVerb verb;
    verb.name = QStringLiteral("data export");
    verb.help = QStringLiteral("Write the marks and ticks of each drawing into a mark data file beside it");
    verb.options = {
        {kFolder, QStringLiteral("DIR"), QStringLiteral("Write the data files into this folder.")},
        {kOverwrite, {}, QStringLiteral("Overwrite data files that exist.")}};
    const auto written = std::make_shared<std::set<QString>>();
    verb.run = [written](const AcEdVerbCall &call) { return exportMarks(call, *written); };
    return verb;
}

// Import -------------------------------------------------------------------------------------------------

/// 1 when the drawing does not get all of it, so that scripts notice.
static int importFile(const QString &path, WhenInDoubt doubt)
{
    switch (importMarkDataFile(path, doubt)) {
    case ImportedFile::unreadable:
        return 2;
    case ImportedFile::refused:
        acutPrintf(QStringLiteral("\n%1 is left out").arg(path));
        if (doubt == WhenInDoubt::refuse)
            acutPrintf(QStringLiteral("; --force imports what can be read"));
        return 2;
    case ImportedFile::partly:
        return 1;
    case ImportedFile::whole:
        break;
    }
    return 0;
}

static int importFiles(const AcEdVerbCall &call)
{
    const WhenInDoubt doubt = call.has(kForce) ? WhenInDoubt::import : WhenInDoubt::refuse;
    int status = 0;
    for (const QString &path : call.more) {
        status = std::max(status, importFile(path, doubt));
        if (status == 2)
            return status;
    }
    const auto marks = qint64(collectMarks(*acdbCurDwg()).ids.size());
    if (call.json)
        acedPrintResult(
            QJsonObject{{QStringLiteral("file"), curDoc()->fileName()}, {QStringLiteral("marks"), marks}});
    else
        acedPrintResult(QStringLiteral("%1 marks\n").arg(marks));
    return status;
}

AcEdVerb dataImportVerb()
{
    AcEdVerb verb;
    verb.name = QStringLiteral("data import");
    verb.help = QStringLiteral("Take mark data files into a drawing");
    verb.options = {
        {kForce, {}, QStringLiteral("Import files of other drawings, and what is whole of damaged ones.")}};
    verb.saving = AcEdVerbSaving::required;
    verb.more = QStringLiteral("DATA");
    verb.run = importFiles;
    return verb;
}
