// Commands that tell: LIST, ID, DIST, AUDIT, SETVAR.
#include "host/acdb/dbsymtb.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"
#include "host/base/wildcard.h"

#include <algorithm>
#include <array>

namespace hostcommands
{

// LIST -------------------------------------------------------------------------------------------------

namespace
{

/// A group that is worth telling, for one kind of entity or (null) for all others.
struct ListedGroup {
    const char *kind;
    int code;
    const char *label;
};

constexpr std::array kListedGroups{
    ListedGroup{"LINE", 10, QT_TRANSLATE_NOOP("Host", "起点")},
    ListedGroup{"LINE", 11, QT_TRANSLATE_NOOP("Host", "端点")},
    ListedGroup{"CIRCLE", 10, QT_TRANSLATE_NOOP("Host", "圆心")},
    ListedGroup{"CIRCLE", 40, QT_TRANSLATE_NOOP("Host", "半径")},
    ListedGroup{"ARC", 10, QT_TRANSLATE_NOOP("Host", "圆心")},
    ListedGroup{"ARC", 40, QT_TRANSLATE_NOOP("Host", "半径")},
    ListedGroup{"ARC", 50, QT_TRANSLATE_NOOP("Host", "起点角度")},
    ListedGroup{"ARC", 51, QT_TRANSLATE_NOOP("Host", "端点角度")},
    ListedGroup{"POINT", 10, QT_TRANSLATE_NOOP("Host", "位置")},
    ListedGroup{"TEXT", 1, QT_TRANSLATE_NOOP("Host", "文字")},
    ListedGroup{"TEXT", 10, QT_TRANSLATE_NOOP("Host", "起点")},
    ListedGroup{"TEXT", 40, QT_TRANSLATE_NOOP("Host", "高度")},
    ListedGroup{"TEXT", 50, QT_TRANSLATE_NOOP("Host", "旋转角度")},
    ListedGroup{"TEXT", 7, QT_TRANSLATE_NOOP("Host", "样式")},
    ListedGroup{"MTEXT", 1, QT_TRANSLATE_NOOP("Host", "内容")},
    ListedGroup{"MTEXT", 10, QT_TRANSLATE_NOOP("Host", "位置")},
    ListedGroup{"MTEXT", 40, QT_TRANSLATE_NOOP("Host", "高度")},
    ListedGroup{"INSERT", 2, QT_TRANSLATE_NOOP("Host", "块名")},
    ListedGroup{"INSERT", 10, QT_TRANSLATE_NOOP("Host", "插入点")},
    ListedGroup{"INSERT", 41, QT_TRANSLATE_NOOP("Host", "X 比例")},
    ListedGroup{"INSERT", 42, QT_TRANSLATE_NOOP("Host", "Y 比例")},
    ListedGroup{"INSERT", 50, QT_TRANSLATE_NOOP("Host", "旋转角度")},
    ListedGroup{"ATTRIB", 2, QT_TRANSLATE_NOOP("Host", "标记")},
    ListedGroup{"ATTRIB", 1, QT_TRANSLATE_NOOP("Host", "值")},
    ListedGroup{"LWPOLYLINE", 90, QT_TRANSLATE_NOOP("Host", "顶点数")},
};

} // namespace

static QString valueText(const resbuf &group)
{
    struct Teller {
        QString operator()(std::monostate) const { return {}; }
        QString operator()(const QString &text) const { return text; }
        QString operator()(std::int64_t number) const { return QString::number(number); }
        QString operator()(double number) const { return numberText(number); }
        QString operator()(const AcGePoint2d &p) const { return pointText({p.x, p.y, 0.0}); }
        QString operator()(const AcGePoint3d &p) const { return pointText(p); }
        QString operator()(AcDbHandle handle) const { return QString::number(handle.value, 16).toUpper(); }
        QString operator()(AcDbObjectId id) const { return (*this)(id.handle()); }
        QString operator()(const QByteArray &bytes) const { return QString::fromLatin1(bytes.toHex()); }
    };
    return std::visit(Teller(), group.resval);
}

static void listGroups(const AcDbEntity &entity)
{
    const QByteArray kind = entity.dxfName();
    for (const ListedGroup &listed : kListedGroups) {
        const resbuf *const group = kind == listed.kind ? findGroup(entity.groups(), listed.code) : nullptr;
        if (group)
            acutPrintf(QStringLiteral("\n          %1 = %2").arg(Host::tr(listed.label), valueText(*group)));
    }
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) == Acad::eOk && extents.isValid()) {
        acutPrintf(Host::tr("\n          范围 = %1  至  %2")
                       .arg(pointText(extents.minPoint()), pointText(extents.maxPoint())));
    }
}

