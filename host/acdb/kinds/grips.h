// Grips of a kind: which of its points can be dragged and what dragging does. The functions stand with their
// kinds.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acdb/kinds/entitytransform.h"

#include <initializer_list>
#include <optional>
#include <vector>

namespace gripping
{

/// The groups of an entity that say what it looks like, and its plane.
class Shape
{
public:
    explicit Shape(const AcDbEntity &entity);

    const AcDbEntity &entity() const { return m_entity; }
    const resbuf &group(std::size_t index) const { return m_entity.groups()[index]; }
    /// Indexes of all own groups of the code.
    std::vector<std::size_t> all(int code) const;
    std::optional<std::size_t> find(int code) const;
    std::optional<AcGePoint3d> point(int code) const
    {
        const auto found = find(code);
        return found ? std::optional(group(*found).point()) : std::nullopt;
    }
    double real(int code, double fallback) const
    {
        const auto found = find(code);
        return found ? group(*found).real() : fallback;
    }
    std::int64_t integer(int code) const
    {
        const auto found = find(code);
        return found ? group(*found).integer() : 0;
    }

    const AcGeVector3d &normal() const { return m_normal; }
    AcGePoint3d toWorld(const AcGePoint3d &inPlane) const { return m_toWorld * inPlane; }
    AcGePoint3d toPlane(const AcGePoint3d &world) const { return m_toWorld.inverse() * world; }

private:
    const AcDbEntity &m_entity;
    std::vector<std::size_t> m_own; ///< Indexes into the entity's groups.
    AcGeVector3d m_normal;
    AcGeMatrix3d m_toWorld;
};

struct Grip {
    enum Action : std::uint8_t {
        moveAll,
        movePoint,  ///< One group follows.
        moveVertex, ///< An entity that this one owns follows.
        reshape     ///< What the kind's own function makes of it.
    };
    AcGePoint3d place{}; ///< World.
    Action action = moveAll;
    Role role = Role::point; ///< Of the group that follows.
    std::size_t group = 0;
    int part = 0; ///< For the kind's own function.
    AcDbObjectId vertex{};
};
using Grips = std::vector<Grip>;

/// What a kind has of its own.
struct Habits {
    void (*list)(const Shape &, Grips &) = nullptr; ///< Null for kinds without grips.
    /// Drags grip `part` to a place (world). False when nothing sensible would come of it; then nothing is
    /// changed. Group indexes are those of the shape.
    bool (*reshape)(const Shape &, ResbufList &, int part, const AcGePoint3d &to) = nullptr;
    /// Runs after groups were moved.
    void (*finish)(ResbufList &) = nullptr;
};

// What many kinds do ------------------------------------------------------------------------------

void addWhole(Grips &grips, const std::optional<AcGePoint3d> &place);
/// A grip for every group of the code.
void addPoints(const Shape &shape, Grips &grips, int code, Role role);
void addReshaping(Grips &grips, std::initializer_list<AcGePoint3d> places);

/// The corner that the whole entity hangs on.
template <int code>
void wholeAtPoint(const Shape &shape, Grips &grips)
{
    addWhole(grips, shape.point(code));
}

template <int code>
void wholeAtPlanePoint(const Shape &shape, Grips &grips)
{
    if (const auto place = shape.point(code))
        addWhole(grips, shape.toWorld(*place));
}

/// Leaves a number alone that is the same but for rounding.
void setReal(resbuf &group, double value);
/// Of a length that a drag may give.
bool isSize(double value);

} // namespace gripping
