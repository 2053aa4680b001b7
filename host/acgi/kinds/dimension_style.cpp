#include "host/acgi/kinds/dimension_style.h"

#include <algorithm>

namespace acgi
{

/// Pairs of a group code and its value between braces, as ACAD's extended data "DSTYLE" has them.
static ResbufList readOverrides(const AcDbEntity &entity)
{
    ResbufList overrides;
    const ResbufList data = entity.xData(QStringLiteral("ACAD"));
    auto at = std::ranges::find_if(data, [](const resbuf &group) {
        return group.restype == 1000 && group.text() == QLatin1String("DSTYLE");
    });
    for (; at != data.end() && data.end() - at > 1; ++at) {
        if (at->restype == 1002 && at->text() == QLatin1String("}"))
            break;
        if (at->restype != 1070)
            continue;
        const std::int64_t code = at->integer();
        ++at;
        overrides.emplace_back(int(std::clamp<std::int64_t>(code, 0, 1000)), at->resval);
    }
    return overrides;
}

DimensionStyle::DimensionStyle(const AcDbEntity &entity, const QString &styleName)
    : m_database(entity.database()), m_overrides(readOverrides(entity))
{
    if (m_database)
        readObject(m_database->tableRecord(SymbolTable::dimStyle, styleName), [&](const AcDbObject &record) {
            const EntityGroups groups(record);
            m_style.assign(groups.begin(), groups.end());
        });
}

bool DimensionStyle::isMetric() const
{
    static const QByteArray kVariable = QByteArrayLiteral("$MEASUREMENT");
    return m_database && m_database->headerInteger(kVariable) == 1;
}

const resbuf *DimensionStyle::find(int code) const
{
    const resbuf *const own = findGroup(m_overrides, code);
    return own ? own : findGroup(m_style, code);
}

double DimensionStyle::real(int code, double fallback) const
{
    const resbuf *const group = find(code);
    const double value = group ? group->real() : fallback;
    return std::isfinite(value) ? value : fallback;
}

std::int64_t DimensionStyle::integer(int code, std::int64_t fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->integer() : fallback;
}

QString DimensionStyle::text(int code) const
{
    const resbuf *const group = find(code);
    return group ? group->text() : QString();
}

AcDbObjectId DimensionStyle::object(int code) const
{
    const resbuf *const group = find(code);
    return group && m_database ? m_database->getAcDbObjectId(group->handle()) : AcDbObjectId();
}

// 0 stands for sizes that follow the viewport; there is none here.
double DimensionStyle::scale() const
{
    const double scale = real(40, 1.0);
    return scale > 0.0 ? scale : 1.0;
}

AcGiTextStyle DimensionStyle::textStyle() const
{
    QString name = QStringLiteral("Standard");
    readObject(object(340), [&](const AcDbObject &record) { name = EntityGroups(record).text(2); });
    AcGiTextStyle style = m_database ? namedTextStyle(*m_database, name) : AcGiTextStyle();
    if (!m_database || !(style.textSize() > 0.0))
        style.setTextSize(textHeight());
    return style;
}

Arrowhead DimensionStyle::arrowOf(int code, int oldCode) const
{
    Arrowhead arrow{object(code), arrowSize()};
    // Old drawings name the block.
    if (arrow.block.isNull() && m_database)
        arrow.block = m_database->tableRecord(SymbolTable::block, text(oldCode));
    return arrow;
}

Arrowhead DimensionStyle::leaderArrow() const
{
    return {object(341), arrowSize()};
}

// Ticks (DIMTSZ) come before arrows; separate arrows count when DIMSAH says so.
Arrowhead DimensionStyle::arrow(int end) const
{
    const double tick = scale() * real(142, 0.0);
    if (tick > 0.0)
        return {AcDbObjectId(), tick, true};
    if (integer(173, 0) == 0)
        return arrowOf(342, 5);
    return end == 0 ? arrowOf(343, 6) : arrowOf(344, 7);
}

} // namespace acgi
