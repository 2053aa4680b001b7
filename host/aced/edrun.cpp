// The editor: running commands, nesting, undo groups, notifications.
#include "host/acap/docman.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edlisp.h"
#include "host/aced/edprompt.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"

#include <utility>

// One command -------------------------------------------------------------------------------------

namespace
{

/// Lock and undo group of a document for one command; the command may close the document.
class CommandScope
{
public:
    CommandScope(AcApDocument *document, const AcEdCommand &command) : m_document(document)
    {
        if (!m_document)
            return;
        if (!(command.flags & ACRX_CMD_SESSION))
            m_status = acDocManager()->lockDocument(m_document, AcAp::kWrite);
        m_locked = m_status == Acad::eOk && !(command.flags & ACRX_CMD_SESSION);
        m_grouped = m_status == Acad::eOk && !(command.flags & ACRX_CMD_NOUNDO);
        if (m_grouped)
            m_document->database()->undo().beginGroup(command.globalName);
    }
    ~CommandScope()
    {
        if (!m_document || !acDocManager()->isOpen(m_document))
            return;
        if (m_grouped)
            m_document->database()->undo().endGroup();
        if (m_locked)
            acDocManager()->unlockDocument(m_document);
    }
    CommandScope(const CommandScope &) = delete;
    CommandScope &operator=(const CommandScope &) = delete;
    Acad::ErrorStatus status() const { return m_status; }

private:
    AcApDocument *m_document;
    Acad::ErrorStatus m_status = Acad::eOk;
    bool m_locked = false;
    bool m_grouped = false;
};

} // namespace

int AcEditor::runCommand(const QString &name)
{
    const AcEdCommand *const found = acedRegCmds()->lookup(name);
    if (!found) {
        acedRefuse(Host::tr("未知命令“%1”。").arg(name));
        return RTERROR;
    }
    const AcEdCommand command = *found; // It may remove itself while it runs.
    AcApDocument *const document = curDoc();
    if (!document && !(command.flags & ACRX_CMD_SESSION)) {
        acedRefuse(Host::tr("没有打开的图形，不能执行“%1”。").arg(command.globalName));
        return RTERROR;
    }
    const bool outerCancelled = std::exchange(m_cancelled, false);
    const int result = runLocked(command);
    // A command that another one called answers to its caller alone.
    m_cancelled = outerCancelled;
    return result;
}

int AcEditor::runLocked(const AcEdCommand &command)
{
    const CommandScope scope(curDoc(), command);
    if (scope.status() != Acad::eOk) {
        acedRefuse(Host::tr("图形已被锁定，不能执行“%1”。").arg(command.globalName));
        return RTERROR;
    }
    const QString &name = command.globalName;
    const bool keepsPickSet = command.flags & (ACRX_CMD_USEPICKSET | ACRX_CMD_TRANSPARENT);
    if (curDoc() && m_active.isEmpty() && !keepsPickSet)
        curDoc()->pickSet().clear();
    m_active.append(name);
    acedTakeRules(); // What an earlier command prepared for a prompt that never came.
    m_reactors.tell([&name](AcEditorReactor &reactor) { reactor.commandWillStart(name); });
    command.function();
    if (m_cancelled)
        m_reactors.tell([&name](AcEditorReactor &reactor) { reactor.commandCancelled(name); });
    else
        m_reactors.tell([&name](AcEditorReactor &reactor) { reactor.commandEnded(name); });
    m_active.removeLast();
    acedTakeRules();
    if (m_active.isEmpty())
        acedFrontEnd().showChosen({});
    return m_cancelled ? RTCAN : RTNORM;
}

QString AcEditor::activeCommands() const
{
    return m_active.join(u'\'');
}

AcEdRunningAs::AcEdRunningAs(const QString &name)
    : m_before(std::exchange(acedEditor()->m_active, QStringList{name}))
{
}

AcEdRunningAs::~AcEdRunningAs()
{
    acedEditor()->m_active = m_before;
}

// Lines -------------------------------------------------------------------------------------------

