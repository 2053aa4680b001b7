// Where the bytes of an object hold its handle.
#pragma once

#include "host/formats/dxf/dxfsource.h"

namespace dxf
{

struct HandleGroup {
    std::uint64_t handle = 0;
    std::string_view bytes;      ///< The whole group; empty when the object has none.
    std::string_view firstGroup; ///< The object's group 0.
};

/// By the same rule as reading: the last 105, else the first 5, before the first subclass marker or extended
/// data.
HandleGroup findHandleGroup(const DxfSource &source, std::string_view object);

} // namespace dxf
