#include "quillnote/ui/review_panel.h"

#include "ui_103.h"

#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <array>

namespace
{

enum Control : int {
    kSave = 1,
    kOpinion = 1003,
    kFeedback = 1004,
    kPrevious = 1005,
    kNext = 1006,
    kNumber = 1007,
    kGoTo = 1008,
    kFirstStatus = 1009,
    kLastStatus = 1013,
    kSearchText = 1016,
    kCounter = 1017,
    kOnlyUnhandled = 1021,
    kShowSnapshots = 1024,
    kReviewers = 1030,
    kReviewer = 1034,
    kPhrase = 1038,
    kStore = 1039,
    kSearch = 1042,
    kPreviousResult = 1047,
    kNextResult = 1049,
    kEditOpinion = 1068
};

/// A button is pressed, a field gets the cursor.
struct PanelKey {
    int control;
    int key;
    Qt::KeyboardModifiers modifiers;
};
const std::array kKeys{PanelKey{kPrevious, Qt::Key_Up, Qt::AltModifier},
                       PanelKey{kNext, Qt::Key_Down, Qt::AltModifier},
                       PanelKey{1009, Qt::Key_1, Qt::AltModifier},
                       PanelKey{1010, Qt::Key_2, Qt::AltModifier},
                       PanelKey{1011, Qt::Key_3, Qt::AltModifier},
                       PanelKey{1012, Qt::Key_4, Qt::AltModifier},
                       PanelKey{1013, Qt::Key_5, Qt::AltModifier},
                       PanelKey{kOnlyUnhandled, Qt::Key_U, Qt::AltModifier},
                       PanelKey{kShowSnapshots, Qt::Key_P, Qt::AltModifier},
                       PanelKey{kReviewers, Qt::Key_N, Qt::AltModifier},
                       PanelKey{kFeedback, Qt::Key_R, Qt::AltModifier},
                       PanelKey{kNumber, Qt::Key_G, Qt::ControlModifier},
                       PanelKey{kSearchText, Qt::Key_F, Qt::ControlModifier},
                       PanelKey{kPreviousResult, Qt::Key_F3, Qt::ShiftModifier},
                       PanelKey{kNextResult, Qt::Key_F3, Qt::NoModifier},
                       PanelKey{kSave, Qt::Key_Return, Qt::ControlModifier}};

const PanelKey *findKey(const QKeyEvent &event)
{
    const int key = event.key() == Qt::Key_Enter ? int(Qt::Key_Return) : event.key();
    const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
    const auto *const found = std::ranges::find_if(
        kKeys, [&](const PanelKey &row) { return row.key == key && row.modifiers == held; });
    return found == kKeys.end() ? nullptr : found;
}

QString keyText(const PanelKey &key)
{
    return QKeySequence(int(key.modifiers) | key.key).toString(QKeySequence::NativeText);
}

bool isEnter(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

QString allReviewersEntry()
{
    return QStringLiteral("显示全部");
}

CMarkWnd2::CMarkWnd2(QWidget *parent) : CAcUiDialog(parent), m_form(std::make_unique<Ui::ReviewPanel>())
{
    m_form->setupUi(this);
    embed();
    setItemVisible(kEditOpinion, false);
    m_form->state->hide();
    connectControls();
    const auto tip = [this](int control, const QString &text) { item(control)->setToolTip(text); };
    tip(kPhrase, QStringLiteral("从知识库选取回复"));
    tip(kStore, QStringLiteral("把回复存入知识库"));
    for (const PanelKey &key : kKeys) {
        QWidget *const control = item(key.control);
        const auto *const button = qobject_cast<const QAbstractButton *>(control);
        const QString name = button ? button->text() : control->accessibleName();
        tip(key.control, QStringLiteral("%1 (%2)").arg(name, keyText(key)));
    }
}

CMarkWnd2::~CMarkWnd2() = default;

void CMarkWnd2::connectControls()
{
    const auto onClick = [this](int control, auto say) {
        connect(qobject_cast<QAbstractButton *>(item(control)), &QAbstractButton::clicked, this, say);
    };
    onClick(kPrevious, [this] { Q_EMIT stepWanted(-1); });
    onClick(kNext, [this] { Q_EMIT stepWanted(1); });
    onClick(kGoTo, [this] { Q_EMIT numberWanted(itemText(kNumber)); });
    onClick(kSearch, [this] { Q_EMIT searchWanted(itemText(kSearchText)); });
    onClick(kPreviousResult, [this] { Q_EMIT resultWanted(-1); });
    onClick(kNextResult, [this] { Q_EMIT resultWanted(1); });
    onClick(kShowSnapshots, [this] { Q_EMIT snapshotsToggled(); });
    onClick(kSave, [this] { Q_EMIT saveWanted(); });
    onClick(kEditOpinion, [this] { Q_EMIT opinionEditWanted(); });
    onClick(kPhrase, [this] { Q_EMIT phraseWanted(); });
    onClick(kStore, [this] { Q_EMIT storingWanted(); });
    connect(m_form->id1030, &QComboBox::currentTextChanged, this, &CMarkWnd2::reviewerChosen);
}

// Showing -----------------------------------------------------------------------------------------

void CMarkWnd2::showMark(const Shown &shown)
{
    setItemText(kCounter, shown.counter);
    setItemText(kReviewer, shown.reviewerLine);
    setOpinion(shown.opinion);
    setFeedback(shown.feedback);
    checkRadio(kFirstStatus, kLastStatus, shown.status);
}

void CMarkWnd2::setOpinion(const QString &opinion)
{
    setItemText(kOpinion, opinion);
}

void CMarkWnd2::setOpinionEditable(bool on)
{
    m_form->id1003->setReadOnly(!on);
}

void CMarkWnd2::lockAnswer(const QString &reason)
{
    const bool isFree = reason.isEmpty();
    m_form->id1004->setReadOnly(!isFree);
    for (int number = kFirstStatus; number <= kLastStatus; ++number)
        setItemEnabled(number, isFree);
    for (const int number : {int(kSave), int(kPhrase), int(kStore)})
        setItemEnabled(number, isFree);
    m_form->state->setText(reason);
    m_form->state->setVisible(!isFree);
}

void CMarkWnd2::setReviewers(const QStringList &names, const QString &chosen)
{
    const QSignalBlocker quiet(m_form->id1030);
    QStringList entries = names;
    entries.sort();
    if (names.size() > 1)
        entries.prepend(allReviewersEntry());
    QStringList present;
    for (int i = 0; i < m_form->id1030->count(); ++i)
        present += m_form->id1030->itemText(i);
    if (present != entries) {
        m_form->id1030->clear();
        m_form->id1030->addItems(entries);
    }
    const qsizetype place = entries.indexOf(chosen);
    m_form->id1030->setCurrentIndex(int(std::max<qsizetype>(place, entries.isEmpty() ? -1 : 0)));
}

void CMarkWnd2::chooseFirstReviewer()
{
    const QSignalBlocker quiet(m_form->id1030);
    m_form->id1030->setCurrentIndex(m_form->id1030->count() > 0 ? 0 : -1);
}

void CMarkWnd2::enableSteps(bool previous, bool next)
{
    setItemEnabled(kPrevious, previous);
    setItemEnabled(kNext, next);
}

void CMarkWnd2::enableResults(bool previous, bool next)
{
    setItemEnabled(kPreviousResult, previous);
    setItemEnabled(kNextResult, next);
}

// Asking ------------------------------------------------------------------------------------------

QString CMarkWnd2::feedback() const
{
    return itemText(kFeedback);
}

void CMarkWnd2::setFeedback(const QString &text)
{
    setItemText(kFeedback, text);
    m_form->id1004->moveCursor(QTextCursor::End);
}

int CMarkWnd2::status() const
{
    return checkedRadio(kFirstStatus, kLastStatus);
}

QString CMarkWnd2::chosenReviewer() const
{
    return itemText(kReviewers);
}

bool CMarkWnd2::onlyUnhandled() const
{
    return isChecked(kOnlyUnhandled);
}

bool CMarkWnd2::showsSnapshots() const
{
    return isChecked(kShowSnapshots);
}

void CMarkWnd2::focusFeedback()
{
    item(kFeedback)->setFocus(Qt::OtherFocusReason);
}

// Keys --------------------------------------------------------------------------------------------

void CMarkWnd2::accept()
{
    Q_EMIT saveWanted();
}

bool CMarkWnd2::isMine(const QKeyEvent &event) const
{
    return findKey(event) || event.key() == Qt::Key_Escape || isEnter(event);
}

/// Fields take the keys of undo and redo also when they have nothing to take back.
static bool isIdleUndo(const QWidget &field, const QKeyEvent &event)
{
    const bool isUndo = event.matches(QKeySequence::Undo);
    if (!isUndo && !event.matches(QKeySequence::Redo))
        return false;
    if (const auto *const text = qobject_cast<const QPlainTextEdit *>(&field))
        return text->isReadOnly() ||
               !(isUndo ? text->document()->isUndoAvailable() : text->document()->isRedoAvailable());
    const auto *const line = qobject_cast<const QLineEdit *>(&field);
    return line && !(isUndo ? line->isUndoAvailable() : line->isRedoAvailable());
}

/// The window's own shortcuts stand back while the cursor is in the panel. Taking back an answer that was
/// saved is the window's.
bool CMarkWnd2::eventFilter(QObject *watched, QEvent *event)
{
    const auto *const widget = qobject_cast<const QWidget *>(watched);
    if (event->type() == QEvent::ShortcutOverride && widget && isAncestorOf(widget)) {
        const auto &key = *static_cast<const QKeyEvent *>(event);
        const bool mine = isMine(key);
        if (mine || isIdleUndo(*widget, key)) {
            event->setAccepted(mine);
            return true;
        }
    }
    return CAcUiDialog::eventFilter(watched, event);
}

bool CMarkWnd2::pressEnter(Qt::KeyboardModifiers modifiers)
{
    const QWidget *const focus = focusWidget();
    if (focus == m_form->id1007) {
        Q_EMIT numberWanted(itemText(kNumber));
        return true;
    }
    // Breaks the line where there are lines.
    if (modifiers & (Qt::ShiftModifier | Qt::AltModifier)) {
        if (focus == m_form->id1004 && !m_form->id1004->isReadOnly())
            m_form->id1004->insertPlainText(QStringLiteral("\n"));
        return true;
    }
    Q_EMIT saveWanted();
    if (focus == m_form->id1016)
        Q_EMIT searchWanted(itemText(kSearchText));
    return true;
}

bool CMarkWnd2::preTranslateKey(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        return true;
    const PanelKey *const key = findKey(*event);
    if (!key)
        return isEnter(*event) && pressEnter(event->modifiers());
    QWidget *const control = item(key->control);
    if (auto *const button = qobject_cast<QAbstractButton *>(control)) {
        button->click(); // Does nothing while it is disabled.
        return true;
    }
    control->setFocus(Qt::ShortcutFocusReason);
    if (auto *const line = qobject_cast<QLineEdit *>(control))
        line->selectAll();
    return true;
}
