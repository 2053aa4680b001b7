#include "quillnote/authoring/mark_set.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

CollectedMarks collectAllMarks(const AcDbDatabase &database)
{
    CollectedMarks marks = collectMarks(database);
    if (marks.ids.empty())
        acutPrintf(QStringLiteral("\n本图中无评图标签。"));
    return marks;
}

void saySkippedMarks(int count, std::size_t of)
{
    if (count == 0)
        return;
    const QString text = QStringLiteral("%1 个评图标签无法修改（所在图层可能已锁定），已跳过。").arg(count);
    if (std::size_t(count) == of)
        acedRefuse(text);
    else
        acutPrintf(u'\n' + text);
}
