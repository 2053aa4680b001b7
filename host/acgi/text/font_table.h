// Which installed faces stand for the fonts of drawings: the one table, and how a font is looked up in it.
#pragma once

#include "host/acgi/text/font.h"

#include <cstdint>
#include <optional>

namespace acgi
{

/// Whose letter widths a font has, where the face that stands for it has others.
enum class LetterWidths : std::uint8_t {
    ofFace,
    plain, ///< Of stroke letters: simplex, romans and what is made after them.
    serif, ///< Of stroke letters with serifs: complex, romanc.
    even,  ///< Of txt, nearly all of one width.
    one    ///< All of one width: monotxt.
};

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
    LetterWidths letters = LetterWidths::ofFace;
    double width = 1.0; ///< Of the letters of the face, where `letters` does not say.
    friend bool operator==(const FontChoice &, const FontChoice &) = default;
};

/// Any shape font counts as listed: they all are stroke letters of the same proportions, and a drawing may
/// bring its own. Typefaces and their files are listed or not.
FontChoice chooseFont(const FontRequest &request);

/// Advance of a letter at text height 1; nothing when the widths are those of the face or the letter is none
/// of ASCII with or without an accent.
std::optional<double> letterWidth(LetterWidths letters, char32_t character);

/// Name of the file with the faces of a family, as installed; the style that is nearest to the wanted one.
const char *fontFileName(FontFamily family, bool bold, bool italic);

} // namespace acgi
