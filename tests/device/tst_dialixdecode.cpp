// Decoding of the panel's input report, on data, without a reader thread.
#include "tests/device/panelrecorder.h"
#include "tools/virtualpanel/virtualpanel.h"

#include <QMetaMethod>
#include <QtTest>

using VirtualPanel::makeReport;

namespace {

// A report as the panel sends it: byte 0, the switch bytes 1..3, nine bytes
// that are not interpreted, the dial bytes 13..16 (hex).
QByteArray wire(const char *switches, const char *dials)
{
    return QByteArray::fromHex(QByteArray("00") + switches + QByteArray(18, '0') + dials);
}

} // namespace

class TestDialixDecode : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { PanelRecorder::registerTypes(); }

    void reports_data();
    void reports();
    void everySwitchBit_data();
    void everySwitchBit();
    void wrongLengthKeepsPreviousWord();
    void signalsAndEnums();
};

void TestDialixDecode::reports_data()
{
    QTest::addColumn<QList<QByteArray>>("reports");
    QTest::addColumn<QStringList>("expected");

    const quint32 key3 = 1u << 3;

    QTest::newRow("several bits rise in bit order, then the dials")
        << QList<QByteArray> {wire("080021", "050000ff")}
        << QStringList {"button(3,1)", "dialButton(16,1)", "dot(1)", "dial(0,5)", "dial(3,-1)"};
    QTest::newRow("press then release") << QList<QByteArray> {makeReport(key3), makeReport(0)}
                                        << QStringList {"button(3,1)", "button(3,0)"};
    QTest::newRow("unchanged word repeats nothing")
        << QList<QByteArray> {makeReport(key3), makeReport(key3)} << QStringList {"button(3,1)"};
    QTest::newRow("release and press in one report")
        << QList<QByteArray> {makeReport(1u << 7), makeReport(1u << 2)}
        << QStringList {"button(7,1)", "button(2,1)", "button(7,0)"};
    QTest::newRow("dial byte extremes")
        << QList<QByteArray> {wire("000000", "7f80ff00"), wire("000000", "01000081")}
        << QStringList {"dial(0,127)", "dial(1,-128)", "dial(2,-1)", "dial(0,1)", "dial(3,-127)"};
    QTest::newRow("dials repeat while keys are held")
        << QList<QByteArray> {wire("080000", "00020000"), wire("080000", "00020000")}
        << QStringList {"button(3,1)", "dial(1,2)", "dial(1,2)"};
    QTest::newRow("bits 22 and 23 are silent but remembered")
        << QList<QByteArray> {makeReport(3u << 22), makeReport((3u << 22) | key3), makeReport(key3)}
        << QStringList {"button(3,1)"};
    QTest::newRow("bytes 0 and 4..12 are not interpreted")
        << QList<QByteArray> {QByteArray::fromHex("ff000000ffffffffffffffffff00000000")}
        << QStringList {};
}

void TestDialixDecode::reports()
{
    QFETCH(QList<QByteArray>, reports);
    QFETCH(QStringList, expected);

    Dialix device;
    PanelRecorder recorder(&device);
    for (const QByteArray &r : reports)
        device.processReport(reinterpret_cast<const unsigned char *>(r.constData()), r.size());
    QCOMPARE(recorder.log, expected);
}

void TestDialixDecode::everySwitchBit_data()
{
    QTest::addColumn<int>("bit");
    QTest::addColumn<QString>("line");

    for (int bit = 0; bit <= 14; ++bit)
        QTest::addRow("key %d", bit) << bit << QStringLiteral("button(%1,%2)").arg(bit);
    // Dial pushes keep their bit numbers: dial 0's push is 15, not 0.
    for (int bit = 15; bit <= 18; ++bit)
        QTest::addRow("dial push %d", bit) << bit << QStringLiteral("dialButton(%1,%2)").arg(bit);
    QTest::newRow("ptt") << 19 << QStringLiteral("ptt(%2)");
    QTest::newRow("dash") << 20 << QStringLiteral("dash(%2)");
    QTest::newRow("dot") << 21 << QStringLiteral("dot(%2)");
    QTest::newRow("bit 22") << 22 << QString();
    QTest::newRow("bit 23") << 23 << QString();
}

void TestDialixDecode::everySwitchBit()
{
    QFETCH(int, bit);
    QFETCH(QString, line);

    Dialix device;
    PanelRecorder recorder(&device);
    for (const quint32 word : {1u << bit, 0u}) {
        const QByteArray r = makeReport(word);
        device.processReport(reinterpret_cast<const unsigned char *>(r.constData()), r.size());
    }
    const QStringList expected = line.isEmpty()
        ? QStringList {}
        : QStringList {QString(line).replace("%2", "1"), QString(line).replace("%2", "0")};
    QCOMPARE(recorder.log, expected);
}

void TestDialixDecode::wrongLengthKeepsPreviousWord()
{
    Dialix device;
    PanelRecorder recorder(&device);
    const QByteArray pressed = wire("040000", "09090909");

    // Reads shorter than a report (hidraw cuts longer ones to the 17 bytes
    // asked for), an error and a longer length are all ignored.
    for (int length : {16, 4, 1, 0, -1})
        device.processReport(reinterpret_cast<const unsigned char *>(pressed.constData()), length);
    const QByteArray longer = pressed + QByteArray(3, '\0');
    device.processReport(reinterpret_cast<const unsigned char *>(longer.constData()),
                         longer.size());
    device.processReport(nullptr, dialix::protocol::ReportSize);
    QVERIFY(recorder.log.isEmpty());

    // The word was not taken over: the same press still counts as new.
    device.processReport(reinterpret_cast<const unsigned char *>(pressed.constData()),
                         pressed.size());
    QCOMPARE(recorder.log.first(), QStringLiteral("button(2,1)"));
}

void TestDialixDecode::signalsAndEnums()
{
    // Signals are the only methods of the class, in this order.
    const QMetaObject &mo = Dialix::staticMetaObject;
    const QList<QByteArray> expected {"button(Dialix::Buttons,bool)",
                                      "dialButton(Dialix::DialButtons,bool)",
                                      "dial(Dialix::Dials,int)",
                                      "ptt(bool)",
                                      "dash(bool)",
                                      "dot(bool)"};
    QList<QByteArray> found;
    for (int i = mo.methodOffset(); i < mo.methodCount(); ++i) {
        QCOMPARE(mo.method(i).methodType(), QMetaMethod::Signal);
        found.append(mo.method(i).methodSignature());
    }
    QCOMPARE(found, expected);
    QCOMPARE(mo.propertyCount(), mo.propertyOffset());

    // The enumerators carry the report's bit and byte positions.
    const auto keys = [&](const char *name) {
        const QMetaEnum e = mo.enumerator(mo.indexOfEnumerator(name));
        QStringList list;
        for (int i = 0; i < e.keyCount(); ++i)
            list << QStringLiteral("%1=%2").arg(e.key(i)).arg(e.value(i));
        return list;
    };
    QStringList buttons;
    for (int i = 0; i <= 14; ++i)
        buttons << QStringLiteral("Key%1=%1").arg(i);
    QCOMPARE(keys("Buttons"), buttons);
    QCOMPARE(keys("DialButtons"),
             (QStringList {"KeyEnc0=15", "KeyEnc1=16", "KeyEnc2=17", "KeyEnc3=18"}));
    QCOMPARE(keys("Dials"), (QStringList {"Enc0=0", "Enc1=1", "Enc2=2", "Enc3=3"}));
}

QTEST_GUILESS_MAIN(TestDialixDecode)
#include "tst_dialixdecode.moc"
