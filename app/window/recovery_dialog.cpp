#include "app/window/recovery_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace window
{

RecoveryDialog::RecoveryDialog(const QList<AcApRecoverable> &copies, QWidget *parent)
    : QDialog(parent), m_copies(copies), m_list(new QListWidget(this))
{
    setWindowTitle(tr("恢复图形"));
    auto *const text = new QLabel(tr("上次没有正常结束。以下图形有未保存的修改，可以恢复："), this);
    for (const AcApRecoverable &copy : copies) {
        const QString time = QLocale().toString(copy.time.toLocalTime(), QLocale::ShortFormat);
        auto *const item = new QListWidgetItem(tr("%1    (%2)").arg(copy.title, time), m_list);
        item->setToolTip(copy.original.isEmpty() ? tr("从未保存过") : copy.original);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
        item->setCheckState(Qt::Checked);
    }
    auto *const buttons = new QDialogButtonBox(
        QDialogButtonBox::Open | QDialogButtonBox::Discard | QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Open)->setText(tr("恢复所选(&O)"));
    buttons->button(QDialogButtonBox::Discard)->setText(tr("丢弃所选(&D)"));
    buttons->button(QDialogButtonBox::Close)->setText(tr("以后再说(&L)"));
    buttons->button(QDialogButtonBox::Open)->setDefault(true);
    connect(buttons->button(QDialogButtonBox::Open), &QPushButton::clicked, this, [this] { done(open); });
    connect(buttons->button(QDialogButtonBox::Discard), &QPushButton::clicked, this,
            [this] { done(discard); });
    connect(buttons->button(QDialogButtonBox::Close), &QPushButton::clicked, this, [this] { done(keep); });

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    resize(520, 260);
}

QList<AcApRecoverable> RecoveryDialog::chosen() const
{
    QList<AcApRecoverable> found;
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->checkState() == Qt::Checked)
            found.append(m_copies[row]);
    }
    return found;
}

} // namespace window
