// The table of colour indexes. 10 to 249 are 24 hues in five steps of brightness, each in full and in pale.
#include "host/acgi/index_color.h"

#include <cstdlib>

namespace acgi
{

/// Share of a primary colour at a distance on the circle of 24 hues.
static double primaryShare(int hue, int primary)
{
    const int apart = std::abs(hue - primary);
    const int distance = apart > 12 ? 24 - apart : apart;
    return distance <= 4 ? 1.0 : distance >= 8 ? 0.0 : (8 - distance) / 4.0;
}

QRgb indexColor(int index)
{
    static constexpr QRgb kNamed[] = {0xFF000000, 0xFFFF0000, 0xFFFFFF00, 0xFF00FF00, 0xFF00FFFF,
                                      0xFF0000FF, 0xFFFF00FF, 0xFFFFFFFF, 0xFF808080, 0xFFC0C0C0};
    static constexpr int kGreys[] = {51, 80, 105, 130, 190, 255};
    static constexpr int kBrightness[] = {255, 165, 127, 76, 38};
    if (index < 0 || index > 255)
        return kNamed[7];
    if (index < 10)
        return kNamed[index];
    if (index >= 250)
        return qRgb(kGreys[index - 250], kGreys[index - 250], kGreys[index - 250]);
    const int hue = (index - 10) / 10;
    const int brightness = kBrightness[index % 10 / 2];
    const auto part = [&](int primary) {
        const double share = primaryShare(hue, primary);
        return int(brightness * (index % 2 ? 0.5 + 0.5 * share : share));
    };
    return qRgb(part(0), part(8), part(16));
}

} // namespace acgi
