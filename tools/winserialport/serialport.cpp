// QSerialPort over the Win32 COM-port calls: CreateFile on \\.\COMn,
// SetCommState for the settings, EscapeCommFunction for DTR and RTS,
// GetCommModemStatus for the input lines. Reads and writes are synchronous
// with short time-outs; a timer on the port's thread looks for received bytes
// (readyRead) and for a port that went away (ResourceError).

#include <QtSerialPort/qserialport.h>
#include <QtSerialPort/qserialportinfo.h>

#include <QDeadlineTimer>
#include <QThread>
#include <QTimer>

#include <windows.h>

QT_BEGIN_NAMESPACE

class QSerialPortPrivate
{
public:
    HANDLE handle = INVALID_HANDLE_VALUE;
    QString portName;
    qint32 baudRate = QSerialPort::Baud9600;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::Parity parity = QSerialPort::NoParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;
    QSerialPort::FlowControl flowControl = QSerialPort::NoFlowControl;
    bool dataTerminalReady = false;
    bool requestToSend = false;
    bool breakEnabled = false;
    QSerialPort::SerialPortError error = QSerialPort::NoError;
    qint64 readBufferSize = 0;
    QTimer *poll = nullptr;
};

namespace {

constexpr int PollIntervalMs = 10;

const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

QString systemMessage(DWORD code)
{
    wchar_t *buffer = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<wchar_t *>(&buffer), 0, nullptr);
    QString text = length ? QString::fromWCharArray(buffer, int(length)).trimmed()
                          : QStringLiteral("Unknown error %1").arg(code);
    LocalFree(buffer);
    return text;
}

QSerialPort::SerialPortError openErrorOf(DWORD code)
{
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return QSerialPort::DeviceNotFoundError;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return QSerialPort::PermissionError;
    default:
        return QSerialPort::OpenError;
    }
}

} // namespace

QSerialPort::QSerialPort(QObject *parent)
    : QIODevice(parent)
    , d_dummy(new QSerialPortPrivate)
{ }

QSerialPort::QSerialPort(const QString &name, QObject *parent)
    : QSerialPort(parent)
{
    setPortName(name);
}

QSerialPort::QSerialPort(const QSerialPortInfo &info, QObject *parent)
    : QSerialPort(parent)
{
    setPort(info);
}

QSerialPort::~QSerialPort()
{
    if (isOpen())
        close();
    delete d_dummy;
}

void QSerialPort::setPortName(const QString &name)
{
    d_dummy->portName = name.startsWith(QLatin1String("\\\\.\\")) ? name.mid(4) : name;
}

QString QSerialPort::portName() const
{
    return d_dummy->portName;
}

void QSerialPort::setPort(const QSerialPortInfo &info)
{
    setPortName(info.portName());
}

// Records the error and tells whoever listens; NoError only clears.
static void reportError(QSerialPort *port, QSerialPortPrivate *d,
                        QSerialPort::SerialPortError error)
{
    d->error = error;
    if (error == QSerialPort::NoError)
        return;
    emit port->errorOccurred(error);
#if QT_DEPRECATED_SINCE(5, 8)
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    emit port->error(error);
    QT_WARNING_POP
#endif
}

namespace {

bool applySettings(QSerialPortPrivate *d)
{
    DCB dcb;
    ZeroMemory(&dcb, sizeof(dcb));
    dcb.DCBlength = sizeof(dcb);
    if (!GetCommState(d->handle, &dcb))
        return false;
    dcb.fBinary = TRUE;
    dcb.BaudRate = DWORD(d->baudRate);
    dcb.ByteSize = BYTE(d->dataBits);
    switch (d->parity) {
    case QSerialPort::EvenParity:
        dcb.Parity = EVENPARITY;
        break;
    case QSerialPort::OddParity:
        dcb.Parity = ODDPARITY;
        break;
    case QSerialPort::SpaceParity:
        dcb.Parity = SPACEPARITY;
        break;
    case QSerialPort::MarkParity:
        dcb.Parity = MARKPARITY;
        break;
    default:
        dcb.Parity = NOPARITY;
        break;
    }
    dcb.fParity = dcb.Parity != NOPARITY;
    dcb.StopBits = d->stopBits == QSerialPort::TwoStop ? TWOSTOPBITS
        : d->stopBits == QSerialPort::OneAndHalfStop   ? ONE5STOPBITS
                                                       : ONESTOPBIT;
    const bool hardware = d->flowControl == QSerialPort::HardwareControl;
    const bool software = d->flowControl == QSerialPort::SoftwareControl;
    dcb.fOutxCtsFlow = hardware;
    dcb.fOutxDsrFlow = FALSE;
    dcb.fRtsControl = hardware ? RTS_CONTROL_HANDSHAKE
        : d->requestToSend     ? RTS_CONTROL_ENABLE
                               : RTS_CONTROL_DISABLE;
    dcb.fDtrControl = d->dataTerminalReady ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
    dcb.fOutX = software;
    dcb.fInX = software;
    return SetCommState(d->handle, &dcb);
}

} // namespace

