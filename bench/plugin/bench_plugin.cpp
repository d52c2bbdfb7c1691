// Whole-system benchmark: the loadable plug-in (libdialix_virtual.so) driven the
// way the host drives it, with virtual panels underneath. A driver thread plays
// the panel (it queues input reports), the main thread is the host's GUI thread
// and receives the plug-in's command messages.
//
// Each figure with a target is printed beside a floor measured in the same run:
//  - the stream floor: the same driver and pacing into a bare reader (one
//    hid_read_timeout wake-up and one queued signal to the GUI thread per
//    report, nothing else), measured once before the plug-in is loaded and
//    then in rounds taken in turn with each streaming figure's own rounds;
//  - the latency floor: a report crossing the same way (the bare reader wakes,
//    one queued signal), sampled in turn with the plug-in's presses;
//  - the idle floor: a bare thread waking every 5 ms, running beside the idle
//    plug-in and timed by its own thread clock.
// CPU figures are of the whole process (the driver thread included, as in the
// floors); the notes give the driver's own share. Unless a figure says "page
// shown", the options page is hidden, as it is while the operator works the radio.
//
// Figures: plug-in load to first tab and the memory it adds; panel event to host
// latency; sustained input at 1000 reports/s; the report rate at which the GUI
// thread falls behind; VFO encoder coalescing and its CPU; idle CPU and CPU with
// failing reads; one hot-plug cycle per open panel; how long a held PTT is
// released across a device change; 1, 2 and 4 panels under the same stream each.
//
// Prints its figures through measure::Report (a table, then one JSON line).
// BENCH_SCALE (default 1) scales the measuring times; BENCH_PHASES picks phases.

#include "bench/measure.h"
#include "bench/pluginload.h"
#include "command/commandtable.h"
#include "interfaces/dialixabstract.h"
#include "tools/host/radiomodel.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QPluginLoader>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <hidapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>
#include <tuple>
#include <vector>

namespace vp = VirtualPanel;
namespace protocol = dialix::protocol;
using measure::contextSwitches;
using measure::CpuMeter;
using measure::percentile;
using measure::residentKb;
using measure::threadCpuSeconds;
using Clock = std::chrono::steady_clock;

namespace {

// Command ids that the configured panel functions send.
// The keys of panels 1..4 (Band/Mode Up/Down).
constexpr int CmdKey[4] = {int(qrv::Id::panelBandUp), int(qrv::Id::panelBandDown),
                           int(qrv::Id::panelModeUp), int(qrv::Id::panelModeDown)};
constexpr int CmdBandUp = CmdKey[0];
constexpr int CmdMicGain = int(qrv::Id::panelMicGain); // dial 1
constexpr int CmdSql = int(qrv::Id::panelSql); // dial 2
constexpr int CmdFilterLow = int(qrv::Id::panelFilterLow); // dial 3
constexpr int CmdVfo = int(qrv::Id::panelVFO); // dial 0, coalesced
constexpr int FilterLowStep = 10;
constexpr int MaxPanels = 4;
// The floor's panel: a product id that the plug-in does not look for.
constexpr unsigned short FloorProductId = 0x0F0F;

qint64 nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

// BENCH_PHASES (comma-separated: idle, latency, sustained, saturation, vfo,
// failing, shown, hotplug, ptt, two, scaling) runs only those phases; all of them by
// default. A profiler run takes the phases it looks at.
bool phase(const char *name)
{
    const QByteArray chosen = qgetenv("BENCH_PHASES");
    return chosen.isEmpty() || chosen.split(',').contains(name);
}

double scale()
{
    bool ok = false;
    const double s = qEnvironmentVariable("BENCH_SCALE").toDouble(&ok);
    return ok && s > 0 ? s : 1.0;
}

measure::Report figures("plugin");

void add(const QString &name, double value, const char *unit, const QString &note = {},
         double floor = measure::Report::None, double limit = measure::Report::None)
{
    figures.add(name, value, unit, note, floor, limit);
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
    // Arrival times of the key commands of panels 1..4, and of the Mic Gain
    // commands with their value (GUI thread only while recording).
    std::vector<qint64> keyTimes[MaxPanels];
    std::vector<std::pair<int, qint64>> micGainTimes;
    bool recordKeys = false;
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
        if (recordKeys && id >= CmdKey[0] && id < CmdKey[0] + MaxPanels)
            keyTimes[id - CmdKey[0]].push_back(t);
        if (recordKeys && id == CmdMicGain)
            micGainTimes.emplace_back(value, t);
        ++count[id];
    }
};

