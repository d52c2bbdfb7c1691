#include "command/qrvcommand.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <set>

using Encode = std::function<void(qrvCommand &)>;
Q_DECLARE_METATYPE(Encode)

namespace {

// Records every signal of an object in emission order, with its arguments.
// Signals are connected by index to this object's qt_metacall, the same way
// QSignalSpy does it, so one log sees the order across different signals.
class SignalLog : public QObject
{
public:
    explicit SignalLog(QObject *source)
    {
        const QMetaObject *mo = source->metaObject();
        for (int i = mo->methodOffset(); i < mo->methodCount(); ++i) {
            const QMetaMethod m = mo->method(i);
            if (m.methodType() != QMetaMethod::Signal)
                continue;
            const int slot = QObject::staticMetaObject.methodCount() + methods.size();
            methods.append(m);
            if (!QMetaObject::connect(source, i, this, slot, Qt::DirectConnection))
                qFatal("SignalLog: cannot connect %s", m.methodSignature().constData());
        }
    }

    int qt_metacall(QMetaObject::Call call, int id, void **a) override
    {
        id = QObject::qt_metacall(call, id, a);
        if (id < 0 || call != QMetaObject::InvokeMetaMethod)
            return id;
        const QMetaMethod &m = methods.at(id);
        QVariantList args;
        for (int j = 0; j < m.parameterCount(); ++j) {
            const int type = m.parameterType(j);
            args << (type == QMetaType::QVariant ? *static_cast<const QVariant *>(a[j + 1])
                                                 : QVariant(type, a[j + 1]));
        }
        signatures << m.methodSignature();
        arguments << args;
        return -1;
    }

    void clear()
    {
        signatures.clear();
        arguments.clear();
    }

