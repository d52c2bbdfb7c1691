// The command codec: encoders that build messages, the dispatcher that decodes them.

#include "command/qrvcommand.h"

#include <QThread>

#include <array>
#include <atomic>

namespace {

// ThreadSanitizer does not model the fence that makes reusing a message safe
// after another thread let go of it (send()), so its builds always allocate.
#if defined(__SANITIZE_THREAD__)
constexpr bool ReuseMessages = false;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
constexpr bool ReuseMessages = false;
#else
constexpr bool ReuseMessages = true;
#endif
#else
constexpr bool ReuseMessages = true;
#endif

// Element access without Qt's conversion handler, for the element types that
// encoders send: QVariant keeps these built-in types inside itself, and its
// data_ptr() shows the type and the value in place (the same as userType() and
// constData(), without a call). Elements of these types are read directly; any
// other type takes Qt's conversion, which gives the same values for these (the
// same bits as an int conversion of a uint, a signed conversion of a qulonglong).
inline int typeOf(const QVariant &v)
{
    return int(v.data_ptr().type);
}
template<class T>
const T &raw(const QVariant &v)
{
    return *reinterpret_cast<const T *>(&v.data_ptr().data);
}
inline int toInt(const QVariant &v)
{
    return typeOf(v) == QMetaType::Int ? raw<int>(v) : v.toInt();
}
inline bool toBool(const QVariant &v)
{
    return typeOf(v) == QMetaType::Bool ? raw<bool>(v) : v.toBool();
}
inline qlonglong toSigned64(const QVariant &v)
{
    return typeOf(v) == QMetaType::ULongLong ? qlonglong(raw<qulonglong>(v)) : v.toLongLong();
}

// Encoding and decoding of one parameter code of the command table. encode()
// gives the variant that goes into a message; decode() converts a received
// element to the parameter type with Qt's conversions, so that a peer that
// stores another numeric type is still understood.
struct CodecU
{
    static QVariant encode(uint v) { return QVariant(v); }
    static uint decode(const QVariant &v)
    {
        return typeOf(v) == QMetaType::UInt ? raw<uint>(v) : uint(v.toInt());
    }
};
struct CodecUU
{
    static QVariant encode(uint v) { return QVariant(v); }
    static uint decode(const QVariant &v)
    {
        return typeOf(v) == QMetaType::UInt ? raw<uint>(v) : v.toUInt();
    }
};
struct CodecI
{
    static QVariant encode(int v) { return QVariant(v); }
    static int decode(const QVariant &v) { return toInt(v); }
};
struct CodecB
{
    static QVariant encode(bool v) { return QVariant(v); }
    static bool decode(const QVariant &v) { return toBool(v); }
};
struct CodecBI
{
    static QVariant encode(bool v) { return QVariant(v); }
    static bool decode(const QVariant &v)
    {
        return typeOf(v) == QMetaType::Bool ? raw<bool>(v) : v.toInt() != 0;
    }
};
struct CodecBU
{
    static QVariant encode(bool v) { return QVariant(uint(v ? 1 : 0)); }
    static bool decode(const QVariant &v)
    {
        return typeOf(v) == QMetaType::UInt ? raw<uint>(v) != 0 : v.toBool();
    }
};
struct CodecD
{
    static QVariant encode(double v) { return QVariant(v); }
    static double decode(const QVariant &v)
    {
        return typeOf(v) == QMetaType::Double ? raw<double>(v) : v.toDouble();
    }
};
struct CodecULL
{
    static QVariant encode(qulonglong v) { return QVariant(v); }
    static qulonglong decode(const QVariant &v)
    {
        return typeOf(v) == QMetaType::ULongLong ? raw<qulonglong>(v) : v.toULongLong();
    }
};
struct CodecL
{
    static QVariant encode(long v) { return QVariant(qulonglong(v)); }
    static long decode(const QVariant &v) { return long(toSigned64(v)); }
};
struct CodecK
{
    static QVariant encode(CwKeyControlAbstract *p)
    {
        return QVariant(qulonglong(reinterpret_cast<quintptr>(p)));
    }
    static CwKeyControlAbstract *decode(const QVariant &v)
    {
        return reinterpret_cast<CwKeyControlAbstract *>(quintptr(toSigned64(v)));
    }
};
struct CodecIL
{
    static QVariant encode(const QList<int> &values)
    {
        QVariantList inner;
        inner.reserve(values.size());
        for (int v : values)
            inner.append(QVariant(v));
        return QVariant(inner);
    }
    static QList<int> decode(const QVariant &v)
    {
        const QVariantList inner = v.toList();
        QList<int> values;
        values.reserve(inner.size());
        for (const QVariant &e : inner)
            values.append(toInt(e));
        return values;
    }
};
struct CodecPL
{
    static QVariant encode(const QList<void *> &list)
    {
        QVariantList inner;
        inner.reserve(list.size());
        for (void *p : list)
            inner.append(QVariant(qulonglong(reinterpret_cast<quintptr>(p))));
        return QVariant(inner);
    }
    static QList<void *> decode(const QVariant &v)
    {
        const QVariantList inner = v.toList();
        QList<void *> list;
        list.reserve(inner.size());
        for (const QVariant &e : inner)
            list.append(reinterpret_cast<void *>(quintptr(toSigned64(e))));
        return list;
    }
};

// Element `pos` of a message, or an invalid variant past its end: a short
// message decodes to zeros, false and empty lists, never to stray memory.
const QVariant &element(const QVariantList &message, int pos)
{
    static const QVariant missing;
    return pos < message.size() ? message.at(pos) : missing;
}

} // namespace

