// DTR and RTS of an open port on Linux: both dropped in one request, and
// dropped by the kernel when the port closes.

#include "serial/seriallines.h"

#include <QSerialPort>

#include <sys/ioctl.h>
#include <termios.h>

// A tty raises DTR and RTS when it opens at a baud rate other than 0, and
// QSerialPort cannot open at 0: both lines are up from the open() inside
// QSerialPort::open() until lowerBoth() runs. One TIOCMBIC drops them together.
// HUPCL in the tty's settings makes the kernel drop them when the last
// descriptor closes, whoever closes it.

namespace seriallines {

bool lowerBoth(QSerialPort &port)
{
    int lines = TIOCM_DTR | TIOCM_RTS;
    return ::ioctl(port.handle(), TIOCMBIC, &lines) == 0;
}

bool hangUpOnClose(QSerialPort &port)
{
    termios settings;
    if (::tcgetattr(port.handle(), &settings) != 0)
        return false;
    if (settings.c_cflag & HUPCL)
        return true;
    settings.c_cflag |= HUPCL;
    return ::tcsetattr(port.handle(), TCSANOW, &settings) == 0;
}

} // namespace seriallines
