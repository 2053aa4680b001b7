// Font: the installed face that stands for a font of a drawing, with its measures and outlines. Text is
// measured and drawn by this one class, so the two always agree.
#pragma once

#include <QPainterPath>
#include <QRawFont>
#include <QString>

#include <memory>
#include <vector>

namespace acgi
{

/// A font as drawings name it. Names are compared without case, folder and, for shape fonts, extension.
struct FontRequest {
    QString fontFile;    ///< "txt", "romans.shx", "simsun.ttc"; empty: the default shape font.
    QString bigFontFile; ///< "gbcbig.shx", or empty.
    QString typeface;    ///< "SimSun", "Times New Roman": wins over the file.
    bool bold = false;
    bool italic = false;
    friend bool operator==(const FontRequest &, const FontRequest &) = default;
};

/// A glyph at text height 1 (a capital letter is 1 high), base line at y = 0, y up.
struct Glyph {
    double advance = 0.0;
    QPainterPath outline; ///< Fill by winding.
};

/// One placed glyph of a line.
struct PlacedGlyph {
    const Glyph *glyph;
    double x; ///< Of its origin, from the start of the line, at text height 1.
    const QRawFont
        *face; ///< Null for symbols that no face has, and without a QGuiApplication: use the outline.
    std::uint32_t index; ///< In the face.
    double emSize;       ///< Of the face at text height 1.
    double widthFactor;  ///< Of the face's glyph, where the font of the drawing is wider or narrower.
};

/// Lives as long as the process; found through findFont() and compared by address.
class Font
{
public:
    virtual ~Font() = default;
    /// False when neither the font nor what the table gives for it is installed: the last resort is used.
    virtual bool isFound() const = 0;
    /// Length of a line of plain text (no codes) at height 1; tabs count as spaces.
    virtual double width(QStringView text) const = 0;
    /// The glyphs of a line, in order; one per character, those missing in the face from the CJK face.
    virtual void layOut(QStringView text, std::vector<PlacedGlyph> &glyphs) const = 0;
    /// What it was found for.
    virtual const FontRequest &request() const = 0;
};

/// The face for a font; never fails, see Font::isFound(). Main thread only; what is returned may be
/// used for reading from the painter's threads after layOut() was called for the characters concerned.
const Font &findFont(const FontRequest &request);
/// The font of texts that name none.
const Font &defaultFont();

} // namespace acgi
