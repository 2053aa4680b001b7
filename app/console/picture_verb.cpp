#include "app/console/picture_verb.h"

#include "app/console/console_front_end.h"
#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edpicture.h"
#include "host/aced/edspace.h"
#include "host/aced/edverbs.h"
#include "host/aced/edview.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace console
{

// Reports ----------------------------------------------------------------------------------------

void printUndrawn(const acgi::PaintReport &report)
{
    for (const auto &[kind, count] : report.undrawn)
        printMessageLine(QStringLiteral("not drawn, or only in part: %1 (%2)").arg(kind).arg(count));
}

void addToJson(QJsonObject &object, const acgi::PaintReport &report)
{
    QJsonObject undrawn;
    for (const auto &[kind, count] : report.undrawn)
        undrawn.insert(kind, qint64(count));
    object.insert(QStringLiteral("drawn"), qint64(report.painted));
    object.insert(QStringLiteral("undrawn"), undrawn);
}

// Options ----------------------------------------------------------------------------------------

namespace
{

constexpr int kSmallestSide = 16;
constexpr int kLargestSide = 20000;
constexpr double kMargin = 0.02; ///< Around everything, as a share of the picture.

/// What the options come to.
struct Request {
    QSize size{1600, 1000};
    QColor background = Qt::white;
    AcDbObjectId space;
    AcDbExtents box;
    double twist = 0.0;
};

} // namespace

static base::Result<QSize, QString> readSize(const QString &text)
{
    if (text.isEmpty())
        return QSize(1600, 1000);
    const QStringList sides = text.toLower().split(u'x');
    bool isWidth = false;
    bool isHeight = false;
    const QSize size(sides.value(0).toInt(&isWidth), sides.value(1).toInt(&isHeight));
    const auto fits = [](int side) { return side >= kSmallestSide && side <= kLargestSide; };
    if (sides.size() != 2 || !isWidth || !isHeight || !fits(size.width()) || !fits(size.height()))
        return base::Failure{QStringLiteral("--size %1: a size is WxH, each from %2 to %3")
                                 .arg(text)
                                 .arg(kSmallestSide)
                                 .arg(kLargestSide)};
    return size;
}

static base::Result<QColor, QString> readBackground(const QString &text)
{
    const QColor color(text.isEmpty() ? QStringLiteral("white") : text);
    if (!color.isValid())
        return base::Failure{QStringLiteral("--background %1: use white, black or #rrggbb").arg(text)};
    return color;
}

static base::Result<AcDbExtents, QString> readWindow(const QString &text)
{
    const QStringList parts = text.split(u',');
    std::array<double, 4> numbers{};
    bool isGood = parts.size() == 4;
    for (qsizetype i = 0; isGood && i < 4; ++i) {
        numbers[std::size_t(i)] = parts[i].toDouble(&isGood);
        isGood = isGood && std::isfinite(numbers[std::size_t(i)]);
    }
    const auto [x1, y1, x2, y2] = numbers;
    if (!isGood || x1 == x2 || y1 == y2)
        return base::Failure{
            QStringLiteral("--window %1: two corners with an area between them are needed: x1,y1,x2,y2")
                .arg(text)};
    return AcDbExtents({std::min(x1, x2), std::min(y1, y2), 0}, {std::max(x1, x2), std::max(y1, y2), 0});
}

/// What a module's option names, when one was given.
static base::Result<std::optional<AcEdNamedArea>, QString> namedArea(AcApDocument &document,
                                                                     const PictureOptions &options)
{
    for (const AcEdAreaOption &candidate : acedAreaOptions()) {
        const auto given = options.areas.find(candidate.option.name);
        if (given == options.areas.end())
            continue;
        const auto area = candidate.find(document, given->second);
        if (!area)
            return base::Failure{area.error()};
        return std::optional(*area);
    }
    return std::optional<AcEdNamedArea>();
}

/// What the drawing was saved with, for a space without extents: it is empty, or holds only lines without
/// end.
static AcDbExtents savedView(const AcDbDatabase &database, AcDbObjectId space)
{
    AcGeView view;
    acapRestoreView(database, space, view);
    const double half = view.height > 0.0 ? view.height / 2.0 : 0.5;
    const AcGeVector3d corner(half, half, 0.0);
    return AcDbExtents(view.centre - corner, view.centre + corner);
}

/// Everything, as a picture of this size shows it.
static AcDbExtents shownExtents(AcDbDatabase &database, const Request &request)
{
    AcGiViewport view;
    view.pixelWidth = request.size.width();
    view.pixelHeight = request.size.height();
    view.paperSpace = request.space != database.modelSpaceId();
    return acedShownExtents(database, request.space, view);
}

static base::Result<void, QString> findArea(Request &request, AcApDocument &document,
                                            const PictureOptions &options)
{
    AcDbDatabase &database = *document.database();
    const auto named = namedArea(document, options);
    if (!named)
        return base::Failure{named.error()};
    request.space = *named ? (*named)->space : acedShownSpace(document);
    if (!options.layout.isEmpty())
        request.space = acedFindLayout(database, options.layout);
    if (request.space.isNull())
        return base::Failure{QStringLiteral("there is no layout \"%1\"").arg(options.layout)};
    if (*named)
        request.box = (*named)->box;
    if (!options.window.isEmpty()) {
        const auto window = readWindow(options.window);
        if (!window)
            return base::Failure{window.error()};
        request.box = *window;
    }
    if (!request.box.isValid())
        request.box = shownExtents(database, request);
    if (!request.box.isValid())
        request.box = savedView(database, request.space);
    return {};
}

static base::Result<Request, QString> readRequest(AcApDocument &document, const PictureOptions &options)
{
    Request request;
    const auto size = readSize(options.size);
    const auto background = readBackground(options.background);
    if (!size)
        return base::Failure{size.error()};
    if (!background)
        return base::Failure{background.error()};
    request.size = *size;
    request.background = *background;
    if (const auto found = findArea(request, document, options); !found)
        return base::Failure{found.error()};
    return request;
}

// The picture ------------------------------------------------------------------------------------

/// A window is shown as asked for; everything gets some air around it.
static AcGiViewport viewOf(const Request &request, bool withMargin)
{
    AcGiViewport view;
    view.height = 1.0; // Of what has no size.
    view.pixelWidth = request.size.width();
    view.pixelHeight = request.size.height();
    view.fit(request.box, withMargin ? kMargin : 0.0);
    return view;
}

static void printDone(const PictureOptions &options, const Request &request, const acgi::PaintReport &report)
{
    printUndrawn(report);
    if (!options.json)
        return;
    QJsonObject object{{QStringLiteral("file"), options.files.front()},
                       {QStringLiteral("picture"), options.output},
                       {QStringLiteral("layout"), acdbLayoutName(request.space)},
                       {QStringLiteral("width"), request.size.width()},
                       {QStringLiteral("height"), request.size.height()}};
    addToJson(object, report);
    addDamage(object, *curDoc());
    acedPrintResult(object);
}

static base::Result<void, QString> drawPicture(AcApDocument &document, const PictureOptions &options)
{
    const auto request = readRequest(document, options);
    if (!request)
        return base::Failure{request.error()};
    AcGiViewport view = viewOf(*request, options.window.isEmpty());
    view.paperSpace = request->space != document.database()->modelSpaceId();
    acgi::PaintOptions paint;
    paint.background = request->background;
    paint.lineWeights = options.lineWeights;
    acgi::PaintReport report;
    const QImage image = acedPicture(*document.database(), request->space, view, paint, &report);
    if (report.painted == 0)
        printMessageLine(QStringLiteral("%1: nothing to show").arg(acdbLayoutName(request->space)));
    if (auto written = acedWritePng(image, options.output); !written)
        return written;
    printDone(options, *request, report);
    return {};
}

int writePicture(const PictureOptions &options)
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
    if (const auto drawn = drawPicture(*drawing.document(), options); !drawn) {
        printMessageLine(QStringLiteral("%1: %2").arg(options.files.front(), drawn.error()));
        return kTrouble;
    }
    return kDone;
}

} // namespace console
