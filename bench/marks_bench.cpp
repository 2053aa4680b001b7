// Claim: ten thousand marks are opened, listed and filed in a time that goes with their bytes, and are laid
// out and drawn within 100 ms; hiding and renumbering all of them costs little more than opening each for
// write. The bound for filing is copying the filed bytes; the rest is told by itself.
//
// usage: QT_QPA_PLATFORM=offscreen bench_marks
#include "bench/stopwatch.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acgi/display/display.h"
#include "host/acgi/query/install.h"
#include "host/acgi/world_draw.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxftemplate.h"
#include "host/formats/dxf/dxfwriter.h"
#include "quillnote/authoring/all_marks.h"
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstring>
#include <tuple>

static constexpr int kMarks = 10'000;
static constexpr int kPictureBytes = 8'000;

static std::unique_ptr<AcDbDatabase> opened(const QByteArray &bytes)
{
    auto database = readDxf(base::FileBytes::fromByteArray(bytes), QStringLiteral("bench"));
    return std::move(database).value();
}

static void draw(AcDbDatabase &database)
{
    for (int i = 0; i < kMarks; ++i) {
        NewMark request;
        request.corner1 = {double(i % 100) * 50, double(i / 100) * 50, 0};
        request.corner2 = {request.corner1.x + 40, request.corner1.y + 30, 0};
        request.reviewerName = QStringLiteral("审图人%1").arg(i % 20);
        request.opinionText = QStringLiteral("第 %1 处门宽不足，请核对。").arg(i);
        AcDbObjectPointer<QuillnoteObj3> mark(createMark(database, request), AcDb::kForWrite);
        mark->snapImage = QByteArray(kPictureBytes, char(i));
    }
}

namespace
{

/// Takes everything and keeps only how much there was.
struct NullSink : AcGiGeometry {
    void polyline(std::uint32_t, const AcGePoint3d *) override { ++primitives; }
    void arc(const acgi::Arc &) override { ++primitives; }
    void fill(std::span<const acgi::Loop>) override { ++primitives; }
    void text(const acgi::TextLine &) override { ++primitives; }
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override { ++primitives; }
    std::size_t primitives = 0;
};

} // namespace

/// Gives all marks an outline of their own; polygons and splines run inside the target.
static void setStyle(const std::vector<AcDbObjectId> &ids, int style)
{
    for (const AcDbObjectId id : ids) {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
        const AcGePoint3d corner = mark->targetCorner1;
        mark->targetStyle = TargetStyle(style);
        mark->vertexCount = style > 50 ? 5 : 0;
        for (const auto &[i, x, y] :
             {std::tuple(0U, 0, 0), {1U, 35, 3}, {2U, 40, 20}, {3U, 18, 30}, {4U, 3, 24}})
            mark->vertices[i] = corner + AcGeVector3d(x, y, 0);
    }
}

/// What a regeneration asks of the marks: the layout of each, drawn; and what it is in all, with the display
/// lists that are made of it.
static void regenerate(AcDbDatabase &database, const std::vector<AcDbObjectId> &ids, int style)
{
    setStyle(ids, style);
    AcGiViewport view;
    view.centre = {2500, 2500, 0};
    view.height = 6000;
    view.pixelWidth = 14000;
    view.pixelHeight = 14000;
    NullSink sink;
    const double drawn = bench::bestSeconds(5, [&] {
        sink.primitives = 0;
        AcGiViewportDraw context(sink, kAcGiStandardDisplay, view);
        for (const AcDbObjectId id : ids)
            AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->subViewportDraw(&context);
    });
    constexpr int kEver = 1'000'000;
    acgi::Display &display = acgi::displayOf(database);
    const double listed = bench::bestSeconds(3, [&] {
        display.regenerate(true);
        display.prepare(database.modelSpaceId(), view, kEver);
    });
    std::printf("regenerate in outline style %2d %.4f s (%zu primitives), into display lists %.4f s\n", style,
                drawn, sink.primitives, listed);
}

