#include "tests/host/acui/sample_dialog.h"

#include <QIntValidator>

SampleDialog::SampleDialog(QWidget *parent) : CAcUiDialog(parent), m_layout(new QVBoxLayout(this))
{
    setWindowTitle(QStringLiteral("Sample"));
    auto *bar = new QMenuBar(this);
    QAction *item = bar->addMenu(QStringLiteral("Menu"))->addAction(QStringLiteral("Item"));
    item->setObjectName(acuiObjectName(202));
    m_layout->setMenuBar(bar);

    add(1003, new QLineEdit);
    add(1004, new QPlainTextEdit);
    add(1005, new QLineEdit)->setValidator(new QIntValidator(0, 100, this));
    add(1006, new QCheckBox(QStringLiteral("Check")));
    add(1009, new QRadioButton(QStringLiteral("First")));
    add(1010, new QRadioButton(QStringLiteral("Second")));
    add(1011, new QRadioButton(QStringLiteral("Third")));
    const QStringList entries{QStringLiteral("Zhang"), QStringLiteral("Li"), QStringLiteral("li")};
    add(1030, new QComboBox)->addItems(entries);
    auto *editable = add(1031, new QComboBox);
    editable->addItems(entries);
    editable->setEditable(true);
    add(1063, new QListWidget)->addItems(entries);
    add(1070, new QSpinBox)->setRange(1, 9);
    add(1080, new QLabel(QStringLiteral("Label")));
    add(1090, new QPushButton(QStringLiteral("Act")))->setAutoDefault(false);
    add(kAcUiOk, new QPushButton(QStringLiteral("OK")));
    add(kAcUiCancel, new QPushButton(QStringLiteral("Cancel")));
    connectOkCancel();
}
