#include "quillnote/authoring/one_mark.h"

#include "quillnote/entity/password.h"

#include "host/aced/edinput.h"

bool mayUserChange(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark) {
        acedRefuse(QStringLiteral("不是评图标签。"));
        return false;
    }
    const QString hash = mark->chPwMD5;
    mark.close();
    return mayChangeProtected(hash);
}

AcDbObjectPointer<QuillnoteObj3> openToChange(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (!mark)
        acedRefuse(QStringLiteral("该评图标签无法修改：%1").arg(acadErrorStatusText(mark.openStatus())));
    return mark;
}
