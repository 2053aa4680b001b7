// Claim: ten thousand tick symbols are resized, and erased, within 100 ms each; their undo costs about the
// same. The bound is writing to each. A tick is placed in a time that does not go with the drawing.
//
// usage: QT_QPA_PLATFORM=offscreen bench_ticks DRAWING.dxf (bench/make_drawing.py makes one)
#include "bench/stopwatch.h"
#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acgi/query/install.h"
#include "quillnote/aids/tick_commands.h"
#include "quillnote/aids/tick_symbols.h"

#include <QGuiApplication>

#include <cstdio>

static constexpr int kTicks = 10'000;

template <class Command>
static void timeCommand(const char *what, AcDbDatabase &database, Command command)
{
    const double done = bench::processorSeconds([&] {
        const AcDbUndoGroup step(database, QString::fromLatin1(what));
        command();
    });
    const double undone = bench::processorSeconds([&] { database.undo().undo(); });
    std::printf("%s %.3f s, undo %.3f s\n", what, done, undone);
}

static void measure(AcDbDatabase &database)
{
    timeCommand("place one, with its block", database,
                [&] { insertTick(database, {tickBlock(TickSymbol::yesRed)}); });
    const auto placeAll = [&] {
        for (int i = 0; i < kTicks; ++i)
            insertTick(database,
                       {tickBlock(TickSymbol(i % 4)), {i * 10.0, 5.0, 0.0}, {0, 0, 1}, 0.0, {100, 100, 100}});
    };
    const double placed = bench::processorSeconds(placeAll);
    std::printf("place %d %.3f s\n", kTicks, placed);
    const std::vector<AcDbObjectId> ticks = findTicks(database);
    timeCommand("write to each", database, [&] {
        for (const AcDbObjectId id : ticks)
            AcDbObjectPointer<AcDbEntity>(id, AcDb::kForWrite)->setColorIndex(1);
    });
    timeCommand("enlarge all", database, QN3_TickBIG);
    timeCommand("erase all", database, [&] { eraseTicks(ticks); });
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_ticks DRAWING.dxf\n");
        return 2;
    }
    acgi::install();
    const auto document = acDocManager()->openDocument(QString::fromLocal8Bit(argv[1]));
    if (!document) {
        std::fprintf(stderr, "%s\n", qPrintable(document.error()));
        return 2;
    }
    measure(*(*document)->database());
    acDocManager()->closeDocument(*document);
    return 0;
}
