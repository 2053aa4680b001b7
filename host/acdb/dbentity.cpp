#include "host/acdb/dbentity.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbtransform.h"
#include "host/acdb/dbtransient.h"
#include "host/acdb/nativegrips.h"
#include "host/acdb/owngroups.h"

#include <algorithm>

static AcDbNativeExtents s_nativeExtents = nullptr;

void acdbSetNativeExtents(AcDbNativeExtents provider)
{
    s_nativeExtents = provider;
}

AcDbEntity::AcDbEntity() = default;

static void addCommonGroups(ResbufList &groups)
{
    groups.emplace_back(100, QStringLiteral("AcDbEntity"));
    groups.emplace_back(8, QStringLiteral("0"));
}

AcDbEntity::AcDbEntity(const QByteArray &dxfName) : AcDbObject(dxfName)
{
    addCommonGroups(editGroups());
}

std::unique_ptr<AcDbEntity> acdbNewEntity(const QByteArray &dxfName, ResbufList ownGroups)
{
    AcRxObject *const made = acdbKindClass(acdbKind(dxfName), true)->create();
    std::unique_ptr<AcDbEntity> entity(static_cast<AcDbEntity *>(made));
    ResbufList &groups = entity->editGroups();
    groups.emplace_back(0, QString::fromLatin1(dxfName));
    addCommonGroups(groups);
    groups.insert(groups.end(), std::make_move_iterator(ownGroups.begin()),
                  std::make_move_iterator(ownGroups.end()));
    return entity;
}

AcRxClass *AcDbEntity::isA() const
{
    AcRxClass *const known = AcDbObject::isA();
    return known->isDerivedFrom(AcDbEntity::desc()) ? known : AcDbEntity::desc();
}

std::span<const resbuf> acdbCommonGroups(const ResbufList &groups)
{
    constexpr int kLayer = 8;
    bool hasLayer = false;
    bool inSecond = false;
    std::size_t count = 0;
    for (; count < groups.size(); ++count) {
        const resbuf &group = groups[count];
        if (group.restype == 1001 || group.restype == 101)
            break;
        hasLayer |= group.restype == kLayer;
        if (group.restype != 100 || group.text() == u"AcDbEntity")
            continue;
        if (hasLayer || inSecond)
            break;
        inSecond = true;
    }
    return std::span(groups).first(count);
}

static const resbuf *commonGroup(const AcDbEntity &entity, int code)
{
    return OwnGroups(acdbCommonGroups(entity.groups())).find(code);
}

static QString textGroup(const AcDbEntity &entity, int code, const QString &fallback)
{
    const resbuf *const group = commonGroup(entity, code);
    return group ? group->text() : fallback;
}

static int integerGroup(const AcDbEntity &entity, int code, int fallback)
{
    const resbuf *const group = commonGroup(entity, code);
    return group ? int(group->integer()) : fallback;
}

void AcDbEntity::setCommonGroup(int code, resbuf::Value value)
{
    const resbuf *const present = commonGroup(*this, code);
    if (!present)
        return setGroup(code, std::move(value), u"AcDbEntity");
    resbuf &group = editGroups()[std::size_t(present - groups().data())];
    if (group.resval != value)
        group.assign(std::move(value));
}

QString AcDbEntity::layer() const
{
    return textGroup(*this, 8, QStringLiteral("0"));
}

AcDbObjectId AcDbEntity::layerId() const
{
    return database() ? database()->tableRecord(SymbolTable::layer, layer()) : AcDbObjectId();
}

Acad::ErrorStatus AcDbEntity::setLayer(const QString &name)
{
    if (database() && !database()->tableRecord(SymbolTable::layer, name).isValid())
        return Acad::eKeyNotFound;
    setCommonGroup(8, name);
    return Acad::eOk;
}

int AcDbEntity::colorIndex() const
{
    return integerGroup(*this, 62, 256);
}

Acad::ErrorStatus AcDbEntity::setColorIndex(int index)
{
    if (index < 0 || index > 256)
        return Acad::eInvalidInput;
    setStatedColor({.index = index, .rgb = {}, .name = {}});
    return Acad::eOk;
}

static constexpr int kColorIndex = 62;
static constexpr int kTrueColor = 420;
static constexpr int kColorName = 430;

AcDbStatedColor AcDbEntity::statedColor() const
{
    AcDbStatedColor color;
    if (const resbuf *const index = commonGroup(*this, kColorIndex))
        color.index = int(index->integer());
    if (const resbuf *const rgb = commonGroup(*this, kTrueColor))
        color.rgb = int(rgb->integer());
    color.name = textGroup(*this, kColorName, {});
    return color;
}

void AcDbEntity::setStatedColor(const AcDbStatedColor &color)
{
    ResbufList stated;
    if (color.index)
        stated.emplace_back(kColorIndex, std::int64_t(*color.index));
    if (color.rgb)
        stated.emplace_back(kTrueColor, std::int64_t(*color.rgb));
    if (!color.name.isEmpty())
        stated.emplace_back(kColorName, color.name);
    const auto isColor = [](const resbuf &group) {
        return group.restype == kColorIndex || group.restype == kTrueColor || group.restype == kColorName;
    };
    ResbufList &groups = editGroups();
    const auto common = groups.begin() + std::ptrdiff_t(acdbCommonGroups(groups).size());
    const auto first = std::find_if(groups.begin(), common, isColor);
    if (first == common) {
        for (resbuf &group : stated)
            setGroup(group.restype, std::move(group.resval), u"AcDbEntity");
        return;
    }
    // A group that stays the same keeps the bytes that it came from.
    for (resbuf &group : stated) {
        if (const auto same = std::find(first, common, group); same != common)
            group = *same;
    }
    const auto place = first - groups.begin();
    groups.erase(std::remove_if(first, common, isColor), common);
    groups.insert(groups.begin() + place, std::make_move_iterator(stated.begin()),
                  std::make_move_iterator(stated.end()));
}

