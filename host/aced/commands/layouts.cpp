// Commands that switch between model space, layouts and the viewports of layouts, and named views.
#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/base/host_text.h"

#include <array>

namespace hostcommands
{

// Layouts ----------------------------------------------------------------------------------------------

static void listLayouts()
{
    for (const AcDbObjectId block : acdbLayoutBlocks(*acdbCurDwg()))
        acutPrintf(u'\n' + acdbLayoutName(block));
}

static void setLayout(const QString &name)
{
    if (acedSetVarText(QStringLiteral("CTAB"), name) != RTNORM)
        acedRefuse(Host::tr("没有名为“%1”的布局。").arg(name));
}

static void layout()
{
    const auto option =
        askKeyword(QStringLiteral("Set ?"), Host::tr("\n输入布局选项 [置为当前(S)/?] <置为当前>: "),
                   QStringLiteral("Set"));
    if (!option)
        return;
    if (*option == QLatin1String("?")) {
        listLayouts();
        return;
    }
    const QString present = acedTextVar(QStringLiteral("CTAB"));
    const auto name = askText(Host::tr("\n输入要置为当前的布局 <%1>: ").arg(present));
    if (name && !name->isEmpty())
        setLayout(*name);
}

static void model()
{
    setLayout(QStringLiteral("Model"));
}

// Viewports --------------------------------------------------------------------------------------------

static bool isSheetShown()
{
    const bool sheet = acedShownSpace(*curDoc()) != acdbCurDwg()->modelSpaceId();
    if (!sheet)
        acedRefuse(Host::tr("** 命令不能在“模型”选项卡中使用 **"));
    return sheet;
}

/// The first viewport that lets itself be entered.
static void toModelSpace()
{
    if (!isSheetShown() || !curDoc()->enteredViewport().sheet.isNull())
        return;
    for (const auto &[number, id] : acapSheetViewports(*acdbCurDwg(), acedShownSpace(*curDoc()))) {
        if (acedEnterViewport(*curDoc(), number) == Acad::eOk)
            return;
    }
    acedRefuse(Host::tr("布局中没有可以进入的视口。"));
}

static void toPaperSpace()
{
    if (isSheetShown())
        acedEnterViewport(*curDoc(), 1);
}

// Named views ------------------------------------------------------------------------------------------

static void listViews()
{
    for (const AcDbObjectId id : AcDbSymbolTable(*acdbCurDwg(), SymbolTable::view).records()) {
        const AcDbObjectPointer<AcDbSymbolTableRecord> view(id, AcDb::kForRead);
        if (view)
            acutPrintf(u'\n' + view->getName());
    }
}

static void restoreView(const QString &name)
{
    const auto view = acapNamedView(*acdbCurDwg(), name);
    if (!view) {
        acedRefuse(Host::tr("没有名为“%1”的视图。").arg(name));
        return;
    }
    if (view->paperSpace == acedIsModelSpaceCurrent(*curDoc())) {
        acedRefuse(Host::tr("视图“%1”属于另一个空间。").arg(name));
        return;
    }
    AcGeView &present = curDoc()->view();
    acedRememberView(*curDoc());
    present.centre = view->centre;
    present.height = present.heightFor(view->width, view->height);
    present.twist = view->twist;
}

static void view()
{
    const auto option = askKeyword(QStringLiteral("Restore ?"), Host::tr("\n输入选项 [恢复(R)/?] <恢复>: "),
                                   QStringLiteral("Restore"));
    if (!option)
        return;
    if (*option == QLatin1String("?")) {
        listViews();
        return;
    }
    const auto name = askText(Host::tr("\n输入要恢复的视图名称: "));
    if (name && !name->isEmpty())
        restoreView(*name);
}

std::span<const Entry> layoutCommands()
{
    static constexpr std::array entries{
        Entry{"LAYOUT", QT_TRANSLATE_NOOP("Host", "布局"), ACRX_CMD_NOUNDO, layout, "-LAYOUT"},
        Entry{"MODEL", QT_TRANSLATE_NOOP("Host", "模型空间"), ACRX_CMD_NOUNDO, model},
        Entry{"MSPACE", QT_TRANSLATE_NOOP("Host", "进入视口"), ACRX_CMD_NOUNDO, toModelSpace, "MS"},
        Entry{"PSPACE", QT_TRANSLATE_NOOP("Host", "离开视口"), ACRX_CMD_NOUNDO, toPaperSpace, "PS"},
        Entry{"VIEW", QT_TRANSLATE_NOOP("Host", "命名视图"), ACRX_CMD_NOUNDO, view, "V -VIEW"},
    };
    return entries;
}

} // namespace hostcommands
