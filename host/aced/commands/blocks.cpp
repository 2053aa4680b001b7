// INSERT: blocks of the drawing and other drawings, as block references or as single entities.
#include "host/acap/docfile.h"
#include "host/acdb/dbapi.h"
#include "host/acdb/dbinsert.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/insertion.h"
#include "host/aced/commands/support.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"
#include "host/base/path_name.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>

namespace hostcommands
{

// What is inserted ---------------------------------------------------------------------------------

namespace
{

/// "*name=path": the star inserts single entities, the path defines the block anew.
struct Wanted {
    QString block;
    QString
        path; ///< Of the drawing to define it from; empty: the block that is there, or a file of its name.
    bool redefines = false;
    bool explodes = false;
};

} // namespace

bool isBlockName(const QString &name)
{
    constexpr QStringView kForbidden = u"<>/\\\":;?*|,=`";
    return !name.isEmpty() &&
           std::ranges::none_of(name, [&](QChar c) { return c.unicode() < 0x20 || kForbidden.contains(c); });
}

static QString withSlashes(QString path)
{
    return path.replace(u'\\', u'/');
}

/// A typed name with a folder or the ending of a drawing is a path.
static bool isPath(const QString &text)
{
    return text.contains(u'/') || text.contains(u'\\') || text.endsWith(u".dwg", Qt::CaseInsensitive) ||
           text.endsWith(u".dxf", Qt::CaseInsensitive);
}

static Wanted wantedOf(QString text)
{
    Wanted wanted;
    wanted.explodes = text.startsWith(u'*');
    if (wanted.explodes)
        text.remove(0, 1);
    // Paths may hold "=" as well.
    const qsizetype equals = text.indexOf(u'=');
    if (equals > 0 && isBlockName(text.left(equals).trimmed())) {
        wanted.block = text.left(equals).trimmed();
        wanted.path = withSlashes(text.mid(equals + 1).trimmed());
        wanted.redefines = true;
        if (wanted.path.isEmpty())
            wanted.path = wanted.block;
    } else if (isPath(text)) {
        wanted.path = withSlashes(text);
        wanted.block = QFileInfo(wanted.path).completeBaseName();
    } else {
        wanted.block = text;
    }
    return wanted;
}

QString drawingFile(const QString &name)
{
    const QString folder = acdbCurDwg()->folder();
    for (const char *const ending : {"", ".dwg", ".dxf"}) {
        for (const QString &path : {name, QDir(folder).filePath(name)}) {
            if (const QString file = path + QLatin1String(ending); QFileInfo(file).isFile())
                return base::fullPath(file);
        }
    }
    return {};
}

static AcDbObjectId blockOf(const QString &name)
{
    return acdbCurDwg()->tableRecord(SymbolTable::block, name);
}

static bool isLayout(AcDbObjectId block)
{
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    return record && record->isLayout();
}

static AcDbObjectId define(const Wanted &wanted)
{
    const QString file = drawingFile(wanted.path);
    if (file.isEmpty()) {
        acedRefuse(Host::tr("没有找到文件 %1。").arg(wanted.path));
        return {};
    }
    const auto from = acapReadDrawing(file);
    if (!from) {
        acedRefuse(Host::tr("不能插入: %1").arg(from.error()));
        return {};
    }
    const AcDbInsertedDrawing inserted = acdbInsertDrawing(*acdbCurDwg(), wanted.block, **from);
    if (inserted.holdsItself)
        acedRefuse(Host::tr("块 %1 会包含它自己。").arg(wanted.block));
    else if (inserted.block.isNull())
        acedRefuse(Host::tr("不能定义块 %1。").arg(wanted.block));
    if (inserted.leftOut > 0)
        acutPrintf(Host::tr("\n%1 个对象属于本图没有的类，未插入。").arg(inserted.leftOut));
    return inserted.block;
}

/// The block to insert, defined when that is needed; null when there is none or the user wants none.
static AcDbObjectId settle(Wanted wanted)
{
    const AcDbObjectId known = blockOf(wanted.block);
    if (!isBlockName(wanted.block) || isLayout(known)) {
        acedRefuse(Host::tr("%1 不是块名。").arg(wanted.block));
        return {};
    }
    if (!known.isNull() && !wanted.redefines)
        return known;
    if (!known.isNull() && acedIntVar(QStringLiteral("EXPERT")) < 2) {
        const auto redefine = askYes(Host::tr("\n块 %1 已存在。重新定义它吗?").arg(wanted.block), false);
        if (!redefine)
            return {};
        if (!*redefine)
            return known;
    }
    if (wanted.path.isEmpty())
        wanted.path = wanted.block;
    return define(wanted);
}

static void listBlocks()
{
    for (const AcDbObjectId id : AcDbSymbolTable(*acdbCurDwg(), SymbolTable::block).records()) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(id, AcDb::kForRead);
        if (record && !record->getName().startsWith(u'*'))
            acutPrintf(u'\n' + record->getName());
    }
}

