// AcEdFrontEnd: the face through which the editor talks to a person or to a script.
//
// There is one in a running program: the console's script reader, the window, or a test's. The editor
// asks it for answers and hands it texts; commands never see it.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QString>
#include <QStringList>

#include <optional>

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
    selection
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
};

/// One answer: typed text (empty: Enter), or something pointed at.
struct AcEdAnswer {
    enum Kind { text, point, entity, cancel };
    Kind kind = text;
    QString typed;
    AcGePoint3d where;   ///< For point and entity: world coordinates.
    AcDbObjectId picked; ///< For entity.
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
};

/// The front end in use; never null (without one: prints to standard error, answers nothing).
AcEdFrontEnd &acedFrontEnd();
/// Returns the one before, so that tests can put it back; null restores the default.
AcEdFrontEnd *acedSetFrontEnd(AcEdFrontEnd *frontEnd);

/// Prints on the command line.
void acutPrintf(const QString &text);
/// Prints the text as a failure of the running function.
void acdbFail(const QString &text);
