// The plug-in's root: controllers per panel, tabs, host hand-over, hot-plug.

#include "controldialix.h"

#include "command/commandtable.h"
#include "command/qrvcommand.h"
#include "interfaces/cwkeycontrolabstract.h"
#include "interfaces/devicemanagerabstract.h"
#include "interfaces/dialixlogging.h"
#include "plugins/panels/dialix/source/devicewatcher.h"
#include "plugins/panels/dialix/source/dialixcontrol.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/dialixtranslation.h"

#include <QCoreApplication>
#include <QLayout>
#include <QPointer>
#include <QSettings>
#include <QTabWidget>
#include <QTimer>

#include <hidapi.h>

#include <future>
#include <system_error>

namespace {

// Keeps a controller whose panel is closing right now, further up this
// thread's stack (the host deleted the root from inside that), until the
// close has returned.
void keepWhileClosing(std::shared_ptr<DialixControl> controller)
{
    if (!controller->panel().isClosing())
        return;
    QTimer::singleShot(Dialix::CloseWaitMs, QCoreApplication::instance(),
                       [controller] { keepWhileClosing(controller); });
}

// The page is gone when the host has deleted the tab widget that held it.
bool enabled(const DialixControl &controller)
{
    const DialixOptions *page = controller.optionsWidget();
    return page && page->isEnabledChecked();
}

// The codecs learn the CW-key object from the same announcement the host sends.
void giveCwKey(DialixControl &controller, CwKeyControlAbstract *key)
{
    controller.command()->setCommand(QVariantList {int(qrv::Id::setCWKeyObject),
                                                   QVariant::fromValue(qulonglong(quintptr(key)))});
}

} // namespace

ControlDialix::ControlDialix()
    : ControlDialix(nullptr)
{ }

ControlDialix::ControlDialix(std::unique_ptr<DeviceWatcher> otherWatcher)
    : DialixAbstract(nullptr)
{
    // Every text of the pages built below is looked up in the operator's
    // language: the system's, unless the host has set a default locale of its own.
    installDialixTranslator(QLocale());
    setObjectName(QStringLiteral("ControlDialix"));

    // The panel's events are queued from its reader thread.
    qRegisterMetaType<Dialix::Buttons>("Dialix::Buttons");
    qRegisterMetaType<Dialix::Dials>("Dialix::Dials");
    qRegisterMetaType<Dialix::DialButtons>("Dialix::DialButtons");

    codec = std::make_shared<qrvCommand>();

    hid_init();
    channels = 1;

    tabWidget = new QTabWidget;
    tabWidget->setObjectName(QStringLiteral("DialixmainTab"));

    // Every controller reads the plug-in's own file here, whether or not the
    // host has handed over settings yet. The panels are counted anew after
    // each controller.
    int target = qMax(deviceCount(), 1);
    for (int i = 0; i < target; ++i) {
        std::shared_ptr<DialixControl> controller = addController();
        controller->loadOptions();
        target = qMax(deviceCount(), 1);
    }

    if (QCoreApplication *app = QCoreApplication::instance())
        app->installNativeEventFilter(this);

    // The panels' own subsystem: a change of any hidraw node counts them again.
    watcher = otherWatcher ? otherWatcher.release()
                           : new PlatformDeviceWatcher(QByteArrayLiteral("hidraw"));
    watcher->setParent(this);
    connect(watcher, &DeviceWatcher::deviceChanged, this, &ControlDialix::deviceChanged);

    connect(codec.get(), &qrvCommand::sDeviceChanged, this, &ControlDialix::deviceChanged);
    connect(codec.get(), &qrvCommand::sCWKeyObject, this, &ControlDialix::setCwKeyObject);
}

