// The controller of one panel: its events become host commands, host state its LEDs.

#include "plugins/panels/dialix/source/dialixcontrol.h"

#include "command/qrvcommand.h"
#include "interfaces/cwkeycontrolabstract.h"
#include "interfaces/devicemanagerabstract.h"
#include "interfaces/dialixlogging.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/optionsfile.h"
#include "serial/serialportabstract.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QThread>

#include <algorithm>
#include <utility>

using dialix::SubMenu;

namespace {

// Serial-port setting codes of SerialPortAbstract.
constexpr int DataBits8 = 3;
constexpr int ParityNone = 0;
constexpr int StopBitsOne = 0;
constexpr int FlowControlNone = 0;

// Source value that marks the panel as the origin of PTT and paddle events.
constexpr quint32 PanelSource = 1;

// PTT transfer modes (cbPttTransfer index).
constexpr int PttToHost = 1;
constexpr int PttToComPort = 2;

// The event that wakes a controller to run the panel events handed to it.
QEvent::Type panelEventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

// Entry i of a list of the page's buttons, or null; without copying the guard
// (a copy counts a reference up and down again on every press and movement).
QPushButton *buttonAt(const QList<QPointer<QPushButton>> &buttons, int i)
{
    return i >= 0 && i < buttons.size() ? buttons.at(i).data() : nullptr;
}

// Serial-port lines that PTT raises.
enum SerialLine { LineDtr = 1, LineRts = 2 };

} // namespace

DialixControl::DialixControl(QObject *parent)
    : DialixAbstract(parent)
{
    SerialPortAbstract *port = serialPort.current();
    port->setBaudRate(9600, QSerialPort::AllDirections);
    port->setDataBits(DataBits8);
    port->setParity(ParityNone);
    port->setStopBits(StopBitsOne);
    port->setFlowControl(FlowControlNone);

    options = new DialixOptions();
    options->setDeviceListVisible(false);
    options->setPttPortVisible(false);
    codec = std::make_shared<qrvCommand>();

    options->setPortNames(port->availablePorts());

    connect(&valueTimeout, &ValueTimeout::valueChanged, this, &DialixControl::onDdsValue);

    buildButtonMenus();
    buildDialMenus();

    retryTimer.setSingleShot(true);
    retryTimer.setInterval(RetryIntervalMs);
    connect(&retryTimer, &QTimer::timeout, this, &DialixControl::restore);

    device.findDevices();

    connect(options, &DialixOptions::enableToggled, this, &DialixControl::open);
    // The device's signals reach onButton, onDialButton, onDial, onPtt, KeyDash
    // and KeyDot (dispatch()) on this thread, through panelEvent().
    using E = PanelEvent;
    const auto relay = [this](E::Kind kind) {
        return [this, kind](auto a, auto... b) {
            panelEvent({kind, int(a), int(b)...});
        };
    };
    connect(&device, &Dialix::button, this, relay(E::Button), Qt::DirectConnection);
    connect(&device, &Dialix::dialButton, this, relay(E::DialButton), Qt::DirectConnection);
    connect(&device, &Dialix::dial, this, relay(E::Dial), Qt::DirectConnection);
    connect(&device, &Dialix::ptt, this, relay(E::Ptt), Qt::DirectConnection);
    connect(&device, &Dialix::dash, this, relay(E::Dash), Qt::DirectConnection);
    connect(&device, &Dialix::dot, this, relay(E::Dot), Qt::DirectConnection);
    device.setReportDone([this] { panelReportDone(); });
    valueTimeout.installEventFilter(this);
    clock.start();
    for (int j = 1; j < DialCount; ++j) {
        if (QTimer *release = options->timers.value(j))
            release->installEventFilter(this);
    }
    connect(options, &DialixOptions::setLedKey, this, &DialixControl::onLedButtons);
    connect(options, &DialixOptions::setLedEncoder, this, &DialixControl::onLedEncoder);
    connect(options, &DialixOptions::vfoBToggled, this, &DialixControl::onVfoB);
    connect(options, &DialixOptions::receiverChanged, this, &DialixControl::switchReceivers);
    connect(options, &DialixOptions::pttTransferChanged, this, &DialixControl::onPttTransferMode);
    connect(options, &DialixOptions::portEnableToggled, this, &DialixControl::onSerialPortOpen);

    // The reader thread ends when the panel closes, whoever closes it. Its end
    // is queued behind the last events it sent, so a press still on its way
    // cannot undo the release.
    connect(&device, &QThread::finished, this, &DialixControl::releaseHeld);
    if (QCoreApplication *app = QCoreApplication::instance())
        connect(app, &QCoreApplication::aboutToQuit, this, &DialixControl::releaseHeld);

    setChannels(1);
}

