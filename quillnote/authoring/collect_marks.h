// The one collector of review marks: which marks a drawing holds, in the order that every list uses.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <QStringList>

#include <vector>

/// Shown for marks without a reviewer's name, and a filter that passes just them.
inline constexpr char16_t kUnnamedReviewer[] = u"*未命名*";
/// As many names as are told apart.
inline constexpr qsizetype kMostReviewers = 16;

struct MarkFilter {
    /// "ALL"; a reviewer's name, ignoring letter case; "*未命名*" or empty for marks without a name.
    QString reviewer = QStringLiteral("ALL");
    /// Only marks of this number; 0 passes all.
    std::uint16_t markNumber = 0;
};

/// Whether a mark of this reviewer, surrounding blanks aside, passes a filter.
bool passesReviewer(const QString &filter, const QString &reviewer);

struct CollectedMarks {
    std::vector<AcDbObjectId> ids; ///< Layouts in table order, entities in drawing order.
    QStringList reviewers;         ///< Of all marks whatever the filter, in order of appearance; at most 16.
};

/// In the same order, without opening one.
std::vector<AcDbObjectId> markIds(const AcDbDatabase &database);
CollectedMarks collectMarks(const AcDbDatabase &database, const MarkFilter &filter = {});
