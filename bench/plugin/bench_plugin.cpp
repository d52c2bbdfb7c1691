// Whole-system benchmark: the loadable plug-in (libdialix_virtual.so) driven the
// way the host drives it, with virtual panels underneath. A driver thread plays
// the panel (it queues input reports), the main thread is the host's GUI thread
// and receives the plug-in's command messages.
//
// Figures: plug-in load to first tab and the memory it adds; panel event to host
// latency beside a bare cross-thread queued call; sustained input at 1000
// reports/s; the report rate at which the GUI thread falls behind; VFO encoder
// coalescing; idle CPU with two panels open and with failing reads; the time of
// one hot-plug cycle per open panel.
//
// Prints a readable table and one JSON line {"bench":"plugin","metrics":[...]}.
// BENCH_SCALE (default 1) scales the measuring times.

#include "bench/measure.h"
#include "interfaces/dialixabstract.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPluginLoader>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

namespace vp = VirtualPanel;
using measure::CpuMeter;
using measure::percentile;
using measure::residentKb;
using Clock = std::chrono::steady_clock;

namespace {

// Command ids that the configured panel functions send.
constexpr int CmdBandUp = 110; // every key
constexpr int CmdMicGain = 127; // dial 1
constexpr int CmdSql = 129; // dial 2
constexpr int CmdFilterLow = 130; // dial 3
constexpr int CmdVfo = 143; // dial 0, coalesced
constexpr int FilterLowStep = 10;

qint64 nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

double scale()
{
    bool ok = false;
    const double s = qEnvironmentVariable("BENCH_SCALE").toDouble(&ok);
    return ok && s > 0 ? s : 1.0;
}

struct Metric
{
    QString name;
    double value;
    QString unit;
    double floor = -1;
    double limit = -1;
    QString note;
};
std::vector<Metric> metrics;

void add(const QString &name, double value, const QString &unit, const QString &note = {},
         double floor = -1, double limit = -1)
{
    metrics.push_back({name, value, unit, floor, limit, note});
}

} // namespace

// The host side: counts the plug-in's command messages by id (read from the
// driver thread) and keeps what the figures need.
class Host : public QObject
{
    Q_OBJECT

public:
    std::atomic<int> count[190] {};
    std::atomic<long long> sum[190] {};
    std::atomic<qint64> lastNs[190] {};
    std::atomic<int> lastValue[190] {};
    std::atomic<int> dropped {0};
    std::vector<qint64> vfoTimes; // GUI thread only while recording
    bool recordVfo = false;
    std::atomic<qint64> pingNs {0};

public slots:
    void onCommand(QVariant cmd)
    {
        const QVariantList list = cmd.toList();
        if (list.isEmpty()) {
            ++dropped;
            return;
        }
        const int id = list.at(0).toInt();
        if (id < 0 || id >= 190) {
            ++dropped;
            return;
        }
        const int value = list.size() > 1 ? list.last().toInt() : 0;
        const qint64 t = nowNs();
        sum[id] += value;
        lastValue[id] = value;
        lastNs[id] = t;
        if (id == CmdVfo && recordVfo)
            vfoTimes.push_back(t);
        ++count[id];
    }
};

