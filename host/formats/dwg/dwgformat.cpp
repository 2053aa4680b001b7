// DWG as one of the drawing formats.
#include "host/base/host_text.h"
#include "host/formats/drawingformat.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgpacker.h"
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dwg/dwgsource.h"
#include "host/formats/dwg/dwgwriter.h"

namespace
{

struct DwgVersion {
    std::string_view mark; ///< The first six bytes of the file.
    const char *name;
};

// clang-format off
constexpr DwgVersion kVersions[] = {
    {"AC1004", "R9"},   {"AC1006", "R10"},  {"AC1009", "R12"},  {"AC1012", "R13"},  {"AC1014", "R14"},
    {"AC1015", "2000"}, {"AC1018", "2004"}, {"AC1021", "2007"}, {"AC1024", "2010"}, {"AC1027", "2013"},
    {"AC1032", "2018"},
};
// clang-format on

QString versionName(std::string_view bytes)
{
    for (const DwgVersion &version : kVersions) {
        if (bytes.starts_with(version.mark))
            return QString::fromLatin1(version.name);
    }
    return QString::fromLatin1(bytes.substr(0, 6));
}

class DwgFormat : public DrawingFormat
{
public:
    DwgFormat() { registerDrawingFormat(*this); }

    QString name() const override { return QStringLiteral("DWG"); }
    QString suffix() const override { return QStringLiteral("dwg"); }
    /// The file begins with its version; no DXF file begins with these letters and a digit.
    Recognised recognises(std::string_view bytes) const override
    {
        const bool isMarked =
            bytes.size() >= 6 && bytes.starts_with("AC") && bytes[2] >= '0' && bytes[2] <= '9';
        return isMarked ? Recognised::surely : Recognised::no;
    }
    bool holds(const AcDbDatabase &database) const override { return sourceOf(database) != nullptr; }

    base::Result<std::unique_ptr<AcDbDatabase>, QString> read(base::FileBytes bytes, const QString &name,
                                                              const base::Progress &progress) const override
    {
        if (dwg::versionOf(bytes.view()) == DrawingVersion::unknown) {
            return base::Failure{Host::tr("%1: DWG drawings of version %2 cannot be read")
                                     .arg(name, versionName(bytes.view()))};
        }
        return readDwg(std::move(bytes), name, progress);
    }

    QString whyNotWritten(const AcDbDatabase &database) const override
    {
        const auto *const source = sourceOf(database);
        const QString reason = source ? dwg::whyNotPacked(source->container())
                                      : Host::tr("a DXF drawing cannot be saved as DWG");
        return reason.isEmpty() ? QString() : dwg::withWayOut(reason);
    }

    QStringList losses(const AcDbDatabase &) const override { return {}; }

    base::Result<base::WrittenFile, QString> write(AcDbDatabase &database, const QString &path,
                                                   const base::Progress &progress,
                                                   const base::MayReplace &mayReplace) const override
    {
        if (const QString reason = whyNotWritten(database); !reason.isEmpty() && mayNotCopy(database))
            return base::Failure{path + QStringLiteral(": ") + reason};
        return writeDwg(database, *sourceOf(database), path, progress, mayReplace);
    }

    /// What cannot be written as DWG is kept in a format that can.
    base::Result<std::unique_ptr<DrawingImage>, QString> image(AcDbDatabase &database) const override
    {
        if (const auto *const source = sourceOf(database)) {
            if (auto image = dwgImage(database, *source))
                return image;
        }
        const DrawingFormat *const written = drawingFormatOfName(QStringLiteral("copy.dxf"));
        if (!written)
            return base::Failure{Host::tr("DWG drawings cannot be written")};
        return written->image(database);
    }

private:
    static const DwgSource *sourceOf(const AcDbDatabase &database)
    {
        return dynamic_cast<const DwgSource *>(database.source());
    }
    /// Without changes the file is copied, whatever it is.
    static bool mayNotCopy(const AcDbDatabase &database)
    {
        return !sourceOf(database) || database.hasChanges();
    }
};

const DwgFormat theFormat;

} // namespace
