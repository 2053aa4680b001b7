// Commands that put the drawing on paper or into a picture: PLOT, -PLOT, PNGOUT, -PNGOUT.
#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edcommands.h"
#include "host/aced/edpicture.h"
#include "host/aced/edplot.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/base/format_number.h"
#include "host/base/host_text.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>

namespace hostcommands
{

/// People see why and begin again; a script ends there.
static bool refuse(const QString &reason)
{
    acedRefuse(reason);
    acedEditor()->requestCancel();
    return false;
}

static std::optional<double> readNumber(const QString &text)
{
    const QByteArray digits = text.trimmed().toLatin1();
    return base::parseReal({digits.constData(), std::size_t(digits.size())});
}

static QString withEnding(const QString &path, const QString &ending)
{
    return QFileInfo(path).suffix().isEmpty() ? path + ending : path;
}

static void tellUndrawn(const acgi::PaintReport &report)
{
    for (const auto &[kind, count] : report.undrawn)
        acutPrintf(Host::tr("\n未能完整绘制: %1 (%2 个)").arg(kind).arg(count));
}

// PLOT: the questions ----------------------------------------------------------------------------------

namespace
{

struct PlotAnswers {
    AcEdPlot plot;
    double unit = 1.0; ///< Millimetres of a paper unit.
    QString file;
};

} // namespace

static bool askLayout(PlotAnswers &answers)
{
    const QString present = acedCurrentLayoutName(*curDoc());
    const auto name = askText(Host::tr("\n输入布局名 <%1>: ").arg(present));
    if (!name)
        return false;
    const AcDbObjectId space = acedFindLayout(*acdbCurDwg(), name->isEmpty() ? present : *name);
    if (space.isNull())
        return refuse(Host::tr("没有名为“%1”的布局。").arg(*name));
    answers.plot = acedLayoutPlot(*acdbCurDwg(), space);
    return true;
}

static bool askDevice(PlotAnswers &)
{
    const auto device = askText(Host::tr("\n输入输出设备的名称 <PDF>: "));
    if (!device)
        return false;
    const bool known = device->isEmpty() || device->compare(QLatin1String("PDF"), Qt::CaseInsensitive) == 0;
    return known || refuse(Host::tr("没有设备“%1”；可用的设备: PDF。").arg(*device));
}

static QString sizeName(const AcEdPlot &plot)
{
    const double shorter = std::min(plot.pageWidth, plot.pageHeight);
    const double longer = std::max(plot.pageWidth, plot.pageHeight);
    for (const AcEdPaper &paper : acedPapers()) {
        if (std::abs(paper.width - shorter) < 0.1 && std::abs(paper.height - longer) < 0.1)
            return QString::fromLatin1(paper.name);
    }
    return QStringLiteral("%1x%2").arg(numberText(plot.pageWidth), numberText(plot.pageHeight));
}

static void listPapers()
{
    for (const AcEdPaper &paper : acedPapers())
        acutPrintf(QStringLiteral("\n%1  %2 x %3")
                       .arg(QLatin1String(paper.name))
                       .arg(paper.width)
                       .arg(paper.height));
}

static bool usePaper(AcEdPlot &plot, const QString &name)
{
    if (const AcEdPaper *const paper = acedFindPaper(name)) {
        acedUsePaper(plot, *paper);
        return true;
    }
    const QStringList sides = name.toLower().split(u'x');
    const auto width = readNumber(sides.value(0));
    const auto height = readNumber(sides.value(1));
    if (sides.size() != 2 || !width || !height || !(*width > 0) || !(*height > 0))
        return false;
    acedUsePaper(plot, {"", std::min(*width, *height), std::max(*width, *height)});
    return true;
}

static bool askPaper(PlotAnswers &answers)
{
    while (!acedEditor()->isCancelled()) {
        const auto name = askText(
            Host::tr("\n输入图纸尺寸 (名称，或毫米“宽x高”) 或 [?] <%1>: ").arg(sizeName(answers.plot)));
        if (!name)
            return false;
        if (name->isEmpty())
            return true;
        if (*name == QLatin1String("?"))
            listPapers();
        else
            return usePaper(answers.plot, *name) || refuse(Host::tr("没有图纸尺寸“%1”。").arg(*name));
    }
    return false;
}

static bool askUnits(PlotAnswers &answers)
{
    const auto unit =
        askKeyword(QStringLiteral("Inches Millimeters"),
                   Host::tr("\n输入图纸单位 [英寸(I)/毫米(M)] <毫米>: "), QStringLiteral("Millimeters"));
    if (unit && *unit == QLatin1String("Inches"))
        answers.unit = 25.4;
    return unit.has_value();
}

static bool askOrientation(PlotAnswers &answers)
{
    AcEdPlot &plot = answers.plot;
    const bool landscape = plot.pageWidth > plot.pageHeight;
    const auto wanted = askKeyword(QStringLiteral("Portrait Landscape"),
                                   Host::tr("\n输入图形方向 [纵向(P)/横向(L)] <%1>: ")
                                       .arg(landscape ? Host::tr("横向") : Host::tr("纵向")),
                                   landscape ? QStringLiteral("Landscape") : QStringLiteral("Portrait"));
    if (!wanted)
        return false;
    if ((*wanted == QLatin1String("Landscape")) != landscape) {
        std::swap(plot.pageWidth, plot.pageHeight);
        plot.margins = {plot.margins.bottom, plot.margins.left, plot.margins.top, plot.margins.right};
    }
    return true;
}

static bool askWindow(AcEdPlot &plot)
{
    const auto first = askPoint(nullptr, Host::tr("\n输入窗口的左下角点: "));
    AcGePoint3d second;
    if (!first || acedGetCorner(*first, Host::tr("\n输入窗口的右上角点: "), second) != RTNORM)
        return false;
    plot.window = AcDbExtents();
    plot.window.addPoint(toWorld(*first));
    plot.window.addPoint(toWorld(second));
    return true;
}

static bool askViewName(AcEdPlot &plot)
{
    const auto name = askText(Host::tr("\n输入视图名: "));
    if (!name)
        return false;
    plot.viewName = *name;
    return acapNamedView(*acdbCurDwg(), *name) || refuse(Host::tr("没有名为“%1”的视图。").arg(*name));
}

namespace
{

struct AreaName {
    AcEdPlotArea area;
    const char *keyword;
    const char *shown;
};

constexpr std::array kAreaNames{
    AreaName{AcEdPlotArea::display, "Display", QT_TRANSLATE_NOOP("Host", "显示")},
    AreaName{AcEdPlotArea::extents, "Extents", QT_TRANSLATE_NOOP("Host", "范围")},
    AreaName{AcEdPlotArea::layout, "Layout", QT_TRANSLATE_NOOP("Host", "布局")},
    AreaName{AcEdPlotArea::limits, "LImits", QT_TRANSLATE_NOOP("Host", "图形界限")},
    AreaName{AcEdPlotArea::view, "View", QT_TRANSLATE_NOOP("Host", "视图")},
    AreaName{AcEdPlotArea::window, "Window", QT_TRANSLATE_NOOP("Host", "窗口")},
};

} // namespace

static bool askArea(PlotAnswers &answers)
{
    AcEdPlot &plot = answers.plot;
    const auto present = std::ranges::find(kAreaNames, plot.area, &AreaName::area);
    const auto keyword =
        askKeyword(QStringLiteral("Display Extents Layout LImits View Window"),
                   Host::tr("\n输入打印区域 [显示(D)/范围(E)/布局(L)/图形界限(LI)/视图(V)/窗口(W)] <%1>: ")
                       .arg(Host::tr(present->shown)),
                   QLatin1String(present->keyword));
    if (!keyword)
        return false;
    plot.area = std::ranges::find_if(kAreaNames, [&](const AreaName &each) {
                    return *keyword == QLatin1String(each.keyword);
                })->area;
    if (plot.area == AcEdPlotArea::layout && plot.space == acdbCurDwg()->modelSpaceId())
        return refuse(Host::tr("模型空间没有布局区域。"));
    if (plot.area == AcEdPlotArea::window)
        return askWindow(plot);
    return plot.area != AcEdPlotArea::view || askViewName(plot);
}

/// "1=100", "1:100", "0.01": units on paper and units of the drawing.
static std::optional<double> readScale(QString text)
{
    const QStringList parts = text.replace(u'=', u':').split(u':');
    const auto paper = readNumber(parts.value(0));
    const auto drawing = parts.size() > 1 ? readNumber(parts[1]) : std::optional(1.0);
    if (parts.size() > 2 || !paper || !drawing || !(*paper > 0) || !(*drawing > 0))
        return std::nullopt;
    return *paper / *drawing;
}

static bool askScale(PlotAnswers &answers)
{
    AcEdPlot &plot = answers.plot;
    const QString present =
        plot.scale ? QStringLiteral("1=%1").arg(numberText(answers.unit / *plot.scale)) : Host::tr("布满");
    const auto text =
        askText(Host::tr("\n输入打印比例 (打印单位=图形单位) 或 [布满(F)] <%1>: ").arg(present));
    if (!text)
        return false;
    if (text->isEmpty())
        return true;
    plot.scale.reset();
    if (QStringLiteral("fit").startsWith(text->toLower()))
        return true;
    const auto scale = readScale(*text);
    if (!scale)
        return refuse(Host::tr("“%1”不是比例，例如 1=100。").arg(*text));
    plot.scale = *scale * answers.unit;
    return true;
}

static bool askOffset(PlotAnswers &answers)
{
    AcEdPlot &plot = answers.plot;
    const QString present = plot.centred
                                ? Host::tr("居中")
                                : QStringLiteral("%1,%2").arg(numberText(plot.offset.x / answers.unit),
                                                              numberText(plot.offset.y / answers.unit));
    const auto text = askText(Host::tr("\n输入打印偏移 (x,y) 或 [居中(C)] <%1>: ").arg(present));
    if (!text)
        return false;
    if (text->isEmpty())
        return true;
    plot.centred = QStringLiteral("center").startsWith(text->toLower());
    if (plot.centred)
        return true;
    const QStringList parts = text->split(u',');
    const auto x = readNumber(parts.value(0));
    const auto y = readNumber(parts.value(1));
    if (parts.size() != 2 || !x || !y)
        return refuse(Host::tr("“%1”不是偏移，例如 5,5。").arg(*text));
    plot.offset = {*x * answers.unit, *y * answers.unit};
    return true;
}

static bool askLineWeights(PlotAnswers &answers)
{
    const auto yes = askYes(Host::tr("\n是否打印线宽?"), answers.plot.lineWeights);
    answers.plot.lineWeights = yes.value_or(true);
    return yes.has_value();
}

static bool askStyle(PlotAnswers &answers)
{
    const auto name =
        askText(Host::tr("\n输入打印样式表名称 (monochrome.ctb 或 . 表示彩色) <%1>: ")
                    .arg(answers.plot.monochrome ? QStringLiteral("monochrome.ctb") : QStringLiteral(".")));
    if (!name)
        return false;
    if (name->isEmpty())
        return true;
    answers.plot.monochrome = name->startsWith(QLatin1String("monochrome"), Qt::CaseInsensitive);
    return answers.plot.monochrome || *name == QLatin1String(".") ||
           refuse(Host::tr("没有打印样式表“%1”。").arg(*name));
}

/// The drawing's name with another ending.
static QString proposedFile(const QString &ending)
{
    const AcApDocument &document = *curDoc();
    const QFileInfo drawing(document.isNamedDrawing() ? document.fileName() : document.docTitle());
    return drawing.path() + u'/' + drawing.completeBaseName() + ending;
}

static bool askPlotFile(PlotAnswers &answers)
{
    const QString present = proposedFile(QStringLiteral(".pdf"));
    const auto file =
        askFile(AcEdPromptKind::fileToSave, Host::tr("\n输入文件名 <%1>: ").arg(present), present);
    if (!file)
        return false;
    answers.file = file->path.isEmpty() ? present : withEnding(file->path, QStringLiteral(".pdf"));
    if (file->mayReplace || !QFileInfo::exists(answers.file) || acedIntVar(QStringLiteral("EXPERT")) >= 2)
        return true;
    return askYes(Host::tr("\n已有名为 %1 的文件。替换它吗?").arg(answers.file), false).value_or(false);
}

static bool askProceed(PlotAnswers &)
{
    return askYes(Host::tr("\n是否继续打印?"), true).value_or(false);
}

static void plot()
{
    PlotAnswers answers;
    for (bool (*ask)(PlotAnswers &) :
         {askLayout, askDevice, askPaper, askUnits, askOrientation, askArea, askScale, askOffset,
          askLineWeights, askStyle, askPlotFile, askProceed}) {
        if (!ask(answers))
            return;
    }
    const auto report = acedPlot(*curDoc(), {answers.plot}, answers.file);
    if (!report) {
        refuse(withReason(Host::tr("不能打印: %1"), report.error()));
        return;
    }
    tellUndrawn(*report);
    acutPrintf(Host::tr("\n已打印到 %1。").arg(answers.file));
}

// PNGOUT -----------------------------------------------------------------------------------------------

/// The part of the raster where the entities lie.
static QRect rasterArea(const AcEdSelectionSet &entities, const QRect &raster)
{
    const AcGeMatrix3d toPixel = acedGiViewport(curDoc()->view(), false).worldToPixel();
    AcDbExtents pixels;
    for (const AcDbObjectId id : entities) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        AcDbExtents box;
        if (!entity || entity->getGeomExtents(box) != Acad::eOk || !box.isValid())
            continue;
        box.transformBy(toPixel);
        pixels.addExt(box);
    }
    if (!pixels.isValid())
        return {};
    const QRectF area(QPointF(pixels.minPoint().x, pixels.minPoint().y),
                      QPointF(pixels.maxPoint().x, pixels.maxPoint().y));
    return area.intersected(raster).toAlignedRect().adjusted(-1, -1, 1, 1).intersected(raster);
}

