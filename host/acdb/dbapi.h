// Database functions that are no members: entity data lists and copying.
#pragma once

#include "host/acdb/dbentity.h"

/// The data list of an object as programs see it: -1 name, 0 kind, owner before handle, 100 markers, 67 and
/// 410 always for entities, defaults as entgetdefaults.h says, angles in radians, points as one group; then,
/// for the applications asked for (names with wildcards, separated by commas; empty: none), -3 and their
/// extended data. Empty for erased or missing objects.
ResbufList acdbEntGetX(AcDbObjectId id, const QString &applications = {});

/// Copies entities into a block of the same drawing, in the order given, with what they own; references among
/// them, those of extended data too, point to the copies. Reactors hear of each as appended. `copies`
/// receives the new ids.
Acad::ErrorStatus acdbDeepCloneEntities(const std::vector<AcDbObjectId> &entities, AcDbObjectId blockRecord,
                                        std::vector<AcDbObjectId> &copies);
