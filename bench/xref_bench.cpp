// Claim: a drawing that shows its entities by references stays within the budgets of the same entities in one
// file: opening it and the first whole picture, a picture panned, a pick. The peer is that one file.
//
// usage: QT_QPA_PLATFORM=offscreen bench_xref HOST.dxf ONE.dxf   (bench/make_drawing.py makes the files)
#include "bench/opened_drawing.h"
#include "bench/stopwatch.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edpick.h"
#include "host/acgi/display/display.h"
#include "host/acgi/query/extents.h"
#include "host/acgi/query/install.h"
#include "host/acgi/query/spatial_index.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

static constexpr QSize kPicture(2000, 1400);

namespace
{

struct Times {
    double open = 0.0;
    double first = 0.0;
    double again = 0.0;
    double strip = 0.0;
    double firstPick = 0.0;
    double pick = 0.0;
    bool hit = false;
};

} // namespace

static double paint(AcDbDatabase &database, const AcGiViewport &view, QImage &image, QRect part)
{
    return bench::processorSeconds([&] {
        acgi::PaintOptions options;
        options.part = part;
        QPainter painter(&image);
        acgi::displayOf(database).paint(database.modelSpaceId(), view, painter, options);
    });
}

static bool measure(const QString &path, Times &times)
{
    AcApDocument *document = nullptr;
    AcDbExtents box;
    times.open = bench::processorSeconds([&] {
        document = bench::opened(path);
        // Whoever asks for the extents needs what the references show.
        if (document)
            box = acgi::spatialIndexOf(*document->database()).extents(document->database()->modelSpaceId());
    });
    if (!document || !box.isValid())
        return false;
    AcDbDatabase &database = *document->database();
    AcGiViewport view;
    const AcGeVector3d size = box.maxPoint() - box.minPoint();
    view.centre = box.minPoint() + size * 0.5;
    view.pixelWidth = kPicture.width();
    view.pixelHeight = kPicture.height();
    view.height = std::max(size.y, size.x * view.pixelHeight / view.pixelWidth) * 1.05;
    QImage image(kPicture, QImage::Format_RGB32);
    const QRect whole(QPoint(), kPicture);
    times.first = paint(database, view, image, whole);
    times.again = paint(database, view, image, whole);
    constexpr int kPanned = 20;
    view.centre.x += kPanned * view.pixelSize();
    times.strip = paint(database, view, image, {kPicture.width() - kPanned, 0, kPanned, kPicture.height()});
    const auto pick = [&](double share) {
        times.hit = !acedPickAt(*document, box.minPoint() + size * share, {}).isNull() || times.hit;
    };
    times.firstPick = bench::processorSeconds([&] { pick(0.5); });
    constexpr int kPicks = 20;
    times.pick = bench::processorSeconds([&] {
                     for (int i = 1; i <= kPicks; ++i)
                         pick(double(i) / (kPicks + 1));
                 }) /
                 kPicks;
    acDocManager()->closeDocument(document);
    return true;
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_xref HOST.dxf ONE.dxf\n");
        return 2;
    }
    acgi::install();
    Times host;
    Times one;
    if (!measure(QString::fromLocal8Bit(argv[1]), host) || !measure(QString::fromLocal8Bit(argv[2]), one))
        return 2;
    const auto print = [](const char *what, double references, double file) {
        std::printf("%-34s %9.3f s, one file %9.3f s: %.2f\n", what, references, file, references / file);
    };
    print("opening and extents", host.open, one.open);
    print("the first whole picture", host.first, one.first);
    print("the whole picture again", host.again, one.again);
    print("panned by 20 pixels, strip only", host.strip, one.strip);
    print("the first pick", host.firstPick, one.firstPick);
    print("a pick", host.pick, one.pick);
    std::printf("something was hit: %s, %s\n", host.hit ? "yes" : "no", one.hit ? "yes" : "no");
    return 0;
}
