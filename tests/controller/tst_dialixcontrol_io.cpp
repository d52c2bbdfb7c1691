// Tests of the panel controller with an open panel and PTT port: LEDs, PTT, reader.

#include "recorders.h"
#include "tests/support/ptymodemlines.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>
#include <mutex>

// The controller with its panel open on the virtual panel (reader thread
// running): LEDs, panel events, the opening retry loop; and the PTT, paddle and
// serial-port routes, the port being a pseudo-terminal with emulated lines.

namespace vp = VirtualPanel;

namespace {

// Closes every modal message box that comes up and keeps its texts.
struct MessageBoxCloser : QObject
{
    MessageBoxCloser()
    {
        connect(&timer, &QTimer::timeout, this, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                seen << box->windowTitle() + ": " + box->text();
                icons << box->icon();
                box->done(QMessageBox::Ok);
            }
        });
        timer.start(20);
    }
    QTimer timer;
    QStringList seen;
    QList<QMessageBox::Icon> icons;
};

// Selects a port for PTT transfer and enables it.
void enablePort(Ui::DialixOptions *ui, const QString &name, bool dtr, bool rts)
{
    ui->cbPttTransfer->setCurrentIndex(2);
    ui->cbPortName->addItem(name);
    ui->cbPortName->setCurrentText(name);
    ui->chbDTR->setChecked(dtr);
    ui->chbRTS->setChecked(rts);
    ui->chbEnableComPort->setChecked(true);
}

// Collects the debug lines of every thread while it lives.
class DebugLog
{
public:
    DebugLog() { previous = qInstallMessageHandler(&DebugLog::collect); }
    ~DebugLog()
    {
        qInstallMessageHandler(previous);
        std::lock_guard<std::mutex> lock(mutex());
        collected().clear();
    }
    QStringList lines(const QString &containing) const
    {
        std::lock_guard<std::mutex> lock(mutex());
        return collected().filter(containing);
    }

private:
    static std::mutex &mutex()
    {
        static std::mutex m;
        return m;
    }
    static QStringList &collected()
    {
        static QStringList list;
        return list;
    }
    static void collect(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        std::lock_guard<std::mutex> lock(mutex());
        if (type == QtDebugMsg)
            collected() << text;
    }
    QtMessageHandler previous = nullptr;
};

} // namespace

