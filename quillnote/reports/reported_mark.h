// What reports say of a mark, read once so that the mark is closed again while its report is made.
#pragma once

#include "host/acdb/dbid.h"

#include <QString>

#include <cstdint>
#include <optional>

struct ReportedMark {
    AcDbObjectId id;
    QString number;     ///< "7", "5.2"
    double order = 0.0; ///< Sorts by number: 5.2 as 5.02, before 5.10 and 5.12.
    bool isHidden = false;
    std::int16_t status = 0; ///< mark_values.h
    QString opinion;
    QString feedback;
    QString reviewer;
    QString designer;
    QString reviewDate;   ///< "2024-05-06 07:08:09"
    QString revisionDate; ///< The same; empty without feedback.
};

/// Value of `order`.
double markOrder(std::uint16_t markNumber, std::uint16_t subNumber);

/// None when the mark cannot be opened.
std::optional<ReportedMark> readReportedMark(AcDbObjectId id);

/// True when a text of the mark holds markup that a browser would run in a page that has it as it stands: a
/// script, a frame, an object, an event handler.
bool holdsRunnableMarkup(const ReportedMark &mark);
/// Says on the command line that it does, and which mark it is.
void warnOfRunnableMarkup(const ReportedMark &mark);
