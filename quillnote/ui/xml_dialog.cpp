#include "quillnote/ui/xml_dialog.h"

#include <QApplication>

CToXmlDlg::CToXmlDlg(const std::vector<TemplateDialogRow> &rows, const QString &fileName, QWidget *parent)
    : CTmpExcel(rows, fileName, parent)
{
    setWindowTitle(QStringLiteral("输出评图标签到XML, 然后提交到评图云"));
}

std::optional<QStringList> runXmlDialog(const std::vector<TemplateDialogRow> &rows, const QString &fileName,
                                        const std::function<std::optional<QString>()> &pick)
{
    CToXmlDlg dialog(rows, fileName, QApplication::activeWindow());
    return runFieldDialog(dialog, pick);
}
