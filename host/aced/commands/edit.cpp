// Commands that erase, move and copy entities.
#include "host/acdb/dbapi.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/preview.h"
#include "host/aced/commands/support.h"
#include "host/aced/edparse.h"
#include "host/aced/edprompt.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <array>

namespace hostcommands
{

static void erase()
{
    std::vector<AcDbObjectId> erased;
    Refusals refused;
    const auto erasePiece = [&](const AcEdSelectionSet &piece) {
        for (const AcDbObjectId id : piece) {
            AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
            const Acad::ErrorStatus status = entity ? entity->erase() : entity.openStatus();
            refused.note(status);
            if (status == Acad::eOk)
                erased.push_back(id);
        }
    };
    if (!inPieces(askSelection(), erasePiece))
        return;
    refused.report();
    if (!erased.empty())
        DocumentMemory::of(curDoc()).lastErased = std::move(erased);
}

static void oops()
{
    for (const AcDbObjectId id : std::exchange(DocumentMemory::of(curDoc()).lastErased, {})) {
        AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite, true);
        if (entity && entity->isErased())
            entity->erase(false);
    }
}

namespace
{

/// The way from a base point, or a displacement of its own.
struct Base {
    AcGePoint3d point; ///< UCS.
    bool isDisplacement = false;
};

} // namespace

static std::optional<Base> askBase()
{
    acedInitGet(0, QStringLiteral("Displacement"));
    AcGePoint3d point;
    const int result = acedGetPoint(nullptr, Host::tr("\n指定基点或 [位移(D)] <位移>: "), point);
    if (result == RTNORM)
        return Base{point, false};
    if (result != RTKWORD && result != RTNONE)
        return std::nullopt;
    if (const auto displacement = askPoint(nullptr, Host::tr("\n指定位移 <0,0,0>: ")))
        return Base{*displacement, true};
    return std::nullopt;
}

static AcGeMatrix3d movement(const AcGePoint3d &from, const AcGePoint3d &to)
{
    return AcGeMatrix3d::translation(toWorld(to) - toWorld(from));
}

static Preview movementPreview(const AcEdSelectionSet &entities, const AcGePoint3d &base)
{
    return transformPreview(entities, [from = toWorld(base)](const AcGePoint3d &cursor) {
        return std::optional(AcGeMatrix3d::translation(cursor - from));
    });
}

static void move()
{
    const AcEdSelectionSet selected = askSelection();
    const auto base = selected.empty() ? std::nullopt : askBase();
    if (!base)
        return;
    if (base->isDisplacement) {
        transformAll(selected, movement({}, base->point));
        return;
    }
    Preview preview = movementPreview(selected, base->point);
    AcGePoint3d target;
    switch (acedGetTrackedPoint(&base->point, Host::tr("\n指定第二个点或 <使用第一个点作为位移>: "), preview,
                                target)) {
    case RTNORM:
        transformAll(selected, movement(base->point, target));
        break;
    case RTNONE:
        transformAll(selected, movement({}, base->point));
        break;
    default:
        break;
    }
}

static void copyBy(const AcEdSelectionSet &originals, const AcGeMatrix3d &matrix)
{
    Acad::ErrorStatus status = Acad::eOk;
    Refusals refused;
    const auto copyPiece = [&](const AcEdSelectionSet &piece) {
        if (status != Acad::eOk)
            return;
        AcEdSelectionSet copies;
        status = acdbDeepCloneEntities(piece, acdbCurDwg()->currentSpaceId(), copies);
        transform(copies, matrix, refused);
    };
    if (!inPieces(originals, copyPiece))
        return;
    if (status != Acad::eOk)
        acedRefuse(Host::tr("不能复制: %1").arg(reasonText(status)));
    refused.report();
}

static void copy()
{
    AcEdSelectionSet selected = askSelection();
    dropUnchangeable(selected); // A copy of these could not be moved to its place.
    const auto base = selected.empty() ? std::nullopt : askBase();
    if (!base)
        return;
    if (base->isDisplacement) {
        copyBy(selected, movement({}, base->point));
        return;
    }
    Preview preview = movementPreview(selected, base->point);
    QString prompt = Host::tr("\n指定第二个点或 <使用第一个点作为位移>: ");
    for (bool first = true;; first = false) {
        AcGePoint3d target;
        acedInitGet(0, first ? QString() : QStringLiteral("Exit"));
        const int result = acedGetTrackedPoint(&base->point, prompt, preview, target);
        if (result == RTNONE && first)
            copyBy(selected, movement({}, base->point));
        if (result != RTNORM)
            return;
        copyBy(selected, movement(base->point, target));
        prompt = Host::tr("\n指定第二个点或 [退出(E)] <退出>: ");
    }
}

static AcGeMatrix3d turn(const AcGePoint3d &base, double angle)
{
    return AcGeMatrix3d::rotation(angle, ucsNormal(), toWorld(base));
}

