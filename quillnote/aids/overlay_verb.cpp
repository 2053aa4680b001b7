#include "quillnote/aids/overlay_verb.h"

#include "quillnote/aids/difference_marks.h"
#include "quillnote/aids/difference_picture.h"
#include "quillnote/snapshot/commands/other_drawing.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edspace.h"
#include "host/base/path_name.h"

#include <QJsonArray>

static const QString kTolerance = QStringLiteral("--tolerance");
static const QString kLayout = QStringLiteral("--layout");
static const QString kMarks = QStringLiteral("--marks");
static const QString kOverwrite = QStringLiteral("-f");

static int fail(const QString &reason)
{
    acutPrintf(u'\n' + reason);
    return 2;
}

static QString numberText(double value)
{
    return QString::number(value, 'g', 10);
}

static void printPlace(const DifferingPlace &place, int number, const AcEdVerbCall &call)
{
    const AcGePoint3d &low = place.box.minPoint();
    const AcGePoint3d &high = place.box.maxPoint();
    if (call.json) {
        acedPrintResult(QJsonObject{{QStringLiteral("file"), call.more.front()},
                                    {QStringLiteral("place"), number},
                                    {QStringLiteral("box"), QJsonArray{low.x, low.y, high.x, high.y}},
                                    {QStringLiteral("removed"), qint64(place.removed)},
                                    {QStringLiteral("added"), qint64(place.added)}});
        return;
    }
    acedPrintResult(QStringLiteral("%1: %2,%3 to %4,%5: %6 removed, %7 added\n")
                        .arg(number)
                        .arg(numberText(low.x), numberText(low.y), numberText(high.x), numberText(high.y))
                        .arg(place.removed)
                        .arg(place.added));
}

/// Marks the places in the new drawing and writes that elsewhere.
static int writeMarked(const OtherDrawing &now, const DrawingDifference &difference, const AcEdVerbCall &call)
{
    acDocManager()->activateDocument(now.document());
    markPlaces(*now.database(), difference.places);
    const auto saved = acDocManager()->saveDocument(now.document(), call.options.at(kMarks), true,
                                                    AcApOverwriteChanged::yes);
    return saved ? 0 : fail(saved.error());
}

static int overlay(const AcEdVerbCall &call)
{
    if (call.more.size() != 2)
        return fail(QStringLiteral("overlay takes three files: OLD NEW OUT"));
    const QString picture = call.more.back();
    if (!picture.endsWith(u".png", Qt::CaseInsensitive) && !picture.endsWith(u".pdf", Qt::CaseInsensitive))
        return fail(QStringLiteral("%1: the name of the picture ends in .png or .pdf").arg(picture));
    if (base::pathExists(picture) && (!call.has(kOverwrite) || !base::isPlainFile(picture)))
        return fail(QStringLiteral("%1: exists already; -f overwrites a file").arg(picture));
    bool isNumber = true;
    const double tolerance = call.has(kTolerance) ? call.options.at(kTolerance).toDouble(&isNumber) : 0.0;
    if (!isNumber || !(tolerance >= 0.0))
        return fail(QStringLiteral("--tolerance takes a number of drawing units, 0 or more"));

    AcDbDatabase &oldDrawing = *acdbCurDwg();
    const OtherDrawing now(call.more.front());
    if (!now.database())
        return 2;
    const QString layout = call.has(kLayout) ? call.options.at(kLayout) : QStringLiteral("Model");
    const ComparedSpace oldSpace{&oldDrawing, acedFindLayout(oldDrawing, layout)};
    const ComparedSpace newSpace{now.database(), acedFindLayout(*now.database(), layout)};
    if (oldSpace.space.isNull() && newSpace.space.isNull())
        return fail(QStringLiteral("neither drawing has a layout “%1”").arg(layout));

    const DrawingDifference difference =
        compareSpaces(oldSpace, newSpace, tolerance, acDocManager()->progress());
    if (difference.isStopped)
        return fail(QStringLiteral("stopped"));
    int number = 0;
    for (const DifferingPlace &place : difference.places)
        printPlace(place, ++number, call);
    if (const auto written = writeDifferencePicture(oldSpace, newSpace, difference, picture); !written)
        return fail(written.error());
    if (call.has(kMarks) && writeMarked(now, difference, call) != 0)
        return 2;
    return difference.any() ? 1 : 0;
}

AcEdVerb overlayVerb()
{
    AcEdVerb verb;
    verb.name = QStringLiteral("overlay");
    verb.help =
        QStringLiteral("Lay two drawings on each other: red is only in the old one, green only in the new "
                       "one, grey in both");
    verb.more = QStringLiteral("NEW OUT.png|OUT.pdf");
    verb.options = {
        {kTolerance, QStringLiteral("UNITS"),
         QStringLiteral("Points that are no further apart are the same.")},
        {kLayout, QStringLiteral("NAME"), QStringLiteral("Compare this layout instead of model space.")},
        {kMarks, QStringLiteral("FILE"),
         QStringLiteral("Write NEW with a mark around each place that differs.")},
        {kOverwrite, {}, QStringLiteral("Overwrite what exists")}};
    verb.run = overlay;
    return verb;
}
