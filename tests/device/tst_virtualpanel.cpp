// The simulated panels behave like hidapi over hidraw where the tests rely on it.
#include "tools/virtualpanel/virtualpanel.h"

#include <QElapsedTimer>
#include <QtTest>

#include <hidapi.h>

#include <thread>

namespace vp = VirtualPanel;
namespace protocol = dialix::protocol;

class TestVirtualPanel : public QObject
{
    Q_OBJECT

private slots:
    void init() { vp::reset(); }
    void cleanup() { QCOMPARE(vp::openHandles(), 0); }

    void enumeratesInPlugOrder();
    void readsLikeHidraw();
    void readWaitsForAReportOrAnUnplug();
};

void TestVirtualPanel::enumeratesInPlugOrder()
{
    const int a = vp::plug("A");
    vp::PanelInfo other;
    other.productId = 0x0004;
    vp::plug(other);
    vp::PanelInfo second;
    second.serial = "B";
    second.product = "Dialix II";
    second.interfaceNumber = 1;
    const int b = vp::plug(second);

    hid_device_info *list = hid_enumerate(protocol::VendorId, protocol::ProductId);
    QStringList seen;
    for (hid_device_info *i = list; i; i = i->next)
        seen << QString::fromWCharArray(i->serial_number) + "/"
                + QString::fromWCharArray(i->product_string) + "/"
                + QString::number(i->interface_number) + "/" + i->path;
    hid_free_enumeration(list);
    QCOMPARE(seen,
             (QStringList {"A/Dialix/0/" + QString::fromLatin1(vp::path(a)),
                           "B/Dialix II/1/" + QString::fromLatin1(vp::path(b))}));

    QCOMPARE(vp::enumerations(), 1);
}

void TestVirtualPanel::readsLikeHidraw()
{
    const int panel = vp::plug("A");
    vp::queueReport(panel, QByteArray(20, 'x')); // longer than asked: cut
    vp::queueReport(panel, QByteArray(3, 'y')); // shorter: as is
    vp::queueReadError(panel);
    vp::queueReport(panel, vp::makeReport(0x030201, -1));

    hid_device *dev = hid_open(protocol::VendorId, protocol::ProductId, L"A");
    QVERIFY(dev);
    unsigned char buffer[protocol::ReportSize + 8] = {};
    QCOMPARE(hid_read_timeout(dev, buffer, protocol::ReportSize, 0), protocol::ReportSize);
    QCOMPARE(buffer[protocol::ReportSize], 0); // nothing beyond what was asked
    QCOMPARE(hid_read_timeout(dev, buffer, protocol::ReportSize, 0), 3);
    QCOMPARE(hid_read_timeout(dev, buffer, protocol::ReportSize, 0), -1);
    QCOMPARE(hid_read(dev, buffer, protocol::ReportSize), protocol::ReportSize);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(buffer), 4), QByteArray("\x00\x01\x02\x03", 4));
    QCOMPARE(buffer[13], 0xFF);
    QCOMPARE(hid_read_timeout(dev, buffer, protocol::ReportSize, 0), 0);
    QCOMPARE(vp::readCalls(panel), 5);

    QCOMPARE(hid_write(dev, reinterpret_cast<const unsigned char *>("\x00\x11"), 2), 2);
    QCOMPARE(vp::ledMask(panel), 0x11);
    hid_close(dev);
}

void TestVirtualPanel::readWaitsForAReportOrAnUnplug()
{
    const int panel = vp::plug("A");
    hid_device *dev = hid_open(protocol::VendorId, protocol::ProductId, nullptr);
    unsigned char buffer[protocol::ReportSize];
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(hid_read_timeout(dev, buffer, sizeof buffer, 30), 0);
    QVERIFY(clock.elapsed() >= 29);

    // Another thread ends a long wait early: with a report, then with an unplug.
    std::thread other([panel] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        vp::pressKey(panel, 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        vp::unplug(panel);
    });
    clock.restart();
    QCOMPARE(hid_read_timeout(dev, buffer, sizeof buffer, 20000), protocol::ReportSize);
    QCOMPARE(buffer[1], 0x02);
    QCOMPARE(hid_read_timeout(dev, buffer, sizeof buffer, -1), -1);
    other.join();
    QVERIFY(clock.elapsed() < 10000);

    // The handle stays open but fails from then on.
    QCOMPARE(hid_read_timeout(dev, buffer, sizeof buffer, 10000), -1);
    QCOMPARE(hid_write(dev, buffer, 2), -1);
    QVERIFY(QString::fromWCharArray(hid_error(dev)).contains("disconnected"));
    QVERIFY(vp::panels().isEmpty());
    QCOMPARE(vp::openHandles(), 1);
    hid_close(dev);
}

QTEST_GUILESS_MAIN(TestVirtualPanel)
#include "tst_virtualpanel.moc"
