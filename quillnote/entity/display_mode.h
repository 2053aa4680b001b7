// How much is seen of a mark or a hot link; kept in the entity, so it is saved.
#pragma once

#include "host/acdb/dbentity.h"

/// An entity that is so already is not written to. False when it could not be.
template <class Entity, class Mode>
bool setDisplayMode(AcDbObjectId id, Mode mode)
{
    AcDbObjectPointer<Entity> entity(id, AcDb::kForRead);
    if (!entity)
        return false;
    if (entity->displayMode == mode)
        return true;
    if (entity->upgradeOpen() != Acad::eOk)
        return false;
    entity->displayMode = mode;
    return true;
}
