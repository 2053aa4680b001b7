// What part of a drawing a plot shows.
#pragma once

#include "host/aced/edplot.h"

/// A rectangle of a space, upright as seen.
struct AcEdPlotRectangle {
    AcGePoint3d centre; ///< World.
    double width = 0.0; ///< World units; above 0.
    double height = 0.0;
    double twist = 0.0;
};

/// The error says why there is no such area: an empty drawing, an unknown view.
base::Result<AcEdPlotRectangle, QString> acedPlotRectangle(const AcApDocument &document,
                                                           const AcEdPlot &plot);
