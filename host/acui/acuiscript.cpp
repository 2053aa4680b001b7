#include "host/acui/acuiscript.h"

#include "host/acui/acuicontrols.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QKeySequence>
#include <QPointer>

#include <array>
#include <optional>

using Done = base::Result<void, QString>;
using Parsed = base::Result<AcUiAction, QString>;

// Reading a line ---------------------------------------------------------------------------------

namespace
{

struct VerbRow {
    const char *word;
    AcUiAction::Verb verb;
    bool takesNumber;
    bool takesText;
    bool worksOnWindow;
};

// clang-format off
constexpr std::array<VerbRow, 9> kVerbs{{
    // word         verb                     number text   window
    {"set",         AcUiAction::set,         true,  true,  true},
    {"click",       AcUiAction::click,       true,  false, true},
    {"doubleclick", AcUiAction::doubleClick, true,  true,  true},
    {"ok",          AcUiAction::ok,          false, false, true},
    {"cancel",      AcUiAction::cancel,      false, false, true},
    {"yes",         AcUiAction::yes,         false, false, false},
    {"no",          AcUiAction::no,          false, false, false},
    {"keys",        AcUiAction::keys,        false, true,  true},
    {"file",        AcUiAction::file,        false, true,  false},
}};
// clang-format on

const VerbRow *findVerb(QStringView word)
{
    for (const VerbRow &row : kVerbs) {
        if (word == QLatin1String(row.word))
            return &row;
    }
    return nullptr;
}

const VerbRow &rowOf(AcUiAction::Verb verb)
{
    return kVerbs[std::size_t(verb)];
}

/// Takes the next word off the line.
QStringView nextWord(QStringView &line)
{
    line = line.trimmed();
    qsizetype end = 0;
    while (end < line.size() && !line[end].isSpace())
        ++end;
    const QStringView word = line.left(end);
    line = line.sliced(end).trimmed();
    return word;
}

base::Result<QString, QString> quotedText(QStringView line)
{
    QString text;
    for (qsizetype i = 1; i < line.size(); ++i) {
        if (line[i] == u'"') {
            if (i + 1 < line.size())
                return base::Failure{QStringLiteral("there is more behind the closing quote")};
            return text;
        }
        if (line[i] != u'\\') {
            text += line[i];
            continue;
        }
        const QChar escaped = i + 1 < line.size() ? line[++i] : QChar();
        if (escaped == u'n')
            text += u'\n';
        else if (escaped == u'"' || escaped == u'\\')
            text += escaped;
        else
            return base::Failure{QStringLiteral("a backslash stands only before \", \\ and n")};
    }
    return base::Failure{QStringLiteral("the closing quote is missing")};
}

Parsed parseArguments(const VerbRow &row, QStringView rest)
{
    AcUiAction action;
    action.verb = row.verb;
    if (row.takesNumber) {
        bool isNumber = false;
        action.number = nextWord(rest).toInt(&isNumber);
        if (!isNumber || action.number <= 0)
            return base::Failure{
                QStringLiteral("\"%1\" needs the number of a control").arg(QLatin1String(row.word))};
    }
    if (!row.takesText && !rest.isEmpty())
        return base::Failure{QStringLiteral("there is more behind \"%1\"").arg(QLatin1String(row.word))};
    if (!row.takesText)
        return action;
    if (rest.isEmpty() && row.verb != AcUiAction::keys)
        return base::Failure{QStringLiteral("\"%1\" needs a text").arg(QLatin1String(row.word))};
    if (!rest.startsWith(u'"')) {
        action.text = rest.toString();
        return action;
    }
    auto text = quotedText(rest);
    if (!text)
        return base::Failure{text.error()};
    action.text = *std::move(text);
    return action;
}

} // namespace

Parsed acuiParseAction(const QString &line)
{
    QStringView rest = line;
    QStringView word = nextWord(rest);
    QString window;
    if (word == u"in") {
        window = nextWord(rest).toString();
        word = nextWord(rest);
        if (window.isEmpty() || word.isEmpty())
            return base::Failure{QStringLiteral("\"in\" needs the class of a window and an action")};
    }
    const VerbRow *row = findVerb(word);
    if (!row)
        return base::Failure{QStringLiteral("there is no dialog line \"%1\"").arg(word)};
    if (!window.isEmpty() && !row->worksOnWindow)
        return base::Failure{QStringLiteral("\"%1\" does not work on a window").arg(word)};
    Parsed action = parseArguments(*row, rest);
    if (action)
        action->window = window;
    return action;
}

// Keys -------------------------------------------------------------------------------------------

