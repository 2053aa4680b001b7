// CAcUiDialog: the base of all dialogs.
//
// A dialog's form comes from a .ui file whose controls carry their numbers as object names ("id1003").
// doModal() shows it to a person or, in a scripted run, lets the script's dialog lines work it.
#pragma once

#include "host/acui/acuicontrols.h"

#include <QDialog>

class QKeyEvent;

class CAcUiDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CAcUiDialog(QWidget *parent = nullptr);

    /// QDialog::Accepted or QDialog::Rejected, or what done() was given. In a scripted run it returns when a
    /// line closes the dialog; a line that cannot be done, or a script without another line, rejects it.
    int doModal();
    int exec() override { return doModal(); }

    /// Shows the dialog as a part of its parent, as a palette's panel.
    void embed();

    // By number. A number that the form does not have is a programmer's fault.
    QWidget *item(int number) const;
    QAction *menuItem(int number) const;
    QString itemText(int number) const;
    void setItemText(int number, const QString &text);
    /// Check boxes, radio buttons, checkable menu items.
    bool isChecked(int number) const;
    void setChecked(int number, bool on);
    /// Checks one radio button of a run of numbers and clears the others.
    void checkRadio(int first, int last, int chosen);
    /// 0 when none of them is checked. Numbers that the form does not have are passed over.
    int checkedRadio(int first, int last) const;
    void setItemEnabled(int number, bool on);
    void setItemVisible(int number, bool on);

    /// "dialog CSetup "设置"": how messages name it.
    QString describe() const;

protected:
    /// Sees each key press for the dialog or one of its controls before they do. True swallows it.
    virtual bool preTranslateKey(QKeyEvent *event);
    /// Makes buttons 1 and 2 accept and reject; called by a dialog after it has set up its form.
    void connectOkCancel();

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int runScript();
    bool performLine(const QString &line);
    void giveUp();
};