DialixControl::~DialixControl()
{
    retryTimer.stop();
    device.closeDevice();
    releaseHeld();
    // The page belongs to whoever shows it; one that nobody holds any more
    // (never shown, or taken out of the tab widget) goes with its controller.
    if (options && !options->parent())
        delete options.data();
    qDeleteAll(buttonMenus);
    qDeleteAll(dialMenus);
}

// The function menus are top-level widgets without a parent; the controller
// keeps them in its lists and deletes them. Their actions belong to the menus,
// their exclusive groups to the controller.
void DialixControl::buildButtonMenus()
{
    for (int k = 1; k <= ButtonCount; ++k) {
        auto *menu = new QMenu();
        for (int id = 0; id < dialix::ButtonFunctionCount; ++id)
            menu->addAction(dialix::buttonFunctionText(id));
        const QList<QAction *> actions = menu->actions();

        audioMenu = new QMenu(dialix::subMenuText(SubMenu::Audio), menu);
        dspMenu = new QMenu(dialix::subMenuText(SubMenu::Dsp), menu);
        mainMenu = new QMenu(dialix::subMenuText(SubMenu::Main), menu);
        vfoRx2Menu = new QMenu(dialix::subMenuText(SubMenu::VfoRx2), menu);
        const auto fill = [&actions](QMenu *subMenu, SubMenu which) {
            for (int id : dialix::subMenuFunctions(which))
                subMenu->addAction(actions.at(id));
        };
        fill(audioMenu, SubMenu::Audio);
        fill(dspMenu, SubMenu::Dsp);
        fill(mainMenu, SubMenu::Main);
        fill(vfoRx2Menu, SubMenu::VfoRx2);

        auto *group = new QActionGroup(this);
        for (QAction *action : actions) {
            action->setCheckable(true);
            group->addAction(action);
        }
        actions.first()->setChecked(true);
        connect(group, &QActionGroup::triggered, this, &DialixControl::changedFunctionButton);
        buttonMenus.append(menu);
        buttonGroups.append(group);

        auto *button = options->findChild<QPushButton *>(QStringLiteral("pbFunc%1").arg(k));
        funcButtons.append(button);
        if (button) {
            button->setMenu(menu);
            button->setToolTip(dialix::buttonFunctionText(0));
        }

        for (int i = 1; i < actions.size(); ++i)
            menu->removeAction(actions.at(i));
        for (QMenu *subMenu : {mainMenu, vfoRx2Menu, audioMenu, dspMenu})
            menu->addMenu(subMenu);
    }
}

void DialixControl::buildDialMenus()
{
    for (int j = 0; j < DialCount; ++j) {
        auto *menu = new QMenu();
        auto *group = new QActionGroup(this);
        for (int id = 0; id < dialix::DialFunctionCount; ++id) {
            QAction *action = menu->addAction(dialix::dialFunctionText(id));
            action->setCheckable(true);
            group->addAction(action);
        }
        group->actions().first()->setChecked(true);
        connect(group, &QActionGroup::triggered, this, &DialixControl::changedFunctionDial);
        dialMenus.append(menu);
        dialGroups.append(group);

        auto *button = options->findChild<QPushButton *>(QStringLiteral("pbDial%1").arg(j));
        dialButtons.append(button);
        if (button) {
            button->setMenu(menu);
            button->setToolTip(dialix::dialFunctionText(0));
            // Dial 0 is the VFO encoder: it has no assignable function.
            button->setVisible(j != 0);
        }
    }
}

