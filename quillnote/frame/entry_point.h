// The module's one exported function. Message numbers are the host's.
#pragma once

#include "host/acrx/rxmodule.h"

/// Handles the messages for start-up, unload, a drawing that was loaded, and a LISP function that was called;
/// ignores all others. Returns kRetOK always.
extern "C" __attribute__((visibility("default"))) AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message,
                                                                                  void *packet);
