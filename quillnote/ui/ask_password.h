// The password prompt.
#pragma once

#include "host/acui/acuidialog.h"

#include <memory>

namespace Ui
{
class AskPassword;
}

class CAskPassword : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CAskPassword(QWidget *parent = nullptr);
    ~CAskPassword() override;

    /// Without surrounding blanks.
    QString password() const;

private:
    std::unique_ptr<Ui::AskPassword> m_form;
};

/// Makes the password checks ask with this dialog.
void installPasswordPrompt();
void removePasswordPrompt();
