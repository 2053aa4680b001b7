#include "quillnote/authoring/numbering.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/authoring/one_mark.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_values.h"

#include "host/acap/docman.h"
#include "host/acdb/dbreactor.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <QHash>

#include <algorithm>
#include <limits>
#include <memory>

static constexpr int kHighestNumber = std::numeric_limits<std::uint16_t>::max();

AppendState &appendState()
{
    static AppendState state;
    return state;
}

// New marks ---------------------------------------------------------------------------------------

namespace
{

/// Whether the record of a drawing is known to be as high as its marks. Looking through all of them for each
/// new mark would make ten thousand of them slow; after the first look only marks that come from elsewhere
/// can be higher.
class RecordWatch : public AcDbDatabaseReactor
{
public:
    explicit RecordWatch(AcDbDatabase &database) : m_database(database) { m_database.addReactor(this); }
    ~RecordWatch() override { m_database.removeReactor(this); }

    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override
    {
        if (!appendState().importing && acrxCast<const QuillnoteObj3>(object))
            isChecked = false;
    }

    bool isChecked = false;

private:
    AcDbDatabase &m_database;
};

} // namespace

static int highestNumber(const AcDbDatabase &database)
{
    int highest = 0;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        if (const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead); mark)
            highest = std::max(highest, int(mark->markNumber));
    }
    return highest;
}

std::optional<std::uint16_t> nextMarkNumber(AcDbDatabase &database)
{
    int last = readLastMarkNumber(database);
    RecordWatch &watch = database.attachments().get<RecordWatch>(database);
    if (last == 0 || !watch.isChecked)
        last = std::max(last, highestNumber(database));
    watch.isChecked = true;
    return last < kHighestNumber ? std::optional(std::uint16_t(last + 1)) : std::nullopt;
}

bool hasFreeMarkNumber(AcDbDatabase &database)
{
    if (nextMarkNumber(database))
        return true;
    acedRefuse(QStringLiteral("本图的评图标签编号已用到65535，请先重新编号。"));
    return false;
}

void keepMarkNumber(AcDbDatabase &database, std::uint16_t number)
{
    if (const Acad::ErrorStatus refused = writeLastMarkNumber(database, number); refused != Acad::eOk)
        acedRefuse(QStringLiteral("无法在图中保存评图标签编号：%1").arg(acadErrorStatusText(refused)));
}

// Copies ------------------------------------------------------------------------------------------

void MarkCounts::countAll(const AcDbDatabase &database)
{
    *this = {};
    m_counted = true;
    m_blocks = database.tableRecords(SymbolTable::block).size();
    for (const AcDbObjectId layout : acdbLayoutBlocks(database))
        m_layouts.insert(layout);
    for (const AcDbObjectId id : collectMarks(database).ids) {
        // One that is open for write is the one that is being told of.
        if (const auto *const mark = acrxCast<QuillnoteObj3>(id.stub()->object))
            note(*mark);
    }
}

std::size_t MarkCounts::ofNumber(const AcDbDatabase &database, const QuillnoteObj3 &mark)
{
    if (!m_counted || m_blocks != database.tableRecords(SymbolTable::block).size())
        countAll(database);
    note(mark);
    const auto found = m_counts.find(mark.markNumber);
    return found == m_counts.end() ? 0 : found->second;
}

void MarkCounts::note(const QuillnoteObj3 &mark, bool present)
{
    if (!m_counted)
        return;
    if (const auto known = m_numbers.find(mark.objectId()); known != m_numbers.end()) {
        --m_counts[known->second];
        m_numbers.erase(known);
    }
    if (!present || !m_layouts.contains(mark.blockId()))
        return;
    m_numbers.emplace(mark.objectId(), mark.markNumber);
    ++m_counts[mark.markNumber];
}

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
    const auto mark = openToChange(id);
    if (!mark)
        return;
    mark->markNumber = number;
    mark->subNumber = 0;
    AcDbDatabase &database = *id.database();
    if (number > readLastMarkNumber(database))
        keepMarkNumber(database, number);
}

static QString shownNumber(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    return mark ? markNumberText(mark->markNumber, mark->subNumber) : QString();
}

void QN8_editNumber()
{
    AcDbObjectId picked;
    AcGePoint3d pickPoint;
    if (acedEntSel(QStringLiteral("\n请选择一个评图标签： "), picked, pickPoint) != RTNORM) {
        acutPrintf(QStringLiteral("\n未选择。"));
        return;
    }
    if (!mayUserChange(picked))
        return;
    if (const std::optional<std::uint16_t> number = askNumber(shownNumber(picked)))
        setNumber(picked, *number);
}
