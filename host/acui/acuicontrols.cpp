#include "host/acui/acuicontrols.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <QTextEdit>

using Done = base::Result<void, AcUiRefusal>;

static Done refused(const QString &reason)
{
    return base::Failure{reason};
}

// Finding ----------------------------------------------------------------------------------------

QString acuiObjectName(int number)
{
    return QStringLiteral("id%1").arg(number);
}

static bool belongsToAnotherDialog(const QObject &object)
{
    const auto *widget = qobject_cast<const QWidget *>(&object);
    return widget && widget->isWindow() && !qobject_cast<const QMenu *>(widget);
}

template <class T>
static T *findByName(const QObject &root, const QString &name)
{
    for (QObject *child : root.children()) {
        if (belongsToAnotherDialog(*child))
            continue;
        if (T *match = child->objectName() == name ? qobject_cast<T *>(child) : nullptr)
            return match;
        if (T *match = findByName<T>(*child, name))
            return match;
    }
    return nullptr;
}

QWidget *acuiFindControl(const QWidget &root, int number)
{
    return findByName<QWidget>(root, acuiObjectName(number));
}

// Some menus get their items when they open, which is what a person would do to reach one.
QAction *acuiFindAction(const QWidget &root, int number)
{
    const QString name = acuiObjectName(number);
    if (QAction *const item = findByName<QAction>(root, name))
        return item;
    for (QMenu *menu : root.findChildren<QMenu *>())
        Q_EMIT menu->aboutToShow();
    return findByName<QAction>(root, name);
}

// Texts ------------------------------------------------------------------------------------------

QString acuiControlText(const QWidget &control)
{
    if (const auto *edit = qobject_cast<const QLineEdit *>(&control))
        return edit->text();
    if (const auto *edit = qobject_cast<const QPlainTextEdit *>(&control))
        return edit->toPlainText();
    if (const auto *edit = qobject_cast<const QTextEdit *>(&control))
        return edit->toPlainText();
    if (const auto *combo = qobject_cast<const QComboBox *>(&control))
        return combo->currentText();
    if (const auto *view = qobject_cast<const QAbstractItemView *>(&control))
        return view->currentIndex().data().toString();
    if (const auto *label = qobject_cast<const QLabel *>(&control))
        return label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(&control))
        return button->text();
    if (const auto *group = qobject_cast<const QGroupBox *>(&control))
        return group->title();
    if (const auto *spin = qobject_cast<const QAbstractSpinBox *>(&control))
        return spin->text();
    if (const auto *slider = qobject_cast<const QAbstractSlider *>(&control))
        return QString::number(slider->value());
    return {};
}

bool acuiSetControlText(QWidget &control, const QString &text)
{
    if (auto *edit = qobject_cast<QLineEdit *>(&control))
        edit->setText(text);
    else if (auto *plain = qobject_cast<QPlainTextEdit *>(&control))
        plain->setPlainText(text);
    else if (auto *rich = qobject_cast<QTextEdit *>(&control))
        rich->setPlainText(text);
    else if (auto *combo = qobject_cast<QComboBox *>(&control))
        combo->setCurrentText(text);
    else if (auto *label = qobject_cast<QLabel *>(&control))
        label->setText(text);
    else if (auto *button = qobject_cast<QAbstractButton *>(&control))
        button->setText(text);
    else if (auto *group = qobject_cast<QGroupBox *>(&control))
        group->setTitle(text);
    else
        return false;
    return true;
}

// Working a control ------------------------------------------------------------------------------

static Done reach(QWidget &control)
{
    if (!control.isVisible())
        return refused(QStringLiteral("is hidden"));
    if (!control.isEnabled())
        return refused(QStringLiteral("is disabled"));
    if (control.focusPolicy() != Qt::NoFocus)
        control.setFocus(Qt::MouseFocusReason);
    return {};
}

static Done wrongValue(const QString &value)
{
    return refused(QStringLiteral("does not take \"%1\"").arg(value));
}

static Done typeText(QLineEdit &edit, const QString &text)
{
    if (edit.isReadOnly())
        return refused(QStringLiteral("is read-only"));
    edit.selectAll();
    // insert() is what typing does: validators and the length limit apply, textEdited is sent.
    text.isEmpty() ? edit.del() : edit.insert(text);
    return edit.text() == text ? Done{} : wrongValue(text);
}

template <class Edit>
static Done typeLines(Edit &edit, const QString &text)
{
    if (edit.isReadOnly())
        return refused(QStringLiteral("is read-only"));
    edit.selectAll();
    edit.insertPlainText(text);
    return edit.toPlainText() == text ? Done{} : wrongValue(text);
}

static Done chooseState(QAbstractButton &button, const QString &value)
{
    const bool isRadio = qobject_cast<QRadioButton *>(&button);
    if (!button.isCheckable())
        return refused(QStringLiteral("is a button: click it"));
    if (isRadio ? value != u"1" : value != u"0" && value != u"1")
        return wrongValue(value);
    if (button.isChecked() != (value == u"1"))
        button.click();
    return button.isChecked() == (value == u"1") ? Done{} : refused(QStringLiteral("did not change"));
}

