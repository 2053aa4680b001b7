// Painting a whole drawing in one colour, and giving everything its own colour back. The colour from before
// stands with each entity, as extended data of an application.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/base/progress.h"

inline constexpr QStringView kColorApplication = u"QuillnoteColor";

struct Recoloured {
    std::size_t changed = 0;
    std::size_t skipped = 0; ///< Could not be written to.
    bool isStopped = false;
};

/// Every entity of every block but for review marks and the blocks of tick symbols, and every attribute of an
/// insert. Painting again keeps the colour from before the first time.
Recoloured paintEverything(AcDbDatabase &database, int colorIndex,
                           const base::ProgressTeller::Listener &listener);
/// What carries a colour from before a painting gets it back; the extended data stays.
Recoloured restoreColors(AcDbDatabase &database, const base::ProgressTeller::Listener &listener);
