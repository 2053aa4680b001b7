// Proxy graphics: the picture that a file keeps of an entity for programs that do not know its kind
// (docs/formats/proxy-graphics.md has the bytes).
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/geometry.h"

#include <span>

namespace acgi
{

/// Draws proxy graphics. False when the bytes end early or make no sense; what came before was drawn. Chunks
/// of unknown kinds are stepped over.
bool drawProxyGraphics(std::span<const std::byte> graphics, const AcDbEntity &entity, AcGiGeometry &sink);
/// The graphics bytes that an entity carries (groups 92 or 160 with 310); empty when it has none.
QByteArray proxyGraphicsOf(const AcDbEntity &entity);
/// What a custom entity draws for programs that do not know it (AcDbEntity::saveAs).
QByteArray makeProxyGraphics(const AcDbEntity &entity);

} // namespace acgi
