// Database functions that are no members: entity data lists and copying.
#pragma once

#include "host/acdb/dbentity.h"

/// The data list of an object as programs see it: -1 name, 0 kind, owner before handle, 100 markers, 67 and
/// 410 always for entities, defaults as entgetdefaults.h says, angles in radians, points as one group; then,
/// for the applications asked for (names with wildcards, separated by commas; empty: none), -3 and their
/// extended data. Empty for erased or missing objects.
ResbufList acdbEntGetX(AcDbObjectId id, const QString &applications = {});

/// acdbEntGetX(), without extended data, of entities that stand in one block and are as the file has them.
/// Any thread may ask while the drawing's own thread changes nothing.
class AcDbFiledData
{
public:
    /// On the drawing's own thread.
    explicit AcDbFiledData(AcDbObjectId block);
    AcDbObjectId block() const { return m_block; }
    /// Whether it may be asked about. On the drawing's own thread.
    bool holds(AcDbObjectId entity) const;
    ResbufList of(AcDbObjectId entity) const;

private:
    AcDbObjectId m_block;
    ResbufList m_space; ///< What the lists say of the block.
};

/// Copies entities into a block of the same drawing, in the order given, with what they own; references among
/// them, those of extended data too, point to the copies. Reactors hear of each as appended. `copies`
/// receives the new ids.
Acad::ErrorStatus acdbDeepCloneEntities(const std::vector<AcDbObjectId> &entities, AcDbObjectId blockRecord,
                                        std::vector<AcDbObjectId> &copies);
