// Timing for the benchmarks.
#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>

namespace bench
{

/// The time since it was made.
class Stopwatch
{
public:
    double seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_begin).count();
    }

private:
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

template <class Work>
double seconds(Work work)
{
    const Stopwatch since;
    work();
    return since.seconds();
}

/// Of the processor, all threads: what a busy machine says nothing about.
template <class Work>
double processorSeconds(Work work)
{
    const std::clock_t begin = std::clock();
    work();
    return double(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// Of the processor, the calling thread alone: beside processorSeconds() it tells what a second core saves.
template <class Work>
double threadSeconds(Work work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
    };
    const double begin = now();
    work();
    return now() - begin;
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
