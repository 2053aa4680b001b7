// Which marks have a target that is no longer what their snapshot was taken of. Reads only.
#pragma once

#include "host/acdb/dbid.h"
#include "host/base/progress.h"

#include <QString>

#include <cstdint>
#include <span>
#include <vector>

class AcDbDatabase;

struct ChangedTarget {
    AcDbObjectId mark;
    QString number; ///< "7", "5.2"
    QString reviewer;
    std::size_t countBefore = 0; ///< Entities under the target.
    std::size_t countNow = 0;
    std::size_t gone = 0; ///< Of those before.
    std::size_t added = 0;
};

struct TargetComparison {
    std::vector<ChangedTarget> changed; ///< In the order of the marks.
    std::size_t compared = 0;
    std::size_t withoutSnapshot = 0; ///< Nothing is known of how their target looked.
    bool stopped = false;            ///< By the progress; the rest was not looked at.
};

/// Marks of one drawing. A mark whose outline code is negative has no target of its own and is passed over;
/// so is a leader mark that was never given a snapshot.
TargetComparison compareTargets(AcDbDatabase &database, std::span<const AcDbObjectId> marks,
                                const base::Progress &progress = {});

/// The handling status of those that have none yet becomes "fully corrected". What cannot be written (locked
/// layers) leaves the list, and is counted in the result.
int markCorrected(std::vector<ChangedTarget> &changed);