static std::optional<Wanted> askWanted()
{
    QString &last = DocumentMemory::of(curDoc()).lastInserted;
    for (;;) {
        const QString prompt =
            last.isEmpty() ? Host::tr("\n输入块名或 [?]: ") : Host::tr("\n输入块名或 [?] <%1>: ").arg(last);
        const auto text = askText(prompt);
        if (!text || (text->isEmpty() && last.isEmpty()))
            return std::nullopt;
        if (*text == QLatin1String("?")) {
            listBlocks();
            continue;
        }
        return wantedOf(text->isEmpty() ? last : *text);
    }
}

// Where and how large ------------------------------------------------------------------------------

static double metresOf(std::int64_t units)
{
    static constexpr std::array kMetres{0.0,
                                        0.0254,
                                        0.3048,
                                        1609.344,
                                        0.001,
                                        0.01,
                                        1.0,
                                        1000.0,
                                        2.54e-8,
                                        2.54e-5,
                                        0.9144,
                                        1e-10,
                                        1e-9,
                                        1e-6,
                                        0.1,
                                        10.0,
                                        100.0,
                                        1e9,
                                        1.495978707e11,
                                        9.4607304725808e15,
                                        3.0856775814913673e16,
                                        0.3048006096012192,
                                        0.0254000508,
                                        0.9144018288,
                                        1609.3472187};
    return units > 0 && std::size_t(units) < kMetres.size() ? kMetres[std::size_t(units)] : 0.0;
}

double unitFactor(AcDbObjectId block)
{
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    const bool hasUnits = record && acdbCurDwg()->version() > DrawingVersion::r12;
    const auto orSet = [](std::int64_t units, const char *variable) {
        return units > 0 ? units : std::int64_t(acedIntVar(QString::fromLatin1(variable)));
    };
    const double source = metresOf(orSet(hasUnits ? record->flags() : 0, "INSUNITSDEFSOURCE"));
    const double target = metresOf(orSet(acdbCurDwg()->headerInteger("$INSUNITS"), "INSUNITSDEFTARGET"));
    return source > 0.0 && target > 0.0 ? source / target : 1.0;
}

/// False when cancelled; Enter leaves `value`.
static bool askFactor(const AcGePoint3d &base, const QString &prompt, double &value)
{
    acedInitGet(RSG_NOZERO);
    const int result = acedGetDist(&base, prompt, value);
    return result == RTNORM || result == RTNONE;
}

static bool askScales(Placement &placement, bool uniform)
{
    const AcGePoint3d &at = placement.point;
    if (uniform) {
        if (!askFactor(at, Host::tr("\n指定比例因子 <1>: "), placement.x))
            return false;
        placement.y = placement.z = placement.x;
        return true;
    }
    acedInitGet(RSG_NOZERO, QStringLiteral("XYZ"));
    const int result = acedGetDist(&at, Host::tr("\n输入 X 比例因子或 [XYZ(XYZ)] <1>: "), placement.x);
    if (result == RTKWORD) {
        if (!askFactor(at, Host::tr("\n输入 X 比例因子 <1>: "), placement.x))
            return false;
        placement.y = placement.x;
        if (!askFactor(at, Host::tr("\n输入 Y 比例因子或 <使用 X 比例因子>: "), placement.y))
            return false;
        placement.z = placement.x;
        return askFactor(at, Host::tr("\n输入 Z 比例因子或 <使用 X 比例因子>: "), placement.z);
    }
    if (result != RTNORM && result != RTNONE)
        return false;
    placement.y = placement.x;
    placement.z = std::abs(placement.x);
    return askFactor(at, Host::tr("\n输入 Y 比例因子或 <使用 X 比例因子>: "), placement.y);
}

