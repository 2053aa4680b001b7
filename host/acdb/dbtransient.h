// AcDbTransient: a copy of an entity that stands in no drawing but reads as though it stood where the
// original does (layers, styles, blocks). It may be changed and drawn; the drawing never learns of it.
#pragma once

#include "host/acdb/dbentity.h"

class AcDbTransient
{
public:
    /// Null when the entity is erased, cannot be read, or is of a class that is missing. A writer's changes
    /// that are under way are not seen.
    static std::unique_ptr<AcDbTransient> copyOf(AcDbObjectId entity);
    ~AcDbTransient();
    AcDbTransient(const AcDbTransient &) = delete;
    AcDbTransient &operator=(const AcDbTransient &) = delete;

    /// True for the entity of such a copy: what it owns in the drawing is the original's.
    static bool isCopy(const AcDbEntity &entity);

    /// Open for write as long as the copy lives. Attributes and vertices are not copied with it.
    AcDbEntity &entity() { return *m_entity; }
    const AcDbEntity &entity() const { return *m_entity; }

private:
    AcDbTransient() = default;

    AcDbStub m_stub; ///< The original's, with the copy as its object.
    std::unique_ptr<AcDbEntity> m_entity;
};
