#pragma once

// Small measuring helpers shared by the benchmarks and the soak tests.

#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace measure {

// The value below which p percent of the samples lie (nearest rank); 0 when empty.
inline double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, size_t(p / 100.0 * double(v.size())))];
}

// CPU time used by the whole process (all threads, user and system), in seconds.
inline double processCpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Context switches of the whole process so far (voluntary and not): every
// thread's every wake-up counts once.
inline long contextSwitches()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw + usage.ru_nivcsw;
}

// CPU time used by the calling thread alone, in seconds.
inline double threadCpuSeconds()
{
    timespec ts {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

// CPU use of the whole process over a stretch of wall time, in percent of one core.
class CpuMeter
{
public:
    CpuMeter() { reset(); }
    void reset()
    {
        cpu0 = processCpuSeconds();
        wall0 = std::chrono::steady_clock::now();
    }
    double percent() const
    {
        const double wall =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - wall0).count();
        return wall > 0 ? 100.0 * (processCpuSeconds() - cpu0) / wall : 0;
    }

private:
    double cpu0 = 0;
    std::chrono::steady_clock::time_point wall0;
};

// Resident memory of the process in KiB (0 where /proc is not there).
inline long residentKb()
{
    long pages = 0;
    if (FILE *f = std::fopen("/proc/self/statm", "r")) {
        long size = 0;
        if (std::fscanf(f, "%ld %ld", &size, &pages) != 2)
            pages = 0;
        std::fclose(f);
    }
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

} // namespace measure
