// What every report of the current drawing begins with: its marks and its path, or a line that says what is
// missing.
#pragma once

#include "quillnote/authoring/collect_marks.h"

#include <optional>

struct ReportStart {
    CollectedMarks marks; ///< One at least.
    QString drawing;      ///< drawingPath()
};

/// None, and told on the command line, for a drawing without marks or one that was never saved.
std::optional<ReportStart> startReport();

/// The path of the current drawing; none, and told on the command line, when it was never saved.
std::optional<QString> savedDrawingPath();
