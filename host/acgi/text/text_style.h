// AcGiTextStyle: font, size and proportions of text that is drawn or measured.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/acge/gepoint.h"
#include "host/acgi/text/font.h"

class AcGiTextStyle
{
public:
    void setFileName(const QString &fontFile) { m_font.fontFile = fontFile; }
    void setBigFontFileName(const QString &bigFontFile) { m_font.bigFontFile = bigFontFile; }
    void setFont(const QString &typeface, bool bold, bool italic);
    /// Height of a capital letter, drawing units.
    void setTextSize(double size) { m_textSize = size; }
    /// Width factor.
    void setXScale(double scale) { m_xScale = scale; }
    /// Radians from upright, leaning forward.
    void setObliquingAngle(double angle) { m_oblique = angle; }
    void setVertical(bool vertical) { m_vertical = vertical; }
    void setBackward(bool backward) { m_backward = backward; }
    void setUpsideDown(bool upsideDown) { m_upsideDown = upsideDown; }

    double textSize() const { return m_textSize; }
    double xScale() const { return m_xScale; }
    double obliquingAngle() const { return m_oblique; }
    bool isVertical() const { return m_vertical; }
    bool isBackward() const { return m_backward; }
    bool isUpsideDown() const { return m_upsideDown; }
    const acgi::FontRequest &fontRequest() const { return m_font; }

    /// Finds the font: 0 when it or its stand-in is installed.
    int loadStyleRec();
    /// The font found; loads when needed.
    const acgi::Font &font() const;
    /// Width and height of a line; control codes (%%d ...) count as what they show unless `raw`.
    AcGePoint2d extents(const QString &text, bool raw = false) const;

private:
    acgi::FontRequest m_font;
    double m_textSize = 1.0;
    double m_xScale = 1.0;
    double m_oblique = 0.0;
    bool m_vertical = false;
    bool m_backward = false;
    bool m_upsideDown = false;
    mutable const acgi::Font *m_found = nullptr;
};

namespace acgi
{

/// A text style of the drawing by its name; the standard style when there is none of that name. Its size is
/// the style's fixed height, 0 when texts choose their own.
AcGiTextStyle namedTextStyle(const AcDbDatabase &database, const QString &styleName);

} // namespace acgi
