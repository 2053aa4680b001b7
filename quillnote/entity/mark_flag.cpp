#include "quillnote/entity/mark_flag.h"

#include "quillnote/entity/mark_values.h"

#include <algorithm>

namespace
{

struct StatusColor {
    std::int16_t status;
    int color;
};

constexpr StatusColor kStatusColors[] = {
    {handling::kRefused, 6},           {handling::kNone, 1},      {handling::kDisputed, 30},
    {handling::kPartlyCorrected, 140}, {handling::kCorrected, 3},
};

/// Where a number of so many characters stands, in sizes of the flag.
struct NumberPlace {
    double right;
    double up;
    double size;
};

constexpr NumberPlace kNumberPlaces[] = {
    {0.3, 0.05, 0.75}, {0.1, 0.1, 0.7}, {0.0, 0.1, 0.6}, {-0.1, 0.15, 0.5}, {-0.15, 0.15, 0.5},
};

} // namespace

// Codes that are no status look as not handled.
static int fillColor(std::int16_t feedbackType)
{
    const auto row = std::ranges::find(kStatusColors, feedbackType, &StatusColor::status);
    return row == std::end(kStatusColors) ? 1 : row->color;
}

const AcGiTextStyle &markNumberStyle()
{
    static const AcGiTextStyle style = [] {
        AcGiTextStyle times;
        times.setFileName(QStringLiteral("TIMES.TTF"));
        return times;
    }();
    return style;
}

MarkFlag makeMarkFlag(const AcGePoint3d &anchor, double size, const MarkAxes &axes, const QString &number,
                      std::int16_t feedbackType)
{
    const AcGeVector3d right = axes.right * size;
    const AcGeVector3d up = axes.up * size;
    const AcGeVector3d intoNotch = right.rotateBy(1.25 * kGePi, axes.normal);
    MarkFlag flag;
    const AcGePoint3d freeEnd = anchor + right * 2.0;
    flag.outline = {anchor, freeEnd, freeEnd + intoNotch * (0.707167811865 * 1.2), freeEnd - up * 1.2,
                    anchor - up * 1.2};
    flag.fillColor = fillColor(feedbackType);
    flag.numberColor = feedbackType == handling::kCorrected ? 5 : 2;
    const qsizetype last = qsizetype(std::size(kNumberPlaces)) - 1;
    const NumberPlace &place = kNumberPlaces[std::clamp<qsizetype>(number.size() - 1, 0, last)];
    flag.number = {.text = number,
                   .base = anchor + right * (0.2 + place.right) + up * (place.up - 1.0),
                   .size = place.size * size,
                   .xScale = 1.0};
    return flag;
}
