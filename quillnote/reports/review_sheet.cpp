#include "quillnote/reports/review_sheet.h"

#include "quillnote/entity/mark_values.h"
#include "quillnote/frame/settings/install_folder.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/report_html.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/reports/report_start.h"
#include "quillnote/reports/reported_mark.h"
#include "quillnote/reports/template_report.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edshell.h"

#include <QFileInfo>

QString sheetHead(const QString &drawing, const QString &reviewer)
{
    return report_html::kHead.toString() + QStringLiteral("<title>") + drawing +
           QStringLiteral("</title>\n"
                          "<style type=\"text/css\">\n"
                          "<!--\n"
                          ".STYLE1 {font-size: 18px}\n"
                          "-->\n"
                          "</style>\n"
                          "</head>\n"
                          "<body>\n"
                          "<p align=center class=STYLE1>图纸校审单</p>\n") +
           report_html::kTable.toString() +
           QStringLiteral(
               "  <tr>\n"
               "    <td width=4% height=50 valign=middle bgcolor=#99FFFF><div "
               "align=center>项目名称</div></td>\n"
               "    <td width=44% height=50 valign=middle bgcolor=#99FFFF><div align=center></div></td>\n"
               "     <td height=50 valign=middle bgcolor=#99FFFF>图纸编号：</td>\n"
               "    <td width=11% height=50 valign=middle bgcolor=#99FFFF><div align=center></div></td>\n"
               "  </tr>\n"
               "  <tr>\n"
               "    <td  height=50 valign=top bgcolor=#99FFFF><div align=center>图纸名称</div></td>\n"
               "    <td valign=middle bgcolor=#99FFFF><div align=center></div></td>\n"
               "    <td valign=middle bgcolor=#99FFFF>设计师：</td>\n"
               "    <td valign=middle bgcolor=#99FFFF><div align=center></div></td>\n"
               "  </tr>\n"
               "  <tr>\n"
               "    <td valign=top bgcolor=#99FFFF><div align=center>校审人</div></td>\n"
               "    <td valign=top bgcolor=#99FFFF><div align=center>\n") +
           reviewer +
           QStringLiteral("</div></td>\n"
                          "    <td width=15% valign=top bgcolor=#99FFFF>&nbsp;</td>\n"
                          "    <td width=26% valign=top bgcolor=#99FFFF>&nbsp;</td>\n"
                          "  </tr>\n"
                          "</table>\n") +
           report_html::kTable.toString() +
           QStringLiteral(
               "  <tr>\n"
               "    <td width=4% valign=top bgcolor=#99FF99><div align=center>序号</div></td>\n"
               "    <td width=44% valign=top bgcolor=#99FF99><div align=center>校审意见</div></td>\n"
               "    <td width=41% valign=top bgcolor=#99FF99><div align=center>反馈意见</div></td>\n"
               "    <td width=11% valign=top bgcolor=#99FF99><div align=center>处理方式</div></td>\n"
               "  </tr>\n");
}

QString sheetRow(const ReportedMark &mark)
{
    return QStringLiteral("  <tr>\n"
                          "    <td align=center valign=middle>") +
           mark.number +
           QStringLiteral("</td>\n"
                          "    <td valign=middle>\n") +
           report_html::cellText(mark.opinion) +
           QStringLiteral("</td>\n"
                          "    <td valign=middle>\n") +
           report_html::cellText(mark.feedback) +
           QStringLiteral("</td>\n"
                          "    <td valign=middle><div align=center>") +
           report_html::cellText(handling::statusText(mark.status)) +
           QStringLiteral("</div></td>\n"
                          "  </tr>\n");
}

QString sheetEnd()
{
    return QStringLiteral("</table>\n<br>\n</body>\n</html>\n");
}

void openSheet(const QString &path, const QString &toViewer)
{
    const QString viewer = installedFile(QStringLiteral("openSheet.exe"));
    if (QFileInfo(viewer).isFile()) {
        acutPrintf(toViewer.arg(path));
        acedOpenWithProgram(viewer, path);
        return;
    }
    acutPrintf(QStringLiteral("\n图纸校审单已输出为<%1>。").arg(path));
    acedOpenWithDesktop(path);
}

static void writeSheet()
{
    const auto start = startReport();
    if (!start)
        return;
    const QString path = sheetPath(start->drawing);
    auto file = ReportFile::create(path);
    if (!file)
        return;
    file->write(sheetHead(start->drawing, start->marks.reviewers.first()));
    for (const AcDbObjectId id : start->marks.ids) {
        const auto mark = readReportedMark(id);
        if (!mark || mark->isHidden)
            continue;
        warnOfRunnableMarkup(*mark);
        file->write(sheetRow(*mark));
    }
    file->write(sheetEnd());
    if (file->finish())
        openSheet(path, QStringLiteral("\n图纸校审单已输出为<%1>, 马上会自动打开。"));
}

static bool wantsTemplate()
{
    const QString path = settings::text(u"TempleteHTML").trimmed();
    if (path.isEmpty() || !QFileInfo(path).isFile())
        return false;
    if (settings::number(u"useTemplet") >= 1)
        return true;
    acedInitGet(0, QStringLiteral("Yes No"));
    QString answer;
    const int result = acedGetKword(QStringLiteral("是否按模板输出(Y/N)[Y]? "), answer);
    return result == RTNONE || (result == RTNORM && answer == QLatin1String("Yes"));
}

void QN3_outputHtmlWithNoPng()
{
    if (!savedDrawingPath())
        return;
    if (wantsTemplate())
        writeTemplateReport();
    else
        writeSheet();
}
