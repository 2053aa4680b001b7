// The command that drags grips: the places of entities that a person takes hold of to change their shape.
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/preview.h"
#include "host/aced/commands/support.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <array>

namespace hostcommands
{

namespace
{

/// Grips of one entity that are being dragged.
struct HotGrips {
    AcDbObjectId entity;
    std::vector<int> grips; ///< Places in getGripPoints().
};

struct Grasp {
    std::vector<HotGrips> hot;
    AcGePoint3d from; ///< The hot grip nearest to the place that was pointed at, world.
};

} // namespace

/// All grips within a pick box of the place: corners that lie on each other move together.
static Grasp graspAt(const AcEdSelectionSet &entities, const AcGePoint3d &place)
{
    const double reach = acedIntVar(QStringLiteral("PICKBOX"), 3) * curDoc()->view().countedPixelSize();
    Grasp grasp;
    double nearest = std::numeric_limits<double>::infinity();
    for (const AcDbObjectId id : entities) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (!entity)
            continue;
        HotGrips hot{id, {}};
        const std::vector<AcGePoint3d> grips = entity->getGripPoints();
        for (std::size_t i = 0; i < grips.size(); ++i) {
            const AcGeVector3d seen = acedTrans(grips[i] - place, AcEdSpace::world, AcEdSpace::display);
            const double distance = std::max(std::abs(seen.x), std::abs(seen.y));
            if (distance > reach)
                continue;
            hot.grips.push_back(int(i));
            if (distance < nearest) {
                nearest = distance;
                grasp.from = grips[i];
            }
        }
        if (!hot.grips.empty())
            grasp.hot.push_back(std::move(hot));
    }
    return grasp;
}

static Preview dragPreview(const Grasp &grasp)
{
    AcEdSelectionSet entities;
    for (const HotGrips &hot : grasp.hot)
        entities.push_back(hot.entity);
    return Preview(entities, [&grasp](const AcGePoint3d &cursor) -> Preview::Change {
        return [&grasp, offset = cursor - grasp.from](std::size_t place, AcDbEntity &copy) {
            return copy.moveGripPointsAt(grasp.hot[place].grips, offset) == Acad::eOk;
        };
    });
}

static void applyDrag(const Grasp &grasp, const AcGeVector3d &offset)
{
    Refusals refused;
    for (const HotGrips &hot : grasp.hot) {
        AcDbObjectPointer<AcDbEntity> entity(hot.entity, AcDb::kForWrite);
        const Acad::ErrorStatus status =
            entity ? entity->moveGripPointsAt(hot.grips, offset) : entity.openStatus();
        if (status == Acad::eOk || status == Acad::eOnLockedLayer || status == Acad::eNotAllowedForThisProxy)
            refused.note(status);
        else if (!(entity && entity->isCustom() && status == Acad::eInvalidInput))
            acedRefuse(Host::tr("%1 %2 不能这样改动: %3")
                           .arg(QString::fromLatin1(acdbKindName(hot.entity.stub()->kind)),
                                QString::number(hot.entity.handle().value, 16).toUpper(),
                                reasonText(status)));
        // A custom entity that refuses has told why.
    }
    refused.report();
}

/// What was chosen before stays chosen, so that the next grip can be dragged at once.
static AcEdSelectionSet entitiesToGrasp()
{
    AcEdSelectionSet entities;
    const bool wereChosen = acedSSGet(QStringLiteral("I"), nullptr, nullptr, {}, entities) == RTNORM;
    return wereChosen ? entities : askSelection();
}

static void grip()
{
    const AcEdSelectionSet entities = entitiesToGrasp();
    const auto place = entities.empty() ? std::nullopt : askPoint(nullptr, Host::tr("\n指定夹点: "));
    if (!place)
        return;
    const Grasp grasp = graspAt(entities, toWorld(*place));
    if (grasp.hot.empty()) {
        acutPrintf(Host::tr("\n该处没有夹点。"));
        return;
    }
    Preview preview = dragPreview(grasp);
    const AcGePoint3d base = acedTrans(grasp.from, AcEdSpace::world, AcEdSpace::ucs);
    AcGePoint3d target;
    if (acedGetTrackedPoint(&base, Host::tr("\n指定移动点: "), preview, target) == RTNORM)
        applyDrag(grasp, toWorld(target) - grasp.from);
}

std::span<const Entry> gripCommands()
{
    static constexpr std::array entries{
        Entry{"GRIP", QT_TRANSLATE_NOOP("Host", "夹点编辑"), ACRX_CMD_USEPICKSET, grip},
    };
    return entries;
}

} // namespace hostcommands
