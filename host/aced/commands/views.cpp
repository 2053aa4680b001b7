// Commands that change what part of the drawing is on the screen, and its twist.
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edview.h"
#include "host/acgi/display/display.h"
#include "host/base/format_number.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <array>

namespace hostcommands
{

static AcGeView &viewToChange()
{
    acedRememberView(*curDoc());
    return curDoc()->view();
}

static void zoomTo(const AcDbExtents &extents)
{
    if (!extents.isValid()) {
        acutPrintf(Host::tr("\n没有可显示的对象。"));
        return;
    }
    viewToChange();
    curDoc()->view().fit(extents);
    constexpr double kRoomAround = 1.02; // What lies on the edge is seen whole.
    curDoc()->view().height *= kRoomAround;
}

static void zoomExtents()
{
    zoomTo(acedCurrentExtents(*curDoc()));
}

/// The drawing's limits and whatever lies outside them.
static AcDbExtents wholeDrawing()
{
    AcDbExtents whole = acedCurrentExtents(*curDoc());
    const AcDbDatabase &database = *acdbCurDwg();
    const bool model = database.currentSpaceId() == database.modelSpaceId();
    const AcGePoint3d low = database.headerPoint(model ? "$LIMMIN" : "$PLIMMIN");
    const AcGePoint3d high = database.headerPoint(model ? "$LIMMAX" : "$PLIMMAX");
    if (high.x > low.x && high.y > low.y) {
        whole.addPoint({low.x, low.y, 0.0});
        whole.addPoint({high.x, high.y, 0.0});
    }
    return whole;
}

static void zoomAll()
{
    zoomTo(wholeDrawing());
}

static void zoomCorners(const AcGePoint3d &first, const AcGePoint3d &second)
{
    const AcGePoint3d corner1 = toWorld(first);
    const AcGePoint3d corner2 = toWorld(second);
    if (corner1.isEqualTo(corner2)) {
        acedRefuse(Host::tr("窗口太小。"));
        return;
    }
    viewToChange();
    acedZoomWindow(*curDoc(), corner1, corner2);
}

static void zoomWindow()
{
    const auto first = askPoint(nullptr, Host::tr("\n指定第一个角点: "));
    AcGePoint3d second;
    if (first && acedGetCorner(*first, Host::tr("\n指定对角点: "), second) == RTNORM)
        zoomCorners(*first, second);
}

namespace
{

/// "2x" counts from the present view, "2" from the whole drawing.
struct ZoomScale {
    double factor = 1.0;
    bool ofView = false;
};

} // namespace

static std::optional<ZoomScale> readScale(QString text)
{
    ZoomScale scale;
    text = text.trimmed().toLower();
    if (text.endsWith(QLatin1String("xp")))
        text.chop(1);
    if (text.endsWith(u'x')) {
        scale.ofView = true;
        text.chop(1);
    }
    const QByteArray digits = text.toLatin1();
    const auto factor = base::parseReal({digits.constData(), std::size_t(digits.size())});
    if (!factor || !(*factor > 1e-12) || *factor > 1e12)
        return std::nullopt;
    scale.factor = *factor;
    return scale;
}

static void zoomScale(const QString &text)
{
    const auto scale = readScale(text);
    if (!scale) {
        acedRefuse(Host::tr("需要窗口的角点、比例因子 (如 2 或 2x) 或选项关键字。"));
        return;
    }
    double height = viewToChange().height;
    if (!scale->ofView) {
        const AcDbExtents whole = wholeDrawing();
        if (whole.isValid()) {
            AcGeView &view = curDoc()->view();
            const AcGeView present = view;
            curDoc()->view().fit(whole);
            height = std::exchange(view, present).height;
        }
    }
    curDoc()->view().height = height / scale->factor;
}

static void zoomScaleAsked()
{
    if (const auto text = askText(Host::tr("\n输入比例因子 (nX): ")))
        zoomScale(*text);
}

static void zoomCentre()
{
    AcGePoint3d centre = acedTrans(curDoc()->view().centre, AcEdSpace::world, AcEdSpace::ucs);
    const int result = acedGetPoint(nullptr, Host::tr("\n指定中心点: "), centre);
    if (result != RTNORM && result != RTNONE)
        return;
    const auto text = askText(Host::tr("\n输入比例或高度 <%1>: ").arg(numberText(curDoc()->view().height)));
    // Enter keeps the height.
    const auto scale =
        text && text->isEmpty() ? std::optional(ZoomScale{1.0, true}) : readScale(text.value_or(QString()));
    if (!scale) {
        acedRefuse(Host::tr("需要高度，或比例因子 (如 2x)。"));
        return;
    }
    AcGeView &view = viewToChange();
    view.centre = toWorld(centre);
    view.height = scale->ofView ? view.height / scale->factor : scale->factor;
}

static void zoomPrevious()
{
    if (!acedPreviousView(*curDoc()))
        acutPrintf(Host::tr("\n没有保存上一个视图。"));
}

static void zoom()
{
    acedInitGet(RSG_OTHER, QStringLiteral("All Center Extents Previous Scale Window"));
    AcGePoint3d corner;
    const int result = acedGetPoint(nullptr,
                                    Host::tr("\n指定窗口的角点，输入比例因子 (nX)，或 "
                                             "[全部(A)/中心(C)/范围(E)/上一个(P)/比例(S)/窗口(W)]: "),
                                    corner);
    if (result == RTNORM) {
        AcGePoint3d opposite;
        if (acedGetCorner(corner, Host::tr("\n指定对角点: "), opposite) == RTNORM)
            zoomCorners(corner, opposite);
        return;
    }
    if (result != RTKWORD)
        return;
    static constexpr std::array<std::pair<const char *, void (*)()>, 6> kActions{{{"All", zoomAll},
                                                                                  {"Center", zoomCentre},
                                                                                  {"Extents", zoomExtents},
                                                                                  {"Previous", zoomPrevious},
                                                                                  {"Scale", zoomScaleAsked},
                                                                                  {"Window", zoomWindow}}};
    const QString keyword = acedGetInput();
    const auto action = std::ranges::find_if(
        kActions, [&](const auto &entry) { return keyword == QLatin1String(entry.first); });
    if (action != kActions.end())
        action->second();
    else
        zoomScale(keyword);
}

static void pan()
{
    const auto base = askPoint(nullptr, Host::tr("\n指定基点或位移: "));
    if (!base)
        return;
    AcGePoint3d target;
    const int result = acedGetPoint(&*base, Host::tr("\n指定第二个点: "), target);
    if (result != RTNORM && result != RTNONE)
        return;
    const AcGeVector3d movement =
        result == RTNORM ? toWorld(target) - toWorld(*base) : toWorld(base->asVector());
    AcGeView &view = viewToChange();
    view.centre = view.centre - movement;
}

static void regenerate()
{
    acutPrintf(Host::tr("\n正在重生成图形。"));
    acgi::displayOf(*acdbCurDwg()).regenerate(true);
}

static void twistView()
{
    double angle = 0.0;
    const int result = acedGetAngle(nullptr, Host::tr("\n指定视图扭曲角度 <0>: "), angle);
    if (result == RTNORM || result == RTNONE)
        viewToChange().twist = result == RTNORM ? angle : 0.0;
}

/// Of the classic options the ones that mean something in plan: twist, zoom, pan.
static void dynamicView()
{
    askSelection(); // Shown while dragging elsewhere; the answer changes nothing.
    while (!acedEditor()->isCancelled()) {
        const auto option =
            askKeyword(QStringLiteral("TWist Zoom PAn Undo eXit"),
                       Host::tr("\n输入选项 [扭曲(TW)/缩放(Z)/平移(PA)/放弃(U)/退出(X)] <退出>: "),
                       QStringLiteral("eXit"));
        if (!option || *option == QLatin1String("eXit"))
            return;
        if (*option == QLatin1String("TWist"))
            twistView();
        else if (*option == QLatin1String("Zoom"))
            zoomScaleAsked();
        else if (*option == QLatin1String("PAn"))
            pan();
        else
            zoomPrevious();
    }
}

std::span<const Entry> viewCommands()
{
    static constexpr int kFlags = ACRX_CMD_TRANSPARENT | ACRX_CMD_NOUNDO;
    static constexpr std::array entries{
        Entry{"ZOOM", QT_TRANSLATE_NOOP("Host", "缩放视图"), kFlags, zoom, "Z"},
        Entry{"PAN", QT_TRANSLATE_NOOP("Host", "平移"), kFlags, pan, "P -PAN"},
        Entry{"REGEN", QT_TRANSLATE_NOOP("Host", "重生成"), kFlags, regenerate, "RE"},
        Entry{"REGENALL", QT_TRANSLATE_NOOP("Host", "全部重生成"), kFlags, regenerate, "REA"},
        Entry{"DVIEW", QT_TRANSLATE_NOOP("Host", "转动视图"), ACRX_CMD_NOUNDO, dynamicView, "DV"},
    };
    return entries;
}

} // namespace hostcommands
