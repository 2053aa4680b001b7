#include "host/acap/docfile.h"

#include "host/base/file_bytes.h"
#include "host/base/host_text.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxfsource.h"
#include "host/formats/dxf/dxftemplate.h"
#include "host/formats/dxf/dxfwriter.h"

#include <QStringList>

namespace
{

struct DwgVersion {
    std::string_view mark; ///< The first six bytes of the file.
    const char *name;
};

// clang-format off
constexpr DwgVersion kDwgVersions[] = {
    {"AC1004", "R9"},   {"AC1006", "R10"},  {"AC1009", "R12"},  {"AC1012", "R13"},  {"AC1014", "R14"},
    {"AC1015", "2000"}, {"AC1018", "2004"}, {"AC1021", "2007"}, {"AC1024", "2010"}, {"AC1027", "2013"},
    {"AC1032", "2018"},
};
// clang-format on

/// DWG files begin with their version; no DXF file begins with these letters and a digit.
bool isDwg(std::string_view bytes)
{
    return bytes.size() >= 6 && bytes.starts_with("AC") && bytes[2] >= '0' && bytes[2] <= '9';
}

QString dwgVersionName(std::string_view bytes)
{
    for (const DwgVersion &version : kDwgVersions) {
        if (bytes.starts_with(version.mark))
            return QString::fromLatin1(version.name);
    }
    return QString::fromLatin1(bytes.substr(0, 6));
}

} // namespace

base::Result<std::unique_ptr<AcDbDatabase>, QString> acapReadDrawing(const QString &path,
                                                                     const base::Progress &progress)
{
    auto bytes = base::readFileBytes(path);
    if (!bytes)
        return base::Failure{bytes.error().text()};
    if (isDwg(bytes->view())) {
        return base::Failure{Host::tr("%1: DWG drawings of version %2 cannot be read")
                                 .arg(path, dwgVersionName(bytes->view()))};
    }
    auto database = readDxf(*std::move(bytes), path, progress);
    if (!database)
        return base::Failure{database.error().text()};
    return *std::move(database);
}

std::uint64_t acapDigestAsRead(const AcDbDatabase &database)
{
    const auto *const source = dynamic_cast<const DxfSource *>(database.source());
    return source ? base::contentDigest(source->bytes()) : 0;
}

base::Result<base::WrittenFile, QString> acapWriteDrawing(AcDbDatabase &database, const QString &path,
                                                          const base::Progress &progress,
                                                          const base::MayReplace &mayReplace)
{
    // The name is a promise to whoever opens the file next.
    if (path.endsWith(QLatin1String(".dwg"), Qt::CaseInsensitive))
        return base::Failure{Host::tr("%1: a DXF drawing cannot be saved as DWG").arg(path)};
    auto written = writeDxf(database, path, progress, mayReplace);
    if (!written)
        return base::Failure{written.error().text()};
    return *std::move(written);
}

std::unique_ptr<AcDbDatabase> acapTemplateDrawing()
{
    auto database = readDxf(base::FileBytes::fromByteArray(newDrawingDxf()), QStringLiteral("new drawing"));
    QUILL_ASSERT(database);
    return *std::move(database);
}
