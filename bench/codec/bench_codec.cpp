// Throughput of the command codec over a mix of every encoder form, beside a
// floor measured in the same run:
//  - encode: every encoder slot called directly, each message received by a
//    direct connection; floor: building the same QVariantList by copying the
//    elements of a prepared message and wrapping it in a QVariant.
//  - decode: setCommand() on every message (no receivers connected, so the
//    figure is the codec's own cost); floor: copying the message's list and
//    converting each element inline by its type.
// Prints a table and one JSON line.

#include "command/qrvcommand.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

volatile qint64 sink = 0;

template<class T>
T arg(int pos);
template<>
uint arg<uint>(int pos)
{
    return uint(pos + 1);
}
template<>
int arg<int>(int pos)
{
    return -pos;
}
template<>
bool arg<bool>(int pos)
{
    return pos % 2;
}
template<>
double arg<double>(int pos)
{
    return 7.1e6 + pos;
}
template<>
qulonglong arg<qulonglong>(int pos)
{
    return (Q_UINT64_C(1) << 33) + uint(pos);
}
template<>
long arg<long>(int pos)
{
    return 0x7f0000001000L + pos;
}
template<>
CwKeyControlAbstract *arg<CwKeyControlAbstract *>(int)
{
    return nullptr;
}
template<>
QList<int> arg<QList<int>>(int)
{
    return {1, -2, 3, -4, 5, -6, 7, -8, 9, -10};
}
template<>
QList<void *> arg<QList<void *>>(int)
{
    return {nullptr, nullptr};
}

// clang-format off
#define BENCH_ARG(code, name, pos) arg<QRV_TYPE_##code>(pos)
#define BENCH_CALL_C(id, slot, signal, n, args) codec.slot(QRV_MAP(BENCH_ARG, n, args));
#define BENCH_CALL_E(id, slot, n, args) BENCH_CALL_C(id, slot, -, n, args)
#define BENCH_CALL_F(id, slot, signal, value) codec.slot();
// clang-format on

// One call of every encoder (193 messages).
void encodeAll(qrvCommand &codec) {
    QRV_COMMANDS(BENCH_CALL_C, BENCH_CALL_E, QRV_NOTHING, BENCH_CALL_F)}

qint64 floorConvert(const QVariant &e)
{
    switch (e.userType()) {
    case QMetaType::Int:
        return e.toInt();
    case QMetaType::UInt:
        return e.toUInt();
    case QMetaType::Bool:
        return e.toBool();
    case QMetaType::Double:
        return qint64(e.toDouble());
    case QMetaType::ULongLong:
        return qint64(e.toULongLong());
    case QMetaType::QVariantList: {
        qint64 s = 0;
        for (const QVariant &inner : e.toList())
            s += inner.toLongLong();
        return s;
    }
    default:
        return 0;
    }
}

struct Result
{
    double perSecond;
    double nsPerMessage;
};

// Runs `round` (which handles `perRound` messages) for about `seconds`, three
// times, and keeps the best.
Result measure(int perRound, double seconds, const std::function<void()> &round)
{
    double best = 0;
    for (int rep = 0; rep < 3; ++rep) {
        QElapsedTimer t;
        t.start();
        qint64 messages = 0;
        const qint64 limit = qint64(seconds * 1e9);
        while (t.nsecsElapsed() < limit) {
            for (int i = 0; i < 16; ++i)
                round();
            messages += 16 * perRound;
        }
        best = std::max(best, double(messages) * 1e9 / double(t.nsecsElapsed()));
    }
    return {best, 1e9 / best};
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const double seconds = 1.0;

    qrvCommand codec;
    QVariantList messages;
    auto collect = QObject::connect(&codec, &qrvCommand::sCommand,
                                    [&messages](const QVariant &m) { messages << m; });
    encodeAll(codec);
    QObject::disconnect(collect);
    const int count = int(messages.size());

    QObject::connect(&codec, &qrvCommand::sCommand,
                     [](const QVariant &m) { sink = sink + m.toList().size(); });
    const Result encode = measure(count, seconds, [&] { encodeAll(codec); });

    const Result encodeFloor = measure(count, seconds, [&] {
        for (const QVariant &m : qAsConst(messages)) {
            const QVariantList &src = *static_cast<const QVariantList *>(m.constData());
            QVariantList copy;
            copy.reserve(src.size());
            for (const QVariant &e : src)
                copy.append(e);
            const QVariant wrapped(copy);
            sink = sink + static_cast<const QVariantList *>(wrapped.constData())->size();
        }
    });

    qrvCommand receiver;
    const Result decode = measure(count, seconds, [&] {
        for (const QVariant &m : qAsConst(messages))
            receiver.setCommand(m);
    });

    const Result decodeFloor = measure(count, seconds, [&] {
        for (const QVariant &m : qAsConst(messages)) {
            const QVariantList copy = m.toList();
            qint64 s = 0;
            for (const QVariant &e : copy)
                s += floorConvert(e);
            sink = sink + s;
        }
    });

    const double encodeRatio = encode.nsPerMessage / encodeFloor.nsPerMessage;
    const double decodeRatio = decode.nsPerMessage / decodeFloor.nsPerMessage;

    std::printf("command codec, mix of %d messages (all encoder forms, ids 0-189)\n", count);
    std::printf("%-14s %14s %12s\n", "", "messages/s", "ns/message");
    std::printf("%-14s %14.0f %12.1f\n", "encode", encode.perSecond, encode.nsPerMessage);
    std::printf("%-14s %14.0f %12.1f\n", "encode floor", encodeFloor.perSecond,
                encodeFloor.nsPerMessage);
    std::printf("%-14s %14.0f %12.1f\n", "decode", decode.perSecond, decode.nsPerMessage);
    std::printf("%-14s %14.0f %12.1f\n", "decode floor", decodeFloor.perSecond,
                decodeFloor.nsPerMessage);
    std::printf("time per message against the floor: encode %.2fx, decode %.2fx\n", encodeRatio,
                decodeRatio);
    std::printf("{\"bench\":\"codec\",\"messages\":%d,"
                "\"encode_msgs_per_s\":%.0f,\"encode_floor_msgs_per_s\":%.0f,\"encode_ratio\":%.3f,"
                "\"decode_msgs_per_s\":%.0f,\"decode_floor_msgs_per_s\":%.0f,\"decode_ratio\":%."
                "3f}\n",
                count, encode.perSecond, encodeFloor.perSecond, encodeRatio, decode.perSecond,
                decodeFloor.perSecond, decodeRatio);
    return 0;
}
