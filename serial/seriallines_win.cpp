// DTR and RTS of an open port on Windows.

#include "serial/seriallines.h"

#include <QSerialPort>

// Windows has no single request for both lines; QSerialPort's own calls drop
// them one after the other. Windows has no HUPCL either: what the lines do when
// the last handle closes is the driver's business, so nothing is set for it.

namespace seriallines {

bool lowerBoth(QSerialPort &port)
{
    const bool dtr = port.setDataTerminalReady(false);
    const bool rts = port.setRequestToSend(false);
    return dtr && rts;
}

bool hangUpOnClose(QSerialPort &port)
{
    Q_UNUSED(port)
    return true;
}

} // namespace seriallines
