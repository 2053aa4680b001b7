#include "quillnote/reports/text_report.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/reports/report_start.h"
#include "quillnote/reports/reported_mark.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edshell.h"

static QString markText(const ReportedMark &mark, int position)
{
    QString text = QStringLiteral("第 %1 个审图意见：\n    ").arg(position) + mark.opinion;
    if (!mark.feedback.isEmpty())
        text += QStringLiteral("\n反馈意见：\n    ") + mark.feedback;
    if (mark.status != handling::kNone)
        text += QStringLiteral("\n处理方式：") + handling::statusSentence(mark.status);
    return text + QStringLiteral("\n\n");
}

QString textReport(const AcDbDatabase &database)
{
    QString report;
    int position = 0;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        ++position;
        if (const auto mark = readReportedMark(id))
            report += markText(*mark, position);
    }
    return report;
}

void QN3_QuillnoteOutputTxt()
{
    const auto start = startReport();
    if (!start)
        return;
    const QString path = textReportPath(start->drawing);
    if (!writeReportFile(path, textReport(*acdbCurDwg())))
        return;
    acutPrintf(QStringLiteral("\n标记文本已输出为<%1>。").arg(path));
    acedOpenWithDesktop(path);
}
