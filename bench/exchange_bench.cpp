// Claim: a mark data file of as many marks as it may hold is written and read in a time that goes with its
// bytes, and taken into a drawing at little more than the price of appending marks. The bound for the file is
// writing and reading the same bytes, as files are written and read here; the peer for the drawing is
// appending marks that are at hand.
//
// usage: QT_QPA_PLATFORM=offscreen bench_exchange
#include "bench/stopwatch.h"
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxftemplate.h"
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/exchange/export_marks.h"
#include "quillnote/exchange/import_marks.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

static constexpr int kPictureBytes = 8'000;
static constexpr int kSketchBytes = 2'000;

static std::unique_ptr<AcDbDatabase> emptyDrawing()
{
    auto database = readDxf(base::FileBytes::fromByteArray(newDrawingDxf()), QStringLiteral("bench"));
    return std::move(database).value();
}

static void draw(AcDbDatabase &database)
{
    for (std::size_t i = 0; i < kMostDataRecords; ++i) {
        NewMark request;
        request.corner1 = {double(i % 100) * 50, double(i / 100) * 50, 0};
        request.corner2 = {request.corner1.x + 40, request.corner1.y + 30, 0};
        request.opinionText = QStringLiteral("第 %1 处门宽不足，请核对。").arg(i);
        AcDbObjectPointer<QuillnoteObj3> mark(createMark(database, request), AcDb::kForWrite);
        mark->snapImage = QByteArray(kPictureBytes, char(i));
        mark->sketchData = QByteArray(kSketchBytes, char(i));
    }
}

static void writeFile(const QString &path, const QByteArray &bytes)
{
    if (!base::writeFileAtomically(path, bytes))
        std::exit(1);
}

/// The bound and the work that it bounds.
static void tell(const char *what, double seconds, const char *bound, double boundSeconds)
{
    std::printf("%s %.4f s, %s %.4f s: %.1f times\n", what, seconds, bound, boundSeconds,
                seconds / boundSeconds);
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("marks.Quillnote"));
    registerMarkClass();
    auto from = emptyDrawing();
    draw(*from);
    const QByteArray bytes = encodeMarkData(marksOf(*from));
    std::printf("%zu marks, %lld bytes\n", kMostDataRecords, static_cast<long long>(bytes.size()));

    const double writing = bench::bestSeconds(5, [&] { writeFile(path, bytes); });
    const double exporting = bench::bestSeconds(5, [&] { writeFile(path, encodeMarkData(marksOf(*from))); });
    tell("export", exporting, "writing the bytes", writing);

    const double reading = bench::bestSeconds(5, [&] { static_cast<void>(base::readFileBytes(path)); });
    const auto parse = [&] {
        const auto file = base::readFileBytes(path);
        const QByteArrayView view(file->data(), qsizetype(file->size()));
        return readMarkData(view, *readMarkDataHeader(view));
    };
    tell("read into records", bench::bestSeconds(5, parse), "reading the bytes", reading);

    auto peer = emptyDrawing();
    const double appending = bench::seconds([&] {
        for (const MarkDataRecord &record : parse().data.marks)
            appendMark(*peer, copyOfMark(*record.mark));
    });
    auto to = emptyDrawing();
    MarkData data = parse().data;
    tell("into an empty drawing", bench::seconds([&] { importMarkData(*to, std::move(data)); }),
         "appending marks", appending);
    MarkData again = parse().data;
    tell("over the same marks", bench::seconds([&] { importMarkData(*to, std::move(again)); }),
         "appending marks", appending);
    return collectMarks(*to).ids.size() == kMostDataRecords ? 0 : 1;
}
