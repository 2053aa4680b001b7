// Filing of hot links. docs/formats/link-stream.md describes what is read and written.
#include "quillnote/aids/links/link_fields.h"

#include "quillnote/entity/field_walk.h"

#include <array>

using Link = QuillLinkObj;

/// Failures name the record instead of the source file.
static constexpr LinkField row(QStringView name, LinkField::Member member, fields::Dxf inDxf = {},
                               int line = __builtin_LINE())
{
    return {name, member, 1, inDxf, nullptr, "QuillLink", line};
}

static constexpr std::array kFields = std::to_array<LinkField>({
    row(u"formatVersion", &Link::formatVersion, {70, 1}),
    row(u"erasable", &Link::erasable),
    row(u"displayMode", &Link::displayMode),
    row(u"linkNumber", &Link::linkNumber),
    row(u"reserved1", &Link::reserved1),
    row(u"linkRole", &Link::linkRole),
    row(u"normal", &Link::normal),
    row(u"xDirection", &Link::xDirection),
    row(u"corner1", &Link::corner1),
    row(u"corner2", &Link::corner2),
    row(u"corner3", &Link::corner3),
    row(u"corner4", &Link::corner4),
    row(u"reserved2", &Link::reserved2),
    row(u"colorIndex", &Link::colorIndex),
    row(u"linkKind", &Link::linkKind),
    row(u"partnerId", &Link::partnerId),
    row(u"partnerHandle", &Link::partnerHandle),
    row(u"partnerPath", &Link::partnerPath),
    row(u"partnerName", &Link::partnerName),
    row(u"reserved3", &Link::reserved3),
});

std::span<const LinkField> linkFields()
{
    return kFields;
}

QStringList differingLinkFields(const QuillLinkObj &a, const QuillLinkObj &b)
{
    QStringList names;
    for (const LinkField &field : kFields) {
        if (!fields::sameField(a, b, field))
            names.append(field.name.toString());
    }
    return names;
}

// A copy whose partner was copied with it belongs to that copy, so its handle follows the id.
Acad::ErrorStatus QuillLinkObj::dwgInFields(AcDbDwgFiler *filer)
{
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk)
        return status;
    if (filer->filerType() == AcDb::kIdXlateFiler)
        return filer->filerStatus();
    std::uint16_t version = 0;
    if (const Acad::ErrorStatus status = fields::readItem(*filer, version); status != Acad::eOk)
        return fields::reportFailure(status, kFields.front().row);
    if (version > kFormatVersion)
        return fields::refuseNewerVersion();
    for (const LinkField &field : linkFields().subspan(1)) {
        if (const auto status = fields::readDwgField(*filer, *this, field); status != Acad::eOk)
            return status;
    }
    if (filer->filerType() == AcDb::kDeepCloneFiler && linkKind == sameDrawing && !partnerId.isNull())
        partnerHandle = partnerId.handle();
    return filer->filerStatus();
}

Acad::ErrorStatus QuillLinkObj::dwgOutFields(AcDbDwgFiler *filer) const
{
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk)
        return status;
    if (filer->filerType() == AcDb::kIdXlateFiler)
        return filer->filerStatus();
    for (const LinkField &field : kFields) {
        if (const auto status = fields::writeDwgField(*filer, *this, field); status != Acad::eOk)
            return status;
    }
    return filer->filerStatus();
}

/// eOk, or why a DXF record of this version is not taken.
static Acad::ErrorStatus acceptDxfVersion(std::int64_t version)
{
    if (version > QuillLinkObj::kFormatVersion)
        return fields::refuseNewerVersion();
    return version < 1 ? Acad::eBadDxfSequence : Acad::eOk;
}

Acad::ErrorStatus QuillLinkObj::dxfInFields(AcDbDxfFiler *filer)
{
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    if (!filer->atSubclassData(kLinkClassName))
        return filer->setError(Acad::eBadDxfSequence);
    const int versionCode = kFields.front().dxf.code;
    for (resbuf group; filer->readResBuf(group) == Acad::eOk;) {
        if (group.restype != versionCode)
            continue;
        if (const Acad::ErrorStatus refused = acceptDxfVersion(group.integer()); refused != Acad::eOk)
            return filer->setError(refused);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus QuillLinkObj::dxfOutFields(AcDbDxfFiler *filer) const
{
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    if (const Acad::ErrorStatus status = filer->writeSubclassMarker(kLinkClassName); status != Acad::eOk)
        return status;
    return fields::writeDxfField(*filer, *this, kFields.front());
}
