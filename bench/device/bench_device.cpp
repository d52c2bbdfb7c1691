// Figures of the panel device over the virtual panel: report-to-slot latency
// against a bare queued signal, a 1 kHz report stream, the saturation rate and
// the CPU of an open panel (idle, and with every read failing).
#include "bench/measure.h"
#include "plugins/panels/dialix/source/dialix.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

namespace vp = VirtualPanel;
using measure::CpuMeter;
using measure::percentile;
using Clock = std::chrono::steady_clock;

namespace {

qint64 nowNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

// Serves the main thread's events until `done` holds.
template<typename Pred>
void serveUntil(Pred done)
{
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
}

// One event in flight at a time: the driver stamps and fires, the slot on the
// main thread measures and acknowledges, the driver pauses a random 0.2-1 ms.
struct PingPong
{
    std::atomic<qint64> stamp {0};
    std::mutex mutex;
    std::condition_variable acked;
    bool ack = false;
    std::vector<double> latenciesUs;
    std::atomic<bool> finished {false};

    void received()
    {
        latenciesUs.push_back(double(nowNs() - stamp.load()) / 1000.0);
        std::lock_guard<std::mutex> lock(mutex);
        ack = true;
        acked.notify_one();
    }

    template<typename Fire>
    void drive(int samples, Fire fire)
    {
        std::mt19937 random(42);
        std::uniform_int_distribution<int> pause(200, 1000);
        for (int i = 0; i < samples; ++i) {
            {
                std::lock_guard<std::mutex> lock(mutex);
                ack = false;
            }
            stamp.store(nowNs());
            fire(i);
            std::unique_lock<std::mutex> lock(mutex);
            acked.wait(lock, [this] { return ack; });
            lock.unlock();
            std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        }
        finished.store(true);
        QCoreApplication::instance()->thread()->eventDispatcher()->wakeUp();
    }
};

class Emitter : public QObject
{
    Q_OBJECT
signals:
    void ping();
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    qRegisterMetaType<Dialix::Buttons>("Dialix::Buttons");
    qRegisterMetaType<Dialix::Dials>("Dialix::Dials");
    qRegisterMetaType<Dialix::DialButtons>("Dialix::DialButtons");
    measure::Report report("device");
    constexpr int Samples = 1000;

    // Floor: a bare queued signal from a plain thread to the main thread.
    PingPong floorRun;
    {
        Emitter emitter;
        QObject receiver;
        QObject::connect(&emitter, &Emitter::ping, &receiver, [&] { floorRun.received(); });
        std::thread driver([&] { floorRun.drive(Samples, [&](int) { emit emitter.ping(); }); });
        serveUntil([&] { return floorRun.finished.load(); });
        driver.join();
    }

    // The same pattern through the panel: report queued on the virtual panel,
    // read and decoded on the reader thread, button() handled on the main thread.
    vp::reset();
    const int panel = vp::plug("BENCH");
    PingPong panelRun;
    {
        Dialix device;
        QObject receiver;
        QObject::connect(&device, &Dialix::button, &receiver,
                         [&](Dialix::Buttons, bool) { panelRun.received(); });
        device.findDevices();
        if (!device.openDevice()) {
            std::fprintf(stderr, "cannot open the virtual panel\n");
            return 1;
        }
        std::thread driver([&] {
            panelRun.drive(Samples, [&](int i) {
                if (i % 2 == 0)
                    vp::pressKey(panel, 1);
                else
                    vp::releaseKey(panel, 1);
            });
        });
        serveUntil([&] { return panelRun.finished.load(); });
        driver.join();
        device.closeDevice();
    }
    const double floorP50 = percentile(floorRun.latenciesUs, 50);
    const double floorP99 = percentile(floorRun.latenciesUs, 99);
    report.add("report_to_slot_p50", percentile(panelRun.latenciesUs, 50), "us",
               "floor: bare cross-thread queued signal", floorP50);
    report.add("report_to_slot_p99", percentile(panelRun.latenciesUs, 99), "us",
               "floor: bare cross-thread queued signal", floorP99);

