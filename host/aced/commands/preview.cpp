#include "host/aced/commands/preview.h"

#include <utility>

namespace hostcommands
{

/// More would not keep up with the cursor.
static constexpr std::size_t kMostShown = 300;

Preview::Preview(AcEdSelectionSet entities, ChangeAt changeAt)
    : m_entities(std::move(entities)), m_changeAt(std::move(changeAt))
{
    if (m_entities.size() > kMostShown)
        m_entities.clear();
}

bool Preview::cursorMoved(const AcGePoint3d &world)
{
    const bool wasEmpty = m_copies.empty();
    m_copies.clear();
    const Change change = m_changeAt(world);
    for (std::size_t place = 0; change && place < m_entities.size(); ++place) {
        std::unique_ptr<AcDbTransient> copy = AcDbTransient::copyOf(m_entities[place]);
        if (copy && change(place, copy->entity()))
            m_copies.push_back(std::move(copy));
    }
    return !wasEmpty || !m_copies.empty();
}

std::vector<const AcDbEntity *> Preview::shown() const
{
    std::vector<const AcDbEntity *> entities;
    for (const auto &copy : m_copies)
        entities.push_back(&copy->entity());
    return entities;
}

Preview transformPreview(const AcEdSelectionSet &entities,
                         std::function<std::optional<AcGeMatrix3d>(const AcGePoint3d &cursor)> matrixAt)
{
    return Preview(entities, [matrixAt = std::move(matrixAt)](const AcGePoint3d &cursor) -> Preview::Change {
        const std::optional<AcGeMatrix3d> matrix = matrixAt(cursor);
        if (!matrix)
            return {};
        return [matrix](std::size_t, AcDbEntity &copy) { return copy.transformBy(*matrix) == Acad::eOk; };
    });
}

} // namespace hostcommands
