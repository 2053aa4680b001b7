#include "quillnote/authoring/append_mark.h"

#include "quillnote/authoring/append_state.h"
#include "quillnote/authoring/mark_layer.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edsysvar.h"

static bool isPaperSpaceCurrent()
{
    return acedIntVar(QStringLiteral("TILEMODE"), 1) == 0 && acedIntVar(QStringLiteral("CVPORT"), 2) == 1;
}

void fillMarkFromSettings(QuillnoteObj3 &mark)
{
    const StartUpSettings &start = startUpSettings();
    mark.textHeight = isPaperSpaceCurrent() ? start.textHeightPS : start.textHeight;
    mark.autoTextHeight = start.autoTargetTextHeight;
    mark.normal = AcGeVector3d::kZAxis;
    // The drawing appears turned by the twist, so what the user sees as "to the right" is turned back.
    mark.xDirection =
        AcGeVector3d::kXAxis.rotateBy(-acedRealVar(QStringLiteral("VIEWTWIST")), AcGeVector3d::kZAxis);
    mark.color1 = static_cast<std::uint16_t>(start.color1);
    mark.color2 = static_cast<std::uint16_t>(start.color2);
    mark.chPwMD5 = settings::text(u"chPwMD5").left(QuillnoteObj3::kPasswordHashLength);
}

static void putOnLayer(AcDbDatabase &database, QuillnoteObj3 &mark)
{
    const bool ownLayer = settings::number(u"useLayer") == 1;
    if (ownLayer)
        ensureMarkLayer(database);
    const QString layer = ownLayer ? markLayerName() : QStringLiteral("0");
    if (database.tableRecord(SymbolTable::layer, layer).isValid())
        mark.setLayer(layer);
}

AcDbObjectId appendMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    const ImportingScope ours;
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, mark.get()) != Acad::eOk)
        return {};
    mark.release()->close();
    return id;
}

AcDbObjectId appendNewMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    putOnLayer(database, *mark);
    settleMark(*mark, database);
    const AcDbObjectId id = appendMark(database, std::move(mark));
    if (!id.isNull())
        appendState().lastCreatedMark = id;
    return id;
}

void keepMarkNumber(AcDbDatabase &database, std::uint16_t number)
{
    if (const Acad::ErrorStatus refused = writeLastMarkNumber(database, number); refused != Acad::eOk)
        acutPrintf(QStringLiteral("\n无法在图中保存评图标签编号：%1").arg(acadErrorStatusText(refused)));
}
