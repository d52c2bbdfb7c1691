// Tests of the hot-plug watcher with this machine's uevents.

#include "plugins/panels/dialix/source/devicewatcher.h"

#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

// A tun interface is a device that a test can really add and remove on any
// Linux machine (given root), unlike a hidraw node: its net device comes and
// goes once each, with a few queue devices beside it.
namespace {

bool run(const QStringList &args, QString *error)
{
    QProcess p;
    p.start(QStringLiteral("ip"), args);
    if (!p.waitForFinished(10000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        *error = QString::fromLocal8Bit(p.readAllStandardError()).trimmed();
        return false;
    }
    return true;
}

} // namespace

class tst_DeviceWatcher : public QObject
{
    Q_OBJECT

private slots:
    void oneSignalPerReportedEvent_data();
    void oneSignalPerReportedEvent();
};

void tst_DeviceWatcher::oneSignalPerReportedEvent_data()
{
    QTest::addColumn<QByteArray>("subsystem");
    QTest::addColumn<int>("expected");
    QTest::newRow("net: add and remove") << QByteArray("net") << 2;
    QTest::newRow("hidraw: none") << QByteArray("hidraw") << 0;
}

void tst_DeviceWatcher::oneSignalPerReportedEvent()
{
    QFETCH(QByteArray, subsystem);
    QFETCH(int, expected);
    if (geteuid() != 0)
        QSKIP("adding a tun interface needs root");
    if (QStandardPaths::findExecutable(QStringLiteral("ip")).isEmpty())
        QSKIP("the ip tool (iproute2) is not installed");

    PlatformDeviceWatcher watcher(subsystem);
    QVERIFY2(watcher.isActive(), qPrintable(watcher.errorString()));
    QVERIFY(watcher.source() == QLatin1String("udev")
            || watcher.source() == QLatin1String("kernel"));
    QSignalSpy spy(&watcher, &DeviceWatcher::deviceChanged);

    const QString dev = QStringLiteral("dlxw%1").arg(QCoreApplication::applicationPid() % 100000);
    QString error;
    if (!run({"tuntap", "add", "dev", dev, "mode", "tun"}, &error))
        QSKIP(qPrintable(QStringLiteral("cannot add a tun interface: ") + error));
    QVERIFY2(run({"tuntap", "del", "dev", dev, "mode", "tun"}, &error), qPrintable(error));

    // Neither dropped nor merged, and nothing from the queue devices.
    QTRY_COMPARE_WITH_TIMEOUT(spy.count(), expected, 10000);
    QTest::qWait(200);
    QCOMPARE(spy.count(), expected);
}

QTEST_GUILESS_MAIN(tst_DeviceWatcher)
#include "tst_devicewatcher.moc"
