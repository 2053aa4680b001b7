#include "host/acap/docfile.h"

#include "host/base/file_bytes.h"
#include "host/base/host_text.h"
#include "host/formats/drawingformat.h"

base::Result<std::unique_ptr<AcDbDatabase>, QString> acapReadDrawing(const QString &path,
                                                                     const base::Progress &progress)
{
    auto bytes = base::readFileBytes(path);
    if (!bytes)
        return base::Failure{bytes.error().text()};
    const DrawingFormat *const format = drawingFormatOfBytes(bytes->view());
    QUILL_ASSERT(format);
    return format->read(*std::move(bytes), path, progress);
}

std::uint64_t acapDigestAsRead(const AcDbDatabase &database)
{
    return base::contentDigest(database.source()->bytes());
}

base::Result<base::WrittenFile, QString> acapWriteDrawing(AcDbDatabase &database, const QString &path,
                                                          const base::Progress &progress,
                                                          const base::MayReplace &mayReplace)
{
    // The name is a promise to whoever opens the file next.
    const DrawingFormat *const format = drawingFormatToSave(database, path);
    if (!format)
        return base::Failure{Host::tr("%1: the drawing came from no file that could be written").arg(path)};
    return format->write(database, path, progress, mayReplace);
}

std::unique_ptr<AcDbDatabase> acapTemplateDrawing()
{
    for (const DrawingFormat *const format : drawingFormats()) {
        const QByteArray blank = format->blank();
        if (blank.isEmpty())
            continue;
        auto database =
            format->read(base::FileBytes::fromByteArray(blank), QStringLiteral("new drawing"), {});
        QUILL_ASSERT(database);
        return *std::move(database);
    }
    QUILL_ASSERT(!"no format has a new drawing");
    return nullptr;
}
