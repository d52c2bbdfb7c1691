// The PTT serial port disappears while PTT is keyed (a USB serial adapter pulled
// out): releasing PTT afterwards returns without crashing or hanging, writes
// report their failure, the dead port closes, and another port opens and
// carries PTT again.

#include "serial/serialportabstract.h"
#include "serial/serialportcontrol.h"
#include "tests/support/ptymodemlines.h"

#include <QtTest>

#include <memory>

class SoakSerialTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(ModemLines::isActive()); }
    void portVanishesWhilePttKeyed_data();
    void portVanishesWhilePttKeyed();
};

void SoakSerialTest::portVanishesWhilePttKeyed_data()
{
    QTest::addColumn<bool>("dtr");
    QTest::addColumn<bool>("rts");
    QTest::newRow("DTR") << true << false;
    QTest::newRow("RTS") << false << true;
    QTest::newRow("DTR and RTS") << true << true;
}

void SoakSerialTest::portVanishesWhilePttKeyed()
{
    QFETCH(bool, dtr);
    QFETCH(bool, rts);
    auto pty = std::make_unique<PtyPort>();
    QVERIFY2(pty->isValid(), qPrintable(pty->errorString()));
    const QString name = pty->portName();

    SerialPortControl control;
    control->setPortName(name);
    QVERIFY(control->open(QIODevice::ReadWrite));
    // PTT keyed the way the controller keys it.
    if (dtr)
        QVERIFY(control->setDataTerminalReady(true));
    if (rts)
        QVERIFY(control->setRequestToSend(true));

    pty.reset(); // the far end and the node go away
    QTest::qWait(200); // let the port's notifiers see the hang-up

    // PTT released: each call returns, whatever it reports.
    QElapsedTimer timer;
    timer.start();
    if (dtr)
        control->setDataTerminalReady(false);
    if (rts)
        control->setRequestToSend(false);
    const qint64 written = control.write(QByteArrayLiteral("73"));
    QVERIFY2(written <= 2, qPrintable(QString::number(written)));
    control->close();
    QVERIFY2(timer.elapsed() < 2000, "releasing PTT on a vanished port must not block");

    // Another port (the adapter plugged in again) carries PTT.
    PtyPort next;
    QVERIFY2(next.isValid(), qPrintable(next.errorString()));
    control->setPortName(next.portName());
    QVERIFY(control->open(QIODevice::ReadWrite));
    QVERIFY(control->setDataTerminalReady(false));
    QVERIFY(control->setRequestToSend(false));
    QCOMPARE(next.lines() & ModemLines::Output, 0);
    QVERIFY(control->setDataTerminalReady(true));
    QCOMPARE(next.lines() & ModemLines::Output, int(ModemLines::Dtr));
    control->close();
}

QTEST_MAIN(SoakSerialTest)
#include "tst_soak_serial.moc"
