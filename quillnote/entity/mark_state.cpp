#include "quillnote/entity/mark_state.h"

MarkDrawingState &markDrawingState()
{
    static MarkDrawingState state;
    return state;
}