// ---------------------------------------------------------------------------
// Host binding, opening, channels

QString DialixControl::name() const
{
    return QStringLiteral("Dialix");
}

void DialixControl::closeDevices()
{
    device.closeDevice();
}

void DialixControl::saveSettings(QSettings *settings)
{
    if (settings)
        writeAssignments(*settings);
}

void DialixControl::readSettings(QSettings *settings)
{
    if (settings)
        readAssignments(*settings);
}

void DialixControl::saveExtraSettings(QSettings *settings)
{
    if (settings)
        writeHostAssignments(*settings);
}

void DialixControl::readExtraSettings(QSettings *settings)
{
    if (settings)
        readHostAssignments(*settings);
}

void DialixControl::open(bool state)
{
    if (!state || !options) {
        setRetry(false);
        device.closeDevice();
        return;
    }
    device.findDevices();
    if (!device.openDevice()) {
        // Not found, not accessible yet, or already open: look again in a
        // second for as long as "Enable" stays ticked.
        setRetry(true);
        return;
    }
    setRetry(false);
    onLedButtons(options->isKeyLedChecked());
    onLedEncoder(options->isEncoderLedChecked());
    switchReceivers(options->receiver());
    onVfoB(options->isVfoBChecked());
}

void DialixControl::terminate()
{
    device.closeDevice();
}

void DialixControl::restore()
{
    if (options && options->isEnabledChecked())
        open(true);
}

// open() also runs on the worker thread of the root's deferred start; the
// retry timer is started and stopped on the controller's own thread.
void DialixControl::setRetry(bool on)
{
    if (QThread::currentThread() != thread()) {
        QMetaObject::invokeMethod(&retryTimer, on ? "start" : "stop", Qt::QueuedConnection);
        return;
    }
    if (on)
        retryTimer.start();
    else
        retryTimer.stop();
}

void DialixControl::setCommand(QVariant cmd)
{
    codec->setCommand(cmd);
}

void DialixControl::setChannels(uint value)
{
    QStringList names;
    for (uint i = 1; i <= value; ++i)
        names << tr("RX ") + QString::number(i);
    options->setReceiverNames(names);
}

void DialixControl::deviceChanged()
{
    device.findDevices();
}

void DialixControl::setDevManager(DeviceManagerAbstract *manager)
{
    if (manager == deviceManager)
        return;
    if (deviceManager)
        disconnect(deviceManager, nullptr, this, nullptr);
    deviceManager = manager;
    if (!manager)
        return;
    CHECKED_CONNECT(manager, "2display4kModeChanged(bool)", this, "1on4K(bool)");
    CHECKED_CONNECT(manager, "2moxChanged(quint32, bool)", this, "1onTrx(quint32 , bool)");
}

void DialixControl::on4K(bool state)
{
    Q_UNUSED(state)
    // Setting every item's text again makes the combo box lay out its items
    // anew after the host's display mode changed.
    options->refreshReceiverTexts();
}

void DialixControl::onPttTransferMode(int index)
{
    options->setPttPortVisible(index == PttToComPort);
}

// ---------------------------------------------------------------------------
// Panel events

// Called on the thread that emitted the device's signal. An event emitted on
// this thread runs at once. The reader thread's events are queued, and once a
// report's signals are all there (panelReportDone()) one posted event wakes
// this thread to run them in order: the five signals of a report cost one
// wake-up, not five queued calls. A VFO encoder movement wakes nobody while the
// coalescer is sure to tick within its interval: the tick runs the queue first
// (eventFilter()), so the movement is coalesced on that same tick, as if it had
// been delivered at once. Events emitted on any other thread wake this one at
// once.
void DialixControl::panelEvent(PanelEvent event)
{
    QThread *current = QThread::currentThread();
    if (current == thread()) {
        dispatch(event);
        return;
    }
    const bool vfo = event.kind == PanelEvent::Dial && event.a == Dialix::Enc0;
    QEvent *wake = nullptr;
    {
        std::lock_guard<std::mutex> lock(panelMutex);
        panelEvents.push_back(event);
        panelUrgent = panelUrgent || !(vfo && vfoTickRuns);
        if (current != &device)
            wake = takeWakeLocked();
    }
    if (wake)
        QCoreApplication::postEvent(this, wake);
}