class TestDialixControlIo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(ModemLines::isActive(), "the pty modem-line emulation is not linked in");
    }

    void cleanup() { vp::reset(); }

    // A freshly opened panel shows the current state, one report per lamp
    // group: keys, encoders, MOX, second receiver, VFO B. Changes made while
    // it was closed were not sent.
    void openingSendsCurrentState()
    {
        const int panel = vp::plug(QStringLiteral("A1"));
        Rig rig;
        rig.manager.moxes[1] = true;
        rig.ui()->chbKeyLed->setChecked(true);
        rig.ui()->chbEncoderLed->setChecked(true);
        rig.ui()->chbVfoB->setChecked(true);
        QCOMPARE(vp::writeCount(panel), 0);

        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.panel().isOpen());
        QVERIFY(vp::waitForWrites(panel, 5, 5000));
        QCOMPARE(vp::ledMasks(panel), (QList<quint8> {0x10, 0x18, 0x1C, 0x1E, 0x1F}));

        rig.ui()->chbEnable->setChecked(false);
        QVERIFY(!rig.ctrl.panel().isOpen());
        QCOMPARE(vp::ledMask(panel), 0);
    }

    void ledBitsFollowTheirTriggers()
    {
        const int panel = vp::plug(QStringLiteral("A1"));
        Rig rig(true, 3, 0);
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(vp::waitForWrites(panel, 5, 5000));
        const auto mox = [&rig](quint32 t, bool on) {
            rig.manager.moxes[t] = on;
            emit rig.manager.moxChanged(t, on);
        };
        const QList<QPair<std::function<void()>, int>> steps = {
            {[&] { rig.ui()->chbVfoB->setChecked(true); }, 0x01},
            {[&] { rig.ui()->cbReceiver->setCurrentIndex(1); }, 0x03},
            {[&] { rig.ui()->chbKeyLed->setChecked(true); }, 0x13},
            {[&] { rig.ui()->chbEncoderLed->setChecked(true); }, 0x1B},
            {[&] { mox(0, true), mox(1, true); }, 0x1F},
            {[&] { mox(0, false); }, 0x1F}, // transceiver 1 still transmits
            {[&] { mox(1, false); }, 0x1B},
            {[&] { QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton32"); }, 0x1A}, // VFO A/B
            {[&] { rig.ui()->cbReceiver->setCurrentIndex(0); }, 0x18},
            {[&] { rig.ui()->chbKeyLed->setChecked(false); }, 0x08},
            {[&] { rig.ui()->chbEncoderLed->setChecked(false); }, 0x00},
        };
        for (int i = 0; i < steps.size(); ++i) {
            steps.at(i).first();
            QCOMPARE(int(rig.ctrl.panel().ledMask()), steps.at(i).second);
            QTRY_COMPARE_WITH_TIMEOUT(vp::ledMask(panel), steps.at(i).second, 5000);
        }

        // A transceiver the host does not have changes nothing and sends nothing.
        const int written = vp::writeCount(panel); // the last step's report was the last one
        rig.manager.moxes[2] = true;
        emit rig.manager.moxChanged(2, true);
        QTest::qWait(50);
        QCOMPARE(vp::writeCount(panel), written);
    }

    // Through the reader thread: keys, dial pushes and turns, PTT and paddle.
    void panelEventsReachTheHost()
    {
        const int panel = vp::plug(QStringLiteral("A1"));
        Rig rig;
        QVERIFY(rig.ctrl.assignButtonFunction(3, 1));
        QVERIFY(rig.ctrl.assignButtonFunction(16, 28));
        QVERIFY(rig.ctrl.assignDialFunction(2, 11));
        rig.ui()->chbEnable->setChecked(true);

        vp::pressKey(panel, 3);
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent, msg({110, 1u}), 5000);
        QVERIFY(rig.ctrl.optionsWidget()->isKeyLit(3));
        vp::releaseKey(panel, 3);
        QTRY_VERIFY_WITH_TIMEOUT(!rig.ctrl.optionsWidget()->isKeyLit(3), 5000);

        vp::pushDial(panel, 2, true);
        vp::pushDial(panel, 2, false);
        vp::turnDial(panel, 2, -4);
        vp::turnDial(panel, 0, 1);
        const QStringList expected = msg({110, 1u})
            << describeMessage({124}) << describeMessage({144, 1u, -4})
            << describeMessage({143, 1u, 0u, 1});
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent, expected, 5000);

        vp::setPtt(panel, true);
        vp::setDash(panel, true);
        vp::setDot(panel, true);
        vp::setDash(panel, false);
        QTRY_COMPARE_WITH_TIMEOUT(rig.cwKey.calls,
                                  (QStringList {"setTrx(1,1,true)", "setKey(1,1,true,false)",
                                                "setKey(1,1,true,true)", "setKey(1,1,false,true)"}),
                                  5000);

        // Reports queued back to back cross in batches: every edge and
        // movement arrives, in the order the panel sent them.
        rig.sent.clear();
        QStringList burst;
        for (int i = 0; i < 300; ++i) {
            vp::queueReport(panel, vp::makeReport(i % 2 ? 0 : 1u << 3, 0, 0, 1 + i % 100));
            if (i % 2 == 0)
                burst << describeMessage({110, 1u});
            burst << describeMessage({144, 1u, 1 + i % 100});
        }
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent.size(), burst.size(), 5000);
        QCOMPARE(rig.sent, burst);

        // A VFO spin's movements reach the coalescer without waking this
        // thread each; the last one after a pause is not stranded.
        rig.sent.clear();
        for (int i = 0; i < 40; ++i) {
            vp::turnDial(panel, 0, 1);
            QTest::qWait(1);
        }
        QTest::qWait(25);
        vp::turnDial(panel, 0, 7);
        QTRY_VERIFY_WITH_TIMEOUT(rig.sent.endsWith(describeMessage({143, 1u, 0u, 7})), 5000);
    }

    // While "Enable" is ticked and no panel opens, the controller looks again
    // once a second; a panel plugged in meanwhile is picked up.
    void retryLoop()
    {
        Rig rig;
        const int start = vp::enumerations();
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.retryPending());
        QTRY_VERIFY_WITH_TIMEOUT(vp::enumerations() >= start + 3, 10000);
        const int panel = vp::plug(QStringLiteral("A1"));
        QTRY_VERIFY_WITH_TIMEOUT(rig.ctrl.panel().isOpen(), 5000);
        QCOMPARE(vp::openHandles(panel), 1);
        QVERIFY(!rig.ctrl.retryPending());

        // Unticked: closed, and no further attempt.
        vp::unplug(panel);
        rig.ui()->chbEnable->setChecked(false);
        QVERIFY(!rig.ctrl.panel().isOpen());
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.retryPending());
        rig.ui()->chbEnable->setChecked(false);
        const int stopped = vp::enumerations();
        QTest::qWait(1300);
        QCOMPARE(vp::enumerations(), stopped);
    }

    // ---- PTT, paddle, serial port -----------------------------------------

    void panelThatStopsReleases_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("route");
        const QStringList ways = {"closeDevice, reopened", "open(false)",          "terminate()",
                                  "unplugged, closed",     "controller destroyed", "host quits"};
        const QStringList routes = {"CW key", "host", "COM port", "COM port, RTS unticked",
                                    "paddle"};
        for (const QString &how : ways) {
            for (const QString &route : routes)
                QTest::addRow("%s, %s", qPrintable(how), qPrintable(route)) << how << route;
        }
    }

    // However the panel stops delivering while it holds PTT or a paddle
    // contact, the release goes out the way the press went (on the lines that
    // were raised, also one unticked meanwhile). Reopened while still held, it
    // keys again. Failing reads are logged once.
    void panelThatStopsReleases()
    {
        QFETCH(QString, how);
        QFETCH(QString, route);
        const int panel = vp::plug(QStringLiteral("A1"));
        vp::setReportInterval(panel, 5);
        PtyPort pty;
        QVERIFY2(pty.isValid(), qPrintable(pty.errorString()));
        RecordingCwKey key;
        RecordingManager manager;
        manager.setCwKeyControl(&key);
        auto ctrl = std::make_unique<DialixControl>();
        ctrl->setChannels(3);
        Ui::DialixOptions *ui = DialixTestAccess::ui(*ctrl->optionsWidget());
        ui->cbReceiver->setCurrentIndex(1);
        ctrl->setDevManager(&manager);

        const bool host = route == QLatin1String("host");
        const bool paddle = route == QLatin1String("paddle");
        const bool com = route.startsWith(QLatin1String("COM"));
        const int rekeyed = route.endsWith(QLatin1String("unticked"))
            ? int(ModemLines::Dtr)
            : ModemLines::Dtr | ModemLines::Rts;
        if (com)
            enablePort(ui, pty.portName(), true, true);
        else
            ui->cbPttTransfer->setCurrentIndex(host ? 1 : 0);
        const QStringList &calls = host ? manager.calls : key.calls;
        const QString press = paddle ? "setKey(1,1,true,false)"
            : host                   ? "signal txTransfer(1,true)"
                                     : "setTrx(1,1,true)";
        const QString release = paddle ? "setKey(1,1,false,false)"
            : host                     ? "signal txTransfer(1,false)"
                                       : "setTrx(1,1,false)";
        const auto keyed = [&] {
            return com ? pty.lines() & ModemLines::Output : int(calls.size() % 2);
        };
        ui->chbEnable->setChecked(true);
        QVERIFY(ctrl->panel().isOpen());
        paddle ? vp::setDash(panel, true) : vp::setPtt(panel, true);
        QTRY_COMPARE_WITH_TIMEOUT(keyed(), com ? ModemLines::Dtr | ModemLines::Rts : 1, 5000);
        if (rekeyed == ModemLines::Dtr)
            ui->chbRTS->setChecked(false); // while PTT is held

        DebugLog log;
        if (how.startsWith(QLatin1String("closeDevice")))
            ctrl->panel().closeDevice();
        else if (how == QLatin1String("open(false)"))
            ui->chbEnable->setChecked(false);
        else if (how == QLatin1String("terminate()"))
            ctrl->terminate();
        else if (how.startsWith(QLatin1String("unplugged"))) {
            vp::unplug(panel);
            QTest::qWait(50);
            ctrl->panel().closeDevice();
        } else if (how == QLatin1String("host quits")) {
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
            QCoreApplication::exec();
        } else {
            ctrl.reset();
        }
        QTRY_COMPARE_WITH_TIMEOUT(keyed(), 0, 5000);
        if (!com)
            QCOMPARE(calls, (QStringList {press, release}));

        if (how.endsWith(QLatin1String("reopened"))) {
            ctrl->open(true);
            QTRY_COMPARE_WITH_TIMEOUT(keyed(), com ? rekeyed : 1, 5000);
            if (!com)
                QCOMPARE(calls, (QStringList {press, release, press}));
        }
        QCOMPARE(log.lines(QStringLiteral("reading the panel fails")).size(),
                 how.startsWith(QLatin1String("unplugged")) ? 1 : 0);
    }

    void pttRoutes_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("modeAtRelease");
        QTest::addColumn<bool>("bound");
        QTest::addColumn<bool>("cwKeyObject");
        QTest::addColumn<QStringList>("cwKey");
        QTest::addColumn<QStringList>("manager");
        const QStringList trx = {"setTrx(1,1,true)", "setTrx(1,1,false)"};
        const QStringList tx = {"signal txTransfer(1,true)", "signal txTransfer(1,false)"};
        const QStringList none;
        QTest::newRow("no transfer") << 0 << 0 << true << true << trx << none;
        QTest::newRow("COM port not enabled") << 2 << 2 << true << true << trx << none;
        QTest::newRow("to the host") << 1 << 1 << true << true << none << tx;
        QTest::newRow("no CW-key object") << 0 << 0 << true << false << none << none;
        QTest::newRow("no manager") << 0 << 0 << false << true << none << none;
        QTest::newRow("no manager, to the host") << 1 << 1 << false << true << none << none;
        // The release also goes where the press went.
        QTest::newRow("to the host, then no transfer")
            << 1 << 0 << true << true << QStringList {"setTrx(1,1,false)"} << tx;
    }

    void pttRoutes()
    {
        QFETCH(int, mode);
        QFETCH(int, modeAtRelease);
        QFETCH(bool, bound);
        QFETCH(bool, cwKeyObject);
        QFETCH(QStringList, cwKey);
        QFETCH(QStringList, manager);
        Rig rig(bound);
        if (!cwKeyObject)
            rig.manager.setCwKeyControl(nullptr);
        rig.ui()->cbPttTransfer->setCurrentIndex(mode);
        rig.event(&Dialix::ptt, true);
        rig.ui()->cbPttTransfer->setCurrentIndex(modeAtRelease);
        rig.event(&Dialix::ptt, false);
        QCOMPARE(rig.cwKey.calls, cwKey);
        QCOMPARE(rig.manager.calls, manager);
    }

    void pttToComPort_data()
    {
        QTest::addColumn<bool>("dtr");
        QTest::addColumn<bool>("rts");
        QTest::newRow("DTR") << true << false;
        QTest::newRow("RTS") << false << true;
        QTest::newRow("both") << true << true;
        QTest::newRow("neither") << false << false;
    }

    // The chosen lines follow PTT and nobody else is told, also when no line
    // is chosen. Disabled again, PTT goes to the CW-key object.
    void pttToComPort()
    {
        QFETCH(bool, dtr);
        QFETCH(bool, rts);
        PtyPort pty;
        QVERIFY2(pty.isValid(), qPrintable(pty.errorString()));
        Rig rig;
        enablePort(rig.ui(), pty.portName(), dtr, rts);
        QVERIFY(rig.ui()->chbEnableComPort->isChecked());
        QCOMPARE(pty.lines() & ModemLines::Output, 0);

        rig.event(&Dialix::ptt, true);
        const int lines = (dtr ? ModemLines::Dtr : 0) | (rts ? ModemLines::Rts : 0);
        QCOMPARE(ModemLines::describe(pty.lines() & ModemLines::Output),
                 ModemLines::describe(lines));
        rig.event(&Dialix::ptt, false);
        QCOMPARE(pty.lines() & ModemLines::Output, 0);
        QCOMPARE(rig.cwKey.calls, QStringList());
        QCOMPARE(rig.manager.calls, QStringList());

        rig.ui()->chbEnableComPort->setChecked(false);
        rig.event(&Dialix::ptt, true);
        QCOMPARE(rig.cwKey.calls, QStringList {"setTrx(1,1,true)"});
    }

    // An empty port name unchecks silently; a port that does not open is
    // reported once, and the box is unchecked.
    void portOpenFailures()
    {
        QCoreApplication::setApplicationName(QStringLiteral("TestHost"));
        MessageBoxCloser closer;
        Rig rig;
        rig.ui()->cbPortName->clear();
        rig.ui()->chbEnableComPort->setChecked(true);
        QVERIFY(!rig.ui()->chbEnableComPort->isChecked());
        QTest::qWait(60);
        QCOMPARE(closer.seen, QStringList());

        enablePort(rig.ui(), QStringLiteral("/nonexistent/ttyDIALIX"), true, true);
        QVERIFY(!rig.ui()->chbEnableComPort->isChecked());
        QCOMPARE(closer.seen,
                 QStringList {"TestHost: Failed to open /nonexistent/ttyDIALIX for "
                              "PTT transfer!"});
        QCOMPARE(closer.icons, QList<QMessageBox::Icon> {QMessageBox::Critical});
    }
};

QTEST_MAIN(TestDialixControlIo)
#include "tst_dialixcontrol_io.moc"
