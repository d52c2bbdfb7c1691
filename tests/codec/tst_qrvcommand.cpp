// Tests of the command codec: its meta-object, the encoders' wire forms, the dispatcher.

#include "command/qrvcommand.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>

#include <functional>

using Encode = std::function<void(qrvCommand &)>;
Q_DECLARE_METATYPE(Encode)

namespace {

// The pointer a variant holds; value<>() would dereference it (qobject_cast),
// and the test's addresses point nowhere.
CwKeyControlAbstract *rawKey(const QVariant &v)
{
    return *static_cast<CwKeyControlAbstract *const *>(v.constData());
}

QString hex(const void *p)
{
    return QStringLiteral("0x%1").arg(quintptr(p), 0, 16);
}

QString joined(const QStringList &items)
{
    return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
}

// A decoded signal argument as text (its type is in the signal's signature).
QString text(const QVariant &v)
{
    const int type = v.userType();
    QStringList items;
    if (type == qMetaTypeId<QList<int>>()) {
        for (int i : v.value<QList<int>>())
            items << QString::number(i);
        return joined(items);
    }
    if (type == qMetaTypeId<QList<void *>>()) {
        for (void *p : v.value<QList<void *>>())
            items << hex(p);
        return joined(items);
    }
    if (type == qMetaTypeId<CwKeyControlAbstract *>())
        return hex(rawKey(v));
    if (type == QMetaType::Bool)
        return QLatin1String(v.toBool() ? "true" : "false");
    if (type == QMetaType::Long)
        return QString::number(v.value<long>());
    return v.toString();
}

// A message element with its variant type: "7:uint", "[1:int]".
QString typed(const QVariant &v)
{
    if (v.userType() == QMetaType::QVariantList) {
        QStringList items;
        for (const QVariant &e : v.toList())
            items << typed(e);
        return joined(items);
    }
    return text(v) + QLatin1Char(':') + QLatin1String(v.typeName());
}

// Records every signal of an object in emission order as "sSig(types): a, b".
// Signals are connected by index to this object's qt_metacall, as QSignalSpy
// does it, so one log sees the order across different signals.
class SignalLog : public QObject
{
public:
    explicit SignalLog(QObject *source)
    {
        const QMetaObject *mo = source->metaObject();
        for (int i = mo->methodOffset(); i < mo->methodCount(); ++i) {
            if (mo->method(i).methodType() != QMetaMethod::Signal)
                continue;
            methods.append(mo->method(i));
            const int slot = QObject::staticMetaObject.methodCount() + methods.size() - 1;
            if (!QMetaObject::connect(source, i, this, slot, Qt::DirectConnection))
                qFatal("SignalLog: cannot connect %s", mo->method(i).methodSignature().data());
        }
    }

    int qt_metacall(QMetaObject::Call call, int id, void **a) override
    {
        id = QObject::qt_metacall(call, id, a);
        if (id < 0 || call != QMetaObject::InvokeMetaMethod)
            return id;
        const QMetaMethod &m = methods.at(id);
        QStringList args;
        for (int j = 0; j < m.parameterCount(); ++j)
            args << text(QVariant(m.parameterType(j), a[j + 1]));
        lines << QString::fromLatin1(m.methodSignature()) + QLatin1String(": ")
                + args.join(QLatin1String(", "));
        return -1;
    }

    QStringList lines;

private:
    QList<QMetaMethod> methods;
};

QVariant message(const QVariantList &list)
{
    return QVariant(list);
}

} // namespace

class tst_QrvCommand : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void metaObjectOrder();
    void encoderWire_data();
    void encoderWire();
    void decode_data();
    void decode();
    void shortMessagesDecodeToDefaults();
    void cwKeyObjectIsStoredAfterTheSignal();
    void describeNamesParameters();
};

void tst_QrvCommand::initTestCase()
{
    qRegisterMetaType<QList<int>>();
    qRegisterMetaType<QList<void *>>();
    qRegisterMetaType<CwKeyControlAbstract *>();
}

