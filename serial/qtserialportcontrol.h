#pragma once

// QtSerialPortControl, the serial-port interface on QSerialPort.

#include "serial/serialportabstract.h"

#include <QMutex>
#include <QSerialPort>

#include <atomic>

class QTimerEvent;

// SerialPortAbstract on QSerialPort. One mutex serialises every call that
// touches the port, so the object may be used from any thread; setPortName()
// and the line poll are the exceptions and take no lock.
//
// The line poll (timerEvent) watches CTS and DSR and emits ctsChanged() and
// dsrChanged() when one of them changes. It runs only after
// startLinePolling(), which nothing in the plug-in calls. Both remembered
// states start high, so a line that is already high when polling starts
// produces no signal.
//
// For PTT the lines are only ever up when set: both go down right after the
// port opens (the system raises them on open) and before it closes, and the
// system drops them when the port closes for any reason. Setting a line of a
// closed port does nothing. A port that vanishes while open (read or line
// requests fail for good) is logged once, closed, and opened again once a
// second until it works, which is logged once too.
class QtSerialPortControl : public SerialPortAbstract
{
    Q_OBJECT

public:
    explicit QtSerialPortControl(QObject *parent = nullptr);
    ~QtSerialPortControl() override;

    QString errorString() const override;
    QStringList availablePorts() const override;
    void setPortName(const QString &name) override;
    QString portName() const override;
    bool open(QIODevice::OpenMode mode) override;
    void close() override;
    bool setBaudRate(qint32 rate,
                     QSerialPort::Directions directions = QSerialPort::AllDirections) override;
    qint32 baudRate() const override;
    bool setDataBits(int code) override;
    int dataBits() const override;
    bool setParity(int code) override;
    int parity() const override;
    bool setStopBits(int code) override;
    int stopBits() const override;
    bool setFlowControl(int code) override;
    int flowControl() const override;
    bool setDataTerminalReady(bool set) override;
    bool setRequestToSend(bool set) override;
    qint64 write(QByteArray array) override;
    QByteArray readAll() override;
    void flush() override;
    void reset() override;
    bool waitForReadyRead(int msecs) override;
    bool isDataTerminalReady() const override;
    bool isRequestToSend() const override;
    bool isClearToSend() override;
    bool isDataSetReady() override;

    // Polls CTS and DSR every `msecs` on this object's thread.
    void startLinePolling(int msecs);
    void stopLinePolling();

    static constexpr int ReopenIntervalMs = 1000;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    bool openLowered(QIODevice::OpenMode mode);
    void closeLowered();
    void portError(QSerialPort::SerialPortError error);
    void reopenVanished();

    mutable QMutex m_mutex;
    QSerialPort m_port;
    int m_timerId = 0;
    std::atomic_bool m_lastCts {true};
    std::atomic_bool m_lastDsr {true};
    // Answers of isDataTerminalReady() and isRequestToSend(). Setting a line
    // does not change them.
    bool m_dataTerminalReady = false;
    bool m_requestToSend = false;
    // How the port was last opened by open(), NotOpen once close() ran: a
    // port that vanished meanwhile is opened again that way.
    QIODevice::OpenMode m_wanted = QIODevice::NotOpen;
    std::atomic_bool m_vanished {false};
};
