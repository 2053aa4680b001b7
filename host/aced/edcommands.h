// Commands: named functions that a person, a script, a menu or another command can run.
#pragma once

#include "host/base/listeners.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

enum AcEdCommandFlag : int {
    ACRX_CMD_MODAL = 0x00000000,
    ACRX_CMD_TRANSPARENT = 0x00000001,
    ACRX_CMD_USEPICKSET = 0x00000002,
    ACRX_CMD_NOUNDO = 0x00010000,  ///< Makes no step of its own (UNDO, ZOOM, SAVE).
    ACRX_CMD_SESSION = 0x00200000, ///< Runs outside any document; locks documents itself.
};

/// A flag of our own beside those of the platform: the command only says that it is not there yet, so menus
/// do not offer it.
inline constexpr int kCommandNotBuilt = 0x40000000;

struct AcEdCommand {
    QString group;
    QString globalName;
    QString localName;
    int flags = ACRX_CMD_MODAL;
    std::function<void()> function;
    const char *title = ""; ///< What people call it, before Host::tr(); empty: as a menu item that runs it.
    QStringList aliases{};  ///< Further names, in every language.
};

/// All commands of the process, in registration order. Names ignore letter case.
class AcEdCommandStack
{
public:
    /// False when the group has a command of that global name already.
    bool addCommand(AcEdCommand command);
    bool removeCmd(const QString &group, const QString &globalName);
    void removeGroup(const QString &group);
    /// By local name or alias, then by global name ("_LINE" is the global name LINE); later groups win; null.
    const AcEdCommand *lookup(const QString &name) const;
    const std::vector<AcEdCommand> &commands() const { return m_commands; }

private:
    std::vector<AcEdCommand> m_commands;
};

AcEdCommandStack *acedRegCmds();

/// What the macro of a menu item or a button runs first ("^C^C_QN3_Quillnote "); null for other macros.
const AcEdCommand *acedCommandOfMacro(const QString &macro);

class AcEditorReactor
{
public:
    virtual ~AcEditorReactor() = default;
    virtual void commandWillStart(const QString & /*globalName*/) {}
    virtual void commandEnded(const QString & /*globalName*/) {}
    virtual void commandCancelled(const QString & /*globalName*/) {}
    virtual void lispWillStart(const QString & /*firstLine*/) {}
    virtual void lispEnded() {}
};

/// The editor: runs commands one inside another and tells the reactors.
class AcEditor
{
public:
    void addReactor(AcEditorReactor *reactor) { m_reactors.add(reactor); }
    void removeReactor(AcEditorReactor *reactor) { m_reactors.remove(reactor); }

    /// Runs one command by name as one undo step, with document lock and notifications. RTNORM, RTCAN when
    /// it was cancelled, RTERROR with a printed line when there is no such command.
    int runCommand(const QString &name);
    /// One line as a person types it at the command prompt: a command name, a LISP expression.
    int execute(const QString &line);
    /// Runs queued expressions and then lines from the front end until there are no more, or QUIT.
    void processInput();
    /// Adds a LISP expression or command text to what runs before the next line.
    void queueExpression(const QString &expression);
    void runQueue();

    /// Global names of the running commands, outermost first, joined by apostrophes (CMDNAMES).
    QString activeCommands() const;
    /// The running command was told to stop (a prompt found no answer or was cancelled).
    void requestCancel() { m_cancelled = true; }
    bool isCancelled() const { return m_cancelled; }
    void requestQuit() { m_quit = true; }
    bool isQuitting() const { return m_quit; }

private:
    friend class AcEdRunningAs;
    int runLocked(const AcEdCommand &command);

    base::Listeners<AcEditorReactor> m_reactors;
    QStringList m_active;
    QStringList m_queue;
    bool m_cancelled = false;
    bool m_quit = false;
};

AcEditor *acedEditor();

/// While it lives, the editor tells this one command as running, whatever really is.
class AcEdRunningAs
{
public:
    explicit AcEdRunningAs(const QString &name);
    ~AcEdRunningAs();
    AcEdRunningAs(const AcEdRunningAs &) = delete;
    AcEdRunningAs &operator=(const AcEdRunningAs &) = delete;

private:
    QStringList m_before;
};

/// The platform's name for AcEditor::queueExpression.
void ads_queueexpr(const QString &expression);
