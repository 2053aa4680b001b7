#include "quillnote/entity/mark_state.h"

#include "host/acdb/dbdatabase.h"

namespace
{

struct DrawnMarks {
    std::unordered_set<AcDbObjectId> ids;
};

} // namespace

MarkDrawingState &markDrawingState()
{
    static MarkDrawingState state;
    return state;
}

std::unordered_set<AcDbObjectId> &drawnMarks(AcDbDatabase &database)
{
    return database.attachments().get<DrawnMarks>().ids;
}