// Declaration order, which the meta-object keeps: sCommand, the signals,
// the encoders, setCommand.
void tst_QrvCommand::metaObjectOrder()
{
    const QMetaObject &mo = qrvCommand::staticMetaObject;
    QCOMPARE(mo.methodCount() - mo.methodOffset(), 2 * 194);
    QCOMPARE(mo.propertyCount() - mo.propertyOffset(), 0);
    QCOMPARE(mo.enumeratorCount() - mo.enumeratorOffset(), 0);
    QList<QByteArray> ends;
    for (int i : {0, 1, 193, 194, 386, 387})
        ends << mo.method(mo.methodOffset() + i).methodSignature();
    QCOMPARE(ends,
             (QList<QByteArray> {"sCommand(QVariant)", "sQrvStart(uint,bool)",
                                 "sSkimmerTune(uint,double)", "qrvStart(uint,bool)",
                                 "setSkimmerTune(uint,double)", "setCommand(QVariant)"}));
}

// Messages written out by hand, independent of the table that generates the
// encoders.
void tst_QrvCommand::encoderWire_data()
{
    QTest::addColumn<Encode>("encode");
    QTest::addColumn<QString>("wire");
    const auto key = reinterpret_cast<CwKeyControlAbstract *>(0x5000);
    const QList<void *> buffers {reinterpret_cast<void *>(0x10), nullptr};
    // clang-format off
    QTest::newRow("open()") << Encode([](qrvCommand &c) { c.open(); }) << "[0:int,true:bool]";
    QTest::newRow("close()") << Encode([](qrvCommand &c) { c.close(); }) << "[0:int,false:bool]";
    QTest::newRow("panelVFO") << Encode([](qrvCommand &c) { c.panelVFO(0, 1, -3); }) << "[143:int,0:uint,1:uint,-3:int]";
    QTest::newRow("panelPowerChange") << Encode([](qrvCommand &c) { c.panelPowerChange(); }) << "[124:int]";
    QTest::newRow("rxFilter") << Encode([](qrvCommand &c) { c.rxFilter(1, 2, -2400.5, 150); }) << "[28:int,1:uint,2:uint,-2400.5:double,150:double]";
    QTest::newRow("setSensorFan") << Encode([](qrvCommand &c) { c.setSensorFan(true); }) << "[106:int,1:uint]";
    QTest::newRow("rxXitEnable") << Encode([](qrvCommand &c) { c.rxXitEnable(0, 0, true); }) << "[58:int,0:uint,0:uint,true:bool]";
    QTest::newRow("rxEqualizer") << Encode([](qrvCommand &c) { c.rxEqualizer(2, {1, 2, 3}); }) << "[49:int,2:uint,[1:int,2:int,3:int]]";
    QTest::newRow("txEqualizer") << Encode([](qrvCommand &c) { c.txEqualizer(0, QList<int>()); }) << "[78:int,0:uint,[]]";
    QTest::newRow("cwPitch") << Encode([](qrvCommand &c) { c.cwPitch(-600); }) << "[85:int,-600:int]";
    QTest::newRow("rxNB1Level") << Encode([](qrvCommand &c) { c.rxNB1Level(2, -40); }) << "[33:int,2:uint,-40:int]";
    QTest::newRow("txMon") << Encode([](qrvCommand &c) { c.txMon(3, true); }) << "[68:int,3:uint,true:bool]";
    QTest::newRow("bandScope") << Encode([](qrvCommand &c) { c.bandScope(true, 5000000000ULL, 2); }) << "[14:int,true:bool,5000000000:qulonglong,2:uint]";
    QTest::newRow("scRingBuffer") << Encode([](qrvCommand &c) { c.scRingBuffer(-2); }) << "[97:int,18446744073709551614:qulonglong]";
    QTest::newRow("setCWKeyObject") << Encode([key](qrvCommand &c) { c.setCWKeyObject(key); }) << "[184:int,20480:qulonglong]";
    QTest::newRow("lineOutBuffers") << Encode([buffers](qrvCommand &c) { c.lineOutBuffers(buffers); }) << "[177:int,[16:qulonglong,0:qulonglong]]";
    // clang-format on
}

