// The panel device with its reader thread, over simulated panels.
#include "tests/device/panelrecorder.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QElapsedTimer>
#include <QScopeGuard>
#include <QtTest>

#include <atomic>
#include <mutex>

namespace vp = VirtualPanel;
namespace protocol = dialix::protocol;

namespace {
constexpr int Timeout = 5000;
}

class TestDialixDevice : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { PanelRecorder::registerTypes(); }
    void init() { vp::reset(); }
    void cleanup()
    {
        // Every test closes what it opened.
        QCOMPARE(vp::openHandles(), 0);
        vp::reset();
    }

    void opensTheFirstListedPanelOnce();
    void deliversOnTheOwnersThread();
    void receiverSpinningALoopKeepsOrder();
    void reopenComparesWithLastWordSeen();
    void ledsOnlyWhileOpenAndNeverRetried();
    void queuedReportsGoOutBeforeTheNextRead();
    void closeTurnsTheLedsOffInOrder();
    void readErrorsAreIgnoredWithoutSpinning();

private:
    static bool openFirst(Dialix &device)
    {
        device.findDevices();
        return device.openDevice();
    }
};

void TestDialixDevice::opensTheFirstListedPanelOnce()
{
    Dialix device;
    // Nothing listed yet: not even a plugged panel is opened without findDevices().
    const int a = vp::plug("A");
    const int b = vp::plug("B");
    QVERIFY(!device.openDevice());

    vp::setEnumerateFails(true);
    device.findDevices();
    QVERIFY(device.devices().isEmpty() && !device.enumeration());
    QVERIFY(!device.openDevice());
    vp::setEnumerateFails(false);

    vp::setOpenFails(a, true);
    QVERIFY(!openFirst(device));
    QCOMPARE(device.closeDevice(), Dialix::NotOpen);
    vp::setOpenFails(a, false);

    QVERIFY(openFirst(device));
    QCOMPARE(device.devices().size(), 2);
    QVERIFY(!device.openDevice()); // already open: no second handle
    QCOMPARE(vp::openHandles(a), 1);
    QCOMPARE(vp::openHandles(b), 0);

    // A new list leaves the open handle alone, also when its panel has gone;
    // the class does not notice that by itself, and still closes it.
    vp::unplug(a);
    device.findDevices();
    QCOMPARE(device.devices().size(), 1);
    QTest::qWait(20); // the reader now fails every read
    QVERIFY(device.isOpen());
    QCOMPARE(vp::openHandles(), 1);
    QCOMPARE(device.closeDevice(), Dialix::Closed);
}

void TestDialixDevice::deliversOnTheOwnersThread()
{
    const int panel = vp::plug("A");
    Dialix device;
    PanelRecorder recorder(&device);
    QVERIFY(openFirst(device));

    vp::pressKey(panel, 3);
    vp::turnDial(panel, 0, -300); // split over three reports
    vp::pushDial(panel, 2, true);
    vp::setPtt(panel, true);
    vp::setDash(panel, true);
    vp::setDot(panel, true);
    vp::releaseKey(panel, 3);
    vp::pushDial(panel, 2, false);
    vp::setPtt(panel, false);

    const QStringList expected {
        "button(3,1)",      "dial(0,-128)",     "dial(0,-128)", "dial(0,-44)",
        "dialButton(17,1)", "ptt(1)",           "dash(1)",      "dot(1)",
        "button(3,0)",      "dialButton(17,0)", "ptt(0)"};
    QTRY_COMPARE_WITH_TIMEOUT(recorder.log, expected, Timeout);
    QVERIFY(!recorder.wrongThread);
    // Left open: the destructor closes it (cleanup() checks).
}

