// Filters of window messages: functions that hear of what happens to the drawing window before the window
// itself does.
#pragma once

#include <QtGlobal>

enum AcEdWindowMessageKind : int {
    WM_PAINT = 15,       ///< The drawing is about to be painted.
    WM_MOUSEWHEEL = 522, ///< The wheel was turned over it.
};

struct AcEdWindowMessage {
    int message = 0;
    quintptr window = 0; ///< Which drawing window; 0 for messages to none.
};

/// True swallows the message.
using AcEdFilterWinMsg = bool (*)(const AcEdWindowMessage &message);

/// False when the filter is registered already.
bool acedRegisterFilterWinMsg(AcEdFilterWinMsg filter);
/// False when it is not registered.
bool acedRemoveFilterWinMsg(AcEdFilterWinMsg filter);
/// The window asks all filters, the last registered first. True when one swallowed the message. Filters may
/// remove and register themselves and others meanwhile.
bool acedFilterWindowMessage(const AcEdWindowMessage &message);
