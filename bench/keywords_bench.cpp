// Claim: asking what a target says costs no more than the 101 entities looked at, whatever the target and the
// drawing around it hold. The peer is the same question about those 101 entities alone; the bound is reading
// their groups.
//
// usage: bench_keywords DRAWING.dxf (bench/make_drawing.py makes one of a million entities)
#include "bench/opened_drawing.h"
#include "bench/stopwatch.h"
#include "host/acap/docman.h"
#include "host/acdb/dbapi.h"
#include "host/acgi/query/install.h"
#include "quillnote/authoring/keyword_text.h"

#include <QCoreApplication>

#include <cstdio>

static constexpr std::size_t kLookedAt = 101;
static constexpr int kPlaces = 50;
static constexpr double kMostTimes = 1.5;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_keywords DRAWING.dxf\n");
        return 2;
    }
    acgi::install();
    AcApDocument *const document = bench::opened(QString::fromLocal8Bit(argv[1]));
    if (!document)
        return 2;
    const AcDbDatabase &database = *document->database();
    std::vector<AcDbObjectId> all;
    for (const std::uint32_t index : database.blockContents(database.modelSpaceId())->entities)
        all.emplace_back(database.stub(index));

    double whole = 0;
    double few = 0;
    double reading = 0;
    for (int place = 0; place < kPlaces; ++place) {
        // Targets that hold all the rest of the drawing, beside the few that are looked at.
        const auto begin = all.begin() + std::ptrdiff_t(all.size() / kPlaces * std::size_t(place) / 2);
        const std::vector<AcDbObjectId> target(begin, all.end());
        const std::vector<AcDbObjectId> first(begin,
                                              begin + std::ptrdiff_t(std::min(kLookedAt, target.size())));
        QString text;
        few += bench::bestSeconds(3, [&] { text = keywordText(first); });
        whole += bench::bestSeconds(3, [&] {
            if (keywordText(target) != text)
                std::printf("another text at %d\n", place);
        });
        reading += bench::bestSeconds(3, [&] {
            for (const AcDbObjectId id : first)
                acdbEntGetX(id);
        });
    }
    std::printf("%zu entities; %d targets of at least half of them\n", all.size(), kPlaces);
    std::printf("the target  %.3f ms\n", whole / kPlaces * 1e3);
    std::printf("101 of it   %.3f ms, ratio %.2f\n", few / kPlaces * 1e3, whole / few);
    std::printf("their groups %.3f ms, ratio %.1f\n", reading / kPlaces * 1e3, whole / reading);
    const bool isBounded = whole <= few * kMostTimes;
    std::printf("%s\n", isBounded ? "bounded" : "NOT bounded");
    acDocManager()->closeDocument(document);
    return isBounded ? 0 : 1;
}
