// Reading the groups of an entity or object that are its own, by code, and the entities that it consists of.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acdb/dbsymtb.h"

#include <iterator>
#include <span>

/// The groups of an entity or object without what others keep with it: application groups in braces, embedded
/// objects and extended data.
class OwnGroups
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = resbuf;
        using difference_type = std::ptrdiff_t;
        using pointer = const resbuf *;
        using reference = const resbuf &;

        Iterator() = default;
        Iterator(pointer at, pointer end) : m_at(at), m_end(end) { skip(); }
        reference operator*() const { return *m_at; }
        pointer operator->() const { return m_at; }
        Iterator &operator++()
        {
            ++m_at;
            skip();
            return *this;
        }
        Iterator operator++(int)
        {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const Iterator &a, const Iterator &b) { return a.m_at == b.m_at; }

    private:
        void skip()
        {
            while (m_at != m_end && m_applications.holds(*m_at))
                ++m_at;
        }

        pointer m_at = nullptr;
        pointer m_end = nullptr;
        ApplicationGroups m_applications;
    };

    explicit OwnGroups(const AcDbObject &object) : OwnGroups(std::span(object.groups())) {}
    explicit OwnGroups(std::span<const resbuf> groups) : m_groups(groups.first(ownGroupsEnd(groups))) {}
    /// Only what follows the marker `subclass`, up to the next one; everything when there is no such marker.
    OwnGroups(const AcDbObject &object, QStringView subclass)
        : OwnGroups(std::span(object.groups()), subclass)
    {
    }
    OwnGroups(std::span<const resbuf> groups, QStringView subclass);

    Iterator begin() const { return {m_groups.data(), m_groups.data() + m_groups.size()}; }
    Iterator end() const { return {m_groups.data() + m_groups.size(), m_groups.data() + m_groups.size()}; }

    const resbuf *find(int code) const;
    bool has(int code) const { return find(code) != nullptr; }
    /// The fallback also for what is no finite number.
    double real(int code, double fallback = 0.0) const;
    std::int64_t integer(int code, std::int64_t fallback = 0) const;
    QString text(int code) const;
    AcGePoint3d point(int code, AcGePoint3d fallback = {}) const;
    AcGeVector3d vector(int code, AcGeVector3d fallback = {}) const;
    /// Group 210; the Z axis when missing or without length.
    AcGeVector3d normal() const;
    std::vector<AcGePoint3d> points(int code) const;

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