std::optional<Placement> askPlacement(bool uniform)
{
    Placement placement;
    const auto point = askPoint(nullptr, Host::tr("\n指定插入点: "));
    if (!point)
        return std::nullopt;
    placement.point = *point;
    if (!askScales(placement, uniform))
        return std::nullopt;
    const int result = acedGetAngle(&placement.point, Host::tr("\n指定旋转角度 <0>: "), placement.rotation);
    return result == RTNORM || result == RTNONE ? std::optional(placement) : std::nullopt;
}

// Inserting ----------------------------------------------------------------------------------------

static AcGeMatrix3d matrixOf(AcDbObjectId block, const Placement &placement, double units)
{
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    const AcGePoint3d origin = record ? record->origin() : AcGePoint3d();
    return AcGeMatrix3d::planeToWorld(ucsNormal()) *
           AcGeMatrix3d::translation(inPlane(placement.point).asVector()) *
           AcGeMatrix3d::rotation(rotationInPlane(placement.rotation) * kGePi / 180.0, AcGeVector3d::kZAxis) *
           AcGeMatrix3d::scaling(placement.x * units, placement.y * units, placement.z * units) *
           AcGeMatrix3d::translation(AcGePoint3d() - origin);
}

static std::vector<AcDbObjectId> entitiesOf(AcDbObjectId block)
{
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    return record ? record->entities() : std::vector<AcDbObjectId>();
}

static bool isDefinition(AcDbObjectId id)
{
    return acdbKindName(id.stub()->kind) == "ATTDEF";
}

/// Copies of the block's entities, at their place.
static void insertEntities(AcDbObjectId block, const AcGeMatrix3d &matrix)
{
    std::vector<AcDbObjectId> originals = entitiesOf(block);
    std::erase_if(originals, isDefinition);
    AcEdSelectionSet copies;
    const Acad::ErrorStatus status = acdbDeepCloneEntities(originals, acdbCurDwg()->currentSpaceId(), copies);
    if (status != Acad::eOk)
        acedRefuse(Host::tr("不能插入: %1").arg(reasonText(status)));
    transformAll(copies, matrix);
}

namespace
{

/// A definition and the value that its attribute gets.
struct Attribute {
    ResbufList definition;
    QString value;
};

} // namespace

/// None when the user cancelled.
static std::optional<std::vector<Attribute>> askAttributes(AcDbObjectId block)
{
    enum Flag { kConstant = 2, kPreset = 8 };
    constexpr QStringView kClass = u"AcDbAttributeDefinition";
    std::vector<Attribute> attributes;
    for (const AcDbObjectId id : entitiesOf(block)) {
        if (!isDefinition(id))
            continue;
        Attribute attribute{id.database()->fileGroups(*id.stub()), {}};
        std::size_t begin = subclassBegin(attribute.definition, kClass);
        begin = begin == attribute.definition.size() ? 0 : begin; // Old files have no subclasses.
        const auto text = [&](int code, std::size_t from) {
            const resbuf *const group = findGroup(attribute.definition, code, from);
            return group ? group->text() : QString();
        };
        const resbuf *const flags = findGroup(attribute.definition, 70, begin);
        if (flags && (flags->integer() & kConstant))
            continue;
        attribute.value = text(1, 0);
        const bool isAsked =
            acedIntVar(QStringLiteral("ATTREQ"), 1) != 0 && !(flags && (flags->integer() & kPreset));
        if (isAsked) {
            const QString asked = text(3, begin).isEmpty() ? text(2, begin) : text(3, begin);
            QString typed;
            const int result =
                acedGetString(true, u'\n' + asked + QStringLiteral(" <%1>: ").arg(attribute.value), typed);
            if (result != RTNORM && result != RTNONE)
                return std::nullopt;
            if (!typed.isEmpty())
                attribute.value = typed;
        }
        attributes.push_back(std::move(attribute));
    }
    return attributes;
}

