#include "quillnote/aids/link_commands.h"

#include "quillnote/aids/link_jump.h"
#include "quillnote/aids/link_pair.h"
#include "quillnote/aids/links/link_set.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edselect.h"
#include "host/aced/edsysvar.h"

#include <optional>

static ResbufList linkFilter()
{
    return {{0, QString::fromLatin1(kLinkDxfName)}};
}

// Drawing -----------------------------------------------------------------------------------------

/// World coordinates; `from` is where a line to the first corner starts.
static std::optional<MarkCorners> askArea(const AcGePoint3d *from)
{
    AcGePoint3d first;
    AcGePoint3d second;
    if (acedGetPoint(from, QStringLiteral("\n指定矩形一角: "), first) != RTNORM) {
        acutPrintf(QStringLiteral("未获取点，放弃!"));
        return std::nullopt;
    }
    // The user may go to another drawing while the command waits, but not within one rectangle.
    const AcApDocument *const document = curDoc();
    if (acedGetCorner(first, QStringLiteral("\n指定矩形另一角: "), second) != RTNORM ||
        curDoc() != document) {
        acutPrintf(QStringLiteral("未获取对角点，放弃!"));
        return std::nullopt;
    }
    for (AcGePoint3d *const point : {&first, &second}) {
        *point = acedTrans(*point, AcEdSpace::ucs, AcEdSpace::world);
        point->z = 0.0;
    }
    return cornersInView(first, second, curDoc()->view().getWorldToEyeTransform());
}

/// Null when the drawing refuses it, which is said.
static AcDbObjectId addLink(AcApDocument &document, const MarkCorners &corners)
{
    const AcDbObjectId link = appendLink(document, corners);
    if (link.isNull())
        acedRefuse(QStringLiteral("本图不能加入热点链接。"));
    else if (!document.isNamedDrawing())
        acutPrintf(QStringLiteral("\n最好请先命名并保存本文件后，再执行本命令。"));
    return link;
}

static bool drawSource()
{
    const auto corners = askArea(nullptr);
    if (!corners)
        return false;
    pendingLink().source = {curDoc(), addLink(*curDoc(), *corners)};
    return pendingLink().isWaiting();
}

/// The middle of the source, for the drawing that it stands in alone.
static std::optional<AcGePoint3d> middleOfSource()
{
    const LinkEnd &source = pendingLink().source;
    const AcDbObjectPointer<QuillLinkObj> link(source.link, AcDb::kForRead);
    if (!link || source.document != curDoc())
        return std::nullopt;
    return acedTrans(link->centre(), AcEdSpace::world, AcEdSpace::ucs);
}

static void drawTarget()
{
    acutPrintf(QStringLiteral("\n请再指定矩形区域表达链接目标>>"));
    const std::optional<AcGePoint3d> from = middleOfSource();
    const auto corners = askArea(from ? &*from : nullptr);
    if (!corners)
        return;
    // While the command waited, the drawing of the source may have been closed.
    if (!pendingLink().isWaiting()) {
        acedRefuse(QStringLiteral("链接源所在的图形已经关闭，请重新绘制热点链接。"));
        return;
    }
    AcDbUndo &undo = curDoc()->database()->undo();
    const AcDbUndoGroup step(*curDoc()->database(), QStringLiteral("qn8_drawlink"));
    Acad::ErrorStatus joined = Acad::eOk;
    undo.attempt([&] {
        const LinkEnd target{curDoc(), addLink(*curDoc(), *corners)};
        if (target.link.isNull())
            return false;
        joined = joinLinks(pendingLink().source, target);
        if (joined == Acad::eOk)
            pendingLink().reset();
        return joined == Acad::eOk;
    });
    if (joined != Acad::eOk)
        acedRefuse(QStringLiteral("链接源无法修改：%1").arg(acadErrorStatusText(joined)));
}

void qn8_drawlink()
{
    if (!curDoc()) {
        acedRefuse(QStringLiteral("没有打开的图形。"));
        return;
    }
    if (pendingLink().isWaiting() || drawSource())
        drawTarget();
}

// Jumping -----------------------------------------------------------------------------------------

static AcDbObjectId chosenLink()
{
    AcEdSelectionSet chosen;
    if (acedSSGet(QStringLiteral("I"), nullptr, nullptr, linkFilter(), chosen) == RTNORM)
        return chosen.front();
    const int answer =
        acedSSGetPrompt(QStringLiteral(":S"), QStringLiteral("\n请选择一个热点链接>>"), linkFilter(), chosen);
    if (answer == RTNORM)
        return chosen.front();
    AcDbObjectId picked;
    AcGePoint3d where;
    if (answer == RTCAN || acedEntSel(QStringLiteral("\n请选择一个热点链接： "), picked, where) != RTNORM) {
        acutPrintf(QStringLiteral("\n未选择。"));
        return {};
    }
    return picked;
}

void qn8_LinkDblClick()
{
    if (!curDoc())
        return;
    const AcEdIntVarScope moving(QStringLiteral("VTENABLE"), 7);
    if (const AcDbObjectId link = chosenLink(); !link.isNull())
        jumpToPartner(link);
}

// Sets of links -----------------------------------------------------------------------------------

static AcEdSelectionSet askLinks(const QString &prompt)
{
    AcEdSelectionSet links;
    acutPrintf(prompt);
    acedSSGet(QString(), nullptr, nullptr, linkFilter(), links);
    return links;
}

void QN8_LinksHide()
{
    const AcEdSelectionSet links = askLinks(QStringLiteral("\n隐藏热点链接，请选择>>"));
    saySkippedLinks(setLinksDisplayMode(links, -1), links.size());
}

void QN8_LinksDel()
{
    const AcEdSelectionSet links = askLinks(QStringLiteral("\n删除热点链接，请选择>>"));
    int skipped = 0;
    for (const AcDbObjectId id : links) {
        const AcDbObjectPointer<QuillLinkObj> link(id, AcDb::kForWrite);
        skipped += link && link->erase() == Acad::eOk ? 0 : 1;
    }
    saySkippedLinks(skipped, links.size());
}