ControlDialix::~ControlDialix()
{
    // No cycle starts from here on. The controllers close their own panels as
    // they go, serving events meanwhile; whatever the host does then finds an
    // empty list. A cycle that was under way when the host deleted the root
    // keeps its own copy of the list and ends at its next step.
    destroying = true;
    if (QCoreApplication *app = QCoreApplication::instance())
        app->removeNativeEventFilter(this);
    delete watcher;
    watcher = nullptr;
    Controllers doomed;
    doomed.swap(controllers);
    for (const auto &controller : qAsConst(doomed))
        keepWhileClosing(controller);
    doomed.clear();
    // The tab widget belongs to the host once addWidget() ran; before that
    // nobody else knows it.
    if (tabWidget && !tabWidget->parent())
        delete tabWidget.data();
    // The translations live in this library, which the host may unload next.
    removeDialixTranslator();
}

QString ControlDialix::name() const
{
    return QStringLiteral("Dialix");
}

bool ControlDialix::addWidget(QLayout *layout)
{
    if (!layout || !tabWidget)
        return false;
    layout->addWidget(tabWidget);
    return true;
}

void ControlDialix::closeDevices()
{
    runCycle(Cycle::CloseDevices);
}

void ControlDialix::saveSettings(QSettings *s)
{
    if (!s)
        return;
    settings = s;
    for (const auto &controller : qAsConst(controllers))
        controller->writeAssignments(*s);
}

void ControlDialix::readSettings(QSettings *s)
{
    if (!s)
        return;
    settings = s;
    for (const auto &controller : qAsConst(controllers))
        controller->readAssignments(*s);

    // Give the host time to finish its own start-up, then re-open the enabled
    // panels; the GUI thread does not go on until that has finished.
    QPointer<ControlDialix> self(this);
    QTimer::singleShot(DeferredStartMs, [self] {
        if (self)
            self->runCycle(Cycle::DeferredStart);
    });
}

void ControlDialix::saveExtraSettings(QSettings *s)
{
    if (!s)
        return;
    for (const auto &controller : qAsConst(controllers))
        controller->writeHostAssignments(*s);
}

void ControlDialix::readExtraSettings(QSettings *s)
{
    if (!s)
        return;
    for (const auto &controller : qAsConst(controllers))
        controller->readHostAssignments(*s);
}

void ControlDialix::refreshState()
{
    // The controllers follow the host through its signals; there is nothing
    // to pull here.
}

qrvCommand *ControlDialix::command()
{
    return codec.get();
}

void ControlDialix::setManager(DeviceManagerAbstract *m)
{
    if (m == manager)
        return;
    manager = m;
    cwKey = m ? m->cwKeyControl() : nullptr;
    for (const auto &controller : qAsConst(controllers))
        controller->setDevManager(m);
}

bool ControlDialix::nativeEventFilter(const QByteArray &eventType, void *message, long *result)
{
    Q_UNUSED(result)
    if (PlatformDeviceWatcher::isDeviceTreeChange(eventType, message))
        deviceChanged();
    return false;
}

void ControlDialix::setCommand(QVariant cmd)
{
    codec->setCommand(cmd);
}

void ControlDialix::setChannels(uint value)
{
    if (value == channels)
        return;
    channels = value ? value : 1;
    for (const auto &controller : qAsConst(controllers))
        controller->setChannels(channels);
}

void ControlDialix::setCwKeyObject(QObject *p)
{
    cwKey = qobject_cast<CwKeyControlAbstract *>(p);
    for (const auto &controller : qAsConst(controllers))
        giveCwKey(*controller, cwKey);
}

void ControlDialix::deviceChanged()
{
    runCycle(Cycle::DeviceChanged);
}

void ControlDialix::updateDevices()
{
    runCycle(Cycle::UpdateDevices);
}

void ControlDialix::runCycle(Cycle cycle)
{
    if (destroying)
        return;
    pendingCycles.append(cycle);
    runPendingCycles();
}

void ControlDialix::runPendingCycles()
{
    if (cycleRunning || destroying || pendingCycles.isEmpty())
        return; // the cycle under way runs them when it has ended
    for (const auto &controller : qAsConst(controllers)) {
        if (controller->panel().isClosing()) {
            // The controller closes its panel by itself (its "Enable" box was
            // unticked) and serves events meanwhile: a cycle now could remove
            // it under its feet. Look again when it has had its 10 ms.
            QTimer::singleShot(Dialix::CloseWaitMs, this, &ControlDialix::runPendingCycles);
            return;
        }
    }
    cycleRunning = true;
    while (!pendingCycles.isEmpty()) {
        if (!runOne(pendingCycles.takeFirst()))
            return; // the root is gone: touch nothing
    }
    cycleRunning = false;
}

