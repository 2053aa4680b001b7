// Recorder: a drawing sink that writes down what it is given, one line for each primitive, in world
// coordinates: "red polyline (0 0) (4 3)". What entities draw is then compared as text.
#pragma once

#include "host/acgi/geometry.h"

#include <QStringList>

namespace tests
{

class Recorder : public AcGiGeometry
{
public:
    QStringList lines;
    /// Primitives also say the pen: colour index or #rrggbb unless by layer, and "filled" areas.
    bool withPen = false;

    void polyline(std::uint32_t count, const AcGePoint3d *points) override;
    void arc(const acgi::Arc &arc) override;
    void fill(std::span<const acgi::Loop> loops) override;
    void text(const acgi::TextLine &line) override;
    void infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays) override;
    void noteUndrawn(const QString &reason) override { lines << QStringLiteral("undrawn ") + reason; }

private:
    void add(const QString &line);
    QString world(const AcGePoint3d &point) const;
};

/// "(1.5 2)", "(1 2 3)": three decimals, z only when it is not 0.
QString pointText(const AcGePoint3d &point);

} // namespace tests
