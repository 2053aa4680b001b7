// AcEdFrontEnd: the face through which the editor talks to a person or to a script.
//
// There is one in a running program: the console's script reader, the window, or a test's. The editor
// asks it for answers and hands it texts; commands never see it.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

class AcApDocument;
class AcDbEntity;

enum class AcEdPromptKind {
    command,
    point,
    corner,
    distance,
    angle,
    integer,
    real,
    string,
    keyword,
    entity,
    selection,
    fileToOpen,  ///< The answer is a path; a window shows its file dialog.
    filesToOpen, ///< The same; there may be further files.
    fileToSave
};

/// What follows the cursor while a point is asked for: a jig, or copies of what is being moved.
class AcEdCursorTracker
{
public:
    virtual ~AcEdCursorTracker() = default;
    /// The cursor stands at a place (world). True when what is shown has changed.
    virtual bool cursorMoved(const AcGePoint3d &world) = 0;
    /// What is drawn over the picture; entities that stand in no drawing. Good until the next move.
    virtual std::vector<const AcDbEntity *> shown() const = 0;
};

/// What is being asked, for showing and for rubber bands.
struct AcEdPrompt {
    AcEdPromptKind kind = AcEdPromptKind::command;
    QString message;
    QStringList keywords; ///< "Yes", "No"; capitals mark the short form.
    bool hasBase = false;
    AcGePoint3d base; ///< Rubber bands start here; UCS coordinates.
    bool allowsEmpty = true;
    bool allowsBlanks = false; ///< Blanks are part of the answer.
    AcEdCursorTracker *tracker = nullptr;
    QString path; ///< Of file prompts: the name that is proposed.
};

/// One answer: typed text (empty: Enter), or something pointed at.
struct AcEdAnswer {
    enum Kind { text, point, entity, cancel };
    Kind kind = text;
    QString typed;
    AcGePoint3d where;          ///< For point and entity: world coordinates.
    AcDbObjectId picked;        ///< For entity.
    bool mayReplace = false;    ///< To a file prompt: replacing the file has been agreed to.
    QStringList furtherFiles{}; ///< To filesToOpen, beside the typed one.

    static AcEdAnswer ofText(const QString &typed) { return {text, typed, {}, {}}; }
    static AcEdAnswer ofPoint(const AcGePoint3d &world) { return {point, {}, world, {}}; }
    static AcEdAnswer ofEntity(AcDbObjectId entity, const AcGePoint3d &world)
    {
        return {AcEdAnswer::entity, {}, world, entity};
    }
    static AcEdAnswer ofCancel() { return {cancel, {}, {}, {}}; }
};

/// Opens, saves and closes drawings with more questions than a command line asks: what is to become of a file
/// that somebody else edits or has changed, of changes that are not saved. Its results are false when nothing
/// came of it; the user knows why.
class AcEdDrawingKeeper
{
public:
    virtual ~AcEdDrawingKeeper() = default;
    virtual bool open(const QString &path) = 0;
    /// Under its own name, or under `path`, which becomes its name.
    virtual bool save(AcApDocument *document, const QString &path = {}) = 0;
    /// False keeps all of them open.
    virtual bool mayClose(const std::vector<AcApDocument *> &documents) = 0;
};

class AcEdFrontEnd
{
public:
    virtual ~AcEdFrontEnd() = default;

    /// The next answer. No value: there is none and never will be (end of a script): the command is
    /// cancelled and the run ends.
    virtual std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) = 0;
    /// The next dialog line without its "@" ("set 1003 \"text\"", "ok"), when dialogs are answered by a
    /// script. No value: the script has no answer; `what` names the dialog for the message.
    virtual std::optional<QString> dialogLine(const QString &what) = 0;
    /// The last answer or dialog line makes no sense where it was given (a control that is not there, a value
    /// that it does not take). A script ends here with the reason; others just see it.
    virtual void refuseAnswer(const QString &reason) { print(QStringLiteral("\n") + reason); }
    /// True: dialogs run on dialogLine(); false: they are shown to a person.
    virtual bool isScripted() const = 0;
    /// Command-line output, as printed ("\n" begins a line).
    virtual void print(const QString &text) = 0;
    /// Keys held at the moment, as "Ctrl", "Shift" or "Alt".
    virtual QStringList heldKeys() const { return {}; }
    /// Where the drawing is shown, in pixels of the screen; none without a window.
    virtual std::optional<QRect> drawingWindow() const { return std::nullopt; }
    /// What the running command's selection has chosen so far; nothing when the command ends.
    virtual void showChosen(const std::vector<AcDbObjectId> & /*entities*/) {}
    /// An outline over the drawing (world; two points are a line) that stays where it is: what a dialog is
    /// about. Empty takes it away.
    virtual void showPlace(const std::vector<AcGePoint3d> & /*outline*/) {}
    /// Brings the input back to the drawing after another window had it.
    virtual void focusDrawing() {}
    /// A window beside the drawing changed it, its view or the queue of commands: the queue runs, and what is
    /// shown follows.
    virtual void lookAgain() {}
    /// Long work tells how far it has come, 0 to 1, and below 0 when it does not know; `what` is empty when
    /// it has ended. False: the user wants it to stop.
    virtual bool progress(const QString & /*what*/, double /*share*/) { return true; }
    /// What something that works beside the commands has to say, in one line; empty takes it away.
    virtual void showService(const QString & /*text*/) {}
    /// Null: commands ask for themselves.
    virtual AcEdDrawingKeeper *drawingKeeper() { return nullptr; }
};

/// The front end in use; never null (without one: prints to standard error, answers nothing).
AcEdFrontEnd &acedFrontEnd();
/// Returns the one before, so that tests can put it back; null restores the default.
AcEdFrontEnd *acedSetFrontEnd(AcEdFrontEnd *frontEnd);

/// Where the drawing is shown on the screen; without a window a rectangle of the view's size.
QRect acedDrawingWindow();

/// Prints on the command line.
void acutPrintf(const QString &text);
/// Prints the text as a failure of the running function.
void acdbFail(const QString &text);
