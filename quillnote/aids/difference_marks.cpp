#include "quillnote/aids/difference_marks.h"

#include "quillnote/authoring/new_mark.h"
#include "quillnote/frame/settings/settings.h"

#include "host/aced/edview.h"

#include <algorithm>

static constexpr double kMargin = 0.1;       ///< Of the place's longer side.
static constexpr double kLeastMargin = 1e-3; ///< Of the drawing's.

/// A drawing may differ in a point or a straight line; a target has an area.
static AcGeVector3d marginOf(const AcDbExtents &box, const AcDbExtents &drawing)
{
    const auto longer = [](const AcDbExtents &each) {
        const AcGeVector3d size = each.maxPoint() - each.minPoint();
        return std::max(size.x, size.y);
    };
    const double least = drawing.isValid() ? longer(drawing) * kLeastMargin : 1.0;
    const double margin = std::max(longer(box) * kMargin, least);
    return {margin, margin, 0.0};
}

int markPlaces(AcDbDatabase &database, const std::vector<DifferingPlace> &places)
{
    const AcDbExtents drawing = acedSpaceExtents(database, database.currentSpaceId());
    int made = 0;
    for (const DifferingPlace &place : places) {
        const AcGeVector3d margin = marginOf(place.box, drawing);
        NewMark request;
        request.corner1 = place.box.minPoint() - margin;
        request.corner2 = place.box.maxPoint() + margin;
        request.corner1.z = request.corner2.z = 0.0;
        request.reviewerName = settings::text(u"name");
        request.opinionText =
            QStringLiteral("与旧图不同：删除 %1，新增 %2。").arg(place.removed).arg(place.added);
        made += createMark(database, request).isNull() ? 0 : 1;
    }
    return made;
}
