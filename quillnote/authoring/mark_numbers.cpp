#include "quillnote/authoring/mark_numbers.h"

#include "quillnote/authoring/append_state.h"
#include "quillnote/authoring/mark_set.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_record.h"

#include "host/acdb/dbreactor.h"
#include "host/aced/edinput.h"

#include <algorithm>
#include <limits>
#include <memory>

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
    constexpr int kHighest = std::numeric_limits<std::uint16_t>::max();
    int last = readLastMarkNumber(database);
    RecordWatch &watch = database.attachments().get<RecordWatch>(database);
    if (last == 0 || !watch.isChecked)
        last = std::max(last, highestNumber(database));
    watch.isChecked = true;
    return last < kHighest ? std::optional(std::uint16_t(last + 1)) : std::nullopt;
}

bool hasFreeMarkNumber(AcDbDatabase &database)
{
    if (nextMarkNumber(database))
        return true;
    acedRefuse(QStringLiteral("本图的评图标签编号已用到65535，请先重新编号。"));
    return false;
}