/// One command of a user, then its undo and redo.
template <class Command>
static void timeCommand(const char *what, AcDbDatabase &database, Command command)
{
    const double done = bench::seconds([&] {
        const AcDbUndoGroup step(database, QString::fromLatin1(what));
        command();
    });
    const double undone = bench::seconds([&] { database.undo().undo(); });
    const double redone = bench::seconds([&] { database.undo().redo(); });
    std::printf("%s %.3f s, undo %.3f s, redo %.3f s\n", what, done, undone, redone);
}

/// Commands over all marks: first of marks as they were opened, then of changed ones.
static void changeAll(AcDbDatabase &database, const std::vector<AcDbObjectId> &ids)
{
    timeCommand("write to each", database, [&] {
        for (const AcDbObjectId id : ids)
            AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForWrite)->editVersion = 7;
    });
    timeCommand("hide all", database, [&] { setAllMarksDisplayMode(database, DisplayMode::hidden); });
    timeCommand("show all", database, [&] { setAllMarksDisplayMode(database, DisplayMode::full); });
    timeCommand("renumber", database, [&] { renumberMarks(database); });
}

/// Claim: a mark without pictures adds at most 6 KB to a DXF file, in every style.
static void weigh(int style)
{
    const auto sizeWith = [style](int marks) {
        auto database = opened(newDrawingDxf());
        for (int i = 0; i < marks; ++i) {
            NewMark request;
            request.corner2 = {4000, 3000, 0};
            request.reviewerName = QStringLiteral("审图人");
            request.opinionText = QStringLiteral("门宽不足，请核对。");
            createMark(*database, request);
        }
        setStyle(collectMarks(*database).ids, style);
        return writeDxf(*database).value().size();
    };
    constexpr int kWeighed = 10;
    std::printf("a mark in outline style %2d adds %lld bytes to a DXF file\n", style,
                static_cast<long long>((sizeWith(kWeighed + 1) - sizeWith(1)) / kWeighed));
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    registerMarkClass();
    startUpSettings().style = 2;
    auto first = opened(newDrawingDxf());
    const double made = bench::seconds([&] { draw(*first); });
    QByteArray saved;
    const double written = bench::seconds([&] { saved = writeDxf(*first).value(); });
    first.reset();

    std::unique_ptr<AcDbDatabase> second;
    const double read = bench::seconds([&] { second = opened(saved); });
    std::size_t found = 0;
    const double collected = bench::seconds([&] { found = collectMarks(*second).ids.size(); });
    const double again = bench::seconds([&] { found += collectMarks(*second).ids.size(); });
    QByteArray filed;
    const std::vector<AcDbObjectId> ids = collectMarks(*second).ids;
    const double filing = bench::seconds([&] {
        AcDbMemoryFiler filer(AcDb::kFileFiler, second.get());
        for (const AcDbObjectId id : ids)
            AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->dwgOutFields(&filer);
        filed = filer.stream();
    });
    QByteArray copy(filed.size(), Qt::Uninitialized);
    const double copying = bench::bestSeconds(
        5, [&] { std::memcpy(copy.data(), filed.constData(), std::size_t(filed.size())); });
    std::printf("%d marks with %d bytes of picture each (%zu seen)\n", kMarks, kPictureBytes, found / 2);
    std::printf("make %.3f s, save %.3f s (%.1f MB), open the drawing %.3f s\n", made, written,
                double(saved.size()) / 1e6, read);
    std::printf("first look at every mark %.3f s, the next %.4f s\n", collected, again);
    std::printf("file %.4f s, copying the %.1f MB %.4f s, ratio %.1f\n", filing, double(filed.size()) / 1e6,
                copying, filing / copying);
    changeAll(*second, ids);
    acgi::install();
    startUpSettings().viewFlag = true;
    for (const int style : {1, 2, 3, 4, 5, 6, 51, 52, 53, 54})
        weigh(style);
    for (const int style : {1, 2, 3, 4, 5, 6, 51, 52, 53, 54})
        regenerate(*second, ids, style);
}