// The floor's reader: signals one report to the GUI thread.
class FloorRelay : public QObject
{
    Q_OBJECT

signals:
    void report();
};

namespace {

// The least any reader thread does to bring a panel report to the GUI thread:
// it sleeps in hid_read_timeout (5 ms, as the plug-in's reader), wakes for the
// report and emits one queued signal. Opened on the floor's own virtual panel.
class FloorReader
{
public:
    explicit FloorReader(int panel)
        : panel(panel)
    { }
    ~FloorReader() { stop(); }

    // `onReport` runs on the GUI thread, once per report.
    void start(QObject *context, std::function<void()> onReport)
    {
        connection = QObject::connect(&relay, &FloorRelay::report, context, std::move(onReport));
        handle = hid_open(protocol::VendorId, FloorProductId, nullptr);
        running = handle != nullptr;
        if (running) {
            thread = std::thread([this] {
                unsigned char buffer[protocol::ReportSize];
                while (running.load()) {
                    if (hid_read_timeout(handle, buffer, sizeof buffer, 5) == protocol::ReportSize)
                        emit relay.report();
                }
            });
        }
    }
    void stop()
    {
        running = false;
        if (thread.joinable())
            thread.join();
        if (handle)
            hid_close(handle);
        handle = nullptr;
        QObject::disconnect(connection);
    }
    int id() const { return panel; }

private:
    int panel;
    hid_device *handle = nullptr;
    std::atomic<bool> running {false};
    std::thread thread;
    FloorRelay relay;
    QMetaObject::Connection connection;
};

// A bare thread waking every 5 ms, as an open panel's reader does while the
// panel is quiet; it times itself with its own thread clock.
class IdleFloor
{
public:
    IdleFloor()
        : thread([this] {
            const double cpu0 = threadCpuSeconds();
            std::unique_lock<std::mutex> lock(mutex);
            while (!stopping)
                wake.wait_for(lock, std::chrono::milliseconds(5));
            cpuSeconds = threadCpuSeconds() - cpu0;
        })
    { }
    // Stops the thread; its CPU time in percent of one core over `wallSeconds`.
    double stop(double wallSeconds)
    {
        {
            std::lock_guard<std::mutex> lock(mutex);
            stopping = true;
        }
        wake.notify_one();
        thread.join();
        return 100.0 * cpuSeconds / wallSeconds;
    }

private:
    std::mutex mutex;
    std::condition_variable wake;
    bool stopping = false;
    double cpuSeconds = 0;
    std::thread thread;
};

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

// Shows or hides the window that holds the plug-in's tabs, and waits until the
// current page is (not) visible.
void showPage(QWidget &window, bool shown)
{
    window.setVisible(shown);
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    auto *tabs = window.findChild<QTabWidget *>();
    while (tabs && tabs->currentWidget() && tabs->currentWidget()->isVisible() != shown
           && Clock::now() < deadline)
        QCoreApplication::processEvents();
    settle(50);
}

// The own file's layout, which readSettings() also reads from the host's object.
// Panel c's keys send CmdKey[c - 1]; the dials are the same on every panel.
void writeSettings(const QString &path)
{
    QSettings s(path, QSettings::IniFormat);
    for (int c = 1; c <= MaxPanels; ++c) {
        s.beginGroup(QStringLiteral("Dialix%1").arg(c));
        for (int n = 0; n < 17; ++n)
            s.setValue(QStringLiteral("FunctionButton%1").arg(n), c); // Band Up .. Mode Down
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

// CPU of a stream of reports, in percent of one core: the whole process, and
// the driver thread's own share (the simulated panel, not the code under test).
struct StreamCpu
{
    double whole = 0;
    double driver = 0;
    double switchesPerReport = 0; // context switches of the process per report
    double plugin() const { return whole - driver; }
};

// Runs `steps` steps 1 ms apart on a driver thread, each calling `step(i)`
// (which queues `reportsPerStep` reports), and measures the CPU over them; then
// runs `after` on the driver thread.
StreamCpu paced(int steps, const std::function<void(int)> &step, const std::function<void()> &after,
                int reportsPerStep = 1)
{
    StreamCpu r;
    CpuMeter cpu;
    const long switches0 = contextSwitches();
    drive([&] {
        const double driver0 = threadCpuSeconds();
        const auto start = Clock::now();
        auto next = start;
        for (int i = 0; i < steps; ++i) {
            step(i);
            next += std::chrono::microseconds(1000);
            std::this_thread::sleep_until(next);
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        r.whole = cpu.percent();
        r.driver = 100.0 * (threadCpuSeconds() - driver0) / seconds;
        r.switchesPerReport = double(contextSwitches() - switches0) / steps / reportsPerStep;
        after();
    });
    return r;
}

QString cpuNote(const StreamCpu &r)
{
    return QStringLiteral("driver thread %1 %, %2 context switches per report")
        .arg(r.driver, 0, 'f', 2)
        .arg(r.switchesPerReport, 0, 'f', 2);
}

// The machine's own load swings more than the differences measured here (a
// virtual machine charges the time its processor is taken away to whatever
// runs), so each streaming CPU figure and its floor are measured in turn, in
// Rounds short pairs, and the pair whose ratio is the median is printed.
// During the floor's rounds the plug-in's panel is closed (its "Enable" box
// unticked), so its reader costs nothing.
constexpr int Rounds = 7;

QString roundsNote()
{
    return QStringLiteral("; the median of %1 pairs of rounds with the floor").arg(Rounds);
}

// The whole process, and the plug-in alone (the driver thread left out), each
// beside its floor measured the same way.
void addCpu(const QString &name, const StreamCpu &r, const StreamCpu &floor, double limit,
            const QString &note = {})
{
    add(name, r.whole, "pct", QStringLiteral("whole process; ") + cpuNote(r) + note, floor.whole);
    add(name + "_plugin", r.plugin(), "pct", "without the driver thread", floor.plugin(), limit);
}

// The sustained stream into a bare reader: the floor of every streaming figure.
StreamCpu streamFloorCpu(FloorReader &floor, QObject &context, int n = int(5000 * scale()))
{
    std::atomic<int> received {0};
    floor.start(&context, [&received] { ++received; });
    settle(100);
    const StreamCpu r = paced(
        n, [&](int i) { vp::queueReport(floor.id(), report(i % 2 ? 0 : 2u, 1, 1, -1, 1)); },
        [&] { waitFor([&] { return received.load() >= n; }, 2000); });
    floor.stop();
    return r;
}

// The machine's own load swings more than the differences measured here, so
// each streaming CPU figure and its floor are taken in turn, Rounds times, and
// each is the median of its rounds. During the floor's rounds the plug-in's
// panel is closed (its "Enable" box unticked), so its reader costs nothing.
struct FloorRounds
{
    FloorReader *reader = nullptr;
    std::function<void(bool)> setPanelOpen; // the plug-in's panel
    std::vector<StreamCpu> taken;

    void round(double seconds)
    {
        setPanelOpen(false);
        QObject context;
        taken.push_back(streamFloorCpu(*reader, context, std::max(200, int(1000 * seconds))));
        setPanelOpen(true);
    }
};

// The pair (figure, floor) of the round whose plug-in ratio is the median.
std::pair<StreamCpu, StreamCpu> medianPair(const std::vector<StreamCpu> &rounds,
                                           const std::vector<StreamCpu> &floors)
{
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < std::min(rounds.size(), floors.size()); ++i)
        order.push_back(i);
    if (order.empty())
        return {};
    const auto ratio = [&](std::size_t i) {
        return floors[i].plugin() > 0 ? rounds[i].plugin() / floors[i].plugin() : 0.0;
    };
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return ratio(a) < ratio(b); });
    const std::size_t m = order[order.size() / 2];
    return {rounds[m], floors[m]};
}

// One press after another, each timed from the report being queued to the host
// receiving the command. In turn with each press: the same crossing through the
// bare reader (the floor), and a bare cross-thread queued call.
void latency(Host &host, int panel, FloorReader &floorReader, const QString &suffix = {})
{
    const int n = int(2000 * scale());
    std::vector<double> plugin, floor, queued;
    floorReader.start(&host, [&host] { host.pingNs = nowNs(); });
    settle(50);
    drive([&] {
        for (int i = 0; i < n; ++i) {
            const int key = 1 + i % 14;
            const int before = host.count[CmdBandUp];
            qint64 t0 = nowNs();
            vp::queueReport(panel, report(1u << key));
            if (!waitFor([&] { return host.count[CmdBandUp] > before; }, 2000))
                break;
            plugin.push_back(double(host.lastNs[CmdBandUp] - t0) / 1000.0);
            vp::queueReport(panel, report(0));
            vp::waitUntilRead(panel, 1000);
            std::this_thread::sleep_for(std::chrono::microseconds(300));

            host.pingNs = 0;
            t0 = nowNs();
            vp::queueReport(floorReader.id(), report(1u << key));
            if (!waitFor([&] { return host.pingNs != 0; }, 2000))
                break;
            floor.push_back(double(host.pingNs - t0) / 1000.0);
            std::this_thread::sleep_for(std::chrono::microseconds(300));

            host.pingNs = 0;
            t0 = nowNs();
            QMetaObject::invokeMethod(
                &host, [&host] { host.pingNs = nowNs(); }, Qt::QueuedConnection);
            if (!waitFor([&] { return host.pingNs != 0; }, 2000))
                break;
            queued.push_back(double(host.pingNs - t0) / 1000.0);
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
    });
    floorReader.stop();
    const double f50 = percentile(floor, 50), f99 = percentile(floor, 99);
    add("event_to_host_p50" + suffix, percentile(plugin, 50), "us",
        QStringLiteral("%1 presses; floor: reader wake-up + one queued signal").arg(plugin.size()),
        f50, suffix.isEmpty() ? 1.2 * f50 : -1);
    add("event_to_host_p99" + suffix, percentile(plugin, 99), "us", {}, f99,
        suffix.isEmpty() ? 1.5 * f99 : -1);
    if (!suffix.isEmpty())
        return;
    add("reader_wake_queued_p50", f50, "us", "the floor: bare reader wakes, one queued signal");
    add("reader_wake_queued_p99", f99, "us");
    add("queued_signal_p50", percentile(queued, 50), "us", "bare cross-thread queued call");
    add("queued_signal_p99", percentile(queued, 99), "us");
}

struct StreamResult
{
    double seconds = 0;
    StreamCpu cpu;
    int edgesLost = 0;
    int dialsLost = 0;
    bool sumsRight = false;
    double vfoPerPanel = 0; // VFO commands per second and panel
    double p50 = 0, p99 = 0; // key edge to host, microseconds
};

// `seconds` of 1000 reports/s into each of `panels`: each report a key edge (a
// press in even reports, its release in odd ones) and a movement of all four
// dials. Panel k's keys send CmdKey[k].
StreamResult stream(Host &host, const std::vector<int> &panels, double seconds)
{
    const int n = 2 * int(500 * seconds); // even: all keys end released
    const int count = int(panels.size());
    int before[190];
    long long sumBefore[190];
    for (int id = 0; id < 190; ++id) {
        before[id] = host.count[id];
        sumBefore[id] = host.sum[id];
    }
    std::vector<qint64> pressed[MaxPanels];
    for (auto &times : host.keyTimes)
        times.clear();
    host.recordKeys = true;
    StreamResult r;
    const auto start = Clock::now();
    r.cpu = paced(
        n,
        [&](int i) {
            const int key = 1 + (i / 2) % 14;
            const quint32 word = (i % 2 == 0) ? (1u << key) : 0;
            for (int k = 0; k < count; ++k) {
                if (word)
                    pressed[k].push_back(nowNs());
                vp::queueReport(panels[std::size_t(k)], report(word, 1, 1, -1, 1));
            }
        },
        [&] {
            r.seconds = std::chrono::duration<double>(Clock::now() - start).count();
            waitFor([&] { return host.count[CmdFilterLow] - before[CmdFilterLow] >= n * count; },
                    5000);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        });
    host.recordKeys = false;
    const int presses = n / 2;
    std::vector<double> latencies;
    for (int k = 0; k < count; ++k) {
        const int id = CmdKey[k];
        r.edgesLost += presses - (host.count[id] - before[id]);
        const std::vector<qint64> &arrived = host.keyTimes[k];
        for (std::size_t i = 0; i < std::min(arrived.size(), pressed[k].size()); ++i)
            latencies.push_back(double(arrived[i] - pressed[k][i]) / 1000.0);
    }
    for (const int id : {CmdMicGain, CmdSql, CmdFilterLow})
        r.dialsLost += n * count - (host.count[id] - before[id]);
    r.sumsRight = host.sum[CmdMicGain] - sumBefore[CmdMicGain] == (long long)n * count
        && host.sum[CmdSql] - sumBefore[CmdSql] == -(long long)n * count
        && host.sum[CmdFilterLow] - sumBefore[CmdFilterLow] == (long long)n * count * FilterLowStep;
    r.vfoPerPanel = (host.count[CmdVfo] - before[CmdVfo]) / r.seconds / count;
    r.p50 = percentile(latencies, 50);
    r.p99 = percentile(latencies, 99);
    return r;
}

// `seconds` of stream() in Rounds rounds, each beside a floor round of its own.
StreamResult streamRounds(Host &host, int panel, double seconds, FloorRounds &floor,
                          StreamCpu &floorCpu)
{
    StreamResult all;
    std::vector<StreamCpu> cpu;
    std::vector<double> p50, p99;
    floor.taken.clear();
    all.sumsRight = true;
    for (int i = 0; i < Rounds; ++i) {
        floor.round(seconds / Rounds);
        const StreamResult r = stream(host, {panel}, seconds / Rounds);
        all.seconds += r.seconds;
        all.edgesLost += r.edgesLost;
        all.dialsLost += r.dialsLost;
        all.sumsRight = all.sumsRight && r.sumsRight;
        all.vfoPerPanel += r.vfoPerPanel / Rounds;
        cpu.push_back(r.cpu);
        p50.push_back(r.p50);
        p99.push_back(r.p99);
    }
    std::tie(all.cpu, floorCpu) = medianPair(cpu, floor.taken);
    all.p50 = percentile(p50, 50);
    all.p99 = percentile(p99, 50);
    return all;
}

// 1000 reports per second: each one a key edge and a movement of all four dials.
void sustained(Host &host, int panel, FloorRounds &floorRounds)
{
    StreamCpu floor;
    const StreamResult r = streamRounds(host, panel, 10 * scale(), floorRounds, floor);
    add("sustained_edges_lost", r.edgesLost, "count",
        QStringLiteral("%1 reports in %2 s").arg(int(r.seconds * 1000)).arg(r.seconds, 0, 'f', 1),
        -1, 0);
    add("sustained_dial_moves_lost", r.dialsLost, "count",
        r.sumsRight ? QStringLiteral("dials 1-3, values add up")
                    : QStringLiteral("dials 1-3, VALUES DO NOT ADD UP"),
        -1, 0);
    add("sustained_vfo_commands", r.vfoPerPanel, "per_s", "dial 0 moved in every report", -1, 100);
    addCpu("sustained_cpu", r.cpu, floor, 1.2 * floor.plugin(), roundsNote());
    add("sustained_edge_to_host_p50", r.p50, "us", "key edges within the stream");
    add("sustained_edge_to_host_p99", r.p99, "us");
}

// The same stream with the options page on screen: its buttons light and the
// VFO indicator dial turns, so Qt paints what changed.
void sustainedPageShown(Host &host, int panel, FloorRounds &floorRounds)
{
    StreamCpu floor;
    const StreamResult r = streamRounds(host, panel, 5 * scale(), floorRounds, floor);
    addCpu("sustained_cpu_page_shown", r.cpu, floor, 1.5 * floor.plugin(),
           roundsNote() + QStringLiteral("; %1 lost").arg(r.edgesLost + r.dialsLost));
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

// The VFO encoder reports every millisecond for `seconds` (in Rounds rounds,
// each beside a floor round); then one last movement.
void vfoSpin(Host &host, int panel, FloorRounds &floorRounds, double seconds, bool pageShown)
{
    const int perRound = int(1000 * seconds / Rounds);
    const int n = perRound * Rounds;
    const int before = host.count[CmdVfo];
    host.vfoTimes.clear();
    host.recordVfo = true;
    qint64 lastSent = 0;
    bool lastArrived = false;
    std::vector<StreamCpu> rounds;
    floorRounds.taken.clear();
    for (int i = 0; i < Rounds; ++i) {
        floorRounds.round(seconds / Rounds);
        rounds.push_back(paced(
            perRound, [&](int) { vp::queueReport(panel, report(0, 1)); },
            [&] {
                if (i + 1 < Rounds)
                    return;
                std::this_thread::sleep_for(std::chrono::milliseconds(3));
                lastSent = nowNs();
                vp::queueReport(panel, report(0, 7));
                lastArrived = waitFor([&] { return host.lastValue[CmdVfo] == 7; }, 1000);
            }));
    }
    const auto [cpu, floor] = medianPair(rounds, floorRounds.taken);
    host.recordVfo = false;
    if (pageShown) {
        addCpu("vfo_spin_cpu_page_shown", cpu, floor, -1, roundsNote());
        return;
    }
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
    // Each report carries one movement, which crosses to the GUI thread as one
    // queued signal: the floor is the same hand-over, report for report.
    addCpu("vfo_spin_cpu", cpu, floor, 1.2 * floor.plugin(), roundsNote());
}

// CPU of the idle plug-in and, beside it, of a bare thread waking every 5 ms
// (the floor), both over the same `seconds`. Returns {plug-in, floor}.
std::pair<double, double> idleCpu(double seconds)
{
    IdleFloor floor;
    CpuMeter cpu;
    const auto start = Clock::now();
    settle(std::max(500, int(seconds * 1000)));
    const double wall = std::chrono::duration<double>(Clock::now() - start).count();
    const double total = cpu.percent();
    const double floorPercent = floor.stop(wall);
    return {total - floorPercent, floorPercent};
}

double hotplugCycleMs(QObject *root, int cycles)
{
    const auto start = Clock::now();
    for (int i = 0; i < cycles; ++i)
        QMetaObject::invokeMethod(root, "deviceChanged", Qt::DirectConnection);
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count() / cycles;
}

// A held PTT through device changes: the plug-in releases it while the panel
// is closed and keys it again at the panel's first report after it reopens.
// Times the release the radio sees, for a panel that repeats its state every
// 1 ms and every 8 ms.
void heldPttGap(DialixAbstract *plugin, QTabWidget *tabs, int panel)
{
    RadioModel radio(2);
    std::vector<std::pair<bool, qint64>> edges; // PTT as the radio sees it
    QObject::connect(&radio, &DeviceManagerAbstract::txTransfer,
                     [&edges](quint32, bool state) { edges.emplace_back(state, nowNs()); });
    plugin->setManager(&radio);
    auto *transfer = tabs->widget(0)->findChild<QComboBox *>(QStringLiteral("cbPttTransfer"));
    const int mode = transfer->currentIndex();
    transfer->setCurrentIndex(1); // PTT to the host
    // Dispatches events until the radio has seen `count` edges (or 2 s pass).
    QTimer wake; // WaitForMoreEvents never sleeps longer than this
    wake.start(100);
    auto awaitEdges = [&edges](std::size_t count) {
        const auto deadline = Clock::now() + std::chrono::seconds(2);
        while (edges.size() < count && Clock::now() < deadline)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return edges.size() >= count;
    };
    vp::setPtt(panel, true);
    awaitEdges(1);
    const int cycles = std::max(20, int(20 * scale()));
    for (const int interval : {1, 8}) {
        const QString ms = QStringLiteral("_%1ms").arg(interval);
        vp::setReportInterval(panel, interval);
        std::vector<double> gaps;
        for (int i = 0; i < cycles; ++i) {
            const std::size_t before = edges.size();
            plugin->setCommand(QVariantList {int(qrv::Id::deviceChanged)});
            if (!awaitEdges(before + 2) || edges[before].first || !edges[before + 1].first)
                break;
            gaps.push_back(double(edges[before + 1].second - edges[before].second) / 1e6);
        }
        const bool complete = int(gaps.size()) == cycles;
        add("held_ptt_gap_p50" + ms, complete ? percentile(gaps, 50) : -1, "ms",
            complete ? QStringLiteral("PTT released across a device change; the panel repeats "
                                      "its state every %1 ms; %2 changes, min %3 ms")
                           .arg(interval)
                           .arg(cycles)
                           .arg(*std::min_element(gaps.begin(), gaps.end()), 0, 'f', 2)
                     : QStringLiteral("PTT NOT KEYED AGAIN after change %1").arg(gaps.size() + 1));
        add("held_ptt_gap_max" + ms, complete ? percentile(gaps, 100) : -1, "ms");
    }
    vp::setReportInterval(panel, 0);
    vp::setPtt(panel, false);
    awaitEdges(edges.size() + 1);
    transfer->setCurrentIndex(mode);
    plugin->setManager(nullptr);
}

// Plugs panels until `panels` holds `count` and lets the plug-in open them all.
bool openPanels(QObject *root, std::vector<int> &panels, int count)
{
    while (int(panels.size()) < count)
        panels.push_back(
            vp::plug(QStringLiteral("BENCH%1").arg(panels.size() + 1, 4, 10, QLatin1Char('0'))));
    while (int(panels.size()) > count) {
        vp::unplug(panels.back());
        panels.pop_back();
    }
    QMetaObject::invokeMethod(root, "deviceChanged", Qt::DirectConnection);
    settle(1500);
    // Every controller opens the first listed panel: that is the plug-in's rule.
    return vp::openHandles(panels.front()) == count;
}

// 1, 2 and 4 panels plugged in, each controller under the sustained stream. By
// the plug-in's rule every controller opens the first listed panel, whose one
// input queue the virtual panel shares among its handles: the stream is queued
// there `count` times as fast, so that each controller reads about 1000 reports/s.
// Key edges then fall to whichever controller reads the report, so losses are
// counted on the dial movements, and latency on dial 1's commands, whose value
// tags the report (1 .. 100).
void scaling(Host &host, QObject *root, std::vector<int> &panels)
{
    for (const int count : {1, 2, 4}) {
        const QString n = QString::number(count);
        if (!openPanels(root, panels, count)) {
            add("scaling_cpu_" + n, -1, "pct", "PANELS DID NOT OPEN");
            continue;
        }
        const int reports = 2 * int(count * 500 * 5 * scale());
        const int before[3] = {host.count[CmdMicGain], host.count[CmdSql],
                               host.count[CmdFilterLow]};
        std::vector<qint64> queued;
        queued.reserve(std::size_t(reports));
        host.micGainTimes.clear();
        host.recordKeys = true;
        const StreamCpu cpu = paced(
            reports / count,
            [&](int i) {
                for (int k = i * count; k < (i + 1) * count; ++k) {
                    const int key = 1 + (k / 2) % 14;
                    queued.push_back(nowNs());
                    vp::queueReport(panels.front(),
                                    report(k % 2 == 0 ? 1u << key : 0, 1, 1 + k % 100, -1, 1));
                }
            },
            [&] {
                waitFor([&] { return host.count[CmdFilterLow] - before[2] >= reports; }, 5000);
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            },
            count);
        host.recordKeys = false;
        const int lost = 3 * reports - (host.count[CmdMicGain] - before[0])
            - (host.count[CmdSql] - before[1]) - (host.count[CmdFilterLow] - before[2]);
        // The k-th arrival of tag t answers the k-th report queued with tag t.
        std::vector<double> latencies;
        std::vector<std::size_t> nextOfTag(101, 0);
        for (const auto &[tag, arrived] : host.micGainTimes) {
            if (tag < 1 || tag > 100)
                continue;
            const std::size_t k = std::size_t(tag - 1) + 100 * nextOfTag[std::size_t(tag)]++;
            if (k < queued.size())
                latencies.push_back(double(arrived - queued[k]) / 1000.0);
        }
        add("scaling_cpu_" + n, cpu.whole, "pct",
            QStringLiteral("whole process; %1 panel(s), %2 reports/s in all; %3; %4 dial moves "
                           "lost")
                .arg(count)
                .arg(count * 1000)
                .arg(cpuNote(cpu))
                .arg(lost));
        add("scaling_cpu_plugin_" + n, cpu.plugin(), "pct", "without the driver thread");
        add("scaling_event_to_host_p50_" + n, percentile(latencies, 50), "us");
        add("scaling_event_to_host_p99_" + n, percentile(latencies, 99), "us");
    }
    openPanels(root, panels, 1);
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

    std::vector<int> panels {vp::plug(QStringLiteral("BENCH0001"))};
    const int panel1 = panels.front();
    vp::PanelInfo floorInfo;
    floorInfo.serial = QStringLiteral("FLOOR");
    floorInfo.productId = FloorProductId;
    FloorReader floorReader(vp::plug(floorInfo));

    // The stream floor, before any of the plug-in's threads exist.
    StreamCpu streamFloor;
    if (phase("sustained") || phase("vfo") || phase("shown")) {
        QObject context;
        streamFloor = streamFloorCpu(floorReader, context);
        add("stream_floor_cpu", streamFloor.whole, "pct",
            "1000 reports/s into a bare reader, one queued signal each; whole process; "
                + cpuNote(streamFloor));
    }

    // Plug-in load to its first tab on screen.
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    const long rssBefore = residentKb();
    const auto loadStart = Clock::now();
    QPluginLoader loader(QStringLiteral(DIALIX_VIRTUAL_PLUGIN));
    DialixAbstract *plugin = measure::loadPlugin(loader, layout);
    if (!plugin)
        return 1;
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

    showPage(window, false);
    if (phase("idle")) {
        const auto [idle, floor] = idleCpu(3 * scale());
        add("idle_cpu_one_panel", idle, "pct", "floor: a bare thread waking every 5 ms, beside it",
            floor, std::max(0.5, 1.2 * floor));
    }
    if (phase("latency"))
        latency(host, panel1, floorReader);
    auto *enable = tabs->widget(0)->findChild<QCheckBox *>(QStringLiteral("chbEnable"));
    FloorRounds floorRounds;
    floorRounds.reader = &floorReader;
    floorRounds.setPanelOpen = [enable, panel1](bool open) {
        enable->setChecked(open);
        const auto deadline = Clock::now() + std::chrono::seconds(5);
        while (vp::openHandles(panel1) != (open ? 1 : 0) && Clock::now() < deadline)
            QCoreApplication::processEvents();
        settle(50);
    };
    if (phase("sustained"))
        sustained(host, panel1, floorRounds);
    if (phase("saturation"))
        saturation(host, panel1);
    if (phase("vfo"))
        vfoSpin(host, panel1, floorRounds, 10 * scale(), false);

    // Failing reads on the open panel (as hidraw does after an unplug).
    if (phase("failing")) {
        vp::setReadsFail(panel1, true);
        const auto [failing, floor] = idleCpu(3 * scale());
        add("failing_reads_cpu", failing, "pct",
            "one open panel whose reads fail; floor: a bare thread waking every 5 ms", floor,
            std::max(0.5, 1.2 * floor));
        vp::setReadsFail(panel1, false);
    }

    // The options page on screen.
    if (phase("shown")) {
        showPage(window, true);
        latency(host, panel1, floorReader, QStringLiteral("_page_shown"));
        sustainedPageShown(host, panel1, floorRounds);
        vfoSpin(host, panel1, floorRounds, 5 * scale(), true);
        showPage(window, false);
    }

    if (phase("hotplug"))
        add("hotplug_cycle_per_panel", hotplugCycleMs(plugin, 10), "ms", "1 panel open");
    if (phase("ptt"))
        heldPttGap(plugin, tabs, panel1);

    if (phase("two")) {
        openPanels(plugin, panels, 2);
        const int handles = vp::openHandles(panels.front());
        const auto [idle, floor] = idleCpu(3 * scale());
        add("idle_cpu_two_panels", idle, "pct",
            QStringLiteral("%1 controllers open; floor: one bare thread waking every 5 ms")
                .arg(handles),
            floor);
        add("hotplug_cycle_per_panel_2", hotplugCycleMs(plugin, 10) / std::max(1, handles), "ms",
            QStringLiteral("%1 panels open").arg(handles));
        openPanels(plugin, panels, 1);
    }

    if (phase("scaling"))
        scaling(host, plugin, panels);

    figures.print();
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