// The signals come from the reader thread. A receiver that spins an event
// loop (as closeDevice() does) sees the events queued behind the one it
// handles inside that loop, in order and each once.
void TestDialixDevice::receiverSpinningALoopKeepsOrder()
{
    const int panel = vp::plug("A");
    Dialix device;
    PanelRecorder recorder(&device);
    std::atomic<QThread *> emitter {nullptr};
    connect(
        &device, &Dialix::dial, this,
        [&emitter](Dialix::Dials, int) { emitter = QThread::currentThread(); },
        Qt::DirectConnection);
    int spins = 0;
    connect(&device, &Dialix::button, this, [&spins](Dialix::Buttons, bool pressed) {
        if (pressed && spins++ == 0)
            QTest::qWait(30);
    });
    QVERIFY(openFirst(device));

    vp::queueReport(panel, vp::makeReport(1u << 3 | 1u << 5, 0, 2));
    vp::queueReport(panel, vp::makeReport(1u << 5, 0, -1));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.log.size(), 5, Timeout);
    QTest::qWait(40);
    QCOMPARE(recorder.log,
             QStringList({"button(3,1)", "button(5,1)", "dial(1,2)", "button(3,0)", "dial(1,-1)"}));
    QCOMPARE(emitter.load(), static_cast<QThread *>(&device));
    QCOMPARE(device.closeDevice(), Dialix::Closed);
}

void TestDialixDevice::reopenComparesWithLastWordSeen()
{
    // Held before the first open: compared with 0, so reported as pressed.
    const int panel = vp::plug("A");
    vp::setSwitches(panel, (1u << 4) | (1u << 6) | (1u << 20));
    Dialix device;
    PanelRecorder recorder(&device);
    QVERIFY(openFirst(device));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.log, (QStringList {"button(4,1)", "button(6,1)", "dash(1)"}),
                              Timeout);
    QCOMPARE(device.closeDevice(), Dialix::Closed);
    recorder.log.clear();

    // While closed: key 4 released, key 5 pressed, key 6 still held. The
    // paddle contact, still held too, is pressed again: closing forgets the
    // PTT and paddle bits, whose release went out when the panel closed.
    vp::releaseKey(panel, 4);
    vp::pressKey(panel, 5);
    QVERIFY(openFirst(device));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.log, (QStringList {"button(4,0)", "dash(1)", "button(5,1)"}),
                              Timeout);
    QCOMPARE(device.closeDevice(), Dialix::Closed);
}

void TestDialixDevice::ledsOnlyWhileOpenAndNeverRetried()
{
    const int panel = vp::plug("A");
    Dialix device;
    device.setLed(protocol::LedKeys, true);
    QCOMPARE(device.ledMask(), quint8(0));

    QVERIFY(openFirst(device));
    QTest::qWait(20);
    QCOMPARE(vp::writeCount(panel), 0); // the earlier call left nothing behind

    device.setLed(protocol::LedKeys, true);
    device.setLed(protocol::LedDials, true);
    device.setLed(protocol::LedKeys, false);
    device.setLed(8, true); // not a bit of the mask
    QCOMPARE(device.ledMask(), quint8(0x08));
    QVERIFY(vp::waitForWrites(panel, 3, Timeout));
    QCOMPARE(vp::writes(panel),
             (QList<QByteArray> {QByteArray("\x00\x10", 2), QByteArray("\x00\x18", 2),
                                 QByteArray("\x00\x08", 2)}));

    // A failed write is dropped, not retried; the mask is kept, so the next
    // report carries it.
    vp::clearWrites(panel);
    vp::setWritesFail(panel, true);
    device.setLed(protocol::LedVfoB, true);
    QTRY_COMPARE_WITH_TIMEOUT(vp::failedWrites(panel), 1, Timeout);
    vp::setWritesFail(panel, false);
    QTest::qWait(20);
    QCOMPARE(vp::failedWrites(panel), 1);
    QCOMPARE(vp::writeCount(panel), 0);
    device.setLed(protocol::LedKeys, true);
    QVERIFY(vp::waitForWrites(panel, 1, Timeout));
    QCOMPARE(vp::ledMask(panel), 0x19);
    QCOMPARE(device.closeDevice(), Dialix::Closed);
}

