// Small glyphs as coverage masks, kept from one text to the next: a drawing repeats few glyphs very often.
#pragma once

#include "host/acgi/text/font.h"

#include <QPointF>

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace acgi
{

/// Glyph coordinates to pixels: (a x + c y, b x + d y).
struct GlyphMatrix {
    double a = 1.0;
    double b = 0.0;
    double c = 0.0;
    double d = 1.0;
    friend bool operator==(const GlyphMatrix &, const GlyphMatrix &) = default;
    QTransform at(QPointF origin) const { return {a, b, c, d, origin.x(), origin.y()}; }
};

/// Coverage of the pixels from (left, top), relative to the pixel that the glyph's origin lies in.
struct GlyphMask {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverage; ///< Row by row.
};

class GlyphMasks
{
public:
    /// Glyphs up to this many pixels high are worth a mask.
    static constexpr double kHighest = 48.0;

    void setMatrix(const GlyphMatrix &matrix);
    /// The mask of the glyph with its origin near `origin`; moves `origin` to the pixel that it is for.
    const GlyphMask &mask(const Glyph &glyph, QPointF &origin);

private:
    struct Key {
        const Glyph *glyph;
        std::uint32_t place;
        friend bool operator==(const Key &, const Key &) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key &key) const
        {
            return (reinterpret_cast<std::uintptr_t>(key.glyph) >> 4) * 31 + key.place;
        }
    };
    struct MatrixHash {
        std::size_t operator()(const GlyphMatrix &matrix) const;
    };
    using Set = std::unordered_map<Key, GlyphMask, KeyHash>;

    std::unordered_map<GlyphMatrix, Set, MatrixHash> m_sets;
    Set *m_set = nullptr;
    /// The masks asked for last, found without a search.
    struct Recent {
        const Set *set = nullptr;
        Key key{};
        const GlyphMask *mask = nullptr;
    };
    std::array<Recent, 1024> m_recent;
    GlyphMatrix m_matrix;
    std::size_t m_bytes = 0;
};

} // namespace acgi
