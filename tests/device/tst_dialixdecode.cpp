// Decoding of the panel's input report, on data, without a reader thread.
#include "tests/device/panelrecorder.h"

#include <QMetaMethod>
#include <QtTest>

namespace {

// A report as the panel sends it: byte 0, the switch bytes 1..3, nine bytes
// that are not interpreted, the dial bytes 13..16 (hex).
QByteArray wire(const char *switches, const char *dials)
{
    return QByteArray::fromHex(QByteArray("00") + switches + QByteArray(18, '0') + dials);
}

void feed(Dialix &device, const QByteArray &read, int length)
{
    device.processReport(reinterpret_cast<const unsigned char *>(read.constData()), length);
}

} // namespace

class TestDialixDecode : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { PanelRecorder::registerTypes(); }

    void reports_data();
    void reports();
    void wrongLengthKeepsPreviousWord();
    void signalsInOrder();
};

void TestDialixDecode::reports_data()
{
    QTest::addColumn<QList<QByteArray>>("reports");
    QTest::addColumn<QStringList>("expected");

    // Bits 0, 14, 15, 18 to 23: the ends of every line's range.
    QTest::newRow("every line in bit order, then the dials; then all released")
        << QList<QByteArray> {wire("01c0fc", "050000ff"), wire("000000", "00000000")}
        << QStringList {"button(0,1)",      "button(14,1)", "dialButton(15,1)", "dialButton(18,1)",
                        "ptt(1)",           "dash(1)",      "dot(1)",           "dial(0,5)",
                        "dial(3,-1)",       "button(0,0)",  "button(14,0)",     "dialButton(15,0)",
                        "dialButton(18,0)", "ptt(0)",       "dash(0)",          "dot(0)"};
    QTest::newRow("release and press in one report")
        << QList<QByteArray> {wire("800000", "00000000"), wire("040000", "00000000")}
        << QStringList {"button(7,1)", "button(2,1)", "button(7,0)"};
    QTest::newRow("dial byte extremes")
        << QList<QByteArray> {wire("000000", "7f80ff00"), wire("000000", "01000081")}
        << QStringList {"dial(0,127)", "dial(1,-128)", "dial(2,-1)", "dial(0,1)", "dial(3,-127)"};
    QTest::newRow("dials repeat while keys are held")
        << QList<QByteArray> {wire("080000", "00020000"), wire("080000", "00020000")}
        << QStringList {"button(3,1)", "dial(1,2)", "dial(1,2)"};
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
        feed(device, r, r.size());
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
        feed(device, pressed, length);
    feed(device, pressed + QByteArray(3, '\0'), 20);
    device.processReport(nullptr, dialix::protocol::ReportSize);
    QVERIFY(recorder.log.isEmpty());

    // The word was not taken over: the same press still counts as new.
    feed(device, pressed, pressed.size());
    QCOMPARE(recorder.log.first(), QStringLiteral("button(2,1)"));
}

void TestDialixDecode::signalsInOrder()
{
    // The signals are the class's only methods, in this order.
    const QMetaObject &mo = Dialix::staticMetaObject;
    QList<QByteArray> found;
    for (int i = mo.methodOffset(); i < mo.methodCount(); ++i)
        found << mo.method(i).methodSignature()
                + (mo.method(i).methodType() == QMetaMethod::Signal ? "" : "!");
    QCOMPARE(
        found,
        (QList<QByteArray> {"button(Dialix::Buttons,bool)", "dialButton(Dialix::DialButtons,bool)",
                            "dial(Dialix::Dials,int)", "ptt(bool)", "dash(bool)", "dot(bool)"}));
}

QTEST_GUILESS_MAIN(TestDialixDecode)
#include "tst_dialixdecode.moc"
