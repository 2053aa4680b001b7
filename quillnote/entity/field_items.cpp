#include "quillnote/entity/field_items.h"

#include "quillnote/entity/mark_class.h"

#include "host/aced/edfrontend.h"

#include <QCryptographicHash>
#include <QJsonObject>

namespace fields
{

Acad::ErrorStatus readItem(AcDbDwgFiler &filer, QByteArray &value)
{
    std::uint32_t size = 0;
    Acad::ErrorStatus status = filer.readUInt32(size);
    QByteArray taken;
    if (status == Acad::eOk && size > 0)
        status = filer.readBytes(taken, size);
    if (status == Acad::eOk)
        value = taken;
    return status;
}

Acad::ErrorStatus readItem(AcDbDwgFiler &filer, std::vector<AcDbObjectId> &value)
{
    std::uint32_t count = 0;
    Acad::ErrorStatus status = filer.readUInt32(count);
    if (status == Acad::eOk)
        value.clear();
    // The count may lie: the list grows only by what the stream really holds.
    for (std::uint32_t i = 0; status == Acad::eOk && i < count; ++i) {
        AcDbObjectId id;
        status = filer.readHardPointerId(id);
        if (status == Acad::eOk)
            value.push_back(id);
    }
    return status;
}

Acad::ErrorStatus writeItem(AcDbDwgFiler &filer, const QByteArray &value)
{
    const Acad::ErrorStatus status = filer.writeUInt32(static_cast<std::uint32_t>(value.size()));
    return status == Acad::eOk && !value.isEmpty() ? filer.writeBytes(value) : status;
}

Acad::ErrorStatus writeItem(AcDbDwgFiler &filer, const std::vector<AcDbObjectId> &value)
{
    Acad::ErrorStatus status = filer.writeUInt32(static_cast<std::uint32_t>(value.size()));
    for (std::size_t i = 0; status == Acad::eOk && i < value.size(); ++i)
        status = filer.writeHardPointerId(value[i]);
    return status;
}

QJsonValue toJson(const QByteArray &value)
{
    QJsonObject object{{QStringLiteral("size"), double(value.size())}};
    if (!value.isEmpty()) {
        const QByteArray hash = QCryptographicHash::hash(value, QCryptographicHash::Sha256);
        object.insert(QStringLiteral("sha256"), QString::fromLatin1(hash.toHex()));
    }
    return object;
}

QJsonValue toJson(AcDbHandle value)
{
    return QString::number(value.value, 16).toUpper();
}

QJsonValue toJson(AcDbObjectId value)
{
    return toJson(value.handle());
}

QJsonValue toJson(const std::vector<AcDbObjectId> &value)
{
    QJsonArray handles;
    for (const AcDbObjectId &id : value)
        handles.append(toJson(id));
    return handles;
}

Acad::ErrorStatus refuseNewerVersion()
{
    acutPrintf(QStringLiteral("请安装更高版本评图标签软件！\n%1\n").arg(kWebAddress));
    return Acad::eMakeMeProxy;
}

Acad::ErrorStatus reportFailure(Acad::ErrorStatus status, const RowPlace &row)
{
    // Only the file's name: where the sources lay when the program was built is nobody's business.
    const QString path = QString::fromUtf8(row.file);
    acutPrintf(QStringLiteral("\n!%1@%2: %3")
                   .arg(path.mid(path.lastIndexOf(u'/') + 1))
                   .arg(row.line)
                   .arg(acadErrorStatusText(status)));
    return status;
}

} // namespace fields
