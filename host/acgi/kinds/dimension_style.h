// The dimension style of an entity: its record with what the entity overrides. Asked by group code of the
// DIMSTYLE record.
#pragma once

#include "host/acgi/kinds/arrowhead.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/text/text_style.h"

namespace acgi
{

class DimensionStyle
{
public:
    DimensionStyle(const AcDbEntity &entity, const QString &styleName);

    double real(int code, double fallback) const;
    std::int64_t integer(int code, std::int64_t fallback) const;
    QString text(int code) const;
    /// The object of a handle; null when there is none.
    AcDbObjectId object(int code) const;

    /// DIMSCALE; sizes are multiplied by it.
    double scale() const;
    double textHeight() const { return scale() * real(140, isMetric() ? 2.5 : 0.18); }
    double arrowSize() const { return scale() * real(41, isMetric() ? 2.5 : 0.18); }
    double gap() const { return scale() * std::abs(real(147, isMetric() ? 0.625 : 0.09)); }
    /// The style of the texts, at textHeight() or its own fixed height.
    AcGiTextStyle textStyle() const;
    Arrowhead leaderArrow() const;
    /// Of the first (0) or second (1) end of a dimension line.
    Arrowhead arrow(int end) const;

private:
    bool isMetric() const;
    const resbuf *find(int code) const;
    Arrowhead arrowOf(int code, int oldCode) const;

    const AcDbDatabase *m_database;
    ResbufList m_overrides;
    ResbufList m_style;
};

} // namespace acgi
