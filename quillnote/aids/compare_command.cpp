#include "quillnote/aids/compare_command.h"

#include "quillnote/aids/difference_marks.h"
#include "quillnote/aids/difference_picture.h"

#include "host/acap/docfile.h"
#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/acui/acuifile.h"

#include <QFileInfo>

static void list(const std::vector<DifferingPlace> &places)
{
    int number = 0;
    for (const DifferingPlace &place : places) {
        const AcGePoint3d &low = place.box.minPoint();
        const AcGePoint3d &high = place.box.maxPoint();
        acutPrintf(QStringLiteral("\n%1: (%2, %3) - (%4, %5)  删除 %6，新增 %7")
                       .arg(++number)
                       .arg(low.x)
                       .arg(low.y)
                       .arg(high.x)
                       .arg(high.y)
                       .arg(place.removed)
                       .arg(place.added));
    }
    acutPrintf(QStringLiteral("\n共 %1 处不同。").arg(places.size()));
}

static void writePicture(const ComparedSpace &old, const ComparedSpace &now,
                         const DrawingDifference &difference)
{
    QString path;
    const QString proposed =
        QFileInfo(curDoc()->fileName()).completeBaseName() + QStringLiteral("-overlay.png");
    if (acedGetFileD(QStringLiteral("保存比较图"), proposed, QStringLiteral("png;pdf"), kAcUiSaveFile,
                     path) != RTNORM)
        return;
    if (const auto written = writeDifferencePicture(old, now, difference, path); written)
        acutPrintf(QStringLiteral("\n已写出 %1。").arg(path));
    else
        acedRefuse(written.error());
}

static void offer(const ComparedSpace &old, const ComparedSpace &now, const DrawingDifference &difference)
{
    for (;;) {
        QString choice;
        acedInitGet(0, QStringLiteral("Marks Picture eXit"));
        const int answer = acedGetKword(
            QStringLiteral("\n[加评图标签(Marks)/输出图片(Picture)/退出(eXit)] <退出>: "), choice);
        if (answer != RTNORM || choice == u"eXit")
            return;
        if (choice == u"Picture")
            writePicture(old, now, difference);
        else
            acutPrintf(
                QStringLiteral("\n已加 %1 个评图标签。").arg(markPlaces(*now.database, difference.places)));
    }
}

void QN8_overlayCompare()
{
    QString path;
    if (acedGetFileD(QStringLiteral("请选择用于比较的旧版图形"), {}, QStringLiteral("DWG;DXF"), kAcUiOpenFile,
                     path) != RTNORM)
        return;
    double tolerance = 0.0;
    acedInitGet(RSG_NONEG);
    if (acedGetReal(QStringLiteral("\n坐标相差多少以内算相同 <0>: "), tolerance) == RTCAN)
        return;
    const auto read = acapReadDrawing(path);
    if (!read) {
        acedRefuse(read.error());
        return;
    }
    AcDbDatabase &database = *acdbCurDwg();
    const ComparedSpace now{&database, database.currentSpaceId()};
    const ComparedSpace old{read->get(), acedFindLayout(**read, acdbLayoutName(now.space))};
    const DrawingDifference difference = compareSpaces(old, now, tolerance, acDocManager()->progress());
    if (difference.isStopped) {
        acutPrintf(QStringLiteral("\n已停止。"));
    } else if (!difference.any()) {
        acutPrintf(QStringLiteral("\n两图相同。"));
    } else {
        list(difference.places);
        offer(old, now, difference);
    }
}
