// From the path of a hand to the few points of a stroke.
#pragma once

#include <QPointF>

#include <span>
#include <vector>

namespace ink
{

/// The path without the trembling of the hand, rounded between samples that lie far apart, in as few points
/// as show no difference. Begins and ends where the samples do; corners stay. Pixels. A path that went
/// nowhere becomes one point; no samples give no points.
std::vector<QPointF> strokeOf(std::span<const QPointF> samples);

} // namespace ink
