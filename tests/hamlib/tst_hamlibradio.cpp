// The Hamlib radio against a fake rigctld that misbehaves on purpose.

#include "command/qrvcommand.h"
#include "tools/host/hamlibradio.h"
#include "tools/host/rigctldprocess.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

namespace {

enum class Fault { None, Slow, ResetMidReply, Garbage, Silent, Errors };

// A rigctld that keeps a frequency and PTT, answers in the extended form, and
// misbehaves as told.
class FakeRigctld : public QObject
{
    Q_OBJECT

public:
    Fault fault = Fault::None;
    int silentUntil = 0; // Silent: the first connections get no answers
    QHash<QByteArray, int> errors; // Errors: RPRT code by command word
    qint64 freq = 7000000;
    bool ptt = false;
    int connections = 0;
    QList<QByteArray> received;

    bool listen(quint16 port = 0) { return server.listen(QHostAddress::LocalHost, port); }
    quint16 port() const { return server.serverPort(); }

    FakeRigctld()
    {
        connect(&server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *s = server.nextPendingConnection()) {
                ++connections;
                connect(s, &QTcpSocket::readyRead, this, [this, s] { serve(s); });
                connect(s, &QTcpSocket::disconnected, s, &QObject::deleteLater);
            }
        });
    }

private:
    void serve(QTcpSocket *s)
    {
        while (s->canReadLine()) {
            const QByteArray line = s->readLine().trimmed();
            if (fault == Fault::Silent && connections <= silentUntil)
                continue;
            if (line == "\\chk_vfo") {
                s->write("0\n");
                continue;
            }
            if (line == "+\\dump_state") {
                s->write("1\n2\ndone\nRPRT 0\n");
                continue;
            }
            received << line;
            const QList<QByteArray> words = line.mid(1).split(' ');
            QByteArray reply = words[0] + ":\n";
            int code = errors.value(words[0] + (words.size() > 1 ? " " + words[1] : ""), 0);
            if (fault == Fault::Garbage)
                s->write("?? garbage\n");
            if (code == 0) {
                if (words[0] == "F")
                    freq = words.value(1).toLongLong();
                else if (words[0] == "T")
                    ptt = words.value(1) == "1";
                else if (words[0] == "f")
                    reply += "Frequency: " + QByteArray::number(freq) + "\n";
                else if (words[0] == "t")
                    reply += "PTT: " + QByteArray(ptt ? "1" : "0") + "\n";
                else if (words[0] == "m")
                    reply += "Mode: USB\nPassband: 2400\n";
                else if (words[0] == "v")
                    reply += "VFO: VFOA\n";
                else if (words[0].at(0) >= 'a')
                    reply += "0\n";
            }
            reply += "RPRT " + QByteArray::number(code) + "\n";
            if (fault == Fault::ResetMidReply && received.size() % 7 == 3) {
                s->write(reply.left(reply.size() / 2));
                s->flush();
                s->abort();
                return;
            }
            if (fault == Fault::Slow) {
                QTimer::singleShot(200, s, [s, reply] { s->write(reply); });
                continue;
            }
            s->write(reply);
        }
    }

    QTcpServer server;
};

// Largest gap between ticks of a 10 ms timer on this thread: the GUI thread
// keeps running as long as it stays small.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        clock.start();
        connect(&timer, &QTimer::timeout, this, [this] { worst = qMax(worst, clock.restart()); });
        timer.start(10);
    }
    qint64 worst = 0;

private:
    QTimer timer;
    QElapsedTimer clock;
};

QVariantList vfoStep(int step)
{
    return {int(qrv::Id::panelVFO), 0u, 0u, step};
}

int countLines(const QSignalSpy &spy, const QString &part)
{
    int n = 0;
    for (const QList<QVariant> &args : spy)
        n += args.at(0).toString().contains(part) ? 1 : 0;
    return n;
}

} // namespace

class tst_HamlibRadio : public QObject
{
    Q_OBJECT

private slots:
    void faultsEndWithTheLastFrequencyAndPtt_data();
    void faultsEndWithTheLastFrequencyAndPtt();
    void refusedUntilRigctldListens();
    void errorCodesAreSaidOnceByName();
};

void tst_HamlibRadio::faultsEndWithTheLastFrequencyAndPtt_data()
{
    QTest::addColumn<int>("fault");
    QTest::newRow("well behaved") << int(Fault::None);
    QTest::newRow("200 ms replies") << int(Fault::Slow);
    QTest::newRow("reset in the middle of a reply") << int(Fault::ResetMidReply);
    QTest::newRow("garbage lines") << int(Fault::Garbage);
    QTest::newRow("never answers, then does") << int(Fault::Silent);
}

