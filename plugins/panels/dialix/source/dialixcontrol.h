#pragma once

// DialixControl, the controller of one panel.

#include "interfaces/cwkeycontrolabstract.h"
#include "interfaces/devicemanagerabstract.h"
#include "interfaces/dialixabstract.h"
#include "plugins/panels/dialix/source/assignmentstore.h"
#include "plugins/panels/dialix/source/dialix.h"
#include "plugins/panels/dialix/source/dialixoptions.h"
#include "plugins/panels/dialix/source/functiontable.h"
#include "plugins/panels/dialix/source/valuetimeout.h"
#include "serial/serialportcontrol.h"

#include <QList>
#include <QPointer>
#include <QTimer>
#include <QVariant>

#include <memory>

class QAction;
class QActionGroup;
class QMenu;
class QPushButton;
class QSettings;
class qrvCommand;

// Connects by signature strings (for the host's objects, whose types the
// plug-in only knows by declaration) and aborts with the enclosing function,
// file and line when the connection cannot be made: a missing host signal is a
// programming error, not a run-time condition.
#define CHECKED_CONNECT(sender, signal, receiver, slot)                                            \
    do {                                                                                           \
        if (!QObject::connect(sender, signal, receiver, slot))                                     \
            qt_assert_x(Q_FUNC_INFO, "CHECKED_CONNECT failed",                                     \
                        "plugins/panels/dialix/source/dialixcontrol", __LINE__);                   \
    } while (false)

#define DIALIX_DECLARE_BUTTON_SLOT_(id, Name, slot, ...) void slot();
#define DIALIX_DECLARE_DIAL_SLOT_(id, Name, slot, ...) void slot(int value);
#define DIALIX_DECLARE_BUTTON_HANDLER_(id, Name, ...) void button##Name();
#define DIALIX_DECLARE_DIAL_HANDLER_(id, Name, ...) void dial##Name(int value);

// The controller of one panel.
//
// It owns the panel device, the PTT serial port, its own command codec, the
// VFO coalescing timer and the panel's options page. Panel events (keys, dial
// pushes, dial turns, PTT, paddle) become host commands, device-manager calls
// or option changes; the host's state (MOX, VFO B, receiver) comes back as the
// panel's LEDs. Each function key and dial carries a menu of functions built
// from the function table; the checked action's position is the function id.
//
// Everything runs on the thread that created the controller (the host's GUI
// thread); the device emits the panel's events here, in the order the panel
// reported them.
//
// As a DialixAbstract it also offers the plug-in's operations for one panel:
// command() is its codec, saveSettings/readSettings use the "/options.ini"
// group layout, saveExtraSettings/readExtraSettings the host-settings layout,
// setManager binds the device manager and closeDevices closes the panel.
class DialixControl : public DialixAbstract
{
    Q_OBJECT

public:
    static constexpr int ButtonCount = dialix::Assignments::KeyCount; // pbFunc1 .. pbFunc17
    static constexpr int DialCount = dialix::Assignments::DialCount; // pbDial0 .. pbDial3
    static constexpr int RetryIntervalMs = 1000;
    static constexpr double VolumeMin = -60.0;
    static constexpr double VolumeMax = 0.0;

    explicit DialixControl(QObject *parent = nullptr);
    ~DialixControl() override;

    // The controller's number among all controllers (0-based); it names the
    // settings group "Dialix" + (number + 1).
    int number() const { return index; }
    void setNumber(int value) { index = value; }

    Dialix &panel() { return device; }
    const Dialix &panel() const { return device; }
    DialixOptions *optionsWidget() const { return options; }
    SerialPortControl &serial() { return serialPort; }
    DeviceManagerAbstract *devManager() const { return deviceManager; }
    ValueTimeout &vfoCoalescer() { return valueTimeout; }

    const QList<QMenu *> &functionButtonMenus() const { return buttonMenus; }
    const QList<QMenu *> &functionDialMenus() const { return dialMenus; }
    const QList<QActionGroup *> &functionButtonGroups() const { return buttonGroups; }
    const QList<QActionGroup *> &functionDialGroups() const { return dialGroups; }

    // Function id assigned to key n (1 .. 17) or dial j (0 .. 3); -1 when none
    // is checked or the number is out of range.
    int buttonFunction(int n) const;
    int dialFunction(int j) const;
    // Assigns a function (checks its action and refreshes the button's labels
    // as a menu choice would). False for an unknown key, dial or id.
    bool assignButtonFunction(int n, int id);
    bool assignDialFunction(int j, int id);

    // True while a retry of open(true) is pending.
    bool retryPending() const { return retryTimer.isActive(); }

    // Assignments and options in the plug-in's own file beside the host
    // executable ("/options.ini").
    void saveOptions();
    void loadOptions();
    static QString optionsFilePath();

    // The assignments and the page through an AssignmentStore, in the own
    // file's layout (reading re-labels the buttons) and in the host-settings
    // layout (reading leaves the button texts as they are).
    void writeAssignments(QSettings &settings);
    void readAssignments(QSettings &settings);
    void writeHostAssignments(QSettings &settings);
    void readHostAssignments(QSettings &settings);

