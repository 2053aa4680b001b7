// Claims: the first picture of a drawing of a million entities, opening left out, takes at most 1.6 times as
// long as a bare QPainter loop over the lines, areas and glyphs that it is made of; of 100,000 entities,
// opening included, at most a second, and a frame of panning at most 33 ms; memory stays below 1.5 GB. A
// frame of panning is the strips that come into view; zooming paints all in the background, which must end
// within a few milliseconds when something changes.
//
// usage: bench_picture FILE.dxf...   (bench/make_drawing.py makes them); QT_QPA_PLATFORM=offscreen
#include "bench/stopwatch.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/display/display.h"
#include "host/acgi/query/install.h"
#include "host/acgi/query/spatial_index.h"
#include "host/formats/dxf/dxfreader.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPaintEngine>
#include <QPainterPath>

#include <cstdio>
#include <sys/resource.h>
#include <thread>
#include <variant>

static constexpr QSize kPicture(2000, 1400);

/// Takes down what a painter is told to draw, and times a loop that tells an image's painter the same. Done
/// piece by piece, so that the notes need little memory.
class BareLoop : public QPaintEngine
{
public:
    BareLoop() : QPaintEngine(AllFeatures), m_image(kPicture, QImage::Format_RGB32)
    {
        m_image.fill(Qt::black);
    }

    double seconds = 0.0;
    std::size_t primitives = 0;

    bool begin(QPaintDevice *) override { return true; }
    bool end() override
    {
        replay();
        return true;
    }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState &now) override
    {
        if (now.state() & DirtyPen)
            note(now.pen());
        if (now.state() & DirtyBrush)
            note(now.brush());
    }
    void drawPath(const QPainterPath &path) override { note(path); }
    void drawPolygon(const QPointF *points, int count, PolygonDrawMode mode) override
    {
        note(Polygon{QPolygonF(QVector<QPointF>(points, points + count)), mode == PolylineMode});
    }
    void drawLines(const QLineF *lines, int count) override { note(QVector<QLineF>(lines, lines + count)); }
    void drawRects(const QRectF *rectangles, int count) override
    {
        note(QVector<QRectF>(rectangles, rectangles + count));
    }
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}

private:
    struct Polygon {
        QPolygonF points;
        bool isOpen;
    };
    using Step = std::variant<QPen, QBrush, QPainterPath, Polygon, QVector<QLineF>, QVector<QRectF>>;

    template <class What>
    void note(What what)
    {
        m_steps.emplace_back(std::make_unique<Step>(std::move(what)));
        constexpr std::size_t kPiece = 20000;
        if (m_steps.size() >= kPiece)
            replay();
    }

    void replay()
    {
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(m_pen);
        painter.setBrush(m_brush);
        seconds += bench::seconds([&] {
            for (const std::unique_ptr<Step> &step : m_steps)
                draw(painter, *step);
        });
        m_pen = painter.pen();
        m_brush = painter.brush();
        primitives += m_steps.size();
        m_steps.clear();
    }

    static void draw(QPainter &painter, const Step &step)
    {
        if (const auto *const pen = std::get_if<QPen>(&step))
            painter.setPen(*pen);
        else if (const auto *const brush = std::get_if<QBrush>(&step))
            painter.setBrush(*brush);
        else if (const auto *const path = std::get_if<QPainterPath>(&step))
            painter.drawPath(*path);
        else if (const auto *const lines = std::get_if<QVector<QLineF>>(&step))
            painter.drawLines(*lines);
        else if (const auto *const rectangles = std::get_if<QVector<QRectF>>(&step))
            painter.drawRects(*rectangles);
        else if (const auto *const polygon = std::get_if<Polygon>(&step))
            polygon->isOpen ? painter.drawPolyline(polygon->points) : painter.drawPolygon(polygon->points);
    }

    std::vector<std::unique_ptr<Step>> m_steps;
    QImage m_image;
    QPen m_pen;
    QBrush m_brush;
};

class BareLoopDevice : public QPaintDevice
{
public:
    BareLoop loop;
    QPaintEngine *paintEngine() const override { return const_cast<BareLoop *>(&loop); }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return kPicture.width();
        case PdmHeight:
            return kPicture.height();
        case PdmDevicePixelRatioScaled:
            return int(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return metric == PdmDevicePixelRatio ? 1 : 96;
        }
    }
};

static AcGiViewport wholeDrawing(const AcDbDatabase &database)
{
    const AcGePoint3d low = database.headerPoint("$EXTMIN");
    const AcGePoint3d high = database.headerPoint("$EXTMAX");
    AcGiViewport view;
    view.centre = {(low.x + high.x) / 2.0, (low.y + high.y) / 2.0, 0.0};
    view.pixelWidth = kPicture.width();
    view.pixelHeight = kPicture.height();
    view.height = std::max(high.y - low.y, (high.x - low.x) * view.pixelHeight / view.pixelWidth) * 1.05;
    return view;
}

static double paintSeconds(AcDbDatabase &database, const AcGiViewport &view, QPaintDevice &device)
{
    return bench::seconds([&] {
        QPainter painter(&device);
        acgi::displayOf(database).paint(database.modelSpaceId(), view, painter, {});
    });
}

