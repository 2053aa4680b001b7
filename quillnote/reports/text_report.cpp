#include "quillnote/reports/text_report.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/report_path.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"

static QString markText(const QuillnoteObj3 &mark, int position)
{
    QString text = QStringLiteral("第 %1 个审图意见：\n    ").arg(position) + mark.suggestionContent;
    if (!mark.feedbackContent.isEmpty())
        text += QStringLiteral("\n反馈意见：\n    ") + mark.feedbackContent;
    if (mark.feedbackType != handling::kNone)
        text += QStringLiteral("\n处理方式：") + handling::statusSentence(mark.feedbackType);
    return text + QStringLiteral("\n\n");
}

QString textReport(const AcDbDatabase &database)
{
    QString report;
    int position = 0;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        ++position;
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (mark)
            report += markText(*mark, position);
    }
    return report;
}

void QN3_QuillnoteOutputTxt()
{
    if (collectMarks(*acdbCurDwg()).ids.empty()) {
        acutPrintf(QStringLiteral("\n本图中无评图标签。"));
        return;
    }
    const QString drawing = drawingPath();
    if (drawing.isEmpty()) {
        acutPrintf(QStringLiteral("\n本图尚未命名存盘，请先存盘。然后重新执行本命令。"));
        return;
    }
    const QString path = textReportPath(drawing);
    if (!writeReportFile(path, textReport(*acdbCurDwg())))
        return;
    acutPrintf(QStringLiteral("\n标记文本已输出为<%1>。").arg(path));
    openReport(path);
}