#define FAIL(error, text)                                                                          \
    do {                                                                                           \
        setErrorString(text);                                                                      \
        reportError(this, d_dummy, (error));                                                       \
    } while (false)

bool QSerialPort::open(OpenMode mode)
{
    QSerialPortPrivate *d = d_dummy;
    if (isOpen()) {
        FAIL(OpenError, QStringLiteral("The device is already open"));
        return false;
    }
    if (!(mode & ReadWrite) || (mode & ~(ReadWrite | Unbuffered))) {
        FAIL(UnsupportedOperationError, QStringLiteral("Unsupported open mode"));
        return false;
    }
    DWORD access = 0;
    if (mode & ReadOnly)
        access |= GENERIC_READ;
    if (mode & WriteOnly)
        access |= GENERIC_WRITE;
    const QString device = QLatin1String("\\\\.\\") + d->portName;
    d->handle = CreateFileW(wide(device), access, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (d->handle == INVALID_HANDLE_VALUE) {
        const DWORD code = GetLastError();
        FAIL(openErrorOf(code), systemMessage(code));
        return false;
    }
    COMMTIMEOUTS timeouts;
    ZeroMemory(&timeouts, sizeof(timeouts));
    timeouts.ReadIntervalTimeout = MAXDWORD; // a read returns what is there
    timeouts.WriteTotalTimeoutConstant = 5000;
    if (!applySettings(d) || !SetCommTimeouts(d->handle, &timeouts)) {
        const DWORD code = GetLastError();
        CloseHandle(d->handle);
        d->handle = INVALID_HANDLE_VALUE;
        FAIL(OpenError, systemMessage(code));
        return false;
    }
    PurgeComm(d->handle, PURGE_RXCLEAR | PURGE_TXCLEAR);
    QIODevice::open(mode);
    FAIL(NoError, QString());
    d->poll = new QTimer(this);
    d->poll->setInterval(PollIntervalMs);
    connect(d->poll, &QTimer::timeout, this, [this, d] {
        DWORD errors = 0;
        COMSTAT status;
        if (!ClearCommError(d->handle, &errors, &status)) {
            const DWORD code = GetLastError();
            d->poll->stop();
            FAIL(ResourceError, systemMessage(code));
            return;
        }
        if (status.cbInQue > 0 && (openMode() & ReadOnly))
            emit readyRead();
    });
    d->poll->start();
    return true;
}

void QSerialPort::close()
{
    QSerialPortPrivate *d = d_dummy;
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return;
    }
    delete d->poll;
    d->poll = nullptr;
    QIODevice::close();
    CloseHandle(d->handle);
    d->handle = INVALID_HANDLE_VALUE;
}

#if QT_DEPRECATED_SINCE(5, 3)
void QSerialPort::setSettingsRestoredOnClose(bool restore)
{
    Q_UNUSED(restore)
}

bool QSerialPort::settingsRestoredOnClose() const
{
    return false;
}
#endif

// A setting changes at once on an open port, and is kept for the next open.
#define SETTING(member, value, signal)                                                             \
    do {                                                                                           \
        const auto previous = d_dummy->member;                                                     \
        d_dummy->member = (value);                                                                 \
        if (isOpen() && !applySettings(d_dummy)) {                                                 \
            d_dummy->member = previous;                                                            \
            FAIL(UnsupportedOperationError, systemMessage(GetLastError()));                        \
            return false;                                                                          \
        }                                                                                          \
        if (previous != d_dummy->member)                                                           \
            emit signal;                                                                           \
        return true;                                                                               \
    } while (false)

