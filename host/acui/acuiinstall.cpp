#include "host/acui/acuiinstall.h"

#include "host/aced/edfrontend.h"
#include "host/acui/acuidialog.h"
#include "host/acui/acuimessage.h"
#include "host/acui/acuixref.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>

#include <memory>

namespace
{

/// Closes dialogs that wait for a person in a run where there is none.
class ForeignDialogs : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && acedFrontEnd().isScripted())
            closeLater(qobject_cast<QDialog *>(watched));
        return false;
    }

private:
    static void closeLater(QDialog *dialog)
    {
        if (!dialog || !dialog->isModal() || qobject_cast<CAcUiDialog *>(dialog))
            return;
        // Its own event loop starts after this event.
        QMetaObject::invokeMethod(
            dialog,
            [dialog] {
                acedFrontEnd().refuseAnswer(
                    QStringLiteral("window %1 \"%2\" opened, which a script cannot answer")
                        .arg(QLatin1String(dialog->metaObject()->className()), dialog->windowTitle()));
                dialog->close(); // As Esc does; a box without a way out ignores it.
                if (dialog->isVisible())
                    dialog->reject();
            },
            Qt::QueuedConnection);
    }
};

struct Installation {
    AcUiMessageBox messageBox;
    ForeignDialogs foreignDialogs;
};

std::unique_ptr<Installation> &installation()
{
    static std::unique_ptr<Installation> installed;
    return installed;
}

} // namespace

void acuiInstall()
{
    if (installation())
        return;
    installation() = std::make_unique<Installation>();
    acedSetMessageBox(&installation()->messageBox);
    qApp->installEventFilter(&installation()->foreignDialogs);
    acuiRegisterXrefCommand();
}

void acuiUninstall()
{
    acedSetMessageBox(nullptr);
    installation().reset();
}
