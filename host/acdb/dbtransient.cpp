#include "host/acdb/dbtransient.h"

#include "host/acdb/dbfiler.h"
#include "host/acdb/dbsymtb.h"

AcDbTransient::~AcDbTransient() = default;

std::vector<AcDbObjectId> AcDbTransient::partsOf(const AcDbStub &copy)
{
    std::vector<AcDbObjectId> parts;
    for (const auto &part : static_cast<const Stub &>(copy).copy->m_parts)
        parts.emplace_back(part->entity().objectId());
    return parts;
}

/// Custom entities that are in memory are copied as undo copies them: DXF does not carry all their fields.
static bool copyFields(const AcDbObject &from, AcDbObject &to)
{
    AcDbMemoryFiler out(AcDb::kUndoFiler, from.database());
    if (from.dwgOutFields(&out) != Acad::eOk)
        return false;
    AcDbMemoryFiler in(AcDb::kUndoFiler, from.database(), out.stream());
    return to.dwgInFields(&in) == Acad::eOk;
}

std::unique_ptr<AcDbTransient> AcDbTransient::copyOf(AcDbObjectId entity)
{
    const AcDbObjectPointer<AcDbEntity> original(entity, AcDb::kForRead);
    if (!original || original->m_isProxy)
        return nullptr;
    std::unique_ptr<AcDbTransient> copy(new AcDbTransient);
    static_cast<AcDbStub &>(copy->m_stub) = *entity.stub();
    copy->m_stub.copy = copy.get();
    copy->m_entity.reset(static_cast<AcDbEntity *>(original->isA()->create()));
    AcDbEntity &made = *copy->m_entity;
    copy->m_stub.object = &made;
    made.m_stub = &copy->m_stub;
    made.m_writing = true;
    made.m_groups = original->m_groups;
    if (original->isCustom() && !copyFields(*original, made))
        return nullptr;
    for (const AcDbObjectId owned : acdbSubEntities(entity)) {
        if (auto part = copyOf(owned))
            copy->m_parts.push_back(std::move(part));
    }
    return copy;
}
