#include "quillnote/aids/overlay_commands.h"

#include "quillnote/aids/overlay_copy.h"
#include "quillnote/aids/recolouring.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/dbxrefedit.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"
#include "host/aced/edselect.h"
#include "host/acui/acuifile.h"
#include "host/base/path_name.h"

#include <QFileInfo>

#include <algorithm>

// Painting ----------------------------------------------------------------------------------------

/// A stopped one leaves everything as it was.
static void recolour(const std::function<Recoloured(AcDbDatabase &)> &work)
{
    AcDbDatabase &database = *acdbCurDwg();
    Recoloured result;
    database.undo().attempt([&] {
        result = work(database);
        return !result.isStopped;
    });
    if (result.isStopped)
        acutPrintf(QStringLiteral("\n已停止，图形保持原样。"));
    else if (result.skipped > 0)
        acutPrintf(QStringLiteral("\n%1 个图元无法修改（所在图层可能已锁定），已跳过。").arg(result.skipped));
}

void QN3_whiteAll()
{
    recolour([](AcDbDatabase &database) {
        return paintEverything(database, settings::number(u"WhiteAllColor"), acDocManager()->progress());
    });
}

void QN3_restoreColorAll()
{
    recolour([](AcDbDatabase &database) { return restoreColors(database, acDocManager()->progress()); });
}

// Overlays ----------------------------------------------------------------------------------------

void QN8_setDiTuColor()
{
    int color = settings::number(u"DiTuColor");
    int typed = 0;
    acedInitGet(RSG_NONEG);
    const QString prompt = QStringLiteral("\n请输入叠图色彩号(1-254)[%1]：").arg(color);
    if (acedGetInt(prompt, typed) == RTNORM && typed >= 1 && typed <= 255)
        color = typed;
    settings::setNumber(u"DiTuColor", color);
}

static void tell(OverlayTrouble trouble)
{
    switch (trouble) {
    case OverlayTrouble::unreadable:
        acedRefuse(QStringLiteral("Open DWG Error."));
        break;
    case OverlayTrouble::notSaved:
        acedRefuse(QStringLiteral("临时存盘错误！"));
        break;
    case OverlayTrouble::stopped:
        acutPrintf(QStringLiteral("\n已停止，图形保持原样。"));
        break;
    }
}

static AcDbObjectId blockOfOverlay(const QString &file)
{
    const std::vector<Overlay> overlays = overlaysOf(*acdbCurDwg());
    const auto found = std::ranges::find_if(overlays, [&](const Overlay &overlay) {
        return QFileInfo(overlay.file).fileName() == QFileInfo(file).fileName();
    });
    return found == overlays.end() ? AcDbObjectId() : found->block;
}

void QN8_whiteAttach()
{
    QString source;
    if (acedGetFileD(QStringLiteral("请选择一个DWG文件用于插入叠图"), QStringLiteral("*.dwg"),
                     QStringLiteral("DWG;DXF"), kAcUiOpenFile, source) != RTNORM) {
        acedAlert(QStringLiteral("未选中文件。"));
        return;
    }
    removeUnusedOverlays();
    const int color = settings::number(u"DiTuColor");
    const auto copy = makeOverlayCopy(source, color);
    if (!copy) {
        tell(copy.error());
        return;
    }
    acedCommandS({QStringLiteral("UCS"), QStringLiteral("W")});
    acedCommandS({QStringLiteral("-XREF"), QStringLiteral("A"), copy->file, copy->base, 1.0, 1.0, 0.0});
    acedCommandS({QStringLiteral("REGEN")});
    AcDbDatabase &database = *acdbCurDwg();
    if (const AcDbObjectId block = blockOfOverlay(copy->file); !block.isNull())
        rememberOverlaySource(block, base::fullPath(source), color);
    if (curDoc()->isNamedDrawing())
        keepOverlaysFor(database, curDoc()->fileName());
}

