// WindowFrontEnd: the face of the editor that a person sees. Commands ask it for answers; it waits in an
// event loop until the drawing view, the command line or a menu gives one.
//
// The widgets listen to it and give it answers; it knows none of them.
#pragma once

#include "host/aced/edfrontend.h"

#include <QObject>

#include <deque>
#include <functional>

class QEventLoop;

namespace window
{

class WindowFrontEnd : public QObject, public AcEdFrontEnd
{
    Q_OBJECT

public:
    explicit WindowFrontEnd(QObject *parent = nullptr);

    // AcEdFrontEnd
    std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override;
    std::optional<QString> dialogLine(const QString &) override { return std::nullopt; }
    bool isScripted() const override { return false; }
    void print(const QString &text) override;
    /// What a macro has left goes when it gave the answer that is refused, and waits again for a user's.
    void refuseAnswer(const QString &reason) override;
    QStringList heldKeys() const override;
    std::optional<QRect> drawingWindow() const override;
    void showChosen(const std::vector<AcDbObjectId> &entities) override { Q_EMIT chosenShown(entities); }
    void showPlace(const std::vector<AcGePoint3d> &outline) override { Q_EMIT placeShown(outline); }
    void focusDrawing() override;
    void lookAgain() override;
    bool progress(const QString &what, double share) override;
    void showService(const QString &text) override { Q_EMIT serviceShown(text); }
    AcEdDrawingKeeper *drawingKeeper() override { return m_drawingKeeper; }

    /// What is being asked; null while a command works, and what whenIdle() was given.
    const AcEdPrompt *prompt() const { return m_prompt; }
    /// Waiting for a command.
    bool isIdle() const { return m_prompt && m_prompt->kind == AcEdPromptKind::command && !m_given; }

    /// Answers the prompt that waits, or one of the next when it has its answer; dropped while none waits.
    void give(const AcEdAnswer &answer);
    void giveText(const QString &typed);
    void cancel();
    /// Answers for this prompt and the following ones; none stands for one that the user gives.
    void queue(std::vector<std::optional<AcEdAnswer>> answers);
    /// Runs a menu macro: "^C^C_LINE ", blanks and semicolons are Enter, a backslash waits for the user.
    void runMacro(const QString &macro);
    /// Runs the function when the next command is asked for, at once when that is now. A running command is
    /// cancelled. What the function queues for the editor runs afterwards.
    void whenIdle(std::function<void()> function);
    /// The user leaves: the running command is cancelled and no answer ever comes again.
    void leave();

    /// Where the drawing is on the screen, and the window that gets the focus back; given by the main window.
    void setDrawing(QWidget *view) { m_drawing = view; }
    /// Whom commands leave drawings to; given by the main window.
    void setDrawingKeeper(AcEdDrawingKeeper *keeper) { m_drawingKeeper = keeper; }
    /// The last command that was given at the command prompt, for repeating it.
    const QString &lastCommand() const { return m_lastCommand; }

Q_SIGNALS:
    /// Another prompt waits, or none any more.
    void promptChanged();
    void printed(const QString &text);
    /// As AcEdFrontEnd::showChosen().
    void chosenShown(const std::vector<AcDbObjectId> &entities);
    /// As AcEdFrontEnd::showPlace().
    void placeShown(const std::vector<AcGePoint3d> &outline);
    /// As AcEdFrontEnd::showService().
    void serviceShown(const QString &text);
    /// As AcEdFrontEnd::progress(). A slot that wants the work to stop calls stopWork().
    void progressed(const QString &what, double share);

public Q_SLOTS:
    void stopWork() { m_stopped = true; }

private:
    std::optional<AcEdAnswer> nextQueued(const AcEdPrompt &prompt);
    bool runPending(const AcEdPrompt &prompt);
    std::optional<AcEdAnswer> wait(const AcEdPrompt &prompt);
    std::optional<AcEdAnswer> askFile(const AcEdPrompt &prompt);
    void echo(const AcEdPrompt &prompt, const AcEdAnswer &answer);

    QWidget *m_drawing = nullptr;
    const AcEdPrompt *m_prompt = nullptr;
    QEventLoop *m_loop = nullptr;
    std::optional<AcEdAnswer> m_given;
    std::deque<std::optional<AcEdAnswer>> m_queued;
    bool m_queueAnswered = false; ///< The last answer came from the queue,
    bool m_queuePaused = false;   ///< or the queue left it to the user.
    std::deque<std::function<void()>> m_pending;
    QString m_lastCommand;
    bool m_lineEnded = false; ///< What was printed last is a prompt with its answer.
    AcEdDrawingKeeper *m_drawingKeeper = nullptr;
    bool m_leaving = false;
    bool m_stopped = false;
};

/// The answers that a menu macro stands for.
std::vector<std::optional<AcEdAnswer>> readMacro(const QString &macro);

} // namespace window