static int evaluate(const QString &expression)
{
    const auto value = acedEvaluateLisp(expression);
    if (!value)
        acedRefuse(value.error());
    else if (acedIntVar(QStringLiteral("CMDECHO")) != 0)
        acutPrintf(u'\n' + *value);
    return value ? RTNORM : RTERROR;
}

/// Menus begin their macros with cancels; at the command prompt there is nothing to cancel.
static QString withoutCancels(QString line)
{
    while (line.startsWith(QLatin1String("^C"), Qt::CaseInsensitive))
        line.remove(0, 2);
    return line;
}

/// A variable's name at the command prompt stands for SETVAR and the name.
static QString commandFor(const QString &name, AcEdFeed &feed)
{
    resbuf value;
    if (acedRegCmds()->lookup(name) || acedGetVar(name, value) != RTNORM)
        return name;
    feed.tokens().push_front(name);
    return QStringLiteral("SETVAR");
}

int AcEditor::execute(const QString &line)
{
    const QString typed = withoutCancels(line);
    if (typed.trimmed().startsWith(u'(')) {
        const QString first = typed.section(u'\n', 0, 0);
        m_reactors.tell([&first](AcEditorReactor &reactor) { reactor.lispWillStart(first); });
        const int result = evaluate(typed.trimmed());
        m_reactors.tell([](AcEditorReactor &reactor) { reactor.lispEnded(); });
        return result;
    }
    // The words behind the name answer its prompts; what is left over names the next command.
    AcEdFeed feed(AcEdFeed::open, acedSplitLine(typed));
    const bool alreadyQuitting = m_quit; // From an earlier run; this line is run all the same.
    int result = RTNONE;
    while (!feed.tokens().empty() && m_quit == alreadyQuitting) {
        const QString name = std::get<QString>(feed.tokens().front());
        feed.tokens().pop_front();
        if (name.isEmpty())
            continue;
        result = runCommand(commandFor(name, feed));
        if (result != RTNORM)
            break;
    }
    return result;
}

void AcEditor::processInput()
{
    m_quit = false;
    AcEdPrompt prompt;
    prompt.message = Host::tr("\n命令: ");
    for (;;) {
        runQueue();
        if (m_quit)
            return;
        const auto answer = acedFrontEnd().answer(prompt);
        if (!answer)
            return;
        if (answer->kind == AcEdAnswer::text)
            execute(answer->typed);
        else if (answer->kind == AcEdAnswer::entity && curDoc())
            curDoc()->pickSet().push_back(answer->picked);
    }
}

void AcEditor::queueExpression(const QString &expression)
{
    m_queue.append(expression);
}

void AcEditor::runQueue()
{
    if (m_queue.isEmpty() || !m_active.isEmpty())
        return;
    // Queued texts run between commands, one after the other, also those that they queue themselves. Nobody
    // typed them, so nothing but their failures is shown.
    const int echo = acedIntVar(QStringLiteral("CMDECHO"));
    acedSetIntVar(QStringLiteral("CMDECHO"), 0);
    while (!m_queue.isEmpty() && !m_quit)
        execute(m_queue.takeFirst());
    acedSetIntVar(QStringLiteral("CMDECHO"), echo);
}

AcEditor *acedEditor()
{
    static AcEditor editor;
    return &editor;
}

void ads_queueexpr(const QString &expression)
{
    acedEditor()->queueExpression(expression);
}

static int runWith(std::deque<AcEdToken> answers)
{
    if (answers.empty() || !std::holds_alternative<QString>(answers.front()))
        return RTERROR;
    const QString name = std::get<QString>(answers.front());
    answers.pop_front();
    const AcEdFeed feed(AcEdFeed::closed, std::move(answers));
    return acedEditor()->runCommand(name);
}

int acedCommandS(std::initializer_list<AcEdToken> tokens)
{
    return runWith({tokens.begin(), tokens.end()});
}

int acedCommandTokens(const std::vector<AcEdToken> &tokens)
{
    return runWith({tokens.begin(), tokens.end()});
}
