#include "host/acgi/query/visibility.h"

#include "host/acdb/dbsymtb.h"

#include <algorithm>

namespace acgi
{

bool isSwitchedOff(const AcDbEntity &entity)
{
    return std::ranges::any_of(acdbCommonGroups(entity.groups()), [](const resbuf &group) {
        return group.restype == 60 && group.integer() != 0;
    });
}

static bool layerShows(AcDbObjectId layer)
{
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    return !record || !(record->isFrozen() || record->isOff());
}

bool isVisible(const AcDbEntity &entity)
{
    return !isSwitchedOff(entity) && layerShows(entity.layerId());
}

bool Visibility::isVisible(const AcDbEntity &entity, bool insideBlock)
{
    if (isSwitchedOff(entity))
        return false;
    const QString layer = entity.layer();
    return (insideBlock && layer == u"0") || !entity.database() || layerShows(*entity.database(), layer);
}

bool Visibility::layerShowsInBlock(const AcDbDatabase &database, const QString &layer)
{
    return layer == u"0" || layerShows(database, layer);
}

bool Visibility::layerShows(const AcDbDatabase &database, const QString &layer)
{
    const auto known = m_layers.constFind(layer);
    if (known != m_layers.cend())
        return *known;
    const bool shows = acgi::layerShows(database.tableRecord(SymbolTable::layer, layer));
    m_layers.insert(layer, shows);
    return shows;
}

} // namespace acgi