    // A full-speed USB panel's maximum: one report per millisecond for 10 s,
    // each report toggling one key, so every report carries exactly one edge.
    {
        constexpr int Reports = 10000;
        Dialix device;
        QObject receiver;
        int edges = 0;
        int outOfOrder = 0;
        quint32 expectWord = 0; // a new device starts from an all-open word
        quint32 word = 0;
        QObject::connect(&device, &Dialix::button, &receiver, [&](Dialix::Buttons b, bool s) {
            expectWord ^= 1u << b;
            if (bool(expectWord & (1u << b)) != s)
                ++outOfOrder;
            ++edges;
        });
        std::atomic<bool> done {false};
        device.findDevices();
        device.openDevice();
        QCoreApplication::processEvents();
        CpuMeter cpu;
        std::thread driver([&] {
            auto next = Clock::now();
            for (int i = 0; i < Reports; ++i) {
                next += std::chrono::milliseconds(1);
                std::this_thread::sleep_until(next);
                word ^= 1u << (i % 15);
                vp::queueReport(panel, vp::makeReport(word));
            }
            done.store(true);
            QCoreApplication::instance()->thread()->eventDispatcher()->wakeUp();
        });
        serveUntil([&] { return done.load(); });
        driver.join();
        vp::waitUntilRead(panel, 2000);
        const auto settle = Clock::now() + std::chrono::milliseconds(200);
        while (edges < Reports && Clock::now() < settle)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        const double cpuPercent = cpu.percent();
        device.closeDevice();
        report.add(
            "stream_1khz_edges_lost", double(Reports - edges), "count",
            QStringLiteral("%1 reports in 10 s, %2 out of order").arg(Reports).arg(outOfOrder));
        report.add("stream_1khz_cpu", cpuPercent, "pct",
                   "whole process, the simulated panel's thread included");
    }

    // A backlog of reports, each changing one key, for the saturation runs.
    const auto queueBacklog = [&](int reports) {
        quint32 word = 0;
        for (int i = 0; i < reports; ++i) {
            word ^= 1u << (i % 15);
            vp::queueReport(panel, vp::makeReport(word));
        }
    };

    // Saturation: a backlog of reports read as fast as the loop goes, every edge
    // handled on the main thread.
    {
        constexpr int Reports = 100000;
        queueBacklog(Reports);
        Dialix device;
        QObject receiver;
        int edges = 0;
        QObject::connect(&device, &Dialix::button, &receiver,
                         [&](Dialix::Buttons, bool) { ++edges; });
        QTimer tick; // bounds each wait below
        tick.start(50);
        const auto started = Clock::now();
        const auto deadline = started + std::chrono::seconds(30);
        device.findDevices();
        device.openDevice();
        while (edges < Reports && Clock::now() < deadline) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - started).count();
        device.closeDevice();
        report.add("saturation_reports", Reports / seconds, "per_s",
                   "read, decoded and handled on the main thread");
    }
    {
        // The reader alone: the same backlog with nothing connected.
        constexpr int Reports = 100000;
        queueBacklog(Reports);
        Dialix device;
        const auto started = Clock::now();
        device.findDevices();
        device.openDevice();
        vp::waitUntilRead(panel, 30000);
        const double seconds = std::chrono::duration<double>(Clock::now() - started).count();
        device.closeDevice();
        report.add("saturation_reader_only", Reports / seconds, "per_s", "read and decoded");
    }

    // An open panel with nothing to say, and one whose every read fails at once
    // (an unplugged hidraw node).
    for (const bool failing : {false, true}) {
        Dialix device;
        device.findDevices();
        device.openDevice();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        vp::setReadsFail(panel, failing);
        const int readsBefore = vp::readCalls(panel);
        CpuMeter cpu;
        std::this_thread::sleep_for(std::chrono::seconds(3));
        const double cpuPercent = cpu.percent();
        const int reads = vp::readCalls(panel) - readsBefore;
        vp::setReadsFail(panel, false);
        device.closeDevice();
        report.add(failing ? "read_error_cpu" : "idle_cpu", cpuPercent, "pct",
                   QStringLiteral("%1 reads per second").arg(reads / 3));
    }
    vp::reset();

    report.print();
    return 0;
}

#include "bench_device.moc"
