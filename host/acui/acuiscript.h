// Dialog lines: what a script writes to work dialogs, message boxes and modeless windows.
//
//   set 1003 "text"        click 1036        doubleclick 1063 "entry"
//   ok   cancel   yes   no                   keys Ctrl+Enter
//   file "path"                              in CMarkWnd2 click 1006
//
// A text stands in double quotes, with \" \\ and \n inside; without quotes it is the rest of the line.
#pragma once

#include "host/base/result.h"

#include <QString>
#include <QStringList>

class QWidget;

struct AcUiAction {
    enum Verb { set, click, doubleClick, ok, cancel, yes, no, keys, file };
    Verb verb = ok;
    int number = 0; ///< Control or menu item; for set, click and doubleClick.
    QString text;   ///< Value, entry, keys or path.
    QString window; ///< Class of the modeless window that the action is for; empty: the dialog that is open.
};

/// Reads a line without its "@". The error is a sentence without a full stop. Fuzzed.
base::Result<AcUiAction, QString> acuiParseAction(const QString &line);

/// "Ctrl" or "Ctrl Shift" or "Ctrl+Alt": modifier keys only, in a fixed spelling. False when there is
/// another word among them; an empty text is an empty list.
bool acuiModifierKeys(const QString &text, QStringList &modifiers);

/// Does the action on a dialog or window. `heldKeys` are modifiers held down meanwhile. The error names the
/// control and says why it refused.
base::Result<void, QString> acuiPerform(QWidget &root, const AcUiAction &action,
                                        const QStringList &heldKeys = {});

/// Does the action on the window of the class that it names. Error when no such window is shown.
base::Result<void, QString> acuiPerformOnWindow(const AcUiAction &action, const QStringList &heldKeys = {});

/// Lets windows take notice of what was done: focus changes, queued signals, layouts.
void acuiSettle();
