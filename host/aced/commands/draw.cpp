// Commands that draw simple entities: LINE, CIRCLE, POINT, TEXT.
#include "host/acdb/dbsymtb.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"

#include <array>

namespace hostcommands
{

// LINE -------------------------------------------------------------------------------------------------

static AcDbObjectId drawLine(const AcGePoint3d &from, const AcGePoint3d &to)
{
    return drawEntity("LINE", {{100, QStringLiteral("AcDbLine")}, {10, toWorld(from)}, {11, toWorld(to)}});
}

static void eraseEntity(AcDbObjectId id)
{
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (entity)
        entity->erase();
}

static void line()
{
    const auto start = askPoint(nullptr, Host::tr("\n指定第一点: "));
    if (!start)
        return;
    std::vector<AcGePoint3d> points{*start};
    std::vector<AcDbObjectId> drawn;
    for (;;) {
        const bool canClose = drawn.size() >= 2;
        acedInitGet(0, canClose ? QStringLiteral("Close Undo") : QStringLiteral("Undo"));
        AcGePoint3d next;
        const int result = acedGetPoint(&points.back(),
                                        canClose ? Host::tr("\n指定下一点或 [闭合(C)/放弃(U)]: ")
                                                 : Host::tr("\n指定下一点或 [放弃(U)]: "),
                                        next);
        if (result == RTNORM) {
            drawn.push_back(drawLine(points.back(), next));
            points.push_back(next);
        } else if (result == RTKWORD && acedGetInput() == QLatin1String("Undo")) {
            if (drawn.empty()) {
                acutPrintf(Host::tr("\n所有线段都已放弃。"));
                continue;
            }
            eraseEntity(drawn.back());
            drawn.pop_back();
            points.pop_back();
        } else {
            if (result == RTKWORD)
                drawLine(points.back(), points.front());
            return;
        }
    }
}

// CIRCLE, POINT ----------------------------------------------------------------------------------------

static std::optional<double> askRadius(const AcGePoint3d &centre)
{
    double value = 0.0;
    acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, QStringLiteral("Diameter"));
    int result = acedGetDist(&centre, Host::tr("\n指定圆的半径或 [直径(D)]: "), value);
    if (result == RTNORM)
        return value;
    if (result != RTKWORD)
        return std::nullopt;
    acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG);
    result = acedGetDist(&centre, Host::tr("\n指定圆的直径: "), value);
    return result == RTNORM ? std::optional(value / 2) : std::nullopt;
}

static void circle()
{
    const auto centre = askPoint(nullptr, Host::tr("\n指定圆的圆心: "));
    const auto radius = centre ? askRadius(*centre) : std::nullopt;
    if (!radius)
        return;
    ResbufList groups{{100, QStringLiteral("AcDbCircle")}, {10, inPlane(*centre)}, {40, *radius}};
    appendNormal(groups);
    drawEntity("CIRCLE", std::move(groups));
}

static void point()
{
    if (const auto place = askPoint(nullptr, Host::tr("\n指定点: ")))
        drawEntity("POINT", {{100, QStringLiteral("AcDbPoint")}, {10, toWorld(*place)}});
}

// TEXT -------------------------------------------------------------------------------------------------

static void drawText(const AcGePoint3d &start, double height, double angle, const QString &text)
{
    ResbufList groups{{100, QStringLiteral("AcDbText")}, {10, inPlane(start)}, {40, height}, {1, text}};
    const double rotation = rotationInPlane(angle);
    if (rotation != 0.0)
        groups.emplace_back(50, rotation);
    groups.emplace_back(7, acdbCurDwg()->headerText("$TEXTSTYLE", QStringLiteral("STANDARD")));
    appendNormal(groups);
    groups.emplace_back(100, QStringLiteral("AcDbText"));
    drawEntity("TEXT", std::move(groups));
}

static void text()
{
    auto start = askPoint(nullptr, Host::tr("\n指定文字的起点: "));
    if (!start)
        return;
    double height = acedRealVar(QStringLiteral("TEXTSIZE"), 2.5);
    acedInitGet(RSG_NOZERO | RSG_NONEG);
    int result = acedGetDist(&*start, Host::tr("\n指定高度 <%1>: ").arg(numberText(height)), height);
    if (result != RTNORM && result != RTNONE)
        return;
    double angle = 0.0;
    result = acedGetAngle(&*start, Host::tr("\n指定文字的旋转角度 <0>: "), angle);
    if (result != RTNORM && result != RTNONE)
        return;
    static constexpr double kLineDistance = 5.0 / 3.0;
    QString line;
    while (acedGetString(true, Host::tr("\n输入文字: "), line) == RTNORM && !line.isEmpty()) {
        drawText(*start, height, angle, line);
        *start = polarOffset(*start, angle - kGePi / 2, height * kLineDistance);
    }
}

std::span<const Entry> drawCommands()
{
    static constexpr std::array entries{
        Entry{"LINE", QT_TRANSLATE_NOOP("Host", "直线"), ACRX_CMD_MODAL, line, "L"},
        Entry{"CIRCLE", QT_TRANSLATE_NOOP("Host", "圆"), ACRX_CMD_MODAL, circle, "C"},
        Entry{"POINT", QT_TRANSLATE_NOOP("Host", "点"), ACRX_CMD_MODAL, point, "PO"},
        Entry{"TEXT", QT_TRANSLATE_NOOP("Host", "文字"), ACRX_CMD_MODAL, text, "DT"},
    };
    return entries;
}

} // namespace hostcommands
