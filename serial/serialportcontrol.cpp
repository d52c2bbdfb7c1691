// The serial-port facade each controller owns.

#include "serial/serialportcontrol.h"

#include "serial/qtserialportcontrol.h"

SerialPortControl::SerialPortControl(QObject *parent)
    : QObject(parent)
{
    // The list owns its implementations; they have no QObject parent.
    auto *port = new QtSerialPortControl;
    m_ports.append(port);
    m_current = 0;
    connect(port, &SerialPortAbstract::ctsChanged, this, &SerialPortControl::ctsChanged);
    connect(port, &SerialPortAbstract::dsrChanged, this, &SerialPortControl::dsrChanged);
}

SerialPortControl::~SerialPortControl()
{
    // Closed now, lines low: no event loop may run after the plug-in goes.
    for (SerialPortAbstract *port : qAsConst(m_ports)) {
        port->close();
        port->deleteLater();
    }
}

SerialPortAbstract *SerialPortControl::current() const
{
    return m_ports.at(m_current);
}

qint64 SerialPortControl::write(QByteArray array)
{
    return current()->write(array);
}
