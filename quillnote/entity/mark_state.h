// What drawing and editing of marks keep for the whole process.
#pragma once

#include "host/acdb/dbid.h"

#include <optional>
#include <unordered_set>

class AcDbDatabase;

struct MarkDrawingState {
    /// The text is not drawn: grips are shown. Lasts until a mark is drawn or closed or a command ends.
    bool textSuppressed = false;
    /// The setting "TextStyle", read by the first mark that is drawn after a command ended.
    std::optional<bool> trueType;
    /// Size of number flags; the tick resize commands change it.
    double flagScale = 1.0;
    /// Flags are refreshed while zooming, so those of leader marks may keep their size on the screen too.
    bool flagRefreshRunning = false;

    void reset() { *this = {}; }
    void commandEnded()
    {
        textSuppressed = false;
        trueType.reset();
    }
};

MarkDrawingState &markDrawingState();

/// The drawing's marks that were drawn at least once, kept with it; some of them may be gone by now.
std::unordered_set<AcDbObjectId> &drawnMarks(AcDbDatabase &database);
