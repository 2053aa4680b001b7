// The windows of the sample module.
#pragma once

#include "host/acui/acuidialog.h"

/// An edit 1003, and an OK button that asks again.
class CSample : public CAcUiDialog
{
    Q_OBJECT

public:
    CSample();
};

/// A window that stays open; its button 1006 sends a command to the drawing.
class CPalette : public CAcUiDialog
{
    Q_OBJECT

public:
    CPalette();
};
