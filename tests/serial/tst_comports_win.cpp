// The COM ports a Windows build sees. Every run under Wine starts in a sandbox
// whose /dev holds none of the machine's serial ports (scripts/windows/
// wine-run.sh), so Wine maps none of them. Ports that a test's prefix maps on
// purpose are named in DIALIX_EXPECTED_COM_PORTS (comma-separated).

#include <QFileInfo>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QSignalSpy>
#include <QtTest>

class TestComPorts : public QObject
{
    Q_OBJECT

private slots:
    void onlyExpectedPortsAreListed();
    void noOtherPortOpens();
    void machineNodesAreAbsent();
    void missingPortFailsWithItsError();
};

static QStringList expectedPorts()
{
    QStringList ports =
        qEnvironmentVariable("DIALIX_EXPECTED_COM_PORTS").split(',', Qt::SkipEmptyParts);
    ports.sort();
    return ports;
}

void TestComPorts::onlyExpectedPortsAreListed()
{
    QStringList listed;
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts()) {
        listed << info.portName();
        QCOMPARE(info.systemLocation(), QStringLiteral("\\\\.\\") + info.portName());
    }
    listed.sort();
    QCOMPARE(listed, expectedPorts());
}

// Whatever the registry lists: the device names themselves do not open.
void TestComPorts::noOtherPortOpens()
{
    const QStringList expected = expectedPorts();
    for (int n = 1; n <= 32; ++n) {
        const QString name = QStringLiteral("COM%1").arg(n);
        if (expected.contains(name))
            continue;
        QSerialPort port(name);
        QVERIFY2(!port.open(QIODevice::ReadWrite), qPrintable(name));
        QVERIFY2(port.error() != QSerialPort::NoError, qPrintable(name));
    }
}

// The Unix side of the sandbox, through Wine's Z: drive.
void TestComPorts::machineNodesAreAbsent()
{
    for (const char *node : {"Z:/dev/ttyS0", "Z:/dev/ttyS1", "Z:/dev/ttyUSB0", "Z:/dev/ttyACM0"})
        QVERIFY2(!QFileInfo::exists(QString::fromLatin1(node)), node);
    QVERIFY(QFileInfo::exists(QStringLiteral("Z:/dev")));
}

void TestComPorts::missingPortFailsWithItsError()
{
    QSerialPort port(QStringLiteral("COM199"));
    QSignalSpy errors(&port, &QSerialPort::errorOccurred);
    QVERIFY(!port.open(QIODevice::ReadWrite));
    QCOMPARE(port.error(), QSerialPort::DeviceNotFoundError);
    QCOMPARE(errors.count(), 1);
    QVERIFY(!port.errorString().isEmpty());

    // A closed port refuses line changes and says why.
    QVERIFY(!port.setDataTerminalReady(true));
    QCOMPARE(port.error(), QSerialPort::NotOpenError);
    QVERIFY(!port.isDataTerminalReady());
}

QTEST_GUILESS_MAIN(TestComPorts)
#include "tst_comports_win.moc"
