// The controller of one panel: its events become host commands, host state its LEDs.

#include "plugins/panels/dialix/source/dialixcontrol.h"

#include "command/qrvcommand.h"
#include "interfaces/cwkeycontrolabstract.h"
#include "interfaces/devicemanagerabstract.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "serial/serialportabstract.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

#include <utility>

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
    // The panel's signals come from its reader thread: queued, its slots run
    // here in the order the panel reported the events.
    connect(&device, &Dialix::button, this, &DialixControl::onButton, Qt::QueuedConnection);
    connect(&device, &Dialix::dialButton, this, &DialixControl::onDialButton, Qt::QueuedConnection);
    connect(&device, &Dialix::dial, this, &DialixControl::onDial, Qt::QueuedConnection);
    connect(&device, &Dialix::ptt, this, &DialixControl::onPtt, Qt::QueuedConnection);
    connect(&device, &Dialix::dash, this, &DialixControl::KeyDash, Qt::QueuedConnection);
    connect(&device, &Dialix::dot, this, &DialixControl::KeyDot, Qt::QueuedConnection);
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

// Functions act on the press; a release only ends the highlight.
void DialixControl::functionButton(int n, bool pressed)
{
    if (options)
        options->lightKey(n, pressed);
    if (pressed)
        runButtonFunction(checkedPosition(buttonGroups.value(n - 1)));
}

void DialixControl::functionDial(int j, int value)
{
    if (options)
        options->lightDial(j);
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
// Helpers

quint32 DialixControl::rx() const
{
    return quint32(options->receiver());
}
