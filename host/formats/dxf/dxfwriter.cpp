#include "host/formats/dxf/dxfwriter.h"

#include "host/acdb/dwgcarrier.h"
#include "host/base/host_text.h"
#include "host/formats/dxf/dxfexport.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxfreread.h"

static const DxfSource *sourceOf(const AcDbDatabase &database)
{
    return dynamic_cast<const DxfSource *>(database.source());
}

static DxfError notFromDxf(const QString &path)
{
    return {path, -1, Host::tr("the drawing did not come from a DXF file")};
}

/// Calls `write(std::string_view)` for the pieces of the saved file, in order.
template <class Write>
static void writePieces(const DxfSource &source, const std::vector<dxf::Edit> &edits, Write write)
{
    std::uint64_t at = 0;
    for (const dxf::Edit &edit : edits) {
        write(source.bytes({at, edit.offset}));
        write(std::string_view(edit.bytes.data(), std::size_t(edit.bytes.size())));
        at = edit.offset + edit.removed;
    }
    write(source.bytes().substr(at));
}

// Images -----------------------------------------------------------------------------------------

struct dxf::Image {
    const DxfSource &source;
    std::vector<Edit> edits;

    double size() const
    {
        double total = double(source.bytes().size());
        for (const Edit &edit : edits)
            total += double(edit.bytes.size()) - double(edit.removed);
        return std::max(total, 1.0);
    }
};

static DxfError failed(const base::FileError &error)
{
    return {{}, -1, error.text()};
}

static DxfError stopped(const QString &path)
{
    return {path, -1, Host::tr("saving was stopped")};
}

/// False when it was stopped. Failures stay with the file.
static bool writeInto(base::AtomicFileWriter &file, const dxf::Image &image, const base::Progress &progress)
{
    constexpr std::size_t kStride = 4 << 20;
    const double size = image.size();
    std::size_t written = 0;
    std::size_t reported = 0;
    bool goesOn = true;
    writePieces(image.source, image.edits, [&](std::string_view piece) {
        while (!piece.empty() && goesOn && !file.failed()) {
            const std::string_view part = piece.substr(0, kStride);
            file.write(QByteArrayView(part.data(), qsizetype(part.size())));
            piece.remove_prefix(part.size());
            written += part.size();
            if (written - reported < kStride)
                continue;
            reported = written;
            goesOn = base::report(progress, double(written) / size);
        }
    });
    return goesOn;
}

DxfImage::DxfImage(std::unique_ptr<dxf::Image> image) : m_image(std::move(image)) {}
DxfImage::DxfImage(DxfImage &&other) noexcept = default;
DxfImage &DxfImage::operator=(DxfImage &&other) noexcept = default;
DxfImage::~DxfImage() = default;

base::Result<DxfImage, DxfError> DxfImage::take(AcDbDatabase &database)
{
    const DxfSource *const source = sourceOf(database);
    if (!source)
        return base::Failure{notFromDxf({})};
    const AcDbDwgCarriers carriers(database);
    return DxfImage(
        std::unique_ptr<dxf::Image>(new dxf::Image{*source, dxf::SavePlan(database, *source).takeEdits()}));
}

base::Result<void, DxfError> DxfImage::write(const QString &path, const base::Progress &progress) const
{
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{failed(file.error())};
    if (!writeInto(*file, *m_image, progress))
        return base::Failure{stopped(path)};
    if (const auto done = file->commit(); !done)
        return base::Failure{failed(done.error())};
    return {};
}

// Saving -----------------------------------------------------------------------------------------

base::Result<QByteArray, DxfError> writeDxf(AcDbDatabase &database)
{
    const DxfSource *const source = sourceOf(database);
    if (!source)
        return base::Failure{notFromDxf({})};
    const AcDbDwgCarriers carriers(database);
    QByteArray saved;
    saved.reserve(qsizetype(source->bytes().size()));
    writePieces(*source, dxf::SavePlan(database, *source).edits(),
                [&](std::string_view piece) { saved.append(piece.data(), qsizetype(piece.size())); });
    return saved;
}

base::Result<base::WrittenFile, DxfError> writeDxf(AcDbDatabase &database, const QString &path,
                                                   const base::Progress &progress,
                                                   const base::MayReplace &mayReplace)
{
    constexpr double kWriting = 0.6; // Of the whole; the rest is reading again.
    const DxfSource *const source = sourceOf(database);
    if (!source)
        return base::Failure{notFromDxf(path)};
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{failed(file.error())};

    std::optional<dxf::Image> image;
    std::optional<dxf::RereadCheck> check;
    {
        // Gone before anybody is told of progress, who may look at the drawing.
        const AcDbDwgCarriers carriers(database);
        dxf::SavePlan plan(database, *source);
        check.emplace(database, *source, plan);
        image.emplace(dxf::Image{*source, plan.takeEdits()});
    }
    bool goesOn = base::report(progress, 0.0);
    const auto part = [&](double from, double to) {
        return [&goesOn, &progress, from, to](double share) {
            return goesOn = base::report(progress, from + (to - from) * share);
        };
    };
    if (!goesOn || !writeInto(*file, *image, part(0.0, kWriting)))
        return base::Failure{stopped(path)};
    const auto written = file->finishWriting();
    if (!written)
        return base::Failure{failed(written.error())};
    const auto reread = check->read(*written, part(kWriting, 1.0));
    if (!goesOn)
        return base::Failure{stopped(path)};
    if (!reread)
        return base::Failure{DxfError{path, -1,
                                      Host::tr("what was written cannot be read again (%1); the file "
                                               "stays as it was")
                                          .arg(reread.error())}};
    auto done = file->commit(mayReplace);
    if (!done)
        return base::Failure{failed(done.error())};
    return *std::move(done);
}

// Converting -------------------------------------------------------------------------------------

/// What is wrong with a converted file; empty when it holds what it should.
static QString faultOf(const QString &path, std::uint32_t objects)
{
    const auto reread = readDxf(path);
    if (!reread)
        return reread.error().text();
    if (!(*reread)->repairs().isEmpty())
        return (*reread)->repairs().front();
    if ((*reread)->stubCount() < objects)
        return Host::tr("objects are missing");
    return {};
}

base::Result<base::WrittenFile, DxfError> convertToDxf(AcDbDatabase &database, const QString &path,
                                                       const base::Progress &progress,
                                                       const base::MayReplace &mayReplace)
{
    dxf::Exported converted;
    {
        const AcDbDwgCarriers carriers(database, AcDbCarried::all);
        converted = dxf::exportDrawing(database);
    }
    if (!base::report(progress, 0.5))
        return base::Failure{stopped(path)};
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{failed(file.error())};
    file->write(converted.bytes);
    const auto written = file->finishWriting();
    if (!written)
        return base::Failure{failed(written.error())};
    if (const QString fault = faultOf(*written, converted.objects); !fault.isEmpty())
        return base::Failure{DxfError{path, -1,
                                      Host::tr("what was written cannot be read again (%1); the file "
                                               "stays as it was")
                                          .arg(fault)}};
    if (!base::report(progress, 1.0))
        return base::Failure{stopped(path)};
    auto done = file->commit(mayReplace);
    if (!done)
        return base::Failure{failed(done.error())};
    return *std::move(done);
}
