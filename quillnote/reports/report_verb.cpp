#include "quillnote/reports/report_verb.h"

#include "quillnote/authoring/mark_set.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/reported_mark.h"
#include "quillnote/reports/text_report.h"

#include "host/acap/docman.h"

#include <QJsonObject>

/// What the text report says of each mark.
static void printAsJson(const CollectedMarks &marks)
{
    int position = 0;
    for (const AcDbObjectId id : marks.ids) {
        ++position;
        if (const auto mark = readReportedMark(id))
            acedPrintResult(
                QJsonObject{{QStringLiteral("file"), curDoc()->fileName()},
                            {QStringLiteral("handle"), QString::number(id.handle().value, 16).toUpper()},
                            {QStringLiteral("position"), position},
                            {QStringLiteral("suggestionContent"), mark->opinion},
                            {QStringLiteral("feedbackContent"), mark->feedback},
                            {QStringLiteral("feedbackType"), mark->status}});
    }
}

/// Standard output gets the report unless a file does.
static int report(const AcEdVerbCall &call)
{
    const CollectedMarks marks = collectAllMarks(*acdbCurDwg());
    const auto output = call.options.find(QStringLiteral("--output"));
    const bool intoFile = output != call.options.end();
    if (call.json)
        printAsJson(marks);
    if (marks.ids.empty() || (call.json && !intoFile))
        return 0;
    const QString text = textReport(*acdbCurDwg());
    if (!intoFile)
        acedPrintResult(text);
    return !intoFile || writeReportFile(output->second, text) ? 0 : 2;
}

AcEdVerb reportVerb()
{
    return {QStringLiteral("report"),
            QStringLiteral("Print the text report, or write it to a file as the report command does"),
            {{QStringLiteral("--output"), QStringLiteral("FILE"), QStringLiteral("Write to this file.")}},
            report};
}
