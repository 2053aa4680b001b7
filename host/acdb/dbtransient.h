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

    static bool isCopy(const AcDbEntity &entity) { return isCopy(*entity.objectId().stub()); }
    static bool isCopy(const AcDbStub &stub) { return stub.database->stub(stub.index) != &stub; }
    /// The copies of the vertices or attributes that the original of a copy owns.
    static std::vector<AcDbObjectId> partsOf(const AcDbStub &copy);

    /// It and its parts are open as long as the copy lives: opening them gives them to everybody.
    AcDbEntity &entity() { return *m_entity; }
    const AcDbEntity &entity() const { return *m_entity; }

private:
    AcDbTransient() = default;

    /// The original's, with the copy as its object.
    struct Stub : AcDbStub {
        const AcDbTransient *copy = nullptr;
    };

    Stub m_stub;
    std::unique_ptr<AcDbEntity> m_entity;
    std::vector<std::unique_ptr<AcDbTransient>> m_parts;
};
