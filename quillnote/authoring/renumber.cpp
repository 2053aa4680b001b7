#include "quillnote/authoring/renumber.h"

#include "quillnote/authoring/append_mark.h"
#include "quillnote/authoring/mark_set.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <QHash>

#include <algorithm>
#include <limits>

static constexpr int kHighestNumber = std::numeric_limits<std::uint16_t>::max();

// All marks ---------------------------------------------------------------------------------------

static QString reviewerKey(const QString &name)
{
    const QString trimmed = name.trimmed();
    return (trimmed.isEmpty() ? QString::fromUtf16(kUnnamedReviewer) : trimmed).toCaseFolded();
}

/// The marks by reviewer, those of the remaining reviewers last.
static std::vector<AcDbObjectId> byReviewer(const CollectedMarks &marks)
{
    QHash<QString, std::size_t> groupOf;
    for (const QString &reviewer : marks.reviewers)
        groupOf.insert(reviewerKey(reviewer),
                       groupOf.value(reviewerKey(reviewer), std::size_t(groupOf.size())));
    std::vector<std::vector<AcDbObjectId>> groups(std::size_t(groupOf.size()) + 1);
    for (const AcDbObjectId id : marks.ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        const QString key = mark ? reviewerKey(mark->suggestionName) : QString();
        groups[groupOf.value(key, groups.size() - 1)].push_back(id);
    }
    std::vector<AcDbObjectId> sorted;
    for (const std::vector<AcDbObjectId> &group : groups)
        sorted.insert(sorted.end(), group.begin(), group.end());
    return sorted;
}

namespace
{

/// Hands out numbers from 1.
class Numbering
{
public:
    void number(AcDbObjectId id)
    {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        const auto next = static_cast<std::uint16_t>(m_last + 1);
        if (mark && mark->markNumber == next && mark->subNumber == 0) {
            m_last = next;
        } else if (mark && mark->upgradeOpen() == Acad::eOk) {
            mark->markNumber = next;
            mark->subNumber = 0;
            m_last = next;
        } else {
            ++m_skipped;
            m_highest = std::max(m_highest, mark ? mark->markNumber : std::uint16_t(0));
        }
    }
    /// Marks that kept their number may have a higher one than any that was handed out.
    std::uint16_t highest() const { return std::max(m_last, m_highest); }
    int skipped() const { return m_skipped; }

private:
    std::uint16_t m_last = 0;
    std::uint16_t m_highest = 0;
    int m_skipped = 0;
};

} // namespace

void renumberMarks(AcDbDatabase &database)
{
    const CollectedMarks marks = collectAllMarks(database);
    if (marks.ids.empty())
        return;
    Numbering numbering;
    for (const AcDbObjectId id : byReviewer(marks))
        numbering.number(id);
    keepMarkNumber(database, numbering.highest());
    saySkippedMarks(numbering.skipped(), marks.ids.size());
}

void QN3_reNumber()
{
    QString answer;
    const int status = acedGetString(false, QStringLiteral("你真的要重新编号吗(YES/NO)[NO]? "), answer);
    if (status != RTNORM || answer.compare(u"YES", Qt::CaseInsensitive) != 0) {
        acutPrintf(QStringLiteral("\n必须输入完整的 YES 才能继续重新编号！"));
        return;
    }
    renumberMarks(*acdbCurDwg());
}

// One mark ----------------------------------------------------------------------------------------

/// The number as it is shown; no value when the mark may not be changed.
static std::optional<QString> numberToEdit(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark) {
        acedRefuse(QStringLiteral("不是评图标签。"));
        return {};
    }
    const QString hash = mark->chPwMD5;
    const QString number = markNumberText(mark->markNumber, mark->subNumber);
    mark.close();
    if (!mayChangeProtected(hash))
        return {};
    return number;
}

static std::optional<std::uint16_t> askNumber(const QString &oldNumber)
{
    int number = 0;
    do {
        acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG);
        const QString prompt = QStringLiteral("\n旧编号是[%1]，请输入新编号：").arg(oldNumber);
        if (acedGetInt(prompt, number) != RTNORM) {
            acutPrintf(QStringLiteral("未输入，退出。"));
            return {};
        }
        if (number > kHighestNumber)
            acedRefuse(QStringLiteral("编号不能大于 %1。").arg(kHighestNumber));
    } while (number > kHighestNumber);
    return static_cast<std::uint16_t>(number);
}

static void setNumber(AcDbObjectId id, std::uint16_t number)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (!mark) {
        acedRefuse(QStringLiteral("该评图标签无法修改：%1").arg(acadErrorStatusText(mark.openStatus())));
        return;
    }
    mark->markNumber = number;
    mark->subNumber = 0;
    AcDbDatabase &database = *id.database();
    if (number > readLastMarkNumber(database))
        keepMarkNumber(database, number);
}

void QN8_editNumber()
{
    AcDbObjectId picked;
    AcGePoint3d pickPoint;
    if (acedEntSel(QStringLiteral("\n请选择一个评图标签： "), picked, pickPoint) != RTNORM) {
        acutPrintf(QStringLiteral("\n未选择。"));
        return;
    }
    const std::optional<QString> oldNumber = numberToEdit(picked);
    if (!oldNumber)
        return;
    if (const std::optional<std::uint16_t> number = askNumber(*oldNumber))
        setNumber(picked, *number);
}
