#include "quillnote/reports/mark_selection.h"

#include "quillnote/entity/mark_class.h"

#include "host/acdb/dbapi.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edselect.h"

#include <algorithm>

static constexpr std::size_t kMostTexts = 16;

static ResbufList kindFilter(const QString &kinds)
{
    return {resbuf(0, kinds)};
}

std::optional<std::vector<ReportedMark>> selectMarks()
{
    const ResbufList filter = kindFilter(QString::fromLatin1(kMarkDxfName));
    AcEdSelectionSet chosen;
    const int answer = acedSSGetPrompt({}, QStringLiteral("\n请选择评图标签[默认全选]>>"), filter, chosen);
    if (answer == RTCAN)
        return std::nullopt;
    if (answer != RTNORM)
        acedSSGet(QStringLiteral("X"), nullptr, nullptr, filter, chosen);
    std::vector<ReportedMark> marks;
    for (const AcDbObjectId id : chosen) {
        if (auto mark = readReportedMark(id))
            marks.push_back(*std::move(mark));
    }
    if (marks.empty())
        acutPrintf(QStringLiteral("\n本图中无评图标签。"));
    std::ranges::stable_sort(marks, {}, &ReportedMark::order);
    return marks;
}

/// The string of a TEXT or ATTDEF; the contents of an MTEXT, whose beginning stands in pieces (group 3) in
/// front.
static QString textOf(AcDbObjectId id)
{
    const ResbufList groups = acdbEntGetX(id);
    const resbuf *const kind = findGroup(groups, 0);
    const bool inPieces = kind && kind->text() == QLatin1String("MTEXT");
    QString text;
    for (const resbuf &group : groups) {
        if (group.restype == 1 || (inPieces && group.restype == 3))
            text += group.text();
    }
    return text;
}

std::optional<QString> pickTexts()
{
    AcEdSelectionSet chosen;
    if (acedSSGetPrompt({}, QStringLiteral("\n请选择文字:\n"),
                        kindFilter(QStringLiteral("TEXT,MTEXT,ATTDEF")), chosen) != RTNORM)
        return std::nullopt;
    if (chosen.size() > kMostTexts) {
        acutPrintf(QStringLiteral("\nOnly 16 Entitys used."));
        chosen.resize(kMostTexts);
    }
    QStringList texts;
    for (const AcDbObjectId id : chosen)
        texts.append(textOf(id));
    return texts.join(QStringLiteral("\r\n"));
}
