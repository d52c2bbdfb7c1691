#include "recorders.h"
#include "tests/support/ptymodemlines.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <vector>

// The controller with its panel open on the virtual panel (reader thread
// running): LEDs, events from the panel, the opening retry loop; and the PTT,
// paddle and serial-port routes, the serial port being a pseudo-terminal with
// emulated modem lines.

namespace {

// The LED mask the panel shows once all queued reports are written.
int shownMask(int panel, int reports)
{
    if (!VirtualPanel::waitForWrites(panel, reports, 5000))
        return -2;
    return VirtualPanel::ledMask(panel);
}

// Closes the next modal message box and keeps its texts.
struct MessageBoxCloser : QObject
{
    MessageBoxCloser()
    {
        connect(&timer, &QTimer::timeout, this, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                texts << box->text();
                titles << box->windowTitle();
                icons << box->icon();
                box->done(QMessageBox::Ok);
            }
        });
        timer.start(20);
    }
    QTimer timer;
    QStringList texts;
    QStringList titles;
    QList<QMessageBox::Icon> icons;
};

} // namespace

class TestDialixControlIo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<Dialix::Buttons>("Dialix::Buttons");
        qRegisterMetaType<Dialix::Dials>("Dialix::Dials");
        qRegisterMetaType<Dialix::DialButtons>("Dialix::DialButtons");
        QVERIFY2(ModemLines::isActive(), "the pty modem-line emulation is not linked in");
    }

    void cleanup() { VirtualPanel::reset(); }

    // ---- Opening and LEDs -------------------------------------------------

    // A freshly opened panel shows the current state: key and encoder lamps,
    // MOX, second receiver, VFO B, one report each, in that order.
    void openingSendsCurrentState()
    {
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig;
        rig.manager.moxes[1] = true;
        rig.ui()->chbKeyLed->setChecked(true);
        rig.ui()->chbEncoderLed->setChecked(true);
        rig.ui()->chbVfoB->setChecked(true);
        QCOMPARE(VirtualPanel::writeCount(panel), 0); // closed: nothing sent

        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.panel().isOpen());
        QVERIFY(!rig.ctrl.retryPending());
        QVERIFY(VirtualPanel::waitForWrites(panel, 5, 5000));
        QCOMPARE(VirtualPanel::ledMasks(panel), (QList<quint8> {0x10, 0x18, 0x1C, 0x1E, 0x1F}));

        rig.ui()->chbEnable->setChecked(false);
        QVERIFY(!rig.ctrl.panel().isOpen());
        QCOMPARE(VirtualPanel::ledMask(panel), 0);
    }

    void ledBitsFollowTheirTriggers()
    {
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig(true, 3, 0);
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.panel().isOpen());
        int reports = 5;
        QCOMPARE(shownMask(panel, reports), 0x00);

        struct Step
        {
            const char *what;
            std::function<void()> act;
            int mask;
        };
        const std::vector<Step> steps = {
            {"VFO B on", [&] { rig.ui()->chbVfoB->setChecked(true); }, 0x01},
            {"receiver 2", [&] { rig.ui()->cbReceiver->setCurrentIndex(1); }, 0x03},
            {"key lamps", [&] { rig.ui()->chbKeyLed->setChecked(true); }, 0x13},
            {"encoder lamps", [&] { rig.ui()->chbEncoderLed->setChecked(true); }, 0x1B},
            {"MOX on",
             [&] {
                 rig.manager.moxes[0] = true;
                 emit rig.manager.moxChanged(0, true);
             },
             0x1F},
            {"MOX off",
             [&] {
                 rig.manager.moxes[0] = false;
                 emit rig.manager.moxChanged(0, false);
             },
             0x1B},
            {"key function VFO A/B",
             [&] { QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton32")); }, 0x1A},
            {"key function Switch Receiver",
             [&] { QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "setFuncButton31")); }, 0x1A},
            {"receiver 1", [&] { rig.ui()->cbReceiver->setCurrentIndex(0); }, 0x18},
            {"key lamps off", [&] { rig.ui()->chbKeyLed->setChecked(false); }, 0x08},
            {"encoder lamps off", [&] { rig.ui()->chbEncoderLed->setChecked(false); }, 0x00},
        };
        for (const Step &step : steps) {
            const int before = VirtualPanel::writeCount(panel);
            step.act();
            QVERIFY2(VirtualPanel::waitForWrites(panel, before + 1, 5000), step.what);
            QTRY_COMPARE_WITH_TIMEOUT(VirtualPanel::ledMask(panel), step.mask, 5000);
            QCOMPARE(int(rig.ctrl.panel().ledMask()), step.mask);
        }
    }

    // One transceiver still in MOX keeps the lamp lit.
    void moxOfAnyTransceiver()
    {
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig(true, 2, 0);
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(VirtualPanel::waitForWrites(panel, 5, 5000));

        rig.manager.moxes[0] = rig.manager.moxes[1] = true;
        emit rig.manager.moxChanged(1, true);
        QCOMPARE(rig.ctrl.panel().ledMask() & 0x04, 0x04);
        rig.manager.moxes[0] = false;
        emit rig.manager.moxChanged(0, false);
        QCOMPARE(rig.ctrl.panel().ledMask() & 0x04, 0x04);
        rig.manager.moxes[1] = false;
        emit rig.manager.moxChanged(1, false);
        QCOMPARE(rig.ctrl.panel().ledMask() & 0x04, 0);

        // A transceiver the host does not have changes nothing and sends nothing.
        rig.manager.moxes[0] = true;
        const int before = 5 + 3;
        QVERIFY(VirtualPanel::waitForWrites(panel, before, 5000));
        emit rig.manager.moxChanged(2, true);
        QTest::qWait(50);
        QCOMPARE(VirtualPanel::writeCount(panel), before);
        QCOMPARE(rig.ctrl.panel().ledMask() & 0x04, 0);
    }

    // LED changes while the panel is closed are dropped; opening sends the
    // current state.
    void closedPanelDropsLedChanges()
    {
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig;
        rig.ui()->chbKeyLed->setChecked(true);
        rig.ui()->chbVfoB->setChecked(true);
        QCOMPARE(int(rig.ctrl.panel().ledMask()), 0);
        rig.ui()->chbEnable->setChecked(true);
        QCOMPARE(shownMask(panel, 5), 0x13);
    }

    // ---- Events from the panel --------------------------------------------

    void panelEventsReachTheHost()
    {
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig;
        QVERIFY(rig.ctrl.assignButtonFunction(3, 1));
        QVERIFY(rig.ctrl.assignButtonFunction(16, 28));
        QVERIFY(rig.ctrl.assignDialFunction(2, 11));
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.panel().isOpen());

        VirtualPanel::pressKey(panel, 3);
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent(), msg({110, 1u}), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(rig.button("pbFunc3")->isChecked(), 5000);
        VirtualPanel::releaseKey(panel, 3);
        QTRY_VERIFY_WITH_TIMEOUT(!rig.button("pbFunc3")->isChecked(), 5000);
        QCOMPARE(rig.messages.size(), 1);

        rig.messages.clear();
        VirtualPanel::pushDial(panel, 2, true);
        VirtualPanel::pushDial(panel, 2, false);
        VirtualPanel::turnDial(panel, 2, -4);
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent(), msg({124}) << describeMessage({144, 1u, -4}), 5000);

        // The VFO encoder: a burst within one tick gives one tuning step.
        rig.messages.clear();
        VirtualPanel::turnDial(panel, 0, 1);
        QTRY_COMPARE_WITH_TIMEOUT(rig.sent(), msg({143, 1u, 0u, 1}), 5000);
    }

    // ---- Retry loop -------------------------------------------------------

    void retriesWhileEnabled()
    {
        Rig rig;
        const int start = VirtualPanel::enumerations();
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(!rig.ctrl.panel().isOpen());
        QVERIFY(rig.ctrl.retryPending());
        // One attempt per second.
        QTRY_VERIFY_WITH_TIMEOUT(VirtualPanel::enumerations() >= start + 3, 10000);

        // A panel plugged in now is picked up by the next attempt.
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        QTRY_VERIFY_WITH_TIMEOUT(rig.ctrl.panel().isOpen(), 5000);
        QCOMPARE(VirtualPanel::openHandles(panel), 1);

        // Unticking "Enable" closes the panel and ends the loop.
        rig.ui()->chbEnable->setChecked(false);
        QVERIFY(!rig.ctrl.panel().isOpen());
        QVERIFY(!rig.ctrl.retryPending());
        VirtualPanel::unplug(panel);
        const int stopped = VirtualPanel::enumerations();
        QTest::qWait(1500);
        QCOMPARE(VirtualPanel::enumerations(), stopped);
    }

    void retryStopsWhenUnticked()
    {
        Rig rig;
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.retryPending());
        rig.ui()->chbEnable->setChecked(false);
        const int stopped = VirtualPanel::enumerations();
        QTest::qWait(1500);
        QCOMPARE(VirtualPanel::enumerations(), stopped);
        // restore() with "Enable" unticked does nothing.
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "restore"));
        QCOMPARE(VirtualPanel::enumerations(), stopped);
    }

    // An opening by another way (the plug-in root's) ends a pending retry.
    void successEndsPendingRetry()
    {
        Rig rig;
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.retryPending());
        VirtualPanel::plug(QStringLiteral("A1"));
        QVERIFY(QMetaObject::invokeMethod(&rig.ctrl, "open", Q_ARG(bool, true)));
        QVERIFY(rig.ctrl.panel().isOpen());
        QVERIFY(!rig.ctrl.retryPending());
    }

    // ---- PTT and paddle ---------------------------------------------------

    void pttRoutes_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("bound");
        QTest::addColumn<QStringList>("cwKey");
        QTest::addColumn<QStringList>("manager");
        QTest::newRow("no transfer")
            << 0 << true << QStringList {"setTrx(1,1,true)", "setTrx(1,1,false)"} << QStringList();
        QTest::newRow("to the host")
            << 1 << true << QStringList()
            << QStringList {"signal txTransfer(1,true)", "signal txTransfer(1,false)"};
        QTest::newRow("COM port not enabled")
            << 2 << true << QStringList {"setTrx(1,1,true)", "setTrx(1,1,false)"} << QStringList();
        QTest::newRow("no manager, no transfer") << 0 << false << QStringList() << QStringList();
        QTest::newRow("no manager, to the host") << 1 << false << QStringList() << QStringList();
    }

    void pttRoutes()
    {
        QFETCH(int, mode);
        QFETCH(bool, bound);
        QFETCH(QStringList, cwKey);
        QFETCH(QStringList, manager);
        Rig rig(bound);
        rig.ui()->cbPttTransfer->setCurrentIndex(mode);
        emit rig.ctrl.panel().ptt(true);
        emit rig.ctrl.panel().ptt(false);
        QCOMPARE(rig.cwKey.calls, cwKey);
        QCOMPARE(rig.manager.calls, manager);
        QCOMPARE(rig.sent(), QStringList());
    }

    // A host without a CW-key object gets nothing in the default route.
    void pttWithoutCwKeyObject()
    {
        Rig rig;
        rig.manager.setCwKeyControl(nullptr);
        emit rig.ctrl.panel().ptt(true);
        emit rig.ctrl.panel().dash(true);
        QCOMPARE(rig.cwKey.calls, QStringList());
        QCOMPARE(rig.manager.calls, QStringList());
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

    // The chosen lines follow PTT; the host is not told, also when no line is
    // chosen.
    void pttToComPort()
    {
        QFETCH(bool, dtr);
        QFETCH(bool, rts);
        PtyPort pty;
        QVERIFY2(pty.isValid(), qPrintable(pty.errorString()));
        Rig rig;
        rig.ui()->cbPttTransfer->setCurrentIndex(2);
        rig.ui()->cbPortName->addItem(pty.portName());
        rig.ui()->cbPortName->setCurrentText(pty.portName());
        rig.ui()->chbDTR->setChecked(dtr);
        rig.ui()->chbRTS->setChecked(rts);
        rig.ui()->chbEnableComPort->setChecked(true);
        QVERIFY(rig.ui()->chbEnableComPort->isChecked());
        QCOMPARE(pty.lines() & ModemLines::Output, 0); // low from open on

        const int expected = (dtr ? ModemLines::Dtr : 0) | (rts ? ModemLines::Rts : 0);
        emit rig.ctrl.panel().ptt(true);
        QCOMPARE(ModemLines::describe(pty.lines() & ModemLines::Output),
                 ModemLines::describe(expected));
        emit rig.ctrl.panel().ptt(false);
        QCOMPARE(pty.lines() & ModemLines::Output, 0);
        QCOMPARE(rig.cwKey.calls, QStringList());
        QCOMPARE(rig.manager.calls, QStringList());

        // Disabled again: PTT goes back to the CW-key object.
        rig.ui()->chbEnableComPort->setChecked(false);
        emit rig.ctrl.panel().ptt(true);
        QCOMPARE(rig.cwKey.calls, QStringList {"setTrx(1,1,true)"});
    }

    // From the panel's PTT input through the reader thread to the serial line.
    void pttFromPanelToLine()
    {
        PtyPort pty;
        QVERIFY2(pty.isValid(), qPrintable(pty.errorString()));
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig;
        rig.ui()->cbPttTransfer->setCurrentIndex(2);
        rig.ui()->cbPortName->addItem(pty.portName());
        rig.ui()->cbPortName->setCurrentText(pty.portName());
        rig.ui()->chbRTS->setChecked(true);
        rig.ui()->chbEnableComPort->setChecked(true);
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.panel().isOpen());

        VirtualPanel::setPtt(panel, true);
        QTRY_VERIFY_WITH_TIMEOUT(ModemLines::rts(pty.portName()), 5000);
        QVERIFY(!ModemLines::dtr(pty.portName()));
        VirtualPanel::setPtt(panel, false);
        QTRY_VERIFY_WITH_TIMEOUT(!ModemLines::rts(pty.portName()), 5000);
    }

    // Each edge of either contact sends the whole pair.
    void paddleSendsThePair()
    {
        Rig rig;
        emit rig.ctrl.panel().dash(true);
        emit rig.ctrl.panel().dot(true);
        emit rig.ctrl.panel().dash(false);
        emit rig.ctrl.panel().dot(false);
        QCOMPARE(rig.cwKey.calls,
                 (QStringList {"setKey(1,1,true,false)", "setKey(1,1,true,true)",
                               "setKey(1,1,false,true)", "setKey(1,1,false,false)"}));

        // Without a manager the state is still followed, and sent once bound.
        Rig unbound(false);
        emit unbound.ctrl.panel().dot(true);
        QCOMPARE(unbound.cwKey.calls, QStringList());
        unbound.ctrl.setDevManager(&unbound.manager);
        emit unbound.ctrl.panel().dash(true);
        QCOMPARE(unbound.cwKey.calls, QStringList {"setKey(1,1,true,true)"});
    }

    void paddleFromPanel()
    {
        const int panel = VirtualPanel::plug(QStringLiteral("A1"));
        Rig rig;
        rig.ui()->chbEnable->setChecked(true);
        QVERIFY(rig.ctrl.panel().isOpen());
        VirtualPanel::setDash(panel, true);
        VirtualPanel::setDot(panel, true);
        VirtualPanel::setDash(panel, false);
        QTRY_COMPARE_WITH_TIMEOUT(rig.cwKey.calls,
                                  (QStringList {"setKey(1,1,true,false)", "setKey(1,1,true,true)",
                                                "setKey(1,1,false,true)"}),
                                  5000);
    }

    // ---- Opening the PTT port ---------------------------------------------

    void emptyPortNameUnchecksSilently()
    {
        Rig rig;
        rig.ui()->cbPortName->clear();
        MessageBoxCloser closer;
        rig.ui()->chbEnableComPort->setChecked(true);
        QVERIFY(!rig.ui()->chbEnableComPort->isChecked());
        QTest::qWait(60);
        QCOMPARE(closer.texts, QStringList());
    }

    void failedOpenIsReportedOnce()
    {
        const QString name = QStringLiteral("/nonexistent/ttyDIALIX");
        QCoreApplication::setApplicationName(QStringLiteral("DialixTestHost"));
        Rig rig;
        rig.ui()->cbPortName->addItem(name);
        rig.ui()->cbPortName->setCurrentText(name);
        MessageBoxCloser closer;
        rig.ui()->chbEnableComPort->setChecked(true);
        QVERIFY(!rig.ui()->chbEnableComPort->isChecked());
        QCOMPARE(closer.texts, QStringList {"Failed to open " + name + " for PTT transfer!"});
        QCOMPARE(closer.titles, QStringList {"DialixTestHost"});
        QCOMPARE(closer.icons, QList<QMessageBox::Icon> {QMessageBox::Critical});
    }
};

QTEST_MAIN(TestDialixControlIo)
#include "tst_dialixcontrol_io.moc"
