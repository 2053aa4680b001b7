// Reading native entities and objects for drawing: their own groups by code, and the entities they consist
// of.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acdb/dbsymtb.h"

#include <span>

/// The groups of an entity or object before embedded objects and extended data.
class EntityGroups
{
public:
    explicit EntityGroups(const AcDbObject &object);
    /// Only what follows the marker `subclass`; everything when the file has no markers.
    EntityGroups(const AcDbObject &object, QStringView subclass);

    const resbuf *find(int code) const;
    bool has(int code) const { return find(code) != nullptr; }
    double real(int code, double fallback = 0.0) const;
    std::int64_t integer(int code, std::int64_t fallback = 0) const;
    QString text(int code) const;
    AcGePoint3d point(int code, AcGePoint3d fallback = {}) const;
    AcGeVector3d vector(int code, AcGeVector3d fallback = {}) const;
    /// Group 210; the Z axis when missing or without length.
    AcGeVector3d normal() const;
    std::vector<AcGePoint3d> points(int code) const;

    auto begin() const { return m_groups.begin(); }
    auto end() const { return m_groups.end(); }

private:
    std::span<const resbuf> m_groups;
};

inline double radians(double degrees)
{
    return degrees * kGePi / 180.0;
}

/// True for the Z axis itself, so that flat drawings skip a matrix.
inline bool isZAxis(const AcGeVector3d &normal)
{
    return normal.x == 0.0 && normal.y == 0.0 && normal.z > 0.0;
}

/// Calls `use` with the entity open for read; also when somebody else has it open for write. Erased
/// entities and other objects are left out.
template <class Use>
void readEntity(AcDbObjectId id, Use use)
{
    AcDbObjectPointer<AcDbEntity> opened(id, AcDb::kForRead);
    if (opened)
        use(std::as_const(*opened));
    else if (opened.openStatus() == Acad::eWasOpenForWrite && id.isEntity())
        use(static_cast<const AcDbEntity &>(*id.stub()->object));
}

/// Calls `use` with an object of any kind open for read; missing, erased and objects that somebody is writing
/// are left out.
template <class Use>
void readObject(AcDbObjectId id, Use use)
{
    const AcDbObjectPointer<AcDbObject> opened(id, AcDb::kForRead);
    if (opened)
        use(std::as_const(*opened));
}

/// The object of a handle in the entity's drawing.
inline AcDbObjectId objectOf(const AcDbEntity &entity, AcDbHandle handle)
{
    return entity.database() && !handle.isNull() ? entity.database()->getAcDbObjectId(handle)
                                                 : AcDbObjectId();
}
