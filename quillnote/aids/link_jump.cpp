#include "quillnote/aids/link_jump.h"

#include "quillnote/aids/link_pair.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/base/path_name.h"

#include <algorithm>

static AcApDocument *openDocumentAt(const QString &path)
{
    const std::vector<AcApDocument *> documents = acDocManager()->allDocuments();
    const auto isAt = [&](Qt::CaseSensitivity letters) {
        return std::ranges::find_if(documents, [&](const AcApDocument *document) {
            return pathOfDrawing(*document).compare(path, letters) == 0;
        });
    };
    auto found = isAt(Qt::CaseSensitive);
    if (found == documents.end())
        found = isAt(Qt::CaseInsensitive);
    return found == documents.end() ? nullptr : *found;
}

/// Activates the drawing of a partner, or opens it. Null when that did not come about, which is said.
static AcApDocument *bringUp(const QString &partnerPath)
{
    if (AcApDocument *const open = openDocumentAt(partnerPath)) {
        acDocManager()->activateDocument(open);
        return open;
    }
    const QString file = findPartnerDrawing(partnerPath, curDoc()->database()->folder());
    if (file.isEmpty()) {
        acutPrintf(QStringLiteral("\n没有找到热点链接另一端所在的图形：%1").arg(partnerPath));
        return nullptr;
    }
    if (file != base::fullPath(partnerPath))
        acutPrintf(QStringLiteral("\n%1 不在原处，改用 %2。").arg(partnerPath, file));
    if (acDocManager()->isBusy()) {
        acutPrintf(QStringLiteral("\nERROR To Open Doc!\n"));
        return nullptr;
    }
    if (AcApDocument *const open = openDocumentAt(file)) {
        acDocManager()->activateDocument(open);
    } else {
        const AcEdIntVarScope quiet(QStringLiteral("CMDECHO"), 0);
        acedCommandS({QStringLiteral("_OPEN"), file});
    }
    return curDoc() && curDoc()->fileName() == file ? curDoc() : nullptr;
}

/// A box around the link as it is seen in the view, with the margin of the settings.
static void zoomTo(AcApDocument &document, const MarkCorners &corners)
{
    const AcGeMatrix3d toView = document.view().getWorldToEyeTransform();
    AcDbExtents seen;
    for (const AcGePoint3d &corner : {corners.corner1, corners.corner2, corners.corner3, corners.corner4})
        seen.addPoint(toView * corner);
    const AcDbExtents window = targetZoomWindow(seen.minPoint(), seen.maxPoint());
    const AcGeMatrix3d toWorld = toView.inverse();
    acedRememberView(document);
    acedZoomWindow(document, toWorld * window.minPoint(), toWorld * window.maxPoint());
}

static void show(AcApDocument &document, AcDbObjectId id)
{
    const AcDbObjectPointer<QuillLinkObj> link(id, AcDb::kForRead);
    if (!link)
        return;
    const AcDbObjectId space = link->blockId();
    if (acedShownSpace(document) != space || document.database()->currentSpaceId() != space) {
        if (acedMakeSpaceCurrent(document, space) != Acad::eOk) {
            acutPrintf(QStringLiteral("\n热点链接的另一端不在任何布局中。"));
            return;
        }
    }
    zoomTo(document, link->corners());
}

void jumpToPartner(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillLinkObj> link(id, AcDb::kForRead);
    if (!link) {
        acutPrintf(QStringLiteral("\n所选对象不是热点链接。"));
        return;
    }
    AcApDocument *document = curDoc();
    if (link->linkKind != QuillLinkObj::sameDrawing) {
        if (link->partnerPath.isEmpty() || link->partnerHandle.isNull()) {
            acutPrintf(QStringLiteral("\n热点链接没有另一端。"));
            return;
        }
        document = bringUp(link->partnerPath);
        if (!document)
            return;
    }
    const FoundPartner partner = findPartner(*document->database(), *link);
    if (partner.link.isNull()) {
        const QString handle = QString::number(link->partnerHandle.value, 16).toUpper();
        acutPrintf(QStringLiteral("\n图形 %1 中没有热点链接的另一端（句柄 %2）。")
                       .arg(pathOfDrawing(*document), handle));
        return;
    }
    if (!partner.pointsBack)
        acutPrintf(QStringLiteral("\n注意：所到的热点链接并不指回本链接，本链接可能是复制品。"));
    show(*document, partner.link);
}
