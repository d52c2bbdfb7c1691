// The Hamlib radio behind the reference host.

#include "hamlibradio.h"

#include "command/commandtable.h"
#include "rigmap.h"

#include <QEventLoop>
#include <QtGlobal>

#include <cmath>

namespace {

// The radio's state read round, one command each, while the panel is idle.
struct PollItem
{
    const char *key;
    const char *command;
};
constexpr PollItem pollRound[] = {{"T", "t"},         {"F", "f"},         {"V", "v"},
                                  {"M", "m"},         {"U RIT", "u RIT"}, {"U XIT", "u XIT"},
                                  {"J", "j"},         {"Z", "z"},         {"U LOCK", "u LOCK"},
                                  {"U VOX", "u VOX"}, {"L AF", "l AF"},   {"S", "s"}};

// Hamlib's error codes, as rigctld sends them after RPRT.
QString errorText(int code)
{
    switch (code) {
    case -1:
        return QStringLiteral("invalid parameter");
    case -4:
        return QStringLiteral("not implemented");
    case -5:
        return QStringLiteral("communication timed out");
    case -6:
        return QStringLiteral("I/O error");
    case -8:
        return QStringLiteral("protocol error");
    case -9:
        return QStringLiteral("command rejected by the radio");
    case -11:
        return QStringLiteral("not available");
    case -12:
        return QStringLiteral("VFO not targetable");
    case -16:
        return QStringLiteral("invalid VFO");
    default:
        return QStringLiteral("Hamlib error %1").arg(code);
    }
}

bool isUnsupported(int code)
{
    return code == -4 || code == -11;
}

// The panel command of a message, by the command table's encoder names.
const rig::Mapping *mappingFor(int id)
{
    static const QHash<int, const rig::Mapping *> byId = [] {
        QHash<int, const rig::Mapping *> h;
        for (const qrv::Method &e : qrv::encoders) {
            if (const rig::Mapping *m = rig::find(e.name))
                h.insert(e.id, m);
        }
        return h;
    }();
    return byId.value(id);
}

QString onOff(bool state)
{
    return state ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

HamlibRadio::HamlibRadio(QObject *parent)
    : RadioBackend(parent)
{
    connect(&link, &RigctlConnection::replied, this, &HamlibRadio::onReplied);
    connect(&link, &RigctlConnection::ready, this, [this] {
        if (everReady)
            say(tr("radio back at %1").arg(link.address()));
        else
            say(tr("connected to rigctld at %1").arg(link.address()));
        everReady = true;
        gone = false;
        pollDue = true;
        pollAt = 0;
        emit stateChanged();
        pump();
    });
    connect(&link, &RigctlConnection::lost, this, [this](const QString &reason) {
        // What was in flight goes again once the radio is back.
        if (inFlight && !inFlight->poll) {
            if (inFlight->key == "F") {
                if (!target[inFlight->vfo])
                    target[inFlight->vfo] = inFlight->value.toDouble();
            } else if (inFlight->key == "T") {
                if (!pttWanted)
                    pttWanted = inFlight->value == QLatin1String("1");
            } else if (!pendingSet(inFlight->key)) {
                queue.prepend(*inFlight);
            }
        }
        inFlight.reset();
        if (!gone) {
            gone = true;
            say(everReady ? tr("radio gone: %1; trying again").arg(reason)
                          : tr("cannot reach rigctld at %1: %2; trying again")
                                .arg(link.address(), reason));
            emit stateChanged();
        }
    });
    pollTimer.setInterval(PollIntervalMs);
    connect(&pollTimer, &QTimer::timeout, this, [this] {
        pollDue = true;
        pump();
    });
    pollTimer.start();
}

HamlibRadio::~HamlibRadio() = default;

void HamlibRadio::open(const QString &host, quint16 port)
{
    link.open(host, port);
}

void HamlibRadio::shutDown(int waitMs)
{
    pollTimer.stop();
    queue.clear();
    target[0].reset();
    target[1].reset();
    if (!keyedHere || !link.isReady())
        return;
    setPtt(false);
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(this, &HamlibRadio::stateChanged, &loop, [this, &loop] {
        if (idle())
            loop.quit();
    });
    limit.start(waitMs);
    if (!idle())
        loop.exec();
}

int HamlibRadio::tunedVfo() const
{
    // Radios with a main and a sub receiver name VFO B "Sub".
    const QString v = reported.value("V");
    return v == QLatin1String("VFOB") || v.startsWith(QLatin1String("Sub")) ? 1 : 0;
}

bool HamlibRadio::idle() const
{
    return !inFlight && !pttWanted && queue.isEmpty() && !target[0] && !target[1];
}

// Device-manager operations

void HamlibRadio::setLock(quint32, bool state)
{
    queueSet("U LOCK", onOff(state), QStringLiteral("setLock"));
}

bool HamlibRadio::lock(quint32) const
{
    return reported.value("U LOCK") == QLatin1String("1");
}

void HamlibRadio::setVox(quint32, bool state)
{
    queueSet("U VOX", onOff(state), QStringLiteral("setVox"));
}

bool HamlibRadio::vox(quint32) const
{
    return reported.value("U VOX") == QLatin1String("1");
}

void HamlibRadio::setVfoaToVfob(quint32)
{
    queueSet("G", QStringLiteral("CPY"), QStringLiteral("setVfoaToVfob"), false);
}

void HamlibRadio::setVfobToVfoa(quint32)
{
    const QString name = QStringLiteral("setVfobToVfoa");
    queueSet("V", QStringLiteral("VFOB"), name, false);
    queueSet("G", QStringLiteral("CPY"), name, false);
    queueSet("V", QStringLiteral("VFOA"), name, false);
}

void HamlibRadio::setVfoaSwapVfob(quint32)
{
    queueSet("G", QStringLiteral("XCHG"), QStringLiteral("setVfoaSwapVfob"), false);
}

void HamlibRadio::setMixerMode(quint32)
{
    if (const rig::Mapping *m = rig::find("setMixerMode"))
        apply(*m, {});
}

void HamlibRadio::setMute(quint32, bool state)
{
    queueSet("U MUTE", onOff(state), QStringLiteral("setMute"));
}

bool HamlibRadio::mox(quint32 tranceiver) const
{
    return tranceiver == 0 && pttOn;
}

bool HamlibRadio::rit(quint32) const
{
    return reported.value("U RIT") == QLatin1String("1");
}

bool HamlibRadio::xit(quint32) const
{
    return reported.value("U XIT") == QLatin1String("1");
}

double HamlibRadio::mainVolume() const
{
    // What the radio will have once the queued sets are through, so that
    // quick volume steps add up.
    return -60.0 + 60.0 * qBound(0.0, intended("L AF").toDouble(), 1.0);
}

void HamlibRadio::setMainVolume(double dB)
{
    const double af = (qBound(-60.0, dB, 0.0) + 60.0) / 60.0;
    queueSet("L AF", QString::number(af, 'f', 3), QStringLiteral("setMainVolume"));
}

void HamlibRadio::setMox(quint32, bool state)
{
    setPtt(state);
}

// Panel commands

void HamlibRadio::panelCommand(const QVariantList &message)
{
    if (message.isEmpty())
        return;
    if (const rig::Mapping *m = mappingFor(message.at(0).toInt()))
        apply(*m, message);
}

void HamlibRadio::apply(const rig::Mapping &m, const QVariantList &message)
{
    const QString name = QString::fromLatin1(m.name);
    const QByteArray key = QByteArray(m.hamlib) + (*m.arg ? QByteArray(" ") + m.arg : QByteArray());
    // The step is the last element of the commands that carry one.
    const int steps = message.size() >= 3 ? message.last().toInt() : 1;
    switch (m.action) {
    case rig::Action::Tune: {
        const int vfo = message.value(2).toUInt() ? 1 : 0;
        if (known[vfo] || target[vfo])
            tune(vfo, base(vfo) + steps * m.perStep);
        else
            unknownOffset[vfo] += steps * m.perStep; // added once the radio told it
        pump();
        break;
    }
    case rig::Action::BandUp:
    case rig::Action::BandDown: {
        const int vfo = tunedVfo();
        tune(vfo, rig::bandStep(base(vfo), m.action == rig::Action::BandUp ? 1 : -1));
        break;
    }
    case rig::Action::ModeUp:
    case rig::Action::ModeDown: {
        const QString mode = intended("M").section(QLatin1Char(' '), 0, 0);
        queueSet("M",
                 rig::modeStep(mode, m.action == rig::Action::ModeUp ? 1 : -1)
                     + QStringLiteral(" 0"),
                 name);
        break;
    }
    case rig::Action::Passband: {
        const QStringList now = intended("M").split(QLatin1Char(' '));
        if (now.size() < 2) {
            say(tr("%1: the radio has not told its mode yet").arg(name));
            break;
        }
        const int width = qMax(0, now.at(1).toInt() + int(std::lround(steps * m.perStep)));
        queueSet("M", now.at(0) + QLatin1Char(' ') + QString::number(width), name);
        break;
    }
    case rig::Action::Level:
        stepLevel(m, steps);
        break;
    case rig::Action::LevelIndex:
        queueSet(key, QString::number(qMax(0, intended(key).toInt() + int(m.perStep))), name);
        break;
    case rig::Action::Toggle:
        toggle(key, name);
        break;
    case rig::Action::Offset:
        queueSet(key, QString::number(intended(key).toInt() + int(std::lround(steps * m.perStep))),
                 name);
        break;
    case rig::Action::OffsetReset:
        queueSet(key, QStringLiteral("0"), name);
        break;
    case rig::Action::Split:
        queueSet(key,
                 intended(key).startsWith(QLatin1Char('1')) ? QStringLiteral("0 VFOA")
                                                            : QStringLiteral("1 VFOB"),
                 name);
        break;
    case rig::Action::SubRx:
        queueSet(key, tunedVfo() ? QStringLiteral("VFOA") : QStringLiteral("VFOB"), name);
        break;
    case rig::Action::VfoOp:
        queueSet(m.hamlib, QString::fromLatin1(m.arg), name, false);
        break;
    case rig::Action::Ptt:
        setPtt(!(pttWanted ? *pttWanted : pttOn));
        break;
    case rig::Action::CopyBToA:
    case rig::Action::Volume:
    case rig::Action::SetFunction:
        break; // device-manager operations, above
    case rig::Action::NotPassed:
        if (!said.contains(name)) {
            said.insert(name);
            say(tr("%1: not passed to the radio (Hamlib has no such command)").arg(name));
        }
        break;
    }
}

void HamlibRadio::stepLevel(const rig::Mapping &m, int steps)
{
    const QByteArray key = QByteArray(m.hamlib) + ' ' + m.arg;
    const double now = intended(key).toDouble();
    double next = now + steps * m.perStep;
    QString text;
    if (m.perStep >= 1) {
        // Integer levels: IF shift in Hz, keyer speed in WPM.
        text = QString::number(qint64(std::lround(next)));
    } else {
        next = qBound(0.0, next, 1.0);
        text = QString::number(next, 'f', 3);
    }
    queueSet(key, text, QString::fromLatin1(m.name));
}

void HamlibRadio::toggle(const QByteArray &key, const QString &name)
{
    queueSet(key, onOff(intended(key) != QLatin1String("1")), name);
}

void HamlibRadio::tune(int vfo, double hz)
{
    unknownOffset[vfo] = 0;
    target[vfo] = qMax(0.0, std::round(hz));
    pump();
}

void HamlibRadio::setPtt(bool state)
{
    pttWanted = state;
    if (state)
        keyedHere = true;
    pump();
}

void HamlibRadio::queueSet(const QByteArray &key, const QString &value, const QString &name,
                           bool coalesce)
{
    if (unsupported.contains(key))
        return;
    if (coalesce) {
        for (Op &op : queue) {
            if (op.key == key && !op.poll) {
                op.value = value;
                op.name = name;
                pump();
                return;
            }
        }
    }
    queue.append(Op {key, value, name});
    pump();
}

QString HamlibRadio::intended(const QByteArray &key) const
{
    for (auto it = queue.crbegin(); it != queue.crend(); ++it) {
        if (it->key == key && !it->poll)
            return it->value;
    }
    if (inFlight && !inFlight->poll && inFlight->key == key)
        return inFlight->value;
    return reported.value(key);
}

double HamlibRadio::base(int vfo) const
{
    if (target[vfo])
        return *target[vfo];
    if (inFlight && !inFlight->poll && inFlight->key == "F" && inFlight->vfo == vfo)
        return inFlight->value.toDouble();
    return freq[vfo];
}

bool HamlibRadio::pendingSet(const QByteArray &key) const
{
    if (key == "F")
        return target[tunedVfo()].has_value();
    if (key == "T")
        return pttWanted.has_value();
    for (const Op &op : queue) {
        if (op.key == key && !op.poll)
            return true;
    }
    return false;
}

void HamlibRadio::pump()
{
    if (!link.isReady() || link.isBusy())
        return;
    if (pttWanted) {
        Op op {"T", onOff(*pttWanted), QStringLiteral("PTT")};
        pttWanted.reset();
        send(op);
        return;
    }
    if (!queue.isEmpty()) {
        send(queue.takeFirst());
        return;
    }
    for (int vfo : {tunedVfo(), 1 - tunedVfo()}) {
        if (!target[vfo] && unknownOffset[vfo] == 0)
            continue;
        if (vfo != tunedVfo()) {
            // The radio tunes its current VFO: switch to the one the panel tunes.
            send(Op {"V", vfo ? QStringLiteral("VFOB") : QStringLiteral("VFOA"),
                     QStringLiteral("panelVFO")});
            return;
        }
        if (!target[vfo]) {
            // Steps for a VFO whose frequency the radio has not told yet.
            Op op {"F", QString(), QStringLiteral("panelVFO"), true};
            op.vfo = vfo;
            send(op);
            return;
        }
        Op op {"F", QString::number(qint64(*target[vfo])), QStringLiteral("panelVFO")};
        op.vfo = vfo;
        target[vfo].reset();
        send(op);
        return;
    }
    if (!pollDue)
        return;
    const int n = int(std::size(pollRound));
    while (pollAt < n && unsupported.contains(pollRound[pollAt].key))
        ++pollAt;
    if (pollAt >= n) {
        pollAt = 0;
        pollDue = false;
        return;
    }
    const PollItem &item = pollRound[pollAt++];
    Op op {item.key, QString(), QStringLiteral("poll %1").arg(QLatin1String(item.command)), true};
    op.vfo = tunedVfo();
    send(op);
}

void HamlibRadio::send(const Op &op)
{
    QByteArray line;
    if (op.poll) {
        const QByteArray key = op.key;
        // Gets are the lower-case letter with the same argument.
        line = key.left(1).toLower() + key.mid(1);
    } else {
        line = op.key + ' ' + op.value.toLatin1();
    }
    inFlight = op;
    if (!link.send(line))
        inFlight.reset();
}

void HamlibRadio::onReplied(const QByteArray &, const QStringList &values, int code)
{
    if (!inFlight)
        return;
    const Op op = *inFlight;
    inFlight.reset();
    if (code != 0) {
        if (isUnsupported(code)) {
            unsupported.insert(op.key);
            const QString line = tr("%1 (%2): the radio does not support it (%3)")
                                     .arg(op.name, QString::fromLatin1(op.key), errorText(code));
            if (!said.contains(line)) {
                said.insert(line);
                say(line);
            }
        } else {
            const QString line =
                tr("%1 (%2): %3").arg(op.name, QString::fromLatin1(op.key), errorText(code));
            if (!said.contains(line)) {
                said.insert(line);
                say(line);
            }
        }
    } else if (op.poll) {
        // An answer older than a set that waits would undo the set.
        if (!pendingSet(op.key) && !values.isEmpty())
            report(op.key, values.join(QLatin1Char(' ')));
        const int vfo = tunedVfo();
        if (op.key == "F" && known[vfo] && unknownOffset[vfo] != 0)
            tune(vfo, freq[vfo] + unknownOffset[vfo]);
    } else if (op.key == "M" && op.value.endsWith(QLatin1String(" 0"))) {
        // Passband 0 is the radio's default for the mode: read what it chose.
        queue.prepend(Op {"M", QString(), op.name, true});
    } else if (op.key != "G") {
        report(op.key, op.value);
    }
    pump();
}

void HamlibRadio::report(const QByteArray &key, const QString &value)
{
    if (key == "F") {
        const int vfo = tunedVfo();
        const double hz = value.toDouble();
        if (hz <= 0)
            return;
        const bool differs = freq[vfo] != hz || !known[vfo];
        freq[vfo] = hz;
        known[vfo] = true;
        reported.insert("F", value);
        if (differs) {
            say(tr("VFO %1 %2 MHz")
                    .arg(vfo ? QLatin1Char('B') : QLatin1Char('A'))
                    .arg(hz / 1e6, 0, 'f', 6));
            emit stateChanged();
        }
        return;
    }
    const QString old = reported.value(key);
    if (reported.contains(key) && old == value)
        return;
    if (key == "V") {
        // "VFOB" and "Sub" are the same VFO to the operator.
        const int before = tunedVfo();
        const bool first = !reported.contains(key);
        reported.insert(key, value);
        if (first || before != tunedVfo()) {
            say(tr("VFO %1 tuned").arg(tunedVfo() ? QLatin1Char('B') : QLatin1Char('A')));
            emit stateChanged();
        }
        return;
    }
    // Levels come back as "0.500000" after being set as "0.500".
    bool a = false, b = false;
    const double x = old.toDouble(&a), y = value.toDouble(&b);
    reported.insert(key, value);
    if (a && b && std::fabs(x - y) < 1e-6)
        return;
    if (key == "T") {
        const bool on = value == QLatin1String("1");
        if (!on)
            keyedHere = false;
        if (on != pttOn) {
            pttOn = on;
            say(on ? tr("TX on") : tr("TX off"));
            emit moxChanged(0, on);
        }
    } else if (key == "M") {
        say(tr("mode %1, passband %2 Hz")
                .arg(value.section(QLatin1Char(' '), 0, 0), value.section(QLatin1Char(' '), 1)));
    } else {
        say(QStringLiteral("%1 %2").arg(QString::fromLatin1(key), value));
    }
    emit stateChanged();
}

QString HamlibRadio::describe() const
{
    QStringList lines;
    lines << (link.isReady() ? tr("rigctld %1: connected").arg(link.address())
                             : tr("rigctld %1: not connected").arg(link.address()));
    lines << tr("VFO %1  %2 MHz   (A %3  B %4)")
                 .arg(tunedVfo() ? QLatin1Char('B') : QLatin1Char('A'))
                 .arg(freq[tunedVfo()] / 1e6, 0, 'f', 6)
                 .arg(freq[0] / 1e6, 0, 'f', 6)
                 .arg(freq[1] / 1e6, 0, 'f', 6);
    lines << tr("Mode %1   TX %2")
                 .arg(mode().isEmpty() ? tr("?") : mode(), pttOn ? tr("ON") : tr("off"));
    lines << tr("RIT %1 (%2 Hz)  XIT %3 (%4 Hz)  lock %5  AF %6")
                 .arg(rit(0) ? tr("on") : tr("off"), reported.value("J", QStringLiteral("0")),
                      xit(0) ? tr("on") : tr("off"), reported.value("Z", QStringLiteral("0")),
                      lock(0) ? tr("on") : tr("off"))
                 .arg(reported.value("L AF").toDouble(), 0, 'f', 2);
    return lines.join(QLatin1Char('\n'));
}
