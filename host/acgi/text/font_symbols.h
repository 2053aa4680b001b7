// Technical symbols that the installed faces lack: the diameter sign and those of geometric tolerances.
#pragma once

#include "host/acgi/text/font.h"

#include <optional>

namespace acgi
{

/// The symbol of a character (U+2205, U+2316 ...), drawn in thin strokes; nothing for other characters.
std::optional<Glyph> symbolGlyph(char32_t character);

/// The symbol that a letter of a tolerance font stands for; nothing when it shows as itself.
std::optional<Glyph> toleranceGlyph(char32_t letter);

} // namespace acgi
