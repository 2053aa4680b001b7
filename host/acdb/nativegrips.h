// Grips of native entities; which a kind has stands with the kinds (kinds/).
#pragma once

#include "host/acdb/dbentity.h"

/// World coordinates; empty for kinds without grips.
std::vector<AcGePoint3d> acdbNativeGrips(const AcDbEntity &entity);
/// As AcDbEntity::moveGripPointsAt(), for native kinds.
Acad::ErrorStatus acdbMoveNativeGrips(AcDbEntity &entity, std::span<const int> grips,
                                      const AcGeVector3d &offset);
