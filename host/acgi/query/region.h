// Is an entity inside a window, does it touch it, is it under a pick box: answered by true geometry,
// seen from above (x and y of the world).
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/viewport.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace acgi
{

class BlockExtents;

/// A convex quadrilateral in the XY plane: a rectangle of the view, turned by its twist.
class Window
{
public:
    /// Corners in order, either way round.
    explicit Window(const std::array<AcGePoint2d, 4> &corners);
    /// The rectangle with two opposite corners whose sides are turned by `angle` radians from the axes.
    static Window fromCorners(const AcGePoint3d &one, const AcGePoint3d &other, double angle = 0.0);
    /// The square around a point; `aperture` is half its side.
    static Window aroundPoint(const AcGePoint3d &point, double aperture);

    /// Counter-clockwise.
    const std::array<AcGePoint2d, 4> &corners() const { return m_corners; }
    /// A window without area contains nothing and meets nothing.
    bool isEmpty() const { return m_isEmpty; }
    const AcDbExtents &extents() const { return m_extents; }
    bool contains(const AcGePoint3d &point) const;
    /// The whole box.
    bool contains(const AcDbExtents &box) const;
    /// False only when the box misses the window for sure.
    bool mayMeet(const AcDbExtents &box) const;

private:
    std::array<AcGePoint2d, 4> m_corners;
    AcDbExtents m_extents;
    bool m_isEmpty = false;
};

/// Everything that the entity shows lies inside; false for what shows nothing. Entities inside blocks
/// count unless their layer or their own switch hides them; whether `entity` itself is visible is not
/// asked. `blocks`, when given, saves looking into blocks that lie wholly inside or outside.
bool liesInside(const AcDbEntity &entity, const Window &window, BlockExtents *blocks = nullptr);

/// Something that the entity shows lies inside or touches the border. Areas and texts count as filled.
bool crosses(const AcDbEntity &entity, const Window &window, BlockExtents *blocks = nullptr);
/// crosses() of each window, none of them empty; the entity is drawn once for all of them.
std::vector<bool> crossesEach(const AcDbEntity &entity, std::span<const Window *const> windows,
                              BlockExtents &blocks);

/// Custom entities that look different in each view are picked as they look in the view on the screen, which
/// the owner of the views gives; null when the drawing is not shown. Without it their box counts.
using ScreenViewProvider = std::optional<AcGiViewport> (*)(const AcDbDatabase &database);
void setScreenView(ScreenViewProvider provider);
std::optional<AcGiViewport> screenView(const AcDbDatabase &database);

} // namespace acgi
