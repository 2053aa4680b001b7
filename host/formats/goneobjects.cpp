#include "host/formats/goneobjects.h"

#include <algorithm>

static bool anyErased(const AcDbDatabase &database)
{
    for (std::uint32_t index = 1; index < database.stubCount(); ++index) {
        if (database.stub(index)->has(AcDbStub::kErased))
            return true;
    }
    return false;
}

std::vector<bool> goneObjects(const AcDbDatabase &database)
{
    // What was made and erased again is no change, but may have left something that it owned.
    if (!anyErased(database))
        return {};
    enum State : char { unknown, pending, alive, gone };
    std::vector<State> states(database.stubCount(), unknown);
    std::vector<std::uint32_t> chain;
    for (std::uint32_t first = 1; first < database.stubCount(); ++first) {
        State verdict = alive;
        for (std::uint32_t index = first; index != 0; index = database.stub(index)->owner) {
            if (states[index] != unknown) {
                verdict = states[index] == gone ? gone : alive; // Owners in a circle own nothing.
                break;
            }
            states[index] = pending;
            chain.push_back(index);
            if (database.stub(index)->has(AcDbStub::kErased)) {
                verdict = gone;
                break;
            }
        }
        for (const std::uint32_t index : chain)
            states[index] = verdict;
        chain.clear();
    }
    std::vector<bool> gones(states.size());
    std::transform(states.begin(), states.end(), gones.begin(), [](State state) { return state == gone; });
    return gones;
}