    QList<QByteArray> signatures;
    QList<QVariantList> arguments;

private:
    QList<QMetaMethod> methods;
};

// Text of one value with its type where the type matters: "7:uint", "[1:int]".
QString typed(const QVariant &v)
{
    if (v.userType() == QMetaType::QVariantList) {
        QStringList items;
        for (const QVariant &e : v.toList())
            items << typed(e);
        return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    const QString value = v.userType() == QMetaType::Bool
        ? QString::fromLatin1(v.toBool() ? "true" : "false")
        : v.toString();
    return value + QLatin1Char(':') + QLatin1String(v.typeName());
}

// The pointer a variant holds; value<>() would dereference it (qobject_cast),
// and the test's addresses point nowhere.
CwKeyControlAbstract *rawKey(const QVariant &v)
{
    return *static_cast<CwKeyControlAbstract *const *>(v.constData());
}

QString plainPointer(const void *p)
{
    return QStringLiteral("0x%1").arg(quintptr(p), 0, 16);
}

// Text of one decoded signal argument (its type is in the signal's signature).
QString plain(const QVariant &v)
{
    const int type = v.userType();
    if (type == qMetaTypeId<QList<int>>()) {
        QStringList items;
        for (int i : v.value<QList<int>>())
            items << QString::number(i);
        return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    if (type == qMetaTypeId<QList<void *>>()) {
        QStringList items;
        for (void *p : v.value<QList<void *>>())
            items << plainPointer(p);
        return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    if (type == qMetaTypeId<CwKeyControlAbstract *>())
        return plainPointer(rawKey(v));
    if (type == QMetaType::Bool)
        return QString::fromLatin1(v.toBool() ? "true" : "false");
    if (type == QMetaType::Long)
        return QString::number(v.value<long>());
    return v.toString();
}

// "sOpen(bool): true" for every logged signal.
QStringList render(const SignalLog &log)
{
    QStringList lines;
    for (int i = 0; i < log.signatures.size(); ++i) {
        QStringList args;
        for (const QVariant &a : log.arguments.at(i))
            args << plain(a);
        lines << QString::fromLatin1(log.signatures.at(i)) + QLatin1String(": ")
                + args.join(QLatin1String(", "));
    }
    return lines;
}

QVariant message(const QVariantList &list)
{
    return QVariant(list);
}

// Arguments for an encoder, built from its parameter types. Set `a` uses small
// positive numbers and alternating flags starting with true; set `b` uses values
// that need the full width of their type (large unsigned, negative, 64-bit) and
// the opposite flags, with empty lists.
class EncoderArgs
{
public:
    EncoderArgs(const qrv::Method &method, bool setA)
    {
        for (int j = 0; j < method.argc; ++j) {
            const QByteArray type = QMetaObject::normalizedType(method.params[j].type);
            const int pos = j + 1;
            const int id = method.id;
            QVariant v;
            if (type == "uint")
                v = setA ? QVariant(uint(id + pos)) : QVariant(0xFFFFFFF0u + uint(pos));
            else if (type == "int")
                v = QVariant(setA ? id * 10 + pos : -(id * 10 + pos));
            else if (type == "bool")
                v = QVariant(((pos % 2) == 1) == setA);
            else if (type == "double")
                v = QVariant(setA ? id + pos / 8.0 : -1e9 - pos);
            else if (type == "qulonglong")
                v = QVariant(setA ? (Q_UINT64_C(1) << 32) * uint(pos) + uint(id)
                                  : ~Q_UINT64_C(0) - uint(pos));
            else if (type == "long")
                v = QVariant::fromValue(setA ? 0x7f0000000000L + id : -5L - pos);
            else if (type == "CwKeyControlAbstract*")
                v = QVariant::fromValue(
                    setA ? reinterpret_cast<CwKeyControlAbstract *>(quintptr(0x7f00deadbe00))
                         : nullptr);
            else if (type == "QList<int>")
                v = QVariant::fromValue(setA ? QList<int> {id, -1, 7} : QList<int> {});
            else if (type == "QList<void*>")
                v = QVariant::fromValue(
                    setA ? QList<void *> {reinterpret_cast<void *>(0x1000),
                                          reinterpret_cast<void *>(0x7f0000002000)}
                         : QList<void *> {});
            else
                qFatal("no test value for %s", type.constData());
            values << v;
            types << type;
        }
    }

    bool invoke(qrvCommand &codec, const qrv::Method &method) const
    {
        QGenericArgument args[qrv::maxParams];
        for (int j = 0; j < values.size(); ++j)
            args[j] = QGenericArgument(types.at(j).constData(), values.at(j).constData());
        const QMetaObject *mo = codec.metaObject();
        const QMetaMethod m = mo->method(mo->indexOfSlot(qrv::signature(method).constData()));
        return m.invoke(&codec, Qt::DirectConnection, args[0], args[1], args[2], args[3]);
    }

    // The element the encoder must send for argument j, as rendered by typed().
    QString wireText(int j, int wireType) const
    {
        const QVariant &v = values.at(j);
        switch (wireType) {
        case QMetaType::QVariantList: {
            QVariantList inner;
            if (types.at(j) == "QList<int>") {
                for (int i : v.value<QList<int>>())
                    inner << i;
            } else {
                for (void *p : v.value<QList<void *>>())
                    inner << qulonglong(quintptr(p));
            }
            return typed(inner);
        }
        case QMetaType::ULongLong:
            if (types.at(j) == "long")
                return typed(qulonglong(v.value<long>()));
            if (types.at(j) == "CwKeyControlAbstract*")
                return typed(qulonglong(quintptr(rawKey(v))));
            return typed(v);
        default: {
            QVariant w = v;
            w.convert(wireType);
            return typed(w);
        }
        }
    }

    // Argument j as the decoded signal's parameter `type` must carry it.
    QString decodedText(int j, const QByteArray &type) const
    {
        QVariant v = values.at(j);
        if (type != types.at(j))
            v.convert(QMetaType::type(type));
        return plain(v);
    }

    QVariantList values;
    QList<QByteArray> types;
};

} // namespace

class tst_QrvCommand : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void metaObjectMatchesTable();
    void roundTrip_data();
    void roundTrip();
    void encoderWire_data();
    void encoderWire();
    void decode_data();
    void decode();
    void dropped_data();
    void dropped();
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

void tst_QrvCommand::metaObjectMatchesTable()
{
    const QMetaObject &mo = qrvCommand::staticMetaObject;
    QCOMPARE(mo.propertyCount() - mo.propertyOffset(), 0);
    QCOMPARE(mo.enumeratorCount() - mo.enumeratorOffset(), 0);

    QList<QByteArray> signalList, slotList;
    for (int i = mo.methodOffset(); i < mo.methodCount(); ++i) {
        const QMetaMethod m = mo.method(i);
        QCOMPARE(m.access(), QMetaMethod::Public);
        if (m.methodType() == QMetaMethod::Signal)
            signalList << m.methodSignature();
        else if (m.methodType() == QMetaMethod::Slot)
            slotList << m.methodSignature();
    }
    QCOMPARE(signalList.size(), 194);
    QCOMPARE(slotList.size(), 194);
    QCOMPARE(signalList.first(), QByteArray("sCommand(QVariant)"));
    QCOMPARE(slotList.last(), QByteArray("setCommand(QVariant)"));

    // Table and class list the same methods in the same order.
    QList<QByteArray> tableSignals {"sCommand(QVariant)"}, tableSlots;
    for (const qrv::Method &s : qrv::decodedSignals)
        tableSignals << qrv::signature(s);
    for (const qrv::Method &e : qrv::encoders)
        tableSlots << qrv::signature(e);
    tableSlots << "setCommand(QVariant)";
    QCOMPARE(signalList, tableSignals);
    QCOMPARE(slotList, tableSlots);
    QCOMPARE(std::set<QByteArray>(slotList.begin(), slotList.end()).size(), size_t(194));
    QCOMPARE(std::set<QByteArray>(signalList.begin(), signalList.end()).size(), size_t(194));

    // Order fixed by the host's copy of the class.
    QCOMPARE(signalList.at(1), QByteArray("sQrvStart(uint,bool)"));
    QCOMPARE(signalList.last(), QByteArray("sSkimmerTune(uint,double)"));
    QCOMPARE(slotList.first(), QByteArray("qrvStart(uint,bool)"));
    QCOMPARE(slotList.at(192), QByteArray("setSkimmerTune(uint,double)"));

    // Every id but 53 is decoded, every id but 53 and 59 is sent.
    std::set<int> decoded, sent;
    for (const qrv::Method &s : qrv::decodedSignals)
        decoded.insert(s.id);
    for (const qrv::Method &e : qrv::encoders)
        sent.insert(e.id);
    QCOMPARE(decoded.size(), size_t(189));
    QCOMPARE(sent.size(), size_t(188));
    QVERIFY(!decoded.count(53) && !sent.count(53) && !sent.count(59));
    QCOMPARE(*decoded.begin(), 0);
    QCOMPARE(*decoded.rbegin(), 189);
}

void tst_QrvCommand::roundTrip_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("setA");
    for (int i = 0; i < qrv::encoderCount; ++i) {
        const QByteArray sig = qrv::signature(qrv::encoders[i]);
        QTest::addRow("%d %s a", qrv::encoders[i].id, sig.constData()) << i << true;
        QTest::addRow("%d %s b", qrv::encoders[i].id, sig.constData()) << i << false;
    }
}

// Every encoder: the message has the id as int and each element of the listed
// type and value; decoded again, it emits the signals of that id (only those),
// carrying the encoder's arguments converted to the signal's types.
void tst_QrvCommand::roundTrip()
{
    QFETCH(int, row);
    QFETCH(bool, setA);
    const qrv::Method &enc = qrv::encoders[row];
    const EncoderArgs args(enc, setA);

    qrvCommand codec;
    SignalLog log(&codec);
    QVERIFY(args.invoke(codec, enc));

    QCOMPARE(log.signatures, QList<QByteArray> {"sCommand(QVariant)"});
    const QVariant msg = log.arguments.first().first();
    QCOMPARE(msg.userType(), int(QMetaType::QVariantList));
    const QVariantList list = msg.toList();
    QCOMPARE(list.size(), 1 + enc.wireCount);
    QCOMPARE(typed(list.first()), typed(QVariant(enc.id)));
    if (enc.argc == 0 && enc.wireCount == 1) {
        // open(), close(), start(), stop(): a fixed flag.
        QCOMPARE(list.at(1).userType(), int(QMetaType::Bool));
    } else {
        for (int j = 0; j < enc.wireCount; ++j)
            QCOMPARE(typed(list.at(j + 1)), args.wireText(j, enc.wire[j]));
    }

    log.clear();
    codec.setCommand(msg);
    const bool flag = list.value(1).toBool();
    QStringList expected;
    for (const qrv::Method &s : qrv::decodedSignals) {
        if (s.id != enc.id)
            continue;
        if (s.guard != qrv::Guard::Always && flag != (s.guard == qrv::Guard::IfTrue))
            continue;
        QStringList decodedArgs;
        for (int j = 0; j < s.argc; ++j) {
            const QByteArray type = QMetaObject::normalizedType(s.params[j].type);
            if (j < args.values.size()) {
                decodedArgs << args.decodedText(j, type);
            } else { // the fixed flag of open(), close(), start(), stop()
                QVariant fixed = list.at(j + 1);
                fixed.convert(QMetaType::type(type));
                decodedArgs << plain(fixed);
            }
        }
        expected << QString::fromLatin1(qrv::signature(s)) + QLatin1String(": ")
                + decodedArgs.join(QLatin1String(", "));
    }
    QVERIFY(!expected.isEmpty());
    QCOMPARE(render(log), expected);
}

void tst_QrvCommand::encoderWire_data()
{
    QTest::addColumn<Encode>("encode");
    QTest::addColumn<QString>("wire");

    auto *key = reinterpret_cast<CwKeyControlAbstract *>(quintptr(0x5000));
    QTest::newRow("open()") << Encode([](qrvCommand &c) { c.open(); }) << "[0:int,true:bool]";
    QTest::newRow("close()") << Encode([](qrvCommand &c) { c.close(); }) << "[0:int,false:bool]";
    QTest::newRow("start()") << Encode([](qrvCommand &c) { c.start(); }) << "[1:int,true:bool]";
    QTest::newRow("stop()") << Encode([](qrvCommand &c) { c.stop(); }) << "[1:int,false:bool]";
    QTest::newRow("panelVFO") << Encode([](qrvCommand &c) { c.panelVFO(0, 1, -3); })
                              << "[143:int,0:uint,1:uint,-3:int]";
    QTest::newRow("panelPowerChange")
        << Encode([](qrvCommand &c) { c.panelPowerChange(); }) << "[124:int]";
    QTest::newRow("setSensorFan") << Encode([](qrvCommand &c) { c.setSensorFan(true); })
                                  << "[106:int,1:uint]";
    QTest::newRow("rxXitEnable") << Encode([](qrvCommand &c) { c.rxXitEnable(0, 0, true); })
                                 << "[58:int,0:uint,0:uint,true:bool]";
    QTest::newRow("rxEqualizer list") << Encode([](qrvCommand &c) {
        c.rxEqualizer(2, QList<int> {1, 2, 3});
    }) << "[49:int,2:uint,[1:int,2:int,3:int]]";
    QTest::newRow("txEqualizer empty")
        << Encode([](qrvCommand &c) { c.txEqualizer(0, QList<int> {}); }) << "[78:int,0:uint,[]]";
    QTest::newRow("cwPitch") << Encode([](qrvCommand &c) { c.cwPitch(-600); })
                             << "[85:int,-600:int]";
    QTest::newRow("rxNB1Level") << Encode([](qrvCommand &c) { c.rxNB1Level(2, -40); })
                                << "[33:int,2:uint,-40:int]";
    QTest::newRow("bandScope") << Encode([](qrvCommand &c) { c.bandScope(true, 5000000000ULL, 2); })
                               << "[14:int,true:bool,5000000000:qulonglong,2:uint]";
    QTest::newRow("scRingBuffer") << Encode([](qrvCommand &c) { c.scRingBuffer(-2); })
                                  << "[97:int,18446744073709551614:qulonglong]";
    QTest::newRow("setCWKeyObject")
        << Encode([key](qrvCommand &c) { c.setCWKeyObject(key); }) << "[184:int,20480:qulonglong]";
    QTest::newRow("lineOutBuffers") << Encode([](qrvCommand &c) {
        c.lineOutBuffers({reinterpret_cast<void *>(0x10), nullptr});
    }) << "[177:int,[16:qulonglong,0:qulonglong]]";
    QTest::newRow("txMon flag") << Encode([](qrvCommand &c) { c.txMon(3, true); })
                                << "[68:int,3:uint,true:bool]";
    QTest::newRow("txMon dB") << Encode([](qrvCommand &c) { c.txMon(3, -7); })
                              << "[69:int,3:uint,-7:int]";
    QTest::newRow("setIqWriter") << Encode([](qrvCommand &c) { c.setIqWriter(false, -1); })
                                 << "[162:int,false:bool,-1:int]";
}

// Messages written out by hand, independent of the table that generates the
// encoders.
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
    QTest::addColumn<QStringList>("emitted");

    const qulonglong key = 0x7f0012345678ULL;
    const QString keyText = QStringLiteral("0x7f0012345678");

    QTest::newRow("open true") << message({0, true})
                               << QStringList {"sOpen(bool): true", "sOpen(): "};
    QTest::newRow("open false") << message({0, false})
                                << QStringList {"sOpen(bool): false", "sClose(): "};
    QTest::newRow("start 1") << message({1, 1}) << QStringList {"sStart(bool): true", "sStart(): "};
    QTest::newRow("start 0") << message({1, 0}) << QStringList {"sStart(bool): false", "sStop(): "};
    QTest::newRow("xit enable sent as 58")
        << message({58, 1u, 0u, true}) << QStringList {"sRxXitReset(uint,uint): 1, 0"};
    QTest::newRow("xit enable as 59")
        << message({59, 1u, 0u, true}) << QStringList {"sRxXitEnable(uint,uint,bool): 1, 0, true"};
    QTest::newRow("nb1 level int to double")
        << message({33, 2u, -40}) << QStringList {"sRxNB1Level(uint,double): 2, -40"};
    QTest::newRow("cw pitch int to uint")
        << message({85, -1}) << QStringList {"sCwPitch(uint): 4294967295"};
    QTest::newRow("tx mon through int: 2")
        << message({68, 0u, 2}) << QStringList {"sTxMon(uint,bool): 0, true"};
    QTest::newRow("tx mon through int: 'true'")
        << message({68, 0u, QStringLiteral("true")}) << QStringList {"sTxMon(uint,bool): 0, false"};
    QTest::newRow("tx mon through int: 0.4")
        << message({68, 0u, 0.4}) << QStringList {"sTxMon(uint,bool): 0, false"};
    QTest::newRow("other flags through bool: 'true'")
        << message({31, 0u, QStringLiteral("true")}) << QStringList {"sRxBin(uint,bool): 0, true"};
    QTest::newRow("sensor fan uint")
        << message({106, 1u}) << QStringList {"sSensorFan(bool): true"};
    QTest::newRow("unsigned conversion row")
        << message({6, -1, 2, 1}) << QStringList {"sTrxMode(uint,uint,bool): 4294967295, 2, true"};
    // A negative numeric string tells the two uint conversions apart: through
    // int it wraps, through unsigned it does not convert at all.
    QTest::newRow("unsigned conversion row, '-1'")
        << message({8, QStringLiteral("-1"), true})
        << QStringList {"sMoxChacked(uint,bool): 0, true"};
    QTest::newRow("int conversion row, '-1'")
        << message({12, QStringLiteral("-1"), true})
        << QStringList {"sReceiverEnable(uint,bool): 4294967295, true"};
    QTest::newRow("int where uint is listed")
        << message({110, -2}) << QStringList {"sPanelBandUp(uint): 4294967294"};
    QTest::newRow("numeric string") << message({QStringLiteral("110"), QStringLiteral("7")})
                                    << QStringList {"sPanelBandUp(uint): 7"};
    QTest::newRow("band scope 64-bit frequency")
        << message({14, true, Q_UINT64_C(0x10000000005), 3u})
        << QStringList {"sBandScope(bool,qulonglong,uint): true, 1099511627781, 3"};
    QTest::newRow("ring buffer address")
        << message({97, ~Q_UINT64_C(0)}) << QStringList {"sScRingBuffer(long): -1"};
    QTest::newRow("equalizer empty") << message({49, 1u, QVariantList {}})
                                     << QStringList {"sRxEqualizer(uint,QList<int>): 1, []"};
    QTest::newRow("equalizer mixed elements")
        << message({78, 1u, QVariantList {1, QStringLiteral("2"), 3.0, 4u}})
        << QStringList {"sTxEqualizer(uint,QList<int>): 1, [1,2,3,4]"};
    QTest::newRow("equalizer not a list")
        << message({49, 1u, 5}) << QStringList {"sRxEqualizer(uint,QList<int>): 1, []"};
    QTest::newRow("line out buffers")
        << message({177, QVariantList {key, 0}})
        << QStringList {"sLineOutBuffers(QList<void*>): [" + keyText + ",0x0]"};
    QTest::newRow("cw key object")
        << message({184, key}) << QStringList {"sCWKeyObject(CwKeyControlAbstract*): " + keyText};
    QTest::newRow("cw key null") << message({184, 0})
                                 << QStringList {"sCWKeyObject(CwKeyControlAbstract*): 0x0"};
    QTest::newRow("no-argument command ignores extras")
        << message({124, QStringLiteral("x"), 5}) << QStringList {"sPanelPowerChange(): "};
    QTest::newRow("missing tail is zero")
        << message({143, 5u}) << QStringList {"sPanelVFO(uint,uint,int): 5, 0, 0"};
    QTest::newRow("non-numeric id reads as 0")
        << message({QStringLiteral("open")}) << QStringList {"sOpen(bool): false", "sClose(): "};
}

// What the dispatcher emits, in order, for messages that exercise its
// conversion rules and the table's irregular rows.
void tst_QrvCommand::decode()
{
    QFETCH(QVariant, message);
    QFETCH(QStringList, emitted);

    qrvCommand codec;
    SignalLog log(&codec);
    codec.setCommand(message);
    QCOMPARE(render(log), emitted);
}

void tst_QrvCommand::dropped_data()
{
    QTest::addColumn<QVariant>("message");

    QTest::newRow("invalid") << QVariant();
    QTest::newRow("int") << QVariant(110);
    QTest::newRow("string") << QVariant(QStringLiteral("110"));
    QTest::newRow("string list") << QVariant(QStringList {"110", "0"});
    QTest::newRow("map") << QVariant(QVariantMap {{"110", 0}});
    QTest::newRow("empty list") << message({});
    QTest::newRow("id -1") << message({-1, 0u});
    QTest::newRow("id 190") << message({190, 0u});
    QTest::newRow("id INT_MIN") << message({std::numeric_limits<int>::min()});
    QTest::newRow("id 0xFFFFFFFF as uint") << message({0xFFFFFFFFu});
    QTest::newRow("id 53") << message({53});
    QTest::newRow("id 53 with elements") << message({53, 1u, 2u, true});
}

void tst_QrvCommand::dropped()
{
    QFETCH(QVariant, message);

    qrvCommand codec;
    SignalLog log(&codec);
    codec.setCommand(message);
    QCOMPARE(render(log), QStringList());
    QCOMPARE(codec.lastCwKeyObject(), nullptr);
}

// A message with the id alone: every row reads past the end of the list and
// must emit its signals with zeros, false, null and empty lists only.
void tst_QrvCommand::shortMessagesDecodeToDefaults()
{
    const QStringList defaults {"0", "false", "0x0", "[]"};
    qrvCommand codec;
    SignalLog log(&codec);
    for (int id = 0; id < qrv::commandCount; ++id) {
        log.clear();
        codec.setCommand(message({id}));
        QCOMPARE(log.signatures.isEmpty(), id == 53);
        for (int i = 0; i < log.arguments.size(); ++i) {
            for (const QVariant &arg : log.arguments.at(i)) {
                if (!defaults.contains(plain(arg)))
                    QFAIL(qPrintable(QStringLiteral("[%1] %2 carries %3")
                                         .arg(id)
                                         .arg(QString::fromLatin1(log.signatures.at(i)))
                                         .arg(plain(arg))));
            }
        }
    }
}

// The CW-key signal goes out on every announcement; the codec remembers the
// object only after its receivers have seen it.
void tst_QrvCommand::cwKeyObjectIsStoredAfterTheSignal()
{
    auto *first = reinterpret_cast<CwKeyControlAbstract *>(quintptr(0x7f0000001000));
    qrvCommand codec;
    QList<QPair<CwKeyControlAbstract *, CwKeyControlAbstract *>> seen; // (argument, stored)
    connect(&codec, &qrvCommand::sCWKeyObject, &codec,
            [&](CwKeyControlAbstract *p) { seen.append(qMakePair(p, codec.lastCwKeyObject())); });

    codec.setCommand(message({184, qulonglong(quintptr(first))}));
    QCOMPARE(codec.lastCwKeyObject(), first);
    codec.setCommand(message({184, qulonglong(quintptr(first))}));
    codec.setCommand(message({184, 0}));
    QCOMPARE(codec.lastCwKeyObject(), nullptr);
    codec.setCommand(message({184, 0}));

    const QList<QPair<CwKeyControlAbstract *, CwKeyControlAbstract *>> expected {
        {first, nullptr}, {first, first}, {nullptr, first}, {nullptr, nullptr}};
    QCOMPARE(seen, expected);
}

void tst_QrvCommand::describeNamesParameters()
{
    QCOMPARE(qrv::describe(message({110, 0u})), QStringLiteral("panelBandUp(receiver=0)"));
    QCOMPARE(qrv::describe(message({143, 0u, 1u, -3})),
             QStringLiteral("panelVFO(receiver=0, channel=1, step=-3)"));
    QCOMPARE(qrv::describe(message({58, 1u, 0u, true})),
             QStringLiteral("rxXitEnable(receiver=1, channel=0, state=true)"));
    QCOMPARE(qrv::describe(message({59, 1u, 0u, true})),
             QStringLiteral("sRxXitEnable(receiver=1, channel=0, state=true)"));
    QCOMPARE(qrv::describe(message({124})), QStringLiteral("panelPowerChange()"));
    QCOMPARE(qrv::describe(message({53})), QStringLiteral("(unknown command 53)"));
    QCOMPARE(qrv::describe(QVariant(3)), QStringLiteral("(not a message)"));
    QCOMPARE(qrv::signature(qrv::encoders[0], true),
             QByteArray("qrvStart(uint receiver, bool state)"));
}

QTEST_GUILESS_MAIN(tst_QrvCommand)
#include "tst_qrvcommand.moc"
