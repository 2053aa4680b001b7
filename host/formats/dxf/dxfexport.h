// A drawing that came from another format as a whole DXF file of its own version.
#pragma once

#include "host/acdb/dbdatabase.h"

namespace dxf
{

struct Exported {
    QByteArray bytes;
    std::uint32_t objects = 0; ///< How many were written.
    QStringList losses;        ///< What DXF cannot hold of the drawing, a sentence each.
};

/// Objects whose groups are only bits (100 AcDbProxyEntity, AcDbProxyObject) are written as the proxies that
/// DXF has for them, when the drawing has a record of their class; the others are left out and told in
/// `losses`.
Exported exportDrawing(const AcDbDatabase &database);

} // namespace dxf
