#include "host/acgi/givisibility.h"

#include "host/acdb/dbsymtb.h"

#include <algorithm>

bool acgiIsSwitchedOff(const AcDbEntity &entity)
{
    const resbuf *const invisible = findGroup(entity.groups(), 60);
    return invisible && invisible->integer() != 0;
}

static bool layerShows(AcDbObjectId layer)
{
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    return !record || !(record->isFrozen() || record->isOff());
}

bool acgiIsVisible(const AcDbEntity &entity)
{
    return !acgiIsSwitchedOff(entity) && layerShows(entity.layerId());
}

bool AcGiVisibility::isVisible(const AcDbEntity &entity, bool insideBlock)
{
    if (acgiIsSwitchedOff(entity))
        return false;
    const QString layer = entity.layer();
    return (insideBlock && layer == u"0") || !entity.database() || layerShows(*entity.database(), layer);
}

bool AcGiVisibility::layerShowsInBlock(const AcDbDatabase &database, const QString &layer)
{
    return layer == u"0" || layerShows(database, layer);
}

bool AcGiVisibility::layerShows(const AcDbDatabase &database, const QString &layer)
{
    const auto known = std::ranges::find(m_layers, layer, &std::pair<QString, bool>::first);
    if (known != m_layers.end())
        return known->second;
    const bool shows = ::layerShows(database.tableRecord(SymbolTable::layer, layer));
    m_layers.emplace_back(layer, shows);
    return shows;
}
