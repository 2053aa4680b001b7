// Message boxes, for code below the widget layer: the widget layer installs itself here.
#pragma once

#include <QString>

enum class AcEdButtons { ok, okCancel, yesNo, yesNoCancel };
enum class AcEdButton { ok, cancel, yes, no };

class AcEdMessageBox
{
public:
    virtual ~AcEdMessageBox() = default;
    virtual AcEdButton show(const QString &text, AcEdButtons buttons) = 0;
};
/// Null restores the default, which prints the text and answers from the script ("@ok", "@yes" ...).
void acedSetMessageBox(AcEdMessageBox *box);

/// Shows a message and waits.
void acedAlert(const QString &text);
/// The command could not do what it was asked: acedRefuse(), so that a script ends here, and for who sits
/// before a window a message box as well.
void acedFail(const QString &text);
AcEdButton acedAsk(const QString &text, AcEdButtons buttons);
