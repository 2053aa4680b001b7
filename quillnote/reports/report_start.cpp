#include "quillnote/reports/report_start.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/reports/report_path.h"

#include "host/acap/docman.h"
#include "host/aced/edinput.h"

std::optional<QString> savedDrawingPath()
{
    QString path = drawingPath();
    if (!path.isEmpty())
        return path;
    acedRefuse(QStringLiteral("本图尚未命名存盘，请先存盘。然后重新执行本命令。"));
    return std::nullopt;
}

std::optional<ReportStart> startReport()
{
    ReportStart start{collectAllMarks(*acdbCurDwg()), {}};
    if (start.marks.ids.empty())
        return std::nullopt;
    const auto drawing = savedDrawingPath();
    if (!drawing)
        return std::nullopt;
    start.drawing = *drawing;
    return start;
}