static Done chooseState(QGroupBox &group, const QString &value)
{
    if (!group.isCheckable())
        return refused(QStringLiteral("cannot be set"));
    if (value != u"0" && value != u"1")
        return wrongValue(value);
    if (group.isChecked() == (value == u"1"))
        return {};
    group.setChecked(value == u"1");
    Q_EMIT group.clicked(group.isChecked());
    return {};
}

static Done noEntry(const QString &entry)
{
    return refused(QStringLiteral("has no entry \"%1\"").arg(entry));
}

static Done chooseEntry(QComboBox &combo, const QString &entry)
{
    const int index = combo.findText(entry, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index < 0)
        return combo.isEditable() ? typeText(*combo.lineEdit(), entry) : noEntry(entry);
    combo.setCurrentIndex(index);
    Q_EMIT combo.activated(index);
    Q_EMIT combo.textActivated(entry);
    return {};
}

static QModelIndex findEntry(const QAbstractItemView &view, const QString &entry)
{
    const QAbstractItemModel *model = view.model();
    if (!model || model->rowCount() == 0)
        return {};
    const auto flags = Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive;
    return model->match(model->index(0, 0), Qt::DisplayRole, entry, 1, flags).value(0);
}

static Done chooseEntry(QAbstractItemView &view, const QString &entry)
{
    const QModelIndex index = findEntry(view, entry);
    if (!index.isValid())
        return noEntry(entry);
    view.setCurrentIndex(index);
    Q_EMIT view.pressed(index);
    Q_EMIT view.clicked(index);
    return {};
}

static Done chooseTab(QTabWidget &tabs, const QString &entry)
{
    for (int i = 0; i < tabs.count(); ++i) {
        if (tabs.tabText(i) == entry && tabs.isTabEnabled(i)) {
            tabs.setCurrentIndex(i);
            return {};
        }
    }
    return noEntry(entry);
}

static Done typeNumber(QAbstractSpinBox &spin, const QString &value)
{
    // The edit inside is reached by its class: spin boxes do not show it to strangers.
    auto *edit = spin.findChild<QLineEdit *>();
    if (spin.isReadOnly() || !edit)
        return refused(QStringLiteral("is read-only"));
    edit->selectAll();
    edit->insert(value);
    if (edit->text() != value || !spin.hasAcceptableInput())
        return wrongValue(value);
    spin.interpretText();
    Q_EMIT spin.editingFinished();
    return {};
}

static Done slide(QAbstractSlider &slider, const QString &value)
{
    bool isNumber = false;
    const int position = value.toInt(&isNumber);
    if (!isNumber || position < slider.minimum() || position > slider.maximum())
        return wrongValue(value);
    slider.setValue(position);
    return {};
}

Done acuiEnterValue(QWidget &control, const QString &value)
{
    if (Done reached = reach(control); !reached)
        return reached;
    if (auto *edit = qobject_cast<QLineEdit *>(&control))
        return typeText(*edit, value);
    if (auto *plain = qobject_cast<QPlainTextEdit *>(&control))
        return typeLines(*plain, value);
    if (auto *rich = qobject_cast<QTextEdit *>(&control))
        return typeLines(*rich, value);
    if (auto *button = qobject_cast<QAbstractButton *>(&control))
        return chooseState(*button, value);
    if (auto *combo = qobject_cast<QComboBox *>(&control))
        return chooseEntry(*combo, value);
    if (auto *view = qobject_cast<QAbstractItemView *>(&control))
        return chooseEntry(*view, value);
    if (auto *spin = qobject_cast<QAbstractSpinBox *>(&control))
        return typeNumber(*spin, value);
    if (auto *slider = qobject_cast<QAbstractSlider *>(&control))
        return slide(*slider, value);
    if (auto *group = qobject_cast<QGroupBox *>(&control))
        return chooseState(*group, value);
    if (auto *tabs = qobject_cast<QTabWidget *>(&control))
        return chooseTab(*tabs, value);
    return refused(QStringLiteral("cannot be set"));
}

Done acuiPress(QWidget &control)
{
    auto *button = qobject_cast<QAbstractButton *>(&control);
    if (!button)
        return refused(QStringLiteral("cannot be pressed"));
    if (Done reached = reach(control); !reached)
        return reached;
    button->click();
    return {};
}

Done acuiPress(QAction &item)
{
    if (!item.isVisible())
        return refused(QStringLiteral("is hidden"));
    if (!item.isEnabled())
        return refused(QStringLiteral("is disabled"));
    item.trigger();
    return {};
}

Done acuiDoubleClick(QWidget &control, const QString &entry)
{
    auto *view = qobject_cast<QAbstractItemView *>(&control);
    if (!view)
        return refused(QStringLiteral("is no list"));
    if (Done reached = reach(control); !reached)
        return reached;
    if (Done chosen = chooseEntry(*view, entry); !chosen)
        return chosen;
    Q_EMIT view->doubleClicked(view->currentIndex());
    return {};
}
