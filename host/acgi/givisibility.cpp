#include "host/acgi/givisibility.h"

#include "host/acdb/dbsymtb.h"

#include <algorithm>

static bool isSwitchedOff(const AcDbEntity &entity)
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
    return !isSwitchedOff(entity) && layerShows(entity.layerId());
}

bool AcGiVisibility::isVisible(const AcDbEntity &entity, bool insideBlock)
{
    if (isSwitchedOff(entity))
        return false;
    const QString layer = entity.layer();
    if (insideBlock && layer == u"0")
        return true;
    const auto known = std::ranges::find(m_layers, layer, &std::pair<QString, bool>::first);
    if (known != m_layers.end())
        return known->second;
    const bool shows = layerShows(entity.layerId());
    m_layers.emplace_back(layer, shows);
    return shows;
}
