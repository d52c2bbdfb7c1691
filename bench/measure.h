#pragma once

// Small measuring helpers shared by the benchmarks and the soak tests, and the
// one reporter through which every benchmark prints its figures.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
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

// The figures of one benchmark. print() writes them as a table for people and
// then as one JSON line for scripts/bench.sh, every benchmark in the same shape:
//   {"bench":"device","metrics":[{"name":"report_to_slot_p50","value":46.1,
//    "unit":"us","floor":13.0,"note":"..."}, ...]}
// Every figure has its unit ("us", "ms", "pct", "per_s", "count", "kb", "x",
// ...); "floor" (the same work done by the bare minimum, measured in the same
// run), "limit" (the target) and "note" appear only where given.
class Report
{
public:
    static constexpr double None = -1; // no floor or limit

    explicit Report(const char *bench)
        : name(QString::fromUtf8(bench))
    { }

    void add(const QString &figure, double value, const char *unit, const QString &note = {},
             double floor = None, double limit = None)
    {
        figures.push_back({figure, value, QString::fromUtf8(unit), floor, limit, note});
    }

    void print() const
    {
        std::printf("%-32s %14s %-10s %12s %10s %8s  %s\n", "figure", "value", "unit", "floor",
                    "limit", "ratio", "note");
        QJsonArray list;
        for (const Figure &f : figures) {
            QJsonObject o {{"name", f.name}, {"value", f.value}, {"unit", f.unit}};
            if (f.floor != None)
                o["floor"] = f.floor;
            if (f.limit != None)
                o["limit"] = f.limit;
            if (!f.note.isEmpty())
                o["note"] = f.note;
            list.append(o);
            const QString ratio =
                f.floor > 0 ? QString::number(f.value / f.floor, 'f', 2) + "x" : QString();
            std::printf("%-32s %14s %-10s %12s %10s %8s  %s\n", qPrintable(f.name),
                        qPrintable(number(f.value)), qPrintable(f.unit),
                        qPrintable(f.floor != None ? number(f.floor) : QString()),
                        qPrintable(f.limit != None ? number(f.limit) : QString()),
                        qPrintable(ratio), qPrintable(f.note));
        }
        const QJsonObject doc {{"bench", name}, {"metrics", list}};
        std::printf("%s\n", QJsonDocument(doc).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
    }

private:
    struct Figure
    {
        QString name;
        double value;
        QString unit;
        double floor;
        double limit;
        QString note;
    };

    // Enough digits for small figures, none for large ones.
    static QString number(double v)
    {
        const double a = std::fabs(v);
        if (a >= 10000 || v == std::floor(v))
            return QString::number(v, 'f', 0);
        return QString::number(v, 'f', a >= 100 ? 1 : a >= 1 ? 2 : 3);
    }

    QString name;
    std::vector<Figure> figures;
};

} // namespace measure
