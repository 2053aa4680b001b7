#include "quillnote/aids/link_pair.h"

#include "quillnote/aids/links/link_set.h"
#include "quillnote/authoring/mark_layer.h"
#include "quillnote/authoring/new_mark.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dbxref.h"
#include "host/base/path_name.h"

#include <QDir>

#include <algorithm>

PendingLink &pendingLink()
{
    static PendingLink pending;
    return pending;
}

void PendingLink::forget(const AcDbDatabase &database)
{
    if (source.link.database() == &database)
        reset();
}

QString pathOfDrawing(const AcApDocument &document)
{
    return document.isNamedDrawing() ? document.fileName() : document.docTitle();
}

// Joining -----------------------------------------------------------------------------------------

AcDbObjectId appendLink(AcApDocument &document, const MarkCorners &corners)
{
    AcDbDatabase &database = *document.database();
    const AcAxDocLock lock(&document);
    auto link = std::make_unique<QuillLinkObj>();
    link->setCorners(corners);
    link->xDirection = viewRight();
    putOnMarkLayer(database, *link);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, link.get()) != Acad::eOk)
        return {};
    link.release()->close();
    return id;
}

static void pointAt(QuillLinkObj &link, const LinkEnd &partner, bool isSameDrawing)
{
    link.linkKind = isSameDrawing ? QuillLinkObj::sameDrawing : QuillLinkObj::otherDrawing;
    link.partnerId = isSameDrawing ? partner.link : AcDbObjectId();
    link.partnerHandle = partner.link.handle();
    link.partnerPath = pathOfDrawing(*partner.document);
    link.partnerName = link.partnerPath;
}

Acad::ErrorStatus joinLinks(const LinkEnd &source, const LinkEnd &target)
{
    const AcAxDocLock sourceLock(source.document);
    const AcAxDocLock targetLock(target.document);
    const QString label = QStringLiteral("qn8_drawlink");
    const AcDbUndoGroup sourceStep(*source.document->database(), label);
    const AcDbUndoGroup targetStep(*target.document->database(), label);
    const AcDbObjectPointer<QuillLinkObj> first(source.link, AcDb::kForWrite);
    if (!first)
        return first.openStatus();
    const AcDbObjectPointer<QuillLinkObj> second(target.link, AcDb::kForWrite);
    if (!second)
        return second.openStatus();
    const bool isSameDrawing = source.document == target.document;
    pointAt(*first, target, isSameDrawing);
    pointAt(*second, source, isSameDrawing);
    first->linkRole = QuillLinkObj::source;
    second->linkRole = QuillLinkObj::target;
    return Acad::eOk;
}

// Finding -----------------------------------------------------------------------------------------

QString findPartnerDrawing(const QString &path, const QString &own)
{
    if (QDir::isAbsolutePath(path) && base::isPlainFile(path))
        return base::fullPath(path);
    const QString found = acdbFindDrawing(path, own);
    return base::isPlainFile(found) ? found : QString();
}

// Handles are numbers that every drawing uses, so the one that is found may be anything.
FoundPartner findPartner(const AcDbDatabase &where, const QuillLinkObj &link)
{
    const bool isSameDrawing = link.linkKind == QuillLinkObj::sameDrawing;
    const auto pointsBack = [&](AcDbObjectId id) {
        const AcDbObjectPointer<QuillLinkObj> other(id, AcDb::kForRead);
        return other && id != link.objectId() && other->linkKind == link.linkKind &&
               other->partnerHandle == link.handle();
    };
    const AcDbObjectId named = isSameDrawing ? link.partnerId : where.getAcDbObjectId(link.partnerHandle);
    const AcDbObjectPointer<QuillLinkObj> partner(named, AcDb::kForRead);
    if (partner && pointsBack(named))
        return {named, true};
    const std::vector<AcDbObjectId> links = linkIds(where);
    if (const auto found = std::ranges::find_if(links, pointsBack); found != links.end())
        return {*found, true};
    return {partner ? named : AcDbObjectId(), false};
}
