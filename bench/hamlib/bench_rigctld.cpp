// The reference host's Hamlib radio against Hamlib's rigctld with its dummy
// radio (model 1), started on a free loopback port.
//
// The plug-in (libdialix_virtual.so) over a virtual panel, with the Hamlib
// radio as its host's device manager: the VFO dial turned one step every 10 ms
// (the plug-in sends panelVFO, 10 Hz a step) for BENCH_SCALE x 5 s; in the
// second half the panel's PTT is pressed and released every 250 ms. Printed beside the round-trip
// floor measured in the same run (a bare connection setting the frequency):
//  - step to set sent: from a step to the first frequency set that includes it;
//  - step to radio confirmed: from a step to rigctld's answer to that set;
//  - the final offset between the radio's frequency and the last target (0);
//  - PTT press or release to its T command on the wire (it waits only for
//    the one set in flight) and to rigctld's answer to it.

#include "bench/measure.h"
#include "bench/pluginload.h"
#include "command/commandtable.h"
#include "tools/host/hamlibradio.h"
#include "tools/host/radiomodel.h"
#include "tools/host/rigctldprocess.h"
#include "tools/virtualpanel/virtualpanel.h"

#include "interfaces/dialixabstract.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPluginLoader>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include <cstdio>
#include <vector>

