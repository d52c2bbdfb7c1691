#pragma once

// RigctlConnection, one persistent connection to Hamlib's rigctld.

#include <QByteArray>
#include <QObject>
#include <QStringList>
#include <QTcpSocket>
#include <QTimer>

// One connection to rigctld, run on the event loop of the thread that owns
// it; nothing in it blocks. After connecting it makes the handshake that
// Hamlib's own network client makes (\chk_vfo, then \dump_state) and is ready.
// Then it carries one command at a time in rigctld's extended form ("+F
// 7074000"), whose reply always ends with "RPRT n".
//
// A reply that does not come within the reply timeout, a reset, a refused
// connection or a closed one all end the same way: the socket is dropped,
// lost() is emitted with the reason, and the connection is tried again after
// a back-off that grows from 0.1 s to 5 s and starts over once it is ready.
class RigctlConnection : public QObject
{
    Q_OBJECT

public:
    static constexpr int DefaultReplyTimeoutMs = 5000;
    static constexpr int FirstRetryMs = 100;
    static constexpr int LastRetryMs = 5000;

    explicit RigctlConnection(QObject *parent = nullptr);
    ~RigctlConnection() override;

    void open(const QString &host, quint16 port);
    void close();
    QString address() const;

    bool isReady() const { return phase == Phase::Ready; }
    bool isBusy() const { return !inFlight.isEmpty(); }
    // rigctld was started with --vfo: every VFO command names its VFO.
    bool vfoMode() const { return vfoArgument; }
    void setReplyTimeout(int ms) { replyTimer.setInterval(ms); }

    // Sends one command ("F 7074000", "l AF") when ready and idle; false
    // otherwise. The reply comes through replied().
    bool send(const QByteArray &command);

signals:
    // Connected and through the handshake (again, after a loss).
    void ready();
    // The connection dropped or could not be made; it is tried again.
    void lost(const QString &reason);
    // The reply to send(): the value lines (without their "Name: ") and the
    // RPRT code (0 success, Hamlib's negative error codes otherwise).
    void replied(const QByteArray &command, const QStringList &values, int code);
    // Every line sent ("> ...") and received ("< ..."), for --rig-trace.
    void trace(const QString &line);

private:
    enum class Phase { Closed, Connecting, CheckVfo, DumpState, Ready };

    void connectNow();
    void write(const QByteArray &line);
    void onReadyRead();
    void onLine(const QByteArray &line);
    void drop(const QString &reason);

    QTcpSocket socket;
    QTimer replyTimer;
    QTimer retryTimer;
    QString host;
    quint16 port = 0;
    Phase phase = Phase::Closed;
    int retryMs = FirstRetryMs;
    bool vfoArgument = false;
    QByteArray buffer;
    QByteArray inFlight;
    QStringList values;
    bool echoSeen = false;
};
