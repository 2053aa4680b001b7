#include "app/console/plot_verb.h"

#include "app/console/console_front_end.h"
#include "app/console/picture_verb.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edplot.h"
#include "host/aced/edspace.h"
#include "host/aced/edverbs.h"

#include <QJsonArray>

#include <algorithm>

namespace console
{

static std::int64_t tabOrder(AcDbObjectId blockRecord)
{
    const AcDbObjectPointer<AcDbBlockTableRecord> block(blockRecord, AcDb::kForRead);
    const AcDbObjectPointer<AcDbObject> layout(block ? block->layoutId() : AcDbObjectId(), AcDb::kForRead);
    if (!layout)
        return 0;
    // Behind the plot settings, which have a group 71 of another meaning in some files.
    const ResbufList &groups = layout->groups();
    const auto marker = std::ranges::find_if(groups, [](const resbuf &group) {
        return group.restype == 100 && group.text() == QLatin1String("AcDbLayout");
    });
    const resbuf *order = findGroup(groups, 71, std::size_t(marker - groups.begin()));
    return order ? order->integer() : 0;
}

static std::vector<AcDbObjectId> paperLayouts(const AcDbDatabase &database)
{
    std::vector<AcDbObjectId> layouts = acdbLayoutBlocks(database);
    std::erase(layouts, database.modelSpaceId());
    std::ranges::stable_sort(layouts, {}, tabOrder);
    return layouts;
}

static base::Result<std::vector<AcEdPlot>, QString> pagesOf(const AcApDocument &document,
                                                            const PlotOptions &options)
{
    const AcDbDatabase &database = *document.database();
    std::vector<AcDbObjectId> spaces{acedShownSpace(document)};
    if (options.all)
        spaces = paperLayouts(database);
    else if (!options.layout.isEmpty())
        spaces = {acedFindLayout(database, options.layout)};
    if (spaces.empty())
        return base::Failure{QStringLiteral("the drawing has no paper layouts")};
    const AcEdPaper *const paper = acedFindPaper(options.paper);
    if (!paper && !options.paper.isEmpty()) {
        QStringList names;
        for (const AcEdPaper &each : acedPapers())
            names.append(QLatin1String(each.name));
        return base::Failure{QStringLiteral("--paper %1: known sizes are %2")
                                 .arg(options.paper, names.join(QStringLiteral(", ")))};
    }
    std::vector<AcEdPlot> pages;
    for (const AcDbObjectId space : spaces) {
        if (space.isNull())
            return base::Failure{QStringLiteral("there is no layout \"%1\"").arg(options.layout)};
        AcEdPlot page = acedLayoutPlot(database, space);
        if (paper)
            acedUsePaper(page, *paper);
        page.monochrome = page.monochrome || options.monochrome;
        pages.push_back(page);
    }
    return pages;
}

/// Of all layouts those that have something to plot; what is left out is said.
static base::Result<std::vector<AcEdPlot>, QString>
plottable(const AcApDocument &document, const QString &file, std::vector<AcEdPlot> pages)
{
    QStringList reasons;
    std::erase_if(pages, [&](const AcEdPlot &page) {
        const auto checked = acedCheckPlot(document, page);
        if (!checked)
            reasons += QStringLiteral("%1: %2").arg(acdbLayoutName(page.space), checked.error());
        return !checked;
    });
    if (pages.empty())
        return base::Failure{reasons.join(QStringLiteral("; "))};
    for (const QString &reason : reasons)
        printMessageLine(QStringLiteral("%1: %2; this layout is left out").arg(file, reason));
    return pages;
}

static void printDone(const PlotOptions &options, const std::vector<AcEdPlot> &pages,
                      const acgi::PaintReport &report)
{
    printUndrawn(report);
    if (!options.json)
        return;
    QJsonArray list;
    for (const AcEdPlot &page : pages) {
        list.append(QJsonObject{{QStringLiteral("layout"), acdbLayoutName(page.space)},
                                {QStringLiteral("width"), page.pageWidth},
                                {QStringLiteral("height"), page.pageHeight}});
    }
    QJsonObject object{{QStringLiteral("file"), options.files.front()},
                       {QStringLiteral("plot"), options.output},
                       {QStringLiteral("pages"), list}};
    addToJson(object, report);
    addDamage(object, *curDoc());
    acedPrintResult(object);
}

int writePlot(const PlotOptions &options)
{
    const auto target = planOneOutput(options.files, options.output, options.overwrite);
    if (!target) {
        printMessageLine(target.error());
        return kTrouble;
    }
    const OpenDrawing drawing(options.files.front());
    if (!drawing.document())
        return kTrouble;
    drawing.tellDamage();
    auto pages = pagesOf(*drawing.document(), options);
    if (pages && options.all)
        pages = plottable(*drawing.document(), options.files.front(), *pages);
    if (!pages) {
        printMessageLine(QStringLiteral("%1: %2").arg(options.files.front(), pages.error()));
        return kTrouble;
    }
    const auto report = acedPlot(*drawing.document(), *pages, options.output);
    if (!report) {
        printMessageLine(QStringLiteral("%1: %2").arg(options.files.front(), report.error()));
        return kTrouble;
    }
    printDone(options, *pages, *report);
    return kDone;
}

} // namespace console
