// QSerialPortInfo over the registry's map of serial ports
// (HKLM\HARDWARE\DEVICEMAP\SERIALCOMM: one value per port, its data the name).

#include <QtSerialPort/qserialport.h>
#include <QtSerialPort/qserialportinfo.h>

#include <windows.h>

QT_BEGIN_NAMESPACE

class QSerialPortInfoPrivate
{
public:
    QString portName;
    QString device;
    QString description;
    QString manufacturer;
    QString serialNumber;
    quint16 vendorIdentifier = 0;
    quint16 productIdentifier = 0;
    bool hasVendorIdentifier = false;
    bool hasProductIdentifier = false;
};

class QSerialPortInfoPrivateDeleter
{
public:
    static void cleanup(QSerialPortInfoPrivate *p) { delete p; }
};

namespace {

QString deviceOf(const QString &portName)
{
    return portName.startsWith(QLatin1String("\\\\.\\")) ? portName
                                                         : QLatin1String("\\\\.\\") + portName;
}

QString portNameOf(const QString &name)
{
    return name.startsWith(QLatin1String("\\\\.\\")) ? name.mid(4) : name;
}

QSerialPortInfoPrivate *infoFor(const QString &name)
{
    auto *d = new QSerialPortInfoPrivate;
    d->portName = portNameOf(name);
    d->device = deviceOf(d->portName);
    return d;
}

} // namespace

QSerialPortInfo::QSerialPortInfo() = default;

QSerialPortInfo::QSerialPortInfo(const QSerialPort &port)
    : QSerialPortInfo(port.portName())
{ }

QSerialPortInfo::QSerialPortInfo(const QString &name)
{
    for (const QSerialPortInfo &info : availablePorts()) {
        if (info.portName() == portNameOf(name)) {
            *this = info;
            return;
        }
    }
    d_ptr.reset(infoFor(name));
}

QSerialPortInfo::QSerialPortInfo(const QSerialPortInfo &other)
    : d_ptr(other.d_ptr ? new QSerialPortInfoPrivate(*other.d_ptr) : nullptr)
{ }

QSerialPortInfo::QSerialPortInfo(const QSerialPortInfoPrivate &dd)
    : d_ptr(new QSerialPortInfoPrivate(dd))
{ }

QSerialPortInfo::~QSerialPortInfo() = default;

QSerialPortInfo &QSerialPortInfo::operator=(const QSerialPortInfo &other)
{
    QSerialPortInfo copy(other);
    swap(copy);
    return *this;
}

void QSerialPortInfo::swap(QSerialPortInfo &other)
{
    d_ptr.swap(other.d_ptr);
}

QString QSerialPortInfo::portName() const
{
    return d_ptr ? d_ptr->portName : QString();
}

QString QSerialPortInfo::systemLocation() const
{
    return d_ptr ? d_ptr->device : QString();
}

QString QSerialPortInfo::description() const
{
    return d_ptr ? d_ptr->description : QString();
}

QString QSerialPortInfo::manufacturer() const
{
    return d_ptr ? d_ptr->manufacturer : QString();
}

QString QSerialPortInfo::serialNumber() const
{
    return d_ptr ? d_ptr->serialNumber : QString();
}

quint16 QSerialPortInfo::vendorIdentifier() const
{
    return d_ptr ? d_ptr->vendorIdentifier : 0;
}

quint16 QSerialPortInfo::productIdentifier() const
{
    return d_ptr ? d_ptr->productIdentifier : 0;
}

bool QSerialPortInfo::hasVendorIdentifier() const
{
    return d_ptr && d_ptr->hasVendorIdentifier;
}

bool QSerialPortInfo::hasProductIdentifier() const
{
    return d_ptr && d_ptr->hasProductIdentifier;
}

#if QT_DEPRECATED_SINCE(5, 6)
bool QSerialPortInfo::isBusy() const
{
    if (!d_ptr)
        return false;
    HANDLE handle =
        CreateFileW(reinterpret_cast<const wchar_t *>(d_ptr->device.utf16()),
                    GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_ACCESS_DENIED;
    CloseHandle(handle);
    return false;
}
#endif

#if QT_DEPRECATED_SINCE(5, 2)
bool QSerialPortInfo::isValid() const
{
    return !isNull();
}
#endif

QList<qint32> QSerialPortInfo::standardBaudRates()
{
    return {110,   300,   600,   1200,  2400,   4800,   9600,  14400,
            19200, 38400, 56000, 57600, 115200, 128000, 256000};
}

QList<QSerialPortInfo> QSerialPortInfo::availablePorts()
{
    QList<QSerialPortInfo> ports;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_QUERY_VALUE,
                      &key)
        != ERROR_SUCCESS)
        return ports;
    for (DWORD index = 0;; ++index) {
        wchar_t name[256];
        DWORD nameLength = 256;
        wchar_t data[256];
        DWORD dataSize = sizeof(data) - sizeof(wchar_t);
        DWORD type = 0;
        const LONG rc = RegEnumValueW(key, index, name, &nameLength, nullptr, &type,
                                      reinterpret_cast<BYTE *>(data), &dataSize);
        if (rc == ERROR_NO_MORE_ITEMS)
            break;
        if (rc != ERROR_SUCCESS || type != REG_SZ)
            continue;
        data[dataSize / sizeof(wchar_t)] = L'\0';
        const QString portName = QString::fromWCharArray(data);
        if (portName.isEmpty())
            continue;
        QScopedPointer<QSerialPortInfoPrivate> d(infoFor(portName));
        d->description = QString::fromWCharArray(name, int(nameLength));
        ports.append(QSerialPortInfo(*d));
    }
    RegCloseKey(key);
    return ports;
}

QT_END_NAMESPACE
