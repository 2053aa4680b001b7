// The clip of a block reference: the part of the block that it shows. It is kept beside the reference, as
// other programs keep it; moving and turning the reference takes it along.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/errorstatus.h"
#include "host/acge/gepoint.h"

#include <span>

class AcDbObject;

/// The object that keeps the clip of a reference, switched on or not; null for none.
AcDbObjectId acdbClipOf(const AcDbObject &reference);
/// Clips to a polygon of at least three corners, given where the reference stands (in its owner's
/// coordinates), seen along `normal`; `inverted` leaves what lies outside. It takes the place of an earlier
/// one. eNotApplicable in a drawing whose file has no place for it.
Acad::ErrorStatus acdbSetClip(AcDbObjectId reference, std::span<const AcGePoint3d> corners,
                              const AcGeVector3d &normal, bool inverted);
/// eKeyNotFound without a clip.
Acad::ErrorStatus acdbSwitchClip(AcDbObjectId reference, bool on);
Acad::ErrorStatus acdbRemoveClip(AcDbObjectId reference);
