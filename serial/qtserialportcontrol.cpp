// The serial-port interface on QSerialPort.

#include "serial/qtserialportcontrol.h"

#include "interfaces/dialixlogging.h"
#include "serial/seriallines.h"

#include <QMutexLocker>
#include <QSerialPortInfo>
#include <QTimer>
#include <QTimerEvent>

#include <cstddef>
#include <iterator>

namespace {

// The interface's setting codes are the positions in these tables.
// clang-format off
constexpr QSerialPort::DataBits kDataBits[] = {
    QSerialPort::Data5,          // 0
    QSerialPort::Data6,          // 1
    QSerialPort::Data7,          // 2
    QSerialPort::Data8,          // 3
};
constexpr QSerialPort::Parity kParity[] = {
    QSerialPort::NoParity,       // 0
    QSerialPort::EvenParity,     // 1
    QSerialPort::OddParity,      // 2
    QSerialPort::SpaceParity,    // 3
    QSerialPort::MarkParity,     // 4
};
constexpr QSerialPort::StopBits kStopBits[] = {
    QSerialPort::OneStop,        // 0
    QSerialPort::OneAndHalfStop, // 1
    QSerialPort::TwoStop,        // 2
};
constexpr QSerialPort::FlowControl kFlowControl[] = {
    QSerialPort::NoFlowControl,   // 0
    QSerialPort::HardwareControl, // 1
    QSerialPort::SoftwareControl, // 2
};
// clang-format on

// The value for `code`, or nullptr when the table has no such code.
template<typename T, std::size_t N>
const T *valueOf(const T (&table)[N], int code)
{
    if (code < 0 || static_cast<std::size_t>(code) >= N)
        return nullptr;
    return &table[code];
}

// The code of `value`, or -1 when the table does not hold it.
template<typename T, std::size_t N>
int codeOf(const T (&table)[N], T value)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (table[i] == value)
            return static_cast<int>(i);
    }
    return -1;
}

} // namespace

QtSerialPortControl::QtSerialPortControl(QObject *parent)
    : SerialPortAbstract(parent)
{
    connect(&m_port, &QSerialPort::errorOccurred, this, &QtSerialPortControl::portError);
}

QtSerialPortControl::~QtSerialPortControl()
{
    close();
}

QString QtSerialPortControl::errorString() const
{
    QMutexLocker locker(&m_mutex);
    return m_port.errorString();
}

QStringList QtSerialPortControl::availablePorts() const
{
    QMutexLocker locker(&m_mutex);
    QStringList names;
    const auto ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &info : ports)
        names.append(info.portName());
    return names;
}

void QtSerialPortControl::setPortName(const QString &name)
{
    m_port.setPortName(name);
}

QString QtSerialPortControl::portName() const
{
    QMutexLocker locker(&m_mutex);
    return m_port.portName();
}

bool QtSerialPortControl::open(QIODevice::OpenMode mode)
{
    QMutexLocker locker(&m_mutex);
    // Where the platform keeps line settings across an open, the lines are
    // low before the port opens.
    m_port.setDataTerminalReady(false);
    m_port.setRequestToSend(false);
    m_port.setReadBufferSize(4096);
    if (!openLowered(mode))
        return false;
    m_wanted = mode;
    if (m_vanished.exchange(false))
        qCDebug(dialixLog, "%s: %s works again", Q_FUNC_INFO, qUtf8Printable(m_port.portName()));
    return true;
}

// Opening a tty on Linux raises DTR and RTS, and a PTT line that is up keys
// the transmitter: both go down again at once, before anything else, and the
// tty drops them by itself when it closes (also when the process dies).
bool QtSerialPortControl::openLowered(QIODevice::OpenMode mode)
{
    if (!m_port.open(mode))
        return false;
    seriallines::lowerBoth(m_port);
    seriallines::hangUpOnClose(m_port);
    return true;
}

void QtSerialPortControl::close()
{
    QMutexLocker locker(&m_mutex);
    m_wanted = QIODevice::NotOpen;
    closeLowered();
}

void QtSerialPortControl::closeLowered()
{
    if (!m_port.isOpen())
        return;
    seriallines::lowerBoth(m_port);
    m_port.close();
}

// A port that vanishes (a USB adapter pulled out) fails every request from
// then on. It is said once, the dead port is closed, so that the adapter gets
// its name back when it returns, and opened again once a second until it
// works. Runs inside the failing request, which may hold the lock.
void QtSerialPortControl::portError(QSerialPort::SerialPortError error)
{
    if (error != QSerialPort::ResourceError && error != QSerialPort::ReadError)
        return;
    if (m_vanished.exchange(true))
        return;
    // A failed read of a vanished tty carries whatever error came before.
    qCDebug(dialixLog, "%s: %s fails: %s", Q_FUNC_INFO, qUtf8Printable(m_port.portName()),
            error == QSerialPort::ReadError ? "reads fail" : qUtf8Printable(m_port.errorString()));
    QMetaObject::invokeMethod(this, &QtSerialPortControl::reopenVanished, Qt::QueuedConnection);
}

void QtSerialPortControl::reopenVanished()
{
    QMutexLocker locker(&m_mutex);
    if (!m_vanished || m_wanted == QIODevice::NotOpen)
        return;
    closeLowered();
    if (openLowered(m_wanted)) {
        m_vanished = false;
        qCDebug(dialixLog, "%s: %s works again", Q_FUNC_INFO, qUtf8Printable(m_port.portName()));
        return;
    }
    QTimer::singleShot(ReopenIntervalMs, this, &QtSerialPortControl::reopenVanished);
}

