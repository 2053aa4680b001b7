// Grips of native entities: one row for each kind says which of its points can be dragged and what dragging
// does.
#pragma once

#include "host/acdb/dbentity.h"

/// World coordinates; empty for kinds without grips.
std::vector<AcGePoint3d> acdbNativeGrips(const AcDbEntity &entity);
/// As AcDbEntity::moveGripPointsAt(), for native kinds.
Acad::ErrorStatus acdbMoveNativeGrips(AcDbEntity &entity, std::span<const int> grips,
                                      const AcGeVector3d &offset);
