#include "host/acui/acuidialog.h"

#include "host/aced/edfrontend.h"
#include "host/acui/acuiscript.h"
#include "host/base/assert.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QKeyEvent>

CAcUiDialog::CAcUiDialog(QWidget *parent) : QDialog(parent) {}

// Running ----------------------------------------------------------------------------------------

int CAcUiDialog::doModal()
{
    return acedFrontEnd().isScripted() ? runScript() : QDialog::exec();
}

int CAcUiDialog::runScript()
{
    setResult(Rejected);
    show();
    activateWindow(); // Without an active window no control hears of gaining or losing the focus.
    acuiSettle();
    while (isVisible()) {
        const std::optional<QString> line = acedFrontEnd().dialogLine(describe());
        if (!line || !performLine(*line))
            giveUp();
        acuiSettle();
    }
    return result();
}

bool CAcUiDialog::performLine(const QString &line)
{
    base::Result<void, QString> done;
    if (const auto action = acuiParseAction(line); !action)
        done = base::Failure{action.error()};
    else if (!action->window.isEmpty())
        done = acuiPerformOnWindow(*action, acedFrontEnd().heldKeys());
    else
        done = acuiPerform(*this, *action, acedFrontEnd().heldKeys());
    if (!done)
        acedFrontEnd().refuseAnswer(QStringLiteral("%1: @%2: %3").arg(describe(), line, done.error()));
    return done.ok();
}

void CAcUiDialog::giveUp()
{
    reject();
    // A dialog may refuse to be left; a run that has ended may not wait for it.
    if (isVisible())
        QDialog::done(Rejected);
}

void CAcUiDialog::embed()
{
    setWindowFlags(Qt::Widget);
}

QString CAcUiDialog::describe() const
{
    return QStringLiteral("dialog %1 \"%2\"").arg(QLatin1String(metaObject()->className()), windowTitle());
}

// Keys -------------------------------------------------------------------------------------------

bool CAcUiDialog::preTranslateKey(QKeyEvent *)
{
    return false;
}

void CAcUiDialog::showEvent(QShowEvent *event)
{
    qApp->installEventFilter(this);
    QDialog::showEvent(event);
}

void CAcUiDialog::hideEvent(QHideEvent *event)
{
    qApp->removeEventFilter(this);
    QDialog::hideEvent(event);
}

bool CAcUiDialog::eventFilter(QObject *watched, QEvent *event)
{
    // A key press that nobody wants climbs from the focused control to its parents; it counts once.
    const QObject *first = focusWidget() ? focusWidget() : this;
    if (event->type() == QEvent::KeyPress && watched == first)
        return preTranslateKey(static_cast<QKeyEvent *>(event));
    return QDialog::eventFilter(watched, event);
}

void CAcUiDialog::connectOkCancel()
{
    for (const int number : {kAcUiOk, kAcUiCancel}) {
        auto *button = qobject_cast<QAbstractButton *>(acuiFindControl(*this, number));
        if (!button)
            continue;
        if (number == kAcUiOk)
            connect(button, &QAbstractButton::clicked, this, &QDialog::accept);
        else
            connect(button, &QAbstractButton::clicked, this, &QDialog::reject);
    }
}

// Controls by number -----------------------------------------------------------------------------

QWidget *CAcUiDialog::item(int number) const
{
    QWidget *control = acuiFindControl(*this, number);
    QUILL_ASSERT(control);
    return control;
}

QAction *CAcUiDialog::menuItem(int number) const
{
    QAction *found = acuiFindAction(*this, number);
    QUILL_ASSERT(found);
    return found;
}

QString CAcUiDialog::itemText(int number) const
{
    return acuiControlText(*item(number));
}

void CAcUiDialog::setItemText(int number, const QString &text)
{
    const bool showsText = acuiSetControlText(*item(number), text);
    QUILL_ASSERT(showsText);
}

bool CAcUiDialog::isChecked(int number) const
{
    if (const auto *button = qobject_cast<const QAbstractButton *>(acuiFindControl(*this, number)))
        return button->isChecked();
    if (const auto *group = qobject_cast<const QGroupBox *>(acuiFindControl(*this, number)))
        return group->isChecked();
    return menuItem(number)->isChecked();
}

void CAcUiDialog::setChecked(int number, bool on)
{
    if (auto *button = qobject_cast<QAbstractButton *>(acuiFindControl(*this, number)))
        button->setChecked(on);
    else if (auto *group = qobject_cast<QGroupBox *>(acuiFindControl(*this, number)))
        group->setChecked(on);
    else
        menuItem(number)->setChecked(on);
}

static QAbstractButton *buttonAt(const QWidget &root, int number)
{
    return qobject_cast<QAbstractButton *>(acuiFindControl(root, number));
}

/// A lone exclusive button cannot be cleared, so its group lets go of it for the moment.
static void clearRadio(QAbstractButton &button)
{
    const bool exclusive = button.autoExclusive();
    button.setAutoExclusive(false);
    button.setChecked(false);
    button.setAutoExclusive(exclusive);
}

void CAcUiDialog::checkRadio(int first, int last, int chosen)
{
    for (int number = first; number <= last; ++number) {
        if (QAbstractButton *button = buttonAt(*this, number); button && number != chosen)
            clearRadio(*button);
    }
    QAbstractButton *button = buttonAt(*this, chosen);
    QUILL_ASSERT(button);
    button->setChecked(true);
}

int CAcUiDialog::checkedRadio(int first, int last) const
{
    for (int number = first; number <= last; ++number) {
        const QAbstractButton *button = buttonAt(*this, number);
        if (button && button->isChecked())
            return number;
    }
    return 0;
}

void CAcUiDialog::setItemEnabled(int number, bool on)
{
    if (QAction *action = acuiFindAction(*this, number))
        action->setEnabled(on);
    else
        item(number)->setEnabled(on);
}

void CAcUiDialog::setItemVisible(int number, bool on)
{
    if (QAction *action = acuiFindAction(*this, number))
        action->setVisible(on);
    else
        item(number)->setVisible(on);
}
