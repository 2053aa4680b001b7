// What primitives look like: colour, layer, linetype, weight. Entities state it, and may state it by their
// layer or by the block that they stand in; the sinks that show something resolve it.
#pragma once

#include "host/acdb/dbid.h"

#include <cstdint>

/// A colour as entities and layers state it.
class AcCmEntityColor
{
public:
    enum ColorMethod : std::uint8_t {
        kByLayer,
        kByBlock,
        kByACI,     ///< Colour index 1 to 255; 7 is black or white, whatever the background is not.
        kByColor,   ///< Red, green, blue.
        kBackground ///< Whatever lies behind the drawing: what a wipeout covers with.
    };

    static AcCmEntityColor byLayer() { return {}; }
    static AcCmEntityColor byBlock() { return {kByBlock, 0}; }
    static AcCmEntityColor background() { return {kBackground, 0}; }
    /// Group 62: 0 by block, 256 by layer; negative ones (layers that are off) count as positive.
    static AcCmEntityColor fromIndex(int index);
    /// Group 420: 0x00RRGGBB.
    static AcCmEntityColor fromRgb(std::uint32_t rgb) { return {kByColor, rgb & 0xFFFFFFu}; }

    ColorMethod colorMethod() const { return m_method; }
    int colorIndex() const { return m_method == kByACI ? int(m_value) : m_method == kByBlock ? 0 : 256; }
    std::uint32_t rgb() const { return m_value; }
    friend bool operator==(const AcCmEntityColor &, const AcCmEntityColor &) = default;

    AcCmEntityColor() = default; ///< By layer.

private:
    AcCmEntityColor(ColorMethod method, std::uint32_t value) : m_method(method), m_value(value) {}

    ColorMethod m_method = kByLayer;
    std::uint32_t m_value = 0;
};

enum AcGiFillType : std::uint8_t { kAcGiFillAlways = 1, kAcGiFillNever = 2 };

namespace acgi
{

/// How a thing is stated: by itself, by its layer, by the block reference that shows it.
enum class Stated : std::uint8_t { byLayer, byBlock, itself };

/// The traits of a primitive, as stated: nothing is looked up yet.
struct Traits {
    AcDbObjectId layer; ///< Null counts as layer "0".
    AcCmEntityColor color;
    Stated linetypeBy = Stated::byLayer;
    AcDbObjectId linetype;      ///< When stated itself; null is continuous.
    double linetypeScale = 1.0; ///< Of the entity; the drawing's ($LTSCALE) comes on top.
    int lineWeight = -1;        ///< Hundredths of a millimetre; -1 by layer, -2 by block, -3 default.
    bool alwaysWide = false;    ///< As wide as stated even where lines show no weight.
    Stated alphaBy = Stated::byLayer;
    std::uint8_t alpha = 255;               ///< When stated itself: 255 is opaque.
    AcGiFillType fillType = kAcGiFillNever; ///< Whether polygon() is an area or an outline.
    friend bool operator==(const Traits &, const Traits &) = default;
};

} // namespace acgi

/// The pen that an entity draws with: set it, then draw. Each entity starts with its own traits.
class AcGiSubEntityTraits
{
public:
    const acgi::Traits &traits() const { return m_traits; }
    void setTraits(const acgi::Traits &traits) { m_traits = traits; }

    /// Colour index; 0 by block, 256 by layer.
    void setColor(int index) { m_traits.color = AcCmEntityColor::fromIndex(index); }
    void setTrueColor(const AcCmEntityColor &color) { m_traits.color = color; }
    void setLayer(AcDbObjectId layer) { m_traits.layer = layer; }
    /// A record of the linetype table, also "ByLayer", "ByBlock" and "Continuous".
    void setLineType(AcDbObjectId linetype);
    void setLineTypeScale(double scale) { m_traits.linetypeScale = scale; }
    void setLineWeight(int weight) { m_traits.lineWeight = weight; }
    /// For what was drawn in its width and not set up to have one: screens and plots without weights show it.
    void setAlwaysWide(bool always) { m_traits.alwaysWide = always; }
    void setFillType(AcGiFillType type) { m_traits.fillType = type; }
    AcGiFillType fillType() const { return m_traits.fillType; }

private:
    acgi::Traits m_traits;
};