// The device decoded a report and emitted its signals (on its reader thread).
void DialixControl::panelReportDone()
{
    if (QThread::currentThread() == thread())
        return; // its events ran at once
    QEvent *wake = nullptr;
    {
        std::lock_guard<std::mutex> lock(panelMutex);
        wake = takeWakeLocked();
    }
    if (wake)
        QCoreApplication::postEvent(this, wake);
}

// The event that wakes this thread for the queue, when queued events need it
// and none is on its way. Made under panelMutex, which customEvent() takes
// before it looks at the event: the hand-over is then ordered by a lock that
// ThreadSanitizer sees, not only by Qt's own posting lock.
QEvent *DialixControl::takeWakeLocked()
{
    if (!panelUrgent || panelWakePosted)
        return nullptr;
    panelWakePosted = true;
    panelUrgent = false;
    return new QEvent(panelEventType());
}

// Runs the queued panel events one at a time, so that a slot that spins an
// event loop (and so runs this again) keeps their order.
void DialixControl::runPanelEvents()
{
    for (;;) {
        PanelEvent event;
        {
            std::lock_guard<std::mutex> lock(panelMutex);
            if (panelNext == panelEvents.size()) {
                panelEvents.clear();
                panelNext = 0;
                panelUrgent = false;
                // A pending value keeps the coalescer ticking: its next tick
                // comes within the interval and runs the queue first.
                vfoTickRuns = valueTimeout.isPending();
                return;
            }
            event = panelEvents[panelNext++];
        }
        dispatch(event);
    }
}

void DialixControl::dispatch(const PanelEvent &event)
{
    switch (event.kind) {
    case PanelEvent::Button:
        onButton(static_cast<Dialix::Buttons>(event.a), event.b);
        break;
    case PanelEvent::DialButton:
        onDialButton(static_cast<Dialix::DialButtons>(event.a), event.b);
        break;
    case PanelEvent::Dial:
        onDial(static_cast<Dialix::Dials>(event.a), event.b);
        break;
    case PanelEvent::Ptt:
        onPtt(event.a);
        break;
    case PanelEvent::Dash:
        KeyDash(event.a);
        break;
    case PanelEvent::Dot:
        KeyDot(event.a);
        break;
    }
}

void DialixControl::customEvent(QEvent *event)
{
    std::unique_lock<std::mutex> lock(panelMutex);
    if (event->type() != panelEventType()) {
        lock.unlock();
        DialixAbstract::customEvent(event);
        return;
    }
    panelWakePosted = false;
    lock.unlock();
    runPanelEvents();
}

bool DialixControl::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Timer)
        return DialixAbstract::eventFilter(watched, event);
    if (watched == &valueTimeout) {
        // The coalescer's tick: the VFO movements that did not wake this
        // thread reach it before it looks for a value.
        runPanelEvents();
        return false;
    }
    for (int j = 1; j < DialCount; ++j) {
        QTimer *release = options ? options->timers.value(j) : nullptr;
        if (!release || watched != release)
            continue;
        // The dial moved again after the timer started: let it run until
        // DialReleaseMs after the last movement instead of un-lighting now.
        const qint64 left = DialReleaseMs - (clock.elapsed() - dialMovedMs[j]);
        if (left <= 0)
            return false;
        release->start(int(left));
        return true;
    }
    return DialixAbstract::eventFilter(watched, event);
}

