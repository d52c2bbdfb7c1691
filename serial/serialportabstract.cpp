// The serial-port interface's meta-object and base.

#include "serial/serialportabstract.h"

SerialPortAbstract::SerialPortAbstract(QObject *parent)
    : QObject(parent)
{ }

SerialPortAbstract::~SerialPortAbstract() = default;

bool SerialPortAbstract::waitForReadyRead(int msecs)
{
    Q_UNUSED(msecs)
    return true;
}
