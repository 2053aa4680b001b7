// ClipRegion: the part of the plane that clips leave, for questions about what is drawn under them.
#pragma once

#include "host/acge/geextents.h"
#include "host/acgi/geometry.h"

#include <functional>

namespace acgi
{

class ClipRegion
{
public:
    /// World coordinates; x and y count.
    void push(std::vector<Loop> loops, bool inverted);
    void pop() { m_clips.pop_back(); }
    bool isEverything() const { return m_clips.empty(); }

    bool holds(const AcGePoint3d &point) const;
    enum class Shown { none, perhaps, all };
    /// How much of what lies in the box shows.
    Shown shownOf(const AcDbExtents &box) const;
    /// The box that nothing shows beyond; not valid when there is none.
    AcDbExtents box() const;
    /// Calls `visit` with the ends (0 to 1) of each part of the line that shows.
    void visitShown(const AcGePoint3d &from, const AcGePoint3d &to,
                    const std::function<void(double, double)> &visit) const;
    /// Calls `visit` with the ends of each part of the clips' outlines that lies in the area and shows.
    void visitOutlinesIn(std::span<const Loop> area,
                         const std::function<void(const AcGePoint3d &, const AcGePoint3d &)> &visit) const;

private:
    struct Clip {
        std::vector<Loop> loops;
        bool inverted;
        AcDbExtents box;
    };
    std::vector<Clip> m_clips;
};

/// By the even-odd rule, seen from above.
bool areaHolds(std::span<const Loop> loops, double x, double y);

} // namespace acgi
