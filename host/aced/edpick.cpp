// Picking one entity.
#include "host/aced/edpick.h"

#include "host/aced/edprompt.h"
#include "host/aced/edsysvar.h"
#include "host/acgi/query/spatial_index.h"
#include "host/acgi/query/visibility.h"
#include "host/base/host_text.h"

#include <algorithm>

AcDbObjectId acedPickAt(const AcApDocument &document, const AcGePoint3d &world, const AcEdFilter &filter)
{
    AcDbDatabase &database = *document.database();
    const double aperture = acedIntVar(QStringLiteral("PICKBOX"), 3) * document.view().countedPixelSize();
    const std::vector<AcDbObjectId> hits =
        acgi::spatialIndexOf(database).atPoint(database.currentSpaceId(), world, aperture);
    const auto top = std::find_if(hits.rbegin(), hits.rend(), [&](auto id) { return filter.passes(id); });
    return top == hits.rend() ? AcDbObjectId() : *top;
}

AcDbObjectId acedLastEntity(const AcApDocument &document)
{
    const AcDbDatabase &database = *document.database();
    const BlockContents *const contents = database.blockContents(database.currentSpaceId());
    if (!contents)
        return {};
    for (auto index = contents->entities.rbegin(); index != contents->entities.rend(); ++index) {
        const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(database.stub(*index)), AcDb::kForRead);
        if (entity && acgi::isVisible(*entity))
            return entity->objectId();
    }
    return {};
}

/// "handle 2F"; the word may be cut down to "h".
static std::optional<AcDbObjectId> byHandle(const AcDbDatabase &database, const QString &typed)
{
    const QString word = typed.section(u' ', 0, 0);
    if (word.isEmpty() || !QStringLiteral("handle").startsWith(word, Qt::CaseInsensitive))
        return std::nullopt;
    bool isNumber = false;
    const std::uint64_t handle = typed.section(u' ', 1).trimmed().toULongLong(&isNumber, 16);
    if (!isNumber)
        return std::nullopt;
    const AcDbObjectId id = database.getAcDbObjectId({handle});
    return id.isValid() && id.isEntity() ? id : AcDbObjectId();
}

/// A named entity is picked at the middle of its box.
static AcEdPicked named(AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbExtents box;
    if (!entity || entity->getGeomExtents(box) != Acad::eOk)
        return {id, {}};
    return {id, box.minPoint() + (box.maxPoint() - box.minPoint()) * 0.5};
}

std::optional<AcEdPicked> acedReadPick(const AcApDocument &document, const AcEdAnswer &answer,
                                       const AcEdFilter &filter)
{
    const auto passing = [&filter](AcDbObjectId id) { return filter.passes(id) ? id : AcDbObjectId(); };
    if (answer.kind == AcEdAnswer::entity) {
        const bool hasPlace = answer.where != AcGePoint3d::kOrigin;
        return hasPlace ? AcEdPicked{passing(answer.picked), answer.where} : named(passing(answer.picked));
    }
    if (answer.kind == AcEdAnswer::text) {
        const QString typed = answer.typed.trimmed();
        if (typed.compare(QLatin1String("L"), Qt::CaseInsensitive) == 0 ||
            typed.compare(QLatin1String("Last"), Qt::CaseInsensitive) == 0)
            return named(passing(acedLastEntity(document)));
        if (const auto id = byHandle(*document.database(), typed))
            return named(passing(*id));
    }
    const auto point = acedAnswerPoint(answer, nullptr);
    if (!point)
        return std::nullopt;
    const AcGePoint3d world = acedTrans(*point, AcEdSpace::ucs, AcEdSpace::world);
    return AcEdPicked{acedPickAt(document, world, filter), world};
}

/// What (getvar "ERRNO") tells about a pick that found nothing.
enum PickError { kMissed = 7, kEmptyAnswer = 52 };

int acedEntSel(const QString &prompt, AcDbObjectId &entity, AcGePoint3d &pickPoint)
{
    const AcEdRules rules = acedTakeRules();
    const AcApDocument *const document = curDoc();
    if (!document)
        return RTERROR;
    AcEdPrompt shown;
    shown.kind = AcEdPromptKind::entity;
    shown.message = prompt.isEmpty() ? Host::tr("\n选择对象: ") : prompt;

    std::optional<AcEdPicked> picked;
    const AcEdFilter anything;
    const int result = acedPromptFor(shown, rules, [&](const AcEdAnswer &answer) {
        picked = acedReadPick(*document, answer, anything);
        return picked ? AcEdVerdict::accept() : AcEdVerdict::refuse(Host::tr("需要点、“L”或句柄。"));
    });
    if (result == RTNONE)
        acedSetIntVar(QStringLiteral("ERRNO"), kEmptyAnswer);
    if (result != RTNORM)
        return result == RTNONE ? int(RTERROR) : result;
    pickPoint = acedTrans(picked->where, AcEdSpace::world, AcEdSpace::ucs);
    if (picked->entity.isNull()) {
        acedSetIntVar(QStringLiteral("ERRNO"), kMissed);
        return RTERROR;
    }
    entity = picked->entity;
    return RTNORM;
}
