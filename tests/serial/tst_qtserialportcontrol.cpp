// Tests of QtSerialPortControl and the SerialPortControl facade around it, on
// pseudo-terminals with emulated modem lines.

#include "serial/qtserialportcontrol.h"
#include "serial/serialportcontrol.h"
#include "tests/support/ptymodemlines.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

using ModemLines::Cause;
using ModemLines::Dtr;
using ModemLines::Rts;

namespace {

enum Setting { DataBits, Parity, StopBits, FlowControl };

using Setter = bool (QtSerialPortControl::*)(int);
using Getter = int (QtSerialPortControl::*)() const;
const Setter setters[] = {&QtSerialPortControl::setDataBits, &QtSerialPortControl::setParity,
                          &QtSerialPortControl::setStopBits, &QtSerialPortControl::setFlowControl};
const Getter getters[] = {&QtSerialPortControl::dataBits, &QtSerialPortControl::parity,
                          &QtSerialPortControl::stopBits, &QtSerialPortControl::flowControl};

// Messages logged while a test runs (and passed on to Qt Test).
QList<QPair<QtMsgType, QString>> s_messages;
QtMessageHandler s_testHandler = nullptr;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtDebugMsg || qstrcmp(context.category, "dialix") == 0)
        s_messages.append({type, text});
    s_testHandler(type, context, text);
}

QStringList debugLines()
{
    QStringList lines;
    for (const auto &message : qAsConst(s_messages)) {
        if (message.first == QtDebugMsg)
            lines.append(message.second);
    }
    return lines;
}

bool openOn(SerialPortAbstract &port, const PtyPort &pty)
{
    port.setPortName(pty.portName());
    return port.open(QIODevice::ReadWrite);
}

} // namespace

Q_DECLARE_METATYPE(Setting)

class tst_QtSerialPortControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(ModemLines::isActive(), "the pty modem-line emulation is not in effect");
    }
    void init()
    {
        s_messages.clear();
        s_testHandler = qInstallMessageHandler(collect);
    }
    void cleanup() { qInstallMessageHandler(s_testHandler); }

    void openAndCloseLeaveTheLinesLow();
    void linesFollowTheSetCalls_data();
    void linesFollowTheSetCalls();
    void openFailure_data();
    void openFailure();
    void settingCodes_data();
    void settingCodes();
    void baudRateSetsBothDirections();
    void writesGoThroughTheFacade();
    void linePollSignalsChangesOnly();
    void facadeReleasesItsPortLater();
};

void tst_QtSerialPortControl::openAndCloseLeaveTheLinesLow()
{
    PtyPort pty;
    // A tty whose settings lack HUPCL (as "stty -hupcl" leaves it).
    {
        const int fd = ::open(QFile::encodeName(pty.portName()).constData(), O_RDWR | O_NOCTTY);
        QVERIFY(fd >= 0);
        termios tio;
        QCOMPARE(tcgetattr(fd, &tio), 0);
        tio.c_cflag &= ~tcflag_t(HUPCL);
        QCOMPARE(tcsetattr(fd, TCSANOW, &tio), 0);
        ::close(fd);
    }
    QtSerialPortControl port;
    port.close(); // never opened: nothing happens
    for (int i = 0; i < 3; ++i) {
        const int before = pty.changes().size();
        QVERIFY2(openOn(port, pty), qPrintable(port.errorString()));
        // The tty raised both lines on open; the port lowered both at once
        // before returning, and touched nothing else.
        const auto changes = pty.changes().mid(before);
        QCOMPARE(changes.size(), 2);
        QCOMPARE(changes.at(0).cause, Cause::Open);
        QCOMPARE(changes.at(0).after, Dtr | Rts);
        QCOMPARE(changes.at(1).cause, Cause::Write);
        QCOMPARE(changes.at(1).after, 0);
        // The serial library's defaults: 9600 8N1, no flow control; and the
        // tty hangs up when it closes, however the process ends.
        const termios tio = pty.settings();
        QCOMPARE(cfgetospeed(&tio), speed_t(B9600));
        QCOMPARE(tio.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS | HUPCL), tcflag_t(CS8 | HUPCL));
        QCOMPARE(tio.c_iflag & (IXON | IXOFF), tcflag_t(0));

        // Closed while keyed: the lines drop, also where the settings restored
        // on close lack HUPCL (as here), and the port opens again.
        port.setDataTerminalReady(true);
        port.setRequestToSend(true);
        port.close();
        QCOMPARE(pty.lines(), 0);
    }

    // Closing a closed port says and does nothing.
    const int changes = pty.changes().size();
    s_messages.clear();
    port.close();
    QCOMPARE(s_messages.size(), 0);
    QCOMPARE(pty.changes().size(), changes);
}

