// Multi-line text as entities store it.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/text/mtext.h"

#include <optional>

namespace acgi
{

/// The multi-line text inside an attribute or its definition; nothing when it has one line.
std::optional<MText> embeddedMText(const AcDbEntity &entity);

} // namespace acgi
