#include "quillnote/reports/mark_view_picture.h"

#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acap/docman.h"
#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"

#include <QDir>
#include <QFileInfo>

MarkViewPictures::MarkViewPictures() : m_last(readLastMarkNumber(*acdbCurDwg())) {}

QString MarkViewPictures::nextPath()
{
    const QString name = acedTextVar(QStringLiteral("DWGNAME"));
    if (name.isEmpty())
        return {};
    const QString prefix = acedTextVar(QStringLiteral("DWGPREFIX"));
    const QString folder = prefix + QStringLiteral("PNG/");
    QString file;
    do {
        file = withoutHash(QFileInfo(name).completeBaseName() + u'-' + QString::number(++m_last) +
                           QStringLiteral(".png"));
    } while (QFileInfo::exists(folder + file));
    const bool hasFolder = QFileInfo(folder).isDir() || QDir().mkdir(folder);
    return (hasFolder ? folder : prefix) + file;
}

/// On a sheet the view goes to the mark once more when the command has ended.
static void queueZoomToTarget(const QuillnoteObj3 &mark)
{
    acedSetIntVar(QStringLiteral("CVPORT"), 1);
    const AcDbExtents window = targetZoomWindow(mark.targetCorner1, mark.targetCorner2);
    acedEditor()->queueExpression(QString::asprintf("_ZOOM W %f,%f %f,%f ", window.minPoint().x,
                                                    window.minPoint().y, window.maxPoint().x,
                                                    window.maxPoint().y));
}

static void showMark(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    AcDbExtents extents;
    if (!mark || mark->getGeomExtents(extents) != Acad::eOk)
        return;
    acedMakeSpaceCurrent(*curDoc(), mark->blockId());
    if (acedIntVar(QStringLiteral("TILEMODE"), 1) == 0)
        queueZoomToTarget(*mark);
    zoomToArea(extents, mark->blockId());
}

QString MarkViewPictures::take(AcDbObjectId mark)
{
    QString path = nextPath();
    if (path.isEmpty())
        return path;
    showMark(mark);
    acedSetIntVar(QStringLiteral("CMDECHO"), 0);
    // An empty selection exports everything in the view.
    acedCommandS({QStringLiteral("_PNGOUT"), path, QString()});
    acedSetIntVar(QStringLiteral("CMDECHO"), 1);
    return path;
}