namespace {

// Runs the event loop until `done` or `ms` passed.
template<typename F>
bool waitFor(F done, int ms)
{
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    return done();
}

double ms(qint64 ns)
{
    return double(ns) / 1e6;
}

// The first panel enabled, PTT to the host's CW-key object.
void writeSettings(const QString &path)
{
    QSettings s(path, QSettings::IniFormat);
    s.setValue(QStringLiteral("Dialix1/Options/Enable"), true);
    s.setValue(QStringLiteral("Dialix1/Options/Receiver"), 0);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (QStandardPaths::findExecutable(QStringLiteral("rigctld")).isEmpty()) {
        std::fprintf(stderr,
                     "rigctld not found (scripts/setup-deps.sh installs libhamlib-utils)\n");
        return 1;
    }
    const double scale = qMax(0.1, qEnvironmentVariable("BENCH_SCALE", "1").toDouble());
    RigctldProcess rigctld;
    if (!rigctld.start({})) {
        std::fprintf(stderr, "%s\n", qPrintable(rigctld.errorString()));
        return 1;
    }
    const QString host = QStringLiteral("127.0.0.1");
    QElapsedTimer clock;
    clock.start();

    // The floor: a bare connection setting the frequency, one set at a time.
    std::vector<double> floor;
    {
        RigctlConnection bare;
        bare.open(host, rigctld.port());
        if (!waitFor([&] { return bare.isReady(); }, 10000)) {
            std::fprintf(stderr, "rigctld did not answer\n");
            return 1;
        }
        qint64 sent = 0;
        QObject::connect(&bare, &RigctlConnection::replied, &bare,
                         [&](const QByteArray &, const QStringList &, int) {
                             floor.push_back(ms(clock.nsecsElapsed() - sent));
                         });
        for (int i = 0; i < 100; ++i) {
            sent = clock.nsecsElapsed();
            bare.send("F " + QByteArray::number(7000000 + 10 * i));
            waitFor([&] { return !bare.isBusy(); }, 5000);
        }
    }

    HamlibRadio radio;
    HostCwKey cwKey(&radio);
    radio.setCwKeyControl(&cwKey);
    radio.open(host, rigctld.port());
    waitFor([&] { return radio.isConnected() && radio.frequency(0) > 0; }, 10000);
    const qint64 start = qint64(radio.frequency(0));

    // The plug-in, handed the radio as the host hands its device manager.
    writeSettings(QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini"));
    QTemporaryDir dir;
    QSettings hostSettings(dir.filePath(QStringLiteral("host.ini")), QSettings::IniFormat);
    writeSettings(hostSettings.fileName());
    hostSettings.sync();
    const int panel = VirtualPanel::plug(QStringLiteral("BENCH0001"));
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    QPluginLoader loader(QStringLiteral(DIALIX_VIRTUAL_PLUGIN));
    DialixAbstract *plugin = measure::loadPlugin(loader, layout);
    if (!plugin)
        return 1;
    // Step i is the i-th panelVFO message; it asks for stepTarget[i].
    std::vector<qint64> stepAt, stepTarget;
    qint64 total = 0;
    QObject::connect(plugin, &DialixAbstract::sCommand, &radio, [&](const QVariant &m) {
        const QVariantList message = m.toList();
        if (message.value(0).toInt() == int(qrv::Id::panelVFO)) {
            total += message.value(3).toInt();
            stepAt.push_back(clock.nsecsElapsed());
            stepTarget.push_back(start + 10 * total);
        }
        radio.panelCommand(message);
    });
    plugin->setManager(&radio);
    plugin->setChannels(1);
    plugin->readSettings(&hostSettings);
    waitFor([&] { return VirtualPanel::openHandles(panel) == 1; }, 5000);
    waitFor([] { return false; }, 300);
    if (VirtualPanel::openHandles(panel) != 1) {
        std::fprintf(stderr, "the panel did not open\n");
        return 1;
    }

    std::vector<double> toSent, toConfirmed, pttLatency, pttToSent;
    size_t sentUpTo = 0, confirmedUpTo = 0;
    int sets = 0;
    bool pttDown = false;
    qint64 pttAt = -1;
    QObject::connect(radio.connection(), &RigctlConnection::trace, &radio, [&](const QString &l) {
        if (l.startsWith(QLatin1String("> +T ")) && pttAt >= 0)
            pttToSent.push_back(ms(clock.nsecsElapsed() - pttAt));
        if (!l.startsWith(QLatin1String("> +F ")))
            return;
        const qint64 hz = l.mid(5).toLongLong();
        ++sets;
        for (; sentUpTo < stepAt.size() && stepTarget[sentUpTo] <= hz; ++sentUpTo)
            toSent.push_back(ms(clock.nsecsElapsed() - stepAt[sentUpTo]));
    });
    QObject::connect(radio.connection(), &RigctlConnection::replied, &radio,
                     [&](const QByteArray &command, const QStringList &, int code) {
                         const qint64 now = clock.nsecsElapsed();
                         if (code == 0 && command.startsWith("F ")) {
                             const qint64 hz = command.mid(2).toLongLong();
                             for (;
                                  confirmedUpTo < stepAt.size() && stepTarget[confirmedUpTo] <= hz;
                                  ++confirmedUpTo)
                                 toConfirmed.push_back(ms(now - stepAt[confirmedUpTo]));
                         } else if (command.startsWith("T ") && pttAt >= 0) {
                             pttLatency.push_back(ms(now - pttAt));
                             pttAt = -1;
                         }
                     });

    const int steps = int(500 * scale);
    int turns = 0;
    QTimer spin;
    spin.setTimerType(Qt::PreciseTimer);
    QObject::connect(&spin, &QTimer::timeout, &radio, [&] {
        ++turns;
        VirtualPanel::turnDial(panel, 0, 1);
        if (turns > steps / 2 && turns % 25 == 12) {
            pttAt = clock.nsecsElapsed();
            pttDown = !pttDown;
            VirtualPanel::setPtt(panel, pttDown);
        }
        if (turns >= steps)
            spin.stop();
    });
    spin.start(10);
    waitFor([&] { return !spin.isActive(); }, 60000);
    VirtualPanel::setPtt(panel, false);
    waitFor([] { return false; }, 100);
    waitFor([&] { return radio.idle(); }, 10000);
    plugin->closeDevices();
    plugin->setManager(nullptr);

    // What the radio says, asked by another client.
    RigctlConnection other;
    other.open(host, rigctld.port());
    waitFor([&] { return other.isReady(); }, 10000);
    qint64 final = 0;
    QObject::connect(
        &other, &RigctlConnection::replied, &other,
        [&](const QByteArray &, const QStringList &v, int) { final = v.value(0).toLongLong(); });
    other.send("f");
    waitFor([&] { return !other.isBusy(); }, 5000);

    // The step figures are of the first half, the spin alone; PTT is pressed and
    // released in the second half.
    const size_t firstHalf = stepAt.size() / 2;
    toSent.resize(qMin(toSent.size(), firstHalf));
    toConfirmed.resize(qMin(toConfirmed.size(), firstHalf));
    const double p50 = measure::percentile(floor, 50), p99 = measure::percentile(floor, 99);
    measure::Report report("rigctld");
    report.add(QStringLiteral("rtt_floor_p50"), p50, "ms",
               QStringLiteral("bare connection, F set to RPRT"));
    report.add(QStringLiteral("rtt_floor_p99"), p99, "ms");
    report.add(QStringLiteral("step_to_set_sent_p50"), measure::percentile(toSent, 50), "ms",
               QString(), p50);
    report.add(QStringLiteral("step_to_set_sent_p99"), measure::percentile(toSent, 99), "ms",
               QString(), p99);
    report.add(QStringLiteral("step_to_confirmed_p50"), measure::percentile(toConfirmed, 50), "ms",
               QStringLiteral("target: within about two round trips"), p50, 2 * p50);
    report.add(QStringLiteral("step_to_confirmed_p99"), measure::percentile(toConfirmed, 99), "ms",
               QString(), p99, 2 * p99);
    report.add(QStringLiteral("steps"), double(stepAt.size()), "count",
               QStringLiteral("panelVFO from the plug-in, the dial turned every 10 ms"));
    report.add(QStringLiteral("sets_sent"), double(sets), "count",
               QStringLiteral("steps merged into fewer sets"));
    report.add(QStringLiteral("final_offset"), double(final - (start + 10 * total)), "Hz",
               QStringLiteral("radio minus last target"), measure::Report::None, 0);
    report.add(QStringLiteral("ptt_to_sent_p50"), measure::percentile(pttToSent, 50), "ms",
               QStringLiteral("press/release to T on the wire (waits for the set in flight)"), p50,
               p50);
    report.add(QStringLiteral("ptt_to_sent_p99"), measure::percentile(pttToSent, 99), "ms",
               QString(), p99, p99);
    report.add(QStringLiteral("ptt_to_confirmed_p50"), measure::percentile(pttLatency, 50), "ms",
               QStringLiteral("press/release to rigctld's RPRT"), p50);
    report.add(QStringLiteral("ptt_to_confirmed_p99"), measure::percentile(pttLatency, 99), "ms",
               QString(), p99);
    report.print();
    return final == start + 10 * total ? 0 : 1;
}