void tst_HamlibRadio::faultsEndWithTheLastFrequencyAndPtt()
{
    QFETCH(int, fault);
    FakeRigctld fake;
    fake.fault = Fault(fault);
    fake.silentUntil = 1;
    QVERIFY(fake.listen());
    HamlibRadio radio;
    radio.connection()->setReplyTimeout(300);
    QSignalSpy said(&radio, &HamlibRadio::changed);
    QSignalSpy tx(&radio, &HamlibRadio::moxChanged);
    // The frequency the radio reports while spinning up never goes back.
    double highest = 0;
    bool wentBack = false;
    connect(&radio, &HamlibRadio::stateChanged, this, [&] {
        wentBack = wentBack || radio.frequency(0) < highest;
        highest = qMax(highest, radio.frequency(0));
    });
    radio.open(QStringLiteral("127.0.0.1"), fake.port());
    if (fault != int(Fault::Silent))
        QTRY_VERIFY(radio.frequency(0) == 7000000);

    Heartbeat beat;
    for (int i = 0; i < 50; ++i) {
        radio.panelCommand(vfoStep(+2));
        QTest::qWait(5);
    }
    radio.setMox(0, true);
    QTRY_VERIFY_WITH_TIMEOUT(fake.freq == 7001000 && fake.ptt && radio.idle(), 15000);
    QTRY_COMPARE(radio.mox(0), true);
    QCOMPARE(tx.count(), 1);
    QVERIFY2(beat.worst < 150, qPrintable(QString::number(beat.worst)));
    if (fault == int(Fault::None) || fault == int(Fault::Slow))
        QVERIFY(!wentBack);
    // An outage is said once when it starts and once when it ends.
    fake.fault = Fault::None;
    QVERIFY(countLines(said, QStringLiteral("radio gone")) <= fake.connections);
    QTRY_COMPARE(countLines(said, QStringLiteral("radio back")),
                 countLines(said, QStringLiteral("radio gone")));

    radio.shutDown();
    QVERIFY(!fake.ptt);
}

void tst_HamlibRadio::refusedUntilRigctldListens()
{
    const quint16 port = RigctldProcess::freePort();
    HamlibRadio radio;
    QSignalSpy said(&radio, &HamlibRadio::changed);
    radio.open(QStringLiteral("127.0.0.1"), port);
    radio.setMox(0, true);
    QTest::qWait(700); // several refused attempts
    QCOMPARE(countLines(said, QStringLiteral("cannot reach")), 1);

    FakeRigctld fake;
    QVERIFY(fake.listen(port));
    QTRY_VERIFY(fake.ptt);
    QTRY_VERIFY(radio.mox(0));
    QCOMPARE(countLines(said, QStringLiteral("connected to rigctld")), 1);
}

void tst_HamlibRadio::errorCodesAreSaidOnceByName()
{
    FakeRigctld fake;
    fake.errors = {{"U NR", -4}, {"L AGC", -11}, {"U NB", -9}};
    QVERIFY(fake.listen());
    HamlibRadio radio;
    QSignalSpy said(&radio, &HamlibRadio::changed);
    radio.open(QStringLiteral("127.0.0.1"), fake.port());
    QTRY_VERIFY(radio.isConnected());
    for (int i = 0; i < 3; ++i) {
        radio.panelCommand({int(qrv::Id::panelNrChange), 0u});
        radio.panelCommand({int(qrv::Id::panelAgcUp), 0u});
        radio.panelCommand({int(qrv::Id::panelNb1Change), 0u});
        radio.panelCommand({int(qrv::Id::panelZoomUp), 0u});
        QTRY_VERIFY(radio.idle());
    }
    const struct
    {
        const char *line;
        int count;
    } expected[] = {{"panelNrChange (U NR): the radio does not support it (not implemented)", 1},
                    {"panelAgcUp (L AGC): the radio does not support it (not available)", 1},
                    {"panelNb1Change (U NB): command rejected by the radio", 1},
                    {"panelZoomUp: not passed to the radio", 1}};
    for (const auto &e : expected)
        QCOMPARE(countLines(said, QString::fromLatin1(e.line)), e.count);
    // What the radio lacks is not asked again; what it rejected once is.
    int nr = 0, nb = 0;
    for (const QByteArray &line : fake.received) {
        nr += line.startsWith("+U NR") ? 1 : 0;
        nb += line.startsWith("+U NB ") ? 1 : 0;
    }
    QCOMPARE(nr, 1);
    QCOMPARE(nb, 3);
}

QTEST_GUILESS_MAIN(tst_HamlibRadio)
#include "tst_hamlibradio.moc"
