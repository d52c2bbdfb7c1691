// Throughput of the command codec over a mix of every encoder form, beside a
// floor measured in the same run:
//  - encode: every encoder slot called directly, each message received by a
//    direct connection; floor: a deep copy of the same message's QVariantList,
//    wrapped in a QVariant.
//  - decode: setCommand() on every message (no receivers connected, so the
//    figure is the codec's own cost); floor: copying the message's list and
//    converting each element inline by its type.
// Prints its figures through measure::Report; runs for about 7 s.

#include "bench/measure.h"
#include "command/qrvcommand.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <tuple>

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
#define BENCH_CALL_O(id, slot, signal, n, args, name) BENCH_CALL_C(id, slot, signal, n, args)
// clang-format on

// One call of every encoder (193 messages).
void encodeAll(qrvCommand &codec) {
    QRV_COMMANDS(BENCH_CALL_C, BENCH_CALL_E, QRV_NOTHING, BENCH_CALL_F, BENCH_CALL_O)}

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

// Rate of one slice: `round` (which handles `perRound` messages) repeated for
// about `nanoseconds`.
double slice(int perRound, qint64 nanoseconds, const std::function<void()> &round)
{
    QElapsedTimer t;
    t.start();
    qint64 messages = 0;
    while (t.nsecsElapsed() < nanoseconds) {
        for (int i = 0; i < 8; ++i)
            round();
        messages += 8 * perRound;
    }
    return double(messages) * 1e9 / double(t.nsecsElapsed());
}

// Measures a subject and its floor in alternating short slices and keeps the
// best slice of each, so that load from other processes hits both alike and
// the ratio stays meaningful on a busy machine.
std::pair<Result, Result> measurePair(int perRound, const std::function<void()> &subject,
                                      const std::function<void()> &floor)
{
    constexpr int slices = 20;
    constexpr qint64 sliceNs = 80'000'000;
    double bestSubject = 0, bestFloor = 0;
    for (int i = 0; i < slices; ++i) {
        bestSubject = std::max(bestSubject, slice(perRound, sliceNs, subject));
        bestFloor = std::max(bestFloor, slice(perRound, sliceNs, floor));
    }
    return {{bestSubject, 1e9 / bestSubject}, {bestFloor, 1e9 / bestFloor}};
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);

    qrvCommand codec;
    QVariantList messages;
    auto collect = QObject::connect(&codec, &qrvCommand::sCommand,
                                    [&messages](const QVariant &m) { messages << m; });
    encodeAll(codec);
    QObject::disconnect(collect);
    const int count = int(messages.size());

    QObject::connect(&codec, &qrvCommand::sCommand,
                     [](const QVariant &m) { sink = sink + m.toList().size(); });
    const auto [encode, encodeFloor] = measurePair(
        count, [&] { encodeAll(codec); },
        [&] {
            for (const QVariant &m : qAsConst(messages)) {
                QVariantList copy = *static_cast<const QVariantList *>(m.constData());
                copy.detach(); // a list of its own, element by element
                const QVariant wrapped(copy);
                sink = sink + static_cast<const QVariantList *>(wrapped.constData())->size();
            }
        });

    qrvCommand receiver;
    const auto decodeSubject = [&] {
        for (const QVariant &m : qAsConst(messages))
            receiver.setCommand(m);
    };
    const auto [decode, decodeFloor] = measurePair(count, decodeSubject, [&] {
        for (const QVariant &m : qAsConst(messages)) {
            const QVariantList copy = m.toList();
            qint64 s = 0;
            for (const QVariant &e : copy)
                s += floorConvert(e);
            sink = sink + s;
        }
    });

    measure::Report report("codec");
    report.add("messages", count, "count", "mix of all encoder forms, ids 0-189");
    for (const auto &[name, run, floor] :
         {std::tuple {"encode", encode, encodeFloor}, std::tuple {"decode", decode, decodeFloor}}) {
        const QString figure = QString::fromLatin1(name);
        report.add(figure + "_msgs_per_s", run.perSecond, "per_s", {}, floor.perSecond);
        report.add(figure + "_ns_per_message", run.nsPerMessage, "ns", {}, floor.nsPerMessage);
        report.add(figure + "_time_vs_floor_x", run.nsPerMessage / floor.nsPerMessage, "x",
                   "time per message against the floor");
    }
    report.print();
    return 0;
}
