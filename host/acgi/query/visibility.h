// What layers and the entity's own switch show.
#pragma once

#include "host/acdb/dbentity.h"

#include <QHash>

namespace acgi
{

/// False for entities with group 60 set, and for those whose layer is off or frozen. An entity whose
/// layer the drawing does not have is visible.
bool isVisible(const AcDbEntity &entity);

/// The entity's own switch, group 60.
bool isSwitchedOff(const AcDbEntity &entity);

/// The same for many entities of one drawing: looks each layer up once. Good as long as no layer changes.
class Visibility
{
public:
    /// Inside a block, layer 0 is the layer of the insert that shows the block.
    bool isVisible(const AcDbEntity &entity, bool insideBlock = false);
    /// A layer that the drawing does not have is shown.
    bool layerShows(const AcDbDatabase &database, const QString &layer);
    /// Whether an entity inside a block is shown as far as its layer goes.
    bool layerShowsInBlock(const AcDbDatabase &database, const QString &layer);

private:
    QHash<std::pair<const AcDbDatabase *, QString>, bool> m_layers;
};

} // namespace acgi