static void exportPng(const QString &path)
{
    if (acedIntVar(QStringLiteral("CMDECHO")) != 0)
        acutPrintf(Host::tr("\n选择对象或 <全部对象和视口>: "));
    const AcEdSelectionSet selected = askSelection();
    acgi::PaintReport report;
    QImage image = acedViewImage(*curDoc(), acedScreenOptions(*curDoc()), &report);
    if (!selected.empty()) {
        const QRect area = rasterArea(selected, image.rect());
        if (area.isEmpty()) {
            refuse(Host::tr("选定的对象不在视图中。"));
            return;
        }
        image = image.copy(area);
    }
    if (const auto written = acedWritePng(image, withEnding(path, QStringLiteral(".png"))); !written)
        refuse(withReason(Host::tr("不能输出: %1"), written.error()));
    tellUndrawn(report);
}

static void pngOut()
{
    const auto file =
        askFile(AcEdPromptKind::fileToSave, Host::tr("\n输入文件名: "), proposedFile(QStringLiteral(".png")));
    if (file && !file->path.isEmpty())
        exportPng(file->path);
}

/// Without a file dialog.
static void quietPngOut()
{
    const auto path = askText(Host::tr("\n输入文件名: "));
    if (path && !path->isEmpty())
        exportPng(*path);
}

std::span<const Entry> plotCommands()
{
    static constexpr std::array entries{
        Entry{"PLOT", QT_TRANSLATE_NOOP("Host", "打印"), ACRX_CMD_NOUNDO, plot, "-PLOT"},
        Entry{"PNGOUT", QT_TRANSLATE_NOOP("Host", "输出图片"), ACRX_CMD_NOUNDO, pngOut},
        Entry{"-PNGOUT", QT_TRANSLATE_NOOP("Host", "输出图片"), ACRX_CMD_NOUNDO, quietPngOut},
    };
    return entries;
}

} // namespace hostcommands
