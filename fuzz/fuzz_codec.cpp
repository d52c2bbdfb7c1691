// Fuzzes the command dispatcher (qrvCommand::setCommand) with structured
// messages built from the input: ids in and out of range, elements of every
// QVariant type, too few or too many elements, nested lists and maps. Every
// typed signal is connected, so each emission goes through Qt's connection
// machinery; the number of signals per message is checked against the rules:
// none for a message that is dropped, two for ids 0 and 1, none for id 53 and
// one for every other id.

#include "command/qrvcommand.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <QMetaMethod>
#include <QVariant>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

class Sink : public QObject
{
    Q_OBJECT
public:
    int hits = 0;
public slots:
    // Receives every typed signal (a slot may take fewer arguments than the
    // signal, so one argument-less slot fits them all).
    void hit() { ++hits; }
};

QVariant element(FuzzedDataProvider &in, int depth);

QVariant list(FuzzedDataProvider &in, int depth, int maxLength)
{
    QVariantList items;
    const int n = in.ConsumeIntegralInRange(0, maxLength);
    for (int i = 0; i < n && in.remaining_bytes() > 0; ++i)
        items.append(element(in, depth + 1));
    return items;
}

QString text(FuzzedDataProvider &in)
{
    const std::string raw = in.ConsumeRandomLengthString(24);
    return QString::fromUtf8(raw.data(), int(raw.size()));
}

QVariant element(FuzzedDataProvider &in, int depth)
{
    switch (in.ConsumeIntegralInRange(0, 15)) {
    case 0:
        return QVariant();
    case 1:
        return in.ConsumeIntegral<int>();
    case 2:
        return in.ConsumeIntegral<uint>();
    case 3:
        return in.ConsumeBool();
    case 4:
        return in.ConsumeFloatingPoint<double>();
    case 5:
        return in.ConsumeIntegral<qlonglong>();
    case 6:
        return in.ConsumeIntegral<qulonglong>();
    case 7:
        return QString::number(in.ConsumeIntegral<qlonglong>());
    case 8:
        return text(in);
    case 9:
        return depth < 4 ? list(in, depth, 6) : QVariant(0);
    case 10: {
        QVariantMap map;
        map.insert(text(in), in.ConsumeIntegral<int>());
        return map;
    }
    case 11:
        return QByteArray::fromStdString(in.ConsumeRandomLengthString(16));
    case 12:
        return QStringList {text(in), text(in)};
    case 13:
        return float(in.ConsumeFloatingPoint<float>());
    case 14:
        return QChar(in.ConsumeIntegral<ushort>());
    default:
        return in.ConsumeIntegralInRange(-2, 2);
    }
}

QVariant commandId(FuzzedDataProvider &in)
{
    const uint8_t pick = in.ConsumeIntegral<uint8_t>();
    if (pick < 190)
        return int(pick);
    switch (pick) {
    case 190:
        return 190;
    case 191:
        return -1;
    case 192:
        return INT_MIN;
    case 193:
        return INT_MAX;
    case 194:
        return uint(in.ConsumeIntegral<uint8_t>());
    case 195:
        return QString::number(in.ConsumeIntegralInRange(-5, 200));
    case 196:
        return in.ConsumeFloatingPoint<double>();
    case 197:
        return qlonglong(1) << 32 | in.ConsumeIntegral<uint8_t>();
    default:
        return element(in, 3);
    }
}

// The message as the host would send it: a list, or sometimes something else.
QVariant message(FuzzedDataProvider &in)
{
    const uint8_t shape = in.ConsumeIntegral<uint8_t>();
    if (shape < 16)
        return element(in, 0); // any variant, lists included
    if (shape < 20)
        return QVariantList();
    QVariantList items;
    items.append(commandId(in));
    const int n = in.ConsumeIntegralInRange(0, 7);
    for (int i = 0; i < n && in.remaining_bytes() > 0; ++i)
        items.append(element(in, 1));
    return items;
}

int expectedSignals(const QVariant &msg)
{
    if (msg.userType() != QMetaType::QVariantList)
        return 0;
    const QVariantList items = msg.toList();
    if (items.isEmpty())
        return 0;
    const unsigned id = unsigned(items.at(0).toInt());
    if (id > 189 || id == 53)
        return 0;
    return id <= 1 ? 2 : 1;
}

qrvCommand *codec;
Sink *sink;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Both live for the whole run.
    codec = new qrvCommand;
    sink = new Sink;
    const QMetaObject *meta = codec->metaObject();
    const QMetaMethod slot = sink->metaObject()->method(sink->metaObject()->indexOfMethod("hit()"));
    int connected = 0;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod m = meta->method(i);
        if (m.methodType() != QMetaMethod::Signal || m.name() == "sCommand")
            continue;
        if (!QObject::connect(codec, m, sink, slot, Qt::DirectConnection))
            std::abort();
        ++connected;
    }
    std::fprintf(stderr, "fuzz_codec: %d typed signals connected\n", connected);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider in(data, size);
    while (in.remaining_bytes() > 0) {
        const QVariant msg = message(in);
        sink->hits = 0;
        codec->setCommand(msg);
        const int want = expectedSignals(msg);
        if (sink->hits != want) {
            std::fprintf(stderr, "message %s: expected %d signals, got %d\n",
                         qPrintable(msg.toList().value(0).toString()), want, sink->hits);
            std::abort();
        }
    }
    return 0;
}

#include "fuzz_codec.moc"
