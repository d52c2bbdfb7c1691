// The panel device linked against the system's real hidapi. No panel is attached
// to the build machines, so this only shows that the library links and that an
// empty bus is handled; the behaviour itself is tested over the virtual panel.
#include "plugins/panels/dialix/source/dialix.h"

#include <QtTest>

class TestDialixRealHid : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(hid_init(), 0); }
    void cleanupTestCase() { hid_exit(); }

    void enumeratesTheRealBus()
    {
        Dialix device;
        device.findDevices();
        int listed = 0;
        for (const hid_device_info *i = device.enumeration(); i; i = i->next)
            ++listed;
        QCOMPARE(device.devices().size(), listed);
        if (listed == 0) {
            QVERIFY(!device.openDevice());
            QCOMPARE(device.closeDevice(), Dialix::NotOpen);
        }
        device.findDevices(); // gives the first list back
    }
};

QTEST_GUILESS_MAIN(TestDialixRealHid)
#include "tst_dialixrealhid.moc"
