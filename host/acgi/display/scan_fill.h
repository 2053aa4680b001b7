// Filling areas of very many corners row by row. QPainter takes minutes for such areas, or gives up, and
// cannot be told to stop.
#pragma once

#include <QPolygonF>
#include <QRect>

#include <atomic>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace acgi
{

/// Even-odd. `row` gets, for each row of `visible`, the coverage (0 to 256) of the pixels from its left edge.
/// What a pixel gets does not depend on `visible`. Ends soon once it is cancelled.
void scanFill(std::span<const QPolygonF> loops, const QRect &visible, const std::atomic<bool> &cancelled,
              const std::function<void(int y, std::span<const std::uint16_t> coverage)> &row);

} // namespace acgi
