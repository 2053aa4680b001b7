// What the host's commands share: questions, coordinates, what they remember of a document.
#include "host/aced/commands/support.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/edprompt.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/base/host_text.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace hostcommands
{

DocumentMemory &DocumentMemory::of(AcApDocument *document)
{
    return document->attachments().get<DocumentMemory>();
}

// Questions --------------------------------------------------------------------------------------------

static QString withoutQuotes(QString text)
{
    text = text.trimmed();
    if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"'))
        text = text.mid(1, text.size() - 2);
    return text;
}

std::optional<QString> askText(const QString &prompt)
{
    QString text;
    const int result = acedGetString(true, prompt, text);
    if (result != RTNORM && result != RTNONE)
        return std::nullopt;
    return withoutQuotes(text);
}

std::optional<AskedFile> askFile(AcEdPromptKind kind, const QString &message, const QString &proposed)
{
    acedTakeRules(); // Paths know neither rules nor keywords.
    AcEdPrompt prompt;
    prompt.kind = kind;
    prompt.message = message;
    prompt.path = proposed;
    prompt.allowsBlanks = true;
    const auto answer = acedNextAnswer(prompt);
    if (!answer || answer->kind != AcEdAnswer::text) {
        acedEditor()->requestCancel();
        return std::nullopt;
    }
    return AskedFile{withoutQuotes(answer->typed), answer->mayReplace, answer->furtherFiles};
}

std::optional<QString> askKeyword(const QString &keywords, const QString &prompt, const QString &fallback)
{
    acedInitGet(0, keywords);
    QString keyword;
    switch (acedGetKword(prompt, keyword)) {
    case RTNORM:
    case RTKWORD:
        return keyword;
    case RTNONE:
        return fallback;
    default:
        return std::nullopt;
    }
}

std::optional<bool> askYes(const QString &prompt, bool fallback)
{
    const QString choice = fallback ? Host::tr("是") : Host::tr("否");
    const auto answer =
        askKeyword(QStringLiteral("Yes No"), Host::tr("%1 [是(Yes)/否(No)] <%2>: ").arg(prompt, choice),
                   fallback ? QStringLiteral("Yes") : QStringLiteral("No"));
    if (!answer)
        return std::nullopt;
    return *answer == QLatin1String("Yes");
}

std::optional<AcGePoint3d> askPoint(const AcGePoint3d *base, const QString &prompt)
{
    AcGePoint3d point;
    if (acedGetPoint(base, prompt, point) != RTNORM)
        return std::nullopt;
    return point;
}

// Coordinates ------------------------------------------------------------------------------------------

AcGePoint3d toWorld(const AcGePoint3d &point)
{
    return acedTrans(point, AcEdSpace::ucs, AcEdSpace::world);
}

AcGeVector3d toWorld(const AcGeVector3d &vector)
{
    return acedTrans(vector, AcEdSpace::ucs, AcEdSpace::world);
}

AcGeVector3d ucsNormal()
{
    return toWorld(AcGeVector3d::kZAxis).normal();
}

// Drawing ----------------------------------------------------------------------------------------------

static void takeCurrentProperties(AcDbEntity &entity, const AcDbDatabase &database)
{
    entity.setLayer(acedTextVar(QStringLiteral("CLAYER"), QStringLiteral("0")));
    const QString linetype = database.headerText("$CELTYPE", QStringLiteral("BYLAYER"));
    if (linetype.compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) != 0)
        entity.setLinetype(linetype);
    const int color = int(database.headerInteger("$CECOLOR", 256));
    if (color != 256)
        entity.setColorIndex(color);
    const double scale = database.headerReal("$CELTSCALE", 1.0);
    if (scale != 1.0)
        entity.setLinetypeScale(scale);
}

AcDbObjectId drawEntity(const QByteArray &dxfName, ResbufList ownGroups)
{
    AcDbDatabase &database = *acdbCurDwg();
    auto entity = acdbNewEntity(dxfName, std::move(ownGroups));
    takeCurrentProperties(*entity, database);
    if (database.version() <= DrawingVersion::r12)
        std::erase_if(entity->editGroups(), [](const resbuf &group) { return group.restype == 100; });

    AcDbObjectId added;
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    const Acad::ErrorStatus status =
        space ? space->appendAcDbEntity(added, entity.get()) : space.openStatus();
    if (status != Acad::eOk) {
        acedRefuse(Host::tr("不能绘制: %1").arg(reasonText(status)));
        return {};
    }
    AcDbObjectPointer<AcDbEntity>(entity.release()).close();
    return added;
}

AcGePoint3d inPlane(const AcGePoint3d &ucsPoint)
{
    return AcGeMatrix3d::planeToWorld(ucsNormal()).inverse() * toWorld(ucsPoint);
}

