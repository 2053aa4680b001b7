// The dialog that chooses one of the reviewers of a drawing.
#pragma once

#include "host/acui/acuidialog.h"

#include <memory>

namespace Ui
{
class ViewByName;
}

class CViewByName : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit CViewByName(const QStringList &names, QWidget *parent = nullptr);
    ~CViewByName() override;

    /// Empty when none is selected.
    QString chosenName() const;

private:
    std::unique_ptr<Ui::ViewByName> m_form;
};
