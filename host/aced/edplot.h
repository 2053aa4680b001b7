// Plotting: sheets and model space on paper, as pages of a PDF file with lines that stay lines and text that
// can be searched.
#pragma once

#include "host/acap/docman.h"
#include "host/acge/geextents.h"
#include "host/acgi/display/display.h"

#include <optional>
#include <span>

/// Pages are cut into dots of this size; what is not stated in millimetres is one dot wide.
inline constexpr int kPlotDotsPerInch = 600;
inline constexpr double kPlotDotsPerMillimetre = kPlotDotsPerInch / 25.4;

/// A sheet of paper, millimetres, upright (the short side below).
struct AcEdPaper {
    const char *name; ///< "A3", "ANSI_B", "ARCH_D"
    double width;
    double height;
};
/// ISO A, ANSI and ARCH sizes.
std::span<const AcEdPaper> acedPapers();
/// By name, ignoring letter case; null when there is none.
const AcEdPaper *acedFindPaper(const QString &name);

enum class AcEdPlotArea {
    display, ///< What the view of the space shows.
    extents, ///< Everything visible.
    limits,  ///< LIMMIN to LIMMAX.
    view,    ///< A named view.
    window,  ///< A rectangle.
    layout,  ///< The sheet from its origin, as it was laid out.
};

/// Margins in millimetres, as the page is read.
struct AcEdPlotMargins {
    double left = 0.0;
    double bottom = 0.0;
    double right = 0.0;
    double top = 0.0;
};

/// One page.
struct AcEdPlot {
    AcDbObjectId space;
    double pageWidth = 297.0; ///< Millimetres, as the page is read.
    double pageHeight = 210.0;
    AcEdPlotMargins margins; ///< Areas other than `layout` stay inside.
    AcEdPlotArea area = AcEdPlotArea::extents;
    AcDbExtents window;          ///< World, for `window`.
    QString viewName;            ///< For `view`.
    std::optional<double> scale; ///< Millimetres on paper for a drawing unit; none fits the area in.
    bool centred = true;
    AcGePoint2d
        offset; ///< Of the area's lower left corner inside the margins, when not centred; millimetres.
    bool lineWeights = true;
    bool monochrome = false;
};

/// How the author of a drawing set up the plot of model space or a layout; a landscape A4 page with
/// everything fitted in when the drawing says nothing.
AcEdPlot acedLayoutPlot(const AcDbDatabase &database, AcDbObjectId space);
/// The same on another paper, turned as the plot is now.
void acedUsePaper(AcEdPlot &plot, const AcEdPaper &paper);

/// Why the page cannot be plotted, for example because the layout is empty.
base::Result<void, QString> acedCheckPlot(const AcApDocument &document, const AcEdPlot &plot);

/// Writes the pages in their order; an existing file is replaced once they are all done. CMDNAMES tells PLOT
/// meanwhile. The front end hears of the progress and may stop it; then the file stays as it was. The error
/// says what is wrong with a page, or why the file cannot be written.
base::Result<acgi::PaintReport, QString> acedPlot(AcApDocument &document, const std::vector<AcEdPlot> &pages,
                                                  const QString &path);
