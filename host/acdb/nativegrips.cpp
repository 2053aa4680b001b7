#include "host/acdb/nativegrips.h"

#include "host/acdb/kinds/entitykind.h"

#include <algorithm>

using namespace gripping;

namespace
{

/// Null for kinds without grips.
const Habits *habitsOf(const AcDbEntity &entity)
{
    const EntityKind *const kind = acdbEntityKind(entity.dxfName());
    return kind && kind->grips.list ? &kind->grips : nullptr;
}

Grips gripsOf(const Habits &kind, const Shape &shape)
{
    Grips grips;
    kind.list(shape, grips);
    return grips;
}

/// Points of a plane stay in it.
AcGeVector3d offsetFor(const Grip &grip, const Shape &shape, const AcGeVector3d &offset)
{
    if (grip.role == Role::point)
        return offset;
    return offset - shape.normal() * shape.normal().dotProduct(offset);
}

void moveGroup(ResbufList &groups, const Grip &grip, const Shape &shape, const AcGeVector3d &offset)
{
    const AcGeMatrix3d moved = AcGeMatrix3d::translation(offsetFor(grip, shape, offset));
    EntityTransform(groups, moved, shape.normal()).apply(grip.role, groups[grip.group]);
}

Acad::ErrorStatus moveVertex(const Grip &grip, const Shape &shape, const AcGeVector3d &offset)
{
    AcDbObjectPointer<AcDbEntity> vertex(grip.vertex, AcDb::kForWrite);
    if (!vertex)
        return vertex.openStatus();
    moveGroup(vertex->editGroups(), grip, shape, offset);
    return Acad::eOk;
}

} // namespace

std::vector<AcGePoint3d> acdbNativeGrips(const AcDbEntity &entity)
{
    std::vector<AcGePoint3d> places;
    if (const Habits *const kind = habitsOf(entity)) {
        for (const Grip &grip : gripsOf(*kind, Shape(entity)))
            places.push_back(grip.place);
    }
    return places;
}

Acad::ErrorStatus acdbMoveNativeGrips(AcDbEntity &entity, std::span<const int> grips,
                                      const AcGeVector3d &offset)
{
    const Habits *const kind = habitsOf(entity);
    if (!kind)
        return Acad::eInvalidIndex;
    const Shape shape(entity);
    const Grips known = gripsOf(*kind, shape);
    std::vector<int> dragged(grips.begin(), grips.end());
    std::ranges::sort(dragged);
    dragged.erase(std::unique(dragged.begin(), dragged.end()), dragged.end());
    if (dragged.empty() || dragged.front() < 0 || dragged.back() >= int(known.size()))
        return Acad::eInvalidIndex;

    const auto movesAll = [&](int i) { return known[std::size_t(i)].action == Grip::moveAll; };
    if (std::ranges::any_of(dragged, movesAll))
        return entity.transformBy(AcGeMatrix3d::translation(offset));
    for (const int i : dragged) {
        const Grip &grip = known[std::size_t(i)];
        if (grip.action == Grip::moveVertex) {
            if (const Acad::ErrorStatus refused = moveVertex(grip, shape, offset); refused != Acad::eOk)
                return refused;
        } else if (grip.action == Grip::movePoint) {
            moveGroup(entity.editGroups(), grip, shape, offset);
        } else if (!kind->reshape(shape, entity.editGroups(), grip.part, grip.place + offset)) {
            return Acad::eInvalidInput;
        }
    }
    if (kind->finish)
        kind->finish(entity.editGroups());
    return Acad::eOk;
}