// ---------------------------------------------------------------------------
// Encoders

// Emits the message made of `elements` (QVariants: the id, then the
// arguments). A message is a new list for every receiver that keeps it; but
// the list of the last message of the same length, once nobody holds it any
// more, is filled with the new elements instead of allocating another list and
// its elements: a steady stream of commands then allocates nothing. The spare
// lists are touched only on the object's own thread; an encoder called from
// another thread builds a new list.
template<typename... Elements>
void qrvCommand::send(Elements &&...elements)
{
    constexpr int length = int(sizeof...(Elements));
    static_assert(length >= 1 && length <= MaxMessageLength, "a message is 1 to 5 elements");
    QVariant *spare = ReuseMessages && QThread::currentThread() == thread()
        ? &spareMessages[length - 1]
        : nullptr;
    if (spare && spare->isValid()
        && static_cast<const QVariantList *>(spare->constData())->isDetached()) {
        // Whoever held it last, maybe on another thread, has released it; the
        // fence orders that release before the writes below.
        if constexpr (ReuseMessages)
            std::atomic_thread_fence(std::memory_order_acquire);
        auto &list = *static_cast<QVariantList *>(spare->data());
        int i = 0;
        (void(list[i++] = std::move(elements)), ...);
        emit sCommand(QVariant(list));
        return;
    }
    const QVariant message(QVariantList {std::move(elements)...});
    if (spare)
        *spare = message;
    emit sCommand(message);
}

