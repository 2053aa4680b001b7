// The list of drawings that a crash left behind.
#pragma once

#include "host/acap/recovery.h"

#include <QDialog>

class QListWidget;

namespace window
{

/// exec() returns one of the choices below; chosen() are the drawings that it is about.
class RecoveryDialog : public QDialog
{
    Q_OBJECT

public:
    enum Choice { keep = QDialog::Rejected, open = QDialog::Accepted, discard };

    explicit RecoveryDialog(const QList<AcApRecoverable> &copies, QWidget *parent = nullptr);
    QList<AcApRecoverable> chosen() const;

private:
    QList<AcApRecoverable> m_copies;
    QListWidget *m_list;
};

} // namespace window
