// The PTT serial port disappears while PTT is keyed (a USB serial adapter pulled
// out): releasing PTT afterwards returns without crashing or hanging, writes
// report their failure, the failure is logged once, and when the adapter comes
// back under its name the port opens again by itself, lines low, logged once,
// and carries PTT again.

#include "serial/serialportabstract.h"
#include "serial/serialportcontrol.h"
#include "tests/support/ptymodemlines.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {
QStringList s_debug;
void collectDebug(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtDebugMsg)
        s_debug << text;
}
} // namespace

class SoakSerialTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(ModemLines::isActive()); }
    void portVanishesWhilePttKeyed();
};

void SoakSerialTest::portVanishesWhilePttKeyed()
{
    auto pty = std::make_unique<PtyPort>();
    QVERIFY2(pty->isValid(), qPrintable(pty->errorString()));
    // The adapter's name, as /dev/serial/by-id gives it.
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("ttyPTT"));
    QVERIFY(QFile::link(pty->portName(), name));

    const QtMessageHandler previous = qInstallMessageHandler(collectDebug);
    SerialPortControl control;
    control->setPortName(name);
    QVERIFY(control->open(QIODevice::ReadWrite));
    // PTT keyed the way the controller keys it.
    QVERIFY(control->setDataTerminalReady(true));
    QVERIFY(control->setRequestToSend(true));

    pty.reset(); // the far end and the node go away
    QTest::qWait(200); // let the port's notifiers see the hang-up

    // PTT released: each call returns, whatever it reports.
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 3; ++i) {
        control->setDataTerminalReady(false);
        control->setRequestToSend(false);
    }
    const qint64 written = control.write(QByteArrayLiteral("73"));
    QVERIFY2(written <= 2, qPrintable(QString::number(written)));
    QVERIFY2(timer.elapsed() < 2000, "releasing PTT on a vanished port must not block");

    // The adapter comes back under the same name.
    PtyPort next;
    QVERIFY2(next.isValid(), qPrintable(next.errorString()));
    QVERIFY(QFile::remove(name) && QFile::link(next.portName(), name));
    QTRY_COMPARE_WITH_TIMEOUT(s_debug.filter(QStringLiteral("works again")).size(), 1, 5000);
    qInstallMessageHandler(previous);
    QCOMPARE(s_debug.filter(QStringLiteral("fails")).size(), 1);
    QCOMPARE(next.lines() & ModemLines::Output, 0);
    QVERIFY(control->setDataTerminalReady(true));
    QCOMPARE(next.lines() & ModemLines::Output, int(ModemLines::Dtr));
    control->close();
    QCOMPARE(next.lines() & ModemLines::Output, 0);
}

QTEST_MAIN(SoakSerialTest)
#include "tst_soak_serial.moc"
