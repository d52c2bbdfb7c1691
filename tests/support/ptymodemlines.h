#pragma once

// Serial ports for tests, without hardware: pseudo-terminal pairs whose modem
// lines are emulated.
//
// Linux pseudo-terminals refuse the modem-line ioctls, so QSerialPort cannot
// drive DTR or RTS on them. Linking the dialix_ptylines library into a test
// executable interposes libc's ioctl(), open()/open64(), close(), tcsetattr()
// and tcgetattr() for the whole process:
//
//  - TIOCMGET, TIOCMSET, TIOCMBIS and TIOCMBIC on a pty slave (/dev/pts/N) are
//    answered from an emulated line state kept per pty, and every write is
//    logged. Only the outputs (DTR, RTS, OUT1, OUT2, LOOP) can be written; the
//    inputs (CTS, DSR, CD, RI) are set by the test as the far end would.
//  - Opening a pty slave raises DTR and RTS, as the kernel does when a real tty
//    opens with a non-zero baud rate.
//  - Closing the last descriptor opened that way drops DTR and RTS when the
//    line has HUPCL set, as a real tty hangs up.
//  - A pty slave reads back the terminal settings last set on it (a real pty
//    forces 8 data bits and no parity), so a port can verify what it set and
//    the test can see what a serial line would run at.
//  - Opening /dev/ttyS* is refused with EACCES: tests never touch the
//    machine's own serial ports.
//
// Every other call goes to libc unchanged. Descriptors from
// openpty() itself are not "opened" in this sense; only opens by path are.
//
// Typical use, with what the far end of a null-modem cable would see:
//
//     PtyPort pty;                        // a fresh pair
//     QtSerialPortControl port;
//     port.setPortName(pty.portName());   // "/dev/pts/N"
//     port.open(QIODevice::ReadWrite);
//     QCOMPARE(pty.lines() & ModemLines::Output, 0);
//     port.setDataTerminalReady(true);
//     QCOMPARE(pty.lines() & ModemLines::Output, int(ModemLines::Dtr));
//     pty.changes();                      // open, then each write
//
// The state is process-wide. A new PtyPort starts with all lines low and an
// empty log for its pty (pty numbers are reused).

#include <QByteArray>
#include <QString>
#include <QVector>

#include <sys/ioctl.h>
#include <termios.h>

namespace ModemLines {

// Line bits, the same as the kernel's TIOCM_* bits.
enum Line : int {
    Dtr = TIOCM_DTR,
    Rts = TIOCM_RTS,
    Cts = TIOCM_CTS,
    Dsr = TIOCM_DSR,
    Cd = TIOCM_CAR,
    Ri = TIOCM_RNG,
    Out1 = 0x2000, // TIOCM_OUT1, TIOCM_OUT2, TIOCM_LOOP of <asm/termios.h>
    Out2 = 0x4000,
    Loop = 0x8000,
    // What the near end drives (the rest are inputs from the far end).
    Output = Dtr | Rts | Out1 | Out2 | Loop,
};

enum class Cause {
    Open, // a path open of the slave raised DTR and RTS
    Write, // TIOCMSET, TIOCMBIS or TIOCMBIC (also when nothing changed)
    HangUp, // the last such descriptor closed with HUPCL
    FarEnd, // the test set the inputs with setInputs()
};

struct Change
{
    QString port; // "/dev/pts/N"
    Cause cause;
    int before; // line bits before and after
    int after;
    qint64 nanoseconds; // when, on the monotonic clock
};

// True when the interposition is in effect (a pty answers TIOCMGET). A test
// that relies on the emulation should verify this first.
bool isActive();

// The line bits of the pty at `port` (a path, symlinks followed); 0 for a pty
// the emulation has not seen, -1 when it is not a pty slave.
int lines(const QString &port);

// Sets the inputs (Cts, Dsr, Cd, Ri) that the far end drives; output bits in
// `bits` are ignored. Returns false when `port` is not a pty slave.
bool setInputs(const QString &port, int bits);

// The log of line changes, oldest first: of every pty, or of one.
QVector<Change> changes();
QVector<Change> changes(const QString &port);

// "DTR|RTS", "-" for none: for failure messages.
QString describe(int bits);

} // namespace ModemLines

// A pseudo-terminal pair standing in for a serial port and its far end. The
// slave's path goes to QSerialPort; the master is the far end. The slave
// starts with HUPCL set, like a serial driver's default settings (a pty's
// default lacks it). A slave descriptor is held open for the pair's lifetime
// so the far end never reads a hang-up, and so the test can read the line
// settings (termios) the port configured.
class PtyPort
{
public:
    PtyPort();
    ~PtyPort();
    PtyPort(const PtyPort &) = delete;
    PtyPort &operator=(const PtyPort &) = delete;

    bool isValid() const { return m_master >= 0; }
    QString errorString() const { return m_error; }

    // The slave's path, "/dev/pts/N".
    QString portName() const { return m_name; }

    // The slave's terminal settings, as last set by the port.
    struct termios settings() const;

    // What the port sent: waits up to `timeoutMs` for the first bytes, then
    // returns everything that has arrived.
    QByteArray read(int timeoutMs = 5000);

    // ModemLines for this pty.
    int lines() const;
    bool setInputs(int bits);
    QVector<ModemLines::Change> changes() const;

private:
    int m_master = -1;
    int m_slave = -1;
    QString m_name;
    QString m_error;
};
