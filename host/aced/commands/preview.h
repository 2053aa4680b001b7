// Previews of editing commands: what would come of the entities if the cursor's place were the answer.
#pragma once

#include "host/acdb/dbtransient.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edselect.h"

#include <functional>

namespace hostcommands
{

/// Copies of entities, changed anew for each place of the cursor. Too many entities are not shown at all.
class Preview : public AcEdCursorTracker
{
public:
    /// Changes the copy of the entity at this place of the list; false leaves it out.
    using Change = std::function<bool(std::size_t place, AcDbEntity &copy)>;
    /// The change for a place of the cursor (world); an empty function shows nothing.
    using ChangeAt = std::function<Change(const AcGePoint3d &cursor)>;

    Preview(AcEdSelectionSet entities, ChangeAt changeAt);
    bool cursorMoved(const AcGePoint3d &world) override;
    std::vector<const AcDbEntity *> shown() const override;

private:
    AcEdSelectionSet m_entities;
    ChangeAt m_changeAt;
    std::vector<std::unique_ptr<AcDbTransient>> m_copies;
};

/// Copies that a matrix transforms; without a matrix nothing is shown.
Preview transformPreview(const AcEdSelectionSet &entities,
                         std::function<std::optional<AcGeMatrix3d>(const AcGePoint3d &cursor)> matrixAt);

} // namespace hostcommands
