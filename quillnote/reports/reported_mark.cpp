#include "quillnote/reports/reported_mark.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"

#include "host/aced/edfrontend.h"

#include <QRegularExpression>

double markOrder(std::uint16_t markNumber, std::uint16_t subNumber)
{
    double share = 100.0;
    while (subNumber >= share)
        share *= 10.0;
    return markNumber + subNumber / share;
}

std::optional<ReportedMark> readReportedMark(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark)
        return std::nullopt;
    ReportedMark read;
    read.id = id;
    read.number = markNumberText(mark->markNumber, mark->subNumber);
    read.order = markOrder(mark->markNumber, mark->subNumber);
    read.isHidden = mark->displayMode == DisplayMode::hidden;
    read.status = mark->feedbackType;
    read.opinion = mark->suggestionContent;
    read.feedback = mark->feedbackContent;
    read.reviewer = mark->suggestionName;
    read.designer = mark->feedbackName;
    read.reviewDate = markDateText(mark->createTime);
    if (mark->feedbackTime != 0)
        read.revisionDate = markDateText(mark->feedbackTime);
    return read;
}

// Browsers begin a tag at "<" and a letter, and go on with whatever follows until a ">", which may stand in a
// later text of the page. So what makes a tag run is looked for anywhere behind its beginning.
static bool isRunnable(const QString &text)
{
    static const QRegularExpression active(
        QStringLiteral(
            "<(script|i?frame|frameset|object|embed|applet|link|meta|base|form|style|svg|math|portal)"
            "(?![a-z0-9])"
            "|<[a-z].*?[\\s/\"'>]on[a-z]+\\s*="
            "|<[a-z].*?(java|vb)script"
            "|<[a-z].*?=\\s*[\"']?[^>]*&#"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    return text.contains(u'<') && active.match(text).hasMatch();
}

bool holdsRunnableMarkup(const ReportedMark &mark)
{
    return isRunnable(mark.opinion) || isRunnable(mark.feedback) || isRunnable(mark.reviewer) ||
           isRunnable(mark.designer);
}

void warnOfRunnableMarkup(const ReportedMark &mark)
{
    if (holdsRunnableMarkup(mark))
        acutPrintf(QStringLiteral("\n注意：评图标签 %1 的文字中有浏览器会执行的标记，网页按原文写出。")
                       .arg(mark.number));
}
