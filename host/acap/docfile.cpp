#include "host/acap/docfile.h"

#include "host/acdb/dbxref.h"
#include "host/base/file_bytes.h"
#include "host/base/host_text.h"
#include "host/formats/drawingformat.h"

#include <QFile>

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

/// References are read as drawings are opened.
[[maybe_unused]] static const bool s_givesReader = [] {
    acdbSetDrawingReader([](const QString &path) { return acapReadDrawing(path); });
    return true;
}();

std::uint64_t acapDigestAsRead(const AcDbDatabase &database)
{
    return base::contentDigest(database.source()->bytes());
}

/// A file whose name says another format than its bytes, which are the drawing's: writing what the name says
/// would replace the only whole copy by a conversion.
static bool isMisnamedOriginal(const AcDbDatabase &database, const DrawingFormat &format, const QString &path)
{
    const DrawingFormat *const own = drawingFormatOf(database);
    QFile file(path);
    if (!own || own == &format || !file.open(QIODevice::ReadOnly))
        return false;
    constexpr qint64 kEnoughToKnow = 64;
    const QByteArray head = file.read(kEnoughToKnow);
    return own->recognises({head.constData(), std::size_t(head.size())}) == Recognised::surely;
}

base::Result<base::WrittenFile, QString> acapWriteDrawing(AcDbDatabase &database, const QString &path,
                                                          const base::Progress &progress,
                                                          const base::MayReplace &mayReplace)
{
    // The ending of the name promises a format to the next program.
    const DrawingFormat *const format = drawingFormatToSave(database, path);
    if (!format)
        return base::Failure{Host::tr("%1: the drawing came from no file that could be written").arg(path)};
    if (isMisnamedOriginal(database, *format, path))
        return base::Failure{
            Host::tr("%1: in spite of its name this is a %2 file; save the drawing under another name")
                .arg(path, drawingFormatOf(database)->name())};
    return format->write(database, path, progress, mayReplace);
}

QStringList acapLossesOfWriting(const AcDbDatabase &database, const QString &path)
{
    const DrawingFormat *const format = drawingFormatToSave(database, path);
    return format ? format->losses(database) : QStringList();
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
