// Moves the groups of native entities: which codes of which kind are points, directions, lengths, angles.
#pragma once

#include "host/acdb/errorstatus.h"
#include "host/acdb/resbuf.h"
#include "host/acge/gematrix.h"

/// Transforms one native entity, whose groups stand as in a file (group 0 first, angles in degrees).
/// The matrix is a similarity: translation, rotation, uniform scale, reflection, in any combination.
/// What a reflection does: arcs and bulges keep their true shape; TEXT becomes backward text, MTEXT is
/// seen from behind, an INSERT gets a negative Y factor.
///
/// Only groups whose value changes are assigned; groups that stood at their default are added when
/// they leave it. Positions and sizes in the extended data (1011, 1012, 1013, 1041, 1042) go along.
///
/// `ownerNormal` is the extrusion direction of the POLYLINE that owns a VERTEX, before the transform.
/// The picture block of a DIMENSION is not touched; it belongs to the caller.
///
/// eNotApplicable for kinds it does not know, eInvalidInput for matrices that are no similarity and where a
/// number would become too large; then nothing is changed.
Acad::ErrorStatus acdbTransformGroups(ResbufList &groups, const AcGeMatrix3d &matrix,
                                      const AcGeVector3d &ownerNormal = AcGeVector3d::kZAxis);

/// Direction of the lines of an MTEXT that states none (11) and no rotation (50): the world's x axis where
/// that lies in the plane of the text, else the x axis of the plane.
AcGeVector3d acdbUnstatedTextDirection(const AcGeVector3d &normal);