void tst_QtSerialPortControl::linesFollowTheSetCalls_data()
{
    // Each step: 'D' or 'R' for DTR or RTS, '+' or '-' for high or low.
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QVector<int>>("lines");

    QTest::newRow("both, DTR first down") << "D+ R+ D- R-" << QVector<int> {Dtr, Dtr | Rts, Rts, 0};
    QTest::newRow("repeated high") << "R+ R+ D+" << QVector<int> {Rts, Rts, Dtr | Rts};
    QTest::newRow("low while low") << "D- R-" << QVector<int> {0, 0};
}

void tst_QtSerialPortControl::linesFollowTheSetCalls()
{
    QFETCH(QString, steps);
    QFETCH(QVector<int>, lines);

    PtyPort pty;
    QtSerialPortControl port;
    QVERIFY2(openOn(port, pty), qPrintable(port.errorString()));
    const int opened = pty.changes().size();

    const QStringList list = steps.split(QLatin1Char(' '));
    for (const QString &step : list) {
        const bool high = step.at(1) == QLatin1Char('+');
        QVERIFY(step.at(0) == QLatin1Char('D') ? port.setDataTerminalReady(high)
                                               : port.setRequestToSend(high));
    }

    // One line write per call and nothing else.
    const auto changes = pty.changes().mid(opened);
    QCOMPARE(changes.size(), lines.size());
    for (int i = 0; i < changes.size(); ++i) {
        QCOMPARE(changes.at(i).cause, Cause::Write);
        QCOMPARE(ModemLines::describe(changes.at(i).after), ModemLines::describe(lines.at(i)));
    }

    // The stored flags do not follow the lines.
    QCOMPARE(port.isDataTerminalReady(), false);
    QCOMPARE(port.isRequestToSend(), false);
}

void tst_QtSerialPortControl::openFailure_data()
{
    QTest::addColumn<bool>("inUse");
    QTest::newRow("no such device") << false;
    QTest::newRow("held by another port") << true;
}

void tst_QtSerialPortControl::openFailure()
{
    QFETCH(bool, inUse);

    PtyPort pty;
    QtSerialPortControl holder;
    if (inUse) {
        QVERIFY(openOn(holder, pty));
        holder.setDataTerminalReady(true);
    }
    const int before = ModemLines::changes().size();

    QtSerialPortControl port;
    port.setPortName(inUse ? pty.portName() : QStringLiteral("/nonexistent/ttyDialix0"));
    QVERIFY(!port.open(QIODevice::ReadWrite));
    QVERIFY(!port.errorString().isEmpty());

    // A failed open touches no line, also not those of the port's holder.
    QCOMPARE(ModemLines::changes().size(), before);
    if (inUse)
        QCOMPARE(pty.lines(), int(Dtr));
    port.close();
}

