#pragma once

// ControlDialix, the plug-in's root object that the host loads.

#include "interfaces/dialixabstract.h"
#include "plugins/panels/dialix/source/dialix.h"

#include <QAbstractNativeEventFilter>
#include <QList>
#include <QPointer>
#include <QTabWidget>

#include <memory>

class CwKeyControlAbstract;
class DeviceWatcher;
class DialixControl;

// The plug-in's root object: what the host loads and talks to.
//
// It keeps one panel controller per connected panel (never fewer than one),
// shows each controller's options page as a tab "Dialix <n>" of one tab widget
// that the host places in its window, forwards the host's objects and settings
// to the controllers and their commands back to the host, and rebuilds the set
// of controllers whenever the system's device tree changes.
//
// Everything runs on the host's GUI thread; only the panels' reader threads
// are threads of their own.
class ControlDialix : public DialixAbstract, public QAbstractNativeEventFilter
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID DialixAbstract_iid FILE "dialix.json")
    Q_INTERFACES(DialixAbstract)

public:
    // Delay between readSettings() and the re-opening of the enabled panels.
    static constexpr int DeferredStartMs = 500;

    // The plug-in loader's: the platform's own watcher reports device changes.
    ControlDialix();
    // With another source of device changes; null makes the platform's own.
    explicit ControlDialix(std::unique_ptr<DeviceWatcher> watcher);
    ~ControlDialix() override;

    QString name() const override;
    bool addWidget(QLayout *layout) override;
    void closeDevices() override;
    void saveSettings(QSettings *settings) override;
    void readSettings(QSettings *settings) override;
    void saveExtraSettings(QSettings *settings) override;
    void readExtraSettings(QSettings *settings) override;
    void refreshState() override;
    qrvCommand *command() override;
    void setManager(DeviceManagerAbstract *manager) override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, long *result) override;

public slots:
    void setCommand(QVariant cmd) override;
    void setChannels(uint value) override;

private slots:
    void setCwKeyObject(QObject *p);
    void deviceChanged();
    void updateDevices();

private:
    // The panel cycles: device change, re-opening, closing, and the deferred
    // start after readSettings(). Closing a panel serves events for 10 ms, so a
    // cycle can be asked for while another one runs, or while a controller
    // closes its own panel; it then waits until that has ended and runs in
    // full afterwards, one cycle per request.
    enum class Cycle { DeviceChanged, UpdateDevices, CloseDevices, DeferredStart };
    using Controllers = QList<std::shared_ptr<DialixControl>>;
    void runCycle(Cycle cycle);
    void runPendingCycles();
    // Each returns false when the host deleted the root meanwhile.
    bool runOne(Cycle cycle);
    bool changeDevices();
    bool reopenPanels();
    bool closePanels(Controllers list);
    bool deferredStart();

    int deviceCount();
    std::shared_ptr<DialixControl> addController();
    void removeLastController();

    quint32 channels = 1;
    // Handed to the host by addWidget(); the host may delete it before the root.
    QPointer<QTabWidget> tabWidget;
    QSettings *settings = nullptr; // borrowed
    CwKeyControlAbstract *cwKey = nullptr; // borrowed
    DeviceManagerAbstract *manager = nullptr; // borrowed
    std::shared_ptr<qrvCommand> codec;
    Dialix probe; // only enumerates, never opened
    Controllers controllers;
    DeviceWatcher *watcher = nullptr; // child
    QList<Cycle> pendingCycles;
    bool cycleRunning = false;
    bool destroying = false;
};
