// The reference host's Hamlib radio against Hamlib's rigctld with its dummy
// radio (model 1), started on a free loopback port.
//
// A VFO spin of 100 panel commands a second (the panelVFO messages the
// plug-in sends, one 10 Hz step each) for BENCH_SCALE x 5 s; in its second
// half PTT is pressed and released every 250 ms. Printed beside the round-trip
// floor measured in the same run (a bare connection setting the frequency):
//  - step to set sent: from a step to the first frequency set that includes it;
//  - step to radio confirmed: from a step to rigctld's answer to that set;
//  - the final offset between the radio's frequency and the last target (0);
//  - PTT press or release to its T command on the wire (it waits only for
//    the one set in flight) and to rigctld's answer to it.

#include "bench/measure.h"
#include "command/commandtable.h"
#include "tools/host/hamlibradio.h"
#include "tools/host/rigctldprocess.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QStandardPaths>
#include <QTimer>

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

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
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
    radio.open(host, rigctld.port());
    waitFor([&] { return radio.isConnected() && radio.frequency(0) > 0; }, 10000);
    const qint64 start = qint64(radio.frequency(0));

    // Step i asks for start + 10 * (i + 1).
    std::vector<qint64> stepAt;
    std::vector<double> toSent, toConfirmed, pttLatency, pttToSent;
    size_t sentUpTo = 0, confirmedUpTo = 0;
    int sets = 0;
    qint64 pttAt = -1;
    QObject::connect(radio.connection(), &RigctlConnection::trace, &radio, [&](const QString &l) {
        if (l.startsWith(QLatin1String("> +T ")) && pttAt >= 0)
            pttToSent.push_back(ms(clock.nsecsElapsed() - pttAt));
        if (!l.startsWith(QLatin1String("> +F ")))
            return;
        const qint64 hz = l.mid(5).toLongLong();
        ++sets;
        for (; sentUpTo < stepAt.size() && start + 10 * qint64(sentUpTo + 1) <= hz; ++sentUpTo)
            toSent.push_back(ms(clock.nsecsElapsed() - stepAt[sentUpTo]));
    });
    QObject::connect(radio.connection(), &RigctlConnection::replied, &radio,
                     [&](const QByteArray &command, const QStringList &, int code) {
                         const qint64 now = clock.nsecsElapsed();
                         if (code == 0 && command.startsWith("F ")) {
                             const qint64 hz = command.mid(2).toLongLong();
                             for (; confirmedUpTo < stepAt.size()
                                  && start + 10 * qint64(confirmedUpTo + 1) <= hz;
                                  ++confirmedUpTo)
                                 toConfirmed.push_back(ms(now - stepAt[confirmedUpTo]));
                         } else if (command.startsWith("T ") && pttAt >= 0) {
                             pttLatency.push_back(ms(now - pttAt));
                             pttAt = -1;
                         }
                     });

    const int steps = int(500 * scale);
    QTimer spin;
    spin.setTimerType(Qt::PreciseTimer);
    QObject::connect(&spin, &QTimer::timeout, &radio, [&] {
        stepAt.push_back(clock.nsecsElapsed());
        radio.panelCommand({int(qrv::Id::panelVFO), 0u, 0u, 1});
        if (int(stepAt.size()) > steps / 2 && stepAt.size() % 25 == 12) {
            pttAt = clock.nsecsElapsed();
            radio.setMox(0, !radio.mox(0) && (stepAt.size() / 25) % 2 == 0);
        }
        if (int(stepAt.size()) >= steps)
            spin.stop();
    });
    spin.start(10);
    waitFor([&] { return !spin.isActive(); }, 60000);
    radio.setMox(0, false);
    waitFor([&] { return radio.idle(); }, 10000);

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
    toSent.resize(qMin(toSent.size(), size_t(steps / 2)));
    toConfirmed.resize(qMin(toConfirmed.size(), size_t(steps / 2)));
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
               QStringLiteral("panelVFO at 100/s"));
    report.add(QStringLiteral("sets_sent"), double(sets), "count",
               QStringLiteral("steps merged into fewer sets"));
    report.add(QStringLiteral("final_offset"), double(final - (start + 10 * qint64(steps))), "Hz",
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
    return final == start + 10 * qint64(steps) ? 0 : 1;
}
