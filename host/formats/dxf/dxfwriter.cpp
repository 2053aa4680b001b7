#include "host/formats/dxf/dxfwriter.h"

#include "host/acdb/dwgcarrier.h"
#include "host/base/atomic_file.h"
#include "host/formats/dxf/dxfplan.h"

static const DxfSource *sourceOf(const AcDbDatabase &database)
{
    return dynamic_cast<const DxfSource *>(database.source());
}

static DxfError notFromDxf(const QString &path)
{
    return {path, -1, QStringLiteral("the drawing did not come from a DXF file")};
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

base::Result<void, DxfError> writeDxf(AcDbDatabase &database, const QString &path)
{
    const DxfSource *const source = sourceOf(database);
    if (!source)
        return base::Failure{notFromDxf(path)};
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{DxfError{{}, -1, file.error().text()}};
    const AcDbDwgCarriers carriers(database);
    writePieces(*source, dxf::SavePlan(database, *source).edits(),
                [&](std::string_view piece) { file->write(std::span(piece.data(), piece.size())); });
    if (const auto done = file->commit(); !done)
        return base::Failure{DxfError{{}, -1, done.error().text()}};
    return {};
}
