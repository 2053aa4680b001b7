// The plot engine: the rectangle of the drawing that a page shows, and painting it into a PDF page.
#include "host/aced/edplot.h"

#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edplotarea.h"
#include "host/base/atomic_file.h"
#include "host/base/host_text.h"

#include <QBuffer>
#include <QPageSize>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>

// Paper -------------------------------------------------------------------------------------------

// clang-format off
static constexpr AcEdPaper kPapers[] = {
    {"A0", 841, 1189},     {"A1", 594, 841},       {"A2", 420, 594},       {"A3", 297, 420},       {"A4", 210, 297},
    {"ANSI_A", 215.9, 279.4}, {"ANSI_B", 279.4, 431.8}, {"ANSI_C", 431.8, 558.8}, {"ANSI_D", 558.8, 863.6},
    {"ANSI_E", 863.6, 1117.6},
    {"ARCH_A", 228.6, 304.8}, {"ARCH_B", 304.8, 457.2}, {"ARCH_C", 457.2, 609.6}, {"ARCH_D", 609.6, 914.4},
    {"ARCH_E", 914.4, 1219.2},
};
// clang-format on

std::span<const AcEdPaper> acedPapers()
{
    return kPapers;
}

const AcEdPaper *acedFindPaper(const QString &name)
{
    const auto found = std::ranges::find_if(kPapers, [&](const AcEdPaper &paper) {
        return name.trimmed().compare(QLatin1String(paper.name), Qt::CaseInsensitive) == 0;
    });
    return found == std::end(kPapers) ? nullptr : found;
}

void acedUsePaper(AcEdPlot &plot, const AcEdPaper &paper)
{
    const bool landscape = plot.pageWidth > plot.pageHeight;
    plot.pageWidth = landscape ? paper.height : paper.width;
    plot.pageHeight = landscape ? paper.width : paper.height;
}

// Pages -------------------------------------------------------------------------------------------

namespace
{

/// Larger pages are beyond what viewers open.
constexpr double kLargestPage = 5000.0;

/// Where on the page the drawing is seen, in millimetres from the lower left corner, and how.
struct Placed {
    QRectF window; ///< y upwards.
    AcGiViewport view;
};

} // namespace

/// The page seen as a view: what of the drawing lies on the whole of it.
static Placed placeSheet(const AcEdPlot &plot, double scale)
{
    Placed placed;
    placed.window = {0, 0, plot.pageWidth, plot.pageHeight};
    placed.view.centre = {(plot.pageWidth / 2 - plot.margins.left - plot.offset.x) / scale,
                          (plot.pageHeight / 2 - plot.margins.bottom - plot.offset.y) / scale, 0};
    placed.view.height = plot.pageHeight / scale;
    return placed;
}

static Placed placeArea(const AcEdPlot &plot, const AcEdPlotRectangle &area)
{
    const double roomX = plot.pageWidth - plot.margins.left - plot.margins.right;
    const double roomY = plot.pageHeight - plot.margins.bottom - plot.margins.top;
    const double scale = plot.scale.value_or(std::min(roomX / area.width, roomY / area.height));
    const QSizeF size(area.width * scale, area.height * scale);
    QPointF corner(plot.margins.left, plot.margins.bottom);
    corner += plot.centred ? QPointF((roomX - size.width()) / 2, (roomY - size.height()) / 2)
                           : QPointF(plot.offset.x, plot.offset.y);
    Placed placed;
    const QRectF whole(corner, size);
    placed.window = whole.intersected({plot.margins.left, plot.margins.bottom, roomX, roomY});
    const QPointF shift = (placed.window.center() - whole.center()) / scale;
    placed.view.centre = area.centre + AcGeMatrix3d::rotation(area.twist, AcGeVector3d::kZAxis).inverse() *
                                           AcGeVector3d(shift.x(), shift.y(), 0);
    placed.view.height = placed.window.height() / scale;
    placed.view.twist = area.twist;
    return placed;
}

static base::Result<Placed, QString> place(const AcApDocument &document, const AcEdPlot &plot)
{
    const double roomX = plot.pageWidth - plot.margins.left - plot.margins.right;
    const double roomY = plot.pageHeight - plot.margins.bottom - plot.margins.top;
    if (!(roomX > 1) || !(roomY > 1) || plot.pageWidth > kLargestPage || plot.pageHeight > kLargestPage)
        return base::Failure{Host::tr("a page of %1 x %2 mm with these margins cannot be plotted")
                                 .arg(plot.pageWidth)
                                 .arg(plot.pageHeight)};
    if (plot.scale && !(*plot.scale > 0 && std::isfinite(*plot.scale)))
        return base::Failure{Host::tr("the plot scale must be above 0")};
    Placed placed;
    if (plot.area == AcEdPlotArea::layout && plot.scale) {
        placed = placeSheet(plot, *plot.scale);
    } else {
        const auto area = acedPlotRectangle(document, plot);
        if (!area)
            return base::Failure{area.error()};
        placed = placeArea(plot, *area);
    }
    if (placed.window.isEmpty())
        return base::Failure{Host::tr("the plot lies outside the page")};
    placed.view.paperSpace = plot.space != document.database()->modelSpaceId();
    placed.view.pixelWidth = placed.window.width() * kPlotDotsPerMillimetre;
    placed.view.pixelHeight = placed.window.height() * kPlotDotsPerMillimetre;
    placed.view.pixelsPerMillimetre = kPlotDotsPerMillimetre;
    return placed;
}

