// Claim: the fingerprint of a target costs what the entities in it cost, whatever the drawing holds around
// them. The bound is reading the groups of the same entities.
//
// usage: bench_fingerprint DRAWING.dxf (bench/make_drawing.py makes one of a million entities)
#include "bench/opened_drawing.h"
#include "bench/stopwatch.h"
#include "host/acgi/query/install.h"
#include "host/acgi/query/spatial_index.h"
#include "quillnote/snapshot/fingerprint.h"

#include <QCoreApplication>

#include <cstdio>
#include <ctime>
#include <random>

static constexpr int kTargets = 1000;

/// What this process used, beside which other work on the machine does not count.
static double processorSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

/// Rectangles as checkers draw them, all over the drawing.
static std::vector<AcDbExtents> targets(const AcDbExtents &drawing)
{
    const AcGeVector3d size = drawing.maxPoint() - drawing.minPoint();
    std::mt19937 numbers(7);
    std::uniform_real_distribution<double> share(0.05, 0.95);
    std::vector<AcDbExtents> all;
    for (int i = 0; i < kTargets; ++i) {
        const AcGePoint3d corner =
            drawing.minPoint() + AcGeVector3d(size.x * share(numbers), size.y * share(numbers), 0);
        all.emplace_back(corner, corner + AcGeVector3d(size.x, size.y, 0) * 0.003);
    }
    return all;
}

static MarkCorners cornersOf(const AcDbExtents &box)
{
    const AcGePoint3d low = box.minPoint();
    const AcGePoint3d high = box.maxPoint();
    return {.corner1 = low, .corner2 = high, .corner3 = {low.x, high.y, 0}, .corner4 = {high.x, low.y, 0}};
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_fingerprint DRAWING.dxf\n");
        return 2;
    }
    acgi::install();
    const AcApDocument *const document = bench::opened(QString::fromLocal8Bit(argv[1]));
    if (!document)
        return 2;
    const AcDbDatabase &database = *document->database();
    AcDbExtents extents;
    const double start = processorSeconds();
    const double indexed = bench::seconds(
        [&] { extents = acgi::spatialIndexOf(*document->database()).extents(database.modelSpaceId()); });

    const double indexedProcessor = processorSeconds() - start;

    std::vector<AcDbObjectId> touched;
    const double taken = bench::seconds([&] {
        for (const AcDbExtents &target : targets(extents)) {
            const TargetFingerprint print = computeTargetFingerprint(cornersOf(target));
            touched.insert(touched.end(), print.ids.begin(), print.ids.end());
        }
    });
    const double takenProcessor = processorSeconds() - start - indexedProcessor;
    std::size_t groups = 0;
    const double reading = bench::seconds([&] {
        for (const AcDbObjectId id : touched)
            groups += database.fileGroups(*id.stub()).size();
    });
    std::printf("index %.2f s (processor %.2f s)\n", indexed, indexedProcessor);
    std::printf("%d fingerprints of %zu entities %.3f s (processor %.3f s, %.1f us an entity)\n", kTargets,
                touched.size(), taken, takenProcessor, taken / double(touched.size()) * 1e6);
    std::printf("reading their %zu groups %.3f s, ratio %.1f\n", groups, reading, taken / reading);
}