void DialixControl::onButton(Dialix::Buttons button, bool state)
{
    using Slot = void (DialixControl::*)(bool);
    static constexpr Slot keys[] = {
        &DialixControl::Key1,  &DialixControl::Key2,  &DialixControl::Key3,  &DialixControl::Key4,
        &DialixControl::Key5,  &DialixControl::Key6,  &DialixControl::Key7,  &DialixControl::Key8,
        &DialixControl::Key9,  &DialixControl::Key10, &DialixControl::Key11, &DialixControl::Key12,
        &DialixControl::Key13, &DialixControl::Key14,
    };
    const int n = int(button);
    if (n >= Dialix::Key1 && n <= Dialix::Key14) {
        const Slot slot = keys[n - Dialix::Key1];
        (this->*slot)(state);
    }
}

void DialixControl::onDialButton(Dialix::DialButtons button, bool state)
{
    switch (button) {
    case Dialix::KeyEnc0:
        KeyEnc0(state);
        break;
    case Dialix::KeyEnc1:
        KeyEnc1(state);
        break;
    case Dialix::KeyEnc2:
        KeyEnc2(state);
        break;
    case Dialix::KeyEnc3:
        KeyEnc3(state);
        break;
    }
}

void DialixControl::onDial(Dialix::Dials dial, int value)
{
    switch (dial) {
    case Dialix::Enc0:
        Enc0(value);
        break;
    case Dialix::Enc1:
        Enc1(value);
        break;
    case Dialix::Enc2:
        Enc2(value);
        break;
    case Dialix::Enc3:
        Enc3(value);
        break;
    }
}

void DialixControl::Key1(bool Status)
{
    functionButton(1, Status);
}
void DialixControl::Key2(bool Status)
{
    functionButton(2, Status);
}
void DialixControl::Key3(bool Status)
{
    functionButton(3, Status);
}
void DialixControl::Key4(bool Status)
{
    functionButton(4, Status);
}
void DialixControl::Key5(bool Status)
{
    functionButton(5, Status);
}
void DialixControl::Key6(bool Status)
{
    functionButton(6, Status);
}
void DialixControl::Key7(bool Status)
{
    functionButton(7, Status);
}
void DialixControl::Key8(bool Status)
{
    functionButton(8, Status);
}
void DialixControl::Key9(bool Status)
{
    functionButton(9, Status);
}
void DialixControl::Key10(bool Status)
{
    functionButton(10, Status);
}
void DialixControl::Key11(bool Status)
{
    functionButton(11, Status);
}
void DialixControl::Key12(bool Status)
{
    functionButton(12, Status);
}
void DialixControl::Key13(bool Status)
{
    functionButton(13, Status);
}
void DialixControl::Key14(bool Status)
{
    functionButton(14, Status);
}

void DialixControl::KeyEnc0(bool Status)
{
    // The VFO encoder's push has no function.
    Q_UNUSED(Status)
}
void DialixControl::KeyEnc1(bool Status)
{
    functionButton(15, Status);
}
void DialixControl::KeyEnc2(bool Status)
{
    functionButton(16, Status);
}
void DialixControl::KeyEnc3(bool Status)
{
    functionButton(17, Status);
}

void DialixControl::Enc0(int Val)
{
    valueTimeout.setValue(QVariant(Val));
}
void DialixControl::Enc1(int Val)
{
    functionDial(1, Val);
}
void DialixControl::Enc2(int Val)
{
    functionDial(2, Val);
}
void DialixControl::Enc3(int Val)
{
    functionDial(3, Val);
}

void DialixControl::functionButton(int n, bool pressed)
{
    QPushButton *button = buttonAt(funcButtons, n - 1);
    if (!pressed) {
        // Functions act on the press; a release only ends the highlight. A
        // button that is not checkable is not checked either; setChecked(false)
        // would first search the whole panel picture for exclusive siblings.
        if (button) {
            button->setCheckable(false);
            button->update();
        }
        return;
    }
    if (button) {
        button->setCheckable(true);
        button->setChecked(true);
    }
    runButtonFunction(checkedPosition(buttonGroups.value(n - 1)));
}