base::Result<void, QString> acedCheckPlot(const AcApDocument &document, const AcEdPlot &plot)
{
    const auto placed = place(document, plot);
    if (!placed)
        return base::Failure{placed.error()};
    return {};
}

static void addReport(acgi::PaintReport &sum, const acgi::PaintReport &page)
{
    sum.painted += page.painted;
    for (const auto &[kind, count] : page.undrawn)
        sum.undrawn[kind] += count;
}

static acgi::PaintReport paintPage(AcApDocument &document, const AcEdPlot &plot, const Placed &placed,
                                   QPainter &painter, const std::function<bool()> &isStopped)
{
    acgi::PaintOptions options;
    options.isCancelled = isStopped;
    options.background = Qt::white;
    options.fillBackground = false;
    options.lineWeights = plot.lineWeights;
    options.pixelsPerMillimetre = kPlotDotsPerMillimetre;
    options.monochrome = plot.monochrome;
    options.plotting = true;
    painter.save();
    painter.translate(placed.window.left() * kPlotDotsPerMillimetre,
                      (plot.pageHeight - placed.window.bottom()) * kPlotDotsPerMillimetre);
    painter.setClipRect(QRectF(0, 0, placed.view.pixelWidth, placed.view.pixelHeight));
    const acgi::PaintReport report =
        acgi::displayOf(*document.database()).paint(plot.space, placed.view, painter, options);
    painter.restore();
    return report;
}

static void setPage(QPdfWriter &writer, const AcEdPlot &plot)
{
    writer.setPageSize(QPageSize(QSizeF(plot.pageWidth, plot.pageHeight), QPageSize::Millimeter, QString(),
                                 QPageSize::ExactMatch));
    writer.setPageMargins({});
}

static acgi::PaintReport writePages(AcApDocument &document, const std::vector<AcEdPlot> &pages,
                                    const std::vector<Placed> &places, QIODevice &device)
{
    base::ProgressTeller progress(acDocManager()->progress(),
                                  Host::tr("正在打印 %1").arg(document.docTitle()));
    QPdfWriter writer(&device);
    writer.setResolution(kPlotDotsPerInch);
    writer.setTitle(document.docTitle());
    writer.setCreator(QStringLiteral("Quillnote"));
    setPage(writer, pages.front());
    QPainter painter(&writer);
    acgi::PaintReport report;
    for (std::size_t i = 0; i < pages.size() && !report.cancelled; ++i) {
        // How much of a page is painted nobody knows.
        const double share = pages.size() > 1 ? double(i) / double(pages.size()) : -1.0;
        const auto isStopped = [&] { return !progress.goesOn(share); };
        if (i > 0) {
            setPage(writer, pages[i]);
            writer.newPage();
        }
        addReport(report, paintPage(document, pages[i], places[i], painter, isStopped));
        report.cancelled = isStopped();
    }
    return report;
}

namespace
{

/// While it lives, display lists are those of plots.
class PlotLists
{
public:
    explicit PlotLists(AcDbDatabase &database) : m_display(acgi::displayOf(database))
    {
        m_display.regenerate(true);
    }
    ~PlotLists() { m_display.regenerate(true); }
    PlotLists(const PlotLists &) = delete;
    PlotLists &operator=(const PlotLists &) = delete;

private:
    AcEdRunningAs m_plotting{QStringLiteral("PLOT")};
    acgi::Display &m_display;
};

} // namespace

base::Result<acgi::PaintReport, QString> acedPlot(AcApDocument &document, const std::vector<AcEdPlot> &pages,
                                                  const QString &path)
{
    if (pages.empty())
        return base::Failure{Host::tr("there is nothing to plot")};
    // Entities may look different on paper; lists made for the screen serve no plot, nor the other way round.
    const PlotLists lists(*document.database());
    std::vector<Placed> places;
    for (const AcEdPlot &page : pages) {
        const auto placed = place(document, page);
        if (!placed)
            return base::Failure{QStringLiteral("%1: %2").arg(acdbLayoutName(page.space), placed.error())};
        places.push_back(*placed);
    }
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{file.error().text()};

    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    const acgi::PaintReport report = writePages(document, pages, places, pdf);
    if (report.cancelled)
        return base::Failure{Host::tr("%1: the plot was stopped").arg(path)};
    file->write(pdf.data());
    if (const auto written = file->commit(); !written)
        return base::Failure{written.error().text()};
    return report;
}
