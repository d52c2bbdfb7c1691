#pragma once

// DeviceWatcher, which reports changes of the system's device tree.

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

// Reports changes of the operating system's device tree, so that the plug-in
// can count its panels again.
//
// On Linux the watcher is a udev monitor on the event loop of the thread that
// creates it, filtered to one subsystem ("hidraw" for the panels). Every add or
// remove event it receives emits deviceChanged() once, on that thread; nothing
// is coalesced, so one plug that the kernel reports as several events gives
// several signals.
//
// On Windows the change arrives as a window message that the plug-in's native
// event filter passes to isDeviceTreeChange(); the watcher object itself stays
// inactive there.
class DeviceWatcher : public QObject
{
    Q_OBJECT

public:
    explicit DeviceWatcher(const QByteArray &subsystem = QByteArrayLiteral("hidraw"),
                           QObject *parent = nullptr);
    ~DeviceWatcher() override;

    // True when the watcher receives events.
    bool isActive() const;
    // Where the events come from: "udev" (from udevd, after its rules ran),
    // "kernel" (the kernel's own uevents, where no udevd runs) or empty when
    // the watcher is inactive.
    QString source() const;
    // Why the watcher is inactive; empty while it is active.
    QString errorString() const;

    // True for a native message that announces a change of the device tree
    // (on Windows WM_DEVICECHANGE with DBT_DEVNODES_CHANGED). Always false on
    // platforms whose changes arrive through the watcher.
    static bool isDeviceTreeChange(const QByteArray &eventType, void *message);

signals:
    void deviceChanged();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