void DialixControl::functionDial(int j, int value)
{
    if (QPushButton *button = buttonAt(dialButtons, j)) {
        button->setCheckable(true);
        button->setChecked(true);
    }
    // The button stays lit until DialReleaseMs after the last movement. A
    // running release timer is not restarted for every movement: when it fires
    // too early, eventFilter() sets it again for the time that is left.
    dialMovedMs[j] = clock.elapsed();
    if (QTimer *release = options->timers.value(j)) {
        if (!release->isActive())
            release->start(DialReleaseMs);
    }
    runDialFunction(checkedPosition(dialGroups.value(j)), value);
}

void DialixControl::onDdsValue(QVariant value)
{
    if (!qobject_cast<ValueTimeout *>(sender()))
        return;
    const int v = value.toInt();
    const bool vfoB = options->isVfoBChecked();
    if (options->isUseIfChecked() && !vfoB)
        ifRule(v);
    else
        codec->panelVFO(rx(), vfoB ? 1 : 0, v);

    if (options->isVisible())
        options->turnVfoDial(v);
}

// ---------------------------------------------------------------------------
// LEDs

void DialixControl::setLed(int mask, bool on)
{
    if (!device.isOpen())
        return;
    for (int bit = 0; bit < 8; ++bit) {
        if (mask & (1 << bit))
            device.setLed(bit, on);
    }
}

void DialixControl::onVfoB(bool state)
{
    setLed(ledMask(dialix::protocol::LedVfoB), state);
}

void DialixControl::onLedEncoder(bool state)
{
    setLed(ledMask(dialix::protocol::LedDials), state);
}

void DialixControl::onLedButtons(bool state)
{
    setLed(ledMask(dialix::protocol::LedKeys), state);
}

void DialixControl::onTrx(quint32 tranceiver, bool state)
{
    Q_UNUSED(state)
    if (!deviceManager)
        return;
    const quint32 count = deviceManager->tranceivers();
    if (tranceiver >= count)
        return;
    // One transceiver still transmitting keeps the lamp lit.
    bool transmitting = false;
    for (quint32 t = 0; t < count; ++t)
        transmitting = deviceManager->mox(t) || transmitting;
    setLed(ledMask(dialix::protocol::LedTransmit), transmitting);
}

void DialixControl::switchReceivers(int index)
{
    if (deviceManager && index >= 0) {
        const auto receiver = quint32(index);
        if (receiver < deviceManager->tranceivers())
            onTrx(receiver, deviceManager->mox(receiver));
    }
    setLed(ledMask(dialix::protocol::LedReceiver2), index > 0);
}

// ---------------------------------------------------------------------------
// PTT, paddle, serial port

void DialixControl::onPtt(bool state)
{
    ptt(state);
}

void DialixControl::KeyPtt(bool Status)
{
    ptt(Status);
}

void DialixControl::ptt(bool state)
{
    PttRoutes sent;
    if (deviceManager && options) {
        const int mode = options->pttTransferMode();
        if (mode == PttToHost) {
            emit deviceManager->txTransfer(rx(), state);
            sent.host = deviceManager;
            sent.hostRx = rx();
        } else if (mode == PttToComPort && options->isPortEnabledChecked()) {
            SerialPortAbstract *port = serialPort.current();
            if (options->isDtrChecked()) {
                port->setDataTerminalReady(state);
                sent.lines |= LineDtr;
            }
            if (options->isRtsChecked()) {
                port->setRequestToSend(state);
                sent.lines |= LineRts;
            }
        } else if (CwKeyControlAbstract *key = deviceManager->cwKeyControl()) {
            key->setTrx(rx(), PanelSource, state);
            sent.key = key;
            sent.keyRx = rx();
        }
    }
    if (!state) {
        releasePtt(sent);
        return;
    }
    if (sent.host) {
        keyedPtt.host = sent.host;
        keyedPtt.hostRx = sent.hostRx;
    }
    if (sent.key) {
        keyedPtt.key = sent.key;
        keyedPtt.keyRx = sent.keyRx;
    }
    keyedPtt.lines |= sent.lines;
}

