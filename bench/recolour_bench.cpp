// Claim: all entities of a drawing of a million are painted in one colour, and get their own ones back,
// within 3 s each, as one step of undo. The bound is writing a colour to each.
//
// usage: QT_QPA_PLATFORM=offscreen bench_recolour DRAWING.dxf (bench/make_drawing.py makes one)
#include "bench/opened_drawing.h"
#include "bench/stopwatch.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "quillnote/aids/recolouring.h"

#include <QGuiApplication>

static constexpr int kPale = 254;

template <class Work>
static void timeStep(const char *what, AcDbDatabase &database, Work work)
{
    const double done = bench::processorSeconds([&] {
        const AcDbUndoGroup step(database, QString::fromLatin1(what));
        work();
    });
    std::printf("%-22s %.3f s\n", what, done);
}

static void paintModelSpace(AcDbDatabase &database)
{
    for (const std::uint32_t index : database.blockContents(database.modelSpaceId())->entities) {
        const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(database.stub(index)), AcDb::kForWrite);
        if (entity)
            entity->setColorIndex(kPale);
    }
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    AcApDocument *const document = argc == 2 ? bench::opened(QString::fromLocal8Bit(argv[1])) : nullptr;
    if (!document) {
        std::fprintf(stderr, "usage: bench_recolour DRAWING.dxf\n");
        return 2;
    }
    AcDbDatabase &database = *document->database();
    std::size_t painted = 0;
    timeStep("paint all", database, [&] { painted = paintEverything(database, kPale, {}).changed; });
    std::size_t restored = 0;
    timeStep("restore all", database, [&] { restored = restoreColors(database, {}).changed; });
    timeStep("a colour to each", database, [&] { paintModelSpace(database); });
    std::printf("%zu painted, %zu restored\n", painted, restored);
    acDocManager()->closeDocument(document);
    return 0;
}
