// FontFace: one installed face, read without hinting and without a window system, so that text measures
// the same in the console, in tests and on the screen.
#pragma once

#include "host/acgi/text/font.h"

#include <optional>

namespace acgi
{

class FontFace
{
public:
    /// The face in a file as fontFileName() names it; null when no font folder has it. Kept for good.
    static const FontFace *find(const char *fileName);

    FontFace(const FontFace &) = delete;
    FontFace &operator=(const FontFace &) = delete;
    virtual ~FontFace() = default;

    /// 0 when the face lacks the character.
    virtual std::uint32_t glyphIndex(char32_t character) const = 0;
    /// Scaled so that the em is `emSize`.
    virtual Glyph glyph(std::uint32_t index, double emSize) const = 0;
    /// Height of a capital letter where the em is 1.
    virtual double capHeight() const = 0;
    /// The same face for painting; null without a QGuiApplication.
    virtual const QRawFont *rawFont() const = 0;

protected:
    FontFace() = default;
};

} // namespace acgi
