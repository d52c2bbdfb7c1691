// Pseudo-terminal pairs for tests, with emulated modem lines.

#include "tests/support/ptymodemlines.h"

#include "tests/support/ptyinterpose_p.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStringList>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <string.h>
#include <unistd.h>

namespace {

QString portOf(int pty)
{
    return QStringLiteral("/dev/pts/%1").arg(pty);
}

int ptyOf(const QString &port)
{
    return PtyLineState::ptyOfPath(QFile::encodeName(port).constData());
}

ModemLines::Change toChange(const PtyLineState::Change &raw)
{
    static const ModemLines::Cause causes[] = {ModemLines::Cause::Open, ModemLines::Cause::Write,
                                               ModemLines::Cause::HangUp,
                                               ModemLines::Cause::FarEnd};
    return {portOf(raw.pty), causes[static_cast<int>(raw.cause)], raw.before, raw.after,
            raw.nanoseconds};
}

} // namespace

namespace ModemLines {

bool isActive()
{
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        return false;
    int bits = 0;
    const bool answered = ioctl(slave, TIOCMGET, &bits) == 0;
    ::close(slave);
    ::close(master);
    return answered;
}

int lines(const QString &port)
{
    const int pty = ptyOf(port);
    return pty < 0 ? -1 : PtyLineState::lines(pty);
}

bool setInputs(const QString &port, int bits)
{
    const int pty = ptyOf(port);
    if (pty < 0)
        return false;
    PtyLineState::setInputs(pty, bits);
    return true;
}

QVector<Change> changes()
{
    QVector<Change> result;
    for (const PtyLineState::Change &raw : PtyLineState::changes())
        result.append(toChange(raw));
    return result;
}

QVector<Change> changes(const QString &port)
{
    const int pty = ptyOf(port);
    QVector<Change> result;
    for (const PtyLineState::Change &raw : PtyLineState::changes()) {
        if (raw.pty == pty)
            result.append(toChange(raw));
    }
    return result;
}

QString describe(int bits)
{
    static const struct
    {
        int bit;
        const char *name;
    } names[] = {{TIOCM_DTR, "DTR"}, {TIOCM_RTS, "RTS"}, {TIOCM_CTS, "CTS"},
                 {TIOCM_DSR, "DSR"}, {TIOCM_CAR, "CD"},  {TIOCM_RNG, "RI"},
                 {Out1, "OUT1"},     {Out2, "OUT2"},     {Loop, "LOOP"}};
    QStringList parts;
    for (const auto &name : names) {
        if (bits & name.bit)
            parts.append(QLatin1String(name.name));
    }
    return parts.isEmpty() ? QStringLiteral("-") : parts.join(QLatin1Char('|'));
}

} // namespace ModemLines

PtyPort::PtyPort()
{
    char name[64] = {};
    if (openpty(&m_master, &m_slave, name, nullptr, nullptr) != 0) {
        m_error = QString::fromLocal8Bit(strerror(errno));
        m_master = m_slave = -1;
        return;
    }
    m_name = QFile::decodeName(name);
    // Pty numbers are reused: start from a clean line state and log.
    PtyLineState::forget(PtyLineState::ptyOfDescriptor(m_slave));
    fcntl(m_master, F_SETFL, fcntl(m_master, F_GETFL) | O_NONBLOCK);
    // A serial driver's default settings hang up on the last close; a pty's
    // do not.
    struct termios settings;
    if (tcgetattr(m_slave, &settings) == 0) {
        settings.c_cflag |= HUPCL;
        tcsetattr(m_slave, TCSANOW, &settings);
    }
}

PtyPort::~PtyPort()
{
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
}

struct termios PtyPort::settings() const
{
    struct termios result = {};
    tcgetattr(m_slave, &result);
    return result;
}

QByteArray PtyPort::read(int timeoutMs)
{
    QByteArray data;
    if (m_master < 0)
        return data;
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        char buffer[4096];
        const ssize_t n = ::read(m_master, buffer, sizeof buffer);
        if (n > 0) {
            data.append(buffer, static_cast<int>(n));
            continue;
        }
        if (!data.isEmpty())
            return data;
        const qint64 left = timeoutMs - timer.elapsed();
        if (left <= 0)
            return data;
        pollfd fd = {m_master, POLLIN, 0};
        poll(&fd, 1, static_cast<int>(left));
    }
}

int PtyPort::lines() const
{
    return ModemLines::lines(m_name);
}

bool PtyPort::setInputs(int bits)
{
    return ModemLines::setInputs(m_name, bits);
}

QVector<ModemLines::Change> PtyPort::changes() const
{
    return ModemLines::changes(m_name);
}
