// The functions a key or dial can be given: one handler per row of the
// function tables, the direct slots that run them, and the IF knob's rule.

#include "plugins/panels/dialix/source/dialixcontrol.h"

#include "command/qrvcommand.h"
#include "interfaces/devicemanagerabstract.h"
#include "plugins/panels/dialix/source/dialixoptions.h"

#include <algorithm>

// One entry per table row, in id order: entry i runs function id i.
#define DIALIX_BUTTON_HANDLER_ENTRY_(id, Name, ...) &DialixControl::button##Name,
#define DIALIX_DIAL_HANDLER_ENTRY_(id, Name, ...) &DialixControl::dial##Name,
const DialixControl::ButtonHandler DialixControl::buttonHandlers[dialix::ButtonFunctionCount] = {
    &DialixControl::buttonUnused, DIALIX_BUTTON_FUNCTIONS(DIALIX_BUTTON_HANDLER_ENTRY_)};
const DialixControl::DialHandler DialixControl::dialHandlers[dialix::DialFunctionCount] = {
    &DialixControl::dialUnused, DIALIX_DIAL_FUNCTIONS(DIALIX_DIAL_HANDLER_ENTRY_)};

// The direct slots run the same bodies as a key press or a dial movement.
#define DIALIX_DEFINE_BUTTON_SLOT_(id, Name, slot, ...)                                            \
    void DialixControl::slot()                                                                     \
    {                                                                                              \
        runButtonFunction(id);                                                                     \
    }
#define DIALIX_DEFINE_DIAL_SLOT_(id, Name, slot, ...)                                              \
    void DialixControl::slot(int value)                                                            \
    {                                                                                              \
        runDialFunction(id, value);                                                                \
    }
DIALIX_BUTTON_FUNCTIONS(DIALIX_DEFINE_BUTTON_SLOT_)
DIALIX_DIAL_FUNCTIONS(DIALIX_DEFINE_DIAL_SLOT_)

// ---------------------------------------------------------------------------
// Running a function by its id

void DialixControl::runButtonFunction(int id)
{
    if (id < 1 || id >= dialix::ButtonFunctionCount)
        return;
    const ButtonHandler handler = buttonHandlers[id];
    (this->*handler)();
}

void DialixControl::runDialFunction(int id, int value)
{
    if (id < 1 || id >= dialix::DialFunctionCount)
        return;
    const DialHandler handler = dialHandlers[id];
    (this->*handler)(value);
}

// ---------------------------------------------------------------------------
// Key functions, one per table row

void DialixControl::buttonUnused() { }

void DialixControl::buttonBandUp()
{
    codec->panelBandUp(rx());
}
void DialixControl::buttonBandDown()
{
    codec->panelBandDown(rx());
}
void DialixControl::buttonModeUp()
{
    codec->panelModeUp(rx());
}
void DialixControl::buttonModeDown()
{
    codec->panelModeDown(rx());
}
void DialixControl::buttonVolumeUp()
{
    codec->panelVolume(rx(), options->step(DialixOptions::Step::Volume));
}
void DialixControl::buttonVolumeDown()
{
    codec->panelVolume(rx(), -options->step(DialixOptions::Step::Volume));
}
void DialixControl::buttonMute()
{
    codec->panelMuteChange(rx());
}
void DialixControl::buttonBin()
{
    codec->panelBinChange(rx());
}
void DialixControl::buttonNr()
{
    codec->panelNrChange(rx());
}
void DialixControl::buttonAnf()
{
    codec->panelAnfChange(rx());
}
void DialixControl::buttonNb1()
{
    codec->panelNb1Change(rx());
}
void DialixControl::buttonNb2()
{
    codec->panelNb2Change(rx());
}
void DialixControl::buttonFilterUp()
{
    codec->panelFilterUp(rx());
}
void DialixControl::buttonFilterDown()
{
    codec->panelFilterDown(rx());
}
void DialixControl::buttonSql()
{
    codec->panelSqlChange(rx());
}
void DialixControl::buttonPa()
{
    codec->panelPaChange(rx());
}
void DialixControl::buttonAgcUp()
{
    codec->panelAgcUp(rx());
}
void DialixControl::buttonAgcDown()
{
    codec->panelAgcDown(rx());
}
void DialixControl::buttonPreampUp()
{
    codec->panelPreampUp();
}
void DialixControl::buttonPreampDown()
{
    codec->panelPreampDown();
}
void DialixControl::buttonStepUp()
{
    codec->panelStepUp(rx());
}
void DialixControl::buttonStepDown()
{
    codec->panelStepDown(rx());
}
void DialixControl::buttonZoomIn()
{
    codec->panelZoomUp(rx());
}
void DialixControl::buttonZoomOut()
{
    codec->panelZoomDown(rx());
}