// clang-format off
#define QRV_ENCODE(code, name, pos) Codec##code::encode(name)
#define QRV_DEFINE_C_ENCODER(id, slot, signal, n, args) \
    void qrvCommand::slot(QRV_MAP(QRV_PARAM_DECL, n, args)) \
    { \
        send(QVariant(int(id)) QRV_CALL(QRV_COMMA_IF_##n, ()) QRV_MAP(QRV_ENCODE, n, args)); \
    }
#define QRV_DEFINE_E_ENCODER(id, slot, n, args) QRV_DEFINE_C_ENCODER(id, slot, -, n, args)
#define QRV_DEFINE_O_ENCODER(id, slot, signal, n, args, name) QRV_DEFINE_C_ENCODER(id, slot, signal, n, args)
#define QRV_DEFINE_F_ENCODER(id, slot, signal, value) \
    void qrvCommand::slot() { send(QVariant(int(id)), QVariant(value)); }
#define QRV_COMMA_IF_0()
#define QRV_COMMA_IF_1() ,
#define QRV_COMMA_IF_2() ,
#define QRV_COMMA_IF_3() ,
#define QRV_COMMA_IF_4() ,

QRV_COMMANDS(QRV_DEFINE_C_ENCODER, QRV_DEFINE_E_ENCODER, QRV_NOTHING, QRV_DEFINE_F_ENCODER, QRV_DEFINE_O_ENCODER)
// clang-format on

// ---------------------------------------------------------------------------
// Dispatcher

struct QrvDispatch
{
    using Decoder = void (*)(qrvCommand &, const QVariantList &);

    // Which decoded signals an id emits: decodedSignals[first, first + count).
    struct Route
    {
        short first = 0;
        short count = 0;
    };

    // Called after the signal of `Id` has been emitted.
    template<int Id>
    static void after(qrvCommand &, const QVariantList &)
    { }

    static const Decoder decoders[qrv::signalCount];
    static constexpr std::array<Route, qrv::commandCount> routes();
};

// A received CW-key announcement is passed on first and then remembered.
template<>
void QrvDispatch::after<int(qrv::Id::setCWKeyObject)>(qrvCommand &codec,
                                                      const QVariantList &message)
{
    CwKeyControlAbstract *p = CodecK::decode(element(message, 1));
    if (p != codec.cwKeyObject)
        codec.cwKeyObject = p;
}

// clang-format off
#define QRV_DECODE(code, name, pos) Codec##code::decode(element(m, pos))
#define QRV_DEFINE_C_DECODER(id, slot, signal, n, args) \
    [](qrvCommand &c, [[maybe_unused]] const QVariantList &m) { \
        emit c.signal(QRV_MAP(QRV_DECODE, n, args)); \
        QrvDispatch::after<id>(c, m); \
    },
#define QRV_DEFINE_S_DECODER(id, signal, n, args) QRV_DEFINE_C_DECODER(id, -, signal, n, args)
#define QRV_DEFINE_O_DECODER(id, slot, signal, n, args, name) QRV_DEFINE_C_DECODER(id, slot, signal, n, args)
#define QRV_DEFINE_F_DECODER(id, slot, signal, value) \
    [](qrvCommand &c, const QVariantList &) { emit c.signal(); },

const QrvDispatch::Decoder QrvDispatch::decoders[qrv::signalCount] = {
    QRV_COMMANDS(QRV_DEFINE_C_DECODER, QRV_NOTHING, QRV_DEFINE_S_DECODER, QRV_DEFINE_F_DECODER, QRV_DEFINE_O_DECODER)
};
// clang-format on

constexpr std::array<QrvDispatch::Route, qrv::commandCount> QrvDispatch::routes()
{
    std::array<Route, qrv::commandCount> table {};
    for (int i = 0; i < qrv::signalCount; ++i) {
        Route &r = table[std::size_t(qrv::decodedSignals[i].id)];
        if (r.count == 0)
            r.first = short(i);
        ++r.count;
    }
    return table;
}

namespace {

constexpr auto routeTable = QrvDispatch::routes();

// The table must give every id its signals as one contiguous run of rows,
// leave id 53 without any, and hold 193 signals and 193 encoders.
constexpr bool routesAreSound()
{
    for (int i = 0; i < qrv::signalCount; ++i) {
        const int id = qrv::decodedSignals[i].id;
        if (id < 0 || id >= qrv::commandCount)
            return false;
        const auto &r = routeTable[std::size_t(id)];
        if (i < r.first || i >= r.first + r.count)
            return false;
    }
    for (int id = 0; id < qrv::commandCount; ++id) {
        if ((routeTable[std::size_t(id)].count == 0) != (id == 53))
            return false;
    }
    return true;
}
static_assert(routesAreSound(), "every id but 53 needs one contiguous run of signal rows");
static_assert(qrv::signalCount == 193 && qrv::encoderCount == 193, "193 signals and 193 encoders");

} // namespace

void qrvCommand::setCommand(const QVariant &cmd)
{
    if (cmd.userType() != QMetaType::QVariantList)
        return;
    // A list of our own (a shared copy), so it stays valid even if a receiver
    // changes the caller's variant.
    const QVariantList message = *static_cast<const QVariantList *>(cmd.constData());
    if (message.isEmpty())
        return;
    const int id = toInt(message.at(0));
    if (uint(id) >= uint(qrv::commandCount))
        return;

    const QrvDispatch::Route &route = routeTable[std::size_t(id)];
    for (int i = route.first; i < route.first + route.count; ++i) {
        const qrv::Guard guard = qrv::decodedSignals[i].guard;
        if (guard != qrv::Guard::Always
            && toBool(element(message, 1)) != (guard == qrv::Guard::IfTrue))
            continue;
        QrvDispatch::decoders[i](*this, message);
    }
}

// ---------------------------------------------------------------------------

qrvCommand::qrvCommand(QObject *parent)
    : QObject(parent)
    , reservedBytes(std::make_unique<quint8[]>(10))
    , reservedWords(std::make_unique<quint32[]>(10))
    , reservedLongs(std::make_unique<quint64[]>(10))
{ }

qrvCommand::~qrvCommand() = default;