static void listEntity(AcDbObjectId id)
{
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity)
        return;
    const QString space = acdbLayoutName(entity->blockId());
    acutPrintf(
        Host::tr("\n%1  图层: %2\n          空间: %3\n          句柄 = %4")
            .arg(QString::fromLatin1(entity->dxfName()), entity->layer(),
                 space == QLatin1String("Model") ? Host::tr("模型空间") : Host::tr("布局 %1").arg(space),
                 QString::number(id.handle().value, 16).toUpper()));
    if (entity->colorIndex() != 256)
        acutPrintf(Host::tr("\n          颜色: %1").arg(entity->colorIndex()));
    if (entity->linetype().compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) != 0)
        acutPrintf(Host::tr("\n          线型: %1").arg(entity->linetype()));
    if (entity->isCustom())
        entity->subList();
    else
        listGroups(*entity);
}

static void list()
{
    for (const AcDbObjectId id : askSelection())
        listEntity(id);
}

// ID, DIST, AUDIT --------------------------------------------------------------------------------------

static void identifyPoint()
{
    if (const auto point = askPoint(nullptr, Host::tr("\n指定点: ")))
        acutPrintf(u'\n' + pointText(*point));
}

static void distance()
{
    const auto first = askPoint(nullptr, Host::tr("\n指定第一点: "));
    const auto second = first ? askPoint(&*first, Host::tr("\n指定第二点: ")) : std::nullopt;
    if (!second)
        return;
    const AcGeVector3d way = *second - *first;
    acutPrintf(Host::tr("\n距离 = %1，XY 平面中的倾角 = %2，%3")
                   .arg(numberText(way.length()), numberText(directionAngle(*first, *second) * 180.0 / kGePi),
                        Host::tr("X 增量 = %1，Y 增量 = %2，Z 增量 = %3")
                            .arg(numberText(way.x), numberText(way.y), numberText(way.z))));
}

static void audit()
{
    const QStringList &repairs = acdbCurDwg()->repairs();
    for (const QString &repair : repairs)
        acutPrintf(u'\n' + repair);
    acutPrintf(Host::tr("\n打开图形时修复了 %1 处错误。").arg(repairs.size()));
}

// SETVAR -----------------------------------------------------------------------------------------------

static QString variableText(const QString &name)
{
    resbuf value;
    if (acedGetVar(name, value) != RTNORM)
        return {};
    const AcGePoint3d point = value.point();
    switch (value.restype) {
    case 5002:
        return QStringLiteral("%1,%2").arg(numberText(point.x), numberText(point.y));
    case 5009:
        return QStringLiteral("%1,%2,%3").arg(numberText(point.x), numberText(point.y), numberText(point.z));
    case 5005:
        return u'"' + value.text() + u'"';
    default:
        return valueText(value);
    }
}

static void listVariables()
{
    const auto names = askText(Host::tr("\n输入要列出的变量 <*>: "));
    if (!names)
        return;
    const base::Wildcard pattern(names->isEmpty() ? QStringLiteral("*") : *names);
    for (const QString &name : acedVarNames()) {
        if (pattern.matches(name))
            acutPrintf(QStringLiteral("\n%1  %2").arg(name, variableText(name)));
    }
}

static void setVariable(const QString &name)
{
    resbuf present;
    if (acedGetVar(name, present) != RTNORM) {
        acedRefuse(Host::tr("未知变量名“%1”。").arg(name));
        return;
    }
    const auto typed = askText(Host::tr("\n输入 %1 的新值 <%2>: ").arg(name.toUpper(), variableText(name)));
    if (!typed || typed->isEmpty())
        return;
    switch (acedSetVarText(name, *typed)) {
    case RTNORM:
        break;
    case RTREJ:
        acedRefuse(Host::tr("%1 不接受“%2”。").arg(name.toUpper(), *typed));
        break;
    default:
        acedRefuse(Host::tr("%1 是只读的。").arg(name.toUpper()));
    }
}

static void setvar()
{
    QString name;
    const int result = acedGetString(false, Host::tr("\n输入变量名或 [?]: "), name);
    if (result != RTNORM || name.isEmpty())
        return;
    if (name == QLatin1String("?"))
        listVariables();
    else
        setVariable(name);
}

std::span<const Entry> inquiryCommands()
{
    static constexpr int kFlags = ACRX_CMD_TRANSPARENT | ACRX_CMD_NOUNDO;
    static constexpr std::array entries{
        Entry{"LIST", QT_TRANSLATE_NOOP("Host", "列表"), ACRX_CMD_USEPICKSET | ACRX_CMD_NOUNDO, list,
              "LI LS"},
        Entry{"ID", QT_TRANSLATE_NOOP("Host", "点坐标"), kFlags, identifyPoint},
        Entry{"DIST", QT_TRANSLATE_NOOP("Host", "测距离"), kFlags, distance, "DI"},
        Entry{"AUDIT", QT_TRANSLATE_NOOP("Host", "检查图形"), ACRX_CMD_NOUNDO, audit},
        Entry{"SETVAR", QT_TRANSLATE_NOOP("Host", "系统变量"), ACRX_CMD_TRANSPARENT, setvar, "SET"},
    };
    return entries;
}

} // namespace hostcommands