namespace
{

struct Modifier {
    const char *name;
    Qt::KeyboardModifier bit;
};
constexpr std::array<Modifier, 3> kModifiers{
    {{"Ctrl", Qt::ControlModifier}, {"Shift", Qt::ShiftModifier}, {"Alt", Qt::AltModifier}}};

const Modifier *findModifier(QStringView name)
{
    for (const Modifier &modifier : kModifiers) {
        if (name.compare(QLatin1String(modifier.name), Qt::CaseInsensitive) == 0)
            return &modifier;
    }
    return nullptr;
}

QStringList keyWords(const QString &text)
{
    return QString(text).replace(u'+', u' ').split(u' ', Qt::SkipEmptyParts);
}

struct KeyPress {
    int key = 0;
    Qt::KeyboardModifiers modifiers;
    QString text;
};

std::optional<int> keyByName(const QString &name)
{
    if (name.compare(u"Enter", Qt::CaseInsensitive) == 0)
        return Qt::Key_Return;
    const QKeySequence sequence(name, QKeySequence::PortableText);
    if (sequence.count() != 1 || sequence[0].key() == Qt::Key_unknown)
        return std::nullopt;
    return sequence[0].key();
}

std::optional<KeyPress> parseKeys(const QString &text, const QStringList &heldKeys)
{
    KeyPress press;
    for (const QString &word : heldKeys + keyWords(text)) {
        if (const Modifier *modifier = findModifier(word)) {
            press.modifiers |= modifier->bit;
            continue;
        }
        const std::optional<int> key = keyByName(word);
        if (!key || press.key)
            return std::nullopt;
        press.key = *key;
        const bool isCharacter = word.size() == 1 && !press.modifiers;
        press.text = *key == Qt::Key_Return ? QStringLiteral("\r") : isCharacter ? word : QString();
    }
    return press.key ? std::optional(press) : std::nullopt;
}

Done pressKeys(QWidget &root, const QString &text, const QStringList &heldKeys)
{
    const auto press = parseKeys(text, heldKeys);
    if (!press)
        return base::Failure{QStringLiteral("\"%1\" is no key").arg(text)};
    QPointer<QWidget> target = root.focusWidget() ? root.focusWidget() : &root;
    QKeyEvent down(QEvent::KeyPress, press->key, press->modifiers, press->text);
    QApplication::sendEvent(target, &down);
    QKeyEvent up(QEvent::KeyRelease, press->key, press->modifiers, press->text);
    if (target)
        QApplication::sendEvent(target, &up);
    return {};
}

} // namespace

bool acuiModifierKeys(const QString &text, QStringList &modifiers)
{
    QStringList found;
    for (const QString &word : keyWords(text)) {
        const Modifier *modifier = findModifier(word);
        if (!modifier)
            return false;
        if (!found.contains(QLatin1String(modifier->name)))
            found.append(QString::fromLatin1(modifier->name));
    }
    modifiers = found;
    return true;
}

// Doing ------------------------------------------------------------------------------------------

static Done workControl(QWidget &root, const AcUiAction &action)
{
    QWidget *control = acuiFindControl(root, action.number);
    QAction *item = control ? nullptr : acuiFindAction(root, action.number);
    if (!control && !item)
        return base::Failure{QStringLiteral("there is no control %1").arg(action.number)};

    Done done;
    if (item)
        done = action.verb == AcUiAction::click
                   ? acuiPress(*item)
                   : Done(base::Failure{QStringLiteral("is a menu item: click it")});
    else if (action.verb == AcUiAction::set)
        done = acuiEnterValue(*control, action.text);
    else if (action.verb == AcUiAction::click)
        done = acuiPress(*control);
    else
        done = acuiDoubleClick(*control, action.text);
    if (!done)
        return base::Failure{QStringLiteral("control %1 %2").arg(action.number).arg(done.error())};
    return done;
}

/// Presses the button that ends the dialog; a dialog that shows none is closed as Enter or Esc would.
static Done endDialog(QWidget &root, int number)
{
    QWidget *button = acuiFindControl(root, number);
    if (button && button->isVisible()) {
        const Done pressed = acuiPress(*button);
        return pressed
                   ? pressed
                   : Done(base::Failure{QStringLiteral("control %1 %2").arg(number).arg(pressed.error())});
    }
    auto *dialog = qobject_cast<QDialog *>(&root);
    if (!dialog)
        return base::Failure{QStringLiteral("there is no control %1").arg(number)};
    number == kAcUiOk ? dialog->accept() : dialog->reject();
    return {};
}

Done acuiPerform(QWidget &root, const AcUiAction &action, const QStringList &heldKeys)
{
    switch (action.verb) {
    case AcUiAction::set:
    case AcUiAction::click:
    case AcUiAction::doubleClick:
        return workControl(root, action);
    case AcUiAction::ok:
        return endDialog(root, kAcUiOk);
    case AcUiAction::cancel:
        return endDialog(root, kAcUiCancel);
    case AcUiAction::keys:
        return pressKeys(root, action.text, heldKeys);
    case AcUiAction::yes:
    case AcUiAction::no:
    case AcUiAction::file:
        break;
    }
    return base::Failure{
        QStringLiteral("\"%1\" answers no dialog").arg(QLatin1String(rowOf(action.verb).word))};
}

static bool isOfClass(const QWidget &widget, const QString &name)
{
    const QString full = QString::fromLatin1(widget.metaObject()->className());
    return full == name || full.endsWith(QStringLiteral("::") + name);
}

Done acuiPerformOnWindow(const AcUiAction &action, const QStringList &heldKeys)
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        if (!widget->isVisible() || !isOfClass(*widget, action.window))
            continue;
        const Done done = acuiPerform(*widget, action, heldKeys);
        acuiSettle();
        return done ? done : Done(base::Failure{QStringLiteral("%1: %2").arg(action.window, done.error())});
    }
    return base::Failure{QStringLiteral("no window %1 is shown").arg(action.window)};
}

void acuiSettle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}