constexpr double kFrameBudget = 0.033;

static void printFrame(const char *what, double seconds)
{
    std::printf("  %-34s %8.1f ms, %.2f of the budget\n", what, seconds * 1e3, seconds / kFrameBudget);
}

/// Panning by some pixels with the old picture at hand: only the strips that come into view are painted.
static double stripSeconds(AcDbDatabase &database, AcGiViewport view, QImage &image, int pixels)
{
    const QRect strips[] = {{kPicture.width() - pixels, 0, pixels, kPicture.height()},
                            {0, 0, kPicture.width(), pixels}};
    return bench::bestSeconds(5, [&] {
        view.centre.x += pixels * view.pixelSize();
        view.centre.y += pixels * view.pixelSize();
        for (const QRect &strip : strips) {
            acgi::PaintOptions options;
            options.part = strip;
            QPainter painter(&image);
            acgi::displayOf(database).paint(database.modelSpaceId(), view, painter, options);
        }
    });
}

/// An entity moves: its damage found and painted.
static double changeSeconds(AcDbDatabase &database, const AcGiViewport &view, QImage &image)
{
    acgi::Display &display = acgi::displayOf(database);
    const AcDbObjectId space = database.modelSpaceId();
    const std::vector<std::uint32_t> &entities = database.blockContents(space)->entities;
    paintSeconds(database, view, image);
    display.takeDamage(space, view);
    std::size_t next = 0;
    return bench::bestSeconds(5, [&] {
        const AcDbObjectId moved(database.stub(entities[next++]));
        AcDbObjectPointer<AcDbEntity>(moved, AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::translation({view.pixelSize() * 5.0, 0.0, 0.0}));
        acgi::PaintOptions options;
        options.part = display.takeDamage(space, view).part;
        QPainter painter(&image);
        display.paint(space, view, painter, options);
    });
}

/// The longest that ending a painting in the background took.
static double stopSeconds(AcDbDatabase &database, const AcGiViewport &view)
{
    double longest = 0.0;
    for (int round = 0; round < 20; ++round) {
        acgi::displayOf(database).paintInBackground(database.modelSpaceId(), view, {},
                                                    [](const QImage &, const acgi::PaintReport &) {});
        std::this_thread::sleep_for(std::chrono::milliseconds(round));
        longest = std::max(longest, bench::seconds([&] { acgi::displayOf(database).stopPainting(); }));
    }
    return longest;
}

static double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

static bool measure(const QString &path)
{
    std::unique_ptr<AcDbDatabase> database;
    const double open = bench::seconds([&] {
        if (auto opened = readDxf(path))
            database = std::move(*opened);
    });
    if (!database)
        return false;
    AcGiViewport view = wholeDrawing(*database);
    QImage image(kPicture, QImage::Format_RGB32);
    const double first = paintSeconds(*database, view, image);
    const double peak = peakMegabytes();
    const double again = std::min(paintSeconds(*database, view, image), paintSeconds(*database, view, image));
    BareLoopDevice bare;
    paintSeconds(*database, view, bare);
    view.centre.x += view.width() / 10.0;
    const double pan = paintSeconds(*database, view, image);
    const double strips = stripSeconds(*database, view, image, 20);
    const double change = changeSeconds(*database, view, image);
    const double prepare =
        bench::seconds([&] { acgi::displayOf(*database).prepare(database->modelSpaceId(), view, 1000); });
    const double stop = stopSeconds(*database, view);
    view.height /= 10.0;
    paintSeconds(*database, view, image);
    view.centre.x += view.width() / 10.0;
    const double closePan = paintSeconds(*database, view, image);
    const double lists = double(acgi::displayOf(*database).memory()) / 1e6;
    const double index =
        bench::seconds([&] { acgi::spatialIndexOf(*database).extents(database->modelSpaceId()); });

    std::printf("%s\n", qPrintable(QFileInfo(path).fileName()));
    std::printf("  first picture %8.3f s = opening %.3f + lists %.3f + painting %.3f; peak memory %.0f MB\n",
                open + first, open, first - again, again, peak);
    std::printf("  bare loop     %8.3f s over %zu steps; the picture without opening is %.2f of it\n",
                bare.loop.seconds, bare.loop.primitives, first / bare.loop.seconds);
    printFrame("all again", again);
    printFrame("all, panned", pan);
    printFrame("all, panned, at tenfold zoom", closePan);
    printFrame("panned by 20 pixels, strips only", strips);
    printFrame("one entity moved, damage only", change);
    std::printf("  preparing what is ready %.3f ms; ending a painting at most %.1f ms\n", prepare * 1e3,
                stop * 1e3);
    std::printf("  lists         %8.1f MB; spatial index (not needed for this) %.3f s\n", lists, index);
    return true;
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    acdbRegisterClasses();
    acgi::install();
    if (argc < 2)
        std::fprintf(stderr, "usage: bench_picture FILE.dxf...\n");
    bool good = argc > 1;
    for (int i = 1; i < argc; ++i)
        good = measure(QString::fromLocal8Bit(argv[i])) && good;
    return good ? 0 : 1;
}