void appendNormal(ResbufList &groups)
{
    const AcGeVector3d normal = ucsNormal();
    if (!(normal - AcGeVector3d::kZAxis).isZeroLength())
        groups.emplace_back(210, AcGePoint3d(normal.x, normal.y, normal.z));
}

double rotationInPlane(double angle)
{
    const AcGeVector3d direction = toWorld(AcGeVector3d(std::cos(angle), std::sin(angle), 0.0));
    const AcGeVector3d flat = AcGeMatrix3d::planeToWorld(ucsNormal()).inverse() * direction;
    const double degrees = std::atan2(flat.y, flat.x) * 180.0 / kGePi;
    return degrees < 0.0 ? degrees + 360.0 : degrees;
}

// Entities ---------------------------------------------------------------------------------------------

AcEdSelectionSet askSelection()
{
    AcEdSelectionSet selected;
    if (acedSSGet({}, nullptr, nullptr, {}, selected) != RTNORM)
        selected.clear();
    return selected;
}

void Refusals::note(Acad::ErrorStatus status)
{
    if (status == Acad::eOnLockedLayer)
        ++m_locked;
    else if (status != Acad::eOk)
        ++m_others;
    else
        ++m_done;
}

void Refusals::report() const
{
    QStringList reasons;
    if (m_locked > 0)
        reasons += Host::tr("%1 个对象不能改动（所在图层已锁定）。").arg(m_locked);
    if (m_others > 0)
        reasons += Host::tr("%1 个对象不允许这样改动。").arg(m_others);
    if (reasons.isEmpty())
        return;
    if (m_done == 0)
        acedRefuse(reasons.join(u'\n'));
    else
        acutPrintf(u'\n' + reasons.join(u'\n'));
}

QString withReason(QString message, const QString &reason)
{
    const auto isChinese = [](QStringView text) {
        return std::ranges::any_of(text, [](QChar c) { return c.script() == QChar::Script_Han; });
    };
    static const QRegularExpression kPlace(QStringLiteral("\\s*%1"));
    if (isChinese(message) && !isChinese(reason))
        message.replace(kPlace, QStringLiteral("\n%1"));
    return message.arg(reason);
}

QString reasonText(Acad::ErrorStatus status)
{
    switch (status) {
    case Acad::eOnLockedLayer:
        return Host::tr("所在图层已锁定");
    case Acad::eInvalidInput:
    case Acad::eOutOfRange:
    case Acad::eDegenerateGeometry:
        return Host::tr("几何数据无效");
    case Acad::eNotApplicable:
        return Host::tr("不适用于这种对象");
    default:
        return acadErrorStatusText(status); // Nothing that a person can bring about.
    }
}

bool inPieces(const AcEdSelectionSet &entities, const std::function<void(const AcEdSelectionSet &)> &work)
{
    constexpr std::size_t kPiece = 500;
    base::ProgressTeller progress(acDocManager()->progress(),
                                  Host::tr("正在处理 %1 个对象").arg(entities.size()));
    const bool isDone = acdbCurDwg()->undo().attempt([&] {
        for (std::size_t done = 0; done < entities.size(); done += kPiece) {
            if (done > 0 && !progress.goesOn(double(done) / double(entities.size())))
                return false;
            const auto begin = entities.begin() + std::ptrdiff_t(done);
            work({begin, begin + std::ptrdiff_t(std::min(kPiece, entities.size() - done))});
        }
        return true;
    });
    if (!isDone)
        acutPrintf(Host::tr("\n已停止，图形没有改动。"));
    return isDone;
}

void transform(const AcEdSelectionSet &entities, const AcGeMatrix3d &matrix, Refusals &refused)
{
    for (const AcDbObjectId id : entities) {
        AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
        refused.note(entity ? entity->transformBy(matrix) : entity.openStatus());
    }
}

void dropUnchangeable(AcEdSelectionSet &entities)
{
    Refusals refused;
    std::erase_if(entities, [&refused](AcDbObjectId id) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        const Acad::ErrorStatus status = entity ? id.database()->mayChange(*entity) : entity.openStatus();
        refused.note(status);
        return status != Acad::eOk;
    });
    refused.report();
}

void transformAll(const AcEdSelectionSet &entities, const AcGeMatrix3d &matrix)
{
    Refusals refused;
    if (inPieces(entities, [&](const AcEdSelectionSet &piece) { transform(piece, matrix, refused); }))
        refused.report();
}

// Messages ---------------------------------------------------------------------------------------------

QString numberText(double number)
{
    return QString::number(number, 'g', 10);
}

QString pointText(const AcGePoint3d &point)
{
    return QStringLiteral("X = %1  Y = %2  Z = %3")
        .arg(numberText(point.x), numberText(point.y), numberText(point.z));
}

} // namespace hostcommands