void DialixControl::releasePtt(const PttRoutes &alreadyReleased)
{
    const PttRoutes held = std::exchange(keyedPtt, PttRoutes());
    const PttRoutes &done = alreadyReleased;
    if (held.host && (held.host != done.host || held.hostRx != done.hostRx))
        emit held.host->txTransfer(held.hostRx, false);
    if (held.key && (held.key != done.key || held.keyRx != done.keyRx))
        held.key->setTrx(held.keyRx, PanelSource, false);
    const int lines = held.lines & ~done.lines;
    SerialPortAbstract *port = serialPort.current();
    if (lines & LineDtr)
        port->setDataTerminalReady(false);
    if (lines & LineRts)
        port->setRequestToSend(false);
}

void DialixControl::KeyDash(bool Status)
{
    dashState = Status;
    paddle();
}

void DialixControl::KeyDot(bool Status)
{
    dotState = Status;
    paddle();
}

// Every edge of either contact sends the whole pair, so a squeeze reads as
// both contacts closed.
void DialixControl::paddle()
{
    CwKeyControlAbstract *key = nullptr;
    if (deviceManager && options)
        key = deviceManager->cwKeyControl();
    if (key)
        key->setKey(rx(), PanelSource, dashState, dotState);
    if (dashState || dotState) {
        if (key) {
            paddleKey = key;
            paddleRx = rx();
        }
        return;
    }
    // Both contacts open: where they were closed they open too.
    if (paddleKey && (paddleKey != key || (key && paddleRx != rx())))
        paddleKey->setKey(paddleRx, PanelSource, false, false);
    paddleKey = nullptr;
}

void DialixControl::releaseHeld()
{
    releasePtt(PttRoutes());
    if (dashState || dotState) {
        dashState = false;
        dotState = false;
        if (paddleKey)
            paddleKey->setKey(paddleRx, PanelSource, false, false);
    }
    paddleKey = nullptr;
}

void DialixControl::onSerialPortOpen(bool state)
{
    SerialPortAbstract *port = serialPort.current();
    if (!state) {
        // Closing drops both lines.
        port->close();
        keyedPtt.lines = 0;
        return;
    }
    const QString name = options->portName();
    if (name.isEmpty()) {
        options->setPortEnabledChecked(false);
        return;
    }
    port->setPortName(name);
    if (port->open(QIODevice::ReadWrite))
        return;
    QMessageBox::critical(options, QCoreApplication::applicationName(),
                          tr("Failed to open ") + name + tr(" for PTT transfer!"), QMessageBox::Ok);
    options->setPortEnabledChecked(false);
}

// ---------------------------------------------------------------------------
// Assignments

int DialixControl::checkedPosition(const QActionGroup *group)
{
    if (!group)
        return -1;
    const QAction *checked = group->checkedAction();
    return checked ? group->actions().indexOf(const_cast<QAction *>(checked)) : -1;
}

void DialixControl::checkPosition(QActionGroup *group, int position)
{
    const QList<QAction *> actions = group->actions();
    if (position < 0 || position >= actions.size())
        position = 0;
    actions.at(position)->setChecked(true);
}

int DialixControl::buttonFunction(int n) const
{
    return checkedPosition(buttonGroups.value(n - 1));
}

int DialixControl::dialFunction(int j) const
{
    return checkedPosition(dialGroups.value(j));
}

bool DialixControl::assignButtonFunction(int n, int id)
{
    QActionGroup *group = buttonGroups.value(n - 1);
    if (!group || !dialix::isButtonFunction(id))
        return false;
    QAction *action = group->actions().at(id);
    action->setChecked(true);
    emit group->triggered(action);
    return true;
}

bool DialixControl::assignDialFunction(int j, int id)
{
    QActionGroup *group = dialGroups.value(j);
    if (!group || !dialix::isDialFunction(id))
        return false;
    QAction *action = group->actions().at(id);
    action->setChecked(true);
    emit group->triggered(action);
    return true;
}

