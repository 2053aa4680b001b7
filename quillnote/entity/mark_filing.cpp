// Filing of review marks: DWG streams of every version, DXF of the current one.
// docs/formats/mark-stream.md and docs/formats/mark-dxf.md describe what is read and written.
#include "quillnote/entity/field_walk.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"

#include "quillnote/frame/settings/start_up_settings.h"

#include "host/aced/edfrontend.h"

#include <map>

static constexpr std::uint16_t kOldestDxfVersion = 7;
static constexpr std::uint16_t kFirstWithCorners = 7;

static Acad::ErrorStatus refuseNewerVersion()
{
    acutPrintf(QStringLiteral("请安装更高版本评图标签软件！\n%1\n").arg(kWebAddress));
    return Acad::eMakeMeProxy;
}

/// The text box of an old leader mark lay where its target was. Its fourth corner is completed with the
/// others.
static void deriveTextBox(QuillnoteObj3 &mark)
{
    const bool firstIsLeft = mark.targetCorner1.x < mark.targetCorner2.x;
    const AcGePoint3d &left = firstIsLeft ? mark.targetCorner1 : mark.targetCorner2;
    const AcGePoint3d &right = firstIsLeft ? mark.targetCorner2 : mark.targetCorner1;
    mark.textBoxCorner1 = left;
    mark.textBoxCorner2 = {right.x, right.y, 0.0};
    mark.textBoxCorner3 = {left.x, right.y, 0.0};
}

void upgradeOldMark(QuillnoteObj3 &mark)
{
    mark.cornersValid = false;
    if (!isNegative(mark.targetStyle))
        return;
    mark.targetStyle = TargetStyle::none;
    mark.leaderMode = LeaderMode::leader;
    mark.flagStyle = FrameStyle(startUpSettings().BKstyle);
    deriveTextBox(mark);
}

/// Reads the fields that records of `version` hold; the others get their defaults.
static Acad::ErrorStatus readFields(AcDbDwgFiler &filer, QuillnoteObj3 &mark, std::uint16_t version)
{
    std::unique_ptr<QuillnoteObj3> fresh;
    for (const MarkField &field : markFields().subspan(1)) {
        if (field.since > version) {
            if (!fresh)
                fresh = QuillnoteObj3::forReading();
            fields::copyField(*fresh, mark, field);
        } else if (const auto status = fields::readDwgField(filer, mark, field); status != Acad::eOk) {
            return status;
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus QuillnoteObj3::dwgInFields(AcDbDwgFiler *filer)
{
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk)
        return status;
    if (filer->filerType() == AcDb::kIdXlateFiler)
        return filer->filerStatus();

    // In memory a record has the current version whatever it was filed with.
    std::uint16_t version = 0;
    if (const Acad::ErrorStatus status = fields::readItem(*filer, version); status != Acad::eOk)
        return fields::reportFailure(status, markFields().front().row);
    if (version > kFormatVersion)
        return refuseNewerVersion();
    if (const Acad::ErrorStatus status = readFields(*filer, *this, version); status != Acad::eOk)
        return status;
    if (version < kFirstWithCorners)
        upgradeOldMark(*this);
    return filer->filerStatus();
}

Acad::ErrorStatus QuillnoteObj3::dwgOutFields(AcDbDwgFiler *filer) const
{
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk)
        return status;
    if (filer->filerType() == AcDb::kIdXlateFiler)
        return filer->filerStatus();
    for (const MarkField &field : markFields()) {
        if (field.since > formatVersion)
            continue;
        if (const auto status = fields::writeDwgField(*filer, *this, field); status != Acad::eOk)
            return status;
    }
    return filer->filerStatus();
}

/// eOk, or why a DXF record of this version is not taken.
static Acad::ErrorStatus acceptDxfVersion(std::uint16_t version)
{
    if (version > QuillnoteObj3::kFormatVersion)
        return refuseNewerVersion();
    return version < kOldestDxfVersion ? Acad::eBadDxfSequence : Acad::eOk;
}

Acad::ErrorStatus QuillnoteObj3::dxfInFields(AcDbDxfFiler *filer)
{
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    if (!filer->atSubclassData(kMarkClassName))
        return filer->setError(Acad::eBadDxfSequence);

    const MarkField &versionField = markFields().front();
    vertices = {};
    std::map<int, std::size_t> occurrences;
    for (resbuf group; filer->readResBuf(group) == Acad::eOk;) {
        if (group.restype != versionField.dxf.code) {
            fields::readDxfGroup(group, occurrences[group.restype]++, *this, markDxfSequence());
            continue;
        }
        const auto version = fields::Filing<std::uint16_t>::fromGroup(group);
        if (const Acad::ErrorStatus refused = acceptDxfVersion(version); refused != Acad::eOk)
            return filer->setError(refused);
    }
    return filer->filerStatus();
}

// What only a whole reading can settle (a record without its marker, of another version) is left to it.
bool peekMarkFields(AcDbObjectId id, std::span<const MarkField *const> rows, QuillnoteObj3 &mark)
{
    const AcDbStub &stub = *id.stub();
    if (stub.object || !stub.has(AcDbStub::kHasSource))
        return false;
    constexpr int kMarker = 100;
    const int versionCode = markFields().front().dxf.code;
    std::vector<int> codes{kMarker, versionCode};
    for (const MarkField *row : rows)
        codes.push_back(row->dxf.code);
    const ResbufList groups = id.database()->source()->readSome(stub, codes);
    const auto isOwn = [](const resbuf &group) {
        return group.restype == kMarker && group.text() != u"AcDbEntity";
    };
    auto group = std::ranges::find_if(groups, isOwn);
    if (group == groups.end() || group->text() != kMarkClassName)
        return false;
    const std::vector<const MarkField *> takers(rows.begin(), rows.end());
    bool isTaken = true;
    for (; group != groups.end(); ++group) {
        if (group->restype != versionCode)
            fields::readDxfGroup(*group, 0, mark, takers);
        else
            isTaken = isTaken && group->integer() >= kOldestDxfVersion &&
                      group->integer() <= QuillnoteObj3::kFormatVersion;
    }
    return isTaken;
}

Acad::ErrorStatus QuillnoteObj3::dxfOutFields(AcDbDxfFiler *filer) const
{
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    if (const Acad::ErrorStatus status = filer->writeSubclassMarker(kMarkClassName); status != Acad::eOk)
        return status;
    for (const MarkField *field : markDxfSequence()) {
        if (const auto status = fields::writeDxfField(*filer, *this, *field); status != Acad::eOk)
            return status;
    }
    return filer->filerStatus();
}