bool QSerialPort::setBaudRate(qint32 baudRate, Directions directions)
{
    if (directions != AllDirections) {
        FAIL(UnsupportedOperationError, QStringLiteral("Windows has one rate for both directions"));
        return false;
    }
    SETTING(baudRate, baudRate, baudRateChanged(baudRate, AllDirections));
}

qint32 QSerialPort::baudRate(Directions directions) const
{
    Q_UNUSED(directions)
    return d_dummy->baudRate;
}

bool QSerialPort::setDataBits(DataBits dataBits)
{
    SETTING(dataBits, dataBits, dataBitsChanged(dataBits));
}

QSerialPort::DataBits QSerialPort::dataBits() const
{
    return d_dummy->dataBits;
}

bool QSerialPort::setParity(Parity parity)
{
    SETTING(parity, parity, parityChanged(parity));
}

QSerialPort::Parity QSerialPort::parity() const
{
    return d_dummy->parity;
}

bool QSerialPort::setStopBits(StopBits stopBits)
{
    SETTING(stopBits, stopBits, stopBitsChanged(stopBits));
}

QSerialPort::StopBits QSerialPort::stopBits() const
{
    return d_dummy->stopBits;
}

bool QSerialPort::setFlowControl(FlowControl flowControl)
{
    SETTING(flowControl, flowControl, flowControlChanged(flowControl));
}

QSerialPort::FlowControl QSerialPort::flowControl() const
{
    return d_dummy->flowControl;
}

bool QSerialPort::setDataTerminalReady(bool set)
{
    QSerialPortPrivate *d = d_dummy;
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return false;
    }
    if (!EscapeCommFunction(d->handle, set ? SETDTR : CLRDTR)) {
        FAIL(UnsupportedOperationError, systemMessage(GetLastError()));
        return false;
    }
    if (d->dataTerminalReady != set) {
        d->dataTerminalReady = set;
        emit dataTerminalReadyChanged(set);
    }
    return true;
}

bool QSerialPort::isDataTerminalReady()
{
    return d_dummy->dataTerminalReady;
}

bool QSerialPort::setRequestToSend(bool set)
{
    QSerialPortPrivate *d = d_dummy;
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return false;
    }
    if (d->flowControl == HardwareControl) {
        FAIL(UnsupportedOperationError, QStringLiteral("RTS belongs to hardware flow control"));
        return false;
    }
    if (!EscapeCommFunction(d->handle, set ? SETRTS : CLRRTS)) {
        FAIL(UnsupportedOperationError, systemMessage(GetLastError()));
        return false;
    }
    if (d->requestToSend != set) {
        d->requestToSend = set;
        emit requestToSendChanged(set);
    }
    return true;
}

bool QSerialPort::isRequestToSend()
{
    return d_dummy->requestToSend;
}

QSerialPort::PinoutSignals QSerialPort::pinoutSignals()
{
    QSerialPortPrivate *d = d_dummy;
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return NoSignal;
    }
    DWORD status = 0;
    if (!GetCommModemStatus(d->handle, &status)) {
        FAIL(UnsupportedOperationError, systemMessage(GetLastError()));
        return NoSignal;
    }
    PinoutSignals pins = NoSignal;
    if (status & MS_CTS_ON)
        pins |= ClearToSendSignal;
    if (status & MS_DSR_ON)
        pins |= DataSetReadySignal;
    if (status & MS_RING_ON)
        pins |= RingIndicatorSignal;
    if (status & MS_RLSD_ON)
        pins |= DataCarrierDetectSignal;
    if (d->dataTerminalReady)
        pins |= DataTerminalReadySignal;
    if (d->requestToSend)
        pins |= RequestToSendSignal;
    return pins;
}

bool QSerialPort::flush()
{
    return isOpen() && FlushFileBuffers(d_dummy->handle);
}

bool QSerialPort::clear(Directions directions)
{
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return false;
    }
    DWORD flags = 0;
    if (directions & Input)
        flags |= PURGE_RXABORT | PURGE_RXCLEAR;
    if (directions & Output)
        flags |= PURGE_TXABORT | PURGE_TXCLEAR;
    return PurgeComm(d_dummy->handle, flags);
}

