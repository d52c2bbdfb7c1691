// The device watcher on Windows: the root's native event filter does the work.

#include "devicewatcher.h"

#include <windows.h>

#include <dbt.h>

// Windows announces every change of its device tree with WM_DEVICECHANGE /
// DBT_DEVNODES_CHANGED to all top-level windows; the plug-in's native event
// filter sees them and asks isDeviceTreeChange(). No device-interface
// notification is registered, so the watcher object has nothing to do.

struct PlatformDeviceWatcher::Private
{
};

PlatformDeviceWatcher::PlatformDeviceWatcher(const QByteArray &subsystem, QObject *parent)
    : DeviceWatcher(parent)
    , d(new Private)
{
    Q_UNUSED(subsystem)
}

PlatformDeviceWatcher::~PlatformDeviceWatcher() = default;

bool PlatformDeviceWatcher::isActive() const
{
    return false;
}

QString PlatformDeviceWatcher::source() const
{
    return QString();
}

QString PlatformDeviceWatcher::errorString() const
{
    return QStringLiteral("device changes arrive as window messages");
}

bool PlatformDeviceWatcher::isDeviceTreeChange(const QByteArray &eventType, void *message)
{
    Q_UNUSED(eventType)
    const MSG *msg = static_cast<const MSG *>(message);
    return msg && msg->message == WM_DEVICECHANGE && msg->wParam == DBT_DEVNODES_CHANGED;
}
