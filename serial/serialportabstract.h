#pragma once

// SerialPortAbstract, the serial port as PTT transfer drives it.

#include <QByteArray>
#include <QIODevice>
#include <QObject>
#include <QSerialPort>
#include <QString>
#include <QStringList>

// A serial port as the PTT transfer sees it. For PTT only the modem lines DTR
// and RTS are driven; no data is sent or received.
//
// Settings travel as this interface's own codes, not as QSerialPort's
// enumeration values:
//
//   code | data bits | parity | stop bits      | flow control
//   -----+-----------+--------+----------------+-------------------
//     0  |     5     | none   | one            | none
//     1  |     6     | even   | one and a half | hardware (RTS/CTS)
//     2  |     7     | odd    | two            | software (XON/XOFF)
//     3  |     8     | space  |                |
//     4  |           | mark   |                |
//
// A setter refuses a code outside its column (returns false) and leaves the
// setting as it was; the getters answer with the same codes.
//
// Implementations may be called from any thread.
class SerialPortAbstract : public QObject
{
    Q_OBJECT

public:
    explicit SerialPortAbstract(QObject *parent = nullptr);
    ~SerialPortAbstract() override;

    // The declaration order below is the order of the virtual table. Keep it.

    // The port's last error text.
    virtual QString errorString() const = 0;
    // Names of the serial ports present, in the order the system lists them.
    virtual QStringList availablePorts() const = 0;
    virtual void setPortName(const QString &name) = 0;
    virtual QString portName() const = 0;
    // Opens the port with DTR and RTS low; true on success.
    virtual bool open(QIODevice::OpenMode mode) = 0;
    // Closes the port if it is open.
    virtual void close() = 0;
    // Sets the rate of both directions, whatever `directions` says.
    virtual bool setBaudRate(qint32 rate,
                             QSerialPort::Directions directions = QSerialPort::AllDirections) = 0;
    virtual qint32 baudRate() const = 0;
    virtual bool setDataBits(int code) = 0;
    virtual int dataBits() const = 0;
    virtual bool setParity(int code) = 0;
    virtual int parity() const = 0;
    virtual bool setStopBits(int code) = 0;
    virtual int stopBits() const = 0;
    virtual bool setFlowControl(int code) = 0;
    virtual int flowControl() const = 0;
    virtual bool setDataTerminalReady(bool set) = 0;
    virtual bool setRequestToSend(bool set) = 0;

public slots:
    // Writes and flushes `array`; the count written, -1 on error.
    virtual qint64 write(QByteArray array) = 0;

public:
    virtual QByteArray readAll() = 0;
    virtual void flush() = 0;
    virtual void reset() = 0;
    virtual bool waitForReadyRead(int msecs);
    virtual bool isDataTerminalReady() const = 0;
    virtual bool isRequestToSend() const = 0;
    // Live inputs of the port.
    virtual bool isClearToSend() = 0;
    virtual bool isDataSetReady() = 0;

signals:
    void ctsChanged(bool state);
    void dsrChanged(bool state);
};