/// Two opposite corners, current UCS.
static bool askRectangle(AcGePoint3d &first, AcGePoint3d &second)
{
    if (acedGetPoint(nullptr, QStringLiteral("\n指定范围的一角: "), first) != RTNORM) {
        acutPrintf(QStringLiteral("未获取点，放弃!"));
        return false;
    }
    if (acedGetCorner(first, QStringLiteral("\n指定范围的另一角: "), second) != RTNORM) {
        acutPrintf(QStringLiteral("未获取对角点，放弃!"));
        return false;
    }
    return true;
}

void QN8_xclip()
{
    AcEdSelectionSet overlays;
    const ResbufList filter{{0, QStringLiteral("INSERT")}, {2, kOverlayPrefix.toString() + u'*'}};
    if (acedSSGet(QStringLiteral("X"), nullptr, nullptr, filter, overlays) != RTNORM) {
        acutPrintf(QStringLiteral("\n本图内还没有叠图。"));
        return;
    }
    AcGePoint3d first;
    AcGePoint3d second;
    if (!askRectangle(first, second))
        return;
    for (const AcDbObjectId overlay : overlays) {
        bool isClipped = false;
        if (const AcDbObjectPointer<AcDbEntity> reference(overlay, AcDb::kForRead); reference)
            isClipped = reference->extensionDictionary().isValid();
        std::vector<AcEdToken> tokens{QStringLiteral("XCLIP"), overlay, QString(), QStringLiteral("N")};
        if (isClipped)
            tokens.emplace_back(QStringLiteral("Y"));
        for (const AcEdToken &token : {AcEdToken(QStringLiteral("R")), AcEdToken(first), AcEdToken(second)})
            tokens.push_back(token);
        acedCommandTokens(tokens);
    }
}

// Copies that are gone ----------------------------------------------------------------------------

static std::vector<Overlay> goneOverlays(const AcDbDatabase &database)
{
    std::vector<Overlay> overlays = overlaysOf(database);
    std::erase_if(overlays, [&](const Overlay &overlay) {
        return !acdbFindDrawing(overlay.file, database.folder()).isEmpty();
    });
    return overlays;
}

void sayGoneOverlays()
{
    if (!curDoc())
        return;
    for (const Overlay &overlay : goneOverlays(*acdbCurDwg()))
        acutPrintf(
            QStringLiteral("\n叠图 %1 的临时文件已不存在，原图为 %2；可用命令 QN8_overlayRenew 重新生成。")
                .arg(overlay.name, overlay.source.isEmpty() ? QStringLiteral("?") : overlay.source));
}

static void renew(const Overlay &overlay)
{
    const QString source =
        overlay.source.isEmpty() ? QString() : acdbFindDrawing(overlay.source, acdbCurDwg()->folder());
    if (source.isEmpty()) {
        acutPrintf(QStringLiteral("\n叠图 %1 的原图 %2 没有找到。").arg(overlay.name, overlay.source));
        return;
    }
    const bool hasColor = overlay.colorIndex >= 1 && overlay.colorIndex <= 255;
    const auto copy = makeOverlayCopy(source, hasColor ? overlay.colorIndex : settings::number(u"DiTuColor"));
    if (!copy) {
        tell(copy.error());
        return;
    }
    AcDbDatabase &database = *acdbCurDwg();
    acdbSetXrefPath(overlay.block, copy->file);
    database.xrefs().reload(overlay.block);
    if (const AcDbXref *const xref = database.xrefs().find(overlay.block); xref)
        acdbTakeXrefRecords(database, *xref);
    acutPrintf(QStringLiteral("\n叠图 %1 已由 %2 重新生成。").arg(overlay.name, source));
}

void QN8_overlayRenew()
{
    const std::vector<Overlay> gone = goneOverlays(*acdbCurDwg());
    if (gone.empty())
        acutPrintf(QStringLiteral("\n本图没有缺少文件的叠图。"));
    for (const Overlay &overlay : gone)
        renew(overlay);
    if (curDoc()->isNamedDrawing())
        keepOverlaysFor(*acdbCurDwg(), curDoc()->fileName());
}
