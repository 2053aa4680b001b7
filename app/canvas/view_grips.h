// ViewGrips: the grips of the chosen entities as the drawing view shows them.
#pragma once

#include "host/acap/docman.h"
#include "host/acgi/viewport.h"

#include <QPainter>

#include <optional>

namespace window
{

class ViewGrips
{
public:
    /// Looks at the pick set again when it or the drawing has changed. True when the grips are others now.
    /// Large pick sets show no grips.
    bool update(AcApDocument *document);
    /// The grip whose square is at a pixel of the view.
    std::optional<AcGePoint3d> at(QPointF pixel, const AcGiViewport &view) const;
    /// `hovered` is under the cursor, `hot` is being dragged. The painter's coordinates are the view's
    /// pixels.
    void paint(QPainter &painter, const AcGiViewport &view, const std::optional<AcGePoint3d> &hovered,
               const std::optional<AcGePoint3d> &hot) const;

private:
    std::vector<AcGePoint3d> m_grips; ///< World.
    std::vector<AcDbObjectId> m_entities;
    const AcDbDatabase *m_database = nullptr;
    std::uint64_t m_changeCount = 0;
    int m_halfSize = 0; ///< GRIPSIZE; 0 when grips are off.
};

} // namespace window