void tst_QrvCommand::encoderWire()
{
    QFETCH(Encode, encode);
    QFETCH(QString, wire);
    qrvCommand codec;
    QSignalSpy spy(&codec, &qrvCommand::sCommand);
    encode(codec);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(typed(spy.first().first()), wire);
}

void tst_QrvCommand::decode_data()
{
    QTest::addColumn<QVariant>("message");
    QTest::addColumn<QString>("emitted"); // signals in order, separated by " | "
    const qulonglong key = 0x7f0012345678ULL;
    const QString str1 = QStringLiteral("-1");
    // clang-format off
    QTest::newRow("open true") << message({0, true}) << "sOpen(bool): true | sOpen(): ";
    QTest::newRow("open false") << message({0, false}) << "sOpen(bool): false | sClose(): ";
    QTest::newRow("start 1") << message({1, 1}) << "sStart(bool): true | sStart(): ";
    QTest::newRow("xit enable sent as 58") << message({58, 1u, 0u, true}) << "sRxXitReset(uint,uint): 1, 0";
    QTest::newRow("xit enable as 59") << message({59, 1u, 0u, true}) << "sRxXitEnable(uint,uint,bool): 1, 0, true";
    QTest::newRow("nb1 level float to double") << message({33, 2u, -40.5f}) << "sRxNB1Level(uint,double): 2, -40.5";
    QTest::newRow("cw pitch int to uint") << message({85, -1}) << "sCwPitch(uint): 4294967295";
    QTest::newRow("tx mon through int: 2") << message({68, 0u, 2}) << "sTxMon(uint,bool): 0, true";
    QTest::newRow("tx mon through int: 'true'") << message({68, 0u, "true"}) << "sTxMon(uint,bool): 0, false";
    QTest::newRow("other flags through bool") << message({31, 0u, "true"}) << "sRxBin(uint,bool): 0, true";
    QTest::newRow("sensor fan uint") << message({106, 1u}) << "sSensorFan(bool): true";
    QTest::newRow("unsigned row, -1") << message({6, -1, 2, 1}) << "sTrxMode(uint,uint,bool): 4294967295, 2, true";
    // A negative numeric string tells the two uint conversions apart: through
    // int it wraps, through unsigned it does not convert at all.
    QTest::newRow("unsigned row, '-1'") << message({8, str1, true}) << "sMoxChacked(uint,bool): 0, true";
    QTest::newRow("int row, '-1'") << message({12, str1, true}) << "sReceiverEnable(uint,bool): 4294967295, true";
    QTest::newRow("numeric strings") << message({"110", "7"}) << "sPanelBandUp(uint): 7";
    QTest::newRow("64-bit frequency") << message({14, true, Q_UINT64_C(0x10000000005), 3u}) << "sBandScope(bool,qulonglong,uint): true, 1099511627781, 3";
    QTest::newRow("ring buffer address") << message({97, ~Q_UINT64_C(0)}) << "sScRingBuffer(long): -1";
    QTest::newRow("equalizer empty") << message({49, 1u, QVariantList {}}) << "sRxEqualizer(uint,QList<int>): 1, []";
    QTest::newRow("equalizer mixed") << message({78, 1u, QVariantList {1, "2", 3.0, 4u}}) << "sTxEqualizer(uint,QList<int>): 1, [1,2,3,4]";
    QTest::newRow("line out buffers") << message({177, QVariantList {key, 0}}) << "sLineOutBuffers(QList<void*>): [0x7f0012345678,0x0]";
    QTest::newRow("cw key object") << message({184, key}) << "sCWKeyObject(CwKeyControlAbstract*): 0x7f0012345678";
    QTest::newRow("extras ignored") << message({124, "x", 5}) << "sPanelPowerChange(): ";
    QTest::newRow("four arguments") << message({28, 1u, 2u, -2400.5, 150.0}) << "sRxFilter(uint,uint,double,double): 1, 2, -2400.5, 150";
    QTest::newRow("missing tail is zero") << message({143, 5u}) << "sPanelVFO(uint,uint,int): 5, 0, 0";
    QTest::newRow("non-numeric id is 0") << message({"open"}) << "sOpen(bool): false | sClose(): ";
    // Dropped without a trace.
    QTest::newRow("string") << QVariant(QStringLiteral("110")) << "";
    QTest::newRow("map") << QVariant(QVariantMap {{"110", 0}}) << "";
    QTest::newRow("empty list") << message({}) << "";
    QTest::newRow("id -1") << message({-1, 0u}) << "";
    QTest::newRow("id 190") << message({190, 0u}) << "";
    QTest::newRow("id 53") << message({53, 1u, 2u, true}) << "";
    // clang-format on
}

