// Timing for the benchmarks.
#pragma once

#include <algorithm>
#include <chrono>

namespace bench
{

template <class Work>
double seconds(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// The fastest of several runs: what the machine can do when nothing disturbs it.
template <class Work>
double bestSeconds(int runs, Work work)
{
    double best = 1e9;
    for (int run = 0; run < runs; ++run)
        best = std::min(best, seconds(work));
    return best;
}

} // namespace bench
