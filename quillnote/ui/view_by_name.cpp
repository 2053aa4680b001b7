#include "quillnote/ui/view_by_name.h"

#include "ui_126.h"

CViewByName::CViewByName(const QStringList &names, QWidget *parent)
    : CAcUiDialog(parent), m_form(std::make_unique<Ui::ViewByName>())
{
    m_form->setupUi(this);
    connectOkCancel();
    m_form->id1063->addItems(names);
    connect(m_form->id1063, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
}

CViewByName::~CViewByName() = default;

QString CViewByName::chosenName() const
{
    const QList<QListWidgetItem *> chosen = m_form->id1063->selectedItems();
    return chosen.isEmpty() ? QString() : chosen.constFirst()->text();
}