// What the dispatcher emits, in order, for messages that exercise its
// conversion rules and the table's irregular rows, and for those it drops.
void tst_QrvCommand::decode()
{
    QFETCH(QVariant, message);
    QFETCH(QString, emitted);
    qrvCommand codec;
    SignalLog log(&codec);
    codec.setCommand(message);
    QCOMPARE(log.lines.join(QLatin1String(" | ")), emitted);
}

// A message with the id alone: every row reads past the end of the list and
// must emit its signals with zeros, false, null and empty lists only.
void tst_QrvCommand::shortMessagesDecodeToDefaults()
{
    const QRegularExpression defaults(QStringLiteral("^[^:]*: ((0|false|0x0|\\[\\])(, |$))*$"));
    qrvCommand codec;
    SignalLog log(&codec);
    for (int id = 0; id < qrv::commandCount; ++id) {
        log.lines.clear();
        codec.setCommand(message({id}));
        QCOMPARE(log.lines.isEmpty(), id == 53);
        for (const QString &line : qAsConst(log.lines))
            QVERIFY2(defaults.match(line).hasMatch(), qPrintable(line));
    }
}

// The CW-key signal goes out on every announcement; the codec remembers the
// object only after its receivers have seen it.
void tst_QrvCommand::cwKeyObjectIsStoredAfterTheSignal()
{
    const auto key = reinterpret_cast<CwKeyControlAbstract *>(0x7f0000001000);
    qrvCommand codec;
    QList<QPair<CwKeyControlAbstract *, CwKeyControlAbstract *>> seen; // (argument, stored)
    connect(&codec, &qrvCommand::sCWKeyObject, &codec,
            [&](CwKeyControlAbstract *p) { seen.append(qMakePair(p, codec.lastCwKeyObject())); });
    for (qulonglong address : {quintptr(key), quintptr(key), quintptr(0), quintptr(0)})
        codec.setCommand(message({184, address}));
    const QList<QPair<CwKeyControlAbstract *, CwKeyControlAbstract *>> expected {
        {key, nullptr}, {key, key}, {nullptr, key}, {nullptr, nullptr}};
    QCOMPARE(seen, expected);
}

void tst_QrvCommand::describeNamesParameters()
{
    QCOMPARE(qrv::describe(message({110, 0u})), QStringLiteral("panelBandUp(receiver=0)"));
    QCOMPARE(qrv::describe(message({58, 1u, 0u, true})),
             QStringLiteral("rxXitEnable(receiver=1, channel=0, state=true)"));
    QCOMPARE(qrv::describe(message({53})), QStringLiteral("(unknown command 53)"));
    QCOMPARE(qrv::signature(qrv::encoders[0], true),
             QByteArray("qrvStart(uint receiver, bool state)"));
}

QTEST_GUILESS_MAIN(tst_QrvCommand)
#include "tst_qrvcommand.moc"
