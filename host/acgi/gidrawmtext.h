// Multi-line text as entities store it.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/gimtext.h"

#include <optional>

namespace acgi
{

/// The multi-line text inside an attribute or its definition; nothing when it has one line.
std::optional<AcGiMText> embeddedMText(const AcDbEntity &entity);

} // namespace acgi
