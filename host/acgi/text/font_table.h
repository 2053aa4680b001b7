// Which installed faces stand for the fonts of drawings: the one table, and how a font is looked up in it.
#pragma once

#include "host/acgi/text/font.h"

namespace acgi
{

enum class FontFamily : std::uint8_t {
    sans,
    serif,
    mono,
    cjk,    ///< Carries Latin letters too.
    symbols ///< Letters stand for the symbols of geometric tolerances.
};

struct FontChoice {
    FontFamily family = FontFamily::sans;
    bool isListed = true; ///< False: the table does not know the font; `family` is the last resort.
    bool isStroke = true; ///< A shape font: ideographs are as high as capital letters.
    bool bold = false;
    bool italic = false;
    friend bool operator==(const FontChoice &, const FontChoice &) = default;
};

/// Any shape font counts as listed: they all are stroke letters of the same proportions, and a drawing may
/// bring its own. Typefaces and their files are listed or not.
FontChoice chooseFont(const FontRequest &request);

/// Name of the file with the faces of a family, as installed; the style that is nearest to the wanted one.
const char *fontFileName(FontFamily family, bool bold, bool italic);

} // namespace acgi