void tst_QtSerialPortControl::settingCodes_data()
{
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("accepted");
    // What the open port shows in termios; a zero mask means no check.
    QTest::addColumn<uint>("cflagMask");
    QTest::addColumn<uint>("cflag");
    QTest::addColumn<uint>("iflagMask");
    QTest::addColumn<uint>("iflag");

    const uint size = CSIZE;
    const uint parity = PARENB | PARODD | CMSPAR;
    const uint flow = CRTSCTS;
    const uint soft = IXON | IXOFF;

    // clang-format off
    QTest::newRow("data 0: 5 bits")    << DataBits << 0 << true << size << uint(CS5) << 0u << 0u;
    QTest::newRow("data 1: 6 bits")    << DataBits << 1 << true << size << uint(CS6) << 0u << 0u;
    QTest::newRow("data 2: 7 bits")    << DataBits << 2 << true << size << uint(CS7) << 0u << 0u;
    QTest::newRow("data 3: 8 bits")    << DataBits << 3 << true << size << uint(CS8) << 0u << 0u;
    QTest::newRow("data 4 refused")    << DataBits << 4 << false << 0u << 0u << 0u << 0u;
    QTest::newRow("data -1 refused")   << DataBits << -1 << false << 0u << 0u << 0u << 0u;
    QTest::newRow("parity 0: none")    << Parity << 0 << true << uint(PARENB) << 0u << 0u << 0u;
    QTest::newRow("parity 1: even")    << Parity << 1 << true << parity << uint(PARENB) << 0u << 0u;
    QTest::newRow("parity 2: odd")     << Parity << 2 << true << parity << uint(PARENB | PARODD) << 0u << 0u;
    QTest::newRow("parity 3: space")   << Parity << 3 << true << parity << uint(PARENB | CMSPAR) << 0u << 0u;
    QTest::newRow("parity 4: mark")    << Parity << 4 << true << parity << uint(PARENB | CMSPAR | PARODD) << 0u << 0u;
    QTest::newRow("parity 5 refused")  << Parity << 5 << false << 0u << 0u << 0u << 0u;
    QTest::newRow("stop 0: one")       << StopBits << 0 << true << uint(CSTOPB) << 0u << 0u << 0u;
    // Linux has no one and a half stop bits; the code is only stored.
    QTest::newRow("stop 1: 1.5")       << StopBits << 1 << true << 0u << 0u << 0u << 0u;
    QTest::newRow("stop 2: two")       << StopBits << 2 << true << uint(CSTOPB) << uint(CSTOPB) << 0u << 0u;
    QTest::newRow("stop 3 refused")    << StopBits << 3 << false << 0u << 0u << 0u << 0u;
    QTest::newRow("flow 0: none")      << FlowControl << 0 << true << flow << 0u << soft << 0u;
    QTest::newRow("flow 1: hardware")  << FlowControl << 1 << true << flow << flow << soft << 0u;
    QTest::newRow("flow 2: software")  << FlowControl << 2 << true << flow << 0u << soft << soft;
    QTest::newRow("flow 3 refused")    << FlowControl << 3 << false << 0u << 0u << 0u << 0u;
    // clang-format on
}

void tst_QtSerialPortControl::settingCodes()
{
    QFETCH(Setting, setting);
    QFETCH(int, code);
    QFETCH(bool, accepted);
    QFETCH(uint, cflagMask);
    QFETCH(uint, cflag);
    QFETCH(uint, iflagMask);
    QFETCH(uint, iflag);

    // Closed port: the code goes in and comes back, or is refused and the
    // previous setting stays.
    const Setter set = setters[setting];
    const Getter get = getters[setting];
    QtSerialPortControl closed;
    const int previous = 2; // valid in every column, and no default
    QVERIFY((closed.*set)(previous));
    QCOMPARE((closed.*set)(code), accepted);
    QCOMPARE((closed.*get)(), accepted ? code : previous);

    if (!cflagMask && !iflagMask)
        return;

    // Open port: the code reaches the line settings.
    PtyPort pty;
    QtSerialPortControl port;
    QVERIFY(openOn(port, pty));
    QVERIFY2((port.*set)(previous), qPrintable(port.errorString()));
    QVERIFY2((port.*set)(code), qPrintable(port.errorString()));
    QCOMPARE((port.*get)(), code);
    const termios tio = pty.settings();
    QCOMPARE(uint(tio.c_cflag) & cflagMask, cflag);
    QCOMPARE(uint(tio.c_iflag) & iflagMask, iflag);
}