void TestDialixDevice::queuedReportsGoOutBeforeTheNextRead()
{
    // Note how many reads had happened when each report reached the panel.
    // Declared before the device, so they outlive its reader thread.
    QList<int> readsAtWrite;
    std::mutex mutex; // a lock that ThreadSanitizer can see
    const auto recorded = [&] {
        std::lock_guard<std::mutex> lock(mutex);
        return readsAtWrite;
    };

    const int panel = vp::plug("A");
    Dialix device;
    QVERIFY(openFirst(device));
    const int listener = vp::addWriteListener([&](int, const QByteArray &) {
        const int reads = vp::readCalls(panel);
        std::lock_guard<std::mutex> lock(mutex);
        readsAtWrite.append(reads);
    });
    const auto removeListener = qScopeGuard([listener] { vp::removeWriteListener(listener); });

    // Hold the reader inside the first write while three more are queued.
    vp::setWritesBlock(panel, true);
    device.pushReport(QByteArray("\x00\x01", 2));
    QTRY_COMPARE_WITH_TIMEOUT(vp::blockedWrites(panel), 1, Timeout);
    for (const char mask : {'\x02', '\x03', '\x04'})
        device.pushReport(QByteArray(1, '\0') + mask);
    vp::setWritesBlock(panel, false);

    QTRY_COMPARE_WITH_TIMEOUT(recorded().size(), 4, Timeout);
    QCOMPARE(vp::ledMasks(panel), (QList<quint8> {1, 2, 3, 4}));
    QCOMPARE(recorded().count(recorded().first()), 4);
    QCOMPARE(device.closeDevice(), Dialix::Closed);
}

void TestDialixDevice::closeTurnsTheLedsOffInOrder()
{
    // Bits 0, 2, 1, 3, 4 go off one report at a time. The reports reach the
    // panel only if the reader writes them within the 10 ms that close waits;
    // on a loaded machine it may miss that once, so allow a few attempts but
    // never a wrong order.
    const QList<quint8> expected {0x1E, 0x1A, 0x18, 0x10, 0x00};
    const int panel = vp::plug("A");
    bool complete = false;
    for (int attempt = 0; attempt < 3 && !complete; ++attempt) {
        // A fresh device each time: reports left over by a close that ran out
        // of time stay queued and would go out first at the next open.
        Dialix device;
        QVERIFY(openFirst(device));
        for (int bit = 0; bit < 5; ++bit)
            device.setLed(bit, true);
        QVERIFY(vp::waitForWrites(panel, 5, Timeout));
        vp::clearWrites(panel);

        QCOMPARE(device.closeDevice(), Dialix::Closed);
        const QList<quint8> masks = vp::ledMasks(panel);
        QCOMPARE(masks, expected.mid(0, masks.size()));
        complete = masks.size() == expected.size();
    }
    QVERIFY(complete);
}

void TestDialixDevice::readErrorsAreIgnoredWithoutSpinning()
{
    const int panel = vp::plug("A");
    Dialix device;
    PanelRecorder recorder(&device);

    // A one-off error and a short report in the stream change nothing.
    vp::queueReadError(panel);
    vp::queueReport(panel, vp::makeReport(1u << 9).left(16));
    vp::pressKey(panel, 1);
    QVERIFY(openFirst(device));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.log, QStringList {"button(1,1)"}, Timeout);

    // Reads that fail at once, as on an unplugged hidraw node: after 20 at the
    // 5 ms pace the loop slows to its failed-read pace (about 22 reads in 200
    // ms; 40 at the 5 ms pace throughout, thousands when spinning).
    vp::setReadsFail(panel, true);
    const int before = vp::readCalls(panel);
    QElapsedTimer clock;
    clock.start();
    QTest::qWait(200);
    const int reads = vp::readCalls(panel) - before;
    const qint64 ms = clock.elapsed();
    QVERIFY2(reads <= Dialix::FailedReadsBeforeBackOff + ms / Dialix::FailedReadPaceMs + 2,
             qPrintable(QStringLiteral("%1 reads in %2 ms").arg(reads).arg(ms)));

    // A report queued meanwhile still goes out promptly, and reading resumes.
    device.setLed(protocol::LedTransmit, true);
    QVERIFY(vp::waitForWrites(panel, 1, Timeout));
    vp::setReadsFail(panel, false);
    vp::releaseKey(panel, 1);
    QTRY_COMPARE_WITH_TIMEOUT(recorder.log, (QStringList {"button(1,1)", "button(1,0)"}), Timeout);
    QCOMPARE(device.closeDevice(), Dialix::Closed);
}

QTEST_GUILESS_MAIN(TestDialixDevice)
#include "tst_dialixdevice.moc"
