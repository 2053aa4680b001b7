#include "host/acgi/query/install.h"

#include "host/acgi/proxy/proxy_graphics.h"
#include "host/acgi/query/extents.h"

namespace acgi
{

void install()
{
    acdbSetNativeExtents([](const AcDbEntity &entity, AcDbExtents &extents) {
        // That would ask the entity again, which has just said that it knows none.
        return entity.isCustom() ? Acad::eInvalidExtents : extentsOf(entity, extents);
    });
    acdbSetProxyGraphics(makeProxyGraphics);
}

} // namespace acgi
