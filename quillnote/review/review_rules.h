// The rules of walking through marks: which ones are on the list, where a step leads, what a number or a word
// finds. Values in, values out.
#pragma once

#include "quillnote/review/mark_index.h"

#include "host/acge/geextents.h"

#include <QStringList>

#include <optional>

/// Places in `marks` of those that a reviewer filter ("ALL", a name, "*未命名*") passes.
std::vector<std::size_t> passingMarks(const std::vector<MarkSummary> &marks, const QString &filter);
/// Names in order of appearance, at most 16; marks without one are "*未命名*".
QStringList reviewersOf(const std::vector<MarkSummary> &marks);

/// One step back (-1) or forward (+1) on a list of handling statuses; with `onlyUnhandled` on to the next
/// mark of status 0, or to the end of the list whatever that is. No value where there is no step.
std::optional<std::size_t> stepFrom(std::size_t current, int by, const std::vector<std::int16_t> &statuses,
                                    bool onlyUnhandled);

struct WantedNumber {
    int markNumber = 0;
    int subNumber = 0;
    friend bool operator==(const WantedNumber &, const WantedNumber &) = default;
};
/// "12", "12.3", ".3"; what is no digit ends a number. No value for an empty text.
std::optional<WantedNumber> readWantedNumber(const QString &typed);
/// The first mark of that number; no value without one.
std::optional<std::size_t> findNumber(const std::vector<MarkSummary> &marks, const WantedNumber &wanted);
/// Places of marks whose opinion or feedback holds the text, letter case and all.
std::vector<std::size_t> findText(const std::vector<MarkSummary> &marks, const QString &text);

/// "12.3-4/30": number, place from 1 on, length of the list.
QString counterText(const MarkSummary &mark, std::size_t place, std::size_t count);
/// "校审人:" and the name, left out where the chosen filter says it already.
QString reviewerLine(const QString &reviewer, const QString &chosen);

/// The feedback as it is shown, and how it is told from what a person typed.
struct ShownFeedback {
    ShownFeedback() = default;
    ShownFeedback(const QString &feedbackName, const QString &feedbackContent);
    /// What is stored for a text that stands in the field: the name that the palette put before it is never
    /// part of it.
    QString stored(const QString &typed) const;

    QString text;   ///< With the name before it.
    QString prefix; ///< "李明:\n"; empty without a name.
};

/// Radio button of a handling status, and back; statuses that are none show as "not handled".
int statusControl(std::int16_t status);
std::optional<std::int16_t> statusOf(int control);

/// What a sheet is zoomed to: the mark with the margin of the setting "viewScale", moved aside
/// when the mark's picture stands beside it.
AcDbExtents sheetWindow(const AcDbExtents &mark, int viewScale, bool besidePicture);