/// The groups of an attribute like the definition, still where that stands.
static ResbufList attributeGroups(const Attribute &attribute)
{
    ResbufList groups = attribute.definition;
    groups.resize(extendedDataBegin(groups));
    acdbDropApplicationGroups(groups);
    groups.front().assign(QStringLiteral("ATTRIB"));
    const std::size_t own = subclassBegin(groups, u"AcDbAttributeDefinition");
    std::size_t position = 0;
    std::erase_if(groups, [&](const resbuf &group) {
        const std::size_t at = position++;
        return group.restype == 67 || group.restype == 410 ||
               (group.restype == 3 && (own == groups.size() || at >= own));
    });
    for (resbuf &group : groups) {
        if (group.restype == 100 && group.text() == u"AcDbAttributeDefinition")
            group.assign(QStringLiteral("AcDbAttribute"));
    }
    if (resbuf *const value = findGroup(groups, 1))
        value->assign(attribute.value);
    return groups;
}

static AcDbObjectId addPart(std::unique_ptr<AcDbObject> part, AcDbObjectId insert)
{
    AcDbObjectId id;
    if (insert.database()->addAcDbObject(part.get(), insert, &id) != Acad::eOk)
        return {};
    id.stub()->set(AcDbStub::kSubEntity);
    part.release()->close();
    return id;
}

void insertReference(AcDbObjectId block, const Placement &placement, double units)
{
    const auto attributes = askAttributes(block);
    if (!attributes)
        return;
    const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    ResbufList groups{{100, QStringLiteral("AcDbBlockReference")}};
    if (!attributes->empty())
        groups.emplace_back(66, std::int64_t(1));
    groups.insert(groups.end(), {{2, record->getName()},
                                 {10, inPlane(placement.point)},
                                 {41, placement.x * units},
                                 {42, placement.y * units},
                                 {43, placement.z * units},
                                 {50, rotationInPlane(placement.rotation)}});
    appendNormal(groups);
    const AcDbObjectId insert = drawEntity("INSERT", std::move(groups));
    if (insert.isNull() || attributes->empty())
        return;
    const AcGeMatrix3d matrix = matrixOf(block, placement, units);
    for (const Attribute &attribute : *attributes) {
        std::unique_ptr<AcDbObject> made(
            static_cast<AcDbObject *>(acdbKindClass(acdbKind("ATTRIB"), true)->create()));
        made->editGroups() = attributeGroups(attribute);
        const AcDbObjectId id = addPart(std::move(made), insert);
        if (const AcDbObjectPointer<AcDbEntity> open(id, AcDb::kForWrite); open)
            open->transformBy(matrix);
    }
    auto end = acdbNewEntity("SEQEND", {});
    if (insert.database()->version() <= DrawingVersion::r12)
        std::erase_if(end->editGroups(), [](const resbuf &group) { return group.restype == 100; });
    addPart(std::move(end), insert);
}

static void insert()
{
    const auto wanted = askWanted();
    const AcDbObjectId block = wanted ? settle(*wanted) : AcDbObjectId();
    if (block.isNull())
        return;
    const auto placement = askPlacement(wanted->explodes);
    if (!placement)
        return;
    const double units = unitFactor(block);
    if (wanted->explodes)
        insertEntities(block, matrixOf(block, *placement, units));
    else
        insertReference(block, *placement, units);
    DocumentMemory::of(curDoc()).lastInserted = wanted->block;
}

std::span<const Entry> blockCommands()
{
    static constexpr std::array entries{
        Entry{"INSERT", QT_TRANSLATE_NOOP("Host", "插入块"), ACRX_CMD_MODAL, insert, "I -INSERT"},
    };
    return entries;
}

} // namespace hostcommands
