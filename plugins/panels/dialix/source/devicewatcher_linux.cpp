// The device watcher on Linux: a udev monitor on the event loop.

#include "devicewatcher.h"

#include <QFileInfo>
#include <QSocketNotifier>

#include <libudev.h>

#include <cerrno>
#include <cstring>

namespace {

// udevd announces itself through its control socket; without it (containers,
// early boot) only the kernel's own uevents arrive.
QByteArray monitorSource()
{
    return QFileInfo::exists(QStringLiteral("/run/udev/control")) ? QByteArrayLiteral("udev")
                                                                  : QByteArrayLiteral("kernel");
}

} // namespace

struct PlatformDeviceWatcher::Private
{
    QByteArray subsystem;
    QByteArray source;
    QString error;
    udev *context = nullptr;
    udev_monitor *monitor = nullptr;
    QSocketNotifier *notifier = nullptr; // child of the watcher

    ~Private()
    {
        if (monitor)
            udev_monitor_unref(monitor);
        if (context)
            udev_unref(context);
    }

    bool start()
    {
        context = udev_new();
        if (!context) {
            error = QStringLiteral("udev_new failed");
            return false;
        }
        const QByteArray wanted = monitorSource();
        monitor = udev_monitor_new_from_netlink(context, wanted.constData());
        if (!monitor) {
            error = QStringLiteral("no %1 monitor: %2")
                        .arg(QString::fromLatin1(wanted), QString::fromLocal8Bit(strerror(errno)));
            return false;
        }
        if (udev_monitor_filter_add_match_subsystem_devtype(monitor, subsystem.constData(), nullptr)
                < 0
            || udev_monitor_enable_receiving(monitor) < 0) {
            error = QStringLiteral("cannot listen to the %1 monitor: %2")
                        .arg(QString::fromLatin1(wanted), QString::fromLocal8Bit(strerror(errno)));
            return false;
        }
        source = wanted;
        return true;
    }

    // Takes one event off the socket; true when it is an add or remove in our
    // subsystem. Kernel uevents are not filtered in the socket, so the
    // subsystem is checked here as well.
    bool receive()
    {
        udev_device *dev = udev_monitor_receive_device(monitor);
        if (!dev)
            return false;
        const char *action = udev_device_get_action(dev);
        const char *sub = udev_device_get_subsystem(dev);
        const bool relevant = action && sub && subsystem == sub
            && (qstrcmp(action, "add") == 0 || qstrcmp(action, "remove") == 0);
        udev_device_unref(dev);
        return relevant;
    }
};

PlatformDeviceWatcher::PlatformDeviceWatcher(const QByteArray &subsystem, QObject *parent)
    : DeviceWatcher(parent)
    , d(new Private)
{
    d->subsystem = subsystem;
    if (!d->start())
        return;
    d->notifier = new QSocketNotifier(udev_monitor_get_fd(d->monitor), QSocketNotifier::Read, this);
    connect(d->notifier, &QSocketNotifier::activated, this, [this] {
        if (d->receive())
            emit deviceChanged();
    });
}

PlatformDeviceWatcher::~PlatformDeviceWatcher()
{
    // The notifier must go before the monitor closes its descriptor.
    delete d->notifier;
    d->notifier = nullptr;
}

bool PlatformDeviceWatcher::isActive() const
{
    return d->notifier != nullptr;
}

QString PlatformDeviceWatcher::source() const
{
    return QString::fromLatin1(d->source);
}

QString PlatformDeviceWatcher::errorString() const
{
    return d->error;
}

bool PlatformDeviceWatcher::isDeviceTreeChange(const QByteArray &eventType, void *message)
{
    Q_UNUSED(eventType)
    Q_UNUSED(message)
    return false;
}