void DialixControl::changedFunctionButton(QAction *action)
{
    Q_UNUSED(action)
    auto *group = qobject_cast<QActionGroup *>(sender());
    const int k = buttonGroups.indexOf(group);
    if (k < 0)
        return;
    const int f = checkedPosition(group);
    if (QPushButton *button = funcButtons.value(k)) {
        button->setText(dialix::buttonFunctionShortText(f));
        button->setToolTip(dialix::buttonFunctionText(f));
    }
}

void DialixControl::changedFunctionDial(QAction *action)
{
    Q_UNUSED(action)
    auto *group = qobject_cast<QActionGroup *>(sender());
    const int k = dialGroups.indexOf(group);
    if (k < 0)
        return;
    const int f = checkedPosition(group);
    if (QPushButton *button = dialButtons.value(k)) {
        button->setText(dialix::dialFunctionShortText(f));
        button->setToolTip(dialix::dialFunctionText(f));
    }
}

QString DialixControl::optionsFilePath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/options.ini");
}

// The own file is read with a format that never decodes a serialised value
// (see optionsfile.h): a damaged file loads what it can and falls back for the
// rest, and the next save writes it clean.
void DialixControl::saveOptions()
{
    QSettings settings(optionsFilePath(), dialix::optionsFileFormat());
    writeAssignments(settings);
    settings.sync();
    // Where the application's directory cannot be written (an installed host
    // on Linux), the file is not saved; the host's own settings still keep the
    // assignments. Said once, and once more if saving works again.
    static bool failing = false;
    if ((settings.status() == QSettings::AccessError) == failing)
        return;
    failing = !failing;
    if (failing)
        qCDebug(dialixLog, "%s: cannot write %s; the host's settings keep the assignments",
                Q_FUNC_INFO, qUtf8Printable(optionsFilePath()));
    else
        qCDebug(dialixLog, "%s: %s is written again", Q_FUNC_INFO,
                qUtf8Printable(optionsFilePath()));
}

void DialixControl::loadOptions()
{
    QSettings settings(optionsFilePath(), dialix::optionsFileFormat());
    readAssignments(settings);
}

void DialixControl::writeAssignments(QSettings &settings)
{
    store(settings, AssignmentStore::OwnFile);
}

void DialixControl::readAssignments(QSettings &settings)
{
    load(settings, AssignmentStore::OwnFile);
}

void DialixControl::writeHostAssignments(QSettings &settings)
{
    store(settings, AssignmentStore::HostSettings);
}

void DialixControl::readHostAssignments(QSettings &settings)
{
    load(settings, AssignmentStore::HostSettings);
}

dialix::Assignments DialixControl::assignments() const
{
    dialix::Assignments a;
    for (int n = 1; n <= ButtonCount; ++n)
        a.keys[n - 1] = buttonFunction(n);
    for (int j = 0; j < DialCount; ++j)
        a.dials[j] = dialFunction(j);
    return a;
}

void DialixControl::store(QSettings &settings, AssignmentStore::Layout layout)
{
    AssignmentStore(settings, layout).write(index, assignments(), *options);
}

// Only the own file's reading re-labels the page's buttons.
void DialixControl::load(QSettings &settings, AssignmentStore::Layout layout)
{
    dialix::Assignments a = assignments();
    AssignmentStore(settings, layout).read(index, a, *options);
    const auto restore = [layout](QActionGroup *group, int id) {
        checkPosition(group, id);
        if (layout == AssignmentStore::OwnFile)
            emit group->triggered(group->checkedAction());
    };
    for (int n = 0; n < ButtonCount; ++n)
        restore(buttonGroups.at(n), a.keys[n]);
    for (int j = 0; j < DialCount; ++j)
        restore(dialGroups.at(j), a.dials[j]);
}

// ---------------------------------------------------------------------------
// Helpers

quint32 DialixControl::rx() const
{
    return quint32(options->receiver());
}