void tst_QtSerialPortControl::baudRateSetsBothDirections()
{
    PtyPort pty;
    QtSerialPortControl port;
    QVERIFY(openOn(port, pty));

    QVERIFY(port.setBaudRate(19200, QSerialPort::Input));
    QCOMPARE(port.baudRate(), 19200);
    const termios tio = pty.settings();
    QCOMPARE(cfgetispeed(&tio), speed_t(B19200));
    QCOMPARE(cfgetospeed(&tio), speed_t(B19200));
}

// Data reaches the far end without a word; a write on a closed port reports
// both failures.
void tst_QtSerialPortControl::writesGoThroughTheFacade()
{
    PtyPort pty;
    SerialPortControl control;
    QVERIFY(openOn(*control.current(), pty));
    s_messages.clear();

    QCOMPARE(control.write(QByteArrayLiteral("PTT\r\n")), qint64(5));
    QCOMPARE(pty.read(), QByteArrayLiteral("PTT\r\n"));
    QCOMPARE(debugLines(), QStringList());

    control->close();
    QCOMPARE(control.write(QByteArrayLiteral("x")), qint64(-1));
    const QStringList debug = debugLines();
    QCOMPARE(debug.size(), 2);
    QVERIFY2(debug.at(0).contains(
                 QRegularExpression(QStringLiteral("QtSerialPortControl::write\\(.*\\) failed to "
                                                   "write data, \\S"))),
             qPrintable(debug.at(0)));
    QVERIFY2(debug.at(1).contains(QRegularExpression(
                 QStringLiteral("QtSerialPortControl::write\\(.*\\) failed to flush$"))),
             qPrintable(debug.at(1)));
}

// Polled through the facade, which passes the signals on as its own.
void tst_QtSerialPortControl::linePollSignalsChangesOnly()
{
    PtyPort pty;
    SerialPortControl control;
    auto *port = qobject_cast<QtSerialPortControl *>(control.current());
    QVERIFY(port);
    QVERIFY(pty.setInputs(ModemLines::Cts));
    QVERIFY(openOn(*port, pty));
    QVERIFY(port->isClearToSend());
    QVERIFY(!port->isDataSetReady());
    QSignalSpy cts(&control, &SerialPortControl::ctsChanged);
    QSignalSpy dsr(&control, &SerialPortControl::dsrChanged);

    port->startLinePolling(5);
    // Both remembered states start high: the low DSR is reported, the high
    // CTS is not (checked in the same poll, before DSR).
    QTRY_COMPARE_WITH_TIMEOUT(dsr.count(), 1, 10000);
    QCOMPARE(dsr.at(0).at(0).toBool(), false);
    QCOMPARE(cts.count(), 0);

    QVERIFY(pty.setInputs(ModemLines::Dsr));
    QTRY_COMPARE_WITH_TIMEOUT(cts.count(), 1, 10000);
    QCOMPARE(cts.at(0).at(0).toBool(), false);
    QTRY_COMPARE_WITH_TIMEOUT(dsr.count(), 2, 10000);
    QCOMPARE(dsr.at(1).at(0).toBool(), true);

    port->stopLinePolling();
    QVERIFY(pty.setInputs(0));
    QTest::qWait(50);
    QCOMPARE(dsr.count(), 2);
}

void tst_QtSerialPortControl::facadeReleasesItsPortLater()
{
    QPointer<SerialPortAbstract> port;
    {
        SerialPortControl control;
        port = control.current();
        QCOMPARE(port->parent(), nullptr);
    }
    QVERIFY(port);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!port);
}

QTEST_GUILESS_MAIN(tst_QtSerialPortControl)
#include "tst_qtserialportcontrol.moc"
