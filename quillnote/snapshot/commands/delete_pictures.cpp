#include "quillnote/snapshot/commands/delete_pictures.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/entity/mark_record.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"

/// Returns the bytes that were released; 0 also for a mark that cannot be written. A mark without pictures is
/// not touched.
static qint64 releasePictures(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark)
        return 0;
    const qint64 size = qint64(mark->snapImage.size()) + mark->fullImage.size();
    if (size == 0 || mark->upgradeOpen() != Acad::eOk)
        return 0;
    mark->snapImage.clear();
    mark->fullImage.clear();
    return size;
}

void QN3_delSnapBitmapAll()
{
    const QString purpose = QStringLiteral("\n本命令的目的是: 删除全部快照中可能较大的内嵌图像数据");
    acedAlert(purpose + u'.');
    acutPrintf(purpose + QStringLiteral("。"));
    QString answer;
    const int status =
        acedGetString(false, QStringLiteral("\n你真的要删除全部快照图像等数据吗(YES/NO)[NO]? "), answer);
    if (status != RTNORM || answer.compare(u"YES", Qt::CaseInsensitive) != 0) {
        acutPrintf(QStringLiteral("\n必须输入完整的 YES 才能继续！"));
        return;
    }
    const CollectedMarks marks = collectAllMarks(*acdbCurDwg());
    if (marks.ids.empty())
        return;
    qint64 total = 0;
    bool goesOn = true;
    {
        base::ProgressTeller teller(acDocManager()->progress(), QStringLiteral("删除快照图像"));
        for (std::size_t i = 0; i < marks.ids.size() && goesOn; ++i) {
            total += releasePictures(marks.ids[i]);
            goesOn = teller.goesOn(double(i + 1) / double(marks.ids.size()));
        }
    }
    if (!goesOn)
        acutPrintf(QStringLiteral("\n已停止删除，其余评图标签保持原样。"));
    acutPrintf(QStringLiteral("\n本图中所有评图标签中的快照图像都已清除 %1 字节。").arg(total));
}
