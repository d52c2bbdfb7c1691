#pragma once

// DeviceWatcher, the source of device-tree changes that the root listens to,
// and PlatformDeviceWatcher, the operating system's own.

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

// Reports changes of the device tree, so that the plug-in can count its panels
// again: one deviceChanged() per reported change, on the thread the watcher
// lives in. The root takes any watcher; it makes the platform's own unless it
// is handed another one.
class DeviceWatcher : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // True when the watcher receives events.
    virtual bool isActive() const = 0;
    // Where the events come from; empty when the watcher is inactive.
    virtual QString source() const = 0;
    // Why the watcher is inactive; empty while it is active.
    virtual QString errorString() const = 0;

signals:
    void deviceChanged();
};

// The operating system's device-tree changes.
//
// On Linux a udev monitor on the event loop of the thread that creates it,
// filtered to one subsystem ("hidraw" for the panels). Every add or remove
// event it receives emits deviceChanged() once; nothing is coalesced, so one
// plug that the kernel reports as several events gives several signals.
// source() is "udev" (from udevd, after its rules ran) or "kernel" (the
// kernel's own uevents, where no udevd runs).
//
// On Windows the change arrives as a window message that the plug-in's native
// event filter passes to isDeviceTreeChange(); the watcher object itself stays
// inactive there.
class PlatformDeviceWatcher : public DeviceWatcher
{
    Q_OBJECT

public:
    explicit PlatformDeviceWatcher(const QByteArray &subsystem = QByteArrayLiteral("hidraw"),
                                   QObject *parent = nullptr);
    ~PlatformDeviceWatcher() override;

    bool isActive() const override;
    QString source() const override;
    QString errorString() const override;

    // True for a native message that announces a change of the device tree
    // (on Windows WM_DEVICECHANGE with DBT_DEVNODES_CHANGED). Always false on
    // platforms whose changes arrive through the watcher.
    static bool isDeviceTreeChange(const QByteArray &eventType, void *message);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