bool ControlDialix::runOne(Cycle cycle)
{
    switch (cycle) {
    case Cycle::DeviceChanged:
        return changeDevices();
    case Cycle::UpdateDevices:
        return reopenPanels();
    case Cycle::CloseDevices:
        return closePanels(controllers);
    case Cycle::DeferredStart:
        return deferredStart();
    }
    return true;
}

// Close every panel of `list`. The list is a copy: it keeps each controller
// alive while its panel closes, whatever the events served meanwhile do.
bool ControlDialix::closePanels(Controllers list)
{
    QPointer<ControlDialix> self(this);
    for (const auto &controller : list) {
        controller->panel().closeDevice();
        if (!self)
            return false;
    }
    return true;
}

bool ControlDialix::changeDevices()
{
    QPointer<ControlDialix> self(this);
    if (!closePanels(controllers))
        return false;

    const int target = qMax(deviceCount(), 1);
    while (controllers.size() < target) {
        std::shared_ptr<DialixControl> controller = addController();
        controller->setChannels(channels);
        if (settings)
            controller->loadOptions();
    }
    while (controllers.size() > target) {
        removeLastController();
        if (!self)
            return false;
    }

    const Controllers list = controllers;
    for (int i = 0; i < list.size(); ++i) {
        DialixControl &controller = *list.at(i);
        // The first controller keeps what setManager() gave it.
        if (i > 0) {
            giveCwKey(controller, cwKey);
            controller.setDevManager(manager);
        }
        if (enabled(controller))
            controller.open(true);
        if (!self)
            return false;
    }
    return true;
}

bool ControlDialix::reopenPanels()
{
    QPointer<ControlDialix> self(this);
    const Controllers list = controllers;
    if (!closePanels(list))
        return false;
    for (const auto &controller : list) {
        if (enabled(*controller))
            controller->open(true);
        if (!self)
            return false;
    }
    return true;
}

// Re-opens the enabled panels on a worker thread and waits for it: the GUI
// thread serves no event meanwhile, so neither the host nor a device change
// runs inside it.
bool ControlDialix::deferredStart()
{
    try {
        std::async(std::launch::async, [this] { reopenPanels(); }).get();
    } catch (const std::exception &e) { // std::system_error when no thread can be made
        qCDebug(dialixLog) << Q_FUNC_INFO << e.what();
    }
    return true;
}

int ControlDialix::deviceCount()
{
    probe.findDevices();
    QStringList products;
    for (const hid_device_info *info = probe.enumeration(); info; info = info->next)
        products << QString::fromWCharArray(info->product_string ? info->product_string : L"");
    return products.size();
}

std::shared_ptr<DialixControl> ControlDialix::addController()
{
    auto controller = std::make_shared<DialixControl>();
    controllers.append(controller);
    const int number = controllers.size();
    controller->setNumber(number - 1);
    connect(controller->command(), &qrvCommand::sCommand, this, &DialixAbstract::sCommand);
    if (tabWidget)
        tabWidget->addTab(controller->optionsWidget(), tr("Dialix %1").arg(number));
    return controller;
}

void ControlDialix::removeLastController()
{
    std::shared_ptr<DialixControl> controller = controllers.last();
    if (settings)
        controller->saveOptions();
    // Take the page out of the tab widget's tree; its controller decides its
    // fate. The tab goes first: a page that is reparented while still in the
    // tab widget's stack takes its tab with it, and removing "the last tab"
    // afterwards would then remove one tab too many.
    if (DialixOptions *page = controller->optionsWidget()) {
        if (tabWidget)
            tabWidget->removeTab(tabWidget->indexOf(page));
        page->setParent(nullptr);
    }
    controllers.removeLast();
}
