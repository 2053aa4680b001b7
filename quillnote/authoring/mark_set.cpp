#include "quillnote/authoring/mark_set.h"

#include "host/aced/edfrontend.h"

CollectedMarks collectAllMarks(const AcDbDatabase &database)
{
    CollectedMarks marks = collectMarks(database);
    if (marks.ids.empty())
        acutPrintf(QStringLiteral("\n本图中无评图标签。"));
    return marks;
}

void saySkippedMarks(int count)
{
    if (count > 0)
        acutPrintf(QStringLiteral("\n%1 个评图标签无法修改（所在图层可能已锁定），已跳过。").arg(count));
}
