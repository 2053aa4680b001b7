#include "host/acgi/text/text_style.h"

#include "host/acgi/entity_groups.h"
#include "host/acgi/text/text_layout.h"

#include <algorithm>

void AcGiTextStyle::setFont(const QString &typeface, bool bold, bool italic)
{
    m_font.typeface = typeface;
    m_font.bold = bold;
    m_font.italic = italic;
}

int AcGiTextStyle::loadStyleRec()
{
    m_found = &acgi::findFont(m_font);
    return m_found->isFound() ? 0 : 1;
}

const acgi::Font &AcGiTextStyle::font() const
{
    if (!m_found || m_found->request() != m_font)
        m_found = &acgi::findFont(m_font);
    return *m_found;
}

AcGePoint2d AcGiTextStyle::extents(const QString &text, bool raw) const
{
    const double width = font().width(raw ? text : acgi::plainText(text));
    return {width * m_textSize * m_xScale, m_textSize};
}

/// The typeface stands in the extended data: 1000 its name, 1071 what the system's font dialog gave.
static void readTypeface(const ResbufList &extendedData, AcGiTextStyle &style)
{
    constexpr std::int64_t kItalic = 0x1000000;
    constexpr std::int64_t kBold = 0x2000000;
    QString typeface;
    std::int64_t flags = 0;
    for (const resbuf &group : extendedData) {
        if (group.restype == 1000 && typeface.isEmpty())
            typeface = group.text();
        else if (group.restype == 1071)
            flags = group.integer();
    }
    if (!typeface.isEmpty())
        style.setFont(typeface, flags & kBold, flags & kItalic);
}

static void readStyleGroup(const resbuf &group, AcGiTextStyle &style)
{
    switch (group.restype) {
    case 3:
        style.setFileName(group.text());
        break;
    case 4:
        style.setBigFontFileName(group.text());
        break;
    case 40:
        style.setTextSize(std::max(group.real(), 0.0));
        break;
    case 41:
        style.setXScale(group.real() > 0.0 ? group.real() : 1.0);
        break;
    case 50:
        style.setObliquingAngle(radians(group.real()));
        break;
    case 70:
        style.setVertical(group.integer() & 4);
        break;
    case 71:
        style.setBackward(group.integer() & 2);
        style.setUpsideDown(group.integer() & 4);
        break;
    default:
        break;
    }
}

AcGiTextStyle acgi::namedTextStyle(const AcDbDatabase &database, const QString &styleName)
{
    AcGiTextStyle style;
    style.setTextSize(0.0);
    AcDbObjectId id = database.tableRecord(SymbolTable::textStyle, styleName);
    if (!id.isValid())
        id = database.tableRecord(SymbolTable::textStyle, QStringLiteral("Standard"));
    const AcDbObjectPointer<AcDbObject> record(id, AcDb::kForRead);
    if (!record)
        return style;
    for (const resbuf &group : EntityGroups(*record))
        readStyleGroup(group, style);
    readTypeface(record->xData(QStringLiteral("ACAD")), style);
    return style;
}
