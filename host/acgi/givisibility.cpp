#include "host/acgi/givisibility.h"

#include "host/acdb/dbsymtb.h"

#include <algorithm>

bool acgiIsSwitchedOff(const AcDbEntity &entity)
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
    const auto known = m_layers.constFind(layer);
    if (known != m_layers.cend())
        return *known;
    const bool shows = ::layerShows(database.tableRecord(SymbolTable::layer, layer));
    m_layers.insert(layer, shows);
    return shows;
}
