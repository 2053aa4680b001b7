// What reports let the user choose in the drawing: the marks that they are about, and texts for their fields.
#pragma once

#include "quillnote/reports/reported_mark.h"

#include <optional>
#include <vector>

/// Asks for marks; all marks of the drawing when none is chosen. Sorted by number. Empty, and told on the
/// command line, when the drawing has none; none when the command was cancelled.
std::optional<std::vector<ReportedMark>> selectMarks();

/// Asks for texts of the drawing and joins them with line breaks (CR LF); the first 16 of more. None when
/// nothing is chosen.
std::optional<QString> pickTexts();
