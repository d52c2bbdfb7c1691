#pragma once

// SerialPortControl, the serial-port facade each controller owns.

#include <QList>
#include <QObject>

class SerialPortAbstract;

// The serial port a controller owns for PTT transfer. It holds the port
// implementations (one QtSerialPortControl today) and passes its callers on to
// the current one:
//
//     port->setPortName(name);
//     if (port->open(QIODevice::ReadWrite)) ...
//     port->setDataTerminalReady(ptt);
//
// ctsChanged() and dsrChanged() of the current implementation are re-emitted
// as this object's own.
class SerialPortControl : public QObject
{
    Q_OBJECT

public:
    explicit SerialPortControl(QObject *parent = nullptr);
    // The implementations are released with deleteLater().
    ~SerialPortControl() override;

    SerialPortAbstract *current() const;
    SerialPortAbstract *operator->() const { return current(); }

public slots:
    // Writes through the current implementation.
    qint64 write(QByteArray array);

signals:
    void ctsChanged(bool state);
    void dsrChanged(bool state);

private:
    QList<SerialPortAbstract *> m_ports;
    int m_current = 0;
};
