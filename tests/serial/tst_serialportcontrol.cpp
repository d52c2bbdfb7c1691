// Tests of the serial-port facade.

#include "serial/qtserialportcontrol.h"
#include "serial/serialportcontrol.h"
#include "tests/support/ptymodemlines.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

class tst_SerialPortControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(ModemLines::isActive()); }
    void forwardsLineSignals();
    void writeGoesThroughTheCurrentPort();
    void releasesItsPortLater();
};

void tst_SerialPortControl::forwardsLineSignals()
{
    SerialPortControl control;
    QSignalSpy cts(&control, &SerialPortControl::ctsChanged);
    QSignalSpy dsr(&control, &SerialPortControl::dsrChanged);

    emit control.current()->ctsChanged(false);
    emit control.current()->dsrChanged(true);
    emit control.current()->dsrChanged(false);

    QCOMPARE(cts.count(), 1);
    QCOMPARE(cts.at(0).at(0).toBool(), false);
    QCOMPARE(dsr.count(), 2);
    QCOMPARE(dsr.at(0).at(0).toBool(), true);
    QCOMPARE(dsr.at(1).at(0).toBool(), false);
}

void tst_SerialPortControl::writeGoesThroughTheCurrentPort()
{
    PtyPort pty;
    QVERIFY2(pty.isValid(), qPrintable(pty.errorString()));
    SerialPortControl control;
    control->setPortName(pty.portName());
    QVERIFY(control->open(QIODevice::ReadWrite));

    QCOMPARE(control.write(QByteArrayLiteral("73")), qint64(2));
    QCOMPARE(pty.read(), QByteArrayLiteral("73"));

    // PTT the way the controller drives it.
    control->setDataTerminalReady(true);
    QCOMPARE(pty.lines(), int(ModemLines::Dtr));
    control->setRequestToSend(true);
    control->setDataTerminalReady(false);
    QCOMPARE(pty.lines(), int(ModemLines::Rts));
}

void tst_SerialPortControl::releasesItsPortLater()
{
    QPointer<SerialPortAbstract> port;
    {
        SerialPortControl control;
        port = control.current();
        QVERIFY(qobject_cast<QtSerialPortControl *>(port));
        QCOMPARE(port->parent(), nullptr);
    }
    QVERIFY(port);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!port);
}

QTEST_GUILESS_MAIN(tst_SerialPortControl)
#include "tst_serialportcontrol.moc"
