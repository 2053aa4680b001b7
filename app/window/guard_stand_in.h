// Opening, saving and closing drawings for the window, as long as nothing watches over the files.
#pragma once

#include "app/window/window_front_end.h"
#include "host/acap/docman.h"
#include "host/aced/edmessage.h"

#include <QFileDialog>
#include <QFileInfo>

namespace window
{

class DocumentGuard
{
public:
    DocumentGuard(WindowFrontEnd &front, QWidget *window) : m_front(front), m_window(window) {}

    bool open(const QString &path)
    {
        const auto opened = acDocManager()->openDocument(path);
        return bool(opened) || tell(WindowFrontEnd::tr("不能打开图形: %1").arg(opened.error()));
    }
    bool save(AcApDocument *document)
    {
        return document->isNamedDrawing() ? write(document, {}) : saveAs(document);
    }
    bool saveAs(AcApDocument *document)
    {
        const QString present = document->isNamedDrawing() ? document->fileName() : document->docTitle();
        QFileDialog dialog(m_window, WindowFrontEnd::tr("图形另存为"), QFileInfo(present).absolutePath());
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setDefaultSuffix(QFileInfo(present).suffix());
        dialog.selectFile(QFileInfo(present).fileName());
        return dialog.exec() == QDialog::Accepted && write(document, dialog.selectedFiles().value(0));
    }
    /// Asks whether to save changes; false when the user wants to stay.
    bool mayClose(AcApDocument *document)
    {
        if (!document->isModified())
            return true;
        const QString question =
            WindowFrontEnd::tr("%1 的修改尚未保存。保存修改吗?").arg(document->docTitle());
        switch (acedAsk(question, AcEdButtons::yesNoCancel)) {
        case AcEdButton::yes:
            return save(document);
        case AcEdButton::no:
            return true;
        default:
            return false;
        }
    }
    void offerRecovery() {}
    void watch() {}

private:
    bool write(AcApDocument *document, const QString &path)
    {
        const auto saved = acDocManager()->saveDocument(document, path);
        return bool(saved) || tell(WindowFrontEnd::tr("不能保存图形: %1").arg(saved.error()));
    }
    bool tell(const QString &trouble)
    {
        m_front.print(u'\n' + trouble);
        acedAlert(trouble);
        return false;
    }

    WindowFrontEnd &m_front;
    QWidget *m_window;
};

} // namespace window
