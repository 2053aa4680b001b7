#include "host/aced/edsysvarvalues.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/edprompt.h"
#include "host/aced/edspace.h"
#include "host/aced/edview.h"
#include "host/os/clock.h"

#include <QDir>
#include <QFileInfo>

namespace sysvar
{

static Value integer(std::int64_t number)
{
    return number;
}

static std::int64_t asInteger(const Value &value)
{
    return resbuf(0, value).integer();
}

static AcGePoint3d asPoint(const Value &value)
{
    return resbuf(0, value).point();
}

// Spaces and views --------------------------------------------------------------------------------

Value tileMode(AcApDocument *document)
{
    return integer(acedShownSpace(*document) == document->database()->modelSpaceId() ? 1 : 0);
}

bool setTileMode(AcApDocument *document, const Value &value)
{
    const AcDbDatabase &database = *document->database();
    const bool model = asInteger(value) != 0;
    if (model == (acedShownSpace(*document) == database.modelSpaceId()))
        return true;
    return acedMakeSpaceCurrent(*document, model ? database.modelSpaceId() : database.paperSpaceId()) ==
           Acad::eOk;
}

Value currentTab(AcApDocument *document)
{
    return acedCurrentLayoutName(*document);
}

bool setCurrentTab(AcApDocument *document, const Value &value)
{
    const AcDbObjectId layout = acedFindLayout(*document->database(), resbuf(0, value).text());
    return !layout.isNull() && acedMakeSpaceCurrent(*document, layout) == Acad::eOk;
}

Value currentViewport(AcApDocument *document)
{
    return integer(acedCurrentViewport(*document));
}

bool setCurrentViewport(AcApDocument *document, const Value &value)
{
    return acedEnterViewport(*document, int(asInteger(value))) == Acad::eOk;
}

Value viewSize(AcApDocument *document)
{
    return document->view().height;
}

Value viewCentre(AcApDocument *document)
{
    return acedTrans(document->view().centre, AcEdSpace::world, AcEdSpace::ucs);
}

Value viewTwist(AcApDocument *document)
{
    return document->view().twist;
}

Value viewDirection(AcApDocument *)
{
    const AcGeVector3d up = acedTrans(AcGeVector3d::kZAxis, AcEdSpace::world, AcEdSpace::ucs);
    return AcGePoint3d(up.x, up.y, up.z);
}

Value viewTarget(AcApDocument *)
{
    return acedTrans(AcGePoint3d::kOrigin, AcEdSpace::world, AcEdSpace::ucs);
}

Value screenSize(AcApDocument *document)
{
    return AcGePoint2d(document->view().pixelWidth, document->view().pixelHeight);
}

/// "$EXTMIN" of model space, "$PEXTMIN" of the sheets.
static QByteArray spaceVariable(const AcApDocument &document, const QByteArray &name)
{
    return (acedIsModelSpaceCurrent(document) ? "$" : "$P") + name;
}

/// What the file says holds until the drawing changes; many writers leave it empty or wrong way round.
static AcDbExtents extents(const AcApDocument &document)
{
    const AcDbDatabase &database = *document.database();
    const QByteArray lowName = spaceVariable(document, "EXTMIN");
    const QByteArray highName = spaceVariable(document, "EXTMAX");
    const AcGePoint3d low = database.headerPoint(lowName);
    const AcGePoint3d high = database.headerPoint(highName);
    const bool usable = database.headerVariable(lowName) && database.headerVariable(highName) &&
                        low.x < high.x && low.y < high.y && low.x > -1e19 && high.x < 1e19;
    return usable && !database.hasChanges() ? AcDbExtents(low, high) : acedCurrentExtents(document);
}

Value extentsMin(AcApDocument *document)
{
    const AcDbExtents found = extents(*document);
    return found.isValid() ? found.minPoint() : AcGePoint3d(1e20, 1e20, 1e20);
}

Value extentsMax(AcApDocument *document)
{
    const AcDbExtents found = extents(*document);
    return found.isValid() ? found.maxPoint() : AcGePoint3d(-1e20, -1e20, -1e20);
}

static Value limits(const AcApDocument &document, const QByteArray &name, AcGePoint3d fallback)
{
    const AcGePoint3d point = document.database()->headerPoint(spaceVariable(document, name), fallback);
    return AcGePoint2d(point.x, point.y);
}

static bool setLimits(AcApDocument *document, const QByteArray &name, const Value &value)
{
    const AcGePoint3d point = asPoint(value);
    document->database()->setHeaderVariable(spaceVariable(*document, name),
                                            {{10, AcGePoint2d(point.x, point.y)}});
    return true;
}

Value limitsMin(AcApDocument *document)
{
    return limits(*document, "LIMMIN", {0, 0, 0});
}

bool setLimitsMin(AcApDocument *document, const Value &value)
{
    return setLimits(document, "LIMMIN", value);
}

Value limitsMax(AcApDocument *document)
{
    return limits(*document, "LIMMAX", {420, 297, 0});
}

bool setLimitsMax(AcApDocument *document, const Value &value)
{
    return setLimits(document, "LIMMAX", value);
}

// Coordinate systems ------------------------------------------------------------------------------

Value ucsOrigin(AcApDocument *document)
{
    return document->ucs().origin;
}

static Value direction(const AcGeVector3d &axis)
{
    return AcGePoint3d(axis.x, axis.y, axis.z);
}

Value ucsXDirection(AcApDocument *document)
{
    return direction(document->ucs().xAxis);
}

Value ucsYDirection(AcApDocument *document)
{
    return direction(document->ucs().yAxis);
}

Value isWorldUcs(AcApDocument *document)
{
    const AcApUcs &ucs = document->ucs();
    const bool world = ucs.origin.isEqualTo({}) && (ucs.xAxis - AcGeVector3d::kXAxis).isZeroLength() &&
                       (ucs.yAxis - AcGeVector3d::kYAxis).isZeroLength();
    return integer(world);
}

Value lastPoint(AcApDocument *)
{
    return acedLastPoint();
}

bool setLastPoint(AcApDocument *, const Value &value)
{
    acedSetLastPoint(asPoint(value));
    return true;
}

// Clock, file, commands ---------------------------------------------------------------------------

Value julianDate(AcApDocument *)
{
    return os::julianNow();
}

/// 20240506.07080900: the date, then hours, minutes, seconds and hundredths.
Value calendarDate(AcApDocument *)
{
    const QDateTime now = os::localNow();
    return now.toString(QStringLiteral("yyyyMMdd.HHmmsszzz")).chopped(1).toDouble();
}

Value drawingName(AcApDocument *document)
{
    return document->docTitle();
}

Value drawingFolder(AcApDocument *document)
{
    const QString folder =
        document->isNamedDrawing() ? QFileInfo(document->fileName()).absolutePath() : QDir::currentPath();
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

Value isTitled(AcApDocument *document)
{
    return integer(document->isNamedDrawing());
}

Value isModified(AcApDocument *document)
{
    return integer(document->isModified());
}

Value commandNames(AcApDocument *)
{
    return acedEditor()->activeCommands();
}

Value commandActive(AcApDocument *)
{
    return integer(acedEditor()->activeCommands().isEmpty() ? 0 : 1);
}

/// Undo is on (1) for every command (4); 8 while a group is open.
Value undoState(AcApDocument *document)
{
    return integer(5 + (document->database()->undo().isOpen() ? 8 : 0));
}

Value loginName(AcApDocument *)
{
    return qEnvironmentVariable("USER", QStringLiteral("user"));
}

Value temporaryFolder(AcApDocument *)
{
    return QString(QDir::tempPath() + u'/');
}

// Current properties ------------------------------------------------------------------------------

Value currentColor(AcApDocument *document)
{
    const std::int64_t color = document->database()->headerInteger("$CECOLOR", 256);
    if (color == 256)
        return QStringLiteral("BYLAYER");
    return color == 0 ? QStringLiteral("BYBLOCK") : QString::number(color);
}

bool setCurrentColor(AcApDocument *document, const Value &value)
{
    const QString text = resbuf(0, value).text().trimmed();
    bool isNumber = false;
    std::int64_t color = text.toInt(&isNumber);
    if (text.compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) == 0)
        color = 256;
    else if (text.compare(QLatin1String("BYBLOCK"), Qt::CaseInsensitive) == 0)
        color = 0;
    else if (!isNumber || color < 1 || color > 255)
        return false;
    document->database()->setHeaderVariable("$CECOLOR", {{62, color}});
    return true;
}

bool isUsableLayer(const AcDbDatabase &database, const Value &value)
{
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(
        database.tableRecord(SymbolTable::layer, resbuf(0, value).text()), AcDb::kForRead);
    return layer && !layer->isFrozen();
}

bool isLinetype(const AcDbDatabase &database, const Value &value)
{
    const QString name = resbuf(0, value).text();
    return name.compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) == 0 ||
           name.compare(QLatin1String("BYBLOCK"), Qt::CaseInsensitive) == 0 ||
           !database.tableRecord(SymbolTable::linetype, name).isNull();
}

bool isTextStyle(const AcDbDatabase &database, const Value &value)
{
    return !database.tableRecord(SymbolTable::textStyle, resbuf(0, value).text()).isNull();
}

} // namespace sysvar