bool QtSerialPortControl::setBaudRate(qint32 rate, QSerialPort::Directions directions)
{
    Q_UNUSED(directions)
    QMutexLocker locker(&m_mutex);
    m_port.setBaudRate(rate, QSerialPort::AllDirections);
    return true;
}

qint32 QtSerialPortControl::baudRate() const
{
    QMutexLocker locker(&m_mutex);
    return m_port.baudRate(QSerialPort::AllDirections);
}

bool QtSerialPortControl::setDataBits(int code)
{
    QMutexLocker locker(&m_mutex);
    const auto *value = valueOf(kDataBits, code);
    return value && m_port.setDataBits(*value);
}

int QtSerialPortControl::dataBits() const
{
    QMutexLocker locker(&m_mutex);
    return codeOf(kDataBits, m_port.dataBits());
}

bool QtSerialPortControl::setParity(int code)
{
    QMutexLocker locker(&m_mutex);
    const auto *value = valueOf(kParity, code);
    return value && m_port.setParity(*value);
}

int QtSerialPortControl::parity() const
{
    QMutexLocker locker(&m_mutex);
    return codeOf(kParity, m_port.parity());
}

bool QtSerialPortControl::setStopBits(int code)
{
    QMutexLocker locker(&m_mutex);
    const auto *value = valueOf(kStopBits, code);
    return value && m_port.setStopBits(*value);
}

int QtSerialPortControl::stopBits() const
{
    QMutexLocker locker(&m_mutex);
    return codeOf(kStopBits, m_port.stopBits());
}

bool QtSerialPortControl::setFlowControl(int code)
{
    QMutexLocker locker(&m_mutex);
    const auto *value = valueOf(kFlowControl, code);
    return value && m_port.setFlowControl(*value);
}

int QtSerialPortControl::flowControl() const
{
    QMutexLocker locker(&m_mutex);
    return codeOf(kFlowControl, m_port.flowControl());
}

// A closed port (never opened, disabled, or gone) has no lines to drive.
bool QtSerialPortControl::setDataTerminalReady(bool set)
{
    QMutexLocker locker(&m_mutex);
    if (m_port.isOpen())
        m_port.setDataTerminalReady(set);
    return true;
}

bool QtSerialPortControl::setRequestToSend(bool set)
{
    QMutexLocker locker(&m_mutex);
    if (m_port.isOpen())
        m_port.setRequestToSend(set);
    return true;
}

qint64 QtSerialPortControl::write(QByteArray array)
{
    QMutexLocker locker(&m_mutex);
    const qint64 written = m_port.write(array);
    if (written != array.size())
        qCDebug(dialixLog, "%s failed to write data, %s", Q_FUNC_INFO,
                qUtf8Printable(m_port.errorString()));
    if (!m_port.flush())
        qCDebug(dialixLog, "%s failed to flush", Q_FUNC_INFO);
    return written;
}

QByteArray QtSerialPortControl::readAll()
{
    QMutexLocker locker(&m_mutex);
    return m_port.readAll();
}

void QtSerialPortControl::flush()
{
    QMutexLocker locker(&m_mutex);
    m_port.flush();
}

void QtSerialPortControl::reset()
{
    QMutexLocker locker(&m_mutex);
    m_port.reset();
}

bool QtSerialPortControl::waitForReadyRead(int msecs)
{
    QMutexLocker locker(&m_mutex);
    return m_port.waitForReadyRead(msecs);
}

bool QtSerialPortControl::isDataTerminalReady() const
{
    QMutexLocker locker(&m_mutex);
    return m_dataTerminalReady;
}

bool QtSerialPortControl::isRequestToSend() const
{
    QMutexLocker locker(&m_mutex);
    return m_requestToSend;
}

bool QtSerialPortControl::isClearToSend()
{
    QMutexLocker locker(&m_mutex);
    return m_port.pinoutSignals().testFlag(QSerialPort::ClearToSendSignal);
}

bool QtSerialPortControl::isDataSetReady()
{
    QMutexLocker locker(&m_mutex);
    return m_port.pinoutSignals().testFlag(QSerialPort::DataSetReadySignal);
}

void QtSerialPortControl::startLinePolling(int msecs)
{
    stopLinePolling();
    m_timerId = startTimer(msecs);
}

void QtSerialPortControl::stopLinePolling()
{
    if (m_timerId != 0) {
        killTimer(m_timerId);
        m_timerId = 0;
    }
}

void QtSerialPortControl::timerEvent(QTimerEvent *event)
{
    if (m_timerId == 0 || event->timerId() != m_timerId) {
        SerialPortAbstract::timerEvent(event);
        return;
    }
    // Runs on this object's thread without the lock: it only reads the pins.
    const QSerialPort::PinoutSignals pins = m_port.pinoutSignals();
    const bool cts = pins.testFlag(QSerialPort::ClearToSendSignal);
    if (m_lastCts.exchange(cts) != cts)
        emit ctsChanged(cts);
    const bool dsr = pins.testFlag(QSerialPort::DataSetReadySignal);
    if (m_lastDsr.exchange(dsr) != dsr)
        emit dsrChanged(dsr);
}
