#include "app/canvas/view_grips.h"

#include "host/acdb/dbentity.h"
#include "host/aced/edsysvar.h"

#include <cmath>

namespace window
{

/// As with every CAD program: whoever chooses more wants to do something else with it.
static constexpr std::size_t kMostEntities = 100;
static constexpr std::size_t kMostGrips = 5000;

bool ViewGrips::update(AcApDocument *document)
{
    const double ratio = document ? document->view().pixelRatio : 1.0;
    const int halfSize = acedIntVar(QStringLiteral("GRIPS"), 2) != 0
                             ? int(std::lround(acedIntVar(QStringLiteral("GRIPSIZE"), 5) * ratio))
                             : 0;
    const AcDbDatabase *const database = document ? document->database() : nullptr;
    const std::uint64_t changeCount = database ? database->changeCount() : 0;
    const std::vector<AcDbObjectId> entities = document ? document->pickSet() : std::vector<AcDbObjectId>();
    if (m_database == database && m_changeCount == changeCount && m_entities == entities &&
        m_halfSize == halfSize)
        return false;
    m_database = database;
    m_changeCount = changeCount;
    m_entities = entities;
    m_halfSize = halfSize;
    const std::vector<AcGePoint3d> before = std::move(m_grips);
    m_grips.clear();
    if (halfSize == 0 || entities.size() > kMostEntities)
        return !before.empty();
    for (const AcDbObjectId id : entities) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        const auto grips = entity ? entity->getGripPoints() : std::vector<AcGePoint3d>();
        if (m_grips.size() + grips.size() <= kMostGrips)
            m_grips.insert(m_grips.end(), grips.begin(), grips.end());
    }
    return m_grips != before;
}

std::optional<AcGePoint3d> ViewGrips::at(QPointF pixel, const AcGiViewport &view) const
{
    const AcGeMatrix3d toPixel = view.worldToPixel();
    std::optional<AcGePoint3d> nearest;
    double distance = m_halfSize * view.pixelRatio + 0.5;
    for (const AcGePoint3d &grip : m_grips) {
        const AcGePoint3d place = toPixel * grip;
        const double away = std::max(std::abs(place.x - pixel.x()), std::abs(place.y - pixel.y()));
        if (away <= distance) {
            distance = away;
            nearest = grip;
        }
    }
    return nearest;
}

void ViewGrips::paint(QPainter &painter, const AcGiViewport &view, const std::optional<AcGePoint3d> &hovered,
                      const std::optional<AcGePoint3d> &hot) const
{
    static const QColor kCold(0, 110, 230);
    static const QColor kHovered(255, 140, 110);
    static const QColor kHot(225, 0, 0);
    if (m_halfSize == 0)
        return;
    const int halfSize = int(std::lround(m_halfSize * view.pixelRatio));
    const AcGeMatrix3d toPixel = view.worldToPixel();
    const QRectF seen(0, 0, view.pixelWidth, view.pixelHeight);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const AcGePoint3d &grip : m_grips) {
        const AcGePoint3d place = toPixel * grip;
        if (!seen.contains(place.x, place.y))
            continue;
        const bool isHot = hot && grip.isEqualTo(*hot, view.pixelSize() / 2.0);
        const QColor fill = isHot                                                         ? kHot
                            : hovered && grip.isEqualTo(*hovered, view.pixelSize() / 2.0) ? kHovered
                                                                                          : kCold;
        const QRect square(int(std::lround(place.x)) - halfSize, int(std::lround(place.y)) - halfSize,
                           2 * halfSize, 2 * halfSize);
        painter.fillRect(square, fill);
        // An edge that stands out from light and from dark backgrounds.
        painter.setPen(fill.darker(180));
        painter.drawRect(square);
    }
    painter.restore();
}

} // namespace window
