// DWG as one of the drawing formats.
#include "host/base/host_text.h"
#include "host/formats/drawingformat.h"

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
    bool holds(const AcDbDatabase &) const override { return false; }

    base::Result<std::unique_ptr<AcDbDatabase>, QString> read(base::FileBytes bytes, const QString &name,
                                                              const base::Progress &) const override
    {
        return base::Failure{
            Host::tr("%1: DWG drawings of version %2 cannot be read").arg(name, versionName(bytes.view()))};
    }

    QStringList losses(const AcDbDatabase &) const override { return {}; }

    base::Result<base::WrittenFile, QString> write(AcDbDatabase &, const QString &path,
                                                   const base::Progress &,
                                                   const base::MayReplace &) const override
    {
        // The name is a promise to whoever opens the file next.
        return base::Failure{Host::tr("%1: a DXF drawing cannot be saved as DWG").arg(path)};
    }

    base::Result<std::unique_ptr<DrawingImage>, QString> image(AcDbDatabase &) const override
    {
        return base::Failure{Host::tr("DWG drawings cannot be written")};
    }
};

const DwgFormat theFormat;

} // namespace
