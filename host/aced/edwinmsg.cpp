#include "host/aced/edwinmsg.h"

#include <algorithm>
#include <vector>

static std::vector<AcEdFilterWinMsg> &filters()
{
    static std::vector<AcEdFilterWinMsg> registered;
    return registered;
}

static bool isRegistered(AcEdFilterWinMsg filter)
{
    return std::ranges::find(filters(), filter) != filters().end();
}

bool acedRegisterFilterWinMsg(AcEdFilterWinMsg filter)
{
    if (!filter || isRegistered(filter))
        return false;
    filters().push_back(filter);
    return true;
}

bool acedRemoveFilterWinMsg(AcEdFilterWinMsg filter)
{
    return std::erase(filters(), filter) > 0;
}

bool acedFilterWindowMessage(const AcEdWindowMessage &message)
{
    const std::vector<AcEdFilterWinMsg> asked(filters().rbegin(), filters().rend());
    return std::ranges::any_of(
        asked, [&](AcEdFilterWinMsg filter) { return isRegistered(filter) && filter(message); });
}
