#include "quillnote/reports/web_report.h"

#include "quillnote/entity/mark_values.h"
#include "quillnote/reports/mark_view_picture.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/report_html.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/reports/report_start.h"
#include "quillnote/reports/reported_mark.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"

#include <QFileInfo>

QString webReportHead(const QString &drawing)
{
    return report_html::kHead.toString() + QStringLiteral("<title>") + drawing +
           QStringLiteral("</title>\n</head>\n<body>\n<p>") + drawing + QStringLiteral("</p>\n");
}

static QString nameCell(const QString &name, int widthOfEmpty)
{
    const int width = name.isEmpty() ? widthOfEmpty : 10;
    return QStringLiteral("    <td width=%1% valign=top bgcolor=#99FFFF><div align=center>").arg(width) +
           report_html::cellText(name) + QStringLiteral("</td>\n");
}

static QString statusOfMark(const ReportedMark &mark)
{
    const QString text = handling::statusSentence(mark.status);
    return text.isEmpty() ? QStringLiteral("未知。") : text;
}

QString webReportMark(const ReportedMark &mark, const QString &picture)
{
    return report_html::kTable.toString() +
           QStringLiteral("  <tr>\n"
                          "    <td width=56% rowspan=4><img src=\"\nPNG\\") +
           picture +
           QStringLiteral("\"></td>\n"
                          "    <td width=5% valign=top bgcolor=#99FFFF><div align=center>校审人</td>\n") +
           nameCell(mark.reviewer, 10) +
           QStringLiteral("    <td width=11% valign=top bgcolor=#99FFFF><div align=center>设计师</td>") +
           nameCell(mark.designer, 9) +
           QStringLiteral("    <td width=9% valign=top bgcolor=#99FFFF><div align=center>") + mark.number +
           QStringLiteral("</td>\n"
                          "  </tr>\n  <tr>\n"
                          "    <td valign=top>校审意见</td>\n"
                          "    <td colspan=4 valign=top>\n") +
           report_html::cellText(mark.opinion) +
           QStringLiteral("</td>\n"
                          "  </tr>\n"
                          "  <tr>\n"
                          "    <td valign=top>反馈意见</td>\n"
                          "    <td colspan=4 valign=top>") +
           report_html::cellText(mark.feedback) +
           QStringLiteral("</td>\n"
                          "  </tr>\n"
                          "  <tr>\n"
                          "    <td valign=top>处理方式</td>\n"
                          "    <td colspan=4 valign=top>") +
           statusOfMark(mark) +
           QStringLiteral("</td>\n"
                          "  </tr>\n"
                          "</table>\n"
                          "<br>\n\n");
}

QString webReportEnd()
{
    return QStringLiteral("</body>\n</html>\n");
}

void QN3_outputHtml()
{
    const auto start = startReport();
    if (!start)
        return;
    const QString path = webReportPath(start->drawing);
    auto file = ReportFile::create(path);
    if (!file)
        return;
    acedAlert(QStringLiteral("为了在网页中排版合理，建议在执行此命令之前，适当缩小AutoCAD的窗口，"
                             "大约为屏幕宽度的1/2至2/3宽度较为合适！"));
    file->write(webReportHead(start->drawing));
    MarkViewPictures pictures;
    for (const AcDbObjectId id : start->marks.ids) {
        const auto mark = readReportedMark(id);
        if (!mark || mark->isHidden)
            continue;
        warnOfRunnableMarkup(*mark);
        file->write(webReportMark(*mark, QFileInfo(pictures.take(id)).fileName()));
    }
    file->write(webReportEnd());
    if (!file->finish())
        return;
    acutPrintf(QStringLiteral("\n网页版标记已输出为<%1>。").arg(path));
    acedOpenWithDesktop(path);
}
