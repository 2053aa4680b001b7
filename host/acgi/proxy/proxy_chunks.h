// The chunks of proxy graphics by number, for the reader and the writer.
#pragma once

#include "host/acgi/traits.h"

namespace acgi
{

namespace proxy
{

enum class Chunk : std::uint32_t {
    extents = 1,
    circle = 2,
    circleThrough = 3,
    arc = 4,
    arcThrough = 5,
    polyline = 6,
    polygon = 7,
    mesh = 8,
    shell = 9,
    text = 10,
    text2 = 11,
    constructionLine = 12,
    ray = 13,
    color = 14,
    layer = 16,
    linetype = 18,
    fill = 20,
    trueColor = 22,
    lineWeight = 23,
    linetypeScale = 24,
    pushMatrix = 29,
    pushMatrix2 = 30,
    popMatrix = 31,
    polylineWithNormal = 32,
    lightPolyline = 33,
    unicodeText = 36,
    unicodeText2 = 38,
    ellipticArc = 44,
};

/// Linetype numbers from here on mean by layer; the one below by block.
inline constexpr std::uint32_t kByLayerLinetype = 32767;
inline constexpr std::uint32_t kByBlockLinetype = 32766;

/// The top byte of a packed colour says how it is stated.
enum ColorForm : std::uint32_t { kByLayer = 0xC0, kByBlock = 0xC1, kRgb = 0xC2, kIndex = 0xC3 };

inline AcCmEntityColor colorOf(std::uint32_t packed)
{
    switch (packed >> 24) {
    case kByBlock:
        return AcCmEntityColor::byBlock();
    case kRgb:
        return AcCmEntityColor::fromRgb(packed & 0xFFFFFFu);
    case kIndex:
        return AcCmEntityColor::fromIndex(int(packed & 0xFFFFu));
    default:
        return AcCmEntityColor::byLayer();
    }
}

} // namespace proxy

} // namespace acgi
