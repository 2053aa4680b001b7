#include "tests/support/recorder.h"

#include <cmath>

namespace tests
{

static QString numberText(double value)
{
    const double rounded = std::round(value * 1000.0) / 1000.0;
    return QString::number(rounded == 0.0 ? 0.0 : rounded, 'g', 12); // No "-0".
}

QString pointText(const AcGePoint3d &point)
{
    QString text = u'(' + numberText(point.x) + u' ' + numberText(point.y);
    if (numberText(point.z) != QLatin1String("0"))
        text += u' ' + numberText(point.z);
    return text + u')';
}

QString Recorder::world(const AcGePoint3d &point) const
{
    return pointText(toWorld(point));
}

void Recorder::add(const QString &line)
{
    const AcCmEntityColor color = subEntityTraits().traits().color;
    QString pen;
    if (withPen && color.colorMethod() == AcCmEntityColor::kByColor)
        pen = QStringLiteral("#%1 ").arg(color.rgb(), 6, 16, QLatin1Char('0'));
    else if (withPen && color.colorMethod() == AcCmEntityColor::kByACI)
        pen = QString::number(color.colorIndex()) + u' ';
    lines << pen + line;
}

void Recorder::polyline(std::uint32_t count, const AcGePoint3d *points)
{
    QString line = QStringLiteral("polyline");
    for (std::uint32_t i = 0; i < count; ++i)
        line += u' ' + world(points[i]);
    add(line);
}

void Recorder::arc(const acgi::Arc &local)
{
    const acgi::Arc arc = toWorld(local);
    add(QStringLiteral("arc %1 from %2 to %3 through %4")
            .arg(pointText(arc.centre), pointText(arc.at(arc.start)),
                 pointText(arc.at(arc.start + arc.sweep)), pointText(arc.at(arc.start + arc.sweep / 2.0))));
}

void Recorder::fill(std::span<const acgi::Loop> loops)
{
    QString line = QStringLiteral("fill");
    for (const acgi::Loop &loop : loops) {
        line += QLatin1String(" [");
        for (const AcGePoint3d &point : loop)
            line += world(point);
        line += u']';
    }
    add(line);
}

void Recorder::text(const acgi::TextLine &line)
{
    const AcGePoint3d start = toWorld(line.position);
    add(QStringLiteral("text \"%1\" at %2 along %3 up %4")
            .arg(line.text, pointText(start),
                 pointText(AcGePoint3d() + (toWorld(line.position + line.direction) - start)),
                 pointText(AcGePoint3d() + (toWorld(line.position + line.up) - start))));
}

void Recorder::infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays)
{
    add(QStringLiteral("%1 %2 towards %3")
            .arg(bothWays ? QStringLiteral("line") : QStringLiteral("ray"), world(base),
                 world(base + direction)));
}

} // namespace tests