namespace {

// Runs `driver` on a thread of its own while the main thread dispatches events
// (the plug-in's work and the host's receipt happen there).
void drive(const std::function<void()> &driver)
{
    QEventLoop loop;
    std::thread t([&] {
        driver();
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    loop.exec();
    t.join();
}

// Lets the main thread dispatch events for `ms` milliseconds.
void settle(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// Waits on the driver thread until `done` holds or `timeoutMs` passes.
bool waitFor(const std::function<bool()> &done, int timeoutMs)
{
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!done()) {
        if (Clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(20));
    }
    return true;
}

QByteArray report(quint32 word, int d0 = 0, int d1 = 0, int d2 = 0, int d3 = 0)
{
    return vp::makeReport(word, d0, d1, d2, d3);
}

// The own file's layout, which readSettings() also reads from the host's object.
void writeSettings(const QString &path)
{
    QSettings s(path, QSettings::IniFormat);
    for (int c = 1; c <= 2; ++c) {
        s.beginGroup(QStringLiteral("Dialix%1").arg(c));
        for (int n = 0; n < 17; ++n)
            s.setValue(QStringLiteral("FunctionButton%1").arg(n), 1); // Band Up
        // Dials 1..3: Mic Gain, SQL, Filter Low. This layout numbers dial j as j - 1.
        const int dialFunctions[4] = {0, 2, 3, 4};
        for (int j = 0; j < 4; ++j)
            s.setValue(QStringLiteral("FunctionDial%1").arg(j - 1), dialFunctions[j]);
        s.beginGroup(QStringLiteral("Options"));
        s.setValue(QStringLiteral("Enable"), true);
        s.setValue(QStringLiteral("MicGain"), 1);
        s.setValue(QStringLiteral("Sql"), 1);
        s.setValue(QStringLiteral("FilterLow"), FilterLowStep);
        s.setValue(QStringLiteral("Receiver"), 0);
        s.endGroup();
        s.endGroup();
    }
}

// One press after another, each timed from the report being queued to the host
// receiving the command; next to the same walk over a bare queued call.
void latency(Host &host, int panel)
{
    const int n = int(2000 * scale());
    std::vector<double> plugin, floor;
    drive([&] {
        for (int i = 0; i < n; ++i) {
            const int key = 1 + i % 14;
            const int before = host.count[CmdBandUp];
            const qint64 t0 = nowNs();
            vp::queueReport(panel, report(1u << key));
            if (!waitFor([&] { return host.count[CmdBandUp] > before; }, 2000))
                break;
            plugin.push_back(double(host.lastNs[CmdBandUp] - t0) / 1000.0);
            vp::queueReport(panel, report(0));
            vp::waitUntilRead(panel, 1000);
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
        for (int i = 0; i < n; ++i) {
            host.pingNs = 0;
            const qint64 t0 = nowNs();
            QMetaObject::invokeMethod(
                &host, [&host] { host.pingNs = nowNs(); }, Qt::QueuedConnection);
            if (!waitFor([&] { return host.pingNs != 0; }, 2000))
                break;
            floor.push_back(double(host.pingNs - t0) / 1000.0);
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
    });
    const double f50 = percentile(floor, 50), f99 = percentile(floor, 99);
    add("event_to_host_p50", percentile(plugin, 50), "us",
        QStringLiteral("%1 presses").arg(plugin.size()), f50);
    add("event_to_host_p99", percentile(plugin, 99), "us", {}, f99);
    add("queued_signal_p50", f50, "us", "bare cross-thread queued call (the floor)");
    add("queued_signal_p99", f99, "us");
}

// 1000 reports per second: each one a key edge and a movement of all four dials.
void sustained(Host &host, int panel)
{
    const int n = 2 * int(5000 * scale()); // even: all keys end released
    const int b110 = host.count[CmdBandUp], b127 = host.count[CmdMicGain],
              b129 = host.count[CmdSql], b130 = host.count[CmdFilterLow], b143 = host.count[CmdVfo];
    const long long s127 = host.sum[CmdMicGain], s129 = host.sum[CmdSql],
                    s130 = host.sum[CmdFilterLow];
    CpuMeter cpu;
    double cpuPercent = 0;
    double seconds = 0;
    drive([&] {
        const auto start = Clock::now();
        auto next = start;
        quint32 word = 0;
        for (int i = 0; i < n; ++i) {
            const int key = 1 + (i / 2) % 14;
            word = (i % 2 == 0) ? (1u << key) : 0;
            vp::queueReport(panel, report(word, 1, 1, -1, 1));
            next += std::chrono::microseconds(1000);
            std::this_thread::sleep_until(next);
        }
        seconds = std::chrono::duration<double>(Clock::now() - start).count();
        cpuPercent = cpu.percent();
        waitFor([&] { return host.count[CmdFilterLow] - b130 >= n; }, 5000);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    });
    const int presses = n / 2;
    const int edgesLost = presses - (host.count[CmdBandUp] - b110);
    const int dialLost = (n - (host.count[CmdMicGain] - b127)) + (n - (host.count[CmdSql] - b129))
        + (n - (host.count[CmdFilterLow] - b130));
    const bool sumsRight = host.sum[CmdMicGain] - s127 == n && host.sum[CmdSql] - s129 == -n
        && host.sum[CmdFilterLow] - s130 == (long long)n * FilterLowStep;
    const double vfoRate = (host.count[CmdVfo] - b143) / seconds;
    add("sustained_edges_lost", edgesLost, "count",
        QStringLiteral("%1 reports in %2 s, %3 presses")
            .arg(n)
            .arg(seconds, 0, 'f', 1)
            .arg(presses),
        -1, 0);
    add("sustained_dial_moves_lost", dialLost, "count",
        sumsRight ? QStringLiteral("dials 1-3, values add up")
                  : QStringLiteral("dials 1-3, VALUES DO NOT ADD UP"),
        -1, 0);
    add("sustained_vfo_commands", vfoRate, "per_s", "dial 0 moved in every report", -1, 100);
    add("sustained_cpu", cpuPercent, "pct", "whole process, driver thread included");
}

// Raises the report rate until the commands arrive later than 50 ms after the
// last report of a 0.5 s burst.
void saturation(Host &host, int panel)
{
    const int rates[] = {2000, 5000, 10000, 20000, 50000, 100000, 200000, 500000};
    double kept = 0, failedAt = 0, throughputAtFail = 0, lagAtFail = 0;
    const double burst = 0.5 * scale();
    for (const int rate : rates) {
        const int perMs = rate / 1000;
        const int total = 2 * ((int(rate * burst)) / 2);
        const int b110 = host.count[CmdBandUp], b127 = host.count[CmdMicGain];
        double lagMs = 0, produced = 0;
        drive([&] {
            const auto start = Clock::now();
            auto next = start;
            int sent = 0;
            while (sent < total) {
                for (int i = 0; i < perMs && sent < total; ++i, ++sent)
                    vp::queueReport(panel, report(sent % 2 == 0 ? 2u : 0u, 0, 1));
                next += std::chrono::microseconds(1000);
                std::this_thread::sleep_until(next);
            }
            const auto end = Clock::now();
            produced = total / std::chrono::duration<double>(end - start).count();
            waitFor([&] { return host.count[CmdMicGain] - b127 >= total; }, 10000);
            lagMs = std::chrono::duration<double, std::milli>(Clock::now() - end).count();
        });
        const bool complete =
            host.count[CmdMicGain] - b127 >= total && host.count[CmdBandUp] - b110 >= total / 2;
        if (complete && lagMs <= 50 && produced >= 0.9 * rate) {
            kept = rate;
            continue;
        }
        failedAt = rate;
        lagAtFail = lagMs;
        throughputAtFail = total / (burst + lagMs / 1000.0);
        break;
    }
    add("saturation_rate_kept", kept, "per_s", "highest report rate with lag <= 50 ms");
    if (failedAt > 0) {
        add("saturation_rate_failed", failedAt, "per_s",
            QStringLiteral("lag %1 ms after the burst").arg(lagAtFail, 0, 'f', 0));
        add("saturation_throughput", throughputAtFail, "per_s",
            "reports handled per second at the failing rate");
    }
}

// The VFO encoder reports every millisecond for 10 s; then one last movement.
void vfoSpin(Host &host, int panel)
{
    const int n = int(10000 * scale());
    const int before = host.count[CmdVfo];
    host.vfoTimes.clear();
    host.recordVfo = true;
    qint64 lastSent = 0;
    bool lastArrived = false;
    drive([&] {
        auto next = Clock::now();
        for (int i = 0; i < n; ++i) {
            vp::queueReport(panel, report(0, 1));
            next += std::chrono::microseconds(1000);
            std::this_thread::sleep_until(next);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
        lastSent = nowNs();
        vp::queueReport(panel, report(0, 7));
        lastArrived = waitFor([&] { return host.lastValue[CmdVfo] == 7; }, 1000);
    });
    host.recordVfo = false;
    const int commands = host.count[CmdVfo] - before;
    int maxWindow = 0;
    const std::vector<qint64> &t = host.vfoTimes;
    for (size_t i = 0, j = 0; i < t.size(); ++i) {
        while (t[i] - t[j] >= 1000000000LL)
            ++j;
        maxWindow = std::max(maxWindow, int(i - j + 1));
    }
    add("vfo_spin_commands", commands / (n / 1000.0), "per_s",
        QStringLiteral("%1 reports, 1 ms apart").arg(n), -1, 100);
    add("vfo_spin_max_in_1s", maxWindow, "count",
        "busiest sliding 1 s window (Qt's coarse timers may fire a tick up to 5 % early)", -1, 100);
    add("vfo_last_move_delay", lastArrived ? double(host.lastNs[CmdVfo] - lastSent) / 1e6 : -1,
        "ms", lastArrived ? QString() : QStringLiteral("LAST MOVEMENT STRANDED"), -1, 20);
}

double idleCpu(double seconds)
{
    CpuMeter cpu;
    settle(std::max(500, int(seconds * 1000)));
    return cpu.percent();
}

double hotplugCycleMs(QObject *root, int cycles)
{
    const auto start = Clock::now();
    for (int i = 0; i < cycles; ++i)
        QMetaObject::invokeMethod(root, "deviceChanged", Qt::DirectConnection);
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count() / cycles;
}

void print()
{
    std::printf("%-28s %12s %-6s %10s %8s  %s\n", "figure", "value", "unit", "floor", "limit",
                "note");
    QJsonArray list;
    for (const Metric &m : metrics) {
        QJsonObject o {{"name", m.name}, {"value", m.value}, {"unit", m.unit}};
        if (m.floor >= 0)
            o["floor"] = m.floor;
        if (m.limit >= 0)
            o["limit"] = m.limit;
        if (!m.note.isEmpty())
            o["note"] = m.note;
        list.append(o);
        std::printf("%-28s %12.2f %-6s %10s %8s  %s\n", qPrintable(m.name), m.value,
                    qPrintable(m.unit), m.floor >= 0 ? qPrintable(QString::number(m.floor)) : "",
                    m.limit >= 0 ? qPrintable(QString::number(m.limit)) : "", qPrintable(m.note));
    }
    const QJsonObject doc {{"bench", "plugin"}, {"metrics", list}};
    std::printf("%s\n", QJsonDocument(doc).toJson(QJsonDocument::Compact).constData());
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    // The controllers read "/options.ini" beside the executable when they are made.
    writeSettings(QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini"));
    QTemporaryDir dir;
    QSettings hostSettings(dir.filePath(QStringLiteral("host.ini")), QSettings::IniFormat);
    writeSettings(hostSettings.fileName());
    hostSettings.sync();

    const int panel1 = vp::plug(QStringLiteral("BENCH0001"));

    // Plug-in load to its first tab on screen.
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    const long rssBefore = residentKb();
    const auto loadStart = Clock::now();
    QPluginLoader loader(QStringLiteral(DIALIX_VIRTUAL_PLUGIN));
    auto *plugin = qobject_cast<DialixAbstract *>(loader.instance());
    if (!plugin) {
        std::fprintf(stderr, "cannot load the plug-in: %s\n", qPrintable(loader.errorString()));
        return 1;
    }
    plugin->addWidget(layout);
    window.show();
    QTabWidget *tabs = window.findChild<QTabWidget *>();
    while (!tabs || tabs->count() == 0 || !tabs->currentWidget()
           || !tabs->currentWidget()->isVisible()) {
        QCoreApplication::processEvents();
        tabs = window.findChild<QTabWidget *>();
    }
    const double loadMs =
        std::chrono::duration<double, std::milli>(Clock::now() - loadStart).count();
    add("load_to_first_tab", loadMs, "ms");
    add("load_resident_memory", double(residentKb() - rssBefore), "kb");

    Host host;
    QObject::connect(plugin, SIGNAL(sCommand(QVariant)), &host, SLOT(onCommand(QVariant)));
    plugin->setChannels(2);
    plugin->readSettings(&hostSettings);
    settle(1000); // the deferred start after readSettings

    if (vp::openHandles(panel1) != 1) {
        std::fprintf(stderr, "the panel is not open (%d handles)\n", vp::openHandles(panel1));
        return 1;
    }

    add("idle_cpu_one_panel", idleCpu(3 * scale()), "pct");
    latency(host, panel1);
    sustained(host, panel1);
    saturation(host, panel1);
    vfoSpin(host, panel1);

    // Failing reads on the open panel (as hidraw does after an unplug).
    vp::setReadsFail(panel1, true);
    add("failing_reads_cpu", idleCpu(3 * scale()), "pct", "one open panel whose reads fail");
    vp::setReadsFail(panel1, false);

    add("hotplug_cycle_per_panel", hotplugCycleMs(plugin, 10), "ms", "1 panel open");

    const int panel2 = vp::plug(QStringLiteral("BENCH0002"));
    QMetaObject::invokeMethod(plugin, "deviceChanged", Qt::DirectConnection);
    settle(1500);
    const int handles = vp::openHandles();
    add("idle_cpu_two_panels", idleCpu(3 * scale()), "pct",
        QStringLiteral("%1 controllers open").arg(handles));
    add("hotplug_cycle_per_panel_2", hotplugCycleMs(plugin, 10) / std::max(1, handles), "ms",
        QStringLiteral("%1 panels open").arg(handles));
    vp::unplug(panel2);

    print();
    if (qEnvironmentVariableIsSet("BENCH_VERBOSE")) {
        for (int id = 0; id < 190; ++id)
            if (host.count[id])
                std::fprintf(stderr, "command %d: %d messages, values add up to %lld\n", id,
                             int(host.count[id]), (long long)host.sum[id]);
    }
    plugin->closeDevices();
    vp::reset();
    return host.dropped == 0 ? 0 : 1;
}

#include "bench_plugin.moc"
