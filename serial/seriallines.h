#pragma once

// What the serial ports need of the system beyond QSerialPort, for ports whose
// DTR and RTS lines key a transmitter. One implementation per platform
// (seriallines_linux.cpp, seriallines_win.cpp).

class QSerialPort;

namespace seriallines {

// Drops DTR and RTS of the open port at once, both in one request where the
// system has one. False when the system refused.
bool lowerBoth(QSerialPort &port);

// Makes the system drop DTR and RTS when the port's last descriptor closes,
// also when the process ends without closing it (a crash). False when the
// system refused.
bool hangUpOnClose(QSerialPort &port);

} // namespace seriallines