// The toggles below always send "false": the host takes each message as a
// request to change over, so the panel never needs to know the current state.
void DialixControl::buttonMox()
{
    if (hasReceivers())
        codec->panelMox(rx(), false);
}
void DialixControl::buttonTune()
{
    if (hasReceivers())
        codec->panelTone(rx(), false);
}
void DialixControl::buttonWf()
{
    if (hasReceivers())
        codec->panelWideFilter();
}
void DialixControl::buttonPowerOnOff()
{
    codec->panelPowerChange();
}

void DialixControl::buttonSwitchDdsIf()
{
    options->setUseIfChecked(!options->isUseIfChecked());
}

void DialixControl::buttonSwitchReceiver()
{
    const int count = options->receiverCount();
    if (count == 0)
        return;
    const int next = options->receiver() + 1;
    options->setReceiver(next >= count ? 0 : next);
}

void DialixControl::buttonChangeVfoAB()
{
    if (!hasReceivers())
        return;
    options->setVfoBChecked(!options->isVfoBChecked());
}

void DialixControl::buttonSubRxOnOff()
{
    if (hasReceivers())
        codec->panelEnableVFOB(rx(), false);
}
void DialixControl::buttonRitOnOff()
{
    if (hasReceivers())
        codec->panelRitEnable(rx(), 0);
}
void DialixControl::buttonRitReset()
{
    if (hasReceivers())
        codec->panelRitReset(rx(), 0);
}

void DialixControl::buttonIfAsRit()
{
    options->setUseIfRitChecked(!options->isUseIfRitChecked());
}

void DialixControl::buttonXitOnOff()
{
    if (hasReceivers())
        codec->panelXitEnable(rx(), 0);
}
void DialixControl::buttonXitReset()
{
    if (hasReceivers())
        codec->panelXitReset(rx(), 0);
}
void DialixControl::buttonSplit()
{
    if (hasReceivers())
        codec->panelSplitSw(rx());
}
void DialixControl::buttonTxPlay()
{
    if (hasReceivers())
        codec->panelMoxVoicePlay(rx());
}
void DialixControl::buttonVoiceRecording()
{
    if (hasReceivers())
        codec->panelVoiceRec(rx());
}
void DialixControl::buttonRxAnt()
{
    codec->panelRxAntSwitch();
}

void DialixControl::buttonLock()
{
    if (deviceManager)
        deviceManager->setLock(rx(), !deviceManager->lock(rx()));
}
void DialixControl::buttonAToB()
{
    if (deviceManager)
        deviceManager->setVfoaToVfob(rx());
}
void DialixControl::buttonBToA()
{
    if (deviceManager)
        deviceManager->setVfobToVfoa(rx());
}
void DialixControl::buttonSwapAB()
{
    if (deviceManager)
        deviceManager->setVfoaSwapVfob(rx());
}
void DialixControl::buttonApf()
{
    if (deviceManager)
        emit deviceManager->switchedApf(rx());
}

void DialixControl::setMixerMode(quint32 mode)
{
    if (deviceManager)
        deviceManager->setMixerMode(mode);
}
void DialixControl::buttonListenBothRx()
{
    setMixerMode(0);
}
void DialixControl::buttonListenRx1Only()
{
    setMixerMode(1);
}
void DialixControl::buttonListenRx2Only()
{
    setMixerMode(2);
}
void DialixControl::buttonListenRx1LeftRx2Right()
{
    setMixerMode(3);
}
void DialixControl::buttonListenRx1RightRx2Left()
{
    setMixerMode(4);
}

void DialixControl::buttonSwitchRxMuteFormer()
{
    if (!deviceManager)
        return;
    buttonSwitchReceiver();
    const int count = options->receiverCount();
    if (count == 0)
        return;
    // Only the newly selected receiver stays audible.
    const quint32 selected = rx();
    for (quint32 t = 0; deviceManager && t < deviceManager->tranceivers(); ++t) {
        if (t >= quint32(count))
            break;
        deviceManager->setMute(t, t != selected);
    }
}