static void rotate()
{
    const AcEdSelectionSet selected = askSelection();
    const auto base = selected.empty() ? std::nullopt : askPoint(nullptr, Host::tr("\n指定基点: "));
    if (!base)
        return;
    Preview preview = transformPreview(selected, [&base](const AcGePoint3d &cursor) {
        const AcGePoint3d place = acedTrans(cursor, AcEdSpace::world, AcEdSpace::ucs);
        return std::optional(turn(*base, directionAngle(*base, place) - acedAngleFormat().base));
    });
    double angle = 0.0;
    if (acedGetAngle(&*base, Host::tr("\n指定旋转角度: "), angle, &preview) == RTNORM)
        transformAll(selected, turn(*base, angle));
}

static std::optional<double> askScale(const AcGePoint3d &base, Preview &preview)
{
    const auto distance = [&base](const QString &prompt) -> std::optional<double> {
        acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG);
        double value = 0.0;
        return acedGetDist(&base, prompt, value) == RTNORM ? std::optional(value) : std::nullopt;
    };
    acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, QStringLiteral("Reference"));
    double factor = 1.0;
    const int result = acedGetDist(&base, Host::tr("\n指定比例因子或 [参照(R)]: "), factor, &preview);
    if (result == RTNORM)
        return factor;
    if (result != RTKWORD)
        return std::nullopt;
    const auto present = distance(Host::tr("\n指定参照长度: "));
    const auto wanted = present ? distance(Host::tr("\n指定新的长度: ")) : std::nullopt;
    if (!wanted)
        return std::nullopt;
    return *wanted / *present;
}

static void scale()
{
    const AcEdSelectionSet selected = askSelection();
    const auto base = selected.empty() ? std::nullopt : askPoint(nullptr, Host::tr("\n指定基点: "));
    if (!base)
        return;
    Preview preview = transformPreview(selected, [&base](const AcGePoint3d &cursor) {
        const double factor = cursor.distanceTo(toWorld(*base));
        return factor > 0.0 ? std::optional(AcGeMatrix3d::scaling(factor, toWorld(*base))) : std::nullopt;
    });
    if (const auto factor = askScale(*base, preview))
        transformAll(selected, AcGeMatrix3d::scaling(*factor, toWorld(*base)));
}

/// The reflection at a line; none while its two points are one.
static std::optional<AcGeMatrix3d> reflection(const AcGePoint3d &from, const AcGePoint3d &to)
{
    if ((to - from).isZeroLength())
        return std::nullopt;
    return AcGeMatrix3d::mirroring(from, to - from);
}

static std::optional<AcGePoint3d> askTracked(const AcGePoint3d &base, const QString &prompt, Preview &preview)
{
    AcGePoint3d point;
    if (acedGetTrackedPoint(&base, prompt, preview, point) != RTNORM)
        return std::nullopt;
    return point;
}

static void mirror()
{
    AcEdSelectionSet selected = askSelection();
    dropUnchangeable(selected);
    const auto first =
        selected.empty() ? std::nullopt : askPoint(nullptr, Host::tr("\n指定镜像线的第一点: "));
    if (!first)
        return;
    Preview preview = transformPreview(
        selected, [from = toWorld(*first)](const AcGePoint3d &cursor) { return reflection(from, cursor); });
    const auto second = askTracked(*first, Host::tr("\n指定镜像线的第二点: "), preview);
    if (!second)
        return;
    const auto matrix = reflection(toWorld(*first), toWorld(*second));
    if (!matrix) {
        acedRefuse(Host::tr("镜像线的两点重合。"));
        return;
    }
    const auto eraseSource = askYes(Host::tr("\n要删除源对象吗?"), false);
    if (eraseSource && *eraseSource)
        transformAll(selected, *matrix);
    else if (eraseSource)
        copyBy(selected, *matrix);
}

std::span<const Entry> editCommands()
{
    static constexpr std::array entries{
        Entry{"ERASE", QT_TRANSLATE_NOOP("Host", "删除"), ACRX_CMD_USEPICKSET, erase, "E"},
        Entry{"OOPS", QT_TRANSLATE_NOOP("Host", "恢复删除"), ACRX_CMD_MODAL, oops},
        Entry{"MOVE", QT_TRANSLATE_NOOP("Host", "移动"), ACRX_CMD_USEPICKSET, move, "M"},
        Entry{"COPY", QT_TRANSLATE_NOOP("Host", "复制"), ACRX_CMD_USEPICKSET, copy, "CO CP"},
        Entry{"ROTATE", QT_TRANSLATE_NOOP("Host", "旋转"), ACRX_CMD_USEPICKSET, rotate, "RO"},
        Entry{"SCALE", QT_TRANSLATE_NOOP("Host", "缩放"), ACRX_CMD_USEPICKSET, scale, "SC"},
        Entry{"MIRROR", QT_TRANSLATE_NOOP("Host", "镜像"), ACRX_CMD_USEPICKSET, mirror, "MI"},
    };
    return entries;
}

} // namespace hostcommands
