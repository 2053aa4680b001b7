// The codes that say how a mark looks: outline, text-box frame, leader and display mode. Marks are filed with
// these numbers. A record may hold any other one: it stays as it is, and the questions below answer no to it.
#pragma once

#include <cstdint>

/// The outline around the target. Waves are bumps like those of a cloud, thin or thick.
enum class TargetStyle : std::int16_t {
    none = 0, ///< A sketch alone, or a leader mark whose leader says where its target is.
    ellipse = 1,
    thinWaves = 2,
    thinWaveEllipse = 3,
    bevel = 4,
    thickWaves = 5,
    thickWaveEllipse = 6,
    thickPolygon = 51, ///< From here on the outline runs through the vertices of the mark.
    thickSpline = 52,
    thinPolygon = 53,
    thinSpline = 54,
};

/// Marks of old versions had a leader when their code was negative. In later ones the sign is left over: such
/// a mark has no snapshot, and its ellipse is a quarter larger.
constexpr bool isNegative(TargetStyle style)
{
    return int(style) < 0;
}
constexpr TargetStyle withoutSign(TargetStyle style)
{
    return isNegative(style) ? TargetStyle(-int(style)) : style;
}
/// The outline is fitted into the rectangle of the target.
constexpr bool fillsRectangle(TargetStyle style)
{
    return int(style) >= 1 && int(style) < 50;
}
/// The outline runs through the vertices of the mark.
constexpr bool hasVertices(TargetStyle style)
{
    return int(style) > 50;
}
constexpr bool isPolygon(TargetStyle style)
{
    return style == TargetStyle::thickPolygon || style == TargetStyle::thinPolygon;
}
constexpr bool isSpline(TargetStyle style)
{
    return style == TargetStyle::thickSpline || style == TargetStyle::thinSpline;
}
constexpr bool isEllipse(TargetStyle style)
{
    return style == TargetStyle::ellipse || style == TargetStyle::thinWaveEllipse ||
           style == TargetStyle::thickWaveEllipse;
}
constexpr bool isWaveRectangle(TargetStyle style)
{
    return style == TargetStyle::thinWaves || style == TargetStyle::thickWaves;
}
/// Of the outlines with waves.
constexpr bool hasThinWaves(TargetStyle style)
{
    return style == TargetStyle::thinWaves || style == TargetStyle::thinWaveEllipse ||
           style == TargetStyle::thinPolygon || style == TargetStyle::thinSpline;
}

/// The frame of a leader mark's text box: the field `flagStyle`, and the setting "BKstyle".
enum class FrameStyle : std::int16_t {
    none = 0, ///< Of freehand marks.
    underline = 100,
    waveLine = 101,
    rectangle = 102,
    bevel = 103, ///< What other numbers look like, too.
    thinWaves = 104,
    thickWaves = 105,
};
constexpr FrameStyle orBevel(FrameStyle style)
{
    return style >= FrameStyle::underline && style <= FrameStyle::thickWaves ? style : FrameStyle::bevel;
}

enum class LeaderMode : std::int16_t {
    flag = 0,   ///< A flag mark: the text stands below the target.
    leader = 1, ///< A leader mark: the text stands in a box that leaders join to the target.
};
constexpr bool hasTextBox(LeaderMode mode)
{
    return int(mode) >= 1;
}

/// How much of a mark is seen.
enum class DisplayMode : std::int16_t {
    hidden = -1,
    full = 0,
    shrunk = 1, ///< Only the flag.
};
