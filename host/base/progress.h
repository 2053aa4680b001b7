// How long work tells how far it has come, and hears that it should stop.
#pragma once

#include <functional>

namespace base
{

/// Takes the share that is done, 0 to 1. False: the work stops and leaves things as they were. May be empty.
using Progress = std::function<bool(double share)>;

/// True when the work goes on.
inline bool report(const Progress &progress, double share)
{
    return !progress || progress(share);
}

} // namespace base
