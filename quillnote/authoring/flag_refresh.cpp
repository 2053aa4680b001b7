#include "quillnote/authoring/flag_refresh.h"

#include "quillnote/entity/mark_state.h"

#include "host/acap/docman.h"
#include "host/aced/edwinmsg.h"
#include "host/acgi/display/display.h"
#include "host/os/clock.h"

#include <optional>

void refreshDrawnMarks()
{
    AcApDocument *const document = curDoc();
    if (!document)
        return;
    const AcAxDocLock lock(document);
    if (lock.lockStatus() != Acad::eOk)
        return;
    auto &drawn = drawnMarks(*document->database());
    std::erase_if(drawn, [](AcDbObjectId id) { return !id.isValid(); });
    acgi::Display &display = acgi::displayOf(*document->database());
    for (const AcDbObjectId id : drawn)
        display.regenerate(id);
}

static constexpr std::int64_t kShortestPause = 50; // Milliseconds.

/// The clock at the last refresh.
static std::optional<std::int64_t> s_lastRefresh;

static bool mayChangeTheView(const AcEdWindowMessage &message)
{
    return message.window != 0 && (message.message == WM_PAINT || message.message == WM_MOUSEWHEEL);
}

static bool filterMessage(const AcEdWindowMessage &message)
{
    if (!mayChangeTheView(message) || markDrawingState().textSuppressed)
        return false;
    const std::int64_t now = os::milliseconds();
    if (s_lastRefresh && now - *s_lastRefresh < kShortestPause)
        return false;
    // Refreshing may paint, which must not come back here.
    const bool removed = acedRemoveFilterWinMsg(filterMessage);
    refreshDrawnMarks();
    if (removed)
        acedRegisterFilterWinMsg(filterMessage);
    s_lastRefresh = now;
    return false;
}

bool startFlagRefresh()
{
    bool &isRunning = markDrawingState().flagRefreshRunning;
    if (!isRunning)
        isRunning = acedRegisterFilterWinMsg(filterMessage);
    return isRunning;
}

void stopFlagRefresh()
{
    if (markDrawingState().flagRefreshRunning)
        acedRemoveFilterWinMsg(filterMessage);
    markDrawingState().flagRefreshRunning = false;
    s_lastRefresh.reset();
}

void QN3_AutoRedraw()
{
    startFlagRefresh();
}

void QN3_AutoOFF()
{
    stopFlagRefresh();
}
