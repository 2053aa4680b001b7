#include "quillnote/ui/ask_password.h"

#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "ui_106.h"

#include <QApplication>

enum Control : int { kPassword = 1032, kLabel = 1033 };

CAskPassword::CAskPassword(QWidget *parent) : CAcUiDialog(parent), m_form(std::make_unique<Ui::AskPassword>())
{
    m_form->setupUi(this);
    connectOkCancel();
    if (!startUpSettings().chineseVersion) {
        setWindowTitle(QStringLiteral("Password"));
        setItemText(kLabel, QStringLiteral("Password:"));
    }
    item(kPassword)->setFocus();
}

CAskPassword::~CAskPassword() = default;

QString CAskPassword::password() const
{
    return itemText(kPassword).trimmed();
}

static std::optional<QString> askPassword()
{
    // Over the window that the user works in.
    CAskPassword prompt(QApplication::activeWindow());
    if (prompt.doModal() != QDialog::Accepted)
        return {};
    return prompt.password();
}

void installPasswordPrompt()
{
    setPasswordPrompt(askPassword);
}

void removePasswordPrompt()
{
    setPasswordPrompt({});
}
