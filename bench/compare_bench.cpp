// Claim: ten thousand marks of a drawing are compared with it in a time that goes with the entities under
// their targets, whatever the drawing holds around them: within 5 s on two cores in a drawing of a million
// entities, the index included. The bound is reading the groups of the same entities, each once. The same
// holds for the pictures that marks keep; they are taken twice, the second time nothing is left but painting.
//
// usage: QT_QPA_PLATFORM=offscreen bench_compare DRAWING.dxf MARKED.dxf
// (bench/make_drawing.py makes a drawing; MARKED.dxf is written, with the marks, and opened again for the
// measurement)
#include "bench/opened_drawing.h"
#include "bench/stopwatch.h"
#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/query/install.h"
#include "host/acgi/query/spatial_index.h"
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/commands/changed_targets.h"
#include "quillnote/snapshot/fingerprint.h"
#include "quillnote/snapshot/target_picture.h"

#include <QGuiApplication>
#include <chrono>

#include <algorithm>
#include <cstdio>
#include <random>
#include <span>
#include <unordered_set>

static constexpr int kMarks = 10'000;
static constexpr int kPictured = 500;

/// Targets as checkers draw them, all over the drawing, with the fingerprints that new marks get.
static void addMarks(AcDbDatabase &database)
{
    const AcDbObjectId space = database.modelSpaceId();
    const AcDbExtents all = acgi::spatialIndexOf(database).extents(space);
    const AcGeVector3d size = all.maxPoint() - all.minPoint();
    std::mt19937 numbers(7);
    std::uniform_real_distribution<double> share(0.05, 0.95);
    FingerprintTaker fingerprints(database);
    std::vector<std::unique_ptr<QuillnoteObj3>> marks;
    for (int i = 0; i < kMarks; ++i) {
        auto mark = std::make_unique<QuillnoteObj3>();
        mark->targetCorner1 =
            all.minPoint() + AcGeVector3d(size.x * share(numbers), size.y * share(numbers), 0);
        mark->targetCorner2 = mark->targetCorner1 + AcGeVector3d(size.x, size.y, 0) * 0.003;
        TargetFingerprint print = fingerprints.take(space, targetWindow(*mark));
        mark->snapEntityIds = std::move(print.ids);
        mark->snapChecksum = print.checksum;
        marks.push_back(std::move(mark));
    }
    const AcDbObjectPointer<AcDbBlockTableRecord> record(space, AcDb::kForWrite);
    for (auto &mark : marks) {
        AcDbObjectId id;
        record->appendAcDbEntity(id, mark.get());
        mark.release()->close();
    }
}

static void takePictures(AcDbDatabase &database, std::span<const AcDbObjectId> marks)
{
    const auto take = [&] {
        for (const AcDbObjectId id : marks) {
            const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
            if (const auto view = targetView(TargetPlace(*mark), {320, 240}))
                spacePicture(database, mark->blockId(), *view, Qt::black, ShownMarks::none);
        }
    };
    const double first = bench::processorSeconds(take);
    const double again = bench::processorSeconds(take);
    std::printf("%zu pictures of targets %.2f s, once more %.2f s\n", marks.size(), first, again);
}

static int measure(AcDbDatabase &database)
{
    const std::vector<AcDbObjectId> marks = collectMarks(database).ids;
    const double indexed =
        bench::processorSeconds([&] { acgi::spatialIndexOf(database).extents(database.modelSpaceId()); });
    TargetComparison found;
    double own = 0;
    const auto begun = std::chrono::steady_clock::now();
    const double compared = bench::processorSeconds(
        [&] { own = bench::threadSeconds([&] { found = compareTargets(database, marks); }); });
    const std::chrono::duration<double> byClock = std::chrono::steady_clock::now() - begun;
    std::unordered_set<AcDbObjectId> entities;
    std::size_t visits = 0;
    for (const AcDbObjectId id : marks) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        visits += mark->snapEntityIds.size();
        entities.insert(mark->snapEntityIds.begin(), mark->snapEntityIds.end());
    }
    std::size_t groups = 0;
    const double reading = bench::processorSeconds([&] {
        for (const AcDbObjectId id : entities)
            groups += database.fileGroups(*id.stub()).size();
    });
    std::printf("index %.2f s\n", indexed);
    std::printf("%zu targets compared %.2f s by the clock, %.2f s of the processor, of two threads the "
                "longer %.2f s: "
                "%zu entities, %zu times under a target; %zu changed\n",
                found.compared, byClock.count(), compared, std::max(own, compared - own), entities.size(),
                visits, found.changed.size());
    takePictures(database, std::span(marks).first(kPictured));
    std::printf("reading their %zu groups %.2f s, ratio %.1f; in all %.2f s of two cores\n", groups, reading,
                compared / reading, indexed + std::max(own, compared - own));
    return found.changed.empty() && found.compared == marks.size() ? 0 : 1;
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_compare DRAWING.dxf MARKED.dxf\n");
        return 2;
    }
    acgi::install();
    registerMarkClass();
    const QString marked = QString::fromLocal8Bit(argv[2]);
    AcApDocument *const drawing = bench::opened(QString::fromLocal8Bit(argv[1]));
    if (!drawing)
        return 2;
    addMarks(*drawing->database());
    const auto saved = acDocManager()->saveDocument(drawing, marked, true);
    acDocManager()->closeDocument(drawing);
    AcApDocument *const again = saved ? bench::opened(marked) : nullptr;
    if (!again)
        return 2;
    const int result = measure(*again->database());
    acDocManager()->closeDocument(again);
    return result;
}