    // DialixAbstract
    QString name() const override;
    void closeDevices() override;
    void saveSettings(QSettings *settings) override;
    void readSettings(QSettings *settings) override;
    void saveExtraSettings(QSettings *settings) override;
    void readExtraSettings(QSettings *settings) override;
    qrvCommand *command() override { return codec.get(); }
    std::shared_ptr<qrvCommand> sharedCommand() const { return codec; }
    void setManager(DeviceManagerAbstract *manager) override { setDevManager(manager); }

public slots:
    void open(bool state);
    void terminate();
    void restore();
    void setCommand(QVariant cmd) override;
    void setChannels(uint value) override;
    void deviceChanged();
    void setDevManager(DeviceManagerAbstract *manager);

private slots:
    void on4K(bool state);
    void onPttTransferMode(int index);
    void onDdsValue(QVariant value);
    void onButton(Dialix::Buttons button, bool state);
    void onDialButton(Dialix::DialButtons button, bool state);
    void onDial(Dialix::Dials dial, int value);
    void onPtt(bool state);
    void onLedEncoder(bool state);
    void onLedButtons(bool state);
    void onTrx(quint32 tranceiver, bool state);
    void onVfoB(bool state);
    void Key1(bool Status);
    void Key2(bool Status);
    void Key3(bool Status);
    void Key4(bool Status);
    void Key5(bool Status);
    void Key6(bool Status);
    void Key7(bool Status);
    void Key8(bool Status);
    void Key9(bool Status);
    void Key10(bool Status);
    void Key11(bool Status);
    void Key12(bool Status);
    void Key13(bool Status);
    void Key14(bool Status);
    void KeyEnc0(bool Status);
    void KeyEnc1(bool Status);
    void KeyEnc2(bool Status);
    void KeyEnc3(bool Status);
    void Enc0(int Val);
    void Enc1(int Val);
    void Enc2(int Val);
    void Enc3(int Val);
    void KeyPtt(bool Status);
    void KeyDash(bool Status);
    void KeyDot(bool Status);
    void changedFunctionButton(QAction *action);
    void changedFunctionDial(QAction *action);
    // The table's slot column: setFuncButton2() .. setFuncButton61() run key
    // function ids 1 to 60, setFuncDial1(int) .. setFuncDial13(int) dial
    // function ids 1 to 13 ("Unused" has no slot).
    DIALIX_BUTTON_FUNCTIONS(DIALIX_DECLARE_BUTTON_SLOT_)
    DIALIX_DIAL_FUNCTIONS(DIALIX_DECLARE_DIAL_SLOT_)
    void switchReceivers(int index);
    void onSerialPortOpen(bool state);

private:
    using ButtonHandler = void (DialixControl::*)();
    using DialHandler = void (DialixControl::*)(int);
    static const ButtonHandler buttonHandlers[dialix::ButtonFunctionCount];
    static const DialHandler dialHandlers[dialix::DialFunctionCount];

    // One handler per table row: button<Name>() and dial<Name>(int), with the
    // slots above and the IF rule in dialixfunctions.cpp.
    void buttonUnused();
    void dialUnused(int value);
    DIALIX_BUTTON_FUNCTIONS(DIALIX_DECLARE_BUTTON_HANDLER_)
    DIALIX_DIAL_FUNCTIONS(DIALIX_DECLARE_DIAL_HANDLER_)

    void buildButtonMenus();
    void buildDialMenus();
    void runButtonFunction(int id);
    void runDialFunction(int id, int value);
    void functionButton(int n, bool pressed);
    void functionDial(int j, int value);
    void ifRule(int value);
    void setMixerMode(quint32 mode);
    void emitMixerVfoMode(quint32 mode);
    void setLed(int mask, bool on);
    void setRetry(bool on);
    void ptt(bool state);
    void paddle();
    // The panel stopped delivering (its reader ended, the controller goes, the
    // host quits): nothing will report the release of what it holds, so the
    // PTT and the paddle contacts are released here, the way they went out.
    void releaseHeld();
    dialix::Assignments assignments() const;
    void store(QSettings &settings, AssignmentStore::Layout layout);
    void load(QSettings &settings, AssignmentStore::Layout layout);

    quint32 rx() const;
    bool hasReceivers() const;
    // step x value as the host expects it: a signed 32-bit product.
    static qint32 scaled(int step, int value);
    static int checkedPosition(const QActionGroup *group);
    static void checkPosition(QActionGroup *group, int position);

    Dialix device;
    std::shared_ptr<qrvCommand> codec;
    QPointer<DialixOptions> options;
    QList<QMenu *> buttonMenus;
    QList<QMenu *> dialMenus;
    QList<QActionGroup *> buttonGroups;
    QList<QActionGroup *> dialGroups;
    // The page's "pbFunc1" ... "pbFunc17" and "pbDial0" ... "pbDial3", looked up
    // once while the menus are built (null where the page lacks one or is gone).
    QList<QPointer<QPushButton>> funcButtons;
    QList<QPointer<QPushButton>> dialButtons;
    QPointer<DeviceManagerAbstract> deviceManager;
    bool dashState = false;
    bool dotState = false;
    int index = 0;
    QMenu *audioMenu = nullptr;
    QMenu *dspMenu = nullptr;
    QMenu *mainMenu = nullptr;
    QMenu *vfoRx2Menu = nullptr;
    ValueTimeout valueTimeout;
    SerialPortControl serialPort;
    QTimer retryTimer;

    // Where the panel's PTT press went: its release goes the same way, also
    // when the routing options changed while PTT was held.
    struct PttRoutes
    {
        QPointer<DeviceManagerAbstract> host; // txTransfer(hostRx, ...)
        quint32 hostRx = 0;
        QPointer<CwKeyControlAbstract> key; // setTrx(keyRx, ...)
        quint32 keyRx = 0;
        int lines = 0; // SerialLine bits raised on the PTT port
    };
    void releasePtt(const PttRoutes &alreadyReleased);
    PttRoutes keyedPtt;
    // Where closed paddle contacts went.
    QPointer<CwKeyControlAbstract> paddleKey;
    quint32 paddleRx = 0;
};