void DialixControl::buttonRx2OnOff()
{
    if (deviceManager)
        emit deviceManager->switchRx2Enable();
}

void DialixControl::emitMixerVfoMode(quint32 mode)
{
    if (deviceManager)
        emit deviceManager->mixerVfoMode(rx(), mode);
}
void DialixControl::buttonListenBothVfo()
{
    emitMixerVfoMode(0);
}
void DialixControl::buttonListenVfoAOnly()
{
    emitMixerVfoMode(1);
}
void DialixControl::buttonListenVfoBOnly()
{
    emitMixerVfoMode(2);
}
void DialixControl::buttonListenVfoALeftVfoBRight()
{
    emitMixerVfoMode(3);
}
void DialixControl::buttonListenVfoARightVfoBLeft()
{
    emitMixerVfoMode(4);
}

void DialixControl::buttonVox()
{
    if (deviceManager)
        deviceManager->setVox(rx(), !deviceManager->vox(rx()));
}
void DialixControl::buttonNf()
{
    if (deviceManager)
        emit deviceManager->switchNF(rx());
}

// ---------------------------------------------------------------------------
// Dial functions, one per table row

void DialixControl::dialUnused(int value)
{
    Q_UNUSED(value)
}

void DialixControl::dialVolume(int value)
{
    if (!deviceManager)
        return;
    double volume =
        deviceManager->mainVolume() + scaled(options->step(DialixOptions::Step::Volume), value);
    volume = std::min(volume, VolumeMax);
    volume = std::max(volume, VolumeMin);
    deviceManager->setMainVolume(volume);
}
void DialixControl::dialMicGain(int value)
{
    codec->panelMicGain(rx(), scaled(options->step(DialixOptions::Step::MicGain), value));
}
void DialixControl::dialSql(int value)
{
    codec->panelSql(rx(), scaled(options->step(DialixOptions::Step::Sql), value));
}
void DialixControl::dialFilterLow(int value)
{
    codec->panelFilterLow(rx(), scaled(options->step(DialixOptions::Step::FilterLow), value));
}
void DialixControl::dialFilterHigh(int value)
{
    codec->panelFilterHigh(rx(), scaled(options->step(DialixOptions::Step::FilterHigh), value));
}
void DialixControl::dialFilterWidth(int value)
{
    codec->panelFilterWidth(rx(), scaled(options->step(DialixOptions::Step::FilterWidth), value));
}
void DialixControl::dialFilterShift(int value)
{
    codec->panelFilterShift(rx(), scaled(options->step(DialixOptions::Step::FilterShift), value));
}
void DialixControl::dialDrive(int value)
{
    codec->panelDrive(rx(), scaled(options->step(DialixOptions::Step::Drive), value));
}
void DialixControl::dialIf(int value)
{
    ifRule(value);
}
void DialixControl::dialRfGain(int value)
{
    codec->panelRF(rx(), scaled(options->step(DialixOptions::Step::RfGain), value));
}
void DialixControl::dialCwSpeed(int value)
{
    codec->panelCwSpeed(rx(), value);
}
void DialixControl::dialRitOffset(int value)
{
    codec->panelRitValue(rx(), 0, value);
}
void DialixControl::dialXitOffset(int value)
{
    codec->panelXitValue(rx(), 0, value);
}

// The IF knob moves the RIT offset while RIT is on, else the XIT offset while
// XIT is on (unless the receiver is locked), else the IF itself. Only the XIT
// branch looks at the lock.
void DialixControl::ifRule(int value)
{
    if (!deviceManager)
        return;
    const quint32 receiver = rx();
    if (deviceManager->rit(receiver)) {
        codec->panelRitFromIfValue(receiver, 0, value);
    } else if (deviceManager->xit(receiver)) {
        if (!deviceManager->lock(receiver))
            codec->panelXitFromIfValue(receiver, 0, value);
    } else {
        codec->panelIF(receiver, value);
    }
}

// ---------------------------------------------------------------------------
// Helpers

bool DialixControl::hasReceivers() const
{
    return options->receiverCount() > 0;
}

qint32 DialixControl::scaled(int step, int value)
{
    // Wraps like the host's 32-bit arithmetic instead of overflowing.
    return static_cast<qint32>(static_cast<quint32>(qint64(step) * qint64(value)));
}
