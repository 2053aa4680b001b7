// Taking the snapshots of marks anew: both pictures and the fingerprint, as the drawing is now.
#pragma once

#include "quillnote/authoring/collect_marks.h"

#include "host/base/progress.h"

#include <QString>

#include <functional>
#include <optional>

/// Command: refreshes the marks of the current user (the setting "name"; without it all marks) once the user
/// has said yes, and asks for the passwords of protected ones.
void QN3_freshSnapshot();

/// The marks that the current user may refresh; none, and told on the command line, when there are none.
std::optional<CollectedMarks> marksToRefresh(AcDbDatabase &database);

struct RefreshResult {
    int refreshed = 0; ///< Marks with a target.
    int skipped = 0;   ///< Cannot be written, or `mayChange` refused.
    bool stopped = false;
};

/// Works on the current drawing; its view moves from mark to mark, each in its own space, and ends at the
/// last one. The handling status of every mark that is reached is cleared. `mayChange` hears the password
/// hash of each mark. A stop leaves every mark either as it was or wholly refreshed.
RefreshResult refreshSnapshots(const std::vector<AcDbObjectId> &marks,
                               const std::function<bool(const QString &)> &mayChange,
                               const base::Progress &progress = {});
