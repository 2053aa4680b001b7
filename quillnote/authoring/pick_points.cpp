#include "quillnote/authoring/pick_points.h"

#include "quillnote/entity/mark_geometry.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

static constexpr const char16_t *kPickVariables[] = {u"OSmode", u"Highlight", u"cmdecho"};

PickVariables::PickVariables()
{
    for (const char16_t *name : kPickVariables) {
        settings::setNumber(name, acedIntVar(QString::fromUtf16(name)));
        acedSetIntVar(QString::fromUtf16(name), 0);
    }
}

PickVariables::~PickVariables()
{
    for (const char16_t *name : kPickVariables)
        acedSetIntVar(QString::fromUtf16(name), settings::number(name));
}

struct PickTexts {
    QString firstPrompt;
    QString secondPrompt;
    QString noSecond;
};

static PickTexts pickTexts(PickMode mode)
{
    if (mode == PickMode::leader)
        return {QStringLiteral("\n指定标记引线的起点: "), QStringLiteral("\n指定标记引线的终点: "),
                QStringLiteral("未获取第二点，放弃!")};
    return {QStringLiteral("\n指定标记范围的一角: "), QStringLiteral("\n指定标记范围的另一角: "),
            QStringLiteral("未获取对角点，放弃!")};
}

static bool askPoints(AcGePoint3d &a, AcGePoint3d &b, PickMode mode)
{
    const PickTexts texts = pickTexts(mode);
    const PickVariables quiet;
    if (acedGetPoint(nullptr, texts.firstPrompt, a) != RTNORM) {
        acutPrintf(QStringLiteral("未获取点，放弃!"));
        return false;
    }
    const int answer = mode == PickMode::leader ? acedGetPoint(&a, texts.secondPrompt, b)
                                                : acedGetCorner(a, texts.secondPrompt, b);
    if (answer != RTNORM)
        acutPrintf(texts.noSecond);
    return answer == RTNORM;
}

bool pickMarkPoints(AcGePoint3d &a, AcGePoint3d &b, PickMode mode)
{
    if (!askPoints(a, b, mode))
        return false;
    for (AcGePoint3d *point : {&a, &b}) {
        *point = acedTrans(*point, AcEdSpace::ucs, AcEdSpace::world);
        point->z = 0.0;
    }
    if (mode == PickMode::rectangle) {
        const SortedCorners sorted = sortCorners(a, b, curDoc()->view().getWorldToEyeTransform());
        a = sorted.lowerLeft;
        b = sorted.upperRight;
    }
    return true;
}
