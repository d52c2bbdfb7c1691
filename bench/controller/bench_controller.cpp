// Figures of the panel controller: building one controller, the cost of one key
// press and one dial movement on the GUI thread, the latency from the panel's
// report to the command message through the reader thread, and the rate of VFO
// commands while the encoder reports as fast as it can.
#include "bench/measure.h"
#include "command/qrvcommand.h"
#include "plugins/panels/dialix/source/dialixcontrol.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace vp = VirtualPanel;
using measure::percentile;

namespace {

template<typename Pred>
bool serveUntil(Pred done, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    qRegisterMetaType<Dialix::Buttons>("Dialix::Buttons");
    qRegisterMetaType<Dialix::Dials>("Dialix::Dials");
    qRegisterMetaType<Dialix::DialButtons>("Dialix::DialButtons");
    measure::Report report("controller");

    // Building a controller: 17 key menus of 61 actions, 4 dial menus, the
    // options page, the serial port list.
    {
        const int rounds = 20;
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < rounds; ++i)
            DialixControl ctrl;
        report.add("construct_ms", double(clock.nsecsElapsed()) / 1e6 / rounds, "ms");
    }

    const int panel = vp::plug(QStringLiteral("BENCH1"));
    DialixControl ctrl;
    qint64 messages = 0;
    qint64 vfoMessages = 0;
    qint64 vfoSteps = 0;
    QObject::connect(ctrl.command(), &qrvCommand::sCommand, &ctrl, [&](const QVariant &m) {
        ++messages;
        const QVariantList list = m.toList();
        if (list.value(0).toInt() == int(qrv::Id::panelVFO)) {
            ++vfoMessages;
            vfoSteps += list.value(3).toInt();
        }
    });
    ctrl.assignButtonFunction(3, 1); // Band Up
    ctrl.assignDialFunction(1, 4); // Filter Low

    // One key press and release on the GUI thread, panel closed: the device's
    // signals and the controller's queued slots, run a hundred at a time.
    {
        const int rounds = 20000;
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < rounds; ++i) {
            emit ctrl.panel().button(Dialix::Key3, true);
            emit ctrl.panel().button(Dialix::Key3, false);
            if (i % 100 == 99)
                QCoreApplication::sendPostedEvents(&ctrl, QEvent::MetaCall);
        }
        report.add("press_release_us", double(clock.nsecsElapsed()) / 1e3 / rounds, "us");
        clock.restart();
        for (int i = 0; i < rounds; ++i) {
            emit ctrl.panel().dial(Dialix::Enc1, 1);
            if (i % 100 == 99)
                QCoreApplication::sendPostedEvents(&ctrl, QEvent::MetaCall);
        }
        report.add("dial_move_us", double(clock.nsecsElapsed()) / 1e3 / rounds, "us");
    }

    // Panel report to command message, one press at a time.
    ctrl.optionsWidget()->findChild<QCheckBox *>(QStringLiteral("chbEnable"))->setChecked(true);
    if (!ctrl.panel().isOpen()) {
        std::fprintf(stderr, "the virtual panel did not open\n");
        return 1;
    }
    {
        std::vector<double> latencies;
        const int samples = 500;
        for (int i = 0; i < samples; ++i) {
            const qint64 before = messages;
            QElapsedTimer clock;
            clock.start();
            vp::pressKey(panel, 3);
            if (!serveUntil([&] { return messages > before; }, 5000)) {
                std::fprintf(stderr, "no command after a key press\n");
                return 1;
            }
            latencies.push_back(double(clock.nsecsElapsed()) / 1e3);
            vp::releaseKey(panel, 3);
            vp::waitUntilRead(panel, 1000);
            QCoreApplication::processEvents();
        }
        report.add("key_to_command_p50_us", percentile(latencies, 50), "us");
        report.add("key_to_command_p99_us", percentile(latencies, 99), "us");
    }

    // The VFO encoder reporting +1 every 0.5 ms for two seconds: the coalescing
    // timer lets through at most one command per 10 ms tick.
    {
        vfoMessages = vfoSteps = 0;
        const int seconds = 2;
        int turned = 0;
        QElapsedTimer clock;
        clock.start();
        QElapsedTimer pace;
        pace.start();
        while (clock.elapsed() < seconds * 1000) {
            if (pace.nsecsElapsed() >= 500000) {
                vp::turnDial(panel, 0, 1);
                ++turned;
                pace.restart();
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        }
        serveUntil([] { return false; }, 50);
        const double elapsed = double(clock.nsecsElapsed()) / 1e9;
        report.add("vfo_reports_per_s", turned / elapsed, "per_s");
        // 100 per second, plus coarse-timer slack
        report.add("vfo_commands_per_s", double(vfoMessages) / elapsed, "per_s", {},
                   measure::Report::None, 105);
        report.add("vfo_steps_delivered_pct", turned ? 100.0 * double(vfoSteps) / turned : 0.0,
                   "pct");
    }

    ctrl.optionsWidget()->findChild<QCheckBox *>(QStringLiteral("chbEnable"))->setChecked(false);
    report.print();
    return 0;
}
