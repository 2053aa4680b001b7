#include "quillnote/authoring/append_state.h"

AppendState &appendState()
{
    static AppendState state;
    return state;
}
