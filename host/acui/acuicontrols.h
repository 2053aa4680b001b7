// Controls by number: every control and menu item of a form carries its number as its object name
// ("id1003"). Finding them, and working them as a person would.
#pragma once

#include "host/base/result.h"

#include <QString>

class QAction;
class QWidget;

inline constexpr int kAcUiOk = 1;     ///< The button that confirms a dialog.
inline constexpr int kAcUiCancel = 2; ///< The button that leaves it.

/// "id1003"
QString acuiObjectName(int number);

/// The control of that number inside `root`; null when there is none. Dialogs that `root` owns are looked
/// over: their numbers are their own.
QWidget *acuiFindControl(const QWidget &root, int number);
/// The menu item of that number inside `root` or one of its menus; null when there is none.
QAction *acuiFindAction(const QWidget &root, int number);

/// What a control shows: text of an edit, caption of a label or button, chosen entry of a list.
QString acuiControlText(const QWidget &control);
/// Puts a text where a program would; no limits apply. False for a control that shows no text.
bool acuiSetControlText(QWidget &control, const QString &text);

/// Why something could not be done: "is disabled", "has no entry \"x\"".
using AcUiRefusal = QString;

/// Each of these moves the focus to the control and tells its listeners what a person's hands would tell.
/// Hidden and disabled controls refuse.
///
/// The value is a text for edits and editable lists, an entry for lists and tabs, 0 or 1 for check boxes,
/// 1 for radio buttons, a number for spin boxes and sliders.
base::Result<void, AcUiRefusal> acuiEnterValue(QWidget &control, const QString &value);
base::Result<void, AcUiRefusal> acuiPress(QWidget &control);
base::Result<void, AcUiRefusal> acuiPress(QAction &item);
/// Double-clicks the entry of a list.
base::Result<void, AcUiRefusal> acuiDoubleClick(QWidget &control, const QString &entry);