QString AcDbEntity::linetype() const
{
    return textGroup(*this, 6, QStringLiteral("BYLAYER"));
}

Acad::ErrorStatus AcDbEntity::setLinetype(const QString &name)
{
    if (database() && !database()->tableRecord(SymbolTable::linetype, name).isValid())
        return Acad::eKeyNotFound;
    setCommonGroup(6, name);
    return Acad::eOk;
}

double AcDbEntity::linetypeScale() const
{
    const resbuf *const group = commonGroup(*this, 48);
    return group ? group->real() : 1.0;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale)
{
    if (!(scale > 0.0))
        return Acad::eInvalidInput;
    setCommonGroup(48, scale);
    return Acad::eOk;
}

int AcDbEntity::lineWeight() const
{
    return integerGroup(*this, 370, -1);
}

Acad::ErrorStatus AcDbEntity::setLineWeight(int weight)
{
    if (weight < -3 || weight > 211)
        return Acad::eInvalidInput;
    setCommonGroup(370, std::int64_t(weight));
    return Acad::eOk;
}

AcDbObjectId AcDbEntity::blockId() const
{
    AcDbObjectId owner = ownerId();
    while (owner.isEntity())
        owner = AcDbObjectId(owner.database()->stub(owner.stub()->owner));
    return owner;
}

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents &extents) const
{
    assertReadEnabled();
    return subGetGeomExtents(extents);
}

Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents &extents) const
{
    return s_nativeExtents ? s_nativeExtents(*this, extents) : Acad::eInvalidExtents;
}

// Vertices carry no plane of their own: they lie in that of their polyline as it was.
static AcGeVector3d planeNormal(const AcDbEntity &entity)
{
    const resbuf *const normal = findGroup(entity.groups(), 210);
    return normal ? normal->point().asVector() : AcGeVector3d::kZAxis;
}

static void transformParts(AcDbObjectId entity, const AcGeMatrix3d &matrix, const AcGeVector3d &normal)
{
    for (const AcDbObjectId owned : acdbSubEntities(entity)) {
        AcDbObjectPointer<AcDbEntity> part(owned, AcDb::kForWrite);
        if (part)
            acdbTransformGroups(part->editGroups(), matrix, normal);
    }
}

static Acad::ErrorStatus transformWithParts(AcDbEntity &entity, const AcGeMatrix3d &matrix)
{
    const AcGeVector3d normal = planeNormal(entity);
    const Acad::ErrorStatus refused = entity.subTransformBy(matrix);
    if (refused == Acad::eOk)
        transformParts(entity.objectId(), matrix, normal);
    return refused;
}

/// A dimension shows the entities of an anonymous block, which stand in world coordinates. A dimension among
/// them shares its picture with its copies, so that one stays.
static void transformPicture(const AcDbEntity &dimension, const AcGeMatrix3d &matrix)
{
    const resbuf *const name = findGroup(dimension.groups(), 2);
    if (!name || !name->text().startsWith(QLatin1Char('*')))
        return;
    AcDbObjectPointer<AcDbBlockTableRecord> picture(
        dimension.database()->tableRecord(SymbolTable::block, name->text()), AcDb::kForRead);
    if (!picture)
        return;
    for (const AcDbObjectId id : picture->entities()) {
        AcDbObjectPointer<AcDbEntity> drawn(id, AcDb::kForWrite);
        if (drawn)
            transformWithParts(*drawn, matrix);
    }
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d &matrix)
{
    assertWriteEnabled();
    if (const Acad::ErrorStatus refused = transformWithParts(*this, matrix); refused != Acad::eOk)
        return refused;
    // The picture of a copy is the original's.
    if (database() && dxfName() == "DIMENSION" && !AcDbTransient::isCopy(*this))
        transformPicture(*this, matrix);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subTransformBy(const AcGeMatrix3d &matrix)
{
    return acdbTransformGroups(editGroups(), matrix);
}

std::vector<AcGePoint3d> AcDbEntity::getGripPoints() const
{
    assertReadEnabled();
    return subGetGripPoints();
}

Acad::ErrorStatus AcDbEntity::moveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset)
{
    assertWriteEnabled();
    return subMoveGripPointsAt(grips, offset);
}

std::vector<AcGePoint3d> AcDbEntity::subGetGripPoints() const
{
    return acdbNativeGrips(*this);
}

Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset)
{
    return acdbMoveNativeGrips(*this, grips, offset);
}

bool AcDbEntity::subWorldDraw(AcGiWorldDraw *) const
{
    return true;
}

void AcDbEntity::subViewportDraw(AcGiViewportDraw *) const {}

void AcDbEntity::saveAs(AcGiWorldDraw *context) const
{
    subWorldDraw(context);
}