bool QSerialPort::atEnd() const
{
    return QIODevice::atEnd() && bytesAvailable() == 0;
}

#if QT_DEPRECATED_SINCE(5, 2)
bool QSerialPort::setDataErrorPolicy(DataErrorPolicy policy)
{
    return policy == IgnorePolicy;
}

QSerialPort::DataErrorPolicy QSerialPort::dataErrorPolicy() const
{
    return IgnorePolicy;
}
#endif

QSerialPort::SerialPortError QSerialPort::error() const
{
    return d_dummy->error;
}

void QSerialPort::clearError()
{
    FAIL(NoError, QString());
}

qint64 QSerialPort::readBufferSize() const
{
    return d_dummy->readBufferSize;
}

void QSerialPort::setReadBufferSize(qint64 size)
{
    d_dummy->readBufferSize = size;
}

bool QSerialPort::isSequential() const
{
    return true;
}

qint64 QSerialPort::bytesAvailable() const
{
    qint64 waiting = 0;
    DWORD errors = 0;
    COMSTAT status;
    if (isOpen() && ClearCommError(d_dummy->handle, &errors, &status))
        waiting = status.cbInQue;
    return QIODevice::bytesAvailable() + waiting;
}

qint64 QSerialPort::bytesToWrite() const
{
    return 0; // writes finish before write() returns
}

bool QSerialPort::canReadLine() const
{
    return QIODevice::canReadLine();
}

bool QSerialPort::waitForReadyRead(int msecs)
{
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return false;
    }
    QDeadlineTimer deadline(msecs);
    for (;;) {
        DWORD errors = 0;
        COMSTAT status;
        if (!ClearCommError(d_dummy->handle, &errors, &status)) {
            FAIL(ResourceError, systemMessage(GetLastError()));
            return false;
        }
        if (status.cbInQue > 0) {
            emit readyRead();
            return true;
        }
        if (deadline.hasExpired()) {
            FAIL(TimeoutError, QStringLiteral("Operation timed out"));
            return false;
        }
        QThread::msleep(1);
    }
}

bool QSerialPort::waitForBytesWritten(int msecs)
{
    Q_UNUSED(msecs)
    return isOpen();
}

#if QT_DEPRECATED_SINCE(5, 5)
bool QSerialPort::sendBreak(int duration)
{
    if (!setBreakEnabled(true))
        return false;
    Sleep(DWORD(qMax(duration, 0)));
    return setBreakEnabled(false);
}
#endif

bool QSerialPort::setBreakEnabled(bool set)
{
    if (!isOpen()) {
        FAIL(NotOpenError, QStringLiteral("The device is not open"));
        return false;
    }
    if (!(set ? SetCommBreak(d_dummy->handle) : ClearCommBreak(d_dummy->handle))) {
        FAIL(UnsupportedOperationError, systemMessage(GetLastError()));
        return false;
    }
    if (d_dummy->breakEnabled != set) {
        d_dummy->breakEnabled = set;
        emit breakEnabledChanged(set);
    }
    return true;
}

bool QSerialPort::isBreakEnabled() const
{
    return d_dummy->breakEnabled;
}

QSerialPort::Handle QSerialPort::handle() const
{
    return d_dummy->handle;
}

qint64 QSerialPort::readData(char *data, qint64 maxSize)
{
    DWORD got = 0;
    if (!ReadFile(d_dummy->handle, data, DWORD(qMin<qint64>(maxSize, MAXDWORD)), &got, nullptr)) {
        FAIL(ReadError, systemMessage(GetLastError()));
        return -1;
    }
    return got;
}

qint64 QSerialPort::readLineData(char *data, qint64 maxSize)
{
    return QIODevice::readLineData(data, maxSize);
}

qint64 QSerialPort::writeData(const char *data, qint64 maxSize)
{
    DWORD written = 0;
    if (!WriteFile(d_dummy->handle, data, DWORD(qMin<qint64>(maxSize, MAXDWORD)), &written,
                   nullptr)) {
        FAIL(WriteError, systemMessage(GetLastError()));
        return -1;
    }
    if (written > 0)
        emit bytesWritten(written);
    return written;
}

QT_END_NAMESPACE
