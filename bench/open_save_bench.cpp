// Claims: opening a DXF drawing takes at most three times as long as splitting its bytes into lines, saving
// it with one mark added at most twice as long as copying it, and an open drawing takes at most 1.5 times its
// size. What a recovery copy takes of the user's time is told beside it.
//
// usage: bench_open_save FILE.dxf...   (bench/make_drawing.py makes them)
#include "bench/stopwatch.h"
#include "host/acdb/dbsymtb.h"
#include "host/base/atomic_file.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxfwriter.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <cstring>
#include <unistd.h>

static std::size_t countLines(std::string_view bytes)
{
    std::size_t lines = 0;
    const char *at = bytes.data();
    const char *const end = at + bytes.size();
    while (const void *const found = std::memchr(at, '\n', std::size_t(end - at))) {
        at = static_cast<const char *>(found) + 1;
        ++lines;
    }
    return lines;
}

static double residentBytes()
{
    QFile status(QStringLiteral("/proc/self/statm"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    return status.readAll().split(' ').at(1).toDouble() * double(sysconf(_SC_PAGESIZE));
}

static void addMark(AcDbDatabase &database)
{
    auto *const entity = static_cast<AcDbEntity *>(acdbKindClass(acdbKind("CIRCLE"), true)->create());
    entity->editGroups() = {{0, QStringLiteral("CIRCLE")},     {100, QStringLiteral("AcDbEntity")},
                            {8, QStringLiteral("0")},          {100, QStringLiteral("AcDbCircle")},
                            {10, AcGePoint3d(100.0, 50.0, 0)}, {40, 12.5}};
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (space && space->appendAcDbEntity(id, entity) == Acad::eOk)
        entity->close();
}

static bool measure(const QString &path)
{
    // Small files need many runs to show more than what else the machine does.
    const int runs = int(std::clamp<qint64>(500'000'000 / (QFileInfo(path).size() + 1), 5, 50));
    const double before = residentBytes();
    auto opened = readDxf(path);
    if (!opened) {
        std::fprintf(stderr, "%s\n", qPrintable(opened.error().text()));
        return false;
    }
    const double resident = residentBytes() - before;
    AcDbDatabase &database = **opened;
    const double decode = bench::bestSeconds(1, [&] {
        std::size_t groups = 0;
        for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
            if (database.stub(index)->has(AcDbStub::kHasSource))
                groups += database.source()->read(*database.stub(index)).size();
        }
        std::printf("%9zu groups decoded of %u objects\n", groups, database.stubCount() - 1);
    });

    const auto bytes = base::readFileBytes(path);
    std::size_t lines = 0;
    const double split = bench::bestSeconds(runs, [&] { lines = countLines(bytes->view()); });
    const double read = bench::bestSeconds(runs, [&] { (void)base::readFileBytes(path).ok(); });
    const double open = bench::bestSeconds(runs, [&] { (void)readDxf(path).ok(); });

    const QTemporaryDir folder(QFileInfo(path).absolutePath() + QStringLiteral("/bench-XXXXXX"));
    const QString target = folder.filePath(QStringLiteral("out.dxf"));
    const QByteArrayView content(bytes->data(), qsizetype(bytes->size()));
    const double copy =
        bench::bestSeconds(runs, [&] { (void)base::writeFileAtomically(target, content).ok(); });
    addMark(database);
    bool saved = true;
    const double save = bench::bestSeconds(runs, [&] { saved = saved && writeDxf(database, target).ok(); });

    const double image = bench::bestSeconds(runs, [&] { (void)DxfImage::take(database).ok(); });

    const double size = double(bytes->size());
    std::printf("%s: %.1f MB, %zu lines\n", qPrintable(QFileInfo(path).fileName()), size / 1e6, lines);
    std::printf("  open    %8.3f s = %.2f x splitting into lines (%.3f s); of that %.3f s reading the file\n",
                open, open / split, split, read);
    std::printf("  save    %8.3f s = %.2f x copying (%.3f s)\n", save, save / copy, copy);
    std::printf("  image   %8.3f s on the drawing's thread, before a recovery copy is written\n", image);
    std::printf("  memory  %8.1f MB = %.2f x file\n", resident / 1e6, resident / size);
    std::printf("  decode  %8.3f s, all objects once\n", decode);
    return saved;
}

int main(int argc, char **argv)
{
    bool good = argc > 1;
    if (argc < 2)
        std::fprintf(stderr, "usage: bench_open_save FILE.dxf...\n");
    for (int i = 1; i < argc; ++i)
        good = measure(QString::fromLocal8Bit(argv[i])) && good;
    return good ? 0 : 1;
}
