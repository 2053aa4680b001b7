#include "app/front_end/window_front_end.h"

#include <QApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QWidget>

#include <utility>

namespace window
{

WindowFrontEnd::WindowFrontEnd(QObject *parent) : QObject(parent) {}

// Answers -----------------------------------------------------------------------------------------

/// What was waiting for a command prompt. True when something ran, or when a command stands in its way.
bool WindowFrontEnd::runPending(const AcEdPrompt &prompt)
{
    if (m_pending.empty())
        return false;
    if (prompt.kind == AcEdPromptKind::command) {
        const std::function<void()> function = std::move(m_pending.front());
        m_pending.pop_front();
        function();
    }
    return true;
}

std::optional<AcEdAnswer> WindowFrontEnd::nextQueued(const AcEdPrompt &prompt)
{
    while (!m_queued.empty()) {
        const std::optional<AcEdAnswer> next = m_queued.front();
        m_queued.pop_front();
        if (!next) {
            m_queuePaused = true;
            return std::nullopt;
        }
        if (next->kind == AcEdAnswer::cancel && prompt.kind == AcEdPromptKind::command)
            continue; // Nothing to cancel.
        m_queueAnswered = true;
        return next;
    }
    return std::nullopt;
}

/// A window without a command of its own may ask while a prompt waits already; that one waits on afterwards.
std::optional<AcEdAnswer> WindowFrontEnd::wait(const AcEdPrompt &prompt)
{
    QEventLoop loop;
    QEventLoop *const outerLoop = std::exchange(m_loop, &loop);
    const AcEdPrompt *const outerPrompt = std::exchange(m_prompt, &prompt);
    const std::optional<AcEdAnswer> outerGiven = std::exchange(m_given, std::nullopt);
    Q_EMIT promptChanged();
    if (!m_given && !m_leaving)
        loop.exec();
    m_loop = outerLoop;
    m_prompt = outerPrompt;
    if (m_leaving && outerLoop)
        outerLoop->quit();
    std::optional<AcEdAnswer> given = std::exchange(m_given, outerGiven);
    Q_EMIT promptChanged();
    return m_leaving ? std::nullopt : given;
}

/// "另存为 <plan.dxf>: " as the title of a dialog.
static QString dialogTitle(QString message)
{
    const qsizetype proposal = message.indexOf(u'<');
    message = message.left(proposal < 0 ? message.size() : proposal).trimmed();
    return message.endsWith(u':') ? message.chopped(1) : message;
}

std::optional<AcEdAnswer> WindowFrontEnd::askFile(const AcEdPrompt &prompt)
{
    const bool isSave = prompt.kind == AcEdPromptKind::fileToSave;
    const QString ending = QFileInfo(prompt.path).suffix();
    const bool isDrawing = ending.isEmpty() || ending == u"dxf" || ending == u"dwg";
    QFileDialog dialog(QApplication::activeWindow(), dialogTitle(prompt.message));
    dialog.setAcceptMode(isSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(isSave                                       ? QFileDialog::AnyFile
                       : prompt.kind == AcEdPromptKind::filesToOpen ? QFileDialog::ExistingFiles
                                                                    : QFileDialog::ExistingFile);
    dialog.setNameFilters({!isDrawing                   ? QStringLiteral("*.") + ending
                           : isSave && ending != u"dwg" ? tr("图形 (*.dxf *.DXF)")
                                                        : tr("图形 (*.dwg *.DWG *.dxf *.DXF)"),
                           tr("所有文件 (*)")});
    // With it the dialog asks about the file that will be written, not about a name without its ending.
    dialog.setDefaultSuffix(ending);
    if (!prompt.path.isEmpty()) {
        dialog.setDirectory(QFileInfo(prompt.path).absolutePath());
        dialog.selectFile(isSave ? QFileInfo(prompt.path).fileName() : QString());
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return AcEdAnswer::ofCancel();
    AcEdAnswer answer = AcEdAnswer::ofText(dialog.selectedFiles().constFirst());
    answer.mayReplace = isSave;
    answer.furtherFiles = dialog.selectedFiles().sliced(1);
    return answer;
}

/// What was asked and answered goes into the history; a command prompt that nobody typed at leaves nothing.
void WindowFrontEnd::echo(const AcEdPrompt &prompt, const AcEdAnswer &answer)
{
    const bool isCommand = prompt.kind == AcEdPromptKind::command;
    const bool isTyped = answer.kind == AcEdAnswer::text && !(isCommand && answer.typed.isEmpty());
    const bool isCancelled = answer.kind == AcEdAnswer::cancel && !isCommand;
    if (isTyped || isCancelled) {
        // On a line of its own: the prompts of a module may be in another language.
        print(prompt.message + (isTyped ? answer.typed : u'\n' + tr("*取消*")));
        m_lineEnded = true;
    }
    if (isCommand && answer.kind == AcEdAnswer::text && !answer.typed.isEmpty())
        m_lastCommand = answer.typed;
}

std::optional<AcEdAnswer> WindowFrontEnd::answer(const AcEdPrompt &prompt)
{
    if (m_leaving)
        return std::nullopt;
    if (runPending(prompt)) {
        // Enter at the command prompt does nothing but let the editor look at its queue.
        return prompt.kind == AcEdPromptKind::command ? AcEdAnswer() : AcEdAnswer::ofCancel();
    }
    m_queueAnswered = m_queuePaused = false;
    std::optional<AcEdAnswer> answer = nextQueued(prompt);
    const bool isFile = prompt.kind == AcEdPromptKind::fileToOpen ||
                        prompt.kind == AcEdPromptKind::filesToOpen ||
                        prompt.kind == AcEdPromptKind::fileToSave;
    if (!answer)
        answer = isFile ? askFile(prompt) : wait(prompt);
    if (!answer)
        return std::nullopt;
    echo(prompt, *answer);
    return answer;
}

void WindowFrontEnd::give(const AcEdAnswer &answer)
{
    if (!m_prompt)
        return;
    // The window takes what was typed while a command worked all at once; the rest answers what comes next.
    if (m_given && answer.kind != AcEdAnswer::cancel) {
        m_queued.emplace_back(answer);
        return;
    }
    m_given = answer;
    if (m_loop)
        m_loop->quit();
}

void WindowFrontEnd::giveText(const QString &typed)
{
    give(AcEdAnswer::ofText(typed));
}

void WindowFrontEnd::cancel()
{
    m_queued.clear();
    give(AcEdAnswer::ofCancel());
}

void WindowFrontEnd::queue(std::vector<std::optional<AcEdAnswer>> answers)
{
    m_queued.insert(m_queued.end(), answers.begin(), answers.end());
    if (m_prompt && !m_given && !m_queued.empty()) {
        if (const auto next = nextQueued(*m_prompt))
            give(*next);
    }
}

void WindowFrontEnd::runMacro(const QString &macro)
{
    m_queued.clear();
    queue(readMacro(macro));
}

void WindowFrontEnd::whenIdle(std::function<void()> function)
{
    if (m_leaving)
        return;
    m_pending.push_back(std::move(function));
    if (!m_prompt)
        return;
    const bool isCommand = m_prompt->kind == AcEdPromptKind::command;
    if (isCommand) {
        // While it asks something in windows of its own nothing else may begin.
        const AcEdPrompt *const waiting = std::exchange(m_prompt, nullptr);
        runPending(*waiting);
        m_prompt = waiting;
    } else {
        m_queued.clear();
    }
    if (!m_given) // The function may have given the next command itself.
        give(isCommand ? AcEdAnswer() : AcEdAnswer::ofCancel());
}

void WindowFrontEnd::leave()
{
    m_leaving = true;
    m_given.reset();
    if (m_loop)
        m_loop->quit();
}

// Texts and keys ----------------------------------------------------------------------------------

void WindowFrontEnd::print(const QString &text)
{
    if (text.isEmpty())
        return;
    // The answer ended the line.
    const bool startsLine = std::exchange(m_lineEnded, false) && !text.startsWith(u'\n');
    Q_EMIT printed(startsLine ? u'\n' + text : text);
}

void WindowFrontEnd::refuseAnswer(const QString &reason)
{
    if (m_queueAnswered)
        m_queued.clear();
    else if (m_queuePaused)
        m_queued.emplace_front(std::nullopt);
    print(u'\n' + reason);
}

QStringList WindowFrontEnd::heldKeys() const
{
    QStringList keys;
    const Qt::KeyboardModifiers held = QApplication::queryKeyboardModifiers();
    if (held & Qt::ControlModifier)
        keys += QStringLiteral("Ctrl");
    if (held & Qt::ShiftModifier)
        keys += QStringLiteral("Shift");
    if (held & Qt::AltModifier)
        keys += QStringLiteral("Alt");
    return keys;
}

std::optional<QRect> WindowFrontEnd::drawingWindow() const
{
    if (!m_drawing)
        return std::nullopt;
    return QRect(m_drawing->mapToGlobal(QPoint(0, 0)), m_drawing->size());
}

void WindowFrontEnd::focusDrawing()
{
    if (!m_drawing)
        return;
    m_drawing->activateWindow();
    m_drawing->setFocus(Qt::OtherFocusReason);
}

/// Enter at the command prompt lets the editor run its queue and ask again; a running command asks on.
void WindowFrontEnd::lookAgain()
{
    if (isIdle())
        give(AcEdAnswer());
    else if (m_prompt && !m_given)
        Q_EMIT promptChanged();
}

bool WindowFrontEnd::progress(const QString &what, double share)
{
    m_stopped = false;
    Q_EMIT progressed(what, share);
    return !m_stopped;
}

// Macros ------------------------------------------------------------------------------------------

static bool beginsCancel(const QString &macro, qsizetype at)
{
    return QStringView(macro).mid(at, 2).compare(QLatin1String("^C"), Qt::CaseInsensitive) == 0;
}

/// The end of a LISP expression that begins at `at`, quotes respected.
static qsizetype expressionEnd(const QString &macro, qsizetype at)
{
    int depth = 0;
    bool isQuoted = false;
    for (; at < macro.size(); ++at) {
        const QChar sign = macro[at];
        if (sign == u'"')
            isQuoted = !isQuoted;
        else if (!isQuoted && sign == u'(')
            ++depth;
        else if (!isQuoted && sign == u')' && --depth == 0)
            return at + 1;
    }
    return at;
}

std::vector<std::optional<AcEdAnswer>> readMacro(const QString &macro)
{
    std::vector<std::optional<AcEdAnswer>> answers;
    QString typed;
    const auto enter = [&] { answers.emplace_back(AcEdAnswer::ofText(std::exchange(typed, {}))); };
    qsizetype at = 0;
    while (at < macro.size()) {
        const QChar sign = macro[at];
        if (beginsCancel(macro, at)) {
            answers.emplace_back(AcEdAnswer::ofCancel());
            at += 2;
        } else if (sign == u'(') {
            const qsizetype end = expressionEnd(macro, at);
            typed += macro.mid(at, end - at);
            at = end;
        } else if (sign == u' ' || sign == u';' || sign == u'\n') {
            enter();
            ++at;
        } else if (sign == u'\\') {
            answers.emplace_back(std::nullopt);
            ++at;
        } else {
            typed += sign;
            ++at;
        }
    }
    if (!typed.isEmpty())
        enter();
    return answers;
}

} // namespace window
