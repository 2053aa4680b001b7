// DXF as one of the drawing formats.
#include "host/acdb/dwgcarrier.h"
#include "host/formats/drawingformat.h"
#include "host/formats/dxf/dxfexport.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxfsource.h"
#include "host/formats/dxf/dxftemplate.h"
#include "host/formats/dxf/dxfwriter.h"

namespace
{

class SavedAsDxf : public DrawingImage
{
public:
    explicit SavedAsDxf(DxfImage image) : m_image(std::move(image)) {}

    QString suffix() const override { return QStringLiteral("dxf"); }
    base::Result<void, QString> write(const QString &path, const base::Progress &progress) const override
    {
        if (const auto written = m_image.write(path, progress); !written)
            return base::Failure{written.error().text()};
        return {};
    }

private:
    DxfImage m_image;
};

/// Of a drawing that came from another format.
class ConvertedToDxf : public DrawingImage
{
public:
    explicit ConvertedToDxf(QByteArray bytes) : m_bytes(std::move(bytes)) {}

    QString suffix() const override { return QStringLiteral("dxf"); }
    base::Result<void, QString> write(const QString &path, const base::Progress &) const override
    {
        if (const auto written = base::writeFileAtomically(path, m_bytes); !written)
            return base::Failure{written.error().text()};
        return {};
    }

private:
    QByteArray m_bytes;
};

class DxfFormat : public DrawingFormat
{
public:
    DxfFormat() { registerDrawingFormat(*this); }

    QString name() const override { return QStringLiteral("DXF"); }
    QString suffix() const override { return QStringLiteral("dxf"); }
    /// Text without a mark: what it is shows when it is read.
    Recognised recognises(std::string_view) const override { return Recognised::perhaps; }
    bool holds(const AcDbDatabase &database) const override
    {
        return dynamic_cast<const DxfSource *>(database.source()) != nullptr;
    }

    base::Result<std::unique_ptr<AcDbDatabase>, QString> read(base::FileBytes bytes, const QString &name,
                                                              const base::Progress &progress) const override
    {
        auto database = readDxf(std::move(bytes), name, progress);
        if (!database)
            return base::Failure{database.error().text()};
        return *std::move(database);
    }

    QStringList losses(const AcDbDatabase &database) const override
    {
        return holds(database) ? QStringList() : dxf::exportDrawing(database).losses;
    }

    base::Result<base::WrittenFile, QString> write(AcDbDatabase &database, const QString &path,
                                                   const base::Progress &progress,
                                                   const base::MayReplace &mayReplace) const override
    {
        auto written = holds(database) ? writeDxf(database, path, progress, mayReplace)
                                       : convertToDxf(database, path, progress, mayReplace);
        if (!written)
            return base::Failure{written.error().text()};
        return *std::move(written);
    }

    base::Result<std::unique_ptr<DrawingImage>, QString> image(AcDbDatabase &database) const override
    {
        if (!holds(database)) {
            const AcDbDwgCarriers carriers(database, AcDbCarried::all);
            return std::unique_ptr<DrawingImage>(
                std::make_unique<ConvertedToDxf>(dxf::exportDrawing(database).bytes));
        }
        auto taken = DxfImage::take(database);
        if (!taken)
            return base::Failure{taken.error().text()};
        return std::unique_ptr<DrawingImage>(std::make_unique<SavedAsDxf>(*std::move(taken)));
    }

    QByteArray blank() const override { return newDrawingDxf(); }
};

const DxfFormat theFormat;

} // namespace
