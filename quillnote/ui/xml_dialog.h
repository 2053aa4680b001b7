// The dialog for the data of a project that go into the XML document.
#pragma once

#include "quillnote/ui/template_dialog.h"

class CToXmlDlg : public CTmpExcel
{
    Q_OBJECT

public:
    CToXmlDlg(const std::vector<TemplateDialogRow> &rows, const QString &fileName, QWidget *parent = nullptr);
};

/// As runTemplateDialog().
std::optional<QStringList> runXmlDialog(const std::vector<TemplateDialogRow> &rows, const QString &fileName,
                                        const std::function<std::optional<QString>()> &pick);
