// Coordinate systems: UCS, PLAN.
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edview.h"
#include "host/base/host_text.h"

#include <array>

namespace hostcommands
{

static void setUcs(const AcApUcs &ucs)
{
    DocumentMemory::of(curDoc()).earlierUcs.push_back(curDoc()->ucs());
    curDoc()->ucs() = ucs;
}

static void previousUcs()
{
    std::vector<AcApUcs> &earlier = DocumentMemory::of(curDoc()).earlierUcs;
    if (earlier.empty()) {
        acutPrintf(Host::tr("\n没有上一个坐标系。"));
        return;
    }
    curDoc()->ucs() = earlier.back();
    earlier.pop_back();
}

static void moveOrigin()
{
    const auto origin = askPoint(nullptr, Host::tr("\n指定新原点 <0,0,0>: "));
    if (!origin)
        return;
    AcApUcs ucs = curDoc()->ucs();
    ucs.origin = toWorld(*origin);
    setUcs(ucs);
}

static void turnAboutZ()
{
    double angle = 0.0;
    if (acedGetAngle(nullptr, Host::tr("\n指定绕 Z 轴的旋转角度 <90>: "), angle) == RTNONE)
        angle = kGePi / 2;
    AcApUcs ucs = curDoc()->ucs();
    const AcGeVector3d normal = ucsNormal();
    ucs.xAxis = ucs.xAxis.rotateBy(angle, normal);
    ucs.yAxis = ucs.yAxis.rotateBy(angle, normal);
    setUcs(ucs);
}

/// X towards `onX`, Y on the side of `onPlane`; none when the three are on one line.
static std::optional<AcApUcs> ucsThrough(const AcGePoint3d &origin, const AcGePoint3d &onX,
                                         const AcGePoint3d &onPlane)
{
    const AcGeVector3d x = onX - origin;
    const AcGeVector3d z = x.crossProduct(onPlane - origin);
    if (x.isZeroLength() || z.isZeroLength())
        return std::nullopt;
    return AcApUcs{origin, x.normal(), z.crossProduct(x).normal()};
}

/// The second and third point may be left out: the present directions stay, or turn about Z.
static void throughPoints(const AcGePoint3d &origin)
{
    AcGePoint3d onX = origin + AcGeVector3d::kXAxis;
    const int xResult = acedGetPoint(&origin, Host::tr("\n指定 X 轴上的点或 <接受>: "), onX);
    if (xResult != RTNORM && xResult != RTNONE)
        return;
    AcGePoint3d onPlane = origin + AcGeVector3d::kZAxis.crossProduct(onX - origin);
    if (xResult == RTNORM) {
        const int planeResult = acedGetPoint(&origin, Host::tr("\n指定 XY 平面上的点或 <接受>: "), onPlane);
        if (planeResult != RTNORM && planeResult != RTNONE)
            return;
    }
    if (const auto ucs = ucsThrough(toWorld(origin), toWorld(onX), toWorld(onPlane)))
        setUcs(*ucs);
    else
        acedRefuse(Host::tr("三个点在一条直线上。"));
}

static void threePoints()
{
    AcGePoint3d origin;
    const int result = acedGetPoint(nullptr, Host::tr("\n指定新原点 <0,0,0>: "), origin);
    if (result == RTNORM || result == RTNONE)
        throughPoints(origin);
}

/// Upright on the screen, in the plane of the view.
static void alongView()
{
    const AcGeMatrix3d toView = curDoc()->view().getWorldToEyeTransform();
    const AcGeMatrix3d fromView = toView.inverse();
    setUcs({curDoc()->ucs().origin, fromView * AcGeVector3d::kXAxis, fromView * AcGeVector3d::kYAxis});
}

static void worldUcs()
{
    setUcs({});
}

static void ucs()
{
    acedInitGet(0, QStringLiteral("Move Origin Previous World Z 3 View"));
    AcGePoint3d origin;
    const int result = acedGetPoint(
        nullptr, Host::tr("\n指定 UCS 的原点或 [原点(O)/上一个(P)/世界(W)/Z 轴(Z)/三点(3)/视图(V)] <世界>: "),
        origin);
    if (result == RTNORM)
        throughPoints(origin);
    else if (result == RTNONE)
        worldUcs();
    if (result != RTKWORD)
        return;
    static constexpr std::array<std::pair<const char *, void (*)()>, 7> kActions{{{"Move", moveOrigin},
                                                                                  {"Origin", moveOrigin},
                                                                                  {"Previous", previousUcs},
                                                                                  {"World", worldUcs},
                                                                                  {"Z", turnAboutZ},
                                                                                  {"3", threePoints},
                                                                                  {"View", alongView}}};
    for (const auto &[name, action] : kActions) {
        if (acedGetInput() == QLatin1String(name)) {
            action();
            return;
        }
    }
}

/// Turns the view so that the X axis points right.
static void plan()
{
    const auto option =
        askKeyword(QStringLiteral("Current World"), Host::tr("\n输入选项 [当前 UCS(C)/世界(W)] <当前>: "),
                   QStringLiteral("Current"));
    if (!option)
        return;
    const AcGeVector3d xAxis =
        *option == QLatin1String("World") ? AcGeVector3d::kXAxis : curDoc()->ucs().xAxis;
    AcGeView &view = curDoc()->view();
    acedRememberView(*curDoc());
    view.twist = -std::atan2(xAxis.y, xAxis.x);
    const AcDbExtents extents = acedCurrentExtents(*curDoc());
    if (extents.isValid())
        curDoc()->view().fit(extents);
}

std::span<const Entry> coordinateCommands()
{
    static constexpr std::array entries{
        Entry{"UCS", QT_TRANSLATE_NOOP("Host", "坐标系"), ACRX_CMD_NOUNDO, ucs},
        Entry{"PLAN", QT_TRANSLATE_NOOP("Host", "平面视图"), ACRX_CMD_NOUNDO, plan},
    };
    return entries;
}

} // namespace hostcommands
