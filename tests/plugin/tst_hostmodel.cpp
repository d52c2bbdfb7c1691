// Tests of the reference host's radio model and command text.

#include "tools/host/commandtext.h"
#include "tools/host/radiomodel.h"

#include <QSignalSpy>
#include <QTest>

// The reference host's radio and its command log: what the end-to-end tests
// and the scripted session read back must be right in the first place.
class tst_HostModel : public QObject
{
    Q_OBJECT

private slots:
    void commandText_data();
    void commandText();
    void moxSignalsChangesOfKnownReceiversOnly();
    void pttFromCwKeyKeysTransmitter();
};

void tst_HostModel::commandText_data()
{
    QTest::addColumn<QVariant>("message");
    QTest::addColumn<QString>("text");
    QTest::newRow("band up") << QVariant(QVariantList {110, 0u}) << "Band Up rx 0";
    QTest::newRow("digits stay with their word")
        << QVariant(QVariantList {141, 1u}) << "NB1 Change rx 1";
    QTest::newRow("acronym") << QVariant(QVariantList {143, 0u, 1u, -3}) << "VFO rx 0 ch 1 step -3";
    QTest::newRow("no arguments") << QVariant(QVariantList {109}) << "Device Changed";
    QTest::newRow("not a panel command")
        << QVariant(QVariantList {25, 0u, 1u, -4}) << "RX AGC Gain id 0 ch 1 dB -4";
    QTest::newRow("tranceiver") << QVariant(QVariantList {158, 2u}) << "MOX Voice Play trx 2";
    // The panel's change-over requests: their flag is always false.
    QTest::newRow("MOX") << QVariant(QVariantList {146, 0u, false}) << "MOX (toggle) rx 0";
    QTest::newRow("SubRX") << QVariant(QVariantList {145, 0u, false})
                           << "Enable VFOB (toggle) rx 0";
    QTest::newRow("flag that is not the panel's")
        << QVariant(QVariantList {146, 0u, true}) << "MOX (toggle) rx 0 state on";
    QTest::newRow("a state that is set")
        << QVariant(QVariantList {3, 0u, false}) << "MOX ch 0 state off";
}

void tst_HostModel::commandText()
{
    QFETCH(QVariant, message);
    QFETCH(QString, text);
    QCOMPARE(::commandText(message), text);
}

void tst_HostModel::moxSignalsChangesOfKnownReceiversOnly()
{
    RadioModel radio(2);
    QSignalSpy spy(&radio, &DeviceManagerAbstract::moxChanged);
    QSignalSpy changed(&radio, &RadioModel::changed);
    radio.setMox(2, true); // receivers 0 and 1 only
    radio.setMute(5, true);
    radio.setVolume(2, -10.0);
    QCOMPARE(changed.count(), 0);
    radio.setMox(1, true);
    radio.setMox(1, true);
    radio.setMox(1, false);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0), (QVariantList {1u, true}));
    QCOMPARE(spy.at(1), (QVariantList {1u, false}));
    QVERIFY(!radio.mox(1) && !radio.mox(2));
}

void tst_HostModel::pttFromCwKeyKeysTransmitter()
{
    RadioModel radio(2);
    HostCwKey key(&radio);
    radio.setCwKeyControl(&key);
    QSignalSpy trx(&key, &CwKeyControlAbstract::trx);
    radio.cwKeyControl()->setTrx(1, 1, true);
    QVERIFY(radio.mox(1));
    QVERIFY(!radio.mox(0));
    QCOMPARE(trx.count(), 1);
    radio.cwKeyControl()->setTrx(1, 1, false);
    QVERIFY(!radio.mox(1));
}

QTEST_GUILESS_MAIN(tst_HostModel)
#include "tst_hostmodel.moc"
