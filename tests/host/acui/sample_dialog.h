// A dialog with one control of each kind, numbered as forms are.
#pragma once

#include "host/acui/acuidialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <functional>

class SampleDialog : public CAcUiDialog
{
    Q_OBJECT

public:
    explicit SampleDialog(QWidget *parent = nullptr);

    template <class T>
    T *control(int number) const
    {
        return qobject_cast<T *>(acuiFindControl(*this, number));
    }
    void accept() override
    {
        if (!keepOpen)
            CAcUiDialog::accept();
    }
    void reject() override
    {
        if (!keepOpen)
            CAcUiDialog::reject();
    }

    bool keepOpen = false;
    int translated = 0; ///< Keys seen before the controls.
    std::function<bool(QKeyEvent *)> onKey;

protected:
    bool preTranslateKey(QKeyEvent *event) override
    {
        ++translated;
        return onKey && onKey(event);
    }

private:
    template <class T>
    T *add(int number, T *widget)
    {
        widget->setObjectName(acuiObjectName(number));
        m_layout->addWidget(widget);
        return widget;
    }

    QVBoxLayout *m_layout;
};
