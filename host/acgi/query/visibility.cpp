#include "host/acgi/query/visibility.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"

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
    const std::pair key(&database, layer);
    const auto known = m_layers.constFind(key);
    if (known != m_layers.cend())
        return *known;
    const bool shows = acgi::layerShows(acdbShownLayer(database, layer));
    m_layers.insert(key, shows);
    return shows;
}

} // namespace acgi
