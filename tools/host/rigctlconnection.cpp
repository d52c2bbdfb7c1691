// The connection to rigctld.

#include "rigctlconnection.h"

#include <cctype>

namespace {

// Commands that name their VFO first when rigctld runs with --vfo.
bool takesVfo(char c)
{
    return QByteArray("FfMmTtLlUuJjZzSsGgIi").contains(c);
}

} // namespace

RigctlConnection::RigctlConnection(QObject *parent)
    : QObject(parent)
{
    replyTimer.setSingleShot(true);
    replyTimer.setInterval(DefaultReplyTimeoutMs);
    retryTimer.setSingleShot(true);
    connect(&replyTimer, &QTimer::timeout, this,
            [this] { drop(tr("no reply within %1 ms").arg(replyTimer.interval())); });
    connect(&retryTimer, &QTimer::timeout, this, &RigctlConnection::connectNow);
    connect(&socket, &QTcpSocket::connected, this, [this] {
        phase = Phase::CheckVfo;
        write("\\chk_vfo");
    });
    connect(&socket, &QTcpSocket::readyRead, this, &RigctlConnection::onReadyRead);
    connect(&socket, &QTcpSocket::errorOccurred, this,
            [this](QAbstractSocket::SocketError) { drop(socket.errorString()); });
    connect(&socket, &QTcpSocket::disconnected, this, [this] { drop(tr("rigctld closed")); });
}

RigctlConnection::~RigctlConnection()
{
    // Nobody listens any more.
    socket.disconnect(this);
    socket.abort();
}

void RigctlConnection::open(const QString &h, quint16 p)
{
    host = h;
    port = p;
    retryMs = FirstRetryMs;
    connectNow();
}

void RigctlConnection::close()
{
    retryTimer.stop();
    replyTimer.stop();
    phase = Phase::Closed;
    inFlight.clear();
    socket.abort();
}

QString RigctlConnection::address() const
{
    return QStringLiteral("%1:%2").arg(host).arg(port);
}

void RigctlConnection::connectNow()
{
    socket.abort();
    buffer.clear();
    values.clear();
    inFlight.clear();
    phase = Phase::Connecting;
    replyTimer.start();
    socket.connectToHost(host, port);
}

bool RigctlConnection::send(const QByteArray &command)
{
    if (phase != Phase::Ready || !inFlight.isEmpty() || command.isEmpty())
        return false;
    inFlight = command;
    values.clear();
    echoSeen = false;
    QByteArray line = command;
    if (vfoArgument && takesVfo(command.at(0))) {
        const int space = line.indexOf(' ');
        line.insert(space < 0 ? line.size() : space, " currVFO");
    }
    write('+' + line);
    return true;
}

void RigctlConnection::write(const QByteArray &line)
{
    emit trace(QStringLiteral("> ") + QString::fromLatin1(line));
    socket.write(line + '\n');
    replyTimer.start();
}

void RigctlConnection::onReadyRead()
{
    buffer += socket.readAll();
    int end;
    while (phase != Phase::Closed && phase != Phase::Connecting
           && (end = buffer.indexOf('\n')) >= 0) {
        const QByteArray line = buffer.left(end).trimmed();
        buffer.remove(0, end + 1);
        emit trace(QStringLiteral("< ") + QString::fromLatin1(line));
        onLine(line);
    }
}

void RigctlConnection::onLine(const QByteArray &line)
{
    switch (phase) {
    case Phase::CheckVfo:
        // "0", "1", or "CHKVFO 1" from older servers.
        vfoArgument = line.endsWith('1');
        phase = Phase::DumpState;
        write("+\\dump_state");
        return;
    case Phase::DumpState:
        if (!line.startsWith("RPRT "))
            return;
        if (line.mid(5).toInt() != 0) {
            drop(tr("rigctld refused its state (%1)").arg(QString::fromLatin1(line)));
            return;
        }
        phase = Phase::Ready;
        replyTimer.stop();
        retryMs = FirstRetryMs;
        emit ready();
        return;
    case Phase::Ready:
        break;
    default:
        return;
    }
    if (inFlight.isEmpty())
        return; // nobody asked: a stray line
    if (line.startsWith("RPRT ")) {
        bool ok = false;
        const int code = line.mid(5).toInt(&ok);
        const QByteArray command = inFlight;
        const QStringList reply = values;
        inFlight.clear();
        values.clear();
        replyTimer.stop();
        emit replied(command, reply, ok ? code : -8);
        return;
    }
    // The reply starts by repeating the command ("get_freq:", "set_freq:
    // 7074000"); lines before it are not part of it.
    if (!echoSeen) {
        const int colon = line.indexOf(':');
        echoSeen = colon > 0;
        for (int i = 0; i < colon; ++i) {
            const char c = line.at(i);
            echoSeen =
                echoSeen && (std::isalpha(static_cast<unsigned char>(c)) || c == '_' || c == '\\');
        }
        return;
    }
    const QString text = QString::fromLatin1(line);
    const int colon = text.indexOf(QLatin1String(": "));
    values << (colon < 0 ? text : text.mid(colon + 2)).trimmed();
}

void RigctlConnection::drop(const QString &reason)
{
    if (phase == Phase::Closed)
        return;
    replyTimer.stop();
    socket.abort();
    phase = Phase::Closed;
    buffer.clear();
    inFlight.clear();
    values.clear();
    retryTimer.start(retryMs);
    retryMs = qMin(retryMs * 2, int(LastRetryMs));
    emit lost(reason);
}
