// Drawing of geometric tolerances: rows of cells, framed.
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/text/mtext.h"

namespace acgi
{

namespace
{

/// What the dimension style of a tolerance says.
struct ToleranceStyle {
    double height = 1.0;
    AcGiTextStyle text;
    std::int64_t frameColor = 0; ///< By block: that of the entity.
    std::int64_t textColor = 0;
};

} // namespace

static ToleranceStyle styleOf(const AcDbEntity &entity, const QString &styleName)
{
    ToleranceStyle style;
    if (!entity.database())
        return style;
    const AcDbDatabase &database = *entity.database();
    readObject(database.tableRecord(SymbolTable::dimStyle, styleName), [&](const AcDbObject &record) {
        const EntityGroups groups(record);
        const double scale = groups.real(40) > 0.0 ? groups.real(40) : 1.0;
        if (groups.real(140) > 0.0)
            style.height = groups.real(140) * scale;
        style.frameColor = groups.integer(176);
        style.textColor = groups.integer(178);
        QString textStyle;
        if (const resbuf *const handle = groups.find(340))
            readObject(objectOf(entity, handle->handle()),
                       [&](const AcDbObject &object) { textStyle = EntityGroups(object).text(2); });
        style.text = namedTextStyle(database, textStyle);
    });
    return style;
}

namespace
{

class ToleranceDrawer
{
public:
    ToleranceDrawer(const EntityGroups &groups, const ToleranceStyle &style, AcGiGeometry &sink)
        : m_style(style), m_sink(sink)
    {
        m_text.style = style.text;
        m_text.height = style.height;
        m_text.attachment = 4; // Middle left.
        m_text.normal = groups.normal().normal();
        const AcGeVector3d along = groups.vector(11, AcGeVector3d::kXAxis);
        m_text.along = along.isZeroLength() ? AcGeVector3d::kXAxis : along.normal();
        m_up = m_text.normal.crossProduct(m_text.along);
        m_corner = groups.point(10) + m_up * style.height;
    }

    /// Cells are divided by %%v; empty ones do not show.
    void drawRow(const QString &row)
    {
        double x = 0.0;
        for (const QString &cell : row.split(QStringLiteral("%%v"), Qt::SkipEmptyParts, Qt::CaseInsensitive))
            x = drawCell(cell, x);
        if (x > 0.0)
            m_corner = m_corner - m_up * rowHeight();
    }

private:
    double rowHeight() const { return 2.0 * m_style.height; }

    double drawCell(const QString &cell, double from)
    {
        PenScope pen(m_sink);
        m_text.coded = cell;
        const MTextBox box = mtextBox(m_text);
        const double to = from + box.high.x - box.low.x + m_style.height;
        const AcGePoint3d left = m_corner + m_text.along * from;
        const AcGePoint3d right = m_corner + m_text.along * to;
        const AcGeVector3d down = m_up * rowHeight();
        const AcGePoint3d frame[] = {left, right, right - down, left - down, left};
        pen.setColor(m_style.frameColor);
        m_sink.polyline(5, frame);
        pen.setColor(m_style.textColor);
        m_text.position = left + m_text.along * (m_style.height / 2.0) - m_up * m_style.height;
        drawMText(m_text, m_sink);
        return to;
    }

    const ToleranceStyle &m_style;
    AcGiGeometry &m_sink;
    MText m_text;
    AcGeVector3d m_up;
    AcGePoint3d m_corner; ///< Upper left one of the next row.
};

} // namespace

void drawTolerance(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbFcf");
    const ToleranceStyle style = styleOf(entity, groups.text(3));
    ToleranceDrawer drawer(groups, style, sink);
    QString content = groups.text(1);
    content.replace(QStringLiteral("^J"), QStringLiteral("\n"));
    for (const QString &row : content.split(u'\n'))
        drawer.drawRow(row);
}

} // namespace acgi
