// Tests of the hot-plug watcher with this machine's uevents.

#include "plugins/panels/dialix/source/devicewatcher.h"

#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

// The watcher is checked against the kernel's own uevent stream, read here from
// a bare netlink socket without libudev. A tun interface is a device that a
// test can really add and remove on any Linux machine (given root), unlike a
// hidraw node.
namespace {

class KernelEvents
{
public:
    KernelEvents()
    {
        fd = socket(AF_NETLINK, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT);
        if (fd < 0)
            return;
        sockaddr_nl addr {};
        addr.nl_family = AF_NETLINK;
        addr.nl_groups = 1; // the kernel's broadcast group
        if (bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr) < 0) {
            close(fd);
            fd = -1;
        }
    }
    ~KernelEvents()
    {
        if (fd >= 0)
            close(fd);
    }
    bool isOpen() const { return fd >= 0; }

    // Reads what is waiting and counts the add and remove events of a subsystem.
    int count(const QByteArray &subsystem)
    {
        char buf[8192];
        for (;;) {
            const ssize_t n = recv(fd, buf, sizeof buf, 0);
            if (n <= 0)
                break;
            const QList<QByteArray> fields = QByteArray(buf, int(n)).split('\0');
            QByteArray action, sub;
            for (const QByteArray &f : fields) {
                if (f.startsWith("ACTION="))
                    action = f.mid(7);
                else if (f.startsWith("SUBSYSTEM="))
                    sub = f.mid(10);
            }
            if (action == "add" || action == "remove")
                ++seen[sub];
        }
        return seen.value(subsystem);
    }

private:
    int fd = -1;
    QHash<QByteArray, int> seen;
};

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
    QTest::addColumn<bool>("expectEvents");
    // A tun interface brings a net device and its queues; the panels' own
    // subsystem must not react to either.
    QTest::newRow("net") << QByteArray("net") << true;
    QTest::newRow("queues") << QByteArray("queues") << true;
    QTest::newRow("hidraw") << QByteArray("hidraw") << false;
}

void tst_DeviceWatcher::oneSignalPerReportedEvent()
{
    QFETCH(QByteArray, subsystem);
    QFETCH(bool, expectEvents);

    if (geteuid() != 0)
        QSKIP("adding a tun interface needs root");
    if (QStandardPaths::findExecutable(QStringLiteral("ip")).isEmpty())
        QSKIP("the ip tool (iproute2) is not installed");

    KernelEvents kernel;
    QVERIFY2(kernel.isOpen(), "cannot listen to kernel uevents");

    DeviceWatcher watcher(subsystem);
    QVERIFY2(watcher.isActive(), qPrintable(watcher.errorString()));
    QVERIFY(watcher.source() == QLatin1String("udev")
            || watcher.source() == QLatin1String("kernel"));

    int offThread = 0;
    connect(&watcher, &DeviceWatcher::deviceChanged, this, [&offThread] {
        if (QThread::currentThread() != qApp->thread())
            ++offThread;
    });
    QSignalSpy spy(&watcher, &DeviceWatcher::deviceChanged);

    const QString dev = QStringLiteral("dlxw%1").arg(QCoreApplication::applicationPid() % 100000);
    QString error;
    if (!run({"tuntap", "add", "dev", dev, "mode", "tun"}, &error))
        QSKIP(qPrintable(QStringLiteral("cannot add a tun interface: ") + error));
    const bool removed = run({"tuntap", "del", "dev", dev, "mode", "tun"}, &error);
    QVERIFY2(removed, qPrintable(error));

    // Both listeners see the same events; the watcher must neither drop nor
    // merge any of them.
    if (expectEvents) {
        QTRY_VERIFY_WITH_TIMEOUT(kernel.count(subsystem) >= 2, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(spy.count(), kernel.count(subsystem), 10000);
    } else {
        QTRY_VERIFY_WITH_TIMEOUT(kernel.count("net") >= 2, 10000);
        QTest::qWait(200);
        QCOMPARE(spy.count(), kernel.count(subsystem));
    }
    QCOMPARE(offThread, 0);
}

QTEST_GUILESS_MAIN(tst_DeviceWatcher)
#include "tst_devicewatcher.moc"
