// Message boxes of the widget layer: shown to a person, answered by "@ok", "@yes" ... in a scripted run.
#pragma once

#include "host/aced/edmessage.h"

class AcUiMessageBox : public AcEdMessageBox
{
public:
    /// Enter presses the button that changes nothing: Cancel, else No, else OK. In a scripted run the text is
    /// printed; an answer that the box has no button for is refused, and without an answer the box is left by
    /// that same button.
    AcEdButton show(const QString &text, AcEdButtons buttons) override;
};

/// True for what a front end is told of a message box that has only an OK button: nothing depends on it.
bool acuiIsAlert(const QString &what);
