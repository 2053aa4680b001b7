// Entities named by a place, by "Last" or by a handle.
#pragma once

#include "host/acap/docman.h"
#include "host/aced/edfilter.h"
#include "host/aced/edfrontend.h"

#include <optional>

/// The topmost visible entity of the current space under the pick box (PICKBOX pixels either way) at a world
/// point that passes the filter; null when there is none.
AcDbObjectId acedPickAt(const AcApDocument &document, const AcGePoint3d &world, const AcEdFilter &filter);
/// The newest visible entity of the current space.
AcDbObjectId acedLastEntity(const AcApDocument &document);

/// What an answer to a pick prompt points at.
struct AcEdPicked {
    AcDbObjectId entity; ///< Null: the place is empty.
    AcGePoint3d where;   ///< World; without a place the entity's own.
};
/// A point, an entity, "L", "Last" or "handle XX"; none when the answer is nothing of the kind.
std::optional<AcEdPicked> acedReadPick(const AcApDocument &document, const AcEdAnswer &answer,
                                       const AcEdFilter &filter);
